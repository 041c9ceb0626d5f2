#include "platform/Random.h"

#include <random>

namespace cells {
namespace {

std::minstd_rand & Generator() {
    static std::minstd_rand generator(1);
    return generator;
}

} // namespace

int Random() { return int((Generator()() >> 8) & 0x7FFF); }

void SeedRandom(unsigned int seed) { Generator().seed(seed); }

} // namespace cells
