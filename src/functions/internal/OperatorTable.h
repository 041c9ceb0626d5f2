// Names, strengths and bodies of the operators.
#pragma once

#include "functions/internal/Families.h"

#include <vector>

namespace cells::internal {

// Fills the operators' objects and adds them to the list.
void InitOperators(std::vector<CCFunc *> & functions);

// The strings of an operator: glyph, description and operands; null for no operator.
wchar_t const * OperatorString(unsigned int id);
CatalogueFacts OperatorFacts(CCFunc const & func);

} // namespace cells::internal
