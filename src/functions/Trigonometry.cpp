// Trigonometry and the number pi.
#include "functions/Arguments.h"
#include "functions/Families.h"
#include "functions/Shapes.h"

#include <numbers>

namespace cells::internal {
namespace {

void EvalPi(CTX *, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    result.Set(std::numbers::pi, uchar(C_NF_GENERAL));
}

constexpr FunctionRow kRows[] = {
    {13089, L"ACOS", L"number", L"Angle whose cosine is a number, in radians."},
    {13090, L"ACOTAN", L"number", L"Angle whose cotangent is a number, in radians."},
    {13091, L"ASIN", L"number", L"Angle whose sine is a number, in radians."},
    {13092, L"ATAN", L"number", L"Angle whose tangent is a number, in radians."},
    {13093, L"ATAN2", L"y; x", L"Angle of the first number over the second, in radians."},
    {13094, L"COS", L"angle", L"Cosine of an angle in radians."},
    {13095, L"COTAN", L"angle", L"Cotangent of an angle in radians."},
    {13096, L"DEGREES", L"angle", L"Radians turned into degrees."},
    {13097, L"PI", L"", L"The number 3.14159265358979.", Exactly<0>, EvalPi},
    {13098, L"RADIANS", L"angle", L"Degrees turned into radians."},
    {13099, L"SIN", L"angle", L"Sine of an angle in radians."},
    {13100, L"SQRTPI", L"number", L"Square root of a number times pi."},
    {13101, L"TAN", L"angle", L"Tangent of an angle in radians."},
};

} // namespace

FunctionFamily Trigonometry() { return MakeFamily(2, kRows); }

} // namespace cells::internal
