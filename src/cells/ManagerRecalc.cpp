// CCCellManager: recalculation. A manager of a workbook leaves it to the workbook's CCCalcCache;
// what follows is a lone manager's.
//
// A change queues what it touches in the process list; the expansion pass (PatchDoProcess) walks
// that list while it grows and keeps every dependent after the precedent that feeds it, so that it
// ends as a calculation order; DoRecalc computes down that order. Nothing is computed on reading.
//
// The expansion may visit a reference again whenever it has to move further back. Where that
// would take too long (a long column over one common parameter, or a cycle), the pass starts anew
// and orders the closure in one linear sweep instead; see OrderLinearly.
#include "cells/CCCellManager.h"
#include "cells/CCWorkbook.h"
#include "cells/Guards.h"
#include "cells/Resolve.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefList.h"
#include "formula/CCRemoteRef.h"
#include "formula/RefHash.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

using cells::internal::MakeDependentRef;
using cells::internal::Place;
using cells::internal::RecalcList;
using cells::internal::RefListHolder;
using cells::internal::Resolve;
using cells::internal::SessionGuard;
using Node = RecalcList::Node;

namespace {

constexpr int kProcessTick = 16, kRecalcTick = 64; // steps between two ticks to the host
constexpr int kProcessSlice = 16, kRecalcSlice = 64;
constexpr std::uint64_t kFreeSteps = 4096; // an expansion of so many steps is never cut short

} // namespace

void Adjust3DDependencies(CCRef const * ref, CCRefList * list) {
    if (!ref || ref->Kind() != kRefSheets) return;
    for (; list; list = list->m_pNext) {
        CCRef * const member = list->m_pRef;
        if (!member || member->Kind() == kRefSheets || member->GetType() == kRefRemote) continue;
        auto * placed = new CCRef3D;
        placed->Set(*static_cast<CCRef3D const *>(ref));
        delete placed->ref;
        placed->ref = member->Copy();
        if (list->m_bOwned) delete member;
        list->m_pRef = placed;
        list->m_bOwned = true;
    }
}

// The references to other documents that a pass meets, each to be notified once it is done.
class CCCellManager::RemoteRefs {
public:
    RemoteRefs() = default;
    RemoteRefs(RemoteRefs const &) = delete;
    RemoteRefs & operator=(RemoteRefs const &) = delete;

    static bool IsRemote(CCRef const * ref) { return ref->GetType() == kRefRemote; }
    void Add(CCRef * ref) { m_Refs.emplace_back(static_cast<CCRemoteRef *>(ref)); } // takes it over
    bool IsEmpty() const { return m_Refs.empty(); }

    // Notifies them in order; stops at the first that answers 0 when asked to.
    int Tell(CCCellManager & manager, int flag, bool stopAtRefusal) const {
        SessionGuard const session(&manager);
        for (auto const & ref : m_Refs)
            if (!manager.DoRemoteInitRecalc(ref.get(), flag) && stopAtRefusal) return 0;
        return 1;
    }

private:
    std::vector<std::unique_ptr<CCRemoteRef>> m_Refs;
};

void CCCellManager::InitIdleRecalc(CCItem const * item, int self) {
    if (!item || !GetAutoCalc()) return;
    if (CCWorkbook * workbook = GetWorkbook()) {
        workbook->GetCalcCache().Notify(this, item->GetRef(), self);
        return;
    }
    if (self && item->IsFormulaLink())
        m_ProcessList.AddLast(item->GetRef());
    else
        ProcessDependents(item->GetRef(), m_ProcessList);
}

// The passes do not follow a queued reference without a formula, so its dependents are queued for
// it.
void CCCellManager::OnFormulaRemoved(CCItem const * item) {
    if (m_ProcessList.IsEmpty()) return;
    std::unique_ptr<CCRef> const placed(MakeDependentRef(ctx(), item->GetRef()));
    for (CCRef const * ref : {item->GetRef(), static_cast<CCRef const *>(placed.get())})
        if (m_ProcessList.Find(ref) != RecalcList::kNone) return InitIdleRecalc(item, 0);
}

