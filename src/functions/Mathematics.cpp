// Mathematics: arithmetic, rounding, logarithms, hyperbolic functions, random numbers,
// determinants.
#include "functions/Operators.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Families.h"
#include "platform/Digits.h"
#include "platform/Random.h"

#include <cmath>
#include <limits>
#include <vector>

namespace cells::internal {
namespace {

Outcome Abs(double x) { return std::fabs(x); }
Outcome Acosh(double x) { return std::log(x + std::sqrt(x * x - 1)); }
Outcome Acotanh(double x) {
    if (!(std::fabs(x) > 1)) return Status::kBadValue;
    return 0.5 * std::log((x + 1) / (x - 1));
}
Outcome Asinh(double x) { return std::log(x + std::sqrt(x * x + 1)); }
Outcome Atanh(double x) {
    if (!(x >= -1 && x <= 1)) return Status::kBadValue;
    return 0.5 * std::log((x + 1) / (1 - x));
}
Outcome Cosh(double x) { return std::cosh(x); }
Outcome Cotanh(double x) {
    if (x == 0) return std::numeric_limits<double>::infinity();
    if (x > 709) return 1.0;
    double const root = std::exp(x);
    double const e = root * root;
    return std::isfinite(e) ? (e + 1) / (e - 1) : 1.0;
}
Outcome Exp(double x) { return std::exp(x); }
Outcome Ln(double x) { return std::log(x); }
Outcome Log10(double x) { return std::log10(x); }
Outcome Sinh(double x) { return std::sinh(x); }
Outcome Tanh(double x) { return std::tanh(x); }
Outcome Sqr(double x) { return x * x; }
Outcome Sqrt(double x) {
    if (!(x >= 0)) return Status::kBadValue;
    return std::sqrt(x);
}
Outcome Int(double x) { return std::floor(x); }

// The result takes the sign of the divisor.
Outcome Mod(double a, double b) {
    if (b == 0) return Status::kDivisionByZero;
    return a - std::floor(a / b) * b;
}

void EvalLog(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    double x, base;
    if (!GetNumbers(ctx, result, &x, 1, args, current) || !(x > 0)) return result.Set(errValue);
    if (!args->next) return SetNumber(result, std::log10(x));
    if (!GetNumbers(ctx, result, &base, 1, args->next, current) || !(base > 0) || base == 1)
        return result.Set(errValue);
    SetNumber(result, std::log(x) / std::log(base));
}

// A blank has no sign.
void EvalSign(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    EvalArg(ctx, result, args, current);
    if (result.IsEmpty()) return;
    if (!result.IsNumber()) return result.Set(errValue);
    double const x = result.GetNumber();
    SetNumber(result, x > 0 ? 1.0 : x < 0 ? -1.0 : 0.0);
}

// Rounding. These are four different things: to a multiple, to decimal places, and up and down at a
// place whatever the sign.

Outcome Round(double x, double multiple) {
    if (multiple == 0) return 0.0;
    return std::floor(x / multiple + 0.5) * multiple; // the half goes upward
}

Outcome RoundN(double x, double places) {
    double const p = std::pow(10.0, std::trunc(places));
    return std::floor(x * p + 0.5) / p;
}

// A floor, so that negative numbers move away from zero.
Outcome Trunc(double x, double places) {
    double const p = std::pow(10.0, std::trunc(places));
    return std::floor(p * x) / p;
}

// `steps` times ten or a tenth. Zero and infinity cannot change any more.
double Scaled(double x, double steps, bool up) {
    for (double i = 0; i < steps && x != 0 && std::isfinite(x); ++i) x = up ? x * 10 : x / 10;
    return x;
}

// The way back takes the ceiling of the places where the way there took the floor: a fraction of a
// place does not restore the magnitude. Saved sheets keep their results by it.
double RoundAtPlace(double x, double places, double (*round)(double)) {
    bool const up = places > 0;
    double const magnitude = std::fabs(places);
    return Scaled(round(Scaled(x, std::floor(magnitude), up)), std::ceil(magnitude), !up);
}

double Ceil(double x) { return std::ceil(x); }
double Floor(double x) { return std::floor(x); }
Outcome RoundUp(double x, double places) { return RoundAtPlace(x, places, Ceil); }
Outcome RoundDown(double x, double places) { return RoundAtPlace(x, places, Floor); }

Outcome ToStep(double x, double step, double (*round)(double)) {
    if (!(x * step >= 0)) return Status::kBadValue;
    if (step == 0) return 0.0;
    return round(x / step) * step;
}
Outcome FloorTo(double x, double step) { return ToStep(x, step, Floor); }
Outcome CeilingTo(double x, double step) { return ToStep(x, step, Ceil); }

double SignOf(double x) { return x < 0 ? -1.0 : 1.0; }
Outcome Even(double x) { return SignOf(x) * (2 * std::ceil(std::fabs(x) / 2)); }
Outcome Odd(double x) {
    double t = 2 * std::floor(std::fabs(x) / 2) - 1;
    for (int step = 0; step < 2 && t < std::fabs(x); ++step) t += 2; // two steps reach it
    return SignOf(x) * t;
}

double RandomShare() { return Random() / 32767.0; }

void EvalRand(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    double maximum;
    if (!args) return SetNumber(result, RandomShare());
    if (!GetNumbers(ctx, result, &maximum, 1, args, current)) return result.Set(errValue);
    SetNumber(result, RandomShare() * maximum);
}

Outcome RandBetween(double a, double b) {
    if (a > b) std::swap(a, b);
    return RandomShare() * (b - a) + a;
}

// Determinants

using Matrix = std::vector<double>; // row after row

// Brings a row to a zero pivot where both elements across the diagonal are something. The sign of
// the determinant does not change with the exchange, so that saved sheets keep their results.
void FindPivot(Matrix & a, std::size_t n, std::size_t i) {
    auto const fits = [&](std::size_t j) { return a[j * n + i] != 0 && a[i * n + j] != 0; };
    std::size_t row = n;
    for (std::size_t j = i + 1; j < n && row == n; ++j)
        if (fits(j)) row = j;
    for (std::size_t j = i; j-- > 0 && row == n;)
        if (fits(j)) row = j;
    if (row == n) return;
    for (std::size_t k = 0; k < n; ++k) std::swap(a[i * n + k], a[row * n + k]);
}

double Determinant(Matrix a, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        if (a[i * n + i] == 0) FindPivot(a, n, i);
        if (a[i * n + i] == 0) return 0;
    }
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = i + 1; j < n; ++j) {
            double const factor = -a[j * n + i] / a[i * n + i];
            for (std::size_t k = 0; k < n; ++k) a[j * n + k] += a[i * n + k] * factor;
        }
    double product = 1;
    for (std::size_t i = 0; i < n; ++i) product *= a[i * n + i];
    return product;
}

