#include "values/ValueCompare.h"

#include <cmath>
#include <cwchar>

namespace {

int Sign(double difference) { return difference < 0 ? -1 : difference > 0; }

} // namespace

bool cells::ComparisonHolds(int code, double order) {
    switch (code) {
    case kEqual:
        return order == 0;
    case kNotEqual:
        return order != 0;
    case kGreater:
        return order > 0;
    case kGreaterOrEqual:
        return order >= 0;
    case kLess:
        return order < 0;
    case kLessOrEqual:
        return order <= 0;
    default:
        return false;
    }
}

int CompareCellValues(CCCellValue const & a, CCCellValue const & b, int caseSensitive) {
    // Rows: type of a; columns: type of b; 2 marks the pairs whose content decides.
    static constexpr signed char kOrder[5][5] = {{0, 1, 1, 1, 1},
                                                 {-1, 0, 1, 1, 1},
                                                 {-1, -1, 2, 1, -1},
                                                 {-1, -1, -1, 2, -1},
                                                 {0, 0, 0, 0, 0}};
    int const order = kOrder[a.GetType()][b.GetType()];
    return order == 2 ? CompareEQTypeValues(a, b, caseSensitive) : order;
}

int CompareEQTypeValues(CCCellValue const & a, CCCellValue const & b, int caseSensitive) {
    if (a.IsNumber()) return Sign(a.GetNumber() - b.GetNumber());
    if (a.IsText()) return StrColl(a.GetText(), b.GetText(), caseSensitive);
    return 0;
}

bool AreSameKeys(CCCellValue const & a, CCCellValue const & b) {
    if (a.GetType() != b.GetType()) return false;
    if (a.IsNumber()) return a.GetNumber() == b.GetNumber();
    return !a.IsText() || std::wcscmp(a.GetTextString(), b.GetTextString()) == 0;
}
