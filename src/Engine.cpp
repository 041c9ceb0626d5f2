// Start and stop of the library.
#include "core/Context.h"
#include "core/Events.h"
#include "format/International.h"
#include "format/LTStrings.h"
#include "formula/FunctionRegistry.h"
#include "platform/Profile.h"
#include "platform/Services.h"

void CVCellInit() {
    InitInternationalSettings();
    InitBuiltinFunctions();
    SetModuleProfile(cells::PlatformServices().profileKey, L"Calvera Cells");
    InitLTStrings();
    LoadLTStrings();
}

void CVCellExit() {
    ReleaseLTStrings();
    cells::internal::ReleaseOrphanedEvents();
}
