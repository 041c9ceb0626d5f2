#include "functions/internal/TextMatch.h"

#include "platform/Text.h"

namespace cells::internal {

TextFinder::TextFinder(std::wstring_view find) : m_Find(find), m_Borders(find.size() + 1, -1) {
    int border = -1;
    for (std::size_t i = 0; i < find.size(); ++i) {
        while (border >= 0 && find[std::size_t(border)] != find[i])
            border = m_Borders[std::size_t(border)];
        m_Borders[i + 1] = ++border;
    }
}

std::size_t TextFinder::Find(std::wstring_view text, std::size_t from) const {
    int const length = int(m_Find.size());
    int matched = 0;
    for (std::size_t at = from; at < text.size() && matched < length; ++at) {
        while (matched >= 0 && m_Find[std::size_t(matched)] != text[at])
            matched = m_Borders[std::size_t(matched)];
        if (++matched == length) return at + 1 - m_Find.size();
    }
    return length == 0 && from <= text.size() ? from : std::wstring_view::npos;
}

// A piece between two stars has a fixed length, so that its earliest place leaves the most text:
// one restart point, the latest star, is enough.
Match BeginsWithPattern(std::wstring_view text, std::wstring_view pattern, int & budget) {
    std::size_t at = 0, p = 0, restart = 0, behindStar = 0;
    bool star = false;
    for (; budget > 0; --budget) {
        if (p == pattern.size()) return Match::kYes;
        if (at == text.size()) return Match::kNo;
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
            return Match::kNo;
        }
    }
    return Match::kTooLong;
}

Match IsLike(std::wstring_view text, std::wstring_view pattern, int budget) {
    std::size_t at = 0, p = 0, restart = 0, behindStar = 0;
    bool star = false;
    for (; at < text.size(); --budget) {
        if (budget == 0) return Match::kTooLong;
        if (p < pattern.size() && pattern[p] == L'*') {
            star = true;
            behindStar = ++p;
            restart = at;
            if (p == pattern.size()) return Match::kYes;
        } else if (p < pattern.size() && (pattern[p] == L'?' || pattern[p] == text[at])) {
            ++at;
            ++p;
        } else if (star) {
            at = ++restart;
            p = behindStar;
        } else {
            return Match::kNo;
        }
    }
    while (p < pattern.size() && pattern[p] == L'*') ++p;
    return p == pattern.size() ? Match::kYes : Match::kNo;
}

} // namespace cells::internal
