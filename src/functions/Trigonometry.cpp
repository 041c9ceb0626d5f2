// Trigonometry in radians, and the number pi. Arguments out of a function's domain give a value
// that is not finite, which an enclosing formula may still test.
#include "functions/Arguments.h"
#include "functions/Shapes.h"
#include "functions/internal/Families.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace cells::internal {
namespace {

constexpr double kPi = std::numbers::pi;

Outcome Acos(double x) { return std::acos(x); }
Outcome Acotan(double x) { return 1.5707963267948966 - std::atan(x); }
Outcome Asin(double x) { return std::asin(x); }
Outcome Atan(double x) { return std::atan(x); }
Outcome Atan2(double y, double x) {
    if (y == 0 && x == 0) return Status::kBadValue;
    return std::atan2(y, x);
}
Outcome Cos(double x) { return std::cos(x); }
Outcome Cotan(double x) {
    double const sine = std::sin(x);
    if (sine == 0) return std::numeric_limits<double>::infinity();
    return std::cos(x) / sine;
}
Outcome Degrees(double x) { return x * 180 / kPi; }
Outcome Radians(double x) { return x * kPi / 180; }
Outcome Sin(double x) { return std::sin(x); }
Outcome SqrtPi(double x) {
    if (!(x >= 0)) return Status::kBadValue;
    return std::sqrt(x * kPi);
}
Outcome Tan(double x) { return std::tan(x); }

void EvalPi(CTX *, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    SetNumber(result, kPi);
}

constexpr FunctionRow kRows[] = {
    {13089, L"ACOS", L"number", "n", L"Angle whose cosine is a number, in radians.", L"ACOS(1)",
     L"0", Singles<1>, OfNumbers<Acos>},
    {13090, L"ACOTAN", L"number", "n", L"Angle whose cotangent is a number, in radians.",
     L"ACOTAN(0)", L"1.5707963267949", Singles<1>, OfNumbers<Acotan>},
    {13091, L"ASIN", L"number", "n", L"Angle whose sine is a number, in radians.", L"ASIN(0)", L"0",
     Singles<1>, OfNumbers<Asin>},
    {13092, L"ATAN", L"number", "n", L"Angle whose tangent is a number, in radians.", L"ATAN(0)",
     L"0", Singles<1>, OfNumbers<Atan>},
    {13093, L"ATAN2", L"y; x", "nn", L"Angle of the first number over the second, in radians.",
     L"DEGREES(ATAN2(1,1))", L"45", Singles<2>, OfNumbers<Atan2>},
    {13094, L"COS", L"angle", "n", L"Cosine of an angle in radians.", L"COS(0)", L"1", Singles<1>,
     OfNumbers<Cos>},
    {13095, L"COTAN", L"angle", "n", L"Cotangent of an angle in radians.",
     L"ROUNDN(COTAN(PI()/4),6)", L"1", Singles<1>, OfNumbers<Cotan>},
    {13096, L"DEGREES", L"angle", "n", L"Radians turned into degrees.", L"DEGREES(PI())", L"180",
     Singles<1>, OfNumbers<Degrees>},
    {13097, L"PI", L"", "", L"The number 3.14159265358979.", L"PI()", L"3.14159265358979",
     Exactly<0>, EvalPi},
    {13098, L"RADIANS", L"angle", "n", L"Degrees turned into radians.", L"RADIANS(180)",
     L"3.14159265358979", Singles<1>, OfNumbers<Radians>},
    {13099, L"SIN", L"angle", "n", L"Sine of an angle in radians.", L"SIN(0)", L"0", Singles<1>,
     OfNumbers<Sin>},
    {13100, L"SQRTPI", L"number", "n", L"Square root of a number times pi.", L"SQRTPI(1)",
     L"1.77245385090552", Singles<1>, OfNumbers<SqrtPi>},
    {13101, L"TAN", L"angle", "n", L"Tangent of an angle in radians.", L"TAN(0)", L"0", Singles<1>,
     OfNumbers<Tan>},
};

} // namespace

FunctionFamily Trigonometry() { return MakeFamily(2, kRows); }

} // namespace cells::internal
