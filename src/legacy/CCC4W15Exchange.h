// CCC4W15Exchange: the cells of the older file version, as that version wrote them.
//
//     CCC4W15Exchange::CCC4W15_Cell cell;
//     cell.Read(archive);                                     // one record
//     CCC4W15Convert(manager).ConvertTo95(&item, ref, &cell); // as a cell of today
//
// The model holds what the file holds and nothing more: narrow texts, places as distances from the
// cell of the formula, calls by the names of their functions, number formats as blocks of 20 bytes.
// docs/file-formats.md shows each record.
//
// Every class has Read, Write and Release. Release frees what the object owns; Read does so first,
// and destructors too. What is pointed to is owned, and what the Read functions below give is the
// caller's. The number of an unknown class reads as null and leaves the stream where it is, since
// no record tells its length. A record that ends too early throws CArchiveException(endOfFile), a
// formula nested deeper than cells::kMaxFormulaDepth badSchema. Counts are never believed: lists
// grow while they are read.
#pragma once

#include "platform/Types.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class CArchive;

class CVCELLS_API CCC4W15Exchange {
public:
    // Texts: a length byte and so many bytes of the code page; nothing stands for null.
    using String16 = std::optional<std::string>;
    static constexpr uchar NullStringLen = 255;
    static constexpr std::size_t kLongestString16 = 254; // of what comes back as it was
    static String16 ReadString16(CArchive & ar);
    // Writes the low 8 bits of the length and so many bytes: 300 come out as the first 44, and 255
    // cannot be told from null, so that the reader takes them for what follows. That is the format.
    static void WriteString16(CArchive & ar, String16 const & text);

    // A singly linked list that owns its nodes; they have a `next`, and null ends them.
    template <typename Node>
    class List {
    public:
        List() = default;
        List(List const &) = delete;
        List & operator=(List const &) = delete;
        ~List() { Clear(); }

        Node * First() const { return m_First; }
        // Puts a new node behind the others, in constant time. The node takes the item over.
        template <typename Item>
        void Add(Item * item) {
            std::unique_ptr<Item> owned(item);
            *m_End = new Node{std::move(owned), nullptr};
            m_End = &(*m_End)->next;
        }
        // Instead of its own nodes.
        void Take(Node * first) {
            Clear();
            m_First = first;
            while (*m_End) m_End = &(*m_End)->next;
        }
        Node * Detach() {
            m_End = &m_First;
            return std::exchange(m_First, nullptr);
        }
        void Clear() {
            Node * node = Detach();
            while (node) {
                std::unique_ptr<Node> const last(node);
                node = last->next;
            }
        }

    private:
        Node * m_First = nullptr;
        Node ** m_End = &m_First;
    };

    // A value.
    class CVCELLS_API CCC4W15_CellValue {
    public:
        enum Type : uchar { kError = 0, kText = 1, kNumber = 3 }; // and all others are numbers

        void Read(CArchive & ar);
        void Write(CArchive & ar) const;
        void Release() { *this = CCC4W15_CellValue(); }

        uchar type = kNumber;
        std::uint16_t error = 0;
        String16 text;
        double number = 0;
        std::uint16_t format = 0; // the decimals, as far as the type has them
    };

    // Where something is.
    class CVCELLS_API CCC4W15_Coords {
    public:
        virtual ~CCC4W15_Coords() = default;
        virtual void Read(CArchive & ar) = 0;
        virtual void Write(CArchive & ar) const = 0;
        virtual int GetType() const = 0;
        virtual void Release() {}
    };
    enum CoordsType { kCoordsRC = 1, kCoordsRegion, kCoordsName, kCoordsQuery };

    static CCC4W15_Coords * ReadCoords(CArchive & ar);
    static void WriteCoords(CArchive & ar, CCC4W15_Coords const * coords);

    // A cell. Where a flag is 0, the number is a distance from the cell of the formula, modulo
    // 65,536; otherwise it counts from 1.
    class CVCELLS_API CCC4W15_CoordsRC : public CCC4W15_Coords {
    public:
        void Read(CArchive & ar) override;
        void Write(CArchive & ar) const override;
        int GetType() const override { return kCoordsRC; }

        std::uint16_t row = 1, column = 1;
        std::uint16_t rowAbsolute = 0, columnAbsolute = 0;
    };

