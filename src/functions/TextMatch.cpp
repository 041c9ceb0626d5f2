#include "functions/TextMatch.h"

#include "platform/Text.h"

namespace cells::internal {

// A piece between two stars has a fixed length, so that its earliest place leaves the most text:
// one restart point, the latest star, is enough.
bool BeginsWithPattern(std::wstring_view text, std::wstring_view pattern) {
    std::size_t at = 0, p = 0, restart = 0, behindStar = 0;
    bool star = false;
    for (;;) {
        if (p == pattern.size()) return true;
        if (at == text.size()) return false;
        wchar_t const code = pattern[p];
        if (code == L'*') {
            star = true;
            behindStar = ++p;
            restart = at;
            continue;
        }
        bool fits = true;
        if (code == L'~') {
            ++p;
            fits = p < pattern.size() && text[at] == pattern[p];
        } else if (code != L'?') {
            fits = ToUpper(text[at]) == ToUpper(code);
        }
        if (fits) {
            ++at;
            ++p;
        } else if (star) {
            at = ++restart;
            p = behindStar;
        } else {
            return false;
        }
    }
}

bool IsLike(std::wstring_view text, std::wstring_view pattern) {
    std::size_t at = 0, p = 0, restart = 0, behindStar = 0;
    bool star = false;
    while (at < text.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            star = true;
            behindStar = ++p;
            restart = at;
            if (p == pattern.size()) return true;
        } else if (p < pattern.size() && (pattern[p] == L'?' || pattern[p] == text[at])) {
            ++at;
            ++p;
        } else if (star) {
            at = ++restart;
            p = behindStar;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == L'*') ++p;
    return p == pattern.size();
}

} // namespace cells::internal
