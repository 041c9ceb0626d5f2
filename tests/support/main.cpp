// Starts the engine for all tests: invariant locale, a fixed clock, settings in a folder of their
// own.
#include "core/Context.h"
#include "platform/Services.h"
#include "platform/Utf.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

int main(int argc, char ** argv) {
    testing::InitGoogleTest(&argc, argv);
    namespace fs = std::filesystem;
    fs::path const folder =
        fs::temp_directory_path() / ("cvcells-tests-" + std::to_string(getpid()));
    cells::Services & services = cells::PlatformServices();
    services.localeName = [] { return CString(L"C"); };
    services.localTime = [] { return cells::LocalTime{2026, 3, 5, 13, 45, 30}; };
    services.profileFolder = [folder] { return cells::FromUtf8(folder.string()); };
    CVCellInit();
    int const result = RUN_ALL_TESTS();
    CVCellExit();
    fs::remove_all(folder);
    return result;
}
