// References that functions and operators take as arguments.
#pragma once

#include "formula/CCRef.h"
#include "platform/Types.h"

#include <memory>

class CCFormula;

namespace cells::internal {

// A copy of the reference that a formula is, or evaluates to; null for none.
std::unique_ptr<CCRef> ReferenceOf(CTX * ctx, CCFormula const & formula, CCRef const * current);

// What the host puts in a name's place, or null; any other reference as it is.
std::unique_ptr<CCRef> ResolveName(CTX * ctx, std::unique_ptr<CCRef> ref);

} // namespace cells::internal
