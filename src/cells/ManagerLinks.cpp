// CCCellManager: links between documents. How places are named for others, what is asked of them,
// and what is answered.
#include "cells/CCCellManager.h"
#include "cells/CCWorkbook.h"
#include "cells/Resolve.h"
#include "formula/CCRef3D.h"
#include "formula/CCRemoteRef.h"
#include "formula/Scanners.h"

#include <algorithm>
#include <sstream>

using cells::internal::Resolve;

// Names

int CCCellManager::IsValidDocument(wchar_t const * name) const {
    return IsDocumentCalled(GetDocumentName(), CString(name));
}

// The place that a text names, an empty sheet part or the own sheet's name in front of it or not.
// `at` stands after it then.
CCRef * CCCellManager::ScanPlace(wchar_t const *& at) const {
    _EatWhite(nullptr, at);
    wchar_t const * const word = cells::internal::EndOfWord(at);
    CString const sheet(at, int(word - at));
    if (*word == L'!' && (sheet.IsEmpty() || sheet.CompareNoCase(GetSheetName()) == 0))
        at = word + 1;
    CCRef * parsed = nullptr;
    uchar flags = 0;
    int const found = GetType() == 1 ? _EatSpreadRef(ctx(), at, parsed, flags)
                                     : _EatNameRef(ctx(), at, parsed, flags);
    return found ? parsed : nullptr;
}

int CCCellManager::IsValidReference(wchar_t const * text) const {
    if (!text) return 0;
    wchar_t const * at = text;
    std::unique_ptr<CCRef> const ref(ScanPlace(at));
    return ref && *at == 0 && const_cast<CCCellManager *>(this)->IsValidRef(ref.get());
}

// A link to a sheet of the same workbook is asked of that sheet, any other of this document.
int CCCellManager::IsValidRemoteRef(CCRemoteRef const * ref, int op) {
    if (!ref) return 0;
    CString const & document = ref->document();
    CString const & item = ref->item();
    CCWorkbook * const workbook = GetWorkbook();
    if (ref->IsSheetLink() && workbook && IsValidSheetName(document)) {
        CCCellManager const * const sheet = workbook->GetSheet(document);
        return sheet && sheet->IsValidReference(item);
    }
    return IsValidDocument(document) && (op == kRemoteGetDataSources || IsValidReference(item));
}

CCRef const * CCCellManager::InnerPlace(CCRef const * ref, CCCellManager const *& sheet) const {
    CCRef const * const inner = cells::internal::InnerRef(ref);
    sheet = this;
    if (!inner || inner == ref) return inner;
    auto const & sheets = *static_cast<CCRef3D const *>(ref);
    CCCellManager const * const named =
        sheets.IsManagerForm()
            ? sheets.GetManager()
            : const_cast<CCCellManager *>(this)->GetManForNameIndex(sheets.firstSheet);
    if (named) sheet = named;
    return inner;
}

CCRemoteRef * CCCellManager::TranslateToRemoteRef(CCRef const * ref) const {
    CCCellManager const * sheet;
    CCRef const * const inner = InnerPlace(ref, sheet);
    if (!inner) return nullptr;
    std::wostringstream text;
    inner->Print(ctx(), text, 0);
    return new CCRemoteRef(GetDocumentName(), sheet->GetSheetName() + CString(L"!") +
                                                  CString(std::wstring_view(text.str())));
}

CCRef * CCCellManager::TranslateToInternalRef(CCRemoteRef const * ref) const {
    if (!ref) return nullptr;
    wchar_t const * at = ref->item();
    return ScanPlace(at);
}

// Asking others

namespace {

using Remote = std::unique_ptr<CCRemoteRef>;

// How the peer knows a place of this document: by its sheet where the peer is a sheet of the same
// workbook, else by the document; a place elsewhere by what it is.
Remote KnownAs(CCCellManager & manager, CCRemoteRef const * peer, CCRef const * ref) {
    if (!peer || !ref) return nullptr;
    if (ref->GetType() == kRefRemote) return Remote(static_cast<CCRemoteRef *>(ref->Copy()));
    if (manager.IsValidSheetName(peer->document())) return Remote(manager.TranslateToSheetRef(ref));
    return Remote(manager.TranslateToRemoteRef(ref));
}

// The sheet of the same workbook that a link names, as the item on which formulas that name it
// stand; null for a link to another document.
CCItem * SheetItem(CCCellManager & manager, CCRemoteRef const * peer) {
    CCWorkbook * const workbook = manager.GetWorkbook();
    if (!workbook || !peer || !manager.IsValidSheetName(peer->document())) return nullptr;
    return dynamic_cast<CCItem *>(workbook->GetSheet(peer->document()));
}

} // namespace

