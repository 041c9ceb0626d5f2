// RecalcList: a queue of references, in order, duplicates allowed; the base of
// CCCellManager::CCRecalcList.
//
// Recalculation asks a queue three things all the time: is an equal reference in it, which of two
// stands first, and append one. So the nodes carry a growing stamp (order in the list is order of
// stamps, since nodes are only ever appended), and a longer queue keeps a hash from a reference to
// its first node. Most references are cells; a cell with its sheet is held as a number, and becomes
// an object only when someone asks for one. References of a host's own classes stay objects.
//
// Whoever asks for the standard list gets one; the queue takes its references back when it is next
// needed.
#pragma once

#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"

#include <cstdint>
#include <list>
#include <vector>

struct CCRefList;

namespace cells::internal {

class CVCELLS_API RecalcList {
public:
    using Node = std::int32_t;
    using Stamp = std::uint64_t;
    static constexpr Node kNone = -1;

    RecalcList() = default;
    RecalcList(RecalcList const &) = delete;
    RecalcList & operator=(RecalcList const &) = delete;
    virtual ~RecalcList();

    std::list<CCRef *>::iterator GetList() { return GetStdList().begin(); }
    std::list<CCRef *> & GetStdList();
    bool IsEmpty() const { return GetCount() == 0; }
    int GetCount() const { return m_bStandard ? int(m_Standard.size()) : m_nCount; }
    CCRef * GetFirst(); // null for an empty queue; the queue keeps it

    // Append copies, with no test for duplicates.
    void AddLast(CCRef const * ref);
    void AddLast(CCRefList const * list);
    // Removes the first equal node. A reference that the caller was given (GetFirst, GetStdList) or
    // has given (Append) lives on in the caller's hands.
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
    Node Next(Node node) const { return At(node).next; }
    Stamp StampOf(Node node) const { return At(node).stamp; }
    // The node behind one that had this stamp and may be gone.
    Node NextAfter(Node node, Stamp stamp);
    Node Find(CCRef const * ref); // the first equal node
    void MoveToTail(Node node);
    CCRef * Unlink(Node node); // the reference is the caller's
    void Append(CCRef * ref);  // takes it over
    // Removes the node at the head, if it still has this stamp, and else the first equal one.
    void RemoveDone(Node node, Stamp stamp, CCRef const * ref);

    // Whether a node is known to be the first of its equals without a search.
    bool IsFirst(Node node) const { return !m_Index.empty() && At(node).first; }
    // The stamp that a node had before it was moved to the tail, and whether it was expanded.
    Stamp OriginOf(Node node) const { return At(node).origin; }
    bool MarkExpanded(Node node); // true the first time
    Stamp NextStamp() const { return m_nStamp; }

    // The reference of an exact key.
    class Unpacked {
    public:
        CCRef * Set(std::uint64_t key);

    private:
        CCRCRef m_Cell;
        CCRef3D m_Placed;
    };

    // The reference of a node, alive as long as this object whatever happens to the queue.
    class CVCELLS_API Held {
    public:
        Held(RecalcList & list, Node node);
        Held(Held const &) = delete;
        Held & operator=(Held const &) = delete;
        ~Held();
        CCRef const * Get() const { return m_Ref; }

    private:
        friend class RecalcList;
        RecalcList & m_List;
        Held * m_Outer;
        CCRef * m_Ref;
        bool m_bPinned = false, m_bDropped = false;
        Unpacked m_Unpacked; // what m_Ref leads to for a node without an object
    };

    // An exact key stands for its reference: two of them are equal for equal references only. Where
    // a key is not exact, those of equal references are equal without regard to that bit.
    static std::uint64_t KeyOf(CCRef const * ref);
    static bool IsExact(std::uint64_t key) { return (key & kExact) != 0; }

private:
    struct Entry {
        CCRef * ref; // null for an exact key that nobody asked an object of
        std::uint64_t key;
        Stamp stamp, origin;
        Node previous, next;
        Node nextEqual, lastEqual; // nodes of equal references; the last is kept in the first
        bool expanded;
        bool lent;  // the object is known outside
        bool first; // of its equals; known while there is an index
    };
    struct Slot {
        std::uint32_t tag;
        Node node;
    };
    static constexpr int kIndexedFrom = 16;
    static constexpr Node kFree = -1, kGone = -2;
    static constexpr std::uint64_t kExact = 1ull << 63, kPlaced = 1ull << 62;

    Entry & At(Node node) { return m_Nodes[std::size_t(node)]; }
    Entry const & At(Node node) const { return m_Nodes[std::size_t(node)]; }
    CCRef * ObjectOf(Node node);
    bool IsSame(Node node, std::uint64_t key, CCRef const * ref) const;
    void Adopt();
    Node Link(CCRef * ref, std::uint64_t key, Stamp origin, bool expanded);
    CCRef * Detach(Node node);
    void Delete(CCRef * ref);
    void Reset();
    void BuildIndex();
    void Enter(Node node);
    void Leave(Node node);
    Slot * PlaceOf(std::uint64_t key, CCRef const * ref);

    std::vector<Entry> m_Nodes;
    Node m_Spare = kNone; // the first node to use again; they hang together by `next`
    Node m_Head = kNone, m_Tail = kNone;
    int m_nCount = 0;
    Stamp m_nStamp = 1;
    std::vector<Slot> m_Index; // first nodes by hash; empty while nobody searches a long queue
    int m_nIndexUsed = 0;
    Held * m_pHeld = nullptr;
    std::list<CCRef *> m_Standard;
    bool m_bStandard = false; // the references are in m_Standard
};

} // namespace cells::internal
