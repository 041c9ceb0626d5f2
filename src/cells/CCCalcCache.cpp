#include "cells/CCCalcCache.h"

#include "cells/CCCellManager.h"
#include "cells/RegionIndex.h"
#include "cells/Resolve.h"
#include "formula/CCNameRef.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefList.h"
#include "formula/CCRegionRef.h"
#include "formula/CCRemoteRef.h"
#include "formula/RefHash.h"

#include <algorithm>
#include <utility>

using cells::RegionIndex;
using cells::internal::InnerRef;
using cells::internal::MakeDependentRef;
using cells::internal::Place;
using cells::internal::RefListHolder;
using cells::internal::Resolve;

namespace {

bool IsRemote(CCRef const * ref) { return ref->GetType() == kRefRemote; }

int InnerType(CCRef const * placed) {
    CCRef const * const inner = InnerRef(placed);
    return inner ? inner->GetType() : 0;
}

CCRegionRef const & RegionOf(CCRef const * placed) {
    return *static_cast<CCRegionRef const *>(InnerRef(placed));
}

// Whether a reference has the form in which entries are kept.
bool IsNormal(CCRef const * ref) {
    return ref->Kind() == kRefSheets && static_cast<CCRef3D const *>(ref)->IsManagerForm() &&
           InnerType(ref) != kRefName;
}

// Order of sorted entries: by sheet, cells before regions before the rest, then by place.
bool StandsBefore(CCRef const * a, CCRef const * b) {
    auto const sheetOf = [](CCRef const * ref) {
        return ref->Kind() == kRefSheets ? static_cast<CCRef3D const *>(ref)->SheetKey() : 0;
    };
    if (sheetOf(a) != sheetOf(b)) return sheetOf(a) < sheetOf(b);
    if (InnerType(a) != InnerType(b)) return InnerType(a) < InnerType(b);
    return a->Compare(b) < 0;
}

} // namespace

std::size_t CCCalcCache::Hash::operator()(CCRef const * ref) const {
    return cells::internal::RefHash(ref);
}

bool CCCalcCache::Equal::operator()(CCRef const * a, CCRef const * b) const {
    return a->IsEqual(b) != 0;
}

CCCalcCache::CCCalcCache() = default;
CCCalcCache::~CCCalcCache() = default;

void CCCalcCache::SetManager(CCCellManager * manager) {
    m_nManager = manager ? manager->GetSerial() : cells::internal::kNoManager;
}

// Finding and entering

// The reference together with its sheet; a name is taken for what it stands for.
std::unique_ptr<CCRef> CCCalcCache::Normalised(CCRef const * ref) const {
    CCCellManager * const manager = Manager();
    std::unique_ptr<CCRef> placed(MakeDependentRef(manager->ctx(), ref));
    if (!placed || placed->GetType() != kRefSheets) return placed;
    auto const & sheets = *static_cast<CCRef3D const *>(placed.get());
    CCCellManager * sheet = sheets.GetManager();
    if (!sheets.IsManagerForm() && sheets.IsOneSheet()) {
        sheet = manager->GetManForNameIndex(sheets.firstSheet);
        if (sheet) placed = std::make_unique<CCRef3D>(sheet->ctx(), sheets.ref);
    }
    if (sheet && InnerType(placed.get()) == kRefName) {
        std::unique_ptr<CCRef> const target(
            sheet->TranslateNameRef(static_cast<CCNameRef const *>(InnerRef(placed.get()))));
        if (target) placed.reset(MakeDependentRef(sheet->ctx(), target.get()));
    }
    return placed;
}

SCCalcEntry * CCCalcCache::Find(CCRef const * placed) const {
    auto const found = m_Entries.find(placed);
    return found == m_Entries.end() ? nullptr : found->second.get();
}

SCCalcEntry * CCCalcCache::FindInOrder(CCRef const * ref) const {
    SCCalcEntry * const entry = IsNormal(ref) ? Find(ref) : Find(Normalised(ref).get());
    return entry && entry->m_nIndex >= 0 ? entry : nullptr;
}

