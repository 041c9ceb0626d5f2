// Means, spreads, extremes and counts.
#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/CCRefFormula.h"
#include "functions/Operators.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Criteria.h"
#include "functions/internal/Families.h"

#include <cmath>

namespace cells::internal {
namespace {

// What a formula over count, sum and sum of squares gives.
using StatsFormula = Outcome (*)(NumberStats const & s);

template <StatsFormula Formula>
void OfStats(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    NumberStats stats;
    Status const status = ListStats(ctx, args, current, stats);
    Outcome const outcome = status == Status::kDone ? Formula(stats) : Outcome(status);
    SetStatusResult(ctx, outcome.status, result, outcome.number, C_NF_GENERAL);
}

// The spreads differ in their formulas, in how few numbers they take and in what they guard. Each
// has its own body, since their roundings differ too.

Outcome Average(NumberStats const & s) { return s.count == 0 ? 0 : s.sum / s.count; }

Outcome Count(NumberStats const & s) { return s.count; }

Outcome Variance(NumberStats const & s) {
    if (s.count < 2) return Status::kDivisionByZero;
    return (s.sumSquares - s.sum * s.sum / s.count) / (s.count - 1);
}

// A single number is refused, although the formula would give 0.
Outcome VarianceP(NumberStats const & s) {
    if (s.count < 2) return Status::kDivisionByZero;
    return (s.count * s.sumSquares - s.sum * s.sum) / (s.count * s.count);
}

Outcome Std(NumberStats const & s) {
    if (s.count < 2) return Status::kDivisionByZero;
    double const variance = (s.sumSquares - s.sum * s.sum / s.count) / (s.count - 1);
    if (variance < 0) return Status::kBadValue;
    return std::sqrt(variance);
}

Outcome StDev(NumberStats const & s) {
    if (s.count < 2) return Status::kDivisionByZero;
    return std::sqrt((s.count * s.sumSquares - s.sum * s.sum) / ((s.count - 1) * s.count));
}

Outcome StDevP(NumberStats const & s) {
    if (s.count == 0) return Status::kDivisionByZero;
    return std::sqrt((s.count * s.sumSquares - s.sum * s.sum) / (s.count * s.count));
}

Outcome DevSq(NumberStats const & s) {
    if (s.count == 0) return Status::kDivisionByZero;
    return s.sumSquares - s.sum * s.sum / s.count;
}

// A text or error that the first walk skipped ends the second.
void EvalAveDev(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    NumberStats stats;
    Status status = ListStats(ctx, args, current, stats);
    double const n = stats.count, mean = n == 0 ? 0 : stats.sum / n;
    double total = 0;
    if (status == Status::kDone)
        status = TryEachNumber(ctx, args, current, [&](double x) {
            total += std::fabs(x - mean);
            return Status::kDone;
        });
    SetStatusResult(ctx, status, result, n == 0 ? 0 : total / n, C_NF_GENERAL);
}

// The sum of the powers of the deviations, in units of the standard deviation.
struct MomentSink final : NumberSink {
    MomentSink(double m, double s, int p) : mean(m), deviation(s), power(p) {}
    double mean, deviation;
    int power;
    double total = 0;
    void Take(double const * numbers, std::size_t count) override {
        for (std::size_t i = 0; i < count; ++i)
            total += std::pow((numbers[i] - mean) / deviation, power);
    }
};

void EvalSkew(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    NumberStats s;
    Status status = ListStats(ctx, args, current, s);
    double const n = s.count;
    if (status == Status::kDone && n < 3) status = Status::kBadValue;
    if (status != Status::kDone) return SetStatusResult(ctx, status, result, 0, C_NF_GENERAL);
    MomentSink sink(s.sum / n, std::sqrt((s.sumSquares - s.sum * s.sum / n) / (n - 1)), 3);
    status = ForEachNumber(ctx, args, current, sink);
    SetStatusResult(ctx, status, result, sink.total * (n / ((n - 2) * (n - 1))), C_NF_GENERAL);
}

void EvalKurt(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    NumberStats s;
    Status status = ListStats(ctx, args, current, s);
    double const n = s.count;
    if (status == Status::kDone && n < 4) status = Status::kBadValue;
    if (status != Status::kDone) return SetStatusResult(ctx, status, result, 0, C_NF_GENERAL);
    double const deviation = std::sqrt((n * s.sumSquares - s.sum * s.sum) / ((n - 1) * n));
    MomentSink sink(s.sum / n, deviation, 4);
    status = ForEachNumber(ctx, args, current, sink);
    double const kurtosis = sink.total * n * (n + 1) / ((n - 2) * (n - 1) * (n - 3)) -
                            3 * ((n - 1) * (n - 1)) / ((n - 2) * (n - 3));
    SetStatusResult(ctx, status, result, kurtosis, C_NF_GENERAL);
}

// The product is kept as it is and may overflow.
void EvalGeoMean(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    double product = 1, n = 0;
    Status status = TryEachNumber(ctx, args, current, [&](double x) {
        if (!(x > 0)) return Status::kBadValue;
        product *= x;
        ++n;
        return Status::kDone;
    });
    if (status == Status::kDone && n == 0) status = Status::kBadValue;
    SetStatusResult(ctx, status, result, std::pow(product, 1 / n), C_NF_GENERAL);
}

void EvalHarMean(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    double sum = 0, n = 0;
    Status const status = TryEachNumber(ctx, args, current, [&](double x) {
        if (x == 0) return Status::kDivisionByZero;
        if (!(x > 0)) return Status::kBadValue;
        sum += 1 / x;
        ++n;
        return Status::kDone;
    });
    SetStatusResult(ctx, status, result, n == 0 ? 0 : n / sum, C_NF_GENERAL);
}

// Whether `value` beats the winner so far: a number beats a text, and within a kind the better one.
template <int Code>
bool Beats(CCCellValue const & value, CCCellValue const & winner) {
    if (winner.IsEmpty()) return true;
    if (value.IsNumber() != winner.IsNumber()) return value.IsNumber();
    int const order = CompareEQTypeValues(value, winner, 1);
    return Code == kGreater ? order > 0 : order < 0;
}

// The best number of a walk.
template <int Code>
struct WinnerSink final : NumberSink {
    double best = 0;
    bool any = false;
    void Take(double const * numbers, std::size_t count) override {
        double winner = best;
        std::size_t i = 0;
        if (!any && count > 0) winner = numbers[i++];
        any = any || count > 0;
        for (; i < count; ++i)
            if (Code == kGreater ? numbers[i] > winner : numbers[i] < winner) winner = numbers[i];
        best = winner;
    }
};

// A range that the host reads in bulk: its best number first, then the cell that holds it first,
// which gives the format. False where there is no such way or no number.
template <int Code>
bool FindWinner(CTX * ctx, CCFormula const * formula, CCCellValue & value) {
    CCRef const * const ref = formula->GetType() == kRefFormula
                                  ? static_cast<CCRefFormula const *>(formula)->GetRef()
                                  : nullptr;
    CCCellManager * const manager = ctx->manager();
    WinnerSink<Code> sink;
    return ref && manager && ref->GetType() == kRefRegion && manager->ReadNumbers(ref, sink) &&
           sink.any && manager->FindNumber(ref, sink.best, value);
}

// MAX and MIN keep the winner as a value, with its format.
template <int Code>
void EvalWinner(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    CCCellValue winner, value;
    auto const compete = [&](CCCellValue const & candidate) {
        bool const counts = candidate.IsNumber() || candidate.IsText();
        if (counts && Beats<Code>(candidate, winner)) winner.Set(candidate);
    };
    for (; args; args = args->next) {
        if (FindWinner<Code>(ctx, args->formula, value)) {
            compete(value);
            continue;
        }
        CCFormulaList const only{args->formula, nullptr};
        if (!ForEachValue(ctx, &only, current, compete)) return result.Set(errRef);
    }
    if (winner.IsEmpty())
        SetNumber(result, 0.0);
    else
        result.Set(winner);
}

// Everything but blanks, text and errors too.
void EvalCount(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    double count = 0;
    for (; args; args = args->next) {
        CCRef const * const ref = args->formula->GetType() == kRefFormula
                                      ? static_cast<CCRefFormula *>(args->formula)->GetRef()
                                      : nullptr;
        double occupied;
        if (ref && ctx->manager() && ctx->manager()->CountOccupied(ref, occupied)) {
            count += occupied;
            continue;
        }
        CCFormulaList const only{args->formula, nullptr};
        bool const done = ForEachValue(
            ctx, &only, current, [&](CCCellValue const & value) { count += !value.IsEmpty(); });
        if (!done) return result.Set(errRef);
    }
    SetNumber(result, count);
}

int CountIfShape(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    if (!FormulaListHasItems(args, 2)) return 0;
    while (args->next) args = args->next;
    return AreSingle(ctx, args, current, 1);
}

constexpr FunctionRow kRows[] = {
    {13102, L"AVEDEV", L"value...", "r", L"Mean distance of numbers from their mean.",
     L"AVEDEV(2,4,6,8)", L"2", AtLeast<1>, EvalAveDev},
    {13103, L"AVERAGE", L"value...", "[r]", L"Mean of the numbers, 0 when there is none.",
     L"AVERAGE(1,2,6)", L"3", AtLeast<0>, OfStats<Average>},
    {13104, L"AVG", L"value...", "[r]", L"Mean of the numbers, the same as AVERAGE.", L"AVG(1,2,6)",
     L"3", AtLeast<0>, OfStats<Average>},
    {13108, L"COUNT", L"value...", "[r]", L"Number of values that are not blank.",
     L"COUNT(1,\"a\",1/0)", L"3", AtLeast<0>, EvalCount},
    {13109, L"COUNTN", L"value...", "[r]", L"Number of values that are numbers.",
     L"COUNTN(1,\"a\",1/0)", L"1", AtLeast<0>, OfStats<Count>},
    {13111, L"DEVSQ", L"value...", "[r]", L"Sum of squared distances from the mean.",
     L"DEVSQ(1,2,3)", L"2", AtLeast<0>, OfStats<DevSq>},
    {13118, L"GEOMEAN", L"value...", "[r]", L"Geometric mean of positive numbers.", L"GEOMEAN(4,9)",
     L"6", AtLeast<0>, EvalGeoMean},
    {13119, L"HARMEAN", L"value...", "[r]", L"Harmonic mean of positive numbers.", L"HARMEAN(2,6)",
     L"3", AtLeast<0>, EvalHarMean},
    {13122, L"KURT", L"value...", "r", L"Kurtosis of at least four numbers.", L"KURT(1,2,3,4)",
     L"-1.2", AtLeast<1>, EvalKurt},
    {13124, L"MAX", L"value...", "r", L"Largest number, or last text when there is no number.",
     L"MAX(1,7,3)", L"7", AtLeast<1>, EvalWinner<kGreater>},
    {13126, L"MIN", L"value...", "r", L"Smallest number, or first text when there is no number.",
     L"MIN(4,2,3)", L"2", AtLeast<1>, EvalWinner<kLess>},
    {13140, L"SKEW", L"value...", "r", L"Skewness of at least three numbers.", L"SKEW(1,2,3)", L"0",
     AtLeast<1>, EvalSkew},
    {13144, L"STD", L"value...", "r", L"Standard deviation of a sample.", L"STD(2,4,6)", L"2",
     AtLeast<1>, OfStats<Std>},
    {13145, L"STDEV", L"value...", "[r]",
     L"Standard deviation of a sample, by another rounding than STD.", L"STDEV(2,4,6)", L"2",
     AtLeast<0>, OfStats<StDev>},
    {13146, L"STDEVP", L"value...", "[r]", L"Standard deviation of a whole population.",
     L"STDEVP(2,4)", L"1", AtLeast<0>, OfStats<StDevP>},
    {13148, L"VAR", L"value...", "r", L"Variance of a sample.", L"VAR(2,4,6)", L"4", AtLeast<1>,
     OfStats<Variance>},
    {13149, L"VARP", L"value...", "r", L"Variance of a population of at least two numbers.",
     L"VARP(2,4)", L"1", AtLeast<1>, OfStats<VarianceP>},
    {13290, L"COUNTIF", L"range...; criterion", "rv", L"Number of values that meet a criterion.",
     L"COUNTIF({1,2,3},\">1\")", L"2", CountIfShape, EvalCountIf},
};

} // namespace

FunctionFamily Statistics() { return MakeFamily(4, kRows); }

} // namespace cells::internal
