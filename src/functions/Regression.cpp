// Two ranges side by side: lines of best fit, covariance, correlation, weighted means.
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Families.h"

#include <cmath>

namespace cells::internal {
namespace {

using PairFormula = Outcome (*)(PairSums const & s);

template <PairFormula Formula>
void OfPairs(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    PairSums sums;
    Status const status = PairStats(ctx, args->formula, args->next->formula, current, sums);
    Outcome const outcome = status == Status::kDone ? Formula(sums) : Outcome(status);
    SetStatusResult(ctx, outcome.status, result, outcome.number, C_NF_GENERAL);
}

// The second range is the independent variable. A range without spread is error 3 for the slope and
// error 2 for the intercept.

double Spread(PairSums const & s) { return s.n * s.sbb - s.sb * s.sb; }
double SlopeOf(PairSums const & s) { return (s.n * s.sab - s.sa * s.sb) / Spread(s); }

Outcome Slope(PairSums const & s) {
    if (Spread(s) == 0) return Status::kBadValue;
    return SlopeOf(s);
}

Outcome Intercept(PairSums const & s) {
    if (Spread(s) == 0) return Status::kDivisionByZero;
    return (s.sa - SlopeOf(s) * s.sb) / s.n;
}

Outcome StdErrorYX(PairSums const & s) {
    double const d = Spread(s);
    if (s.n == 0 || s.n == 2 || d == 0) return Status::kDivisionByZero;
    double const e = s.n * s.sab - s.sa * s.sb;
    double const radicand = ((s.n * s.saa - s.sa * s.sa) - e * e / d) / ((s.n - 2) * s.n);
    if (radicand < 0) return Status::kBadValue;
    return std::sqrt(radicand);
}

Outcome Covariance(PairSums const & s) {
    if (s.n == 0) return Status::kDivisionByZero;
    return (s.sab - s.sa * s.sb / s.n) / s.n;
}

Outcome WeightedMean(PairSums const & s) {
    if (s.sb == 0) return Status::kDivisionByZero;
    return s.sab / s.sb;
}

Outcome Pearson(PairSums const & s) {
    double const product = (s.n * s.saa - s.sa * s.sa) * (s.n * s.sbb - s.sb * s.sb);
    double const root = std::sqrt(product);
    if (product < 0 || root == 0) return Status::kBadValue;
    return (s.n * s.sab - s.sa * s.sb) / root;
}

Outcome RSquared(PairSums const & s) {
    Outcome const r = Pearson(s);
    return r.status == Status::kDone ? Outcome(r.number * r.number) : r;
}

void EvalForecast(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    double x;
    if (!GetNumbers(ctx, result, &x, 1, args, current)) return result.Set(errValue);
    CCFormulaList const * const known = args->next;
    PairSums s;
    Status status = PairStats(ctx, known->formula, known->next->formula, current, s);
    if (status == Status::kDone && (Spread(s) == 0 || s.n == 0)) status = Status::kDivisionByZero;
    SetStatusResult(ctx, status, result, (x - s.sb / s.n) * SlopeOf(s) + s.sa / s.n, C_NF_GENERAL);
}

// The variances skip what is no number, and the covariance counts it as zero: with holes in the
// data this differs from PEARSON. Saved sheets keep their results by it.
Outcome Correlation(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    PairSums pairs;
    Status status = PairStats(ctx, args->formula, args->next->formula, current, pairs);
    if (status != Status::kDone) return status;
    Outcome const covariance = Covariance(pairs);
    if (covariance.status != Status::kDone) return covariance;
    double variances[2];
    for (double & variance : variances) {
        NumberStats s;
        status = FirstArgStats(ctx, args, current, s);
        if (status != Status::kDone) return status;
        if (s.count < 2) return Status::kDivisionByZero;
        variance = (s.count * s.sumSquares - s.sum * s.sum) / (s.count * s.count);
        args = args->next;
    }
    if (variances[0] < 0 || variances[1] < 0) return Status::kBadValue;
    return covariance.number / std::sqrt(variances[0] * variances[1]);
}

void EvalCorrel(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    Outcome const outcome = Correlation(ctx, args, current);
    SetStatusResult(ctx, outcome.status, result, outcome.number, C_NF_GENERAL);
}

constexpr FunctionRow kRows[] = {
    {13107, L"CORREL", L"range 1; range 2", "rr",
     L"Correlation from the covariance and the two variances.",
     L"ROUNDN(CORREL({1,2,3},{2,4,6}),6)", L"1", Exactly<2>, EvalCorrel},
    {13110, L"COVAR", L"range 1; range 2", "rr", L"Covariance of two ranges.",
     L"COVAR({1,2,3},{2,4,6})", L"1.33333333333333", Exactly<2>, OfPairs<Covariance>},
    {13115, L"FORECAST", L"x; known y; known x", "nrr", L"Value at x on the line of best fit.",
     L"FORECAST(4,{2,4,6},{1,2,3})", L"8",
     [](CTX * ctx, CCFormulaList const * args, CCRef const * current) {
         return int(FormulaListHasExactly(args, 3) && AreSingle(ctx, args, current, 1));
     },
     EvalForecast},
    {13121, L"INTERCEPT", L"known y; known x", "rr",
     L"Where the line of best fit meets the y axis.", L"INTERCEPT({3,5,7},{1,2,3})", L"1",
     Exactly<2>, OfPairs<Intercept>},
    {13131, L"PEARSON", L"range 1; range 2", "rr", L"Pearson correlation of two ranges.",
     L"PEARSON({1,2,3},{6,4,2})", L"-1", Exactly<2>, OfPairs<Pearson>},
    {13139, L"RSQ", L"range 1; range 2", "rr", L"Square of the Pearson correlation.",
     L"RSQ({1,2,3},{6,4,2})", L"1", Exactly<2>, OfPairs<RSquared>},
    {13141, L"SLOPE", L"known y; known x", "rr", L"Slope of the line of best fit.",
     L"SLOPE({3,5,7},{1,2,3})", L"2", Exactly<2>, OfPairs<Slope>},
    {13147, L"STEYX", L"known y; known x", "rr", L"Standard error of the line of best fit.",
     L"STEYX({3,5,7},{1,2,3})", L"0", Exactly<2>, OfPairs<StdErrorYX>},
    {13150, L"WAVG", L"values; weights", "rr", L"Weighted mean.", L"WAVG({10,20},{1,3})", L"17.5",
     Exactly<2>, OfPairs<WeightedMean>},
};

} // namespace

FunctionFamily Regression() { return MakeFamily(4, kRows); }

} // namespace cells::internal
