// Statistics of order: medians, ranks, percentiles, the most frequent number.
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Families.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

namespace cells::internal {
namespace {

using Numbers = std::vector<double>;

// A total order: what is no number stands last.
bool Before(double a, double b) { return std::isnan(b) ? !std::isnan(a) : a < b; }

// The element that a sort would put at `index`. Elements before it stay before it.
double Ranked(Numbers & data, std::size_t index) {
    auto const at = data.begin() + std::ptrdiff_t(index);
    std::nth_element(data.begin(), at, data.end(), Before);
    return *at;
}

// The numbers of the arguments, of which there must be some.
Status Collect(CTX * ctx, CCFormulaList const * args, CCRef const * current, Numbers & data) {
    Status const status = CollectDoubles(ctx, args, current, data);
    return status == Status::kDone && data.empty() ? Status::kBadValue : status;
}

void SetResult(CTX * ctx, CCCellValue & result, Outcome const & outcome) {
    SetStatusResult(ctx, outcome.status, result, outcome.number, C_NF_GENERAL);
}

void EvalMedian(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    Numbers data;
    Status const status = Collect(ctx, args, current, data);
    if (status != Status::kDone) return SetResult(ctx, result, status);
    std::size_t const half = data.size() / 2;
    double const upper = Ranked(data, half);
    if (data.size() % 2) return SetResult(ctx, result, upper);
    SetResult(ctx, result, (Ranked(data, half - 1) + upper) / 2);
}

// The number of a rank from the smallest, or from the largest.
template <bool FromLargest>
void EvalRanked(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    double k;
    Numbers data;
    if (!GetNumbers(ctx, result, &k, 1, args, current) || !(k >= 1)) return result.Set(errValue);
    Status const status = Collect(ctx, args->next, current, data);
    if (status != Status::kDone) return SetResult(ctx, result, status);
    double const n = double(data.size());
    k = std::floor(k);
    if (k > n) return result.Set(errValue);
    SetResult(ctx, result, Ranked(data, std::size_t(FromLargest ? n - k : k - 1)));
}

// Ascending, ties have their best rank, and descending their worst.
void EvalRank(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    double x, order = 0;
    if (!GetNumbers(ctx, result, &x, 1, args, current)) return result.Set(errValue);
    CCFormulaList const only{args->next->formula, nullptr};
    Numbers data;
    Status const status = CollectDoubles(ctx, &only, current, data);
    if (status != Status::kDone) return SetResult(ctx, result, status);
    CCFormulaList const * const third = args->next->next;
    if (third && !GetNumbers(ctx, result, &order, 1, third, current)) return result.Set(errValue);
    auto const smaller = std::count_if(data.begin(), data.end(), [&](double d) { return d < x; });
    if (std::find(data.begin(), data.end(), x) == data.end()) return result.Set(errValue);
    double const i = double(smaller);
    SetResult(ctx, result, order != 0 ? i + 1 : double(data.size()) - i);
}

// A number, then the data of one argument.
Status FetchShareAndData(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                         CCRef const * current, double low, double high, double & x,
                         Numbers & data) {
    if (!GetNumbers(ctx, result, &x, 1, args, current) || !(x >= low && x <= high))
        return Status::kBadValue;
    return Collect(ctx, args->next, current, data);
}

void EvalPercentile(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                    CCRef const * current) {
    double k;
    Numbers data;
    Status const status = FetchShareAndData(ctx, result, args, current, 0, 1, k, data);
    if (status != Status::kDone) return SetResult(ctx, result, status);
    double const p = double(data.size() - 1) * k, whole = std::floor(p);
    std::size_t const i = std::size_t(whole);
    double const lower = Ranked(data, i);
    if (p == whole) return SetResult(ctx, result, lower);
    SetResult(ctx, result, lower + (Ranked(data, i + 1) - lower) * (p - whole));
}

// A table by the count of the data and no formula; it agrees with interpolation in exact arithmetic
// only.
double Quartile(Numbers & data, int q) {
    std::size_t const n = data.size();
    auto const d = [&](std::size_t i) { return Ranked(data, i); };
    if (q == 0) return d(0);
    if (q == 4) return d(n - 1);
    std::size_t const step = std::size_t(q), e = n / 4 * step;
    auto const between = [&](std::size_t i, double share) {
        double const lower = d(i);
        return lower + (d(i + 1) - lower) * share;
    };
    switch (n) {
    case 1:
        return d(0);
    case 2:
        return between(0, q * 0.25);
    case 3:
        return q == 2 ? d(1) : between(q == 1 ? 0 : 1, 0.5);
    default:
        break;
    }
    switch (n % 4) {
    case 0:
        return between(e - 1, 1 - q * 0.25);
    case 1:
        return d(e);
    case 2:
        return between(e, q * 0.25);
    default:
        return q == 2 ? d(e + 1) : between(q == 1 ? e : e + 1, 0.5);
    }
}

void EvalQuartile(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    double q;
    Numbers data;
    Status const status = FetchShareAndData(ctx, result, args, current, 0, 4, q, data);
    if (status != Status::kDone) return SetResult(ctx, result, status);
    SetResult(ctx, result, Quartile(data, int(std::floor(q))));
}

// Between the last two numbers the rank is 1 already.
void EvalPercentRank(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                     CCRef const * current) {
    double x;
    Numbers data;
    if (!GetNumbers(ctx, result, &x, 1, args, current)) return result.Set(errValue);
    Status const status = Collect(ctx, args->next, current, data);
    if (status != Status::kDone) return SetResult(ctx, result, status);
    auto const [least, most] = std::minmax_element(data.begin(), data.end(), Before);
    if (!(x >= *least && x <= *most)) return result.Set(errValue);
    double below = 0, lower = *least, upper = *most; // the neighbours of x
    for (double d : data) {
        if (d < x) {
            ++below;
            lower = std::max(lower, d);
        } else {
            upper = std::min(upper, d);
        }
    }
    double const last = double(data.size()) - 1;
    if (below == 0) return SetResult(ctx, result, 0.0);
    if (below == last) return SetResult(ctx, result, 1.0);
    if (upper == x) return SetResult(ctx, result, below / last);
    SetResult(ctx, result, ((x - lower) / (upper - lower) + below - 1) / last);
}

// Numbers that differ by no more than the smallest difference are one value; it is that of its
// first number.
class Tally {
public:
    void Add(double x) {
        constexpr double kSmallestDifference = 2.220446049250313e-16;
        Entry * found = nullptr;
        auto at = m_Entries.lower_bound(x - kSmallestDifference);
        for (; at != m_Entries.end() && at->first - x <= kSmallestDifference; ++at)
            if (x - at->first <= kSmallestDifference && (!found || at->second.order < found->order))
                found = &at->second;
        if (found)
            ++found->count;
        else
            m_Entries.emplace(x, Entry{m_Entries.size(), 1});
    }