int CCCellManager::DoRemoteRegisterDependent(CCRemoteRef const * ref, CCRef const * dependent) {
    Remote const remote = KnownAs(*this, ref, dependent);
    if (!remote) return 1;
    if (CCItem * sheet = SheetItem(*this, ref)) sheet->RegisterDependent(ctx(), remote.get());
    return DoRemoteRegisterDependent(ref, remote.get());
}

int CCCellManager::DoRemoteUnRegisterDependent(CCRemoteRef const * ref, CCRef const * dependent) {
    Remote const remote = KnownAs(*this, ref, dependent);
    if (!remote) return 0;
    if (CCItem * sheet = SheetItem(*this, ref)) sheet->UnRegisterDependent(ctx(), remote.get());
    return DoRemoteUnRegisterDependent(ref, remote.get());
}

int CCCellManager::DoRemoteInvalidateRef(CCRemoteRef const * ref, CCRef const * by) {
    Remote const remote = KnownAs(*this, ref, by);
    return remote ? DoRemoteInvalidateRef(ref, remote.get()) : 0;
}

namespace {

// The two names of something that moved; on a sheet of the same workbook the new one takes the
// place of the old one.
struct MovedNames {
    MovedNames(CCCellManager & manager, CCRemoteRef const * peer, CCRef const * from,
               CCRef const * to)
        : old(KnownAs(manager, peer, from)), now(KnownAs(manager, peer, to)) {
        CCItem * const sheet = AreKnown() ? SheetItem(manager, peer) : nullptr;
        if (!sheet) return;
        sheet->UnRegisterDependent(manager.ctx(), old.get());
        sheet->RegisterDependent(manager.ctx(), now.get());
    }
    bool AreKnown() const { return old && now; }
    Remote old, now;
};

} // namespace

int CCCellManager::DoRemoteMoveFormula(CCRemoteRef const * ref, CCRef const * from,
                                       CCRef const * to) {
    MovedNames const names(*this, ref, from, to);
    return names.AreKnown() && DoRemoteMoveFormula(ref, names.old.get(), names.now.get());
}

int CCCellManager::DoRemoteMoveDependent(CCRemoteRef const * ref, CCRef const * from,
                                         CCRef const * to, int mode) {
    MovedNames const names(*this, ref, from, to);
    return names.AreKnown() && DoRemoteMoveDependent(ref, names.old.get(), names.now.get(), mode);
}

// Answering others

bool CCCellManager::IsAsked(CCRemoteRef const * ref) const {
    return ref && (IsValidSheetName(ref->document()) || IsValidDocument(ref->document()));
}

std::unique_ptr<CCRef> CCCellManager::AskedPlace(CCRemoteRef const * ref) const {
    return std::unique_ptr<CCRef>(IsAsked(ref) ? TranslateToInternalRef(ref) : nullptr);
}

int CCCellManager::OnRemoteIsValidRef(CCRemoteRef const * ref) {
    return IsAsked(ref) && IsValidRemoteRef(ref, kRemoteIsValidRef);
}

int CCCellManager::OnRemoteGetValue(CCRemoteRef const * ref, CCCellValue & value, int index) {
    auto const place = AskedPlace(ref);
    return place ? GetValue(place.get(), value, index) : 0;
}

int CCCellManager::OnRemoteGetDataSources(CCRemoteRef const * ref, CStringArray & sources,
                                          int flag) {
    return IsAsked(ref) ? GetDataSources(sources, flag) : 0;
}

int CCCellManager::OnRemoteGetItems(CCRemoteRef const * ref, CStringArray & items) {
    auto const place = AskedPlace(ref);
    return place ? GetItems(place.get(), items) : 0;
}

ushort CCCellManager::OnRemoteOpenRef(CCRemoteRef const * ref) {
    auto const place = AskedPlace(ref);
    return place ? OpenRef(place.get()) : ushort(0);
}

