// Mathematics: arithmetic, rounding, sums.
#include "functions/Families.h"
#include "functions/Operators.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"

#include <cmath>

namespace cells::internal {
namespace {

// A function of N numbers: error 3 where an argument is none.
template <int N, typename Compute>
void OfNumbers(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current,
               Compute && compute) {
    double x[N];
    if (!GetNumbers(ctx, result, x, N, args, current)) return result.Set(errValue);
    compute(x);
}

void EvalAbs(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    OfNumbers<1>(ctx, result, args, current,
                 [&](double * x) { result.Set(std::fabs(x[0]), uchar(C_NF_GENERAL)); });
}

void EvalInt(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    OfNumbers<1>(ctx, result, args, current,
                 [&](double * x) { result.Set(std::floor(x[0]), uchar(C_NF_GENERAL)); });
}

// The result takes the sign of the divisor.
void EvalMod(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    OfNumbers<2>(ctx, result, args, current, [&](double * x) {
        if (x[1] == 0) return result.Set(errDiv0);
        result.Set(x[0] - std::floor(x[0] / x[1]) * x[1], uchar(C_NF_GENERAL));
    });
}

void EvalSqrt(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    OfNumbers<1>(ctx, result, args, current, [&](double * x) {
        if (!(x[0] >= 0)) return result.Set(errValue);
        result.Set(std::sqrt(x[0]), uchar(C_NF_GENERAL));
    });
}

struct SumSink final : NumberSink {
    double sum = 0;
    void Take(double const * numbers, std::size_t count) override {
        double total = sum;
        for (std::size_t i = 0; i < count; ++i) total += numbers[i];
        sum = total;
    }
};

void EvalSum(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    SumSink sink;
    Status const status = ForEachNumber(ctx, args, current, sink);
    SetStatusResult(ctx, status, result, sink.sum, C_NF_GENERAL);
}

constexpr FunctionRow kRows[] = {
    {13044, L"ABS", L"number", L"Absolute value of a number.", Singles<1>, EvalAbs},
    {13045, L"ACOSH", L"number", L"Inverse hyperbolic cosine."},
    {13046, L"ACOTANH", L"number", L"Inverse hyperbolic cotangent of a number outside -1 to 1."},
    {13047, L"ASINH", L"number", L"Inverse hyperbolic sine."},
    {13048, L"ATANH", L"number", L"Inverse hyperbolic tangent of a number from -1 to 1."},
    {13049, L"COSH", L"number", L"Hyperbolic cosine."},
    {13050, L"COTANH", L"number", L"Hyperbolic cotangent."},
    {13051, L"DIVIDE", L"value; value...", L"First value divided by each following value in turn.",
     AtLeast<1>, Fold<kDivide>},
    {13052, L"EVEN", L"number", L"Nearest even whole number away from zero."},
    {13053, L"EXP", L"number", L"e raised to a power."},
    {13054, L"FACT", L"number", L"Factorial of the whole part of a number."},
    {13055, L"FACTDOUBLE", L"number", L"Product of every second whole number down from a number."},
    {13056, L"GCD", L"number...", L"Greatest common divisor of whole numbers."},
    {13057, L"INT", L"number", L"Largest whole number not above a number.", Singles<1>, EvalInt},
    {13058, L"LCM", L"number...", L"Least common multiple of whole numbers."},
    {13059, L"LN", L"number", L"Natural logarithm."},
    {13060, L"LOG", L"number; base", L"Logarithm to a base, 10 when none is given."},
    {13061, L"LOG10", L"number", L"Logarithm to base 10."},
    {13062, L"MDETERM", L"matrix", L"Determinant of a square range (row swaps keep the sign)."},
    {13063, L"MINUS", L"value; value...", L"First value less each following value.", AtLeast<1>,
     Fold<kSubtract>},
    {13064, L"MOD", L"number; divisor", L"Remainder that takes the sign of the divisor.",
     Singles<2>, EvalMod},
    {13065, L"MULTINOMIAL", L"number...",
     L"Factorial of a sum over the product of the factorials."},
    {13066, L"ODD", L"number", L"Nearest odd whole number away from zero."},
    {13067, L"PLUS", L"value; value...",
     L"Sum of values, or joined text, by the rules of the + operator.", AtLeast<1>, Fold<kAdd>},
    {13068, L"POWER", L"base; exponent...", L"First value raised to each following value in turn.",
     AtLeast<2>, Fold<kPower>},
    {13069, L"RAND", L"maximum", L"Random number from 0 to 1, or to a maximum."},
    {13070, L"RANDBETWEEN", L"low; high", L"Random number between two bounds, not rounded."},
    {13071, L"ROUND", L"number; multiple", L"Nearest multiple, a half going upward."},
    {13072, L"ROUNDDOWN", L"number; places",
     L"Number cut toward minus infinity at a decimal place."},
    {13073, L"ROUNDUP", L"number; places",
     L"Number raised toward plus infinity at a decimal place."},
    {13074, L"SERIESSUM", L"x; first power; step; coefficient...", L"Sum of a power series."},
    {13075, L"SIGN", L"number", L"-1, 0 or 1 by the sign of a number."},
    {13076, L"SINH", L"number", L"Hyperbolic sine."},
    {13077, L"SQR", L"number", L"Square of a number."},
    {13078, L"SQRT", L"number", L"Square root of a number not below 0.", Singles<1>, EvalSqrt},
    {13079, L"SUM", L"value...", L"Sum of all numbers; everything else is skipped.", AtLeast<1>,
     EvalSum},
    {13080, L"SUMTIMES", L"range...", L"Sum of the products of ranges, position by position."},
    {13081, L"SUMSQ", L"value...", L"Sum of the squares of numbers."},
    {13082, L"SUMX2MY2", L"x range; y range", L"Sum of the differences of squares."},
    {13083, L"SUMX2PY2", L"x range; y range", L"Sum of the sums of squares."},
    {13084, L"SUMXMY2", L"x range; y range", L"Sum of the squares of differences."},
    {13085, L"SUMXPY2", L"x range; y range", L"Sum of the squares of sums."},
    {13086, L"TANH", L"number", L"Hyperbolic tangent."},
    {13087, L"TIMES", L"value...", L"Product of values by the rules of the * operator.", AtLeast<0>,
     Fold<kMultiply>},
    {13088, L"TOTAL", L"value...", L"Sum of all numbers, the same as SUM.", AtLeast<1>, EvalSum},
    {13289, L"SUMIF", L"range; criterion; sum range",
     L"Sum of the values beside those that meet a criterion."},
    {13297, L"TRUNC", L"number; places", L"Number cut downward at a decimal place."},
    {13298, L"CEILING", L"number; step", L"Next multiple of a step at or above a number."},
    {13299, L"FLOOR", L"number; step", L"Next multiple of a step at or below a number."},
    {13300, L"ROUNDN", L"number; places",
     L"Number rounded to decimal places, a half going upward."},
};

} // namespace

FunctionFamily Mathematics() { return MakeFamily(1, kRows); }

} // namespace cells::internal
