// How functions fetch their arguments, and how they report.
#pragma once

#include "core/CCCellValue.h"
#include "formula/FormulaList.h"

namespace cells::internal {

// Outcome of the helpers. The order is not that of the error numbers; only SetStatusResult maps it.
enum class Status { kDone = 0, kBadReference = 1, kBadValue = 2, kDivisionByZero = 3 };

// The value of the first item, with a reference replaced by its content. False, and an empty value,
// only where there is no item.
bool EvalArg(CTX * ctx, CCCellValue & value, CCFormulaList const * args, CCRef const * current);

// The first `count` items as numbers. False at the first that is none, an error or a blank
// included.
bool GetNumbers(CTX * ctx, CCCellValue & result, double * out, int count,
                CCFormulaList const * args, CCRef const * current);

// Writes the error of a status, or the number in its class; classes 1 to 4 show whole numbers
// without decimals and others with the locale's.
void SetStatusResult(CTX * ctx, Status status, CCCellValue & result, double number, uchar type);

inline void SetTruth(CCCellValue & result, bool truth) {
    result.Set(truth ? 1.0 : 0.0, uchar(C_NF_BOOL));
}

} // namespace cells::internal