void EvalDeterminant(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                     CCRef const * current) {
    constexpr int kMostColumns = 256;
    ValueWalk walk(ctx, args->formula, current);
    CSize size;
    if (!walk.IsOpen()) return result.Set(errRef);
    if (!walk.Size(size) || size.cx != size.cy || size.cx > kMostColumns)
        return result.Set(errValue);
    Matrix matrix;
    CCCellValue value;
    while (walk.Next(value)) {
        if (!value.IsEmpty() && !value.IsNumber()) return result.Set(errValue);
        matrix.push_back(value.IsNumber() ? value.GetNumber() : 0);
    }
    std::size_t const n = std::size_t(size.cx);
    matrix.resize(n * n);
    SetNumber(result, Determinant(std::move(matrix), n));
}

constexpr FunctionRow kRows[] = {
    {13044, L"ABS", L"number", "n", L"Absolute value of a number.", L"ABS(-3)", L"3", Singles<1>,
     OfNumbers<Abs>},
    {13045, L"ACOSH", L"number", "n", L"Inverse hyperbolic cosine.", L"ACOSH(1)", L"0", Singles<1>,
     OfNumbers<Acosh>},
    {13046, L"ACOTANH", L"number", "n",
     L"Inverse hyperbolic cotangent of a number outside -1 to 1.", L"ACOTANH(2)",
     L"0.549306144334055", Singles<1>, OfNumbers<Acotanh>},
    {13047, L"ASINH", L"number", "n", L"Inverse hyperbolic sine.", L"ASINH(0)", L"0", Singles<1>,
     OfNumbers<Asinh>},
    {13048, L"ATANH", L"number", "n", L"Inverse hyperbolic tangent of a number from -1 to 1.",
     L"ATANH(0)", L"0", Singles<1>, OfNumbers<Atanh>},
    {13049, L"COSH", L"number", "n", L"Hyperbolic cosine.", L"COSH(0)", L"1", Singles<1>,
     OfNumbers<Cosh>},
    {13050, L"COTANH", L"number", "n", L"Hyperbolic cotangent.", L"COTANH(1000)", L"1", Singles<1>,
     OfNumbers<Cotanh>},
    {13051, L"DIVIDE", L"value; value...", "v[r]",
     L"First value divided by each following value in turn.", L"DIVIDE(12,2,3)", L"2", AtLeast<1>,
     Fold<kDivide>},
    {13052, L"EVEN", L"number", "n", L"Nearest even whole number away from zero.", L"EVEN(2.1)",
     L"4", Singles<1>, OfNumbers<Even>},
    {13053, L"EXP", L"number", "n", L"e raised to a power.", L"EXP(0)", L"1", Singles<1>,
     OfNumbers<Exp>},
    {13057, L"INT", L"number", "n", L"Largest whole number not above a number.", L"INT(-1.5)",
     L"-2", Singles<1>, OfNumbers<Int>},
    {13059, L"LN", L"number", "n", L"Natural logarithm.", L"LN(1)", L"0", Singles<1>,
     OfNumbers<Ln>},
    {13060, L"LOG", L"number; base", "n[n]", L"Logarithm to a base, 10 when none is given.",
     L"LOG(8,2)", L"3",
     [](CTX * ctx, CCFormulaList const * args, CCRef const * current) {
         return int(Singles<1>(ctx, args, current) || Singles<2>(ctx, args, current));
     },
     EvalLog},
    {13061, L"LOG10", L"number", "n", L"Logarithm to base 10.", L"LOG10(1000)", L"3", Singles<1>,
     OfNumbers<Log10>},
    {13062, L"MDETERM", L"matrix", "r", L"Determinant of a square range (row swaps keep the sign).",
     L"MDETERM({1,2;3,4})", L"-2", Exactly<1>, EvalDeterminant},
    {13063, L"MINUS", L"value; value...", "v[r]", L"First value less each following value.",
     L"MINUS(10,2,3)", L"5", AtLeast<1>, Fold<kSubtract>},
    {13064, L"MOD", L"number; divisor", "nn", L"Remainder that takes the sign of the divisor.",
     L"MOD(-7,3)", L"2", Singles<2>, OfNumbers<Mod>},
    {13066, L"ODD", L"number", "n", L"Nearest odd whole number away from zero.", L"ODD(3.1)", L"5",
     Singles<1>, OfNumbers<Odd>},
    {13067, L"PLUS", L"value; value...", "v[r]",
     L"Sum of values, or joined text, by the rules of the + operator.", L"PLUS(1,2,3)", L"6",
     AtLeast<1>, Fold<kAdd>},
    {13068, L"POWER", L"base; exponent...", "nr",
     L"First value raised to each following value in turn.", L"POWER(2,3,2)", L"64", AtLeast<2>,
     Fold<kPower>},
    {13069, L"RAND", L"maximum", "[n]", L"Random number from 0 to 1, or to a maximum.", L"RAND(0)",
     L"0",
     [](CTX * ctx, CCFormulaList const * args, CCRef const * current) {
         return int(!args || Singles<1>(ctx, args, current));
     },
     EvalRand},
    {13070, L"RANDBETWEEN", L"low; high", "nn", L"Random number between two bounds, not rounded.",
     L"RANDBETWEEN(5,5)", L"5", Singles<2>, OfNumbers<RandBetween>},
    {13071, L"ROUND", L"number; multiple", "nn", L"Nearest multiple, a half going upward.",
     L"ROUND(8,5)", L"10", Singles<2>, OfNumbers<Round>},
    {13072, L"ROUNDDOWN", L"number; places", "nn",
     L"Number cut toward minus infinity at a decimal place.", L"ROUNDDOWN(-1.25,1)", L"-1.3",
     Singles<2>, OfNumbers<RoundDown>},
    {13073, L"ROUNDUP", L"number; places", "nn",
     L"Number raised toward plus infinity at a decimal place.", L"ROUNDUP(1.25,1)", L"1.3",
     Singles<2>, OfNumbers<RoundUp>},
    {13075, L"SIGN", L"number", "n", L"-1, 0 or 1 by the sign of a number.", L"SIGN(-5)", L"-1",
     Singles<1>, EvalSign},
    {13076, L"SINH", L"number", "n", L"Hyperbolic sine.", L"SINH(0)", L"0", Singles<1>,
     OfNumbers<Sinh>},
    {13077, L"SQR", L"number", "n", L"Square of a number.", L"SQR(5)", L"25", Singles<1>,
     OfNumbers<Sqr>},
    {13078, L"SQRT", L"number", "n", L"Square root of a number not below 0.", L"SQRT(16)", L"4",
     Singles<1>, OfNumbers<Sqrt>},
    {13086, L"TANH", L"number", "n", L"Hyperbolic tangent.", L"TANH(0)", L"0", Singles<1>,
     OfNumbers<Tanh>},
    {13087, L"TIMES", L"value...", "[r]", L"Product of values by the rules of the * operator.",
     L"TIMES(2,3,4)", L"24", AtLeast<0>, Fold<kMultiply>},
    {13297, L"TRUNC", L"number; places", "nn", L"Number cut downward at a decimal place.",
     L"TRUNC(-1.25,1)", L"-1.3", Singles<2>, OfNumbers<Trunc>},
    {13298, L"CEILING", L"number; step", "nn", L"Next multiple of a step at or above a number.",
     L"CEILING(7,5)", L"10", AtLeast<2>, OfNumbers<CeilingTo>},
    {13299, L"FLOOR", L"number; step", "nn", L"Next multiple of a step at or below a number.",
     L"FLOOR(7,5)", L"5", AtLeast<2>, OfNumbers<FloorTo>},
    {13300, L"ROUNDN", L"number; places", "nn",
     L"Number rounded to decimal places, a half going upward.", L"ROUNDN(2.345,1)", L"2.3",
     Singles<2>, OfNumbers<RoundN>},
};

} // namespace

FunctionFamily Mathematics() { return MakeFamily(1, kRows); }

} // namespace cells::internal
