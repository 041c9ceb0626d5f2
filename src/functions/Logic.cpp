// Logic: conditions and their combination.
#include "functions/Operators.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Families.h"

namespace cells::internal {
namespace {

// The live argument of IF, so that evaluation never touches the other branch. Without an else
// branch a false condition is itself the result. Gives an error number.
int ChooseBranch(CTX * ctx, CCFormula *& choice, CCFormulaList const * args,
                 CCRef const * current) {
    choice = nullptr;
    if (!args) return errLegacy;
    CCCellValue condition;
    EvalArg(ctx, condition, args, current);
    bool const isFalse =
        condition.IsEmpty() || (condition.IsNumber() && condition.GetNumber() == 0);
    if (!isFalse && !condition.IsNumber()) return errValue;
    CCFormulaList const * const yes = args->next;
    CCFormulaList const * const no = yes ? yes->next : nullptr;
    CCFormulaList const * const branch = isFalse ? no : yes;
    choice = branch ? branch->formula : args->formula;
    return 0;
}

void EvalIf(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CCFormula const * const choice = EvalChosen(ctx, result, ChooseBranch, args, current);
    if (choice && FormulaList2ItemEx(args) && choice == args->formula)
        result.GetFormat().Set(uchar(C_NF_BOOL));
}

constexpr FunctionRow kRows[] = {
    {13223, L"AND", L"value...", "[r]", L"TRUE when no value is 0.", L"AND(1,2,0)", L"FALSE",
     AtLeast<0>, Fold<kAnd>},
    {13224, L"IF", L"condition; then; else", "v[vv]", L"One of two values by a condition.",
     L"IF(1>2,\"yes\",\"no\")", L"no", FirstSingle<1>, EvalIf, kChooseFunc, ChooseBranch},
    {13225, L"NOT", L"value", "v", L"TRUE when a value is 0.", L"NOT(0)", L"TRUE", Singles<1>,
     EvalNot},
    {13226, L"OR", L"value...", "[r]", L"TRUE when a value is not 0.", L"OR(0,0,3)", L"TRUE",
     AtLeast<0>, Fold<kOr>},
};

} // namespace

FunctionFamily Logic() { return MakeFamily(3, kRows); }

} // namespace cells::internal
