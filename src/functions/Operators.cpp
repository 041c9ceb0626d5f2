#include "functions/Operators.h"

#include "cells/CCCellManager.h"
#include "cells/ManagerContext.h"
#include "context/Context.h"
#include "formula/CCNameRef.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefOpFormula.h"
#include "formula/CCRegionRef.h"
#include "formula/OperatorObjects.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/OperatorTable.h"
#include "functions/internal/ReferenceArguments.h"
#include "platform/Resources.h"

#include <memory>

namespace cells::internal {
namespace {

// What an operator over nothing but blanks gives: two blanks are equal.
void SetBlankResult(int code, CCCellValue & result) {
    switch (code) {
    case kPower:
        return SetNumber(result, 1.0);
    case kEqual:
    case kGreaterOrEqual:
    case kLessOrEqual:
        return SetTruth(result, true);
    case kAnd:
    case kOr:
    case kNotEqual:
    case kGreater:
    case kLess:
        return SetTruth(result, false);
    default:
        return SetNumber(result, 0.0);
    }
}

} // namespace

void FoldOperands(int code, CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    result.Set();
    if (!args) return;
    CCCellValue value;
    for (CCFormulaList const * item = args; item; item = item->next) {
        ValueWalk walk(ctx, item->formula, current);
        bool const first = item == args;
        if (!walk.IsOpen() || (first && !walk.Next(result))) return result.Set(errRef);
        while (walk.Next(value)) EvalCellValue(code, result, value);
    }
    if (result.IsEmpty()) SetBlankResult(code, result);
}

void EvalNot(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    EvalArg(ctx, result, args, current);
    EvalCellValue(kNot, result);
}

namespace {

void EvalPlusSign(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    EvalArg(ctx, result, args, current);
}

// The sign of a number changes and its format stays; everything else passes.
void EvalMinusSign(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                   CCRef const * current) {
    EvalArg(ctx, result, args, current);
    if (result.IsNumber()) result.Set(-result.GetNumber());
}

void EvalPercent(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    EvalArg(ctx, result, args, current);
    if (result.IsNumber()) SetNumber(result, result.GetNumber() / 100);
}

using OwnedRef = std::unique_ptr<CCRef>;

// The reference that an argument is, or yields; null with an error in `result`.
OwnedRef RefArgument(CTX * ctx, CCCellValue & result, CCFormula const & formula,
                     CCRef const * current) {
    OwnedRef ref;
    if (formula.GetType() == kRefFormula || formula.GetType() == kRefOpFormula)
        ref = ReferenceOf(ctx, formula, current);
    if (!ref) result.Set(errRef);
    return ref;
}

// A corner of a range: a cell, or a name that stands for one in the context `names`.
OwnedRef CornerArgument(CTX * ctx, CTX * names, CCCellValue & result, CCFormula const & formula,
                        CCRef const * current) {
    OwnedRef ref = RefArgument(ctx, result, formula, current);
    if (!ref) return nullptr;
    ref = ResolveName(names, std::move(ref));
    if (ref && ref->GetType() == kRefCell) return ref;
    result.Set(errValue);
    return nullptr;
}

OwnedRef RegionBetween(CCRef const * a, CCRef const * b) {
    auto const & first = *static_cast<CCRCRef const *>(a);
    auto const & last = *static_cast<CCRCRef const *>(b);
    auto region = std::make_unique<CCRegionRef>(first.col, first.row, last.col, last.row);
    region->Normalize();
    return region;
}

// The region between two corners; null with an error in `result`.
OwnedRef RegionOfCorners(CTX * ctx, CTX * names, CCCellValue & result, CCFormulaList const * args,
                         CCRef const * current) {
    OwnedRef const first = CornerArgument(ctx, names, result, *args->formula, current);
    if (!first) return nullptr;
    OwnedRef const last = CornerArgument(ctx, names, result, *args->next->formula, current);
    return last ? RegionBetween(first.get(), last.get()) : nullptr;
}

void EvalRange(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    if (OwnedRef region = RegionOfCorners(ctx, ctx, result, args, current))
        result.AdoptRef(region.release());
}

// What an operand of ":" names: sheets by their numbers, 0 for none, and its place on them where it
// carries one.
struct SheetOperand {
    ushort first = 0, last = 0;
    OwnedRef place;

