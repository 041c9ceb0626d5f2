// Functions of whole numbers: divisors, multiples, factorials.
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Combinatorics.h"
#include "functions/internal/Families.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

namespace cells::internal {
namespace {

constexpr double kLargest32 = 4294967295.0;
constexpr double kLargestExact = 9007199254740992.0; // 2^53

Outcome Factorial(double x, double step) {
    if (!(x >= 0) || x + step == x) return Status::kBadValue;
    return StepFactorial(x, step);
}
Outcome Fact(double x) { return Factorial(x, 1); }
Outcome FactDouble(double x) { return Factorial(x, 2); }

// Replaces all by their remainders against the smallest, until that is alone.
std::uint32_t GreatestDivisor(std::vector<std::uint32_t> values) {
    for (;;) {
        std::uint32_t const smallest = *std::min_element(values.begin(), values.end());
        bool kept = false; // of equals one stays
        std::erase_if(values, [&](std::uint32_t & value) {
            if (value == smallest && !kept) {
                kept = true;
                return false;
            }
            value %= smallest;
            return value == 0;
        });
        if (values.size() == 1) return smallest;
    }
}

void EvalGcd(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    std::vector<std::uint32_t> values;
    Status status = TryEachNumber(ctx, args, current, [&](double x) {
        if (!(x >= 0 && x <= kLargest32)) return Status::kBadValue;
        if (auto const value = std::uint32_t(x)) values.push_back(value);
        return Status::kDone;
    });
    if (status == Status::kDone && values.empty()) status = Status::kBadValue;
    double const divisor = status == Status::kDone ? GreatestDivisor(std::move(values)) : 0;
    SetStatusResult(ctx, status, result, divisor, C_NF_GENERAL);
}

// The exponents of the primes of x, by trial division. False where the steps run out.
bool Factor(std::uint64_t x, std::map<std::uint64_t, int> & powers, int & steps) {
    auto const take = [&](std::uint64_t p) {
        int count = 0;
        for (; x % p == 0; x /= p) ++count;
        if (count) powers[p] = std::max(powers[p], count);
    };
    take(2);
    for (std::uint64_t p = 3; p * p <= x; p += 2) {
        if (++steps > kStepBudget) return false;
        take(p);
    }
    if (x > 1) powers[x] = std::max(powers[x], 1);
    return true;
}

// The highest power of each prime, multiplied from the smallest prime up. A number that is not
// whole has no divisors and does not count.
void EvalLcm(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    std::map<std::uint64_t, int> powers;
    std::vector<double> done;
    int steps = 0;
    Status const status = TryEachNumber(ctx, args, current, [&](double x) {
        if (!(x >= 1 && x <= kLargestExact)) return Status::kBadValue;
        bool const known = std::find(done.begin(), done.end(), x) != done.end();
        if (x != std::floor(x) || known) return Status::kDone;
        if (done.size() < 64) done.push_back(x);
        return Factor(std::uint64_t(x), powers, steps) ? Status::kDone : Status::kBadValue;
    });
    double product = 1;
    for (auto const & [prime, count] : powers)
        for (int i = 0; i < count; ++i) product *= double(prime);
    SetStatusResult(ctx, status, result, product, C_NF_GENERAL);
}

void EvalMultinomial(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                     CCRef const * current) {
    double total = 0, r = 1;
    int steps = 0;
    Status const status = TryEachNumber(ctx, args, current, [&](double x) {
        if (!(x >= 0 && x <= kLargest32)) return Status::kBadValue;
        double const a = std::floor(x);
        // While nothing came before, every factor is 1.
        for (double i = a; total > 0 && i >= 1 && std::isfinite(r); --i) {
            if (++steps > kStepBudget) return Status::kBadValue;
            r = r * (total / i + 1);
        }
        total += a;
        return Status::kDone;
    });
    SetStatusResult(ctx, status, result, r, C_NF_GENERAL);
}

constexpr FunctionRow kRows[] = {
    {13054, L"FACT", L"number", "n", L"Factorial of the whole part of a number.", L"FACT(5.9)",
     L"120", Singles<1>, OfNumbers<Fact>},
    {13055, L"FACTDOUBLE", L"number", "n",
     L"Product of every second whole number down from a number.", L"FACTDOUBLE(7)", L"105",
     Singles<1>, OfNumbers<FactDouble>},
    {13056, L"GCD", L"number...", "r", L"Greatest common divisor of whole numbers.", L"GCD(12,18)",
     L"6", AtLeast<1>, EvalGcd},
    {13058, L"LCM", L"number...", "r", L"Least common multiple of whole numbers.", L"LCM(4,6)",
     L"12", AtLeast<1>, EvalLcm},
    {13065, L"MULTINOMIAL", L"number...", "r",
     L"Factorial of a sum over the product of the factorials.", L"MULTINOMIAL(2,3,4)", L"1260",
     AtLeast<1>, EvalMultinomial},
};

} // namespace

FunctionFamily Integers() { return MakeFamily(1, kRows); }

} // namespace cells::internal
