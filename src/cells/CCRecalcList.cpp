#include "cells/CCRecalcList.h"

#include "formula/CCRefList.h"
#include "formula/RefHash.h"

#include <bit>
#include <memory>
#include <new>
#include <typeinfo>
#include <utility>

namespace cells::internal {
namespace {

// Spreads the bits of a key over a word: the multiplier is 2^64 over the golden ratio.
std::uint64_t Mix(std::uint64_t key) {
    key *= 0x9E3779B97F4A7C15ull;
    return key ^ key >> 32;
}

} // namespace

RecalcList::~RecalcList() { Empty(); }

// A cell, plain or on a sheet, fits into a key; anything else is hashed. A host's class may add to
// what makes a cell another one, or share its place with a plain cell that it equals: its key is
// that of the place, and not exact.
std::uint64_t RecalcList::KeyOf(CCRef const * ref) {
    bool const placed = ref->GetType() == kRefSheets;
    CCRef const * const inner = placed ? static_cast<CCRef3D const *>(ref)->ref : ref;
    if (!inner || inner->GetType() != kRefCell) return RefHash(ref) & ~kExact;
    auto const & cell = *static_cast<CCRCRef const *>(inner);
    std::uint64_t key = std::uint64_t(cell.col) << 16 | cell.row;
    if (placed) key |= kPlaced | static_cast<CCRef3D const *>(ref)->SheetKey() << 24;
    bool const own =
        typeid(*inner) == typeid(CCRCRef) && (!placed || typeid(*ref) == typeid(CCRef3D));
    return own ? key | kExact : key;
}

CCRef * RecalcList::Unpacked::Set(std::uint64_t key) {
    m_Cell.Set(uchar(key >> 16), ushort(key));
    if (!(key & kPlaced)) return &m_Cell;
    m_Placed.Borrow((key & ~(kExact | kPlaced)) >> 24, &m_Cell);
    return &m_Placed;
}

RecalcList::Held::Held(RecalcList & list, Node node) : m_List(list), m_Outer(list.m_pHeld) {
    Entry const & entry = list.At(node);
    list.m_pHeld = this;
    m_Ref = entry.ref;
    m_bPinned = m_Ref != nullptr;
    if (!m_bPinned) m_Ref = m_Unpacked.Set(entry.key);
}

RecalcList::Held::~Held() {
    m_List.m_pHeld = m_Outer;
    if (m_bDropped) delete m_Ref;
}

// The reference of a node as an object, made when it is first asked for.
CCRef * RecalcList::ObjectOf(Node node) {
    if (!At(node).ref) {
        Held const held(*this, node);
        At(node).ref = held.Get()->Copy();
    }
    return At(node).ref;
}

bool RecalcList::IsSame(Node node, std::uint64_t key, CCRef const * ref) const {
    Entry const & entry = At(node);
    if ((entry.key ^ key) & ~kExact) return false;
    if (IsExact(entry.key) && IsExact(key)) return true;
    Unpacked own, other;
    CCRef const * const held = entry.ref ? entry.ref : own.Set(entry.key);
    return held->IsEqual(ref ? ref : other.Set(key)) != 0;
}

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
        for (Node node = m_Head; node != kNone; node = Next(node))
            m_Standard.push_back(ObjectOf(node));
        Reset();
        m_bStandard = true;
    }
    return m_Standard;
}

CCRef * RecalcList::GetFirst() {
    if (m_bStandard) return m_Standard.empty() ? nullptr : m_Standard.front();
    if (m_Head == kNone) return nullptr;
    CCRef * const first = ObjectOf(m_Head);
    At(m_Head).lent = true;
    return first;
}

RecalcList::Node RecalcList::First() {
    Adopt();
    return m_Head;
}

void RecalcList::Reset() {
    m_Nodes.clear();
    m_Index.clear();
    m_Head = m_Tail = m_Spare = kNone;
    m_nCount = m_nIndexUsed = 0;
}

RecalcList::Node RecalcList::Link(CCRef * ref, std::uint64_t key, Stamp origin, bool expanded) {
    Node node;
    if (m_Spare == kNone) {
        node = Node(m_Nodes.size());
        m_Nodes.emplace_back();
    } else {
        node = m_Spare;
        m_Spare = At(node).next;
    }
    Stamp const stamp = m_nStamp++;
    At(node) = {ref,      key,   stamp, origin ? origin : stamp, m_Tail, kNone, kNone, kNone,
                expanded, false, false};
    (m_Tail == kNone ? m_Head : At(m_Tail).next) = node;
    m_Tail = node;
    ++m_nCount;
    if (!m_Index.empty()) Enter(node);
    return node;
}

void RecalcList::Append(CCRef * ref) {
    Adopt();
    At(Link(ref, KeyOf(ref), 0, false)).lent = true;
}

void RecalcList::AddLast(CCRef const * ref) {
    if (!ref) return;
    Adopt();
    std::uint64_t const key = KeyOf(ref);
    std::unique_ptr<CCRef> copy(IsExact(key) ? nullptr : ref->Copy());
    Link(copy.get(), key, 0, false);
    copy.release();
}

void RecalcList::AddLast(CCRefList const * list) {
    for (; list; list = list->m_pNext) AddLast(list->m_pRef);
}

// Removes a node from the order and the index; gives its object, if it has one.
CCRef * RecalcList::Detach(Node node) {
    if (!m_Index.empty()) Leave(node);
    Entry & entry = At(node);
    (entry.previous == kNone ? m_Head : At(entry.previous).next) = entry.next;
    (entry.next == kNone ? m_Tail : At(entry.next).previous) = entry.previous;
    CCRef * const ref = entry.ref;
    entry.ref = nullptr;
    entry.stamp = 0;
    entry.next = std::exchange(m_Spare, node);
    if (--m_nCount == 0) Reset();
    return ref;
}

