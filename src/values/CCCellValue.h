// CCCellValue: the variant that every cell holds and every expression yields.
//
// It is empty, an error, a text, a number or a reference, and carries a number format. TRUE and
// FALSE are the numbers 1 and 0 in format class C_NF_BOOL. An error is a value and travels as one.
//
//     CCCellValue value;
//     value.Set(12.5, C_NF_CURRENCY);
//     value.Print(ctx, stream, 0);
//
// The value owns its text and its reference (a copy made with CCRef::Copy). The format changes only
// where a Set names one; a plain Set(double) keeps it.
#pragma once

#include "format/CCNumberFormat.h"
#include "platform/CInstanceCounter.h"

class CArchive;
class CCRef;
struct tagVARIANT;

namespace cells {
class CTX;
}

enum ECValueType : uchar { vtEmpty = 0, vtError = 1, vtText = 2, vtNumber = 3, vtRef = 4 };

// Error numbers. The text of error N is string resource 13381 + N.
enum CellError : int {
    errRef = 1,    // a reference that cannot be read
    errDiv0 = 2,   // division by zero
    errValue = 3,  // wrong kind or range of argument
    errLegacy = 4, // a bad call, or a chosen branch that is missing
    errCirc = 5,   // a circular formula
    errNA = 9,     // not available
};

// Bits of the mode of CCCellValue::Print.
enum ValuePrintMode : uchar {
    kPrintForEdit = 1, // numbers as they are edited
    kPrintEscaped = 2, // quotes and m_chSpecial are preceded by m_chSpecial
};

class CVCELLS_API CCCellValue : public calvera::debug::CInstanceCounter<CCCellValue> {
public:
    static constexpr wchar_t m_chSpecial = L'^'; // escapes the character after it in quoted text

    CCCellValue() noexcept : m_dNumber(0) {}
    explicit CCCellValue(int error);
    explicit CCCellValue(wchar_t const * text);
    explicit CCCellValue(CCRef const * ref);
    explicit CCCellValue(tagVARIANT const & variant);
    // An int is an error number; these would become one by accident.
    CCCellValue(double) = delete;
    CCCellValue(bool) = delete;
    CCCellValue(char) = delete;
    CCCellValue(CCCellValue const & other);
    CCCellValue & operator=(CCCellValue const & other);
    ~CCCellValue() {
        if (m_nType == vtText || m_nType == vtRef) Free();
    }

    uchar GetType() const { return m_nType; }
    double GetNumber() const { return m_nType == vtNumber ? m_dNumber : 0; }
    int GetError() const { return m_nType == vtError ? m_nError : 0; }
    // Null for a null text and for every other type.
    wchar_t const * GetText() const;
    CString GetTextString() const { return m_nType == vtText ? m_strText : CString(); }
    CCRef * GetRef() const { return m_nType == vtRef ? m_pRefValue : nullptr; }
    CCNumberFormat & GetFormat() { return m_Format; }
    CCNumberFormat const & GetFormat() const { return m_Format; }
    bool IsEmpty() const { return m_nType == vtEmpty; }
    bool IsError() const { return m_nType == vtError; }
    bool IsNumber() const { return m_nType == vtNumber; }
    bool IsText() const { return m_nType == vtText; }
    bool IsRef() const { return m_nType == vtRef; }
    // A number that is not 0, a text that is not empty, a reference that is there.
    bool IsTrue() const;

    // Whether an edit from one to the other changes anything: a change of format alone does.
    // References are never equal.
    bool IsEqual(CCCellValue const & other) const;

    void Set() { Release(); }
    void Set(int error);
    void Set(wchar_t const * text);
    void Set(CString const & text);
    void Set(CCRef const * ref);
    void Set(double number) {
        if (m_nType == vtText || m_nType == vtRef) Free();
        m_nType = vtNumber;
        m_dNumber = number;
    }
    void Set(double number, unsigned char type);
    void Set(double number, CCNumberFormat & format);
    void Set(CCNumberFormat & format);
    void Set(CCCellValue const & other);
    void Set(tagVARIANT const & variant);
    void Set(bool) = delete;
    // Takes over the reference instead of copying it.
    void AdoptRef(CCRef * ref);
    void Get(tagVARIANT & variant) const;
    void Swap(CCCellValue & other) noexcept;
    // Frees text or reference and empties the value; the format stays.
    void Release();

    // An error prints its text, a number by its format, a text as it stands. `mode`: see
    // ValuePrintMode.
    void Print(cells::CTX * ctx, std::wostream & stream, uchar mode) const;

    void Read(cells::CTX * ctx, CArchive & ar);
    void Write(cells::CTX * ctx, CArchive & ar) const;

private:
    void Free();
    void CopyPayload(CCCellValue const & other);
    void PrintText(std::wostream & stream, bool escaped) const;

    uchar m_nType = vtEmpty;
    bool m_bNullText = false; // a text that is null and not only empty
    union {
        int m_nError;
        CString m_strText;
        double m_dNumber;
        CCRef * m_pRefValue;
    };
    CCNumberFormat m_Format;
};

CVCELLS_API CCCellValue * ReadCellValue(cells::CTX * ctx, CArchive & ar); // the caller's, or null
CVCELLS_API void WriteCellValue(cells::CTX * ctx, CArchive & ar, CCCellValue const * value);

class CPtrArray;
// Arrays of owned CCCellValue pointers.
CVCELLS_API void ReadValueArray(cells::CTX * ctx, CArchive & ar, CPtrArray & values);
CVCELLS_API void WriteValueArray(cells::CTX * ctx, CArchive & ar, CPtrArray const & values);
CVCELLS_API void FreeValueArray(CPtrArray & values);
