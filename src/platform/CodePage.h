// The code page of narrow text: one table of 256 units, 1252 unless the host sets another in
// Services::codePage.
#pragma once

#include "platform/CString.h"

#include <string>

namespace cells {

CVCELLS_API wchar_t UnitOfByte(uchar byte);
// The byte of a unit, or `missing` when the page has none.
CVCELLS_API int ByteOfUnit(wchar_t unit, int missing);
CVCELLS_API CString FromNarrow(std::string const & bytes);
// Units that the page lacks become "?"; `usedDefault`, when given, tells whether any did.
CVCELLS_API std::string ToNarrow(CString const & text, bool * usedDefault = nullptr);

} // namespace cells
