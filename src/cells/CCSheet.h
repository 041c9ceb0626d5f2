// CCSheet: a cell manager that is one sheet of a workbook.
//
// It is an item of the dependency graph too: formulas that name the sheet itself, in links within
// the workbook, are its dependents. It has no place, so GetRef gives null.
#pragma once

#include "cells/CCCellManager.h"

class CVCELLS_API CCSheet : public CCCellManager, public CCItem {
public:
    CCWorkbook * GetWorkbook() const override { return nullptr; }
    CString GetSheetName() const override { return {}; }
    int IsValidSheetName(wchar_t const * name) const override;
    // A link within the workbook: "?" with the sheet's name, and the place as text.
    CCRemoteRef * TranslateToSheetRef(CCRef const * ref) override;

    // Called with the new name while GetSheetName still gives the old one: formulas that are linked
    // to this sheet name it anew. UpdateOnRename does the same for the places that are registered
    // here, from one document text to another.
    virtual void OnRename(wchar_t const * name);
    virtual void UpdateOnRename(CString const & old, CString const & now);

    // Both bases have these names: those of the manager come first, the item's behind.
    using CCCellManager::IsEqual;
    using CCItem::IsEqual;
    CCRef const * GetRef() const override { return nullptr; }
    bool IsEqual(CCItem const * item) const override { return item == this; }
    using CCCellManager::Read;
    using CCCellManager::RegisterDependent;
    using CCCellManager::UnRegisterDependent;
    using CCCellManager::Write;
    using CCItem::Read;
    using CCItem::RegisterDependent;
    using CCItem::UnRegisterDependent;
    using CCItem::Write;
};