SCCalcEntry & CCCalcCache::Enter(std::unique_ptr<CCRef> placed) {
    if (SCCalcEntry * known = Find(placed.get())) return *known;
    auto entry = std::make_unique<SCCalcEntry>();
    SCCalcEntry & entered = *entry;
    entered.m_pRef = placed.release();
    m_Entries.emplace(entered.m_pRef, std::move(entry));
    m_bSorted = false;
    if (InnerType(entered.m_pRef) == kRefRegion)
        RegionsOn(entered.m_pRef, true)->Register(RegionOf(entered.m_pRef), entered.m_pRef);
    return entered;
}

RegionIndex * CCCalcCache::RegionsOn(CCRef const * placed, bool make) {
    if (placed->GetType() != kRefSheets) return nullptr;
    CCCellManager const * const sheet = static_cast<CCRef3D const *>(placed)->GetManager();
    auto const serial = sheet ? sheet->GetSerial() : cells::internal::kNoManager;
    auto const found = m_Regions.find(serial);
    if (found != m_Regions.end()) return found->second.get();
    return make ? (m_Regions[serial] = std::make_unique<RegionIndex>()).get() : nullptr;
}

// Neighbours in the graph

CCRefList * CCCalcCache::LoadDependents(CCRef const * placed) const {
    CCRefList * const list = Resolve(*Manager(), placed).owner->LoadDependencies(placed);
    Adjust3DDependencies(placed, list);
    return list;
}

// The entries that must stand after this one: of its dependents, and of the regions it lies in.
void CCCalcCache::CollectDependents(SCCalcEntry const & entry, Entries & found) const {
    auto const add = [&](CCRefList const * list) {
        for (; list; list = list->m_pNext) {
            if (!list->m_pRef || IsRemote(list->m_pRef)) continue;
            SCCalcEntry * const dependent = FindInOrder(list->m_pRef);
            if (dependent && dependent != &entry) found.push_back(dependent);
        }
    };
    RefListHolder const dependents(LoadDependents(entry.m_pRef));
    add(dependents.list);
    if (InnerType(entry.m_pRef) != kRefCell) return;
    auto & cell = *static_cast<CCRCRef const *>(InnerRef(entry.m_pRef));
    if (RegionIndex const * regions =
            const_cast<CCCalcCache *>(this)->RegionsOn(entry.m_pRef, false)) {
        RefListHolder const around(regions->LoadDependents(cell.col, cell.row, nullptr));
        add(around.list);
    }
}

struct CCCalcCache::Neighbours {
    Entries dependents;
    SCCalcEntry * firstDependent = nullptr;
    SCCalcEntry * lastPrecedent = nullptr;
    bool hasPrecedents = false;
};

// A region that is read gets an entry here, a single cell without one is passed over.
CCCalcCache::Neighbours CCCalcCache::FindNeighbours(SCCalcEntry const & entry) {
    Neighbours found;
    Place const place = Resolve(*Manager(), entry.m_pRef);
    RefListHolder const precedents(place.item ? place.item->GetPrecedents(place.owner->ctx())
                                              : nullptr);
    Adjust3DDependencies(entry.m_pRef, precedents.list);
    for (CCRefList const * node = precedents.list; node; node = node->m_pNext) {
        found.hasPrecedents = true;
        if (!node->m_pRef || IsRemote(node->m_pRef)) continue;
        std::unique_ptr<CCRef> placed = Normalised(node->m_pRef);
        SCCalcEntry * precedent = Find(placed.get());
        if (!precedent && InnerType(placed.get()) == kRefRegion)
            precedent = &Enter(std::move(placed));
        if (!precedent || precedent == &entry) continue;
        if (precedent->m_nIndex < 0) {
            if (InnerType(precedent->m_pRef) != kRefRegion) continue;
            m_Order.Append(precedent);
        }
        if (!found.lastPrecedent || found.lastPrecedent->label < precedent->label)
            found.lastPrecedent = precedent;
    }
    CollectDependents(entry, found.dependents);
    for (SCCalcEntry * dependent : found.dependents)
        if (!found.firstDependent || dependent->label < found.firstDependent->label)
            found.firstDependent = dependent;
    return found;
}

// Order

