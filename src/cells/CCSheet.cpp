#include "cells/CCSheet.h"

#include "cells/CCWorkbook.h"
#include "formula/CCFormula.h"
#include "formula/CCRefList.h"
#include "formula/CCRemoteRef.h"
#include "formula/Scanners.h"

#include <sstream>

namespace {

CString LinkTo(CString const & sheet) { return CString(L"?") + sheet; }

} // namespace

int CCSheet::IsValidSheetName(wchar_t const * name) const {
    CCWorkbook * const workbook = GetWorkbook();
    return workbook ? workbook->IsValidSheetName(name) : 0;
}

CCRemoteRef * CCSheet::TranslateToSheetRef(CCRef const * ref) {
    CCCellManager const * sheet;
    CCRef const * const inner = InnerPlace(ref, sheet);
    if (!inner) return nullptr;
    std::wostringstream text;
    inner->Print(ctx(), text, 0);
    return new CCRemoteRef(LinkTo(sheet->GetSheetName()), CString(std::wstring_view(text.str())));
}

void CCSheet::OnRename(wchar_t const * name) {
    CCWorkbook * const workbook = GetWorkbook();
    if (!workbook) return;
    CString old = LinkTo(GetSheetName()), now = LinkTo(CString(name));
    cells::internal::RefListHolder const dependents(
        CopyRefList(cells::internal::RefListHolder(LoadDependents(ctx())).list));
    for (CCRefList const * node = dependents.list; node; node = node->m_pNext) {
        if (!node->m_pRef || node->m_pRef->GetType() != kRefRemote) continue;
        auto const & link = *static_cast<CCRemoteRef const *>(node->m_pRef);
        CCCellManager * const sheet = workbook->GetSheet(link.document());
        wchar_t const * text = link.item();
        CCRef * scanned = nullptr;
        uchar flags = 0;
        if (!sheet || !_EatRef(sheet->ctx(), text, scanned, flags)) continue;
        std::unique_ptr<CCRef> const place(scanned);
        auto * const cell = dynamic_cast<CCCell *>(sheet->GetItem(place.get()));
        CCFormula * tree = nullptr;
        uchar type = kFormulaNone;
        if (!cell || !cell->LoadFormula(sheet->ctx(), tree, type)) continue;
        std::unique_ptr<CCFormula> const copy(tree);
        copy->OnSheetRename(old, now);
        cell->SaveFormula(sheet->ctx(), copy.get(), type);
    }
}

void CCSheet::UpdateOnRename(CString const & old, CString const & now) {
    cells::internal::RefListHolder const dependents(
        CopyRefList(cells::internal::RefListHolder(LoadDependents(ctx())).list));
    bool changed = false;
    for (CCRefList * node = dependents.list; node; node = node->m_pNext) {
        if (!node->m_pRef || node->m_pRef->GetType() != kRefRemote) continue;
        auto & link = *static_cast<CCRemoteRef *>(node->m_pRef);
        if (link.m_strDocument.CompareNoCase(old) != 0) continue;
        link.m_strDocument = now;
        changed = true;
    }
    if (changed) SaveDependents(ctx(), dependents.list);
}
