// The texts of errors, as they are printed.
#include "formula/Scanners.h"
#include "platform/Resources.h"
#include "platform/Text.h"

#include <array>
#include <cwchar>
#include <string_view>

namespace cells::internal {
namespace {

struct Texts {
    std::array<CString, kErrorsWithString> ofError; // error 1 first
    Texts() {
        for (int error = 1; error <= kErrorsWithString; ++error)
            ofError[std::size_t(error - 1)] = ErrorText(error);
    }
};

Texts & ErrorTexts() {
    static Texts * const texts = new Texts;
    return *texts;
}

// Whether the word at the end of `text` goes on at `behind`.
bool GoesOn(std::wstring_view text, wchar_t const * behind) {
    return IsAlnum(text.back()) && *behind && (IsAlnum(*behind) || *behind == L'_');
}

} // namespace

void ReloadErrorTexts() { ErrorTexts() = Texts(); }

int EatErrorText(wchar_t const *& text) {
    int error = 0;
    std::size_t longest = 0;
    for (int i = 0; i < kErrorsWithString; ++i) {
        std::wstring_view const candidate = ErrorTexts().ofError[std::size_t(i)].View();
        if (candidate.size() <= longest || candidate.front() != *text) continue;
        bool const fits = std::wcsncmp(text, candidate.data(), candidate.size()) == 0;
        if (!fits || GoesOn(candidate, text + candidate.size())) continue;
        error = i + 1;
        longest = candidate.size();
    }
    text += longest;
    return error;
}

} // namespace cells::internal
