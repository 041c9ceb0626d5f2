#include "host/Engine.h"

#include "core/Context.h"

namespace cells::host {

void StartEngine() {
    struct Running {
        Running() { CVCellInit(); }
        ~Running() { CVCellExit(); }
    };
    static Running const running;
}

} // namespace cells::host
