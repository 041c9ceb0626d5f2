// The engine's own random numbers; the process's rand is left alone.
#pragma once

#include "platform/Types.h"

namespace cells {

constexpr int kRandomMaximum = 32767;

// The next number from 0 to kRandomMaximum, both included.
CVCELLS_API int Random();
CVCELLS_API void SeedRandom(unsigned int seed);

} // namespace cells
