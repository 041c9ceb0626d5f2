// Small numeric helpers shared by printing and the functions.
#pragma once

#include "platform/Types.h"

// The fraction part of a magnitude as numerator over denominator; a magnitude below 1 counts whole.
// Kind 0 finds the closest of all denominators below 1000; kinds 1 to 5 take 100, 10, 16, 8 and 4,
// unreduced. 0 when the fraction is nothing. Any other kind gives 1 and leaves the outputs alone.
CVCELLS_API int SplitFraction(double value, int kind, int & numerator, int & denominator);

CVCELLS_API void SortDoubleArray(double * values, int count); // ascending

// The sieve of Eratosthenes over the bits of a buffer: bit n stays set when n is prime. Bits 0 and
// 1 stay set too.
CVCELLS_API void GetSimpleNumbers(uchar * bits, int bytes);
