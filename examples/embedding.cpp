// A host of the engine in one page: a map of cells, and the four things that every host supplies.
#include "cells/CCCellManager.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"

#include <cstdio>
#include <map>
#include <memory>

// A cell knows its place; the engine does the rest.
class MyCell : public CCCell {
public:
    explicit MyCell(CCRCRef const & ref) : m_Ref(ref) {}
    CCRef const * GetRef() const override { return &m_Ref; }
    bool IsEqual(CCItem const * item) const override { return item == this; }

private:
    CCRCRef m_Ref;
};

// A document: the context of every call, and the store.
class MyDocument : public CCCellManager, public cells::CTX {
public:
    // The context: which locale, which document.
    cells::LCTX * lctx() override { return cells::invariant_LCTX(); }
    CCCellManager * manager() override { return this; }
    cells::CTX * ctx() override { return this; }
    cells::CTX * ctx() const override { return const_cast<MyDocument *>(this); }

    // The store: which item stands at this place? Dependents carry their sheet around the place.
    using CCCellManager::GetItem;
    CCItem * GetItem(CCRef const * ref) override {
        if (ref && ref->GetType() == kRefSheets) ref = static_cast<CCRef3D const *>(ref)->ref;
        if (!ref || ref->GetType() != kRefCell) return nullptr;
        auto const & place = *static_cast<CCRCRef const *>(ref);
        auto const found = m_Cells.find({place.col, place.row});
        return found == m_Cells.end() ? nullptr : found->second.get();
    }

    // A spreadsheet: "A1" in a formula is a cell and not a name.
    int GetType() const override { return 1; }

    void Enter(CCRCRef const & ref, wchar_t const * text) {
        auto & cell = m_Cells[{ref.col, ref.row}];
        if (!cell) cell = std::make_unique<MyCell>(ref);
        SetCellText(&ref, text);
    }

private:
    std::map<std::pair<int, int>, std::unique_ptr<MyCell>> m_Cells;
};

int main() {
    CVCellInit();
    bool right;
    {
        MyDocument document;
        CCRCRef const a1(0, 0), a2(0, 1);
        document.Enter(a1, L"1200");
        document.Enter(a2, L"=A1*1.05");
        document.Enter(a1, L"2000");
        while (document.DoIdle(0)) {
        } // brings A2 up to date, slice by slice

        wchar_t shown[64], formula[64];
        document.GetCellValueText(&a2, shown, sizeof shown);
        document.GetCellFormula(&a2, formula, sizeof formula);
        std::printf("%ls gives %ls\n", formula, shown);
        right = CString(shown) == L"2100" && CString(formula) == L"=A1 * 1.05";
    }
    CVCellExit();
    return right ? 0 : 1;
}
