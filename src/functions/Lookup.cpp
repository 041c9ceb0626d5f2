// Lookup: a value by its place, or a place by its value.
//
// A key of another type than the value is no match and no order; it is stepped over.
#include "cells/CCCellManager.h"
#include "cells/ManagerContext.h"
#include "context/Context.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRegionRef.h"
#include "formula/CCRemoteRef.h"
#include "formula/Scanners.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Families.h"
#include "functions/internal/ReferenceArguments.h"
#include "values/ValueCompare.h"

#include <cmath>
#include <sstream>

namespace cells::internal {
namespace {

// The first value of an argument; false with an error in `result`.
bool FirstValue(CTX * ctx, CCCellValue & result, CCFormula * formula, CCRef const * current,
                CCCellValue & value) {
    ValueWalk walk(ctx, formula, current);
    if (walk.IsOpen() && walk.Next(value)) return true;
    result.Set(walk.IsOpen() ? errValue : errRef);
    return false;
}

// The result that stands in step with the first key equal to the value, by the manager's index of
// the keys; false where it has none. Its regions are read in place, without walking.
bool FindIndexed(CTX * ctx, CCCellValue & result, CCCellValue const & value,
                 CCRegionRef const & keys, CCRegionRef const & results) {
    CCCellManager * const manager = ctx->manager();
    int position;
    if (!manager || !manager->ReadsCellsDirectly() || !manager->IsValidRef(&results) ||
        !manager->FindKey(&keys, value, position))
        return false;
    CSize const size = manager->GetRefSize(&results);
    if (position < 0 || position >= std::int64_t(size.cx) * size.cy)
        result.Set(errValue);
    else if (!manager->GetValue(&results, result, position))
        result.Set(errRef);
    return true;
}

CCRegionRef const * RegionOf(CCFormula const & formula) {
    if (formula.Kind() != kRefFormula) return nullptr;
    CCRef const * const ref = static_cast<CCRefFormula const &>(formula).GetRef();
    return ref && ref->Kind() == kRefRegion ? static_cast<CCRegionRef const *>(ref) : nullptr;
}

// The same, also by walking; error 3 for none.
void FindResult(CTX * ctx, CCCellValue & result, CCCellValue const & value, CCFormula * keyRange,
                CCFormula * resultRange, CCRef const * current) {
    CCRegionRef const * const keyRegion = RegionOf(*keyRange);
    CCRegionRef const * const resultRegion = RegionOf(*resultRange);
    if (keyRegion && resultRegion && FindIndexed(ctx, result, value, *keyRegion, *resultRegion))
        return;
    ValueWalk keys(ctx, keyRange, current), results(ctx, resultRange, current);
    if (!keys.IsOpen() || !results.IsOpen()) return result.Set(errRef);
    CCCellValue key;
    while (keys.Next(key)) {
        if (AreSameKeys(value, key)) {
            if (!results.Next(result)) break;
            return;
        }
        if (!results.Skip()) break;
    }
    result.Set(errValue);
}

// Tables

// The region that a reference names, and the reference rebuilt around another region: on its sheets
// or in its document, where it names them.
class Table {
public:
    // False with an error in `result`.
    bool Read(CTX * ctx, CCCellValue & result, CCFormula const & formula, CCRef const * current) {
        int const type = formula.GetType();
        if (type != kRefFormula && type != kRefOpFormula && type != kRemoteOpFormula)
            return Fail(result, errValue);
        if (CCRegionRef const * const region = RegionOf(formula)) {
            m_Region.Set(*region);
            return true;
        }
        m_Outer = ReferenceOf(ctx, formula, current);
        if (!m_Outer) return Fail(result, errRef);
        std::unique_ptr<CCRef> inner;
        if (m_Outer->GetType() == kRefRemote) {
            CString const & item = static_cast<CCRemoteRef const &>(*m_Outer).item();
            wchar_t const * text = item.GetString();
            CCRef * scanned = nullptr;
            uchar flags = 0;
            if (!_EatRef(ctx, text, scanned, flags)) return Fail(result, errValue);
            inner.reset(scanned);
        } else if (m_Outer->GetType() == kRefSheets) {
            inner = PlaceThere(ctx, static_cast<CCRef3D const &>(*m_Outer));
        } else {
            inner.reset(m_Outer->Copy());
        }
        inner = ResolveName(ctx, std::move(inner));
        if (inner && inner->GetType() == kRefCell) {
            auto const & cell = static_cast<CCRCRef const &>(*inner);
            m_Region.Set(CRect(cell.col, cell.row, cell.col, cell.row));
        } else if (inner && inner->GetType() == kRefRegion) {
            m_Region.Set(static_cast<CCRegionRef const &>(*inner));
        } else {
            return Fail(result, errRef);
        }
        return true;
    }

    CCRegionRef const & Region() const { return m_Region; }
    bool IsPlain() const { return !m_Outer; }

