// Start and stop of the library.
#include "context/Context.h"
#include "context/Events.h"
#include "format/CompiledFormat.h"
#include "format/International.h"
#include "format/LTStrings.h"
#include "formula/FunctionRegistry.h"
#include "platform/Profile.h"
#include "platform/Services.h"

void CVCellInit() {
    cells::internal::OpenFormatCache();
    InitInternationalSettings();
    InitBuiltinFunctions();
    SetModuleProfile(cells::PlatformServices().profileKey, L"Calvera Cells");
    InitLTStrings();
    LoadLTStrings();
}

void CVCellExit() {
    ReleaseLTStrings();
    cells::internal::ReleaseFormatCache();
    cells::internal::ReleaseOrphanedEvents();
}