CCItem * CCCellManager::ProcessDependents(CCRef const * ref, CCRecalcList & list) {
    Place const place = Resolve(*this, ref);
    if (!place.item) {
        if (!ref || ref->GetType() != kRefDocument) return nullptr;
        CCItem * const item = GetDocumentItem(static_cast<CCDocumentRef const *>(ref)->docType);
        RefListHolder const dependents(item ? item->LoadDependents(ctx()) : nullptr);
        list.AddLast(dependents.list);
        return item;
    }
    RefListHolder const dependents(place.owner->LoadDependencies(ref));
    for (CCRefList const * node = dependents.list; node; node = node->m_pNext)
        if (node->m_pRef && list.Find(node->m_pRef) == RecalcList::kNone)
            list.AddLast(node->m_pRef);
    return place.item;
}

// The dependents of a place, with their sheet; null without an item.
CCRefList * CCCellManager::LoadPlacedDependents(CCRef const * ref, CCItem *& item) {
    bool const walked = ref && ref == m_Walked.ref;
    Place const place = walked ? Place{m_Walked.item, m_Walked.owner} : Resolve(*this, ref);
    item = place.item;
    if (!item) return nullptr;
    CCRefList * const dependents = place.owner->LoadDependencies(ref);
    Adjust3DDependencies(ref, dependents);
    return dependents;
}

CCItem * CCCellManager::PatchProcessDependents(CCRef const * ref, CCRecalcList & list) {
    CCItem * item;
    RefListHolder const dependents(LoadPlacedDependents(ref, item));
    if (!item)
        return ref && ref->GetType() == kRefDocument ? ProcessDependents(ref, list) : nullptr;
    if (!dependents.list) return item;
    // The first node equal to `ref`; a later one of its equals may be the one under the walk.
    bool const atWalk =
        ref == m_Walked.ref && &list == &m_ProcessList && list.IsFirst(m_Walked.node);
    Node const own = atWalk ? m_Walked.node : list.Find(ref);
    RecalcList::Stamp const passed = own == RecalcList::kNone ? UINT64_MAX : list.StampOf(own);
    for (CCRefList const * node = dependents.list; node; node = node->m_pNext) {
        if (!node->m_pRef) continue;
        ++m_nEdgesMet;
        Node const found = list.Find(node->m_pRef);
        if (found == RecalcList::kNone)
            list.AddLast(node->m_pRef);
        else if (list.StampOf(found) < passed)
            list.MoveToTail(found);
    }
    return item;
}

void CCCellManager::PatchDoProcess(int limit) {
    RemoteRefs remote;
    RecalcList::Stamp const firstNewStamp = m_ProcessList.NextStamp();
    std::uint64_t steps = 0, known = 0; // `known`: distinct references and edges met
    int ticks = 0;
    Node node = m_ProcessList.First();
    while (node != RecalcList::kNone) {
        RecalcList::Stamp const stamp = m_ProcessList.StampOf(node);
        RecalcList::Held const held(m_ProcessList, node);
        CCRef const * const ref = held.Get();
        if (RemoteRefs::IsRemote(ref)) {
            Node const first = m_ProcessList.Find(ref);
            Node const next = first == node ? m_ProcessList.Next(node) : node;
            remote.Add(ref->Copy());
            m_ProcessList.ExcludeDelete(ref);
            node = next;
            continue;
        }
        Place const place = Resolve(*this, ref);
        if (place.item && place.item->IsFormulaLink()) {
            bool const fresh = m_ProcessList.MarkExpanded(node);
            std::uint64_t const edges = m_nEdgesMet;
            m_Walked = {ref, place.item, place.owner, node};
            if (PatchProcessDependents(ref, m_ProcessList)) {
                if (fresh) known += 1 + (m_nEdgesMet - edges);
                if (limit > 0) --limit;
                if (++ticks % kProcessTick == 0) Tick();
            }
            m_Walked = {};
            if (++steps > std::max(kFreeSteps, 2 * known)) {
                OrderLinearly(firstNewStamp);
                break;
            }
        }
        node = m_ProcessList.NextAfter(node, stamp);
    }
    m_RecalcList.Merge(m_ProcessList);
    if (remote.IsEmpty()) return;
    DoRecalc(-1);
    remote.Tell(*this, 1, false);
}

