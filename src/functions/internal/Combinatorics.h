// Factorials and combinations of real numbers, shared by mathematics and distributions.
#pragma once

#include "functions/Arguments.h"

namespace cells::internal {

// x * (x - step) * ... while above 1, of the floor of x. It ends at infinity.
double StepFactorial(double x, double step);

// Combinations as a product of ratios, which keeps its parts small and is no calculation with
// integers. Error 3 where real arguments leave no way to the end.
Outcome RealCombinations(double n, double k);

} // namespace cells::internal
