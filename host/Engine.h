// Starts the engine once for the process, chooses its language, finds locales.
#pragma once

#include "platform/LocaleInfo.h"

#include <filesystem>
#include <string_view>

namespace cells::host {

// CVCellInit on the first call, nothing later. The engine is stopped with the process.
CVCELLS_API void StartEngine();

// From now on names of functions, messages and errors come from this file, also in formulas that
// stand in cells; catalogue/Language.h tells its form. A file that cannot be read or understood
// throws std::runtime_error, which names the file and the line, and changes nothing.
CVCELLS_API void UseLanguageFile(std::filesystem::path const & file);

// The locale of a tag such as "de-DE"; of an empty one, the user's. A language that nobody knows
// throws std::invalid_argument. The locale lives as long as the process.
CVCELLS_API kbt::multilang::CLocaleInfo const & FindLocale(std::string_view tag);

} // namespace cells::host
