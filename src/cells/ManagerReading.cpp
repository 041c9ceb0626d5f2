// CCCellManager: values and walks.
#include "cells/CCCellManager.h"
#include "cells/Resolve.h"
#include "platform/Arrays.h"

#include <algorithm>
#include <new>

using cells::internal::Place;
using cells::internal::Resolve;

namespace {

constexpr std::size_t kMostHandles = 65535;

long long ElementsOf(CSize const & size) {
    return size.cx > 0 && size.cy > 0 ? static_cast<long long>(size.cx) * size.cy : 0;
}

} // namespace

int CCCellManager::IsValidRef(CCRef const * ref) {
    return ref && Resolve(*this, ref).item != nullptr;
}

int CCCellManager::IsSingleValue(CCRef const * ref) {
    return ref && Resolve(*this, ref).item != nullptr;
}

int CCCellManager::GetValue(CCRef const * ref, CCCellValue & value, int index) {
    if (index != 0 || !ref) return 0;
    CCCellManager * owner;
    CCCell const * const cell = CellAt(ref, owner);
    if (!cell) return 0;
    cell->GetValue(value);
    return 1;
}

ushort CCCellManager::OpenRef(CCRef const * ref) {
    if (!ref || !IsValidRef(ref)) return 0;
    CSize const size = GetRefSize(ref);
    std::size_t index = m_nFirstFree;
    while (index < m_OpenRefs.size() && m_OpenRefs[index].m_pRef) ++index;
    if (index >= kMostHandles) return 0;
    try {
        std::unique_ptr<CCRef> copy(ref->Copy());
        if (index == m_OpenRefs.size()) m_OpenRefs.emplace_back();
        m_OpenRefs[index].m_pRef = std::move(copy);
    } catch (std::bad_alloc const &) {
        return 0;
    }
    m_nFirstFree = index + 1;
    SCOpenRef & slot = m_OpenRefs[index];
    slot.m_nPos = 0;
    slot.m_Size = size;
    slot.m_nStamp = ++m_nOpenStamp;
    return ushort(index + 1);
}

CCCellManager::SCOpenRef * CCCellManager::OpenSlot(ushort handle) {
    if (handle == 0 || handle > m_OpenRefs.size()) return nullptr;
    SCOpenRef & slot = m_OpenRefs[std::size_t(handle - 1)];
    return slot.m_pRef ? &slot : nullptr;
}

int CCCellManager::RefSize(ushort handle, CSize & size) {
    SCOpenRef const * const slot = OpenSlot(handle);
    if (!slot) return 0;
    size = slot->m_Size;
    return 1;
}

int CCCellManager::NextValue(ushort handle, CCCellValue & value) {
    SCOpenRef * const slot = OpenSlot(handle);
    if (!slot || slot->m_nPos >= ElementsOf(slot->m_Size)) return 0;
    long long const position = slot->m_nPos++;
    // The table may grow while the host reads, so the slot is not touched again.
    CCRef const * const ref = slot->m_pRef.get();
    bool const inRange = position <= INT32_MAX;
    if (!inRange || !GetValue(ref, value, int(position))) value.Set(errRef);
    return 1;
}

int CCCellManager::SkipValue(ushort handle) {
    SCOpenRef * const slot = OpenSlot(handle);
    if (!slot || slot->m_nPos >= ElementsOf(slot->m_Size)) return 0;
    ++slot->m_nPos;
    return 1;
}

int CCCellManager::CloseRef(ushort handle) {
    SCOpenRef * const slot = OpenSlot(handle);
    if (!slot) return 0;
    slot->m_pRef.reset();
    m_nFirstFree = std::min(m_nFirstFree, std::size_t(handle - 1));
    return 1;
}

void CCCellManager::CloseOpenedSince(unsigned long long stamp) {
    for (std::size_t i = 0; i < m_OpenRefs.size(); ++i)
        if (m_OpenRefs[i].m_pRef && m_OpenRefs[i].m_nStamp > stamp) CloseRef(ushort(i + 1));
}

int CCCellManager::GetOpenRefCount() const {
    return int(std::count_if(m_OpenRefs.begin(), m_OpenRefs.end(),
                             [](SCOpenRef const & slot) { return slot.m_pRef != nullptr; }));
}

// Reads a whole row at the position, which then stands after it.
int CCCellManager::LoadRecord(SCOpenRef & slot, CPtrArray & values) {
    FreeValueArray(values);
    long long const end = ElementsOf(slot.m_Size);
    if (slot.m_nPos >= end) return 0;
    int const width = slot.m_Size.cx;
    long long const first = slot.m_nPos;
    slot.m_nPos = std::min(first + width, end);
    CCRef const * const ref = slot.m_pRef.get();
    values.SetSize(width);
    for (int column = 0; column < width; ++column) {
        auto value = std::make_unique<CCCellValue>();
        bool const inRange = first + column <= INT32_MAX;
        if (!inRange || !GetValue(ref, *value, int(first + column))) value->Set(errRef);
        values.SetAt(column, value.release());
    }
    return 1;
}

int CCCellManager::ReadRecordAt(ushort handle, CPtrArray & values, long long position) {
    SCOpenRef * const slot = OpenSlot(handle);
    if (!slot) return 0;
    slot->m_nPos = std::max(position, 0LL);
    return LoadRecord(*slot, values);
}

int CCCellManager::GetFirstRecord(ushort handle, CPtrArray & values) {
    return ReadRecordAt(handle, values, 0);
}

int CCCellManager::GetNextRecord(ushort handle, CPtrArray & values) {
    SCOpenRef const * const slot = OpenSlot(handle);
    return slot ? ReadRecordAt(handle, values, slot->m_nPos) : 0;
}

int CCCellManager::GetPreviousRecord(ushort handle, CPtrArray & values) {
    SCOpenRef const * const slot = OpenSlot(handle);
    return slot ? ReadRecordAt(handle, values, slot->m_nPos - 2LL * slot->m_Size.cx) : 0;
}

int CCCellManager::GetLastRecord(ushort handle, CPtrArray & values) {
    SCOpenRef const * const slot = OpenSlot(handle);
    return slot ? ReadRecordAt(handle, values, (slot->m_Size.cy - 1LL) * slot->m_Size.cx) : 0;
}

int CCCellManager::GetRecord(ushort handle, int number, CPtrArray & values) {
    SCOpenRef const * const slot = OpenSlot(handle);
    if (!slot || number < 1 || number > slot->m_Size.cy) return 0;
    return ReadRecordAt(handle, values, (number - 1LL) * slot->m_Size.cx);
}
