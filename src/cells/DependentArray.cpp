#include "cells/DependentArray.h"

#include "formula/RefHash.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <new>
#include <utility>

namespace cells::internal {

int DependentArray::Find(CCRef const * ref) const {
    if (!ref) return -1;
    if (m_pIndex) return FindInIndex(ref);
    for (int slot = 0; slot < m_nDependents; ++slot)
        if (m_ppDependents[slot]->IsEqual(ref)) return slot;
    return -1;
}

// A slot that was replaced stands after its equals in the table, so all of them are looked at.
int DependentArray::FindInIndex(CCRef const * ref) const {
    std::vector<std::uint32_t> const & table = m_pIndex->table;
    std::size_t const mask = table.size() - 1;
    int first = -1;
    for (std::size_t at = RefHash(ref) & mask; table[at] != kFree; at = (at + 1) & mask) {
        if (table[at] == kGone) continue;
        int const slot = int(table[at] - 1);
        if ((first < 0 || slot < first) && m_ppDependents[slot]->IsEqual(ref)) first = slot;
    }
    return first;
}

void DependentArray::Enter(int slot) {
    std::vector<std::uint32_t> & table = m_pIndex->table;
    std::size_t const mask = table.size() - 1;
    std::size_t at = RefHash(m_ppDependents[slot]) & mask;
    while (table[at] != kFree) at = (at + 1) & mask;
    table[at] = std::uint32_t(slot) + 1;
    ++m_pIndex->used;
}

// Room in the table for all entries and one more. Where memory ends, nothing has changed.
void DependentArray::BuildIndex() {
    int const slots = Slots();
    auto index = std::make_unique<Index>();
    index->slots = slots;
    index->table.assign(std::bit_ceil(std::size_t(slots + 1) * 4), kFree);
    m_pIndex = std::move(index);
    for (int slot = 0; slot < slots; ++slot)
        if (m_ppDependents[slot]) Enter(slot);
}

void DependentArray::MakeRoomInIndex() {
    if (m_pIndex ? std::size_t(m_pIndex->used) * 2 >= m_pIndex->table.size()
                 : m_nDependents + 1 >= kIndexedFrom)
        BuildIndex();
}

void DependentArray::Add(CCRef * ref) {
    int const slots = Slots();
    if (std::has_single_bit(unsigned(slots)) || slots == 0) {
        std::size_t const room = slots ? std::size_t(slots) * 2 : 1;
        void * grown = std::realloc(m_ppDependents, room * sizeof(CCRef *));
        if (!grown) throw std::bad_alloc();
        m_ppDependents = static_cast<CCRef **>(grown);
    }
    MakeRoomInIndex();
    m_ppDependents[slots] = ref;
    if (m_nDependents == m_nDependentsCap) m_nDependentsCap += kGrowth;
    ++m_nDependents;
    if (!m_pIndex) return;
    ++m_pIndex->slots;
    Enter(slots);
}

void DependentArray::Forget(int slot) {
    std::vector<std::uint32_t> & table = m_pIndex->table;
    std::size_t const mask = table.size() - 1;
    std::size_t at = RefHash(m_ppDependents[slot]) & mask;
    while (table[at] != std::uint32_t(slot) + 1) at = (at + 1) & mask;
    table[at] = kGone;
}

void DependentArray::Replace(int slot, CCRef * ref) {
    MakeRoomInIndex();
    if (m_pIndex) Forget(slot);
    delete std::exchange(m_ppDependents[slot], ref);
    if (m_pIndex) Enter(slot);
}

void DependentArray::Remove(int slot) {
    std::unique_ptr<CCRef> const ref(m_ppDependents[slot]);
    if (m_pIndex) {
        Forget(slot);
        m_ppDependents[slot] = nullptr;
        --m_nDependents;
        if (m_pIndex->slots > 2 * m_nDependents + kIndexedFrom) Squeeze();
    } else {
        std::copy(m_ppDependents + slot + 1, m_ppDependents + m_nDependents, m_ppDependents + slot);
        --m_nDependents;
    }
}

void DependentArray::Squeeze() {
    if (!m_pIndex || m_pIndex->slots == m_nDependents) return;
    std::remove(m_ppDependents, m_ppDependents + m_pIndex->slots, static_cast<CCRef *>(nullptr));
    m_pIndex.reset();
    // The next entry makes room for itself where the count is a power of two.
    std::size_t const room = std::bit_ceil(std::size_t(std::max(m_nDependents, 1)));
    if (void * fitted = std::realloc(m_ppDependents, room * sizeof(CCRef *)))
        m_ppDependents = static_cast<CCRef **>(fitted);
    try {
        if (m_nDependents >= kIndexedFrom) BuildIndex();
    } catch (std::bad_alloc const &) {
        // Without an index, entries are searched one by one until the next one is added.
    }
}

CCRef * const * DependentArray::Entries() {
    Squeeze();
    return m_ppDependents;
}

void DependentArray::Clear() {
    ForEach([](CCRef * ref) { delete ref; });
    std::free(m_ppDependents);
    m_ppDependents = nullptr;
    m_nDependents = m_nDependentsCap = 0;
    m_pIndex.reset();
}

} // namespace cells::internal