int CCCellManager::OnRemoteGetFirstRecord(CCRemoteRef const * ref, ushort handle,
                                          CPtrArray & values) {
    return AskedPlace(ref) ? GetFirstRecord(handle, values) : 0;
}

int CCCellManager::OnRemoteGetNextRecord(CCRemoteRef const * ref, ushort handle,
                                         CPtrArray & values) {
    return AskedPlace(ref) ? GetNextRecord(handle, values) : 0;
}

int CCCellManager::OnRemoteGetPreviousRecord(CCRemoteRef const * ref, ushort handle,
                                             CPtrArray & values) {
    return AskedPlace(ref) ? GetPreviousRecord(handle, values) : 0;
}

int CCCellManager::OnRemoteGetLastRecord(CCRemoteRef const * ref, ushort handle,
                                         CPtrArray & values) {
    return AskedPlace(ref) ? GetLastRecord(handle, values) : 0;
}

int CCCellManager::OnRemoteGetRecord(CCRemoteRef const * ref, ushort handle, int number,
                                     CPtrArray & values) {
    return AskedPlace(ref) ? GetRecord(handle, number, values) : 0;
}

int CCCellManager::OnRemoteRefSize(CCRemoteRef const * ref, ushort handle, CSize & size) {
    return AskedPlace(ref) ? RefSize(handle, size) : 0;
}

int CCCellManager::OnRemoteNextValue(CCRemoteRef const * ref, ushort handle, CCCellValue & value) {
    return AskedPlace(ref) ? NextValue(handle, value) : 0;
}

int CCCellManager::OnRemoteCloseRef(CCRemoteRef const * ref, ushort handle) {
    return AskedPlace(ref) ? CloseRef(handle) : 0;
}

int CCCellManager::OnRemoteRegisterDependent(CCRemoteRef const * ref,
                                             CCRemoteRef const * dependent) {
    auto const place = AskedPlace(ref);
    if (!place) return 0;
    NoteRemoteDependent();
    return RegisterDependent(place.get(), dependent);
}

int CCCellManager::OnRemoteUnRegisterDependent(CCRemoteRef const * ref,
                                               CCRemoteRef const * dependent) {
    auto const place = AskedPlace(ref);
    return place ? UnRegisterDependent(place.get(), dependent) : 0;
}

int CCCellManager::OnRemoteInvalidateRef(CCRemoteRef const * ref, CCRemoteRef const * by) {
    auto const place = AskedPlace(ref);
    return place ? InvalidateRef(place.get(), by) : 0;
}

int CCCellManager::OnRemoteMoveFormula(CCRemoteRef const * ref, CCRemoteRef const * old,
                                       CCRemoteRef const * now) {
    auto const place = AskedPlace(ref);
    return place ? MoveFormula(place.get(), old, now) : 0;
}

int CCCellManager::OnRemoteMoveDependent(CCRemoteRef const * ref, CCRemoteRef const * old,
                                         CCRemoteRef const * now, int mode) {
    auto const place = AskedPlace(ref);
    return place ? MoveDependent(place.get(), old, now, mode) : 0;
}

int CCCellManager::OnRemoteIsSingleValue(CCRemoteRef const * ref) {
    auto const place = AskedPlace(ref);
    return place ? IsSingleValue(place.get()) : 0;
}

// What is nobody's place here does not keep the asking document from its own work.
int CCCellManager::OnRemoteInitRecalc(CCRemoteRef const * ref, int flag) {
    if (!IsAsked(ref)) return 1;
    auto const place = AskedPlace(ref);
    if (!place) return 0;
    CCItem const * const item = Resolve(*this, place.get()).item;
    if (!item) return 1;
    if (!flag) return InitFormulaRecalc(item);
    InitIdleRecalc(item, 1);
    return 1;
}

int CCCellManager::OnRemoteSetSourceValue(CCRemoteRef const * ref, CCCellValue const & value) {
    auto const place = AskedPlace(ref);
    return place ? SetSourceValue(place.get(), value) : 0;
}

int CCCellManager::OnRemoteSetValueInCompound(CCRemoteRef const * ref, CString const & name,
                                              int number, CCCellValue const & value) {
    auto const place = AskedPlace(ref);
    return place ? SetValueInCompound(place.get(), name, number, value) : 0;
}
