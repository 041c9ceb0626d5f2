#include "core/CCRecalcList.h"

#include "formula/CCRefList.h"
#include "formula/RefHash.h"

#include <bit>
#include <utility>

namespace cells::internal {

RecalcList::~RecalcList() { Empty(); }

// Takes the references back from the standard list.
void RecalcList::Adopt() {
    if (!m_bStandard) return;
    m_bStandard = false;
    std::list<CCRef *> const refs = std::move(m_Standard);
    m_Standard.clear();
    for (CCRef * ref : refs) Append(ref);
}

std::list<CCRef *> & RecalcList::GetStdList() {
    if (!m_bStandard) {
        for (Node node = m_Head; node != kNone; node = Next(node)) m_Standard.push_back(RefAt(node));
        Reset();
        m_bStandard = true;
    }
    return m_Standard;
}

CCRef * RecalcList::GetFirst() const {
    if (m_bStandard) return m_Standard.empty() ? nullptr : m_Standard.front();
    return m_Head == kNone ? nullptr : RefAt(m_Head);
}

RecalcList::Node RecalcList::First() {
    Adopt();
    return m_Head;
}

void RecalcList::Reset() {
    m_Nodes.clear();
    m_Spare.clear();
    m_Index.clear();
    m_Head = m_Tail = kNone;
    m_nCount = m_nIndexUsed = 0;
}

void RecalcList::Link(CCRef * ref, std::uint64_t origin, bool expanded) {
    Node node;
    if (m_Spare.empty()) {
        node = Node(m_Nodes.size());
        m_Nodes.push_back({});
    } else {
        node = m_Spare.back();
        m_Spare.pop_back();
    }
    std::uint64_t const stamp = m_nStamp++;
    m_Nodes[std::size_t(node)] = {ref,   stamp, origin ? origin : stamp, m_Tail, kNone, kNone,
                                  kNone, expanded};
    if (m_Tail == kNone)
        m_Head = node;
    else
        m_Nodes[std::size_t(m_Tail)].next = node;
    m_Tail = node;
    ++m_nCount;
    if (!m_Index.empty())
        Enter(node);
    else if (m_nCount > kIndexedFrom)
        BuildIndex();
}

void RecalcList::Append(CCRef * ref) {
    Adopt();
    Link(ref, 0, false);
}

void RecalcList::AddLast(CCRef const * ref) {
    if (ref) Append(ref->Copy());
}

void RecalcList::AddLast(CCRefList const * list) {
    for (; list; list = list->m_pNext) AddLast(list->m_pRef);
}

// Removes a node from the order and the index.
CCRef * RecalcList::Detach(Node node) {
    if (!m_Index.empty()) Leave(node);
    Entry & entry = m_Nodes[std::size_t(node)];
    (entry.previous == kNone ? m_Head : m_Nodes[std::size_t(entry.previous)].next) = entry.next;
    (entry.next == kNone ? m_Tail : m_Nodes[std::size_t(entry.next)].previous) = entry.previous;
    CCRef * const ref = entry.ref;
    entry.ref = nullptr;
    entry.stamp = 0;
    m_Spare.push_back(node);
    if (--m_nCount == 0) Reset();
    return ref;
}

CCRef * RecalcList::Unlink(Node node) { return Detach(node); }

void RecalcList::MoveToTail(Node node) {
    std::uint64_t const origin = OriginOf(node);
    bool const expanded = m_Nodes[std::size_t(node)].expanded;
    CCRef * const ref = Detach(node);
    Link(ref, origin, expanded);
}

bool RecalcList::MarkExpanded(Node node) { return !std::exchange(m_Nodes[std::size_t(node)].expanded, true); }

RecalcList::Node RecalcList::NextAfter(Node node, std::uint64_t stamp) {
    Adopt();
    if (std::size_t(node) < m_Nodes.size() && StampOf(node) == stamp) return Next(node);
    Node at = m_Head;
    while (at != kNone && StampOf(at) <= stamp) at = Next(at);
    return at;
}

RecalcList::Node RecalcList::Find(CCRef const * ref) {
    Adopt();
    if (!ref) return kNone;
    if (!m_Index.empty()) {
        std::int32_t const * const place = PlaceOf(ref);
        return place ? *place : kNone;
    }
    for (Node node = m_Head; node != kNone; node = Next(node))
        if (RefAt(node)->IsEqual(ref)) return node;
    return kNone;
}

void RecalcList::Exclude(CCRef const * ref) {
    Node const node = Find(ref);
    if (node != kNone) Detach(node);
}

void RecalcList::Exclude(CCRefList const * list) {
    for (; list; list = list->m_pNext) ExcludeDelete(list->m_pRef);
}

void RecalcList::ExcludeDelete(CCRef const * ref) {
    Adopt();
    bool const isHead = m_Head != kNone && RefAt(m_Head) == ref;
    Node const node = isHead ? m_Head : Find(ref);
    if (node != kNone) Delete(Detach(node));
}

void RecalcList::Delete(CCRef * ref) {
    for (Pin * pin = m_pPins; pin; pin = pin->m_Outer) {
        if (pin->m_Ref != ref) continue;
        pin->m_Dropped = true;
        return;
    }
    delete ref;
}

void RecalcList::Merge(RecalcList & other) {
    Adopt();
    other.Adopt();
    if (m_nCount == 0 && !m_pPins && !other.m_pPins) {
        std::swap(m_Nodes, other.m_Nodes);
        std::swap(m_Spare, other.m_Spare);
        std::swap(m_Index, other.m_Index);
        std::swap(m_Head, other.m_Head);
        std::swap(m_Tail, other.m_Tail);
        std::swap(m_nCount, other.m_nCount);
        std::swap(m_nStamp, other.m_nStamp);
        std::swap(m_nIndexUsed, other.m_nIndexUsed);
        return;
    }
    for (Node node = other.m_Head; node != kNone; node = other.Next(node)) Append(other.RefAt(node));
    other.Reset();
}

void RecalcList::Abort() {
    Adopt();
    Reset();
}

void RecalcList::Empty() {
    Adopt();
    for (Node node = m_Head; node != kNone; node = Next(node)) Delete(RefAt(node));
    Reset();
}

std::int32_t * RecalcList::PlaceOf(CCRef const * ref) {
    std::size_t const mask = m_Index.size() - 1;
    for (std::size_t at = RefHash(ref) & mask; m_Index[at] != kFree; at = (at + 1) & mask)
        if (m_Index[at] != kGone && RefAt(m_Index[at])->IsEqual(ref)) return &m_Index[at];
    return nullptr;
}

void RecalcList::BuildIndex() {
    m_Index.assign(std::bit_ceil(std::size_t(m_nCount) * 4), kFree);
    m_nIndexUsed = 0;
    for (Node node = m_Head; node != kNone; node = Next(node)) {
        m_Nodes[std::size_t(node)].nextEqual = m_Nodes[std::size_t(node)].lastEqual = kNone;
        Enter(node);
    }
}

void RecalcList::Enter(Node node) {
    if (std::size_t(m_nIndexUsed) * 2 >= m_Index.size()) return BuildIndex();
    std::size_t const mask = m_Index.size() - 1;
    std::size_t at = RefHash(RefAt(node)) & mask;
    for (; m_Index[at] != kFree; at = (at + 1) & mask) {
        if (m_Index[at] == kGone || !RefAt(m_Index[at])->IsEqual(RefAt(node))) continue;
        Entry & first = m_Nodes[std::size_t(m_Index[at])];
        Node const last = first.lastEqual == kNone ? m_Index[at] : first.lastEqual;
        m_Nodes[std::size_t(last)].nextEqual = node;
        first.lastEqual = node;
        return;
    }
    m_Index[at] = node;
    ++m_nIndexUsed;
}

// Only the first of equal nodes is ever removed; the next one takes its place.
void RecalcList::Leave(Node node) {
    std::int32_t * const place = PlaceOf(RefAt(node));
    if (!place || *place != node) return;
    Entry const & first = m_Nodes[std::size_t(node)];
    if (first.nextEqual == kNone) {
        *place = kGone;
        return;
    }
    Node const next = first.nextEqual;
    m_Nodes[std::size_t(next)].lastEqual = first.lastEqual == next ? kNone : first.lastEqual;
    *place = next;
}

} // namespace cells::internal
