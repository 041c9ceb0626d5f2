#include "formula/CCRefFormula.h"

#include "cells/CCCellManager.h"
#include "cells/Resolve.h"
#include "context/Context.h"
#include "formula/CCConstFormula.h"
#include "formula/CCDocumentRef.h"
#include "formula/CCNameRef.h"
#include "formula/CCRCRef.h"
#include "formula/CCRegionRef.h"
#include "formula/CCRemoteRef.h"
#include "formula/Clipboard.h"

#include <utility>

CCRefFormula::CCRefFormula(wchar_t const * name, uchar mode)
    : CCFormula(kRefFormula), m_Ref(new CCNameRef(name)), m_nMode(mode) {}

CCRefFormula::CCRefFormula(uchar col, ushort row, uchar mode)
    : CCFormula(kRefFormula), m_Ref(new CCRCRef(col, row)), m_nMode(mode) {}

CCRefFormula::CCRefFormula(uchar left, ushort top, uchar right, ushort bottom, uchar mode)
    : CCFormula(kRefFormula), m_Ref(new CCRegionRef(left, top, right, bottom)), m_nMode(mode) {}

CCRefFormula::CCRefFormula(CCRefFormula const & other)
    : CCFormula(other), m_Ref(other.m_Ref ? other.m_Ref->Copy() : nullptr), m_nMode(other.m_nMode) {
}

int CCRefFormula::Check(cells::CTX * ctx, CCRef const *) const {
    if (!m_bChecked) m_bChecked = m_Ref && m_Ref->IsValid(ctx);
    return m_bChecked ? 0 : int(errRef);
}

void CCRefFormula::Eval(cells::CTX * ctx, CCCellValue & value, CCRef const *) const {
    value.Set();
    if (!m_Ref || !m_Ref->GetValue(ctx, value)) value.Set(errRef);
}

void CCRefFormula::Print(cells::CTX * ctx, std::wostream & stream, uchar) const {
    if (m_Ref) m_Ref->Print(ctx, stream, m_nMode);
}

void CCRefFormula::Print2File(cells::CTX * ctx, std::wostream & stream, uchar priority) const {
    Print(ctx, stream, priority);
}

int CCRefFormula::IsEditSourceRef(cells::CTX * ctx, CCRef const *) const {
    return m_Ref ? m_Ref->IsSingleValue(ctx) : 0;
}

CCRef const * CCRefFormula::GetEditSourceRef(cells::CTX * ctx, CCRef const *) const {
    return m_Ref && m_Ref->IsSingleValue(ctx) ? m_Ref->Copy() : nullptr;
}

int CCRefFormula::ContainsLink(cells::CTX *, CCRef const * ref, CCRef const *) const {
    return m_Ref ? m_Ref->IsEqual(ref) : 0;
}

int CCRefFormula::ContainsRemoteLinks() {
    return m_Ref && m_Ref->GetType() == kRefRemote && !ContainsSheetLinks();
}

int CCRefFormula::ContainsSheetLinks() const {
    return m_Ref && m_Ref->GetType() == kRefRemote &&
           static_cast<CCRemoteRef *>(m_Ref.get())->IsSheetLink();
}

int CCRefFormula::IsSingleValue(cells::CTX * ctx, CCRef const *) {
    return m_Ref ? m_Ref->IsSingleValue(ctx) : 0;
}

int CCRefFormula::RegisterDependents(cells::CTX * ctx, CCRef const * dependent) const {
    return m_Ref ? m_Ref->RegisterDependent(ctx, dependent) : 0;
}

void CCRefFormula::UnRegisterDependents(cells::CTX * ctx, CCRef const * dependent) const {
    if (m_Ref) m_Ref->UnRegisterDependent(ctx, dependent);
}

int CCRefFormula::InvalidateRef(cells::CTX *, CCRef const * ref, CCFormula *& out, CCRef const *) {
    bool const gone = m_Ref && ref && m_Ref->IsEqual(ref);
    out = gone ? new CCConstFormula(errValue) : Copy();
    return gone;
}