    CCRefFormula With(CTX * ctx, CCRegionRef const & region) const {
        if (IsPlain()) return CCRefFormula(&region, 0);
        if (m_Outer->GetType() == kRefSheets) {
            CCRef3D sheets(static_cast<CCRef3D const &>(*m_Outer));
            delete sheets.ref;
            sheets.ref = region.Copy();
            return CCRefFormula(&sheets, 0);
        }
        if (m_Outer->GetType() == kRefRemote) {
            std::wostringstream text;
            region.Print(ctx, text, 0);
            CCRemoteRef const remote(static_cast<CCRemoteRef const &>(*m_Outer).document(),
                                     text.str().c_str());
            return CCRefFormula(&remote, 0);
        }
        return CCRefFormula(&region, 0);
    }

private:
    // The place on the sheets, by whose names it is resolved.
    static std::unique_ptr<CCRef> PlaceThere(CTX * ctx, CCRef3D const & sheets) {
        std::unique_ptr<CCRef> place(sheets.ref ? sheets.ref->Copy() : nullptr);
        CCCellManager * const own = ctx->manager();
        CCCellManager * const sheet = own ? own->GetManForNameIndex(sheets.firstSheet) : nullptr;
        if (!sheet) return place;
        ManagerContext there(ctx, sheet);
        return ResolveName(there, std::move(place));
    }

    static bool Fail(CCCellValue & result, CellError error) {
        result.Set(error);
        return false;
    }

