#include "cells/CCWorkbook.h"

#include "cells/CCSheet.h"
#include "context/Context.h"
#include "formula/CCNameRef.h"
#include "formula/CCRemoteRef.h"
#include "formula/Scanners.h"
#include "platform/CArchive.h"
#include "platform/Dialogs.h"

#include <memory>

namespace {

constexpr int kLongestReference = 79; // units of a reference that a request may carry

} // namespace

CCWorkbook::CCWorkbook() = default;
CCWorkbook::~CCWorkbook() = default;

void CCWorkbook::Protect(wchar_t const * password) {
    m_bProtected = 1;
    m_strPassword = CString(password);
}

void CCWorkbook::UnProtect() {
    m_bProtected = 0;
    m_strPassword.Empty();
}

int CCWorkbook::DoProtectionDialog() {
    CString password = m_strPassword;
    bool const isOpen = m_bProtected && m_strPassword.IsEmpty();
    if (!isOpen && !cells::AskPassword(password)) return 0;
    if (m_bProtected)
        UnProtect();
    else
        Protect(password);
    return 1;
}

void CCWorkbook::UpdateAllOnRename(CString const & old, CString const & now) {
    CString const oldLink = CString(L"?") + old, newLink = CString(L"?") + now;
    for (int number = 0; number < GetSheetCount(); ++number)
        if (auto * sheet = dynamic_cast<CCSheet *>(GetSheetByNumber(number)))
            sheet->UpdateOnRename(oldLink, newLink);
}

int CCWorkbook::DoCalc(CCCellManager * manager) {
    if (!manager) return 1;
    m_CalcCache.SetManager(manager);
    m_CalcCache.Calculate(*manager);
    return 1;
}

// The sheet part of the reference is overwritten by blanks, so that nothing after it moves.
int CCWorkbook::TransportFile(cells::CTX * ctx, CFile & file) {
    CString document, reference;
    file.SeekToBegin();
    {
        CArchive ar(&file, CArchive::load);
        std::uint32_t operation;
        ar >> operation >> document >> reference;
    }
    if (reference.GetLength() > kLongestReference) return 0;
    wchar_t const * const text = reference.GetString();
    wchar_t const * at = text;
    CCRef * scanned = nullptr;
    CCCellManager * target;
    if (!_EatSheetRef(ctx, at, scanned)) {
        target = GetDefaultSheet();
    } else {
        std::unique_ptr<CCRef> const name(scanned);
        target = GetSheet(CString(L"?") + static_cast<CCNameRef const *>(scanned)->name());
        int const sheetPart = int(at - text);
        CString const blanked = CString(L' ', sheetPart) + reference.Mid(sheetPart);
        file.Seek(sizeof(std::uint32_t), CFile::begin);
        CArchive ar(&file, CArchive::store);
        ar << document << blanked;
        ar.Flush();
    }
    file.SeekToBegin();
    return target ? target->OnTransport(file) : 0;
}
