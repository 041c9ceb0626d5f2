// The shapes of calls: check functions look at how many arguments there are, and at chosen places
// whether one is a single value. They never evaluate.
#pragma once

#include "formula/FormulaList.h"

namespace cells::internal {

inline bool AreSingle(CTX * ctx, CCFormulaList const * args, CCRef const * current, int count) {
    for (; args && count > 0; args = args->next, --count)
        if (!args->formula->IsSingleValue(ctx, current)) return false;
    return true;
}

// Exactly N single values.
template <int N>
int Singles(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    return FormulaListHasExactly(args, N) && AreSingle(ctx, args, current, N);
}

// Exactly N, or at least N, arguments of any shape; from M to N of them.
template <int N>
int Exactly(CTX *, CCFormulaList const * args, CCRef const *) {
    return FormulaListHasExactly(args, N);
}
template <int N>
int AtLeast(CTX *, CCFormulaList const * args, CCRef const *) {
    return FormulaListHasItems(args, N);
}
template <int M, int N>
int Between(CTX *, CCFormulaList const * args, CCRef const *) {
    return FormulaListHasItems(args, M) && !FormulaListHasItems(args, N + 1);
}

// From M to N single values.
template <int M, int N>
int SinglesBetween(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    return Between<M, N>(ctx, args, current) && AreSingle(ctx, args, current, N);
}

// At least N arguments, the first two single values.
template <int N>
int FirstTwoSingle(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    return FormulaListHasItems(args, N) && AreSingle(ctx, args, current, 2);
}

// Exactly N arguments, the first a single value.
template <int N>
int FirstOfExactly(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    return FormulaListHasExactly(args, N) && AreSingle(ctx, args, current, 1);
}

// At least N arguments, the first a single value.
template <int N>
int FirstSingle(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    return FormulaListHasItems(args, N) && AreSingle(ctx, args, current, 1);
}

} // namespace cells::internal