void CCCalcCache::PutInOrder(SCCalcEntry & entry) {
    Neighbours found = FindNeighbours(entry);
    SCCalcEntry * const pre = found.lastPrecedent;
    SCCalcEntry * const dep = found.firstDependent;
    if (!dep) {
        if (found.hasPrecedents)
            m_Order.InsertAfter(pre, &entry);
        else
            m_Order.Append(&entry);
    } else if (!pre || pre->label < dep->label) {
        m_Order.InsertBefore(dep, &entry);
    } else {
        m_Order.InsertAfter(pre, &entry);
        MoveBehind(entry, found.dependents);
    }
    if (entry.m_bDirty) m_Dirty.insert(&entry);
}

// A pass that runs, from the entry that it has reached to the one where it ends.
struct CCCalcCache::Pass {
    explicit Pass(CCCalcCache & c) : cache(c), end(c.m_Order.Last()), outer(c.m_pPass) {
        cache.m_pPass = this;
    }
    Pass(Pass const &) = delete;
    Pass & operator=(Pass const &) = delete;
    ~Pass() {
        cache.m_pPass = outer;
        if (!outer) cache.m_nInnerSteps = 0;
    }

    CCCalcCache & cache;
    SCCalcEntry * at = nullptr;
    SCCalcEntry * end;
    Pass * outer;
};

// Out of the order, but not out of the cache. A running pass goes on after the position before it.
void CCCalcCache::TakeOut(SCCalcEntry & entry) {
    if (entry.m_nIndex < 0) return;
    if (entry.m_bDirty) m_Dirty.erase(&entry);
    for (Pass * pass = m_pPass; pass; pass = pass->outer) {
        if (pass->at == &entry) pass->at = entry.previous;
        if (pass->end == &entry) pass->end = entry.previous;
    }
    m_Order.Remove(&entry);
}

// Moves the entries and all that depends on them, as far as they stand before the position, right
// after it, in the order in which they stand.
void CCCalcCache::MoveBehind(SCCalcEntry & place, Entries & entries) {
    Entries moved;
    while (!entries.empty()) {
        SCCalcEntry * const entry = entries.back();
        entries.pop_back();
        if (entry->m_bVisited || entry->label >= place.label) continue;
        entry->m_bVisited = 1;
        moved.push_back(entry);
        CollectDependents(*entry, entries);
    }
    std::sort(moved.begin(), moved.end(), cells::internal::CalcOrder::Before());
    for (auto at = moved.rbegin(); at != moved.rend(); ++at) {
        SCCalcEntry & entry = **at;
        entry.m_bVisited = 0;
        TakeOut(entry);
        m_Order.InsertAfter(&place, &entry);
        if (entry.m_bDirty) m_Dirty.insert(&entry);
    }
}

bool CCCalcCache::IsInOrder(SCCalcEntry const & entry) {
    Neighbours const found = FindNeighbours(entry);
    return (!found.lastPrecedent || found.lastPrecedent->label < entry.label) &&
           (!found.firstDependent || entry.label < found.firstDependent->label);
}

SCCalcEntry * CCCalcCache::InsertPlaced(std::unique_ptr<CCRef> placed) {
    SCCalcEntry & entry = Enter(std::move(placed));
    if (entry.m_nIndex >= 0) return &entry;
    if (InnerType(entry.m_pRef) != kRefRegion) {
        PutInOrder(entry);
        return &entry;
    }
    m_Order.Append(&entry); // after all cells that lie in it
    Entries dependents;
    CollectDependents(entry, dependents);
    MoveBehind(entry, dependents);
    return &entry;
}

void CCCalcCache::Insert(CCRef const * ref) {
    if (ref && Manager()) InsertPlaced(Normalised(ref));
}

void CCCalcCache::Reposition(CCRef const * ref) {
    SCCalcEntry * const entry = ref && Manager() ? FindInOrder(ref) : nullptr;
    if (!entry || IsInOrder(*entry)) return;
    TakeOut(*entry);
    PutInOrder(*entry);
}

void CCCalcCache::Drop(SCCalcEntry & entry) {
    TakeOut(entry);
    if (InnerType(entry.m_pRef) == kRefRegion)
        if (RegionIndex * regions = RegionsOn(entry.m_pRef, false))
            regions->UnRegister(RegionOf(entry.m_pRef), entry.m_pRef);
    auto const found = m_Entries.find(entry.m_pRef);
    std::unique_ptr<SCCalcEntry> dropped = std::move(found->second);
    m_Entries.erase(found);
    m_bSorted = false;
    m_Sorted.clear();
    if (m_nWalks > 0) m_Removed.push_back(std::move(dropped));
}

