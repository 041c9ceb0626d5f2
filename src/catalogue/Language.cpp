#include "catalogue/Language.h"

#include "formula/FunctionRegistry.h"
#include "platform/Resources.h"
#include "platform/Services.h"
#include "platform/Text.h"
#include "platform/Utf.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace cells {
namespace {

constexpr std::string_view kFieldSeparator = " | ";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

CString ReadFields(std::string_view text) {
    std::string fields;
    for (;;) {
        std::size_t const end = text.find(kFieldSeparator);
        fields += text.substr(0, end);
        if (end == std::string_view::npos) break;
        fields += '\n';
        text.remove_prefix(end + kFieldSeparator.size());
    }
    return FromUtf8(fields);
}

bool Fail(LanguageError & error, int line, std::string message) {
    error = {line, std::move(message)};
    return false;
}

// Whether the lexer could take the name as one.
bool CanBeTyped(CString const & name) {
    if (name.IsEmpty() || !IsAlpha(name[0])) return false;
    for (int i = 1; i < name.GetLength(); ++i)
        if (!IsAlnum(name[i]) && name[i] != L'.' && name[i] != L'_') return false;
    return ToUpper(name[0]) <= internal::kLastFirstUnit;
}

} // namespace

bool Language::AddLine(std::string_view line, int number, LanguageError & error) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty() || line.front() == '#') return true;
    if (FindInvalidUtf8(line) != line.size()) return Fail(error, number, "This is not UTF-8.");
    unsigned int id = 0;
    auto const [end, status] = std::from_chars(line.data(), line.data() + line.size(), id);
    line.remove_prefix(std::size_t(end - line.data()));
    if (status != std::errc() || line.size() < 2 || line.front() != ' ')
        return Fail(error, number, "A line is a number, a blank and a text.");
    if (!m_Strings.try_emplace(id, Entry{ReadFields(line.substr(1)), number}).second)
        return Fail(error, number, "String " + std::to_string(id) + " stands here again.");
    return true;
}

bool Language::CheckNames(LanguageError & error) const {
    std::map<CString, unsigned int> owners;
    for (unsigned int id = kStringFirstFunction; id <= kStringLastFunction; ++id) {
        auto const own = m_Strings.find(id);
        CString name;
        GetField(own != m_Strings.end() ? own->second.text : LoadEnglishString(id), 0, name);
        int const line = own != m_Strings.end() ? own->second.line : 0;
        if (!CanBeTyped(name))
            return Fail(error, line, "\"" + ToUtf8(name) + "\" cannot be the name of a function.");
        auto const [owner, isNew] = owners.try_emplace(CString(name).MakeUpper(), id);
        if (!isNew)
            return Fail(error, line,
                        "\"" + ToUtf8(name) + "\" is the name of function " +
                            std::to_string(owner->second) + " too.");
    }
    return true;
}

std::optional<Language> Language::Read(std::string_view utf8, LanguageError & error) {
    Language language;
    if (utf8.starts_with(kByteOrderMark)) utf8.remove_prefix(kByteOrderMark.size());
    for (int number = 1; !utf8.empty(); ++number) {
        std::size_t const end = std::min(utf8.find('\n'), utf8.size());
        if (!language.AddLine(utf8.substr(0, end), number, error)) return std::nullopt;
        utf8.remove_prefix(std::min(end + 1, utf8.size()));
    }
    if (!language.CheckNames(error)) return std::nullopt;
    return language;
}

std::optional<CString> Language::Find(unsigned int id) const {
    auto const found = m_Strings.find(id);
    if (found == m_Strings.end()) return std::nullopt;
    return found->second.text;
}

void UseLanguage(Language language) {
    PlatformServices().loadString = [language = std::move(language)](unsigned int id,
                                                                     CString & text) {
        std::optional<CString> found = language.Find(id);
        if (found) text = *std::move(found);
        return found.has_value();
    };
    InitBuiltinFunctions();
}

void UseEnglish() {
    PlatformServices().loadString = nullptr;
    InitBuiltinFunctions();
}

} // namespace cells
