#include "format/Numbers.h"

#include "platform/Digits.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr int kDenominators[] = {100, 10, 16, 8, 4};
constexpr int kFractionLimit = 1000;

// n / x grows with n, so no later numerator comes below the limit again.
int BestFraction(double x, int & numerator, int & denominator) {
    double best = x;
    int found = 0;
    for (int n = 1; n / x + 0.5 < kFractionLimit; ++n) {
        int const d = cells::ToInt32(n / x + 0.5);
        double const error = std::fabs(double(n) / d - x);
        if (error >= best) continue;
        best = error;
        numerator = n;
        denominator = d;
        found = 1;
        if (error == 0) break;
    }
    return found;
}

} // namespace

int SplitFraction(double value, int kind, int & numerator, int & denominator) {
    double x = std::fabs(value);
    if (x >= 1) x -= std::floor(x);
    if (!(x > 0)) return 0;
    if (kind == 0) return BestFraction(x, numerator, denominator);
    if (kind < 1 || kind > 5) return 1;
    denominator = kDenominators[kind - 1];
    numerator = cells::ToInt32(x * denominator + 0.5);
    return numerator != 0;
}

void SortDoubleArray(double * values, int count) {
    // What is no number stands last, so that the order is strict.
    std::sort(values, values + std::max(count, 0),
              [](double a, double b) { return std::isnan(b) ? !std::isnan(a) : a < b; });
}

void GetSimpleNumbers(uchar * bits, int bytes) {
    if (bytes <= 0) return;
    std::int64_t const count = std::int64_t(bytes) * 8;
    std::fill_n(bits, bytes, uchar(0xFF));
    for (std::int64_t p = 2; p * p < count; ++p) {
        if (!(bits[p / 8] >> (p % 8) & 1)) continue;
        for (std::int64_t n = p * p; n < count; n += p) bits[n / 8] &= uchar(~(1u << (n % 8)));
    }
}