    // The most frequent value, the earliest of them; none where all are equally frequent.
    Outcome Mode() const {
        if (m_Entries.size() < 2) return Status::kBadValue;
        auto best = m_Entries.begin();
        bool different = false;
        for (auto at = m_Entries.begin(); at != m_Entries.end(); ++at) {
            different = different || at->second.count != best->second.count;
            bool const better = at->second.count != best->second.count
                                    ? at->second.count > best->second.count
                                    : at->second.order < best->second.order;
            if (better) best = at;
        }
        return different ? Outcome(best->first) : Outcome(Status::kBadValue);
    }

private:
    struct Entry {
        std::size_t order, count;
    };
    std::map<double, Entry> m_Entries;
};

void EvalMode(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    Tally tally;
    Status const status = TryEachNumber(ctx, args, current, [&](double x) {
        if (std::isnan(x)) return Status::kBadValue;
        tally.Add(x);
        return Status::kDone;
    });
    SetResult(ctx, result, status == Status::kDone ? tally.Mode() : Outcome(status));
}

int RankShape(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    if (!FormulaListHasItems(args, 2) || FormulaListHasItems(args, 4)) return 0;
    CCFormulaList const * const third = args->next->next;
    return AreSingle(ctx, args, current, 1) && (!third || AreSingle(ctx, third, current, 1));
}

constexpr FunctionRow kRows[] = {
    {13123, L"LARGE", L"rank; value...", "nr",
     L"The number of a given rank counted from the largest.", L"LARGE(2,{5,1,4})", L"4",
     FirstSingle<2>, EvalRanked<true>},
    {13125, L"MEDIAN", L"value...", "r", L"Middle number, or mean of the two middle ones.",
     L"MEDIAN(4,1,3,2)", L"2.5", AtLeast<1>, EvalMedian},
    {13127, L"MODE", L"value...", "r", L"Most frequent number.", L"MODE(1,2,2,3,3)", L"2",
     AtLeast<1>, EvalMode},
    {13132, L"PERCENTILE", L"share; range", "nr", L"Value below which a share of the numbers lies.",
     L"PERCENTILE(0.5,{1,2,4,5})", L"3", Exactly<2>, EvalPercentile},
    {13133, L"PERCENTRANK", L"x; range", "nr", L"Rank of a value as a share of the numbers.",
     L"PERCENTRANK(2,{1,2,3,4,5})", L"0.25", Exactly<2>, EvalPercentRank},
    {13137, L"QUARTILE", L"quarter; range", "nr",
     L"Minimum, quartile, median or maximum, by a number from 0 to 4.", L"QUARTILE(1,{1,2,3,4,5})",
     L"2", Exactly<2>, EvalQuartile},
    {13138, L"RANK", L"x; range; order", "nr[n]", L"Position of a number among numbers.",
     L"RANK(2,{1,2,2,3})", L"3", RankShape, EvalRank},
    {13142, L"SMALL", L"rank; value...", "nr",
     L"The number of a given rank counted from the smallest.", L"SMALL(2,{5,1,4})", L"4",
     FirstSingle<2>, EvalRanked<false>},
};

} // namespace

FunctionFamily OrderStatistics() { return MakeFamily(4, kRows); }

} // namespace cells::internal
