// What operators and their named twins share.
#pragma once

#include "formula/CCFunc.h"
#include "values/ValueCompare.h"

namespace cells::internal {

// Folds every value of every argument with a binary operator.
void FoldOperands(int code, CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current);

template <int Code>
void Fold(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    FoldOperands(Code, ctx, result, args, current);
}

void EvalNot(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current);

} // namespace cells::internal
