// What stands behind a reference value.
#pragma once

#include "platform/Types.h"

class CCCellValue;

namespace cells {
class CTX;
}

namespace cells::internal {

// Replaces a reference by the content of its place; error 1, and false, where it cannot be read.
CVCELLS_API bool Dereference(CTX * ctx, CCCellValue & value);

} // namespace cells::internal
