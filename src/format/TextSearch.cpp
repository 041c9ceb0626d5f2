#include "format/TextSearch.h"

#include "platform/Text.h"

#include <cwchar>

namespace {

bool Agrees(wchar_t a, wchar_t b, int caseSensitive) {
    return caseSensitive ? a == b : cells::ToUpper(a) == cells::ToUpper(b);
}

bool StartsWith(wchar_t const * text, wchar_t const * find, int caseSensitive) {
    for (; *find; ++text, ++find)
        if (!*text || !Agrees(*text, *find, caseSensitive)) return false;
    return true;
}

} // namespace

int StrFind(wchar_t const * text, wchar_t const * set) {
    return text && set ? int(std::wcscspn(text, set)) : 0;
}

wchar_t const * StrStrW(wchar_t const * text, wchar_t const * find, int caseSensitive,
                        int wholeWord) {
    if (!text || !find) return nullptr;
    std::size_t const length = std::wcslen(find);
    if (length == 0) return text;
    for (wchar_t const * at = text; *at; ++at) {
        if (!StartsWith(at, find, caseSensitive)) continue;
        bool const inWord = (at != text && cells::IsAlnum(at[-1])) || cells::IsAlnum(at[length]);
        if (!wholeWord || !inWord) return at;
    }
    return nullptr;
}

int StrRep(wchar_t *& target, wchar_t const *& source, int & remaining, wchar_t const * find,
           wchar_t const * replace, int caseSensitive, int wholeWord) {
    std::size_t const length = std::wcslen(find);
    wchar_t last = 0;
    while (remaining > 1 && *source) {
        bool const match = length > 0 && StartsWith(source, find, caseSensitive);
        if (match && !(wholeWord && (cells::IsAlnum(last) || cells::IsAlnum(source[length])))) {
            for (; *replace && remaining > 1; --remaining) *target++ = *replace++;
            source += length;
            return 1;
        }
        *target++ = last = *source++;
        --remaining;
    }
    if (remaining > 0) {
        *target = 0;
        --remaining;
    }
    return 0;
}

int MatchBrackets(wchar_t const * text) {
    int round = 0, curly = 0;
    for (; text && *text; ++text) {
        round += (*text == L'(') - (*text == L')');
        curly += (*text == L'{') - (*text == L'}');
    }
    return round == 0 && curly == 0;
}
