// Comparison of values, and the operators over them.
#pragma once

#include "values/CCCellValue.h"

class CCCell;

namespace cells {

// Numbers of the operators for EvalCellValue.
enum OperatorCode : int {
    kAdd = 1,
    kSubtract = 2,
    kMultiply = 3,
    kDivide = 4,
    kPower = 5,
    kAnd = 6,
    kOr = 7,
    kEqual = 8,
    kNotEqual = 9,
    kGreater = 10,
    kGreaterOrEqual = 11,
    kLess = 12,
    kLessOrEqual = 13,
    kPlusSign = 14,
    kMinusSign = 15,
    kNot = 16,
    kPercent = 17,
};

// A text result longer than this is error 3.
constexpr int kLongestText = 16777216;

// Whether a comparison, by its number, holds for an order: negative, 0 or positive. Any other
// number holds for none.
CVCELLS_API bool ComparisonHolds(int code, double order);

} // namespace cells

// A total order of kinds: numbers, text, errors, empty. It is no strict order (all errors are
// equal, a reference on the left equals everything), so it must not be given to a sort.
CVCELLS_API int CompareCellValues(CCCellValue const & a, CCCellValue const & b, int caseSensitive);
// The same for the values of two cells; a null cell stands behind every other.
CVCELLS_API int CompareCells(CCCell const * a, CCCell const * b, int caseSensitive);
// For two values of one type: numbers by size, text by collation, anything else is equal.
CVCELLS_API int CompareEQTypeValues(CCCellValue const & a, CCCellValue const & b,
                                    int caseSensitive);

// Whether an exact search for one finds the other: of one type and the same. Texts that only
// collate alike are not the same; all errors are, and all blanks.
CVCELLS_API bool AreSameKeys(CCCellValue const & a, CCCellValue const & b);

// Combines two values by a binary operator; the result is in `left`. The left error wins.
CVCELLS_API void EvalCellValue(int code, CCCellValue & left, CCCellValue const & right);
// Applies a unary operator. Unlike the formula's own prefix operators it makes text and blanks 0.
CVCELLS_API void EvalCellValue(int code, CCCellValue & value);
