#include "host/Engine.h"

#include "catalogue/Language.h"
#include "context/Context.h"
#include "platform/Utf.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace cells::host {

void StartEngine() {
    struct Running {
        Running() { CVCellInit(); }
        ~Running() { CVCellExit(); }
    };
    static Running const running;
}

void UseLanguageFile(std::filesystem::path const & file) {
    StartEngine();
    std::ifstream stream(file, std::ios::binary);
    std::string const bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad())
        throw std::runtime_error(file.string() + ": the file cannot be read.");
    LanguageError error;
    std::optional<Language> language = Language::Read(bytes, error);
    if (!language)
        throw std::runtime_error(file.string() + ":" + std::to_string(error.line) + ": " +
                                 error.message);
    UseLanguage(*std::move(language));
}

kbt::multilang::CLocaleInfo const & FindLocale(std::string_view tag) {
    StartEngine();
    auto & cache = kbt::globals::global_environment().locales_cache();
    if (tag.empty()) return cache.user();
    CString const name = FromUtf8(tag);
    if (!cache.knows(name)) throw std::invalid_argument("no such locale: " + std::string(tag));
    return cache.find(name);
}

} // namespace cells::host
