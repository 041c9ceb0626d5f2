// The function objects of the operators, by what they mean. Their names and bodies come from
// functions/Operators.cpp when the functions are set up.
#pragma once

class CCFormula;
class CCFunc;

namespace cells::internal {

enum class Operator {
    kOr,
    kAnd,
    kNot,
    kGreater,
    kGreaterOrEqual,
    kLess,
    kLessOrEqual,
    kEqual,
    kNotEqual,
    kAdd,
    kSubtract,
    kMultiply,
    kDivide,
    kPower,
    kPercent,
    kPlusSign,
    kMinusSign,
    kRange,      // ".."
    kSheetRange, // ":"
    kFullRef,    // "!"
};
constexpr int kOperators = 20;

CCFunc * OperatorObject(Operator op);
// Whether a formula is a node of an operator that builds references.
bool IsReferenceOperator(CCFormula const & formula, Operator op);

} // namespace cells::internal
