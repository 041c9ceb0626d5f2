#include "platform/CodePage.h"

#include "platform/Services.h"

namespace cells {
namespace {

// Bytes 80 to 9F of code page 1252; every other byte is the unit of its own number, and so are the
// five bytes that the page leaves unassigned.
constexpr wchar_t kHigh1252[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                   0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                   0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

} // namespace

wchar_t UnitOfByte(uchar byte) {
    if (PlatformServices().codePage) return PlatformServices().codePage[byte];
    return byte >= 0x80 && byte < 0xA0 ? kHigh1252[byte - 0x80] : wchar_t(byte);
}

int ByteOfUnit(wchar_t unit, int missing) {
    if (unit < 0x80 && !PlatformServices().codePage) return int(unit);
    for (int byte = 0; byte < 256; ++byte)
        if (UnitOfByte(uchar(byte)) == unit) return byte;
    return missing;
}

CString FromNarrow(std::string const & bytes) {
    std::wstring units;
    for (char byte : bytes) units += UnitOfByte(uchar(byte));
    return CString(std::wstring_view(units));
}

std::string ToNarrow(CString const & text, bool * usedDefault) {
    std::string bytes;
    if (usedDefault) *usedDefault = false;
    for (wchar_t unit : text.View()) {
        int const byte = ByteOfUnit(unit, -1);
        if (byte < 0 && usedDefault) *usedDefault = true;
        bytes += byte < 0 ? '?' : char(byte);
    }
    return bytes;
}

} // namespace cells
