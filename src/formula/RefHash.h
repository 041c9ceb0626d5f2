// A hash of references that agrees with IsEqual: equal references have equal hashes.
#pragma once

#include "formula/CCRef.h"

#include <cstddef>
#include <unordered_set>

namespace cells::internal {

CVCELLS_API std::size_t RefHash(CCRef const * ref);

struct RefHasher {
    std::size_t operator()(CCRef const * ref) const { return RefHash(ref); }
};
struct RefEqual {
    bool operator()(CCRef const * a, CCRef const * b) const { return a->IsEqual(b) != 0; }
};
// References that others own; the first of equal ones stays.
using RefSet = std::unordered_set<CCRef const *, RefHasher, RefEqual>;

} // namespace cells::internal
