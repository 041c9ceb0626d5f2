#include "host/internal/sheets/KeyIndex.h"

#include "host/internal/sheets/Grid.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace cells::host {
namespace {

std::uint64_t Mixed(std::uint64_t bits) {
    bits *= 0x9E3779B97F4A7C15;
    return bits ^ bits >> 29;
}

std::uint64_t HashOfText(wchar_t const * text) {
    std::uint64_t hash = 1;
    for (; *text; ++text) hash = Mixed(hash ^ std::uint64_t(*text));
    return hash;
}

} // namespace

KeyIndex::Hash KeyIndex::HashOf(CCCellValue const & value) {
    if (!IsKey(value)) return 0;
    std::uint64_t const hash = value.IsText()
                                   ? HashOfText(value.GetTextString())
                                   : Mixed(std::bit_cast<std::uint64_t>(value.GetNumber() + 0.0));
    return std::max(Hash(hash >> 32), Hash(1)); // adding 0 above makes one number of both zeros
}

KeyIndex::KeyIndex(Grid const & grid, int column) : m_Grid(grid), m_Column(column) {
    int last = kNoRow;
    std::vector<Hash> hashes;
    CCCellValue value;
    grid.ForEach({{column, 0}, {column, kRows - 1}}, [&](Place place) {
        last = place.row;
        hashes.resize(std::size_t(last) + 1);
        grid.Read(place, value);
        hashes.back() = HashOf(value);
    });
    m_Hashes = std::move(hashes);
    m_Next.resize(m_Hashes.size(), kNoRow);
    m_Buckets.assign(std::bit_ceil(m_Hashes.size() + 1), kNoRow);
    for (int row = last; row >= 0; --row) {
        Hash const hash = m_Hashes[std::size_t(row)];
        if (hash == 0) continue;
        m_Next[std::size_t(row)] = std::exchange(BucketOf(hash), row);
    }
}

int KeyIndex::Find(CCCellValue const & key, int firstRow, int lastRow) {
    TakeChanges();
    Hash const hash = HashOf(key);
    for (int row = BucketOf(hash); row != kNoRow && row <= lastRow; row = m_Next[std::size_t(row)])
        if (row >= firstRow && m_Hashes[std::size_t(row)] == hash &&
            m_Grid.Holds({m_Column, row}, key))
            return row;
    return kNoRow;
}

bool KeyIndex::NoteChange(int row) {
    if (m_Changed.empty() || m_Changed.back() != row) m_Changed.push_back(row);
    return m_Changed.size() <= kMostChanges;
}

void KeyIndex::TakeChanges() {
    CCCellValue value;
    for (int row : m_Changed) {
        m_Grid.Read({m_Column, row}, value);
        SetHash(row, HashOf(value));
    }
    m_Changed.clear();
}

// The link of a bucket that leads to the row, or over its place.
int & KeyIndex::LinkBefore(Hash hash, int row) {
    int * link = &BucketOf(hash);
    while (*link != kNoRow && *link < row) link = &m_Next[std::size_t(*link)];
    return *link;
}

void KeyIndex::SetHash(int row, Hash hash) {
    if (std::size_t(row) >= m_Hashes.size()) {
        m_Hashes.resize(std::size_t(row) + 1);
        m_Next.resize(std::size_t(row) + 1, kNoRow);
    }
    Hash & own = m_Hashes[std::size_t(row)];
    if (own == hash) return;
    if (own != 0) LinkBefore(own, row) = m_Next[std::size_t(row)];
    own = hash;
    if (own != 0) m_Next[std::size_t(row)] = std::exchange(LinkBefore(own, row), row);
}

} // namespace cells::host
