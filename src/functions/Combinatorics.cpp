#include "functions/internal/Combinatorics.h"

#include <cmath>
#include <limits>

namespace cells::internal {

double StepFactorial(double x, double step) {
    x = std::floor(x);
    double r = 1;
    while (x > 1 && r < std::numeric_limits<double>::max()) {
        r = r * x;
        x = x - step;
    }
    return r;
}

Outcome RealCombinations(double n, double k) {
    if (n < 0 || k < 0 || k >= n) return 1.0;
    double const t = n - k;
    double r = 1;
    for (int steps = 0; n > t || k > 1; ++steps) {
        bool const stuck = n <= 1 && k <= 1; // neither falls any further
        if (stuck || steps == kStepBudget) return Status::kBadValue;
        r = r * (n / k);
        if (std::isinf(r)) return r;
        if (n > 1) --n;
        if (k > 1) --k;
    }
    return r;
}

} // namespace cells::internal