    std::unique_ptr<CCRef> m_Outer; // null: a region of the own sheet
    CCRegionRef m_Region;
};

template <bool Vertical>
void EvalTableLookup(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                     CCRef const * current) {
    CCCellValue value;
    if (!FirstValue(ctx, result, args->formula, current, value)) return;
    double number;
    if (!GetNumbers(ctx, result, &number, 1, args->next->next, current))
        return result.Set(errValue);
    double const step = std::trunc(number) - 1;
    if (!(step >= 0)) return result.Set(errValue);
    Table table;
    if (!table.Read(ctx, result, *args->next->formula, current)) return;
    CCRegionRef keys(table.Region()), results(table.Region());
    if (step > (Vertical ? keys.right - keys.left : keys.bottom - keys.top))
        return result.Set(errValue);
    if (Vertical) {
        keys.right = keys.left;
        results.left = results.right = uchar(results.left + step);
    } else {
        keys.bottom = keys.top;
        results.top = results.bottom = ushort(results.top + step);
    }
    if (table.IsPlain() && FindIndexed(ctx, result, value, keys, results)) return;
    CCRefFormula keyRange = table.With(ctx, keys), resultRange = table.With(ctx, results);
    FindResult(ctx, result, value, &keyRange, &resultRange, current);
}

// Keys and results

// They are walked in step, so they must be open and of one size.
bool WalkInStep(ValueWalk & keys, ValueWalk & results) {
    CSize a, b;
    return keys.IsOpen() && results.IsOpen() && keys.Size(a) && results.Size(b) && a == b;
}

// Sorted keys: the result beside the last one not above the value, which must have one above it or
// be equal to it.
void EvalLookup(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    CCCellValue value, key, stepped;
    if (!FirstValue(ctx, result, args->formula, current, value)) return;
    ValueWalk keys(ctx, args->next->formula, current),
        results(ctx, args->next->next->formula, current);
    if (!WalkInStep(keys, results)) return result.Set(errRef);
    result.Set(errNA);
    int compared = 0;
    while (keys.Next(key)) {
        bool const isSameType = key.GetType() == value.GetType();
        if (isSameType) {
            compared = CompareEQTypeValues(value, key, 1);
            if (compared < 0) break;
        }
        if (!results.Next(stepped)) break;
        if (isSameType) result = stepped;
    }
    if (compared > 0) result.Set(errNA);
}

void EvalLookupEx(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    CCCellValue value;
    if (!FirstValue(ctx, result, args->formula, current, value)) return;
    CCFormula * const keyRange = args->next->formula;
    CCFormula * const resultRange = args->next->next->formula;
    {
        ValueWalk keys(ctx, keyRange, current), results(ctx, resultRange, current);
        if (!WalkInStep(keys, results)) return result.Set(errRef);
    }
    FindResult(ctx, result, value, keyRange, resultRange, current);
}

// Positions

void EvalMatch(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CCCellValue value, key;
    if (!FirstValue(ctx, result, args->formula, current, value)) return;
    double type = 1;
    CCFormulaList const * const last = args->next->next;
    if (last && !GetNumbers(ctx, result, &type, 1, last, current)) return result.Set(errValue);
    type = std::trunc(type);
    ValueWalk keys(ctx, args->next->formula, current);
    if (!keys.IsOpen()) return result.Set(errRef);
    result.Set(errNA);
    for (double i = 1; keys.Next(key); ++i) {
        if (key.GetType() != value.GetType()) continue;
        int const compared = CompareEQTypeValues(value, key, 0);
        if (compared * type < 0) {
            if (i == 1) return result.Set(errNA);
            return SetNumber(result, i - 1);
        }
        if (compared != 0) continue;
        SetNumber(result, i);
        if (type <= 0) return;
    }
}

void EvalFind(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CCCellValue value, key;
    if (!FirstValue(ctx, result, args->formula, current, value)) return;
    double position = 0, found = 0;
    for (CCFormulaList const * arg = args->next; arg; arg = arg->next) {
        ValueWalk walk(ctx, arg->formula, current);
        if (!walk.IsOpen()) return result.Set(errRef);
        while (walk.Next(key)) {
            ++position;
            if (key.GetType() != value.GetType()) continue;
            if (CompareEQTypeValues(value, key, 1) < 0) return SetNumber(result, found);
            found = position;
        }
    }
    SetNumber(result, found);
}

void EvalFindEx(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    CCCellValue value, key;
    if (!FirstValue(ctx, result, args->formula, current, value)) return;
    double position = 0;
    for (CCFormulaList const * arg = args->next; arg; arg = arg->next) {
        ValueWalk walk(ctx, arg->formula, current);
        if (!walk.IsOpen()) return result.Set(errRef);
        int found;
        CSize size;
        if (walk.FindKey(value, found) && walk.Size(size)) {
            if (found >= 0) return SetNumber(result, position + found + 1);
            position += double(size.cx) * size.cy;
            continue;
        }
        while (walk.Next(key)) {
            ++position;
            if (AreSameKeys(value, key)) return SetNumber(result, position);
        }
    }
    result.Set(errValue);
}

// There is no form with a row and a column.
void EvalIndex(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    double number;
    if (!GetNumbers(ctx, result, &number, 1, args, current)) return result.Set(errValue);
    double left = std::floor(number);
    if (!(left > 0)) return result.Set(errValue);
    for (CCFormulaList const * arg = args->next; arg; arg = arg->next) {
        ValueWalk walk(ctx, arg->formula, current);
        if (!walk.IsOpen()) return result.Set(errRef);
        while (left > 1 && walk.Skip()) --left;
        if (left == 1 && walk.Next(result)) return;
    }
    result.Set(errValue);
}

// The argument that the index picks; null where no argument stands there. Gives an error number.
int ChooseItem(CTX * ctx, CCFormula *& choice, CCFormulaList const * args, CCRef const * current) {
    choice = nullptr;
    if (!args) return errLegacy;
    CCCellValue index;
    EvalArg(ctx, index, args, current);
    if (!index.IsNumber() || !(index.GetNumber() >= 1)) return errValue;
    CCFormulaList const * item = args->next;
    for (double place = std::trunc(index.GetNumber()); item && place > 1; --place)
        item = item->next;
    if (item) choice = item->formula;
    return 0;
}

void EvalChoose(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    EvalChosen(ctx, result, ChooseItem, args, current);
}

constexpr FunctionRow kRows[] = {
    {13238, L"CHOOSE", L"index; value...", "nv", L"Value picked by a number.", L"CHOOSE(2,5,6,7)",
     L"6", FirstSingle<2>, EvalChoose, kChooseFunc, ChooseItem},
    {13240, L"FIND", L"value; value...", "vr",
     L"Position in sorted values of the last one not above a value, or 0.", L"FIND(2.5,{1,2,3})",
     L"2", FirstSingle<2>, EvalFind},
    {13241, L"INDEX", L"number; value...", "nr", L"Value at a place, counted through all values.",
     L"INDEX(2,5,6,7)", L"6", FirstSingle<2>, EvalIndex},
    {13242, L"LOOKUP", L"value; keys; results", "vrr",
     L"Result beside the last sorted key not above a value.", L"LOOKUP(2.5,{1,2,3},{10,20,30})",
     L"20", FirstSingle<3>, EvalLookup},
    {13285, L"FINDEX", L"value; value...", "vr", L"Position of the first value that is equal.",
     L"FINDEX(2,{3,2,1})", L"2", FirstSingle<2>, EvalFindEx},
    {13286, L"LOOKUPEX", L"value; keys; results", "vrr", L"Result beside the first equal key.",
     L"LOOKUPEX(2,{3,2,1},{10,20,30})", L"20", FirstOfExactly<3>, EvalLookupEx},
    {13293, L"VLOOKUP", L"value; table; column", "vfn",
     L"Value in the row whose first cell is equal.", L"VLOOKUP(1,B1:C2,3)", L"#VALUE!",
     FirstSingle<3>, EvalTableLookup<true>},
    {13294, L"HLOOKUP", L"value; table; row", "vfn",
     L"Value in the column whose first cell is equal.", L"HLOOKUP(1,B1:C2,3)", L"#VALUE!",
     FirstSingle<3>, EvalTableLookup<false>},
    {13305, L"MATCH", L"value; range; type", "vr[n]", L"Position of a value in a range.",
     L"MATCH(2,{1,2,2,3},0)", L"2", Between<2, 3>, EvalMatch},
};

} // namespace

FunctionFamily Lookup() { return MakeFamily(8, kRows); }

} // namespace cells::internal
