#include "cells/CCItem.h"

#include "cells/CCCalcCache.h"
#include "cells/CCCellManager.h"
#include "cells/CCWorkbook.h"
#include "cells/Guards.h"
#include "cells/Resolve.h"
#include "cells/internal/TreesInUse.h"
#include "context/Context.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefList.h"
#include "formula/CCRemoteRef.h"
#include "formula/RefHash.h"
#include "platform/NodePool.h"
#include "platform/Resources.h"

#include <set>

using cells::internal::MakeDependentRef;
using cells::internal::RefListHolder;
using cells::internal::SessionGuard;

using Placed = std::unique_ptr<CCRef>;

CCItem::CCItem(CCItem const & other)
    : CInstanceCounter(other), m_pDependentsData(other.CopyDependents()) {}

CCItem::~CCItem() { RefListFree(m_pDependentsList, 0); }

int CCItem::IsEmpty() const { return HasNoDependents(); }

void CCItem::MarkDirty(cells::CTX * ctx) {
    CCCellManager * manager = ctx ? ctx->manager() : nullptr;
    if (manager && manager->GetDirtyMarking()) manager->SetDirty();
}

void CCItem::GrowDependetsRefs(int count) { m_Dependents.Grow(count); }

void CCItem::AddDependentsRef(CCRef * ref) {
    m_Dependents.Add(ref);
    DropBlock();
}

// The slot of a placed reference. Where it is not found, an entry that this item's manager read
// from a file may stand for it: it names the sheet by number and leads to the same manager.
int CCItem::FindStored(cells::CTX * ctx, CCRef const * placed) {
    LoadBlock(ctx);
    int const slot = m_Dependents.Find(placed);
    if (slot >= 0 || !placed || placed->GetType() != kRefSheets || !ctx) return slot;
    auto const & sheets = *static_cast<CCRef3D const *>(placed);
    CCCellManager * const owner = sheets.GetManager();
    CCCellManager * const manager = ctx->manager();
    if (!owner || !sheets.ref || !manager || !manager->HasStoredDependents()) return slot;
    ushort const number = owner->GetNameIndex(owner->GetSheetName().GetString());
    if (owner != manager && manager->GetManForNameIndex(number) != owner) return slot;
    CCRef3D const numbered(number, number, sheets.ref->Copy());
    return m_Dependents.Find(&numbered);
}

int CCItem::HasDependentsRef(cells::CTX * ctx, CCRef const * ref) {
    if (!ref) return -1;
    LoadBlock(ctx);
    m_Dependents.Entries();
    return m_Dependents.Find(ref);
}

int CCItem::DeleteDependentsRef(cells::CTX *, int index) {
    m_Dependents.Entries();
    if (index < 0 || index >= m_Dependents.Count()) return 0;
    m_Dependents.Remove(index);
    DropBlock();
    return 1;
}

int CCItem::UpdateDependentsRef(cells::CTX * ctx, CCRef const * old, CCRef const * now) {
    int const slot = FindStored(ctx, old);
    if (slot < 0) return 0;
    Placed copy(now->Copy());
    m_Dependents.Replace(slot, copy.get());
    copy.release();
    DropBlock();
    return 1;
}

int CCItem::RegisterDependent(cells::CTX * ctx, CCRef const * ref) {
    {
        CCCellManager * const manager = ctx->manager();
        SessionGuard const session(manager);
        Placed placed(MakeDependentRef(ctx, ref));
        if (!placed) return 0;
        int const slot = FindStored(ctx, placed.get());
        if (slot >= 0) {
            if (!m_Dependents.At(slot)->IsEqual(placed.get())) {
                m_Dependents.Replace(slot, placed.get());
                placed.release();
                DropBlock();
            }
            return 1;
        }
        if (manager && manager->IsProtected() && IsHidden(ctx)) {
            manager->ErrorMessage(cells::kStringHiddenPrecedent);
            return 0;
        }
        if (manager && placed->GetType() == kRefRemote) manager->NoteRemoteDependent();
        if (manager && !cells::internal::TreesInUse::IsAny()) manager->NoteAddedDependent();
        m_Dependents.Add(placed.get());
        placed.release();
        DropBlock();
    }
    MarkDirty(ctx);
    return 1;
}

bool CCItem::RemoveDependent(cells::CTX * ctx, CCRef const * ref) {
    Placed const placed(MakeDependentRef(ctx, ref));
    int const slot = FindStored(ctx, placed.get());
    if (slot < 0) return false;
    m_Dependents.Remove(slot);
    DropBlock();
    return true;
}

int CCItem::UnRegisterDependent(cells::CTX * ctx, CCRef const * ref) {
    {
        SessionGuard const session(ctx->manager());
        if (!RemoveDependent(ctx, ref)) return 0;
    }
    MarkDirty(ctx);
    return 1;
}

int CCItem::UpdateDependent(cells::CTX * ctx, CCRef const * old, CCRef const * now) {
    {
        SessionGuard const session(ctx->manager());
        Placed const placedOld(MakeDependentRef(ctx, old)), placedNow(MakeDependentRef(ctx, now));
        if (!placedNow) return 0;
        if (!UpdateDependentsRef(ctx, placedOld.get(), placedNow.get()))
            return RegisterDependent(ctx, placedNow.get());
    }
    MarkDirty(ctx);
    return 1;
}