namespace {

// The closure of a queue under "depends on", for ordering it in one sweep.
class Closure {
public:
    struct Member {
        std::unique_ptr<CCRef> ref;
        std::vector<int> dependents;
        int precedents = 0; // of the closure, not placed yet
        bool placed = false;
    };

    // The member of a reference, which is taken over; `fresh` tells whether it is new.
    int Enter(std::unique_ptr<CCRef> ref, bool & fresh) {
        auto const found = m_Places.find(ref.get());
        fresh = found == m_Places.end();
        if (!fresh) return found->second;
        int const number = int(members.size());
        m_Places.emplace(ref.get(), number);
        members.push_back({std::move(ref), {}, 0, false});
        return number;
    }

    void Place(int number, std::vector<int> & order) {
        members[std::size_t(number)].placed = true;
        order.push_back(number);
        for (int dependent : members[std::size_t(number)].dependents)
            --members[std::size_t(dependent)].precedents;
    }

    std::vector<Member> members;

private:
    std::unordered_map<CCRef const *, int, cells::internal::RefHasher, cells::internal::RefEqual>
        m_Places;
};

} // namespace

// Orders the closure of the queue as it was before the pass. Queued references that need nothing
// after them keep their positions; the others follow the last of their precedents. What is left
// when nothing can be placed is cyclic and stands once, in the order met.
//
// Source: A. B. Kahn, Topological sorting of large networks.
void CCCellManager::OrderLinearly(std::uint64_t firstNewStamp) {
    std::vector<std::pair<RecalcList::Stamp, Node>> queue;
    for (Node node = m_ProcessList.First(); node != RecalcList::kNone;
         node = m_ProcessList.Next(node))
        if (m_ProcessList.OriginOf(node) < firstNewStamp)
            queue.emplace_back(m_ProcessList.OriginOf(node), node);
    std::sort(queue.begin(), queue.end());
    Closure closure;
    std::vector<int> queued;
    for (auto const & [stamp, node] : queue) {
        bool fresh;
        RecalcList::Held const held(m_ProcessList, node);
        int const number = closure.Enter(std::unique_ptr<CCRef>(held.Get()->Copy()), fresh);
        if (fresh) queued.push_back(number);
    }
    for (std::size_t at = 0; at < closure.members.size(); ++at) {
        CCRef const * const ref = closure.members[at].ref.get();
        CCItem * item;
        RefListHolder const dependents(RemoteRefs::IsRemote(ref) ? nullptr
                                                                 : LoadPlacedDependents(ref, item));
        if (!dependents.list || !item->IsFormulaLink()) continue;
        for (CCRefList const * node = dependents.list; node; node = node->m_pNext) {
            if (!node->m_pRef || node->m_pRef->IsEqual(ref)) continue;
            bool fresh;
            int const number = closure.Enter(std::unique_ptr<CCRef>(node->m_pRef->Copy()), fresh);
            closure.members[at].dependents.push_back(number);
            ++closure.members[std::size_t(number)].precedents;
        }
    }
    std::vector<int> order;
    order.reserve(closure.members.size());
    auto const isReady = [&](int number) {
        Closure::Member const & member = closure.members[std::size_t(number)];
        return !member.placed && member.precedents == 0;
    };
    for (int number : queued)
        if (isReady(number)) closure.Place(number, order);
    for (std::size_t taken = 0; taken < order.size(); ++taken) {
        if (taken % kProcessTick == kProcessTick - 1) Tick();
        for (int dependent : closure.members[std::size_t(order[taken])].dependents)
            if (isReady(dependent)) closure.Place(dependent, order);
    }
    for (std::size_t number = 0; number < closure.members.size(); ++number)
        if (!closure.members[number].placed) order.push_back(int(number));
    m_ProcessList.Empty();
    for (int number : order)
        m_ProcessList.Append(closure.members[std::size_t(number)].ref.release());
}

// A host that calculates from its tick is not called again from that calculation.
void CCCellManager::Tick() {
    if (m_bTicking) return;
    struct Ticking {
        bool & flag;
        ~Ticking() { flag = false; }
    } const ticking{m_bTicking};
    m_bTicking = true;
    OnUpdateIdleRecalc();
}

