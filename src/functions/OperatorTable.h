// Names, strengths and bodies of the operators.
#pragma once

#include "formula/CCFunc.h"

#include <vector>

namespace cells::internal {

// Fills the operators' objects and adds them to the list.
void InitOperators(std::vector<CCFunc *> & functions);

} // namespace cells::internal