void CCCalcCache::RemoveEntry(CCRef const * ref) {
    if (!ref || !Manager()) return;
    if (SCCalcEntry * entry = Find(Normalised(ref).get())) Drop(*entry);
}

void CCCalcCache::RemoveSheet(CCCellManager const & sheet) {
    Entries dropped;
    for (auto const & [ref, entry] : m_Entries)
        if (ref->GetType() == kRefSheets &&
            static_cast<CCRef3D const *>(ref)->GetManager() == &sheet)
            dropped.push_back(entry.get());
    for (SCCalcEntry * entry : dropped) Drop(*entry);
}

// Marks

int CCCalcCache::Notify(CCCellManager * manager, CCRef const * ref, int self) {
    if (!ref) return 0;
    SetManager(manager);
    if (!manager) return 1;
    std::unique_ptr<CCRef> const placed = Normalised(ref);
    SCCalcEntry const * const entry = Find(placed.get());
    bool const known = entry && entry->m_nIndex >= 0 && InnerType(placed.get()) != kRefRegion;
    if (self && !known)
        EnsureAndMark(placed.get());
    else
        Mark(placed.get());
    return 1;
}

int CCCalcCache::EnsureAndMark(CCRef const * ref) {
    if (!ref || !Manager()) return 1;
    std::unique_ptr<CCRef> placed = Normalised(ref);
    SCCalcEntry const * const entry = Find(placed.get());
    if (entry && entry->m_nIndex >= 0)
        Reposition(placed.get());
    else
        InsertPlaced(std::unique_ptr<CCRef>(placed->Copy()));
    Mark(placed.get());
    return 1;
}

void CCCalcCache::SetDirty(SCCalcEntry & entry) {
    if (entry.m_bDirty) return;
    entry.m_bDirty = 1;
    if (entry.m_nIndex >= 0) m_Dirty.insert(&entry);
}

// Makes the dependents of a place dirty; those that were not yet are `reached`.
void CCCalcCache::MarkDependents(CCRef const * placed, Entries & reached, RemoteRefs & remote) {
    RefListHolder const dependents(LoadDependents(placed));
    for (CCRefList const * node = dependents.list; node; node = node->m_pNext) {
        if (!node->m_pRef) continue;
        if (IsRemote(node->m_pRef)) {
            remote.emplace_back(static_cast<CCRemoteRef *>(node->m_pRef->Copy()));
            continue;
        }
        SCCalcEntry * entry = FindInOrder(node->m_pRef);
        if (!entry) entry = InsertPlaced(Normalised(node->m_pRef));
        if (entry->m_bDirty) continue;
        SetDirty(*entry);
        reached.push_back(entry);
    }
}

void CCCalcCache::Mark(CCRef const * ref) {
    if (!ref || !Manager()) return;
    std::unique_ptr<CCRef> const placed = Normalised(ref);
    SCCalcEntry * const root = Find(placed.get());
    if (root && root->m_nIndex >= 0) SetDirty(*root);
    RemoteRefs remote;
    {
        Entries reached;
        MarkDependents(placed.get(), reached, remote);
        for (std::size_t at = 0; at < reached.size(); ++at)
            MarkDependents(reached[at]->m_pRef, reached, remote);
    }
    // Other documents are notified after all marks, since they may call back.
    for (auto const & link : remote)
        if (CCCellManager * manager = Manager()) manager->DoRemoteInitRecalc(link.get(), 1);
}

void CCCalcCache::MarkAll() {
    for (SCCalcEntry * entry = m_Order.First(); entry; entry = entry->next) SetDirty(*entry);
}

// Entries that are dropped live until nobody walks over them any more.
struct CCCalcCache::Walk {
    explicit Walk(CCCalcCache & c) : cache(c) { ++cache.m_nWalks; }
    Walk(Walk const &) = delete;
    Walk & operator=(Walk const &) = delete;
    ~Walk() {
        if (--cache.m_nWalks == 0) cache.m_Removed.clear();
    }
    CCCalcCache & cache;
};

