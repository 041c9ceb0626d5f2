// Starts the engine once for the process.
#pragma once

namespace cells::host {

// CVCellInit on the first call, nothing later. The engine is stopped with the process.
void StartEngine();

} // namespace cells::host