void CCCellManager::DoProcess(int limit) {
    RemoteRefs remote;
    int ticks = 0;
    std::unordered_map<CCRef const *, int, cells::internal::RefHasher, cells::internal::RefEqual>
        visits;
    std::vector<std::unique_ptr<CCRef>> kept;
    while (limit != 0 || !remote.IsEmpty()) {
        Node const head = m_ProcessList.First();
        if (head == RecalcList::kNone) break;
        RecalcList::Held const held(m_ProcessList, head);
        CCRef const * const ref = held.Get();
        if (RemoteRefs::IsRemote(ref)) {
            remote.Add(ref->Copy());
            m_ProcessList.ExcludeDelete(ref);
            continue;
        }
        // A reference that comes back more often than there are others stands in a cycle.
        auto visit = visits.find(ref);
        if (visit == visits.end()) {
            kept.push_back(std::unique_ptr<CCRef>(ref->Copy()));
            visit = visits.emplace(kept.back().get(), 0).first;
        }
        int const distinct = m_ProcessList.GetCount() + m_RecalcList.GetCount();
        bool const again = ++visit->second > distinct + 1;
        CCItem const * const item = again ? nullptr : Resolve(*this, ref).item;
        bool const expanded =
            item && item->IsFormulaLink() && ProcessDependents(ref, m_ProcessList);
        if (!expanded) {
            m_ProcessList.ExcludeDelete(ref);
            continue;
        }
        m_ProcessList.ExcludeDelete(ref);
        m_RecalcList.ExcludeDelete(ref);
        m_RecalcList.AddLast(ref);
        m_nAllRecalc = std::max(m_nAllRecalc, static_cast<unsigned long>(m_RecalcList.GetCount()));
        if (limit > 0) --limit;
        if (++ticks % kProcessTick == 0) Tick();
    }
    if (remote.IsEmpty()) return;
    DoRecalc(-1);
    remote.Tell(*this, 1, false);
}

// A reference whose item is gone is forgotten.
void CCCellManager::DoRecalc(int limit) {
    int ticks = 0;
    while (limit != 0) {
        Node const head = m_RecalcList.First();
        if (head == RecalcList::kNone) break;
        {
            RecalcList::Stamp const stamp = m_RecalcList.StampOf(head);
            RecalcList::Held const held(m_RecalcList, head);
            RecalcCell(held.Get());
            m_RecalcList.RemoveDone(head, stamp, held.Get());
        }
        if (limit > 0) --limit;
        if (++ticks % kRecalcTick == 0) Tick();
    }
    if (m_RecalcList.IsEmpty()) m_nAllRecalc = 0;
}

int CCCellManager::DoIdle(int finish) {
    if (!GetAutoCalc()) return 0;
    if (CCWorkbook * workbook = GetWorkbook()) workbook->DoCalc(this);
    if (!m_ProcessList.IsEmpty()) {
        PatchDoProcess(finish ? -1 : kProcessSlice);
        if (!m_ProcessList.IsEmpty()) return 1;
    }
    if (!m_RecalcList.IsEmpty()) DoRecalc(finish ? -1 : kRecalcSlice);
    return !m_ProcessList.IsEmpty() || !m_RecalcList.IsEmpty();
}

void CCCellManager::DoNonIdleCalc(CCItem const * item, int) {
    CCWorkbook * const workbook = GetWorkbook();
    if (!workbook || !item) return;
    workbook->GetCalcCache().Notify(this, item->GetRef(), 1);
    DoIdle(1);
}

int CCCellManager::RecalcCell(CCRef const * ref) {
    Place const place = Resolve(*this, ref);
    if (!place.item) return 0;
    place.item->Recalc(place.owner->ctx());
    return 1;
}

namespace {

// The search from a formula back through what it reads, one place a step. It sees trees, so that
// only plain cells keep it conclusive: what else may feed a region or a name it cannot tell.
class BackwardSearch {
public:
    BackwardSearch(CCCellManager & manager, CCItem const * origin)
        : m_Manager(manager), m_Origin(origin) {
        Look(const_cast<CCItem *>(origin), &manager);
    }

