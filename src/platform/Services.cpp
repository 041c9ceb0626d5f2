#include "platform/Services.h"

namespace cells {

Services & PlatformServices() {
    static Services * const services = new Services; // outlives static destructors
    return *services;
}

} // namespace cells