CCRef * RecalcList::Unlink(Node node) {
    ObjectOf(node);
    return Detach(node);
}

void RecalcList::MoveToTail(Node node) {
    Entry const entry = At(node);
    CCRef * const ref = Detach(node);
    At(Link(ref, entry.key, entry.origin, entry.expanded)).lent = entry.lent;
}

bool RecalcList::MarkExpanded(Node node) { return !std::exchange(At(node).expanded, true); }

RecalcList::Node RecalcList::NextAfter(Node node, Stamp stamp) {
    Adopt();
    if (std::size_t(node) < m_Nodes.size() && StampOf(node) == stamp) return Next(node);
    Node at = m_Head;
    while (at != kNone && StampOf(at) <= stamp) at = Next(at);
    return at;
}

RecalcList::Node RecalcList::Find(CCRef const * ref) {
    Adopt();
    if (!ref) return kNone;
    std::uint64_t const key = KeyOf(ref);
    if (m_Index.empty() && m_nCount > kIndexedFrom) BuildIndex();
    if (!m_Index.empty()) {
        Slot const * const place = PlaceOf(key, ref);
        return place ? place->node : kNone;
    }
    for (Node node = m_Head; node != kNone; node = Next(node))
        if (IsSame(node, key, ref)) return node;
    return kNone;
}

void RecalcList::Exclude(CCRef const * ref) {
    Node const node = Find(ref);
    if (node == kNone) return;
    bool const lent = At(node).lent;
    CCRef * const excluded = Detach(node);
    if (!lent && excluded != ref) Delete(excluded);
}

void RecalcList::Exclude(CCRefList const * list) {
    for (; list; list = list->m_pNext) ExcludeDelete(list->m_pRef);
}

void RecalcList::ExcludeDelete(CCRef const * ref) {
    Node const node = Find(ref);
    if (node != kNone) Delete(Detach(node));
}

// Taking from the head again and again needs no index; a search later builds it anew.
void RecalcList::RemoveDone(Node node, Stamp stamp, CCRef const * ref) {
    Adopt();
    if (m_Head != node || m_Head == kNone || StampOf(node) != stamp) return ExcludeDelete(ref);
    m_Index.clear();
    Delete(Detach(node));
}

void RecalcList::Delete(CCRef * ref) {
    for (Held * held = ref ? m_pHeld : nullptr; held; held = held->m_Outer) {
        if (!held->m_bPinned || held->m_Ref != ref) continue;
        held->m_bDropped = true;
        return;
    }
    delete ref;
}

void RecalcList::Merge(RecalcList & other) {
    Adopt();
    other.Adopt();
    if (m_nCount == 0 && !m_pHeld && !other.m_pHeld) {
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
    for (Node node = other.m_Head; node != kNone; node = other.Next(node))
        At(Link(other.At(node).ref, other.At(node).key, 0, false)).lent = other.At(node).lent;
    other.Reset();
}

void RecalcList::Abort() {
    Adopt();
    Reset();
}

void RecalcList::Empty() {
    Adopt();
    for (Node node = m_Head; node != kNone; node = Next(node)) Delete(At(node).ref);
    Reset();
}

RecalcList::Slot * RecalcList::PlaceOf(std::uint64_t key, CCRef const * ref) {
    std::size_t const mask = m_Index.size() - 1;
    std::uint64_t const hash = Mix(key & ~kExact);
    for (std::size_t at = hash & mask; m_Index[at].node != kFree; at = (at + 1) & mask) {
        Slot & slot = m_Index[at];
        if (slot.node != kGone && slot.tag == std::uint32_t(hash >> 32) &&
            IsSame(slot.node, key, ref))
            return &slot;
    }
    return nullptr;
}

// Where memory ends, the queue has no index and is searched node by node.
void RecalcList::BuildIndex() {
    try {
        m_Index.assign(std::bit_ceil(std::size_t(m_nCount) * 4), {0, kFree});
    } catch (std::bad_alloc const &) {
        m_Index.clear();
        return;
    }
    m_nIndexUsed = 0;
    for (Node node = m_Head; node != kNone; node = Next(node)) {
        At(node).nextEqual = At(node).lastEqual = kNone;
        At(node).first = false;
        Enter(node);
    }
}

void RecalcList::Enter(Node node) {
    if (std::size_t(m_nIndexUsed) * 2 >= m_Index.size()) return BuildIndex();
    Entry const & entry = At(node);
    if (Slot const * place = PlaceOf(entry.key, entry.ref)) {
        Entry & first = At(place->node);
        Node const last = first.lastEqual == kNone ? place->node : first.lastEqual;
        At(last).nextEqual = node;
        first.lastEqual = node;
        return;
    }
    std::uint64_t const hash = Mix(entry.key & ~kExact);
    std::size_t const mask = m_Index.size() - 1;
    std::size_t at = hash & mask;
    while (m_Index[at].node != kFree) at = (at + 1) & mask;
    m_Index[at] = {std::uint32_t(hash >> 32), node};
    At(node).first = true;
    ++m_nIndexUsed;
}

// Only the first of equal nodes is ever removed; the next one takes its place.
void RecalcList::Leave(Node node) {
    Slot * const place = PlaceOf(At(node).key, At(node).ref);
    if (!place || place->node != node) return;
    Entry const & first = At(node);
    place->node = first.nextEqual == kNone ? kGone : first.nextEqual;
    if (first.nextEqual == kNone) return;
    At(first.nextEqual).lastEqual = first.lastEqual == first.nextEqual ? kNone : first.lastEqual;
    At(first.nextEqual).first = true;
}

} // namespace cells::internal
