// Starts the engine once for the process, and chooses its language.
#pragma once

#include "platform/Types.h"

#include <filesystem>

namespace cells::host {

// CVCellInit on the first call, nothing later. The engine is stopped with the process.
CVCELLS_API void StartEngine();

// From now on names of functions, messages and errors come from this file, also in formulas that
// stand in cells; catalogue/Language.h tells its form. A file that cannot be read or understood
// throws std::runtime_error, which names the file and the line, and changes nothing.
CVCELLS_API void UseLanguageFile(std::filesystem::path const & file);

} // namespace cells::host
