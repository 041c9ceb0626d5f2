#include "formula/CCRemoteRef.h"

#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/CCRefFormula.h"
#include "formula/Scanners.h"
#include "platform/Digits.h"
#include "platform/Text.h"

#include <algorithm>
#include <memory>
#include <sstream>

void CCRemoteRef::Clear() {
    m_strDocument.Empty();
    m_strReference.Empty();
}

bool CCRemoteRef::IsEqual(CCRemoteRef const & other) const {
    return m_strDocument == other.m_strDocument && m_strReference == other.m_strReference;
}

int CCRemoteRef::IsEqual(CCRef const * other) const {
    if (!other || other->GetType() != kRefRemote) return 0;
    auto const & remote = *static_cast<CCRemoteRef const *>(other);
    return m_strDocument.CompareNoCase(remote.m_strDocument) == 0 &&
           m_strReference.CompareNoCase(remote.m_strReference) == 0;
}

void CCRemoteRef::Print(cells::CTX *, std::wostream & stream, uchar) const {
    cells::WriteText(stream, IsSheetLink() ? m_strDocument.Mid(1) : m_strDocument);
    cells::WriteText(stream, L"!");
    cells::WriteText(stream, m_strReference);
}

// Reads the item as a reference, changes it and prints it back with its flags; a text that is no
// reference stays.
template <typename Change>
void CCRemoteRef::ChangeItem(cells::CTX * ctx, Change && change) {
    if (!IsSheetLink()) return;
    wchar_t const * text = m_strReference;
    CCRef * parsed = nullptr;
    uchar flags = 0;
    if (!_EatSpreadRef(ctx, text, parsed, flags)) return;
    std::unique_ptr<CCRef> const ref(parsed);
    change(*ref, flags);
    std::wostringstream stream;
    CCRefFormula(ref.get(), flags).Print(ctx, stream, 0);
    m_strReference = CString(std::wstring_view(stream.str()));
}

void CCRemoteRef::Update(cells::CTX * ctx, CCRef const * from, CCRef const * to, uchar) {
    ChangeItem(ctx, [&](CCRef & ref, uchar flags) { ref.Update(ctx, from, to, flags); });
}

void CCRemoteRef::UpdateInPaste(cells::CTX * ctx, CCClipboardData const * clip) {
    ChangeItem(ctx, [&](CCRef & ref, uchar) { ref.UpdateInPaste(ctx, clip); });
}

int CCRemoteRef::IsInside(CRect const &) const { return 0; }

int CCRemoteRef::IsValid(cells::CTX * ctx) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteIsValidRef(this) : 0;
}

int CCRemoteRef::GetValue(cells::CTX * ctx, CCCellValue & value) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteGetValue(this, value, 0) : 0;
}

ushort CCRemoteRef::OpenRef(cells::CTX * ctx) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteOpenRef(this) : ushort(0);
}

int CCRemoteRef::RefSize(cells::CTX * ctx, ushort handle, CSize & size) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteRefSize(this, handle, size) : 0;
}

int CCRemoteRef::NextValue(cells::CTX * ctx, ushort & handle, CCCellValue & value) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteNextValue(this, handle, value) : 0;
}

int CCRemoteRef::CloseRef(cells::CTX * ctx, ushort handle) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteCloseRef(this, handle) : 0;
}

int CCRemoteRef::RegisterDependent(cells::CTX * ctx, CCRef const * dependent) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteRegisterDependent(this, dependent) : 0;
}

int CCRemoteRef::UnRegisterDependent(cells::CTX * ctx, CCRef const * dependent) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteUnRegisterDependent(this, dependent) : 0;
}

int CCRemoteRef::InvalidateRef(cells::CTX * ctx, CCRef const * by) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteInvalidateRef(this, by) : 0;
}

int CCRemoteRef::MoveFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteMoveFormula(this, from, to) : 0;
}

int CCRemoteRef::MoveDependent(cells::CTX * ctx, CCRef const * from, CCRef const * to, int mode) {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteMoveDependent(this, from, to, mode) : 0;
}

int CCRemoteRef::IsSingleValue(cells::CTX * ctx) const {
    CCCellManager * manager = ctx->manager();
    return manager ? manager->DoRemoteIsSingleValue(this) : 0;
}

// A remote reference orders before everything, itself included: no order of this document has
// places of others in it, and so none needs them told apart.
int CCRemoteRef::Compare(CCRef const *) const { return -1; }

bool IsDocumentCalled(CString const & path, CString const & name) {
    int const slash = std::max(path.ReverseFind(L'/'), path.ReverseFind(L'\\'));
    CString const file = path.Mid(slash + 1);
    int const dot = file.ReverseFind(L'.');
    for (CString const & known : {path, dot < 0 ? file : file.Left(dot), file})
        if (known.CompareNoCase(name) == 0) return true;
    return false;
}
