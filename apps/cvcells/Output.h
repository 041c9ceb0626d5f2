// A sheet as text for people and programs.
#pragma once

#include "host/Sheet.h"

#include <string>

namespace cells::app {

enum class OutputFormat { kTable, kCsv, kTsv, kJson };
enum class Show { kValues, kFormulas };

// The area as a table with column letters and row numbers, as separated fields, or as JSON with
// place, kind, value or error, display text and formula of each occupied cell.
std::string Render(cells::host::Sheet & sheet, cells::host::Area const & area, OutputFormat format,
                   Show show);

// A value by its kind: "number 0.5", all of its digits, "text abc", "error 3" or "empty".
std::string Describe(cells::host::Value const & value);

} // namespace cells::app
