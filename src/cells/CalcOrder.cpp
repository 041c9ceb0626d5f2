#include "cells/CalcOrder.h"

#include "formula/CCRef.h"

#include <algorithm>

SCCalcEntry::~SCCalcEntry() { delete m_pRef; }

namespace cells::internal {
namespace {

constexpr std::uint64_t kEndOfLabels = std::uint64_t(1) << 62;
constexpr std::uint64_t kStride = std::uint64_t(1) << 32; // between neighbours at the ends

} // namespace

// The middle of the gap; at an open end, a stride away where there is room.
bool CalcOrder::FindLabel(SCCalcEntry const * before, SCCalcEntry const * behind,
                          std::uint64_t & label) const {
    if (!before && !behind) {
        label = kEndOfLabels / 2;
        return true;
    }
    std::uint64_t const low = before ? before->label : 0;
    std::uint64_t const high = behind ? behind->label : kEndOfLabels;
    if (high - low < 2) return false;
    std::uint64_t const half = (high - low) / 2;
    if (!behind)
        label = low + std::min(half, kStride);
    else if (!before)
        label = high - std::min(half, kStride);
    else
        label = low + half;
    return true;
}

// Gives room around an entry: the smallest range of labels about it, a power of two wide, that
// holds few enough entries for its size, is filled evenly.
void CalcOrder::Spread(SCCalcEntry * crowded) {
    constexpr double kGrowth = 1.4; // entries that a range may hold, a doubling of its width
    SCCalcEntry *first = crowded, *last = crowded;
    std::uint64_t count = 1, base = 0, width = 1;
    double capacity = 1;
    do {
        width *= 2;
        capacity *= kGrowth;
        base = crowded->label & ~(width - 1);
        while (first->previous && first->previous->label >= base) first = first->previous, ++count;
        while (last->next && last->next->label < base + width) last = last->next, ++count;
    } while (width < kEndOfLabels && (double(count) >= capacity || width / count < 4));
    std::uint64_t const step = width / count;
    for (std::uint64_t label = base + step / 2; count > 0; --count, label += step) {
        first->label = label;
        first = first->next;
    }
}

void CalcOrder::InsertAfter(SCCalcEntry * place, SCCalcEntry * entry) {
    SCCalcEntry * const behind = place ? place->next : m_First;
    while (!FindLabel(place, behind, entry->label)) Spread(place ? place : behind);
    entry->previous = place;
    entry->next = behind;
    (place ? place->next : m_First) = entry;
    (behind ? behind->previous : m_Last) = entry;
    entry->m_nIndex = 0;
}

void CalcOrder::Remove(SCCalcEntry * entry) {
    (entry->previous ? entry->previous->next : m_First) = entry->next;
    (entry->next ? entry->next->previous : m_Last) = entry->previous;
    entry->previous = entry->next = nullptr;
    entry->m_nIndex = -1;
}

SCCalcEntry * CalcOrder::At(int index) const {
    SCCalcEntry * entry = m_First;
    while (entry && index-- > 0) entry = entry->next;
    return entry;
}

int CalcOrder::IndexOf(SCCalcEntry const * entry) const {
    if (entry->m_nIndex < 0) return -1;
    int index = 0;
    while ((entry = entry->previous)) ++index;
    return index;
}

} // namespace cells::internal
