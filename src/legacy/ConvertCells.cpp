// Cells between the older file version and today.
#include "cells/CCCell.h"
#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefList.h"
#include "legacy/CCC4W15Convert.h"

#include <optional>

namespace {

using Legacy = CCC4W15Exchange;

constexpr uchar kAllAbsolute = 0xFF;

// The origin of the formula at a place.
class Origin {
public:
    explicit Origin(CCRef const * place) {
        if (!place || place->GetType() != kRefCell) return;
        auto const & cell = static_cast<CCRCRef const &>(*place);
        m_Point.emplace(cell.col + 1, cell.row + 1);
    }
    CPoint const * Get() const { return m_Point ? &*m_Point : nullptr; }

private:
    std::optional<CPoint> m_Point;
};

// Holds messages back: an import asks nobody and tells nobody cell by cell.
class WithoutMessages {
public:
    explicit WithoutMessages(CCCellManager & manager)
        : m_Manager(manager), m_nBefore(manager.GetNotifyEnable()) {
        m_Manager.SetNotifyEnable(0);
    }
    WithoutMessages(WithoutMessages const &) = delete;
    WithoutMessages & operator=(WithoutMessages const &) = delete;
    ~WithoutMessages() { m_Manager.SetNotifyEnable(m_nBefore); }

private:
    CCCellManager & m_Manager;
    int m_nBefore;
};

} // namespace

// The place of a dependent without its sheet, or null where that is another one.
CCRef const * CCC4W15Convert::OnThisSheet(CCRef const * dependent) const {
    if (dependent->GetType() != kRefSheets) return dependent;
    auto const & placed = static_cast<CCRef3D const &>(*dependent);
    if (placed.IsManagerForm()) return placed.GetManager() == m_pManager ? placed.ref : nullptr;
    // One that was read from a stream names its sheet by number.
    ushort const own = m_pManager->GetNameIndex(m_pManager->GetSheetName().GetString());
    return placed.IsOneSheet() && placed.firstSheet == own ? placed.ref : nullptr;
}

void CCC4W15Convert::ConvertTo15(Legacy::CCC4W15_Cell * legacy, CCCell * cell) const {
    legacy->Release();
    Origin const origin(cell->GetRef());
    Legacy::CCC4W15_Coords * coords;
    ConvertTo15(coords, cell->GetRef(), kAllAbsolute, nullptr);
    legacy->coords.reset(coords);
    ConvertTo15(legacy->value, cell->GetValue());

    Legacy::CCC4W15_Ref * ref;
    std::unique_ptr<CCRef const> const source(cell->GetEditSourceRef(Context()));
    CCFormula const * const tree = cell->LoadFormula(Context());
    if (source) {
        uchar const flags = tree->GetType() == kRefFormula
                                ? static_cast<CCRefFormula const *>(tree)->GetMode()
                                : kAllAbsolute;
        ConvertTo15(ref, source.get(), flags, origin.Get());
        if (ref) legacy->editSources.Add(ref);
    } else {
        legacy->formula.reset(ConvertTo15(tree, origin.Get()));
    }

    cells::internal::RefListHolder const dependents(cell->LoadDependents(Context()));
    for (CCRefList const * node = dependents.list; node; node = node->next()) {
        ConvertTo15(ref, OnThisSheet(node->ref()), kAllAbsolute, nullptr);
        if (ref) legacy->dependents.Add(ref);
    }
}

void CCC4W15Convert::ConvertTo95(CCCell * cell, CCRef *& ref,
                                 Legacy::CCC4W15_Cell const * legacy) const {
    WithoutMessages const quiet(*m_pManager);
    ref = nullptr;
    CCRef * made;
    uchar flags;
    ConvertTo95(made, flags, legacy->coords.get(), nullptr);
    std::unique_ptr<CCRef> place(made);
    Origin const origin(place.get());
    CCCellValue value;
    ConvertTo95(value, legacy->value);
    cell->SetValue(Context(), value);

    std::unique_ptr<CCFormula> const formula(ConvertTo95(legacy->formula.get(), origin.Get()));
    if (formula) cell->SetFormula(Context(), formula.get(), 1);

    if (auto const * const first = legacy->editSources.First()) {
        ConvertTo95(made, flags, first->ref.get(), origin.Get());
        std::unique_ptr<CCRef> const source(made);
        if (source) cell->SetEditSource(Context(), source.get(), flags);
    }
    ref = place.release();
}
