// The text of one corner: "$B$3".
#pragma once

#include "platform/Types.h"

#include <iosfwd>

namespace cells::internal {

// Bits 0 and 1 of `mode` put a dollar before the column and the row. No digit grouping, whatever
// the stream's locale.
void PrintCorner(std::wostream & stream, uchar col, ushort row, uchar mode);

} // namespace cells::internal
