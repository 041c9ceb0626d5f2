#include "formula/CCRefList.h"

#include "formula/RefHash.h"
#include "platform/NodePool.h"

#include <unordered_set>

using cells::internal::FreeRefNode;
using cells::internal::NewRefNode;
using SCRefPool = cells::internal::NodePool<CCRefList>;

namespace cells::internal {

CCRefList * NewRefNode(CCRef * ref, bool owned) {
    return new (SCRefPool::Take()) CCRefList{ref, nullptr, owned};
}

void FreeRefNode(CCRefList * node, bool deleteAll) {
    if (deleteAll || node->m_bOwned) delete node->m_pRef;
    SCRefPool::Give(node);
}

} // namespace cells::internal

namespace {

constexpr int kLongList = 16; // from here on a hash set is faster than a search

bool IsLong(CCRefList const * list) {
    int count = 0;
    for (; list && count <= kLongList; list = list->m_pNext) ++count;
    return count > kLongList;
}

// Unlinks and frees the members of `into` for which the test holds.
template <typename Test>
void RemoveMembers(CCRefList ** into, Test && isMember) {
    while (*into) {
        CCRefList * const node = *into;
        if (node->m_pRef && isMember(node->m_pRef)) {
            *into = node->m_pNext;
            FreeRefNode(node, false);
        } else {
            into = &node->m_pNext;
        }
    }
}

} // namespace

void RefListAddLastItem(CCRefList *& list, CCRef const * ref) {
    CCRefList ** end = &list;
    while (*end) end = &(*end)->m_pNext;
    *end = NewRefNode(ref ? ref->Copy() : nullptr, true);
}

void RefListAddUItem(CCRefList *& list, CCRef const * ref) {
    if (!ref || RefListHasMember(list, ref)) return;
    CCRefList * const node = NewRefNode(ref->Copy(), true);
    node->m_pNext = list;
    list = node;
}

int RefListHasMember(CCRefList const * list, CCRef const * ref) {
    for (; ref && list; list = list->m_pNext)
        if (list->m_pRef && list->m_pRef->IsEqual(ref)) return 1;
    return 0;
}

void JoinRefList(CCRefList ** into, CCRefList * from) {
    if (IsLong(*into) && IsLong(from)) {
        cells::internal::RefSet members;
        for (CCRefList * node = from; node; node = node->m_pNext)
            if (node->m_pRef) members.insert(node->m_pRef);
        RemoveMembers(into, [&](CCRef * ref) { return members.count(ref) != 0; });
    } else {
        RemoveMembers(into, [&](CCRef * ref) { return RefListHasMember(from, ref) != 0; });
    }
    while (*into) into = &(*into)->m_pNext;
    *into = from;
}

void RefListFree(CCRefList * list, int deleteAll) {
    while (list) {
        CCRefList * const next = list->m_pNext;
        FreeRefNode(list, deleteAll != 0);
        list = next;
    }
}

CCRefList * CopyRefList(CCRefList const * list) {
    cells::internal::RefListBuilder copy;
    for (; list; list = list->m_pNext)
        copy.Add(list->m_pRef ? list->m_pRef->Copy() : nullptr, true);
    return copy.Release();
}