    class CVCELLS_API CCC4W15_CoordsRegion : public CCC4W15_Coords {
    public:
        void Read(CArchive & ar) override;
        void Write(CArchive & ar) const override;
        int GetType() const override { return kCoordsRegion; }

        CCC4W15_CoordsRC first, last;
    };

    class CVCELLS_API CCC4W15_CoordsName : public CCC4W15_Coords {
    public:
        void Read(CArchive & ar) override;
        void Write(CArchive & ar) const override;
        int GetType() const override { return kCoordsName; }
        void Release() override { name.reset(); }

        String16 name;
    };

    class CVCELLS_API CCC4W15_Formula {
    public:
        virtual ~CCC4W15_Formula() = default;
        virtual void Read(CArchive & ar) = 0;
        virtual void Write(CArchive & ar) const = 0;
        virtual int GetType() const = 0;
        virtual void Release() = 0;
    };
    enum FormulaType { kFormulaOp = 1, kFormulaConst, kFormulaRef };

    static CCC4W15_Formula * ReadFormula(CArchive & ar);
    static void WriteFormula(CArchive & ar, CCC4W15_Formula const * formula);

    // A query on a database, and what it is made of.
    class CVCELLS_API CCC4W15_FileRef {
    public:
        void Read(CArchive & ar);
        void Write(CArchive & ar) const;
        void Release() { *this = CCC4W15_FileRef(); }

        uchar kind = 0;
        String16 firstName, secondName;
    };

    class CVCELLS_API CCC4W15_QueryCondition {
    public:
        void Read(CArchive & ar);
        void Write(CArchive & ar) const;
        void Release() { *this = CCC4W15_QueryCondition(); }

        String16 field;
        uchar comparison = 0;
        std::unique_ptr<CCC4W15_Formula> formula;
        std::uint16_t flags = 0;
        CCC4W15_CellValue value;
    };

    class CVCELLS_API CCC4W15_QuerySortKey {
    public:
        void Read(CArchive & ar);
        void Write(CArchive & ar) const;
        void Release() { *this = CCC4W15_QuerySortKey(); }

        uchar order = 0;
        String16 field;
    };

    // Write ends each list one entry short of the count that it has just written, as the format
    // has it; Read takes all. A query with lists therefore does not come back from this library,
    // one from an old file is read as it is.
    class CVCELLS_API CCC4W15_CoordsQuery : public CCC4W15_Coords {
    public:
        void Read(CArchive & ar) override;
        void Write(CArchive & ar) const override;
        int GetType() const override { return kCoordsQuery; }
        void Release() override;

        CCC4W15_FileRef file;
        std::vector<String16> fields;
        std::vector<CCC4W15_QueryCondition> conditions;
        std::vector<CCC4W15_QuerySortKey> sortKeys;
    };

    // References: a place, here or in another document.
    class CVCELLS_API CCC4W15_Ref {
    public:
        virtual ~CCC4W15_Ref() = default;
        virtual void Read(CArchive & ar);
        virtual void Write(CArchive & ar) const;
        virtual int GetType() const { return kRef; }
        virtual void Release() { coords.reset(); }

        std::unique_ptr<CCC4W15_Coords> coords;
    };
    enum RefType { kRef = 1, kRemoteRef };

    class CVCELLS_API CCC4W15_RemoteRef : public CCC4W15_Ref {
    public:
        void Read(CArchive & ar) override;
        void Write(CArchive & ar) const override;
        int GetType() const override { return kRemoteRef; }
        void Release() override;

        CCC4W15_FileRef file;
    };

    static CCC4W15_Ref * ReadRef(CArchive & ar);
    static void WriteRef(CArchive & ar, CCC4W15_Ref const * ref);

    struct SCC4W15_RefList {
        std::unique_ptr<CCC4W15_Ref> ref;
        SCC4W15_RefList * next;
    };
    static SCC4W15_RefList * ReadRefList(CArchive & ar);
    static void WriteRefList(SCC4W15_RefList const * list, CArchive & ar);
    static std::uint32_t GetRefListLen(SCC4W15_RefList const * list);
    static void FreeRefList(SCC4W15_RefList * list);

    struct SCC4W15_FormulaList {
        std::unique_ptr<CCC4W15_Formula> formula;
        SCC4W15_FormulaList * next;
    };