    bool IsCell() const { return first == last && place && place->GetType() == kRefCell; }
};

SheetOperand ReadSheetOperand(CTX * ctx, CCFormula const & formula, CCRef const * current) {
    SheetOperand operand;
    CCCellManager * const manager = ctx->manager();
    if (!manager) return operand;
    CCCellValue value;
    CCRef const * ref = formula.GetType() == kRefFormula
                            ? static_cast<CCRefFormula const &>(formula).GetRef()
                            : nullptr;
    if (!ref) {
        formula.Eval(ctx, value, current);
        ref = value.GetRef();
    }
    if (value.IsText()) {
        operand.first = operand.last = manager->GetNameIndex(value.GetText());
    } else if (ref && ref->GetType() == kRefName) {
        operand.first = operand.last = manager->GetNameIndex(static_cast<CCNameRef const *>(ref));
    } else if (ref && ref->GetType() == kRefSheets) {
        auto const & sheets = *static_cast<CCRef3D const *>(ref);
        operand.first = sheets.firstSheet;
        operand.last = sheets.IsOneSheet() ? sheets.firstSheet : sheets.lastSheet;
        operand.place.reset(sheets.ref ? sheets.ref->Copy() : nullptr);
    }
    return operand;
}

// Whether its place is valid on the sheet that it names, which there must be.
bool IsValidThere(CTX * ctx, SheetOperand const & operand) {
    CCCellManager * const sheet = ctx->manager()->GetManForNameIndex(operand.first);
    return sheet && sheet->IsValidRef(operand.place.get());
}

// Sheets, or "Sheet1!A1:Sheet3!B2": the sheets of both corners, and the region between their cells.
void EvalSheetRange(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                    CCRef const * current) {
    SheetOperand const first = ReadSheetOperand(ctx, *args->formula, current);
    if (!first.first) return result.Set(errRef);
    if (!args->next) {
        bool const isRun = first.last != first.first;
        return result.AdoptRef(new CCRef3D(first.first, isRun ? first.last : ushort(0)));
    }
    SheetOperand const last = ReadSheetOperand(ctx, *args->next->formula, current);
    if (!last.first) return result.Set(errRef);
    if (first.IsCell() && last.IsCell()) {
        if (!IsValidThere(ctx, first) || !IsValidThere(ctx, last)) return result.Set(errRef);
        OwnedRef region = RegionBetween(first.place.get(), last.place.get());
        return result.AdoptRef(new CCRef3D(first.first, last.first, region.release()));
    }
    if (IsReferenceOperator(*args->formula, Operator::kFullRef) &&
        IsReferenceOperator(*args->next->formula, Operator::kFullRef))
        return result.Set(errRef);
    result.AdoptRef(new CCRef3D(first.first, last.last));
}

// What is written after "!" belongs to the sheet before it, names among it; what is computed there
// is computed where the formula stands.
OwnedRef PlaceOnSheet(CTX * ctx, CCCellValue & result, CCRef3D const & sheets,
                      CCFormula const & formula, CCRef const * current) {
    CCCellManager * const own = ctx->manager();
    CCCellManager * const sheet = own ? own->GetManForNameIndex(sheets.firstSheet) : nullptr;
    if (!sheet || !IsReferenceOperator(formula, Operator::kRange))
        return RefArgument(ctx, result, formula, current);
    ManagerContext there(ctx, sheet);
    return RegionOfCorners(ctx, there, result, static_cast<CCOpFormula const &>(formula).GetArgs(),
                           current);
}

void EvalFullRef(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    OwnedRef const ref = RefArgument(ctx, result, *args->formula, current);
    if (!ref || ref->GetType() != kRefSheets) return result.Set(errRef);
    auto const & run = *static_cast<CCRef3D const *>(ref.get());
    OwnedRef inner = PlaceOnSheet(ctx, result, run, *args->next->formula, current);
    if (!inner) return result.Set(errRef);
    result.AdoptRef(new CCRef3D(run.firstSheet, run.lastSheet, inner.release()));
}

struct OperatorRow {
    Operator op;
    wchar_t const * glyph;
    wchar_t const * strings; // glyph, description and operands, a line each
    char const * kinds;      // of the operands, as in FunctionRow
    uchar priority, kind;
    CheckFn check;
    EvalFn eval;
};

constexpr OperatorRow kRows[kOperators] = {
    {Operator::kOr, L"|", L"|\nLogical OR of two values.\nvalue; value...", "vv", 10, kInfix,
     AtLeast<0>, Fold<kOr>},
    {Operator::kAnd, L"&", L"&\nLogical AND of two values.\nvalue; value...", "vv", 20, kInfix,
     AtLeast<0>, Fold<kAnd>},
    {Operator::kNot, L"~", L"~\nTRUE when the value is 0.\nvalue", "v", 30, kPrefix, Singles<1>,
     EvalNot},
    {Operator::kGreater, L">", L">\nLeft value above the right one.\nvalue; value", "vv", 40,
     kInfix, AtLeast<2>, Fold<kGreater>},
    {Operator::kGreaterOrEqual, L">=", L">=\nLeft value above or equal.\nvalue; value", "vv", 40,
     kInfix, AtLeast<2>, Fold<kGreaterOrEqual>},
    {Operator::kLess, L"<", L"<\nLeft value below the right one.\nvalue; value", "vv", 40, kInfix,
     AtLeast<2>, Fold<kLess>},
    {Operator::kLessOrEqual, L"<=", L"<=\nLeft value below or equal.\nvalue; value", "vv", 40,
     kInfix, AtLeast<2>, Fold<kLessOrEqual>},
    {Operator::kEqual, L"=", L"=\nEqual values.\nvalue; value", "vv", 40, kInfix, AtLeast<2>,
     Fold<kEqual>},
    {Operator::kNotEqual, L"<>", L"<>\nDifferent values.\nvalue; value", "vv", 40, kInfix,
     AtLeast<2>, Fold<kNotEqual>},
    {Operator::kAdd, L"+", L"+\nSum, or joined text.\nvalue; value...", "vv", 50, kInfix,
     AtLeast<1>, Fold<kAdd>},
    {Operator::kSubtract, L"-", L"-\nDifference.\nvalue; value...", "vv", 50, kInfix, AtLeast<1>,
     Fold<kSubtract>},
    {Operator::kMultiply, L"*", L"*\nProduct.\nvalue; value...", "vv", 60, kInfix, AtLeast<0>,
     Fold<kMultiply>},
    {Operator::kDivide, L"/", L"/\nQuotient.\nvalue; value...", "vv", 60, kInfix, AtLeast<1>,
     Fold<kDivide>},
    {Operator::kPower, L"^", L"^\nPower.\nbase; exponent...", "nn", 70, kInfix, AtLeast<2>,
     Fold<kPower>},
    {Operator::kPercent, L"%", L"%\nHundredth part.\nvalue", "n", 80, kPostfix, Singles<1>,
     EvalPercent},
    {Operator::kPlusSign, L"+", L"+\nValue as it is.\nvalue", "v", 90, kPrefix, Singles<1>,
     EvalPlusSign},
    {Operator::kMinusSign, L"-", L"-\nNumber with the other sign.\nvalue", "n", 90, kPrefix,
     Singles<1>, EvalMinusSign},
    {Operator::kRange, L"..", L"..\nRegion between two cells.\ncorner; corner", "ff", 100, kInfix,
     AtLeast<2>, EvalRange},
    {Operator::kSheetRange, L":", L":\nSheet, or run of sheets.\nsheet; sheet", "t[t]", 100, kInfix,
     Between<1, 2>, EvalSheetRange},
    {Operator::kFullRef, L"!", L"!\nReference on a sheet.\nsheet; reference", "tf", 100, kInfix,
     Exactly<2>, EvalFullRef},
};

} // namespace

wchar_t const * OperatorString(unsigned int id) {
    bool const isOne = id >= kStringFirstOperator && id < kStringFirstOperator + kOperators;
    return isOne ? kRows[id - kStringFirstOperator].strings : nullptr;
}

CatalogueFacts OperatorFacts(CCFunc const & func) {
    for (int i = 0; i < kOperators; ++i)
        if (OperatorObject(Operator(i)) == &func)
            return {kStringFirstOperator + unsigned(i), kRows[i].kinds};
    return {};
}

void InitOperators(std::vector<CCFunc *> & functions) {
    for (OperatorRow const & row : kRows) {
        CCFunc * const func = OperatorObject(row.op);
        func->Init(row.glyph, row.priority, row.kind, 0, row.check, row.eval);
        functions.push_back(func);
    }
}

} // namespace cells::internal
