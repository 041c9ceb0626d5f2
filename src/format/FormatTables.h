// The process-wide tables in which equal number formats and equal cell formats are stored once.
// Cell formats hold number formats by index, cells hold cell formats by index; entry 0 is always
// there and stands for every index out of range.
#pragma once

#include "format/CCCellFormat.h"

#include <memory>
#include <unordered_map>
#include <vector>

namespace cells::internal {

// A table of owned records. `Same` tells when two records are one entry. Comparison may be costly,
// so the table remembers what it found for an exact record as long as it only grows and no record
// that it handed out is changed.
template <typename Record, bool (*Same)(Record const &, Record const &)>
class FormatTable {
public:
    FormatTable() = default;
    FormatTable(FormatTable const & other) { Append(other); }
    FormatTable & operator=(FormatTable const &) = delete;
    virtual ~FormatTable() = default;

    int GetSize() const { return int(m_Records.size()); }
    // The record at an index, to be read; one of a new record where the table is empty.
    Record const & At(int index) const {
        static Record const fresh;
        if (m_Records.empty()) return fresh;
        return *m_Records[IsInside(index) ? std::size_t(index) : 0];
    }
    // The record at an index, which the caller may change as long as it is there; null where the
    // table is empty.
    Record * GetAt(int index) const {
        if (m_Records.empty()) return nullptr;
        Record * const record = m_Records[IsInside(index) ? std::size_t(index) : 0].get();
        m_HandedOut.try_emplace(record, *record);
        return record;
    }
    // Hands over the record, which is the caller's; null out of range.
    Record * RemoveAt(int index) {
        if (!IsInside(index)) return nullptr;
        m_Found.clear();
        Record * record = m_Records[std::size_t(index)].release();
        m_Records.erase(m_Records.begin() + index);
        m_HandedOut.erase(record);
        return record;
    }
    int DeleteAt(int index) {
        if (!IsInside(index)) return 0;
        delete RemoveAt(index);
        return 1;
    }
    // The first entry with the same content, or -1.
    int Find(Record const & record) const {
        NoticeChanges();
        auto const known = m_Found.find(record.Key());
        if (known != m_Found.end()) return known->second.index;
        for (int i = 0; i < GetSize(); ++i) {
            if (!Same(*m_Records[std::size_t(i)], record)) continue;
            m_Found.emplace(record.Key(), Known{record, i});
            return i;
        }
        return -1;
    }
    int Add(Record const & record) {
        int const found = Find(record);
        return found >= 0 ? found : Append(record);
    }
    int Append(Record const & record) {
        m_Records.push_back(std::make_unique<Record>(record));
        return GetSize() - 1;
    }
    void Append(FormatTable const & other) {
        for (int i = 0, size = other.GetSize(); i < size; ++i) Append(other.At(i));
    }
    // An index out of range is that of the end.
    void InsertAt(int index, Record const & record) {
        if (!IsInside(index)) index = GetSize();
        m_Found.clear();
        m_Records.insert(m_Records.begin() + index, std::make_unique<Record>(record));
    }

private:
    bool IsInside(int index) const { return index >= 0 && index < GetSize(); }

    void NoticeChanges() const {
        for (auto & [record, before] : m_HandedOut) {
            if (record->Key() == before.Key()) continue;
            before = *record;
            m_Found.clear();
        }
    }

    // A record stays alive beside its key, which may hold addresses of what it owns.
    struct Known {
        Record record;
        int index;
    };

    std::vector<std::unique_ptr<Record>> m_Records;
    mutable std::unordered_map<FormatKey, Known, FormatKeyHash> m_Found;
    // Records that a caller may have changed, as they were when m_Found was right.
    mutable std::unordered_map<Record const *, Record> m_HandedOut;
};

inline bool SameNumberFormat(CCNumberFormat const & a, CCNumberFormat const & b) {
    return a.IsEqual(nullptr, b);
}
inline bool SameCellFormat(CCCellFormat const & a, CCCellFormat const & b) {
    return a.IsSame(b) != 0;
}

} // namespace cells::internal

class CVCELLS_API CCNumberFormatTable
    : public cells::internal::FormatTable<CCNumberFormat, cells::internal::SameNumberFormat> {
public:
    CCNumberFormatTable() { Add(CCNumberFormat()); }

    static CCNumberFormatTable DefNumFormats;
    static CCNumberFormatTable * NumFormats; // the table that cell formats resolve indexes in
};

class CVCELLS_API CCCellFormatTable
    : public cells::internal::FormatTable<CCCellFormat, cells::internal::SameCellFormat> {
public:
    CCCellFormatTable() { Add(CCCellFormat()); }

    static CCCellFormatTable DefCellFormats;
    static CCCellFormatTable * CCellFormats;
};