void CCItem::UpdateArgsOnSheetRename(cells::CTX * ctx, CCRemoteRef const * old,
                                     CCRemoteRef const * now) {
    if (now && UpdateDependentsRef(ctx, old, now)) MarkDirty(ctx);
}

CCRefList * CCItem::BuildDependentsList() const {
    CCRefList * list = nullptr;
    m_Dependents.ForEach([&](CCRef * ref) {
        CCRefList * const node = cells::internal::NewRefNode(ref, false);
        node->m_pNext = list;
        list = node;
    });
    return list;
}

CCRefList * CCItem::LoadDependents(cells::CTX * ctx) {
    LoadBlock(ctx);
    return BuildDependentsList();
}

void CCItem::BuildDependetsRefFromList(CCRefList * list) {
    for (; list; list = list->m_pNext)
        if (list->m_pRef) {
            Placed copy(list->m_pRef->Copy());
            m_Dependents.Add(copy.get());
            copy.release();
        }
}

CCRefList * CCItem::CopyDependentsList() const { return CopyRefList(m_pDependentsList); }

void CCItem::DeleteDependentRefs(cells::CTX *) { m_Dependents.Clear(); }

void CCItem::PreChangeDependent(cells::CTX * ctx, CCRef const *) { LoadBlock(ctx); }
void CCItem::PreChangeDependents(cells::CTX * ctx) { LoadBlock(ctx); }
void CCItem::PreDelete(cells::CTX * ctx) { LoadBlock(ctx); }

void CCItem::MergeDependents(cells::CTX * ctx, CCItem * item) {
    CCRefList * const theirs = item->LoadDependents(ctx);
    CCRefList * mine = LoadDependents(ctx);
    PreChangeDependents(ctx);
    JoinRefList(&mine, theirs);
    SaveDependents(ctx, mine);
    RefListFree(mine, 0);
}

// The walk is over a copy: a step may change the store.
void CCItem::MoveDependents(cells::CTX * ctx, CCRef const * from, CCRef const * to) {
    CCRefList * const loaded = LoadDependents(ctx);
    RefListHolder const copy(CopyRefList(loaded));
    RefListFree(loaded, 0);
    for (CCRefList const * node = copy.list; node; node = node->m_pNext)
        node->m_pRef->MoveDependent(ctx, from, to, 0);
}

void CCItem::Move(cells::CTX * ctx, CCRef const * to, CCItem * from) {
    {
        SessionGuard const session(ctx->manager());
        MoveDependents(ctx, GetRef(), to);
        if (from && from->HasDependents()) MergeDependents(ctx, from);
    }
    MarkDirty(ctx);
}

void CCItem::InvalidateDependents(cells::CTX * ctx) {
    {
        CCCellManager * const manager = ctx->manager();
        SessionGuard const session(manager);
        CCRefList * const loaded = LoadDependents(ctx);
        RefListHolder const copy(CopyRefList(loaded));
        RefListFree(loaded, 0);
        for (CCRefList const * node = copy.list; node; node = node->m_pNext) {
            // A dependent elsewhere may hold the same plain place of its own sheet; it is
            // notified of the place together with its sheet.
            auto const * sheets = node->m_pRef->GetType() == kRefSheets
                                      ? static_cast<CCRef3D const *>(node->m_pRef)
                                      : nullptr;
            bool const elsewhere =
                sheets && sheets->GetManager() && sheets->GetManager() != manager;
            Placed const placed(elsewhere ? MakeDependentRef(ctx, GetRef()) : nullptr);
            node->m_pRef->InvalidateRef(ctx, placed ? placed.get() : GetRef());
        }
    }
    MarkDirty(ctx);
}

int CCItem::Delete(cells::CTX * ctx) {
    InvalidateDependents(ctx);
    MarkDirty(ctx);
    DropBlock();
    DeleteDependentRefs(ctx);
    return 1;
}

void CCItem::ReCalcDependents(cells::CTX * ctx) {
    CCCellManager * const manager = ctx->manager();
    if (!manager) return;
    SessionGuard const session(manager);
    CCRefList * const loaded = LoadDependents(ctx);
    RefListHolder const copy(CopyRefList(loaded));
    RefListFree(loaded, 0);
    RecalcDependentRefs(ctx, copy.list);
}

void CCItem::ReCalcAllDependents(cells::CTX * ctx) {
    CCCellManager * const manager = ctx->manager();
    if (!manager) return;
    SessionGuard const session(manager);
    RefListHolder const list(manager->LoadDependencies(GetRef()));
    RecalcDependentRefs(ctx, list.list);
}

void CCItem::MarkForCalc(cells::CTX * ctx) {
    CCCellManager * const manager = ctx->manager();
    if (!manager) return;
    SessionGuard const session(manager);
    manager->InitIdleRecalc(this, 1);
}

