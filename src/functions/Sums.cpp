// Sums: of numbers, squares, products, series, and of what meets a criterion.
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Criteria.h"
#include "functions/internal/Families.h"

#include <cmath>
#include <deque>

namespace cells::internal {
namespace {

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

void EvalSumSquares(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                    CCRef const * current) {
    double sum = 0;
    Status const status = TryEachNumber(ctx, args, current, [&](double x) {
        sum += x * x;
        return Status::kDone;
    });
    SetStatusResult(ctx, status, result, sum, C_NF_GENERAL);
}

// A blank makes the term of its position 0.
void EvalSumProducts(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                     CCRef const * current) {
    std::deque<ValueWalk> walks;
    CSize size, first;
    for (; args; args = args->next) {
        ValueWalk & walk = walks.emplace_back(ctx, args->formula, current);
        if (!walk.IsOpen() || !walk.Size(size)) return result.Set(errRef);
        if (walks.size() == 1) first = size;
        if (size != first) return result.Set(errValue);
    }
    double sum = 0;
    CCCellValue value;
    for (bool more = !walks.empty(); more;) {
        double term = 1;
        for (ValueWalk & walk : walks) {
            more = more && walk.Next(value);
            if (!more) break;
            if (!value.IsEmpty() && !value.IsNumber()) return result.Set(errValue);
            term *= value.IsNumber() ? value.GetNumber() : 0;
        }
        if (more) sum += term;
    }
    SetNumber(result, sum);
}

template <double (*Term)(double, double)>
void EvalPairSum(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    double sum = 0;
    Status const status = TryEachPair(
        ctx, args->formula, args->next->formula, current, Status::kBadReference,
        [&](CCCellValue const & a, CCCellValue const & b) {
            for (CCCellValue const * value : {&a, &b})
                if (!value->IsEmpty() && !value->IsNumber()) return Status::kBadValue;
            sum += Term(a.IsNumber() ? a.GetNumber() : 0, b.IsNumber() ? b.GetNumber() : 0);
            return Status::kDone;
        });
    SetStatusResult(ctx, status, result, sum, C_NF_GENERAL);
}

double SquaresMinus(double x, double y) { return x * x - y * y; }
double SquaresPlus(double x, double y) { return x * x + y * y; }
double DifferenceSquared(double x, double y) { return (x - y) * (x - y); }
double SumSquared(double x, double y) { return (x + y) * (x + y); }

// A coefficient that is no number counts as 0 and takes its place.
void EvalSeriesSum(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                   CCRef const * current) {
    double x[3];
    if (!GetNumbers(ctx, result, x, 3, args, current)) return result.Set(errValue);
    double sum = 0, k = 0;
    Status const status =
        TryEachValue(ctx, args->next->next->next, current, [&](CCCellValue const & coefficient) {
            double const c = coefficient.IsNumber() ? coefficient.GetNumber() : 0;
            sum += c * std::pow(x[0], x[1] + k * x[2]);
            ++k;
            return Status::kDone;
        });
    SetStatusResult(ctx, status, result, sum, C_NF_GENERAL);
}

int SumIfShape(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    return FormulaListHasItems(args, 2) && AreSingle(ctx, args->next, current, 1);
}

constexpr FunctionRow kRows[] = {
    {13074, L"SERIESSUM", L"x; first power; step; coefficient...", "nnn[r]",
     L"Sum of a power series.", L"SERIESSUM(2,0,1,1,1,3)", L"15", AtLeast<3>, EvalSeriesSum},
    {13079, L"SUM", L"value...", "r", L"Sum of all numbers; everything else is skipped.",
     L"SUM(1,\"a\",2)", L"3", AtLeast<1>, EvalSum},
    {13080, L"SUMTIMES", L"range...", "[r]",
     L"Sum of the products of ranges, position by position.", L"SUMTIMES({1,2},{3,4})", L"11",
     AtLeast<0>, EvalSumProducts},
    {13081, L"SUMSQ", L"value...", "[r]", L"Sum of the squares of numbers.", L"SUMSQ(3,4)", L"25",
     AtLeast<0>, EvalSumSquares},
    {13082, L"SUMX2MY2", L"x range; y range", "rr", L"Sum of the differences of squares.",
     L"SUMX2MY2({3,2},{1,1})", L"11", Exactly<2>, EvalPairSum<SquaresMinus>},
    {13083, L"SUMX2PY2", L"x range; y range", "rr", L"Sum of the sums of squares.",
     L"SUMX2PY2({3,2},{1,1})", L"15", Exactly<2>, EvalPairSum<SquaresPlus>},
    {13084, L"SUMXMY2", L"x range; y range", "rr", L"Sum of the squares of differences.",
     L"SUMXMY2({3,2},{1,1})", L"5", Exactly<2>, EvalPairSum<DifferenceSquared>},
    {13085, L"SUMXPY2", L"x range; y range", "rr", L"Sum of the squares of sums.",
     L"SUMXPY2({3,2},{1,1})", L"25", Exactly<2>, EvalPairSum<SumSquared>},
    {13088, L"TOTAL", L"value...", "r", L"Sum of all numbers, the same as SUM.", L"TOTAL(1,2)",
     L"3", AtLeast<1>, EvalSum},
    {13289, L"SUMIF", L"range; criterion; sum range", "rv[r]",
     L"Sum of the values beside those that meet a criterion.", L"SUMIF({1,2,3},\">1\")", L"5",
     SumIfShape, EvalSumIf},
};

} // namespace

FunctionFamily Sums() { return MakeFamily(1, kRows); }

} // namespace cells::internal
