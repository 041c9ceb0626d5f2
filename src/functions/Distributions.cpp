// Probability distributions. Several give a density where their name may promise more; there are no
// inverse functions.
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Combinatorics.h"
#include "functions/internal/Families.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace cells::internal {
namespace {

constexpr double kTwoPi = 6.283185307179586;

Outcome Comb(double n, double k) {
    if (!(k >= 0 && k <= n) || n + 1 == n || k + 1 == k) return Status::kBadValue;
    return RealCombinations(n, k);
}

Outcome Perm(double n, double k) {
    if (!(k >= 0 && k <= n) || n + 1 == n) return Status::kBadValue;
    double r = 1;
    int steps = 0;
    for (double i = n; i > n - k && std::isfinite(r); --i) {
        if (++steps > kStepBudget) return Status::kBadValue;
        r = r * i;
    }
    return r;
}

Outcome NormSDist(double z) { return std::exp(-z * z / 2) / std::sqrt(kTwoPi); }

Outcome NormDist(double x, double mean, double deviation) {
    if (!(deviation > 0)) return Status::kDivisionByZero;
    return std::exp(-(x - mean) * (x - mean) / (2 * deviation * deviation)) /
           (std::sqrt(kTwoPi) * deviation);
}

// The chance of up to k successes; each term follows from the one before.
Outcome BinomialSum(double k, double n, double p) {
    double total = 0, t = 1;
    int steps = 0;
    for (double i = 0; i <= k && t != 0 && std::isfinite(total); ++i) {
        if (++steps > kStepBudget) return Status::kBadValue;
        total += std::pow(1 - p, n - i) * t;
        t = (n - i) * p * t / (i + 1);
    }
    return total;
}

Outcome BinomDist(double k, double n, double p, double cumulative) {
    if (!(k >= 0 && k <= n && p >= 0 && p <= 1)) return Status::kBadValue;
    if (cumulative != 0) return BinomialSum(k, n, p);
    Outcome const ways = RealCombinations(n, k);
    if (ways.status != Status::kDone) return ways;
    return ways.number * std::pow(p, k) * std::pow(1 - p, n - k);
}

// From 171 on the factorial is infinite: the terms are 0 until the power overflows too, and what
// comes then is no number.
Outcome PoissonSum(double x, double mean) {
    constexpr double kLastFactorial = 170;
    double total = 0, factorial = 1;
    for (double k = 0; k <= std::min(x, kLastFactorial); ++k) {
        if (k > 0) factorial *= k;
        total += std::pow(mean, k) * std::exp(-mean) / factorial;
    }
    bool const ends = x < kLastFactorial + 1 || std::isfinite(std::pow(mean, std::floor(x)));
    return ends ? total : std::numeric_limits<double>::quiet_NaN();
}

Outcome Poisson(double x, double mean, double cumulative) {
    if (!(x > 0 && mean > 0)) return Status::kBadValue;
    if (cumulative != 0) return PoissonSum(x, mean);
    return std::pow(mean, x) * std::exp(-mean) / StepFactorial(x, 1);
}

Outcome ExponDist(double x, double lambda, double cumulative) {
    if (!(x >= 0 && lambda > 0)) return Status::kBadValue;
    if (cumulative == 0) return lambda * std::exp(-lambda * x);
    return 1 - std::exp(-lambda * x);
}

Outcome Weibull(double x, double alpha, double beta, double cumulative) {
    if (!(x >= 0 && alpha >= 0 && beta > 0)) return Status::kBadValue;
    if (cumulative != 0) return 1 - std::exp(-std::pow(x / beta, alpha));
    return (alpha / std::pow(beta, alpha)) * std::pow(x, alpha - 1) *
           std::exp(-std::pow(x / beta, alpha));
}

Outcome NegBinomDist(double f, double s, double p) {
    if (!(p >= 0 && p <= 1 && f + s - 1 > 0)) return Status::kBadValue;
    Outcome const ways = RealCombinations(f + s - 1, s - 1);
    if (ways.status != Status::kDone) return ways;
    return ways.number * std::pow(p, s) * std::pow(1 - p, f);
}

Outcome HypGeomDist(double x, double n, double hits, double size) {
    bool const inside = x >= 0 && x <= std::min(n, hits) && x >= std::max(0.0, n - size + hits) &&
                        n >= 0 && n <= size && hits >= 0 && hits <= size;
    if (!inside) return Status::kBadValue;
    Outcome const a = RealCombinations(hits, x), b = RealCombinations(size - hits, n - x),
                  c = RealCombinations(size, n);
    for (Outcome const * part : {&a, &b, &c})
        if (part->status != Status::kDone) return *part;
    return a.number * b.number / c.number;
}

// Source: C. Lanczos, "A Precision Approximation of the Gamma Function", in six terms.
Outcome GammaLn(double x) {
    if (!(x >= 0)) return Status::kBadValue;
    double const tmp = x + 5.5;
    double const ser = 1.000000000190015 + 76.18009172047147 / (x + 1) -
                       86.50532032941678 / (x + 2) + 24.01409824083091 / (x + 3) -
                       1.231739572450155 / (x + 4) + 0.001208650973866179 / (x + 5) -
                       5.395239384953e-06 / (x + 6);
    return std::log(2.5066282746310007 * ser / x) - (tmp - (x + 0.5) * std::log(tmp));
}

// The gamma function by an integral in Simpson's steps, whose width follows the integrand; the tail
// below one millionth is cut. Error 3 where it does not come to an end.
Outcome GammaIntegral(double alpha) {
    constexpr int kMostSteps = 1'000'000;
    auto const f = [&](double t) { return std::pow(t, alpha - 1) * std::exp(-t); };
    double t = 2.2250738585072014e-308, h = 0.01, total = 0, previous = f(t);
    for (int step = 0; step < kMostSteps; ++step) {
        double const mid = f(t + h / 2), next = t + h;
        total += (f(t) + 4 * mid + f(next)) * h / 6;
        if (previous != 0) h = std::clamp(previous / mid * h, 0.01, 1.0);
        if (!std::isfinite(total) || std::isnan(h)) return Status::kBadValue;
        previous = mid;
        t = next;
        if (mid <= 1e-06 && t >= 1.0) return total;
    }
    return Status::kBadValue;
}

Outcome GammaDist(double x, double alpha, double beta) {
    if (!(x >= 0 && alpha >= 0 && beta >= 0)) return Status::kBadValue;
    Outcome const total = GammaIntegral(alpha);
    if (total.status != Status::kDone) return total;
    return std::pow(x, alpha - 1) * std::exp(-x / beta) / (std::pow(beta, alpha) * total.number);
}

Outcome Fisher(double x) {
    if (!(x > -1 && x < 1)) return Status::kBadValue;
    return 0.5 * std::log((1 + x) / (1 - x));
}

Outcome FisherInv(double y) {
    double const e = std::exp(2 * y);
    return (e - 1) / (e + 1);
}

Outcome Standardize(double x, double mean, double deviation) {
    if (!(deviation > 0)) return Status::kBadValue;
    return (x - mean) / deviation;
}

// The probabilities need not add up to 1, but must not pass it.
void EvalProb(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CCFormulaList const * const limits = args->next->next;
    double low, high;
    if (!GetNumbers(ctx, result, &low, 1, limits, current)) return result.Set(errValue);
    high = low;
    if (limits->next && !GetNumbers(ctx, result, &high, 1, limits->next, current))
        return result.Set(errValue);
    double total = 0, inside = 0;
    Status const status =
        TryEachPair(ctx, args->formula, args->next->formula, current, Status::kBadReference,
                    [&](CCCellValue const & a, CCCellValue const & b) {
                        for (CCCellValue const * value : {&a, &b})
                            if (!value->IsEmpty() && !value->IsNumber()) return Status::kBadValue;
                        double const x = a.IsNumber() ? a.GetNumber() : 0,
                                     p = b.IsNumber() ? b.GetNumber() : 0;
                        total += p;
                        if (!(p >= 0) || !(total <= 1)) return Status::kBadValue;
                        if (low <= x && x <= high) inside += p;
                        return Status::kDone;
                    });
    SetStatusResult(ctx, status, result, inside, C_NF_GENERAL);
}

// With a third argument the deviation is the second one, read again; the third is never looked at.
// The sum under the root has a plus sign. Saved sheets keep their results by both.
void EvalZTest(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    NumberStats s;
    Status const status = FirstArgStats(ctx, args, current, s);
    if (status != Status::kDone) return SetStatusResult(ctx, status, result, 0, C_NF_GENERAL);
    double mean;
    if (s.count == 0 || !GetNumbers(ctx, result, &mean, 1, args->next, current))
        return result.Set(errValue);
    double deviation = mean;
    if (!args->next->next) {
        double const radicand = (s.sum * s.sum / s.count + s.sumSquares) / (s.count - 1);
        if (radicand < 0) return result.Set(errValue);
        deviation = std::sqrt(radicand);
    }
    double const z = (s.sum / s.count - mean) / (deviation / std::sqrt(s.count));
    SetNumber(result, 1 - std::exp(-z * z / 2) / std::sqrt(kTwoPi));
}

int ZTestShape(CTX * ctx, CCFormulaList const * args, CCRef const * current) {
    return Between<2, 3>(ctx, args, current) && AreSingle(ctx, args->next, current, 2);
}

constexpr FunctionRow kRows[] = {
    {13105, L"BINOMDIST", L"successes; trials; probability; cumulative", "nnnl",
     L"Binomial probability, single or cumulative.", L"BINOMDIST(1,2,0.5,0)", L"0.5", Singles<4>,
     OfNumbers<BinomDist>},
    {13106, L"COMB", L"items; chosen", "nn", L"Number of ways to choose without regard to order.",
     L"COMB(5,2)", L"10", Singles<2>, OfNumbers<Comb>},
    {13112, L"EXPONDIST", L"x; lambda; cumulative", "nnl",
     L"Exponential distribution, density or cumulative.", L"EXPONDIST(0,2,0)", L"2", Singles<3>,
     OfNumbers<ExponDist>},
    {13113, L"FISHER", L"number", "n", L"Fisher transformation.", L"FISHER(0)", L"0", Singles<1>,
     OfNumbers<Fisher>},
    {13114, L"FISHERINV", L"number", "n", L"Inverse of the Fisher transformation.", L"FISHERINV(0)",
     L"0", Singles<1>, OfNumbers<FisherInv>},
    {13116, L"GAMMADIST", L"x; alpha; beta", "nnn", L"Gamma distribution, density.",
     L"ROUNDN(GAMMADIST(2,3,1),3)", L"0.271", Singles<3>, OfNumbers<GammaDist>},
    {13117, L"GAMMALN", L"number", "n", L"Natural logarithm of the gamma function.",
     L"ROUNDN(EXP(GAMMALN(5)),6)", L"24", Singles<1>, OfNumbers<GammaLn>},
    {13120, L"HYPGEOMDIST", L"sample hits; sample size; hits; size", "nnnn",
     L"Hypergeometric probability.", L"HYPGEOMDIST(1,2,1,4)", L"0.5", Singles<4>,
     OfNumbers<HypGeomDist>},
    {13128, L"NEGBINOMDIST", L"failures; successes; probability", "nnn",
     L"Negative binomial probability.", L"NEGBINOMDIST(1,2,0.5)", L"0.25", Singles<3>,
     OfNumbers<NegBinomDist>},
    {13129, L"NORMDIST", L"x; mean; deviation", "nnn", L"Normal distribution, density.",
     L"NORMDIST(0,0,1)", L"0.398942280401433", Singles<3>, OfNumbers<NormDist>},
    {13130, L"NORMSDIST", L"x", "n",
     L"Standard normal distribution, density (not reachable by name).", Exactly<1>,
     OfNumbers<NormSDist>, kPlainFunc, nullptr, false},
    {13134, L"PERM", L"items; chosen", "nn", L"Number of ordered arrangements.", L"PERM(5,2)",
     L"20", Singles<2>, OfNumbers<Perm>},
    {13135, L"POISSON", L"x; mean; cumulative", "nnl",
     L"Poisson probability, single or cumulative.", L"ROUNDN(POISSON(1,2,0),6)", L"0.270671",
     Singles<3>, OfNumbers<Poisson>},
    {13136, L"PROB", L"values; probabilities; low; high", "rrn[n]",
     L"Probability that a value lies between two limits.", L"PROB({1,2,3},{0.25,0.5,0.25},2,3)",
     L"0.75", Between<3, 4>, EvalProb},
    {13143, L"STANDARDIZE", L"x; mean; deviation", "nnn", L"Distance from the mean in deviations.",
     L"STANDARDIZE(7,5,2)", L"1", Singles<3>, OfNumbers<Standardize>},
    {13151, L"WEIBULL", L"x; alpha; beta; cumulative", "nnnl",
     L"Weibull distribution, density or cumulative.", L"WEIBULL(0,1,2,1)", L"0", Singles<4>,
     OfNumbers<Weibull>},
    {13152, L"ZTEST", L"range; mean; deviation", "rn[n]",
     L"One minus the normal density of a mean (not reachable by name).", ZTestShape, EvalZTest,
     kPlainFunc, nullptr, false},
};

} // namespace

FunctionFamily Distributions() { return MakeFamily(4, kRows); }

} // namespace cells::internal
