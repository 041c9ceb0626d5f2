// What stands behind a reference value.
#pragma once

#include "platform/Types.h"

class CCCellValue;

namespace cells {
class CTX;
}

namespace cells::internal {

// Replaces a reference by the content of its place, and gives the answer of the host that reads it;
// error 1 where that is 0.
CVCELLS_API int Dereference(CTX * ctx, CCCellValue & value);
// The same in a walk over values, for a reference only: an answer of -1 is error 1 too.
CVCELLS_API void DereferenceStep(CTX * ctx, CCCellValue & value);

} // namespace cells::internal