namespace {

// Whether the place of a formula's reference is the item itself, or lies in it.
bool IsItemGone(cells::CTX * ctx, CCRef const * ref, CCItem const * item) {
    CCCellManager * manager = ctx->manager();
    if (!manager || !item || !ref) return false;
    CCRef const * const itemRef = item->GetRef();
    if (itemRef && itemRef->GetType() == kRefDocument) return ref->IsEqual(itemRef) != 0;
    CCItem const * const found = cells::internal::Resolve(*manager, ref).item;
    return found && (found == item || (itemRef && found->GetRef() && itemRef->IsInside(ref) != 0));
}

} // namespace

int CCRefFormula::InvalidateItem(cells::CTX * ctx, CCItem const * item, CCFormula *& out,
                                 CCRef const *) {
    bool const gone = IsItemGone(ctx, m_Ref.get(), item);
    out = gone ? new CCConstFormula(errRef) : Copy();
    return gone;
}

void CCRefFormula::MoveFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to) {
    if (m_Ref) m_Ref->MoveFormula(ctx, from, to);
}

void CCRefFormula::UpdateInPaste(cells::CTX * ctx, CCRef const * oldRef, CCRef const * newRef,
                                 CCClipboardData const * clip) {
    if (!m_Ref || !clip) return;
    m_bChecked = false;
    if (m_Ref->IsInside(clip->source))
        m_Ref->UpdateInPaste(ctx, clip);
    else if (clip->mode == 1)
        m_Ref->Update(ctx, oldRef, newRef, m_nMode);
}

int CCRefFormula::UpdateRef(cells::CTX * ctx, CCRef const * self, CCRef const * old,
                            CCRef const * now, int unregister, CCFormula *& out) {
    if (!m_Ref || !old || !m_Ref->IsEqual(old)) {
        out = Copy();
        return 0;
    }
    if (unregister) m_Ref->UnRegisterDependent(ctx, self);
    out = new CCRefFormula(now, m_nMode);
    return 1;
}

ushort CCRefFormula::OpenRef(cells::CTX * ctx, CCRef const *) {
    return m_nOpened = m_nRunning = m_Ref ? m_Ref->OpenRef(ctx) : ushort(0);
}

int CCRefFormula::NextValue(cells::CTX * ctx, ushort handle, CCCellValue & value, CCRef const *) {
    if (!m_Ref) return 0;
    return m_Ref->NextValue(ctx, handle == m_nOpened ? m_nRunning : handle, value);
}

int CCRefFormula::RefSize(cells::CTX * ctx, ushort handle, CSize & size, CCRef const *) {
    return m_Ref ? m_Ref->RefSize(ctx, handle == m_nOpened ? m_nRunning : handle, size) : 0;
}

int CCRefFormula::CloseRef(cells::CTX * ctx, ushort handle, CCRef const *) {
    if (!m_Ref) return 0;
    bool const own = handle != 0 && handle == m_nOpened;
    ushort const running = own ? m_nRunning : handle;
    if (own) m_nOpened = m_nRunning = 0;
    return m_Ref->CloseRef(ctx, running);
}

void CCRefFormula::OnSheetRename(CString & old, CString & now) {
    if (!m_Ref || m_Ref->GetType() != kRefRemote) return;
    CCRemoteRef & remote = *static_cast<CCRemoteRef *>(m_Ref.get());
    if (remote.m_strDocument.CompareNoCase(old) == 0) remote.m_strDocument = now;
}

void CCRefFormula::UpdateArgsOnSheetRename(cells::CTX * ctx, CCRemoteRef const * old,
                                           CCRemoteRef const * now) {
    CCCellManager * const manager = ctx->manager();
    if (!manager || !m_Ref) return;
    cells::internal::Place const place = cells::internal::Resolve(*manager, m_Ref.get());
    if (place.item) place.item->UpdateArgsOnSheetRename(place.owner->ctx(), old, now);
}

void SwapFormulaRefs(CCRefFormula * a, CCRefFormula * b) {
    std::swap(a->m_Ref, b->m_Ref);
    a->m_bChecked = b->m_bChecked = false;
}
