// CCRecalcList: a queue of owned references, in order, duplicates allowed.
//
// Recalculation asks a queue three things all the time: is an equal reference in it, which of two
// stands first, and append one. So the nodes carry a growing stamp (order in the list is order of
// stamps, since nodes are only ever appended), and a longer queue keeps a hash from a reference to
// its first node. Whoever asks for the standard list gets one; the queue is indexed anew when it is
// next needed.
#pragma once

#include "formula/CCRef.h"

#include <cstdint>
#include <list>
#include <vector>

struct CCRefList;

namespace cells::internal {

class CVCELLS_API RecalcList {
public:
    using Node = std::int32_t;
    static constexpr Node kNone = -1;

    RecalcList() = default;
    RecalcList(RecalcList const &) = delete;
    RecalcList & operator=(RecalcList const &) = delete;
    virtual ~RecalcList();

    std::list<CCRef *>::iterator GetList() { return GetStdList().begin(); }
    std::list<CCRef *> & GetStdList();
    bool IsEmpty() const { return GetCount() == 0; }
    int GetCount() const { return m_bStandard ? int(m_Standard.size()) : m_nCount; }
    CCRef * GetFirst() const; // null for an empty queue

    // Append copies, with no test for duplicates.
    void AddLast(CCRef const * ref);
    void AddLast(CCRefList const * list);
    // Removes the first equal node; its reference lives on in the hands of the caller.
    void Exclude(CCRef const * ref);
    // For each member removes the first equal node and deletes its reference. The difference is
    // meant so.
    void Exclude(CCRefList const * list);
    void ExcludeDelete(CCRef const * ref);
    // Appends the references of `other`, which is left empty.
    void Merge(RecalcList & other);
    void Abort(); // empties the queue and deletes nothing
    void Empty();

    // The nodes, for passes over the queue.
    Node First();
    Node Next(Node node) const { return m_Nodes[std::size_t(node)].next; }
    CCRef * RefAt(Node node) const { return m_Nodes[std::size_t(node)].ref; }
    std::uint64_t StampOf(Node node) const { return m_Nodes[std::size_t(node)].stamp; }
    // The node behind one that had this stamp and may be gone.
    Node NextAfter(Node node, std::uint64_t stamp);
    Node Find(CCRef const * ref); // the first equal node
    void MoveToTail(Node node);
    CCRef * Unlink(Node node); // the reference is the caller's
    void Append(CCRef * ref);  // takes it over

    // The stamp that a node had before it was moved to the tail, and whether it was expanded.
    std::uint64_t OriginOf(Node node) const { return m_Nodes[std::size_t(node)].origin; }
    bool MarkExpanded(Node node); // true the first time
    std::uint64_t NextStamp() const { return m_nStamp; }

    // Keeps the reference of the head alive over a call that may change the queue.
    class Pin {
    public:
        Pin(RecalcList & list, CCRef * ref) : m_List(list), m_Ref(ref), m_Outer(list.m_pPins) {
            list.m_pPins = this;
        }
        Pin(Pin const &) = delete;
        Pin & operator=(Pin const &) = delete;
        ~Pin() {
            m_List.m_pPins = m_Outer;
            if (m_Dropped) delete m_Ref;
        }

    private:
        friend class RecalcList;
        RecalcList & m_List;
        CCRef * m_Ref;
        Pin * m_Outer;
        bool m_Dropped = false;
    };

private:
    struct Entry {
        CCRef * ref;
        std::uint64_t stamp, origin;
        Node previous, next;
        Node nextEqual, lastEqual; // nodes of equal references; the last is kept in the first
        bool expanded;
    };
    static constexpr int kIndexedFrom = 16;
    static constexpr std::int32_t kFree = -1, kGone = -2;

    void Adopt();
    void Link(CCRef * ref, std::uint64_t origin, bool expanded);
    CCRef * Detach(Node node);
    void Delete(CCRef * ref);
    void Reset();
    void BuildIndex();
    void Enter(Node node);
    void Leave(Node node);
    std::int32_t * PlaceOf(CCRef const * ref);

    std::vector<Entry> m_Nodes;
    std::vector<Node> m_Spare;
    Node m_Head = kNone, m_Tail = kNone;
    int m_nCount = 0;
    std::uint64_t m_nStamp = 1;
    std::vector<std::int32_t> m_Index; // first nodes by hash; empty while the queue is short
    int m_nIndexUsed = 0;
    Pin * m_pPins = nullptr;
    std::list<CCRef *> m_Standard;
    bool m_bStandard = false; // the references are in m_Standard
};

} // namespace cells::internal