// Whether a pass may begin here: what reads a value must not be computed while the old one stands.
// Hooks that queue for ever are cut short.
bool CCCalcCache::MayCalculate() const {
    constexpr int kDeepest = 32, kMostInnerSteps = 1'000'000;
    int passes = 0;
    for (Pass const * pass = m_pPass; pass; pass = pass->outer) ++passes;
    return passes < kDeepest && m_nInnerSteps < kMostInnerSteps &&
           std::all_of(m_Computing.begin(), m_Computing.end(),
                       [](SCCalcEntry const * entry) { return entry->m_bStored != 0; });
}

void CCCalcCache::Calculate(CCCellManager & manager) {
    if (!MayCalculate()) return;
    Walk const walk(*this);
    Pass pass(*this);
    for (;;) {
        auto const next = pass.at ? m_Dirty.upper_bound(pass.at) : m_Dirty.begin();
        if (next == m_Dirty.end() || !pass.end || (*next)->label > pass.end->label) return;
        SCCalcEntry * const entry = *next;
        pass.at = entry;
        if (pass.outer) ++m_nInnerSteps;
        Compute(manager, *entry);
    }
}

void CCCalcCache::NoteStored(CCCellManager const & sheet, CCRef const & place) {
    if (m_Computing.empty()) return;
    SCCalcEntry & entry = *m_Computing.back();
    CCRef const * const inner = InnerRef(entry.m_pRef);
    if (IsNormal(entry.m_pRef) && inner && inner->IsEqual(&place) &&
        static_cast<CCRef3D const *>(entry.m_pRef)->GetManager() == &sheet)
        entry.m_bStored = 1;
}

// Clean before it is computed: a hook may change what it has just read.
void CCCalcCache::Compute(CCCellManager & manager, SCCalcEntry & entry) {
    struct Computing {
        Entries & entries;
        Computing(Entries & e, SCCalcEntry * entry) : entries(e) { entries.push_back(entry); }
        ~Computing() { entries.pop_back(); }
    };
    m_Dirty.erase(&entry);
    entry.m_bDirty = 0;
    uchar const stored = std::exchange(entry.m_bStored, uchar(0)); // by a computing around this one
    {
        Computing const computing(m_Computing, &entry);
        manager.RecalcCell(entry.m_pRef);
    }
    entry.m_bStored = stored;
    if (!std::exchange(entry.m_bCircular, uchar(0))) return;
    Place const place = Resolve(manager, entry.m_pRef);
    if (auto * cell = dynamic_cast<CCCell *>(place.item)) cell->RefuseCircle(place.owner->ctx());
}

// What stands at a place and in all that feeds it, as far as it is not clean.
struct CCCalcCache::Before {
    Entries dirty; // in order
    Entries computing;
};

template <typename Take>
void CCCalcCache::ForEachDirtyAt(CCRef const * placed, Take && take) const {
    SCCalcEntry * const entry = Find(placed);
    if (entry && entry->m_bDirty && entry->m_nIndex >= 0) take(entry);
    if (InnerType(placed) != kRefRegion) return;
    for (SCCalcEntry * inside : m_Dirty)
        if (placed->Contain(inside->m_pRef)) take(inside);
}

// What is clean has nothing dirty before it.
CCCalcCache::Before CCCalcCache::WhatStandsBefore(CCRef const * ref) {
    Before found;
    auto const lookAt = [&](CCRef const * place) {
        std::unique_ptr<CCRef> const placed = Normalised(place);
        if (!placed) return;
        ForEachDirtyAt(placed.get(), [&](SCCalcEntry * entry) {
            if (entry->m_bVisited) return;
            entry->m_bVisited = 1;
            found.dirty.push_back(entry);
        });
        for (SCCalcEntry * entry : m_Computing)
            if (placed->IsEqual(entry->m_pRef) || placed->Contain(entry->m_pRef))
                found.computing.push_back(entry);
    };
    lookAt(ref);
    for (std::size_t at = 0; at < found.dirty.size(); ++at) {
        CCRef const * const placed = found.dirty[at]->m_pRef;
        Place const place = Resolve(*Manager(), placed);
        RefListHolder const precedents(place.item ? place.item->GetPrecedents(place.owner->ctx())
                                                  : nullptr);
        Adjust3DDependencies(placed, precedents.list);
        for (CCRefList const * node = precedents.list; node; node = node->m_pNext)
            if (node->m_pRef && !IsRemote(node->m_pRef)) lookAt(node->m_pRef);
    }
    for (SCCalcEntry * entry : found.dirty) entry->m_bVisited = 0;
    std::sort(found.dirty.begin(), found.dirty.end(), cells::internal::CalcOrder::Before());
    return found;
}

