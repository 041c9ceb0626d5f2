// The local time, by the host's clock or the system's.
#pragma once

#include "platform/Services.h"

namespace cells {

CVCELLS_API LocalTime Now();

} // namespace cells