    bool IsConclusive() const { return m_Conclusive; }
    bool IsDone() const { return m_Items.empty(); }
    bool FoundOrigin() const { return m_Found; }

    void Step() {
        Place const place = m_Items.back();
        m_Items.pop_back();
        Look(place.item, place.owner);
    }

private:
    void Look(CCItem * item, CCCellManager * owner) {
        RefListHolder const precedents(item->GetPrecedents(owner->ctx()));
        for (CCRefList const * node = precedents.list; node && m_Conclusive; node = node->m_pNext) {
            if (!node->m_pRef || node->m_pRef->GetType() != kRefCell) {
                m_Conclusive = false;
                return;
            }
            Place const place = Resolve(*owner, node->m_pRef);
            if (place.item == m_Origin) m_Found = true;
            auto * const cell = dynamic_cast<CCCell *>(place.item);
            if (cell && cell->IsValidFormula() && m_Met.insert(cell).second)
                m_Items.push_back(place);
        }
    }

    CCCellManager & m_Manager;
    CCItem const * m_Origin;
    std::vector<Place> m_Items;
    std::unordered_set<CCItem const *> m_Met;
    bool m_Conclusive = true, m_Found = false;
};

} // namespace

// Whether the dependents of the item lead back to the origin of this walk: 0 for a cycle. Where
// formulas alone make dependents and no other document must be notified, a search from the other
// side runs along, and whichever ends first decides; so neither order of entering a chain walks the
// whole chain each time.
int CCCellManager::WalkForCycle(CCItem const * item, RemoteRefs & remote) {
    CCRecalcList list;
    PatchProcessDependents(item->GetRef(), list);
    if (list.IsEmpty()) return 1;
    CCRef const * const origin = m_FormulaItems.front()->GetRef();
    std::unique_ptr<CCRef> const placed(MakeDependentRef(ctx(), origin));
    bool const mayLookBack = FormulasImplyDependents() && item == m_FormulaItems.front() &&
                             !m_bRemoteDependents && !m_bStoredDependents && !m_bAddedDependents;
    std::unique_ptr<BackwardSearch> back;
    if (mayLookBack) back = std::make_unique<BackwardSearch>(*this, item);
    std::vector<std::unique_ptr<CCRef>> kept;
    cells::internal::RefSet met;
    while (CCRef * const ref = list.GetFirst()) {
        if (ref->IsEqual(placed.get()) || ref->IsEqual(origin)) return 0;
        if (back && back->IsConclusive() && !back->FoundOrigin()) {
            if (back->IsDone()) return 1;
            back->Step();
        }
        list.Exclude(ref);
        std::unique_ptr<CCRef> taken(ref);
        if (met.count(ref)) continue;
        if (RemoteRefs::IsRemote(ref)) {
            kept.push_back(std::unique_ptr<CCRef>(ref->Copy()));
            met.insert(kept.back().get());
            remote.Add(taken.release());
            continue;
        }
        met.insert(ref);
        kept.push_back(std::move(taken));
        ProcessDependents(ref, list);
    }
    return 1;
}

int CCCellManager::InitFormulaRecalc(CCItem const * item) {
    if (!item) return 1;
    if (CCWorkbook * workbook = GetWorkbook()) {
        workbook->GetCalcCache().SetManager(this);
        return workbook->GetCalcCache().EnsureAndMark(item->GetRef());
    }
    // A re-entry through another document, and so a cycle.
    if (std::find(m_FormulaItems.begin(), m_FormulaItems.end(), item) != m_FormulaItems.end())
        return 0;
    struct Walk {
        std::vector<CCItem const *> & items;
        CCItem const * item;
        ~Walk() { std::erase(items, item); }
    };
    int result;
    {
        m_FormulaItems.push_back(item);
        Walk const walk{m_FormulaItems, item};
        RemoteRefs remote;
        result = WalkForCycle(item, remote);
        if (!remote.IsEmpty() && result) result = remote.Tell(*this, 0, true);
    }
    if (result) InitIdleRecalc(item, 1);
    return result;
}