std::vector<CCRef const *> CCCalcCache::DirtyRefs() const {
    std::vector<CCRef const *> refs;
    for (SCCalcEntry const * entry : m_Dirty) refs.push_back(entry->m_pRef);
    return refs;
}

bool CCCalcCache::IsDirty(CCCellManager & manager, CCRef const * ref) {
    if (m_Dirty.empty() || !ref) return false;
    SetManager(&manager);
    std::unique_ptr<CCRef> const placed = Normalised(ref);
    bool any = false;
    if (placed) ForEachDirtyAt(placed.get(), [&](SCCalcEntry *) { any = true; });
    return any;
}

bool CCCalcCache::Settle(CCCellManager & manager, CCRef const * ref, bool refuse) {
    if ((m_Dirty.empty() && m_Computing.empty()) || !ref) return true;
    Walk const walk(*this);
    SetManager(&manager);
    Before const before = WhatStandsBefore(ref);
    if (refuse)
        for (SCCalcEntry * entry : before.computing) entry->m_bCircular = 1;
    if (!before.computing.empty()) return false;
    for (SCCalcEntry * entry : before.dirty)
        if (entry->m_bDirty && entry->m_nIndex >= 0) Compute(manager, *entry);
    return true;
}

// By number

CCCalcCache::Entries const & CCCalcCache::Sorted() const {
    if (m_bSorted) return m_Sorted;
    m_Sorted.clear();
    for (auto const & [ref, entry] : m_Entries) m_Sorted.push_back(entry.get());
    std::sort(m_Sorted.begin(), m_Sorted.end(), [](SCCalcEntry const * a, SCCalcEntry const * b) {
        return StandsBefore(a->m_pRef, b->m_pRef);
    });
    m_bSorted = true;
    return m_Sorted;
}

int CCCalcCache::FindSorted(CCRef const * key, bool & found) const {
    found = false;
    Entries const & sorted = Sorted();
    if (sorted.empty()) return -1;
    if (key == sorted.front()->m_pRef || StandsBefore(key, sorted.front()->m_pRef)) return -2;
    if (key == sorted.back()->m_pRef || StandsBefore(sorted.back()->m_pRef, key)) return -3;
    auto const at = std::upper_bound(sorted.begin(), sorted.end(), key,
                                     [](CCRef const * ref, SCCalcEntry const * entry) {
                                         return StandsBefore(ref, entry->m_pRef);
                                     });
    found = (*std::prev(at))->m_pRef->IsEqual(key) != 0;
    return int(at - sorted.begin()) - 1;
}

void CCCalcCache::IndexSorted(SCCalcEntry * entry) {
    std::unique_ptr<SCCalcEntry> owned(entry);
    m_Entries.try_emplace(entry->m_pRef, std::move(owned));
    m_bSorted = false;
}

void CCCalcCache::AppendEntry(CCRef const * ref) {
    if (!ref || !Manager()) return;
    SCCalcEntry & entry = Enter(Normalised(ref));
    if (entry.m_nIndex < 0) m_Order.Append(&entry);
}

void CCCalcCache::InsertBefore(int place, SCCalcEntry * entry) { InsertAfter(place - 1, entry); }

void CCCalcCache::InsertAfter(int place, SCCalcEntry * entry) {
    m_Order.InsertAfter(place < 0 ? nullptr : m_Order.At(place), entry);
}

void CCCalcCache::Reorder(std::vector<int> & places, int place) {
    SCCalcEntry * const behind = m_Order.At(place);
    Entries entries;
    for (int number : std::exchange(places, {}))
        if (SCCalcEntry * entry = m_Order.At(number)) entries.push_back(entry);
    if (behind) MoveBehind(*behind, entries);
}
