#include "platform/Clock.h"

#include <ctime>

namespace cells {

LocalTime Now() {
    if (PlatformServices().localTime) return PlatformServices().localTime();
    std::time_t const now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
            parts.tm_hour,        parts.tm_min,     parts.tm_sec};
}

} // namespace cells
