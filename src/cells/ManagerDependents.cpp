// CCCellManager: dependents and document items.
#include "cells/CCCellManager.h"
#include "cells/CCWorkbook.h"
#include "cells/Resolve.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefList.h"

using cells::internal::Place;
using cells::internal::Resolve;

int CCCellManager::RegisterDependent(CCRef const * ref, CCRef const * dependent) {
    if (!ref || !dependent) return 0;
    Place const place = Resolve(*this, ref);
    if (!place.item) return 1; // an empty place needs no entry
    if (place.owner == this) return place.item->RegisterDependent(ctx(), dependent);
    std::unique_ptr<CCRef> const placed(cells::internal::MakeDependentRef(ctx(), dependent));
    return place.item->RegisterDependent(place.owner->ctx(), placed.get());
}

namespace {

CCCellManager::CCDocItem * AsDocItem(CCItem * item) {
    CCRef const * const ref = item->GetRef();
    bool const isProperty = ref && ref->GetType() == kRefDocument;
    return isProperty ? dynamic_cast<CCCellManager::CCDocItem *>(item) : nullptr;
}

} // namespace

int CCCellManager::UnRegisterDependent(CCItem * item, CCRef const * dependent) {
    if (!item || !dependent) return 0;
    if (CCDocItem * property = AsDocItem(item)) {
        property->RemoveDependent(ctx(), dependent);
        SetDirty();
    } else {
        item->UnRegisterDependent(ctx(), dependent);
    }
    return 1;
}

int CCCellManager::UnRegisterDependent(CCRef const * ref, CCRef const * dependent) {
    if (!ref || !dependent) return 0;
    Place const place = Resolve(*this, ref);
    if (place.owner == this) return UnRegisterDependent(place.item, dependent);
    std::unique_ptr<CCRef> const placed(cells::internal::MakeDependentRef(ctx(), dependent));
    return place.owner->UnRegisterDependent(place.item, placed.get());
}

int CCCellManager::InvalidateRef(CCRef const * ref, CCRef const * by) {
    CCCellManager * owner;
    CCCell * const cell = CellAt(ref, owner);
    if (!cell) return 0;
    cell->InvalidateRef(owner->ctx(), by);
    return 1;
}

int CCCellManager::MoveFormula(CCRef const * ref, CCRef const * from, CCRef const * to) {
    Place const place = Resolve(*this, ref);
    if (!place.item) return 0;
    place.item->UpdateDependent(place.owner->ctx(), from, to);
    return 1;
}

int CCCellManager::MoveDependent(CCRef const * ref, CCRef const * from, CCRef const * to,
                                 int mode) {
    CCCellManager * owner;
    CCCell * const cell = CellAt(ref, owner);
    if (!cell) return 0;
    cell->UpdateFormula(owner->ctx(), from, to, mode);
    return 1;
}

int CCCellManager::SetValueInCompound(CCRef const *, CString const &, int, CCCellValue const &) {
    return 0;
}

CCRefList * CCCellManager::LoadDependencies(CCRef const * ref) {
    if (!ref) return nullptr;
    Place const place = Resolve(*this, ref);
    CCItem * item = place.item;
    if (CCRef const * inner = item ? nullptr : cells::internal::InnerRef(ref))
        if (inner->GetType() == kRefDocument)
            item = GetDocumentItem(static_cast<CCDocumentRef const *>(inner)->docType);
    return item ? item->LoadDependents(place.owner->ctx()) : nullptr;
}

void CCCellManager::OnRemoveItem(CCItem * item) {
    std::erase(m_FormulaItems, item);
    CCWorkbook * const workbook = GetWorkbook();
    if (!workbook || !item) return;
    workbook->GetCalcCache().SetManager(this);
    workbook->GetCalcCache().RemoveEntry(item->GetRef());
}

void CCCellManager::OnNewPrecedent(CCRef const * reader) {
    if (CCWorkbook * workbook = GetWorkbook()) workbook->GetCalcCache().Reposition(reader);
}

// Document items

CCCellManager::CCDocItem * CCCellManager::FindDocItem(CCRef const * ref) const {
    SCItemList const * const node = ref ? ItemListFind(m_pDocItems, ref) : nullptr;
    return node ? static_cast<CCDocItem *>(node->m_pItem) : nullptr;
}

bool CCCellManager::CCDocItem::IsEqual(CCItem const * item) const {
    CCRef const & own = m_Ref;
    return item && item->GetRef() && own.IsEqual(item->GetRef());
}

int CCCellManager::RegisterDocumentDependent(CCDocumentRef const * ref, CCRef const * dependent) {
    if (!ref || !dependent) return 0;
    CCDocItem * item = FindDocItem(ref);
    if (!item) {
        item = new CCDocItem(*ref);
        ItemListAdd(m_pDocItems, item);
    }
    return item->RegisterDependent(ctx(), dependent);
}

int CCCellManager::UnRegisterDocumentDependent(CCDocumentRef const * ref, CCRef const * dependent) {
    CCDocItem * const item = FindDocItem(ref);
    if (!item || !item->UnRegisterDependent(ctx(), dependent)) return 0;
    if (item->IsEmpty()) ItemListRemove(m_pDocItems, ref);
    return 1;
}

int CCCellManager::MoveDocumentFormula(CCDocumentRef const * ref, CCRef const * from,
                                       CCRef const * to) {
    if (CCDocItem * item = FindDocItem(ref)) item->UpdateDependent(ctx(), from, to);
    return 0;
}

void CCCellManager::RecalcDocumentItems(CCDocumentRef::ECDocRefType type) {
    if (CCItem const * item = GetDocumentItem(type)) InitIdleRecalc(item, 0);
}

CCItem * CCCellManager::GetDocumentItem(CCDocumentRef::ECDocRefType type) {
    CCDocumentRef const ref(type);
    return FindDocItem(&ref);
}
