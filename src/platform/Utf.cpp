#include "platform/Utf.h"

#include <algorithm>
#include <iterator>
#include <utf8.h>

namespace cells {
namespace {

std::string Repaired(std::string_view bytes) {
    std::string repaired;
    utf8::replace_invalid(bytes.begin(), bytes.end(), std::back_inserter(repaired));
    return repaired;
}

bool IsSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

char32_t NextCharacter(std::wstring_view units, std::size_t & at) {
    wchar_t const first = units[at++];
    if (!IsSurrogate(first)) return char32_t(first);
    bool const pair =
        first < 0xDC00 && at < units.size() && units[at] >= 0xDC00 && units[at] <= 0xDFFF;
    if (!pair) return 0xFFFD;
    return 0x10000 + ((char32_t(first) - 0xD800) << 10) + (char32_t(units[at++]) - 0xDC00);
}

} // namespace

CString FromUtf8(std::string_view bytes) {
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return uchar(c) < 0x80; }))
        return CString(std::wstring_view(std::wstring(bytes.begin(), bytes.end())));
    std::string const valid = Repaired(bytes);
    std::wstring units;
    for (auto at = valid.begin(); at != valid.end();) units += wchar_t(utf8::next(at, valid.end()));
    return CString(std::wstring_view(units));
}

std::string ToUtf8(std::wstring_view units) {
    std::string bytes;
    for (std::size_t at = 0; at < units.size();)
        utf8::append(NextCharacter(units, at), std::back_inserter(bytes));
    return bytes;
}

std::string ToUtf8(CString const & text) { return ToUtf8(text.View()); }

std::size_t FindInvalidUtf8(std::string_view bytes) {
    return std::size_t(utf8::find_invalid(bytes.begin(), bytes.end()) - bytes.begin());
}

} // namespace cells
