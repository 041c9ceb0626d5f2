// CCCellManager: cells, protection, lifecycle.
#include "cells/CCCellManager.h"
#include "cells/Resolve.h"
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

int CCCellManager::GetRecalcRemote(int ask) {
    if (ask && GetAutoCalc() && m_eRecalcRemote == rrUnknown)
        m_eRecalcRemote = cells::AskYesNo(cells::kStringRecalcRemote) ? rrYes : rrNo;
    return m_eRecalcRemote == rrYes;
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
    m_eRecalcRemote = rrUnknown;
    m_FormulaItems.clear();
    m_nAllRecalc = 0;
}

void CCCellManager::ReleaseContents() {
    m_RecalcList.Empty();
    m_ProcessList.Empty();
    m_OpenRefs.clear();
    m_nFirstFree = 0;
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
    if (!ref) return 0;
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