void CCItem::RecalcDependentRefs(cells::CTX * ctx, CCRefList * list) {
    CCCellManager * const manager = ctx->manager();
    for (; manager && list; list = list->m_pNext) {
        CCItem * const item = cells::internal::Resolve(*manager, list->m_pRef).item;
        if (!item || !manager->GetAutoCalc()) continue;
        if (CCWorkbook * workbook = manager->GetWorkbook())
            workbook->GetCalcCache().Notify(manager, list->m_pRef, 1);
        else if (item->IsFormulaLink())
            manager->m_ProcessList.AddLast(item->GetRef());
        else
            manager->ProcessDependents(list->m_pRef, manager->m_ProcessList);
    }
}

namespace {

// Which references the walk of IsCirc has met. Cells have small keys; cells that carry a sheet all
// share the key 1 (or 0), so that after the first of them every later one is skipped. That is
// enough: longer cycles are found elsewhere.
class MetReferences {
public:
    // True the first time.
    bool Enter(CCRef const * ref) {
        if (ref->GetType() == kRefCell)
            return m_Keys.insert(KeyOf(*static_cast<CCRCRef const *>(ref))).second;
        if (ref->GetType() == kRefSheets) {
            auto const & sheets = *static_cast<CCRef3D const *>(ref);
            if (sheets.ref && sheets.ref->GetType() == kRefCell) {
                bool const placed = sheets.IsManagerForm() || (sheets.firstSheet & 0xFF) != 0 ||
                                    KeyOf(*static_cast<CCRCRef const *>(sheets.ref)) != 0;
                return m_Keys.insert(placed ? 1u : 0u).second;
            }
        }
        if (m_Others.count(ref)) return false;
        m_Kept.push_back(std::unique_ptr<CCRef>(ref->Copy()));
        m_Others.insert(m_Kept.back().get());
        return true;
    }

private:
    static unsigned KeyOf(CCRCRef const & cell) { return unsigned(cell.col) << 16 | cell.row; }

    std::set<unsigned> m_Keys;
    std::vector<std::unique_ptr<CCRef>> m_Kept;
    cells::internal::RefSet m_Others;
};

// A list that is taken from at the head and added to at the tail.
class WorkList {
public:
    explicit WorkList(CCRefList * list) { Append(list); }
    WorkList(WorkList const &) = delete;
    WorkList & operator=(WorkList const &) = delete;
    ~WorkList() { RefListFree(m_Head, 0); }

    CCRefList * Head() const { return m_Head; }
    void Append(CCRefList * list) {
        *m_End = list;
        while (*m_End) m_End = &(*m_End)->m_pNext;
    }
    void Drop() {
        CCRefList * const node = m_Head;
        m_Head = node->m_pNext;
        if (!m_Head) m_End = &m_Head;
        cells::internal::FreeRefNode(node, false);
    }

private:
    CCRefList * m_Head = nullptr;
    CCRefList ** m_End = &m_Head;
};

} // namespace

int CCItem::IsCirc(cells::CTX * ctx) {
    CCCellManager * const manager = ctx->manager();
    if (!manager) return 0;
    WorkList work(manager->LoadDependencies(GetRef()));
    if (!work.Head()) return 0;
    CCRef3D const self(ctx, GetRef());
    for (CCRefList const * node = work.Head(); node; node = node->m_pNext)
        if (node->m_pRef && node->m_pRef->IsEqual(&self)) return 1;
    MetReferences met;
    for (; work.Head(); work.Drop()) {
        CCRef const * const ref = work.Head()->m_pRef;
        if (!ref || !met.Enter(ref)) continue;
        cells::internal::Place const place = cells::internal::Resolve(*manager, ref);
        if (place.item && (place.item == this || place.item->Contain(&self))) return 1;
        work.Append(place.owner->LoadDependencies(ref));
    }
    return 0;
}

using SCItemPool = cells::internal::NodePool<SCItemList>;

namespace {

SCItemList ** PlaceInList(SCItemList *& list, CCRef const * ref) {
    SCItemList ** at = &list;
    auto const isMatch = [&](CCItem const * item) {
        CCRef const * const place = item ? item->GetRef() : nullptr;
        return place && place->IsEqual(ref);
    };
    while (*at && !isMatch((*at)->m_pItem)) at = &(*at)->m_pNext;
    return at;
}

} // namespace

void ItemListAdd(SCItemList *& list, CCItem * item) {
    list = new (SCItemPool::Take()) SCItemList{item, list};
}

SCItemList * ItemListFind(SCItemList * list, CCRef const * ref) { return *PlaceInList(list, ref); }

int ItemListRemove(SCItemList *& list, CCRef const * ref) {
    SCItemList ** const place = PlaceInList(list, ref);
    SCItemList * const node = *place;
    if (!node) return 0;
    *place = node->m_pNext;
    delete node->m_pItem;
    SCItemPool::Give(node);
    return 1;
}

void ItemListFree(SCItemList * list, int deleteItems) {
    while (list) {
        SCItemList * const next = list->m_pNext;
        if (deleteItems) delete list->m_pItem;
        SCItemPool::Give(list);
        list = next;
    }
}
