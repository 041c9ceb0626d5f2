// Starts the engine for all tests: invariant locale, a fixed clock, settings in a folder of their
// own.
#include "context/Context.h"
#include "platform/Services.h"
#include "platform/Utf.h"
#include "values/CCCellValue.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

namespace {

// Values may be printed before the engine starts: hosts have static objects.
std::wstring const g_printedEarly = [] {
    std::wostringstream stream;
    CCCellValue().Print(nullptr, stream, 0);
    CCCellValue value;
    value.Set(1.5, uchar(C_NF_GENERAL));
    value.GetFormat().Print(cells::invariant_LCTX(), stream, 1.5, 0);
    return stream.str();
}();

} // namespace

TEST(Library, PrintsBeforeItIsStarted) { EXPECT_EQ(g_printedEarly, L"1.5"); }

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
