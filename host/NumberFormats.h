// Number formats by name: "number:2", "percent", or a custom text such as "#,##0.00".
#pragma once

#include "format/CCNumberFormat.h"

#include <string>
#include <string_view>

namespace cells::host {

// The format of a name, with the decimals behind its colon or else the locale's: general, number,
// currency, percent, scientific; fraction with a kind from 0 to 5; time, date, logical, hex, oct,
// bin. Any other text is a custom format. Decimals out of range throw std::invalid_argument.
CVCELLS_API CCNumberFormat ParseNumberFormat(std::string_view text, LCTX & lctx);

// The text that gives the format back, as far as a name can tell it.
CVCELLS_API std::string DescribeNumberFormat(CCNumberFormat const & format);

} // namespace cells::host