    // A call, an operator included, by the name of its function.
    class CVCELLS_API CCC4W15_FormulaOp : public CCC4W15_Formula {
    public:
        void Read(CArchive & ar) override;
        void Write(CArchive & ar) const override;
        int GetType() const override { return kFormulaOp; }
        void Release() override;
        std::uint32_t GetNumArgs() const;

        String16 name;
        List<SCC4W15_FormulaList> args;
    };

    class CVCELLS_API CCC4W15_FormulaConst : public CCC4W15_Formula {
    public:
        void Read(CArchive & ar) override { value.Read(ar); }
        void Write(CArchive & ar) const override { value.Write(ar); }
        int GetType() const override { return kFormulaConst; }
        void Release() override { value.Release(); }

        CCC4W15_CellValue value;
    };

    class CVCELLS_API CCC4W15_FormulaRef : public CCC4W15_Formula {
    public:
        void Read(CArchive & ar) override;
        void Write(CArchive & ar) const override;
        int GetType() const override { return kFormulaRef; }
        void Release() override { ref.reset(); }

        std::unique_ptr<CCC4W15_Ref> ref;
    };

    class CVCELLS_API CCC4W15_Cell {
    public:
        void Read(CArchive & ar);
        void Write(CArchive & ar) const;
        void Release();

        std::unique_ptr<CCC4W15_Coords> coords;
        CCC4W15_CellValue value;
        std::unique_ptr<CCC4W15_Formula> formula;
        List<SCC4W15_RefList> dependents;  // the first list of references
        List<SCC4W15_RefList> editSources; // the second
    };

    // What a number format holds beside its type, by type. Flags are 0 or 1, and read as set where
    // they are not 0.
    template <std::uint16_t Type>
    struct Decimals {
        static constexpr std::uint16_t kType = Type;
        std::uint16_t decimals = 0; // of a fraction: its kind
        std::uint16_t commas = 0, bracket = 0, red = 0;
    };
    struct SCC4W15_NF_Number : Decimals<0> {
        static constexpr std::size_t kTextBytes = 8;
        std::uint16_t stringKind = 0; // 0 none, 1 leading, 2 trailing
        std::string text;             // up to kTextBytes, without zeros
    };
    using SCC4W15_NF_Currency = Decimals<1>;
    struct SCC4W15_NF_Time {
        static constexpr std::uint16_t kType = 2;
        std::uint16_t twelveHours = 0, seconds = 0;
    };
    struct SCC4W15_NF_Date {
        static constexpr std::uint16_t kType = 3;
        std::uint16_t separator = 0; // 0 "-", 1 "/", 2 ".", 3 blank
        std::uint16_t monthKind = 0, yearKind = 0;
        std::uint16_t order = 0; // 1: the day before the month
    };
    using SCC4W15_NF_Percent = Decimals<4>;
    using SCC4W15_NF_Fraction = Decimals<5>;
    using SCC4W15_NF_Scientific = Decimals<6>;

    // A number format: a block of ten words, the type and the fields of its type. What is read is
    // written again, whatever the words are; a Set makes words without a meaning 0.
    class CVCELLS_API CCC4W15_NumberFormat {
    public:
        static constexpr std::size_t kWords = 10;

        void Read(CArchive & ar);
        void Write(CArchive & ar) const;
        void Release() { words = {}; }

        std::uint16_t GetType() const { return words[0]; }
        template <std::uint16_t Type>
        void Get(Decimals<Type> & fields) const {
            fields = {words[1], words[2], words[3], words[4]};
        }
        void Get(SCC4W15_NF_Number & fields) const;
        void Get(SCC4W15_NF_Time & fields) const { fields = {words[1], words[2]}; }
        void Get(SCC4W15_NF_Date & fields) const {
            fields = {words[1], words[2], words[3], words[4]};
        }
        template <std::uint16_t Type>
        void Set(Decimals<Type> const & fields) {
            words = {Type, fields.decimals, fields.commas, fields.bracket, fields.red};
        }
        void Set(SCC4W15_NF_Number const & fields);
        void Set(SCC4W15_NF_Time const & fields) {
            words = {fields.kType, fields.twelveHours, fields.seconds};
        }
        void Set(SCC4W15_NF_Date const & fields) {
            words = {fields.kType, fields.separator, fields.monthKind, fields.yearKind,
                     fields.order};
        }

        std::array<std::uint16_t, kWords> words{};
    };
};
