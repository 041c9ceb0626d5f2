// CCCellManager: cells, protection, lifecycle.
#include "core/CCCellManager.h"
#include "core/Resolve.h"
#include "formula/CCRemoteRef.h"
#include "formula/Scanners.h"
#include "platform/Dialogs.h"
#include "platform/Resources.h"
#include "platform/Text.h"

#include <algorithm>
#include <sstream>
#include <utility>

using cells::internal::Place;
using cells::internal::Resolve;

CCCellManager::CCCellManager() : m_nSerial(cells::internal::EnterManager(this)) {}

CCCellManager::~CCCellManager() {
    cells::internal::LeaveManager(m_nSerial);
    ReleaseContents();
}

CCItem const * CCCellManager::GetItem(CCRef const * ref) const {
    return const_cast<CCCellManager *>(this)->GetItem(ref);
}

// The cell at a place and the manager that owns it; null where no item or no cell stands.
CCCell * CCCellManager::CellAt(CCRef const * ref, CCCellManager *& owner) const {
    Place const place = Resolve(*const_cast<CCCellManager *>(this), ref);
    owner = place.owner;
    return dynamic_cast<CCCell *>(place.item);
}

void CCCellManager::ErrorMessage(unsigned int id) {
    if (GetNotifyEnable()) cells::ShowMessage(id);
}

// Asks the user where the answer is not settled, and only when told to.
int CCCellManager::GetRecalcRemote(int ask) {
    if (m_eRecalcRemote != kRecalcRemoteAsk) return m_eRecalcRemote == kRecalcRemoteAlways;
    return ask && cells::AskYesNo(cells::kStringRecalcRemote);
}

void CCCellManager::Protect(wchar_t const * password) {
    m_bProtected = 1;
    m_strPassword = CString(password);
    SetDirty();
}

void CCCellManager::UnProtect() {
    m_bProtected = 0;
    m_strPassword.Empty();
    SetDirty();
}

int CCCellManager::IsProtLock(CCCell const * cell, int warn) const {
    if (!m_bProtected || !cell || !cell->IsLocked(ctx())) return 0;
    if (warn) const_cast<CCCellManager *>(this)->ErrorMessage(cells::kStringLocked);
    return 1;
}

void CCCellManager::DoProtectionDialog() {
    if (m_bProtected && m_strPassword.IsEmpty()) return UnProtect();
    CString password = m_strPassword;
    if (!cells::AskPassword(password)) return;
    if (m_bProtected)
        UnProtect();
    else
        Protect(password);
}

void CCCellManager::Revert() {
    ReleaseContents();
    m_bProtected = 0;
    m_strPassword.Empty();
    m_eRecalcRemote = kRecalcRemoteAsk;
    m_pFormulaItem = nullptr;
    m_nAllRecalc = 0;
}

void CCCellManager::ReleaseContents() {
    m_RecalcList.Empty();
    m_ProcessList.Empty();
    m_OpenRefs.clear();
    m_FreeSlots = {};
    ItemListFree(m_pDocItems, 1);
    m_pDocItems = nullptr;
}

int CCCellManager::SetDirtyMarking(int marking) { return std::exchange(m_nDirtyMarking, marking); }

int CCCellManager::GetCellValueText(CCRef const * ref, wchar_t * buffer, int bytes) const {
    CCCellManager * owner;
    CCCell const * const cell = CellAt(ref, owner);
    if (!cell) return 0;
    cell->GetValueText(owner->ctx(), buffer, bytes);
    return 1;
}

int CCCellManager::GetCellFormula(CCRef const * ref, wchar_t * buffer, int bytes) {
    CCCellManager * owner;
    CCCell * const cell = CellAt(ref, owner);
    if (!cell) return 0;
    cell->GetFormulaText(owner->ctx(), buffer, bytes);
    return 1;
}

int CCCellManager::SetCellText(CCRef const * ref, wchar_t const * text) {
    CCCellManager * owner;
    CCCell * const cell = CellAt(ref, owner);
    if (!cell) return 0;
    cell->SetText(owner->ctx(), text, 0);
    DoRecalc(-1);
    return 1;
}

int CCCellManager::ClearCell(CCRef const * ref, int what) {
    CCCellManager * owner;
    CCCell * const cell = CellAt(ref, owner);
    if (!cell) return 0;
    cell->Clear(owner->ctx(), what);
    DoRecalc(-1);
    return 1;
}

int CCCellManager::SetValue(CCRef const * ref, CCCellValue const & value) {
    CCCellManager * owner;
    CCCell * const cell = CellAt(ref, owner);
    if (!cell) return 0;
    cell->SetValue(owner->ctx(), value);
    return 1;
}

int CCCellManager::GetDataSources(CStringArray &, int) { return 0; }

int CCCellManager::GetItems(CCRef const * ref, CStringArray & strings) const {
    strings.RemoveAll();
    if (!ref || !GetItem(ref)) return 0;
    std::wostringstream stream;
    ref->Print(ctx(), stream, 0);
    strings.Add(CString(std::wstring_view(stream.str())));
    return 1;
}

// Writes through a chain of edit source cells to its end. A ring of them ends without a write.
int CCCellManager::SetSourceValue(CCRef const * ref, CCCellValue const & value) {
    if (!ref) return 0;
    if (!GetAutoCalc()) return 1;
    CCCellManager * owner;
    CCCell * cell = CellAt(ref, owner);
    if (!cell) return 0;
    std::vector<CCCell const *> met;
    for (;;) {
        for (CCCell const * before : met)
            if (before == cell) return 0;
        met.push_back(cell);
        std::unique_ptr<CCRef const> const source(cell->GetEditSourceRef(owner->ctx()));
        if (!source) return cell->SetValue(owner->ctx(), value);
        if (source->GetType() == kRefRemote)
            return owner->DoRemoteSetSourceValue(static_cast<CCRemoteRef const *>(source.get()),
                                                 value);
        CCCellManager * const current = owner;
        cell = current->CellAt(source.get(), owner);
        if (!cell) return 1;
    }
}

int CCCellManager::IsValidReference(wchar_t const * text) const {
    if (!text) return 0;
    cells::CTX * const context = ctx();
    wchar_t const * at = text;
    CCRef * parsed = nullptr;
    uchar flags = 0;
    int const found = GetType() == 1 ? _EatSpreadRef(context, at, parsed, flags)
                                     : _EatNameRef(context, at, parsed, flags);
    std::unique_ptr<CCRef> const ref(found ? parsed : nullptr);
    return ref && *at == 0 && const_cast<CCCellManager *>(this)->IsValidRef(ref.get());
}

int CCCellManager::IsValidDocument(wchar_t const * name) const {
    CString const path = GetDocumentName();
    CString const asked(name);
    int const slash = std::max(path.ReverseFind(L'/'), path.ReverseFind(L'\\'));
    CString const file = path.Mid(slash + 1);
    int const dot = file.ReverseFind(L'.');
    CString const bare = dot < 0 ? file : file.Left(dot);
    return asked.CompareNoCase(path) == 0 || asked.CompareNoCase(bare) == 0 ||
           asked.CompareNoCase(file) == 0;
}
