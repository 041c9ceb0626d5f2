// Criteria of the conditional functions: a value, or a text such as ">=10".
#pragma once

#include "functions/Arguments.h"
#include "values/ValueCompare.h"

namespace cells::internal {

class Criterion {
public:
    // A value that is no text asks for equality. In a text an operator may stand first; what stands
    // behind it is a number if all of it is one, as a user types it, and else a text.
    Criterion(CTX * ctx, CCCellValue const & value);

    // Text is compared with text by its folded units, numbers with numbers, a blank counting as 0;
    // equality of numbers has a tolerance. An error matches the same error only, and text beside a
    // number never does.
    bool Matches(CCCellValue const & cell) const;
    bool Matches(double number) const;
    // Whether only numbers can match: the walk may then pass everything else over.
    bool IsNumeric() const { return m_Kind == Kind::kNumber; }

private:
    enum class Kind { kNothing, kNumber, kText, kError };

    Kind m_Kind = Kind::kNothing;
    int m_nComparison = kEqual; // an OperatorCode
    double m_dNumber = 0;
    int m_nError = 0;
    CString m_strText; // folded
};

void EvalSumIf(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current);
void EvalCountIf(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current);

} // namespace cells::internal
