// DependentArray: the live dependents of an item, owned references in the order of registration.
//
// Most items have no dependent or a few; one may have tens of thousands. Up to 16 entries a plain
// array is searched; beyond, a hash of slots finds an entry in constant time, and a removal only
// empties its slot. Empty slots are squeezed out before anyone can see the array, so that the order
// of the rest is all there is to know.
#pragma once

#include "formula/CCRef.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace cells::internal {

class CVCELLS_API DependentArray {
public:
    static constexpr int kGrowth = 10; // the capacity that is reported grows by so much

    DependentArray() = default;
    DependentArray(DependentArray const &) = delete;
    DependentArray & operator=(DependentArray const &) = delete;
    ~DependentArray() { Clear(); }

    int Count() const { return m_nDependents; }
    int Capacity() const { return m_nDependentsCap; }
    // Makes the reported capacity larger.
    void Grow(int count) { m_nDependentsCap += count; }

    // The slot of the first equal entry, or -1. It stays valid until the next change.
    int Find(CCRef const * ref) const;
    CCRef * At(int slot) const { return m_ppDependents[slot]; }
    // Both take the reference over, unless they throw.
    void Add(CCRef * ref);
    void Replace(int slot, CCRef * ref);
    void Remove(int slot);
    void Clear();

    // The entries without gaps: a position is a slot.
    CCRef * const * Entries();

    // Calls `visit` with every entry in order.
    template <typename Visit>
    void ForEach(Visit && visit) const {
        for (int slot = 0, end = Slots(); slot < end; ++slot)
            if (m_ppDependents[slot]) visit(m_ppDependents[slot]);
    }

private:
    static constexpr int kIndexedFrom = 16;
    static constexpr std::uint32_t kFree = 0, kGone = 0xFFFFFFFF;

    struct Index {
        std::vector<std::uint32_t> table; // slot + 1, kFree or kGone; a power of two long
        int slots = 0;                    // entries and gaps
        int used = 0;                     // places of the table that are not free
    };

    int Slots() const { return m_pIndex ? m_pIndex->slots : m_nDependents; }
    void BuildIndex();
    void MakeRoomInIndex();
    void Forget(int slot);
    void Enter(int slot);
    int FindInIndex(CCRef const * ref) const;
    void Squeeze();

    int m_nDependents = 0;
    int m_nDependentsCap = 0;
    CCRef ** m_ppDependents = nullptr; // of malloc; room for the next power of two
    std::unique_ptr<Index> m_pIndex;
};

} // namespace cells::internal
