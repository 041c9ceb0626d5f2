// CCCellManager: dependents, document items, names of other documents.
#include "core/CCCellManager.h"
#include "core/CCWorkbook.h"
#include "core/Resolve.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefList.h"
#include "formula/CCRemoteRef.h"
#include "formula/Scanners.h"

#include <sstream>

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

int CCCellManager::UnRegisterDependent(CCItem * item, CCRef const * dependent) {
    if (!item || !dependent) return 0;
    item->UnRegisterDependent(ctx(), dependent);
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
    return place.item ? place.item->LoadDependents(place.owner->ctx()) : nullptr;
}

void CCCellManager::OnRemoveItem(CCItem * item) {
    if (m_pFormulaItem == item) m_pFormulaItem = nullptr;
    CCWorkbook * const workbook = GetWorkbook();
    if (!workbook || !item) return;
    workbook->GetCalcCache().SetManager(this);
    workbook->GetCalcCache().RemoveEntry(item->GetRef());
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

// Other documents

// A link to a sheet of the same workbook is asked of that sheet, any other of this document.
int CCCellManager::IsValidRemoteRef(CCRemoteRef const * ref, int op) {
    if (!ref) return 0;
    wchar_t const * const document = ref->document();
    wchar_t const * const item = ref->item();
    CCWorkbook * const workbook = GetWorkbook();
    if (*document == L'?' && workbook && IsValidSheetName(document)) {
        CCCellManager const * const sheet = workbook->GetSheet(document);
        return sheet && sheet->IsValidReference(item);
    }
    return IsValidDocument(document) && (op == kRemoteGetDataSources || IsValidReference(item));
}

namespace {

CString TextOf(cells::CTX * ctx, CCRef const * ref) {
    std::wostringstream stream;
    ref->Print(ctx, stream, 0);
    return CString(std::wstring_view(stream.str()));
}

} // namespace

CCRemoteRef * CCCellManager::TranslateToRemoteRef(CCRef const * ref) const {
    CCRef const * const inner = cells::internal::InnerRef(ref);
    if (!inner) return nullptr;
    CCCellManager const * sheet = this;
    if (inner != ref)
        if (CCCellManager const * named = static_cast<CCRef3D const *>(ref)->GetManager())
            sheet = named;
    CString const text = sheet->GetSheetName() + CString(L"!") + TextOf(ctx(), inner);
    return new CCRemoteRef(GetDocumentName(), text);
}

// An empty sheet part, or the own sheet's name, may stand before the place.
CCRef * CCCellManager::TranslateToInternalRef(CCRemoteRef const * ref) const {
    if (!ref) return nullptr;
    cells::CTX * const context = ctx();
    wchar_t const * at = ref->item();
    _EatWhite(nullptr, at);
    wchar_t const * const word = cells::internal::EndOfWord(at);
    CString const sheet(at, int(word - at));
    if (*word == L'!' && (sheet.IsEmpty() || sheet.CompareNoCase(GetSheetName()) == 0))
        at = word + 1;
    CCRef * parsed = nullptr;
    uchar flags = 0;
    int const found = GetType() == 1 ? _EatSpreadRef(context, at, parsed, flags)
                                     : _EatNameRef(context, at, parsed, flags);
    return found ? parsed : nullptr;
}

namespace {

using Remote = std::unique_ptr<CCRemoteRef>;

// A local reference as the peer knows it; a remote one goes as it is.
Remote AsRemote(CCCellManager const & manager, CCRef const * ref) {
    if (!ref) return nullptr;
    if (ref->GetType() == kRefRemote) return Remote(static_cast<CCRemoteRef *>(ref->Copy()));
    return Remote(manager.TranslateToRemoteRef(ref));
}

} // namespace

int CCCellManager::DoRemoteRegisterDependent(CCRemoteRef const * ref, CCRef const * dependent) {
    Remote const remote = AsRemote(*this, dependent);
    return remote ? DoRemoteRegisterDependent(ref, remote.get()) : 0;
}

int CCCellManager::DoRemoteUnRegisterDependent(CCRemoteRef const * ref, CCRef const * dependent) {
    Remote const remote = AsRemote(*this, dependent);
    return remote ? DoRemoteUnRegisterDependent(ref, remote.get()) : 0;
}

int CCCellManager::DoRemoteInvalidateRef(CCRemoteRef const * ref, CCRef const * by) {
    Remote const remote = AsRemote(*this, by);
    return remote ? DoRemoteInvalidateRef(ref, remote.get()) : 0;
}

int CCCellManager::DoRemoteMoveFormula(CCRemoteRef const * ref, CCRef const * from,
                                       CCRef const * to) {
    Remote const old = AsRemote(*this, from), now = AsRemote(*this, to);
    return old && now ? DoRemoteMoveFormula(ref, old.get(), now.get()) : 0;
}

int CCCellManager::DoRemoteMoveDependent(CCRemoteRef const * ref, CCRef const * from,
                                         CCRef const * to, int mode) {
    Remote const old = AsRemote(*this, from), now = AsRemote(*this, to);
    return old && now ? DoRemoteMoveDependent(ref, old.get(), now.get(), mode) : 0;
}
