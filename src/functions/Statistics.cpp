// Descriptive statistics and distributions.
#include "functions/Families.h"
#include "functions/Operators.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"

namespace cells::internal {
namespace {

void EvalAverage(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    NumberStats stats;
    Status const status = ListStats(ctx, args, current, stats);
    SetStatusResult(ctx, status, result, stats.count == 0 ? 0 : stats.sum / stats.count,
                    C_NF_GENERAL);
}

// Whether `value` beats the winner so far: a number beats a text, and within a kind the better one.
template <int Code>
bool Beats(CCCellValue const & value, CCCellValue const & winner) {
    if (winner.IsEmpty()) return true;
    if (value.IsNumber() != winner.IsNumber()) return value.IsNumber();
    int const order = CompareEQTypeValues(value, winner, 1);
    return Code == kGreater ? order > 0 : order < 0;
}

// MAX and MIN keep the winner as a value, with its format.
template <int Code>
void EvalWinner(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    CCCellValue winner;
    bool const done = ForEachValue(ctx, args, current, [&](CCCellValue const & value) {
        if ((value.IsNumber() || value.IsText()) && Beats<Code>(value, winner)) winner.Set(value);
    });
    if (!done) return result.Set(errRef);
    if (winner.IsEmpty())
        result.Set(0.0, uchar(C_NF_GENERAL));
    else
        result.Set(winner);
}

void EvalCount(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    double count = 0;
    bool const done = ForEachValue(ctx, args, current,
                                   [&](CCCellValue const & value) { count += !value.IsEmpty(); });
    SetStatusResult(ctx, done ? Status::kDone : Status::kBadReference, result, count, C_NF_GENERAL);
}

void EvalCountNumbers(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                      CCRef const * current) {
    NumberStats stats;
    Status const status = ListStats(ctx, args, current, stats);
    SetStatusResult(ctx, status, result, stats.count, C_NF_GENERAL);
}

constexpr FunctionRow kRows[] = {
    {13102, L"AVEDEV", L"value...", L"Mean distance of numbers from their mean."},
    {13103, L"AVERAGE", L"value...", L"Mean of the numbers, 0 when there is none.", AtLeast<0>,
     EvalAverage},
    {13104, L"AVG", L"value...", L"Mean of the numbers, the same as AVERAGE.", AtLeast<0>,
     EvalAverage},
    {13105, L"BINOMDIST", L"successes; trials; probability; cumulative",
     L"Binomial probability, single or cumulative."},
    {13106, L"COMB", L"items; chosen", L"Number of ways to choose without regard to order."},
    {13107, L"CORREL", L"range 1; range 2",
     L"Correlation from the covariance and the two variances."},
    {13108, L"COUNT", L"value...", L"Number of values that are not blank.", AtLeast<0>, EvalCount},
    {13109, L"COUNTN", L"value...", L"Number of values that are numbers.", AtLeast<0>,
     EvalCountNumbers},
    {13110, L"COVAR", L"range 1; range 2", L"Covariance of two ranges."},
    {13111, L"DEVSQ", L"value...", L"Sum of squared distances from the mean."},
    {13112, L"EXPONDIST", L"x; lambda; cumulative",
     L"Exponential distribution, density or cumulative."},
    {13113, L"FISHER", L"number", L"Fisher transformation."},
    {13114, L"FISHERINV", L"number", L"Inverse of the Fisher transformation."},
    {13115, L"FORECAST", L"x; known y; known x", L"Value at x on the line of best fit."},
    {13116, L"GAMMADIST", L"x; alpha; beta", L"Gamma distribution, density."},
    {13117, L"GAMMALN", L"number", L"Natural logarithm of the gamma function."},
    {13118, L"GEOMEAN", L"value...", L"Geometric mean of positive numbers."},
    {13119, L"HARMEAN", L"value...", L"Harmonic mean of positive numbers."},
    {13120, L"HYPGEOMDIST", L"sample hits; sample size; hits; size",
     L"Hypergeometric probability."},
    {13121, L"INTERCEPT", L"known y; known x", L"Where the line of best fit meets the y axis."},
    {13122, L"KURT", L"value...", L"Kurtosis of at least four numbers."},
    {13123, L"LARGE", L"rank; value...", L"The number of a given rank counted from the largest."},
    {13124, L"MAX", L"value...", L"Largest number, or last text when there is no number.",
     AtLeast<1>, EvalWinner<kGreater>},
    {13125, L"MEDIAN", L"value...", L"Middle number, or mean of the two middle ones."},
    {13126, L"MIN", L"value...", L"Smallest number, or first text when there is no number.",
     AtLeast<1>, EvalWinner<kLess>},
    {13127, L"MODE", L"value...", L"Most frequent number."},
    {13128, L"NEGBINOMDIST", L"failures; successes; probability",
     L"Negative binomial probability."},
    {13129, L"NORMDIST", L"x; mean; deviation", L"Normal distribution, density."},
    {13130, L"NORMSDIST", L"x", L"Standard normal distribution, density (not reachable by name).",
     nullptr, nullptr, kPlainFunc, nullptr, false},
    {13131, L"PEARSON", L"range 1; range 2", L"Pearson correlation of two ranges."},
    {13132, L"PERCENTILE", L"share; range", L"Value below which a share of the numbers lies."},
    {13133, L"PERCENTRANK", L"x; range", L"Rank of a value as a share of the numbers."},
    {13134, L"PERM", L"items; chosen", L"Number of ordered arrangements."},
    {13135, L"POISSON", L"x; mean; cumulative", L"Poisson probability, single or cumulative."},
    {13136, L"PROB", L"values; probabilities; low; high",
     L"Probability that a value lies between two limits."},
    {13137, L"QUARTILE", L"quarter; range",
     L"Minimum, quartile, median or maximum, by a number from 0 to 4."},
    {13138, L"RANK", L"x; range; order", L"Position of a number among numbers."},
    {13139, L"RSQ", L"range 1; range 2", L"Square of the Pearson correlation."},
    {13140, L"SKEW", L"value...", L"Skewness of at least three numbers."},
    {13141, L"SLOPE", L"known y; known x", L"Slope of the line of best fit."},
    {13142, L"SMALL", L"rank; value...", L"The number of a given rank counted from the smallest."},
    {13143, L"STANDARDIZE", L"x; mean; deviation", L"Distance from the mean in deviations."},
    {13144, L"STD", L"value...", L"Standard deviation of a sample."},
    {13145, L"STDEV", L"value...",
     L"Standard deviation of a sample, by another rounding than STD."},
    {13146, L"STDEVP", L"value...", L"Standard deviation of a whole population."},
    {13147, L"STEYX", L"known y; known x", L"Standard error of the line of best fit."},
    {13148, L"VAR", L"value...", L"Variance of a sample."},
    {13149, L"VARP", L"value...", L"Variance of a population of at least two numbers."},
    {13150, L"WAVG", L"values; weights", L"Weighted mean."},
    {13151, L"WEIBULL", L"x; alpha; beta; cumulative",
     L"Weibull distribution, density or cumulative."},
    {13152, L"ZTEST", L"range; mean; deviation",
     L"One minus the normal density of a mean (not reachable by name).", nullptr, nullptr,
     kPlainFunc, nullptr, false},
    {13290, L"COUNTIF", L"range...; criterion", L"Number of values that meet a criterion."},
};

} // namespace

FunctionFamily Statistics() { return MakeFamily(4, kRows); }

} // namespace cells::internal
