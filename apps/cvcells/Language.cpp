// Where the languages of the program lie.
#include "cvcells/Commands.h"
#include "cvcells/Csv.h"
#include "host/Engine.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace cells::app {
namespace {

namespace fs = std::filesystem;

// The folder that the user names, that of an installation beside the program, that of the sources.
std::vector<fs::path> LanguageFolders() {
    std::vector<fs::path> folders;
    if (char const * own = std::getenv("CVCELLS_LANGUAGES")) folders.emplace_back(own);
    std::error_code ignored;
    fs::path const program = fs::read_symlink("/proc/self/exe", ignored);
    if (!program.empty())
        folders.push_back(program.parent_path().parent_path() / "share/cvcells/languages");
    folders.emplace_back(CVCELLS_SOURCE_LANGUAGES);
    return folders;
}

fs::path FindLanguage(std::string const & nameOrFile) {
    if (nameOrFile.find('/') == std::string::npos)
        for (fs::path const & folder : LanguageFolders())
            if (fs::path const file = folder / (nameOrFile + ".txt"); fs::exists(file)) return file;
    return nameOrFile;
}

} // namespace

void ChooseLanguage(std::string const & nameOrFile) {
    if (nameOrFile == "en") return;
    try {
        host::UseLanguageFile(FindLanguage(nameOrFile));
    } catch (std::runtime_error const & error) {
        throw InputError(std::string("--language ") + error.what());
    }
}

} // namespace cells::app
