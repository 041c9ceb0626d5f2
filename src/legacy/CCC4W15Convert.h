// CCC4W15Convert: between the cells of the older file version (15) and those of today (95).
//
//     CCC4W15Convert convert(manager);
//     CCC4W15Exchange::CCC4W15_Cell old;
//     convert.ConvertTo15(&old, cell);     // and old.Write(archive)
//     CCRef * place = nullptr;
//     convert.ConvertTo95(cell, place, &old);
//
// Conversion never fails: what has no counterpart becomes null or loses a field, as each operation
// says. The older version knows neither sheets nor links to other documents, neither constant
// arrays nor functions that choose a branch; a formula with one of them becomes null, and its value
// stays.
//
// `origin` is the column (x) and row (y), from 1, of the cell whose formula it is; places that are
// not absolute are stored as their distance from it. Without an origin all places are absolute.
// Objects that an operation hands out are the caller's.
#pragma once

#include "formula/CCRef.h"
#include "legacy/CCC4W15Exchange.h"

#include <memory>

class CCCell;
class CCCellManager;
class CCCellValue;
class CCFormula;
class CCNumberFormat;
class CCOpFormula;

class CVCELLS_API CCC4W15Convert {
public:
    using Legacy = CCC4W15Exchange;

    // Borrows the manager, whose context counts.
    explicit CCC4W15Convert(CCCellManager * manager) : m_pManager(manager) {}

    // A cell with the place of `cell`, its stored value, and its edit source or its formula.
    // Dependents on other sheets are left out.
    void ConvertTo15(Legacy::CCC4W15_Cell * legacy, CCCell * cell) const;
    // Stores value, formula and edit source as edits without messages: the formula registers and
    // computes, so that its value replaces the stored one. `ref` is the place, or null. Dependents
    // are not read, since formulas register themselves.
    void ConvertTo95(CCCell * cell, CCRef *& ref, Legacy::CCC4W15_Cell const * legacy) const;

    // References and their places: cells, regions and names; null for all others. `flags` are the
    // AbsoluteFlag bits. A column that falls off the sheet gives null; rows wrap at 65,536.
    void ConvertTo15(Legacy::CCC4W15_Ref *& legacy, CCRef const * ref, uchar flags,
                     CPoint const * origin) const;
    void ConvertTo95(CCRef *& ref, uchar & flags, Legacy::CCC4W15_Ref const * legacy,
                     CPoint const * origin) const;
    void ConvertTo15(Legacy::CCC4W15_Coords *& legacy, CCRef const * ref, uchar flags,
                     CPoint const * origin) const;
    void ConvertTo95(CCRef *& ref, uchar & flags, Legacy::CCC4W15_Coords const * legacy,
                     CPoint const * origin) const;

    // Formulas, or null. Functions go by their local names; calls of PLUS, MINUS, TIMES, DIVIDE,
    // POWER, AND, OR and NOT that can be printed as operators come back as such.
    Legacy::CCC4W15_Formula * ConvertTo15(CCFormula const * formula, CPoint const * origin) const;
    CCFormula * ConvertTo95(Legacy::CCC4W15_Formula const * legacy, CPoint const * origin) const;

    // Values. Errors 5 and 9 come back as error 3, numbers without a class and logical ones as
    // fixed numbers without decimals.
    void ConvertTo15(Legacy::CCC4W15_CellValue & legacy, CCCellValue const & value) const;
    void ConvertTo95(CCCellValue & value, Legacy::CCC4W15_CellValue const & legacy) const;

    // Number formats. The general one, and those that have no counterpart (logical, radix and
    // custom), become fixed numbers with as many decimals as there are.
    void ConvertTo15(Legacy::CCC4W15_NumberFormat & legacy, CCNumberFormat const & format) const;
    void ConvertTo95(CCNumberFormat & format, Legacy::CCC4W15_NumberFormat const & legacy) const;

private:
    cells::CTX * Context() const;
    std::unique_ptr<Legacy::CCC4W15_Formula> CallTo15(CCOpFormula const & formula,
                                                      CPoint const * origin) const;
    std::unique_ptr<CCFormula> FormulaTo95(Legacy::CCC4W15_Formula const * legacy,
                                           CPoint const * origin, int depth) const;
    std::unique_ptr<CCFormula> CallTo95(Legacy::CCC4W15_FormulaOp const & legacy,
                                        CPoint const * origin, int depth) const;
    CCRef const * OnThisSheet(CCRef const * dependent) const;
    wchar_t SeparatorOf(CCNumberFormat const & date) const;

    CCCellManager * m_pManager;
};
