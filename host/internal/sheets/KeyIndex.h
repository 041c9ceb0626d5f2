// KeyIndex: the rows of a column by the value that stands in them, for exact lookups.
//
// Numbers and texts are hashed; a search follows the rows of one hash from the top and compares the
// values themselves. A change of a cell is noted in constant time and taken in by the next search.
#pragma once

#include "values/CCCellValue.h"

#include <cstdint>
#include <vector>

namespace cells::host {

class Grid;

class KeyIndex {
public:
    KeyIndex(Grid const & grid, int column);

    // The first row of those whose value is the key; -1 for none.
    int Find(CCCellValue const & key, int firstRow, int lastRow);
    // A value in this row came, went or changed. False when the changes since the last search are
    // so many that the index is better made anew.
    bool NoteChange(int row);

    // Only numbers and texts are kept; blanks and errors are alike by their type alone.
    static bool IsKey(CCCellValue const & value) { return value.IsNumber() || value.IsText(); }

private:
    static constexpr int kNoRow = -1;
    static constexpr std::size_t kMostChanges = 64;
    using Hash = std::uint32_t; // 0: no key

    static Hash HashOf(CCCellValue const & value);
    void TakeChanges();
    void SetHash(int row, Hash hash);
    int & LinkBefore(Hash hash, int row);
    int & BucketOf(Hash hash) { return m_Buckets[hash & (m_Buckets.size() - 1)]; }

    Grid const & m_Grid;
    int const m_Column;
    std::vector<int> m_Buckets; // the first row of a bucket; a power of two of them
    std::vector<int> m_Next;    // by row: the next row of its bucket, further down
    std::vector<Hash> m_Hashes; // by row
    std::vector<int> m_Changed;
};

} // namespace cells::host
