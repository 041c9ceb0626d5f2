// The edge of the engine towards hosts that speak UTF-8.
#pragma once

#include "platform/CString.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace cells {

// Bytes that are no UTF-8 become U+FFFD.
CVCELLS_API CString FromUtf8(std::string_view bytes);
// Surrogate pairs are joined; a lone surrogate becomes U+FFFD.
CVCELLS_API std::string ToUtf8(std::wstring_view units);
CVCELLS_API std::string ToUtf8(CString const & text);
// Offset of the first byte that is no UTF-8, or the length of the text.
CVCELLS_API std::size_t FindInvalidUtf8(std::string_view bytes);

} // namespace cells
