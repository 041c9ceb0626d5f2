// Who is alive among the cell managers.
//
// A reference may name a manager that dies before it does. Every manager has a serial number for
// life; a dead serial resolves to null and is treated as "no item".
#pragma once

#include "platform/Types.h"

#include <cstdint>

class CCCellManager;

namespace cells::internal {

using ManagerSerial = std::uint32_t;
constexpr ManagerSerial kNoManager = 0;

CVCELLS_API ManagerSerial EnterManager(CCCellManager * manager);
CVCELLS_API void LeaveManager(ManagerSerial serial);
CVCELLS_API CCCellManager * LiveManager(ManagerSerial serial); // null for a dead one

} // namespace cells::internal
