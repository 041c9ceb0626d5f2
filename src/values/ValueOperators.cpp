#include "values/ValueCompare.h"

#include <cmath>

using namespace cells;

namespace {

constexpr double kSmallestDifference = 2.220446049250313e-16;

void SetTruth(CCCellValue & result, bool truth) { result.Set(truth ? 1.0 : 0.0, C_NF_BOOL); }

bool IsComparison(int code) { return code >= kEqual && code <= kLessOrEqual; }

void CombineTexts(int code, CCCellValue & left, CCCellValue const & right) {
    if (code == kAdd) {
        CString const a = left.GetTextString(), b = right.GetTextString();
        if (a.GetLength() + double(b.GetLength()) > kLongestText)
            left.Set(errValue);
        else
            left.Set(a + b);
    } else if (IsComparison(code)) {
        SetTruth(left, cells::ComparisonHolds(code, StrColl(left.GetText(), right.GetText(), 1)));
    } else {
        left.Set(errValue);
    }
}

// Equality has a tolerance, the other comparisons have none: they may disagree on two numbers a few
// units in the last place apart. Saved sheets count on both answers.
void CombineNumbers(int code, CCCellValue & left, double a, double b) {
    switch (code) {
    case kAdd:
        return left.Set(a + b, C_NF_GENERAL);
    case kSubtract:
        return left.Set(a - b, C_NF_GENERAL);
    case kMultiply:
        return left.Set(a * b, C_NF_GENERAL);
    case kDivide:
        if (b == 0) return left.Set(errDiv0);
        return left.Set(a / b, C_NF_GENERAL);
    case kPower:
        return left.Set(std::pow(a, b), C_NF_GENERAL);
    case kAnd:
        return SetTruth(left, a != 0 && b != 0);
    case kOr:
        return SetTruth(left, a != 0 || b != 0);
    case kEqual:
        return SetTruth(left, std::fabs(a - b) < kSmallestDifference);
    case kNotEqual:
        return SetTruth(left, !(std::fabs(a - b) < kSmallestDifference));
    case kGreater:
        return SetTruth(left, a > b);
    case kGreaterOrEqual:
        return SetTruth(left, a >= b);
    case kLess:
        return SetTruth(left, a < b);
    case kLessOrEqual:
        return SetTruth(left, a <= b);
    default:
        return left.Set(errValue);
    }
}

// Next to a number a text is TRUE for AND and FALSE for OR; it is neither equal to a number nor
// above nor below it.
void CombineMixed(int code, CCCellValue & left, CCCellValue const & right) {
    double const text = code == kAnd ? 1 : 0;
    if (code == kAnd || code == kOr)
        CombineNumbers(code, left, left.IsText() ? text : left.GetNumber(),
                       right.IsText() ? text : right.GetNumber());
    else if (IsComparison(code))
        SetTruth(left, code == kNotEqual);
    else
        left.Set(errValue);
}

// What an empty side counts as beside the other.
CCCellValue Filled(CCCellValue const & value, CCCellValue const & other) {
    CCCellValue filled = value;
    if (!value.IsEmpty()) return filled;
    if (other.IsText())
        filled.Set(L"");
    else
        filled.Set(0.0, C_NF_NUMBER);
    return filled;
}

} // namespace

void EvalCellValue(int code, CCCellValue & left, CCCellValue const & right) {
    if (left.IsNumber() && right.IsNumber())
        return CombineNumbers(code, left, left.GetNumber(), right.GetNumber());
    if (left.IsError()) return;
    if (right.IsError()) return left.Set(right);
    if (left.IsEmpty() && right.IsEmpty()) return;
    CCCellValue const a = Filled(left, right), b = Filled(right, left);
    if (a.IsRef() || b.IsRef()) return left.Set(errValue);
    left.Set(a);
    if (a.IsText() && b.IsText()) return CombineTexts(code, left, b);
    if (a.IsText() || b.IsText()) return CombineMixed(code, left, b);
    CombineNumbers(code, left, a.GetNumber(), b.GetNumber());
}

void EvalCellValue(int code, CCCellValue & value) {
    if (value.IsError()) return;
    bool const blank = value.IsText() || value.IsEmpty();
    if (blank && code == kPlusSign) return;
    if (blank) value.Set(0.0, C_NF_GENERAL);
    if (!value.IsNumber()) return;
    double const number = value.GetNumber();
    switch (code) {
    case kPlusSign:
        return value.Set(number, C_NF_GENERAL);
    case kMinusSign:
        return value.Set(-number, C_NF_GENERAL);
    case kNot:
        return SetTruth(value, number == 0);
    case kPercent:
        return value.Set(number / 100, C_NF_GENERAL);
    default:
        return;
    }
}
