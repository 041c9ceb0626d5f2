// Character classes, case and comparison of text.
//
// One fixed table over the 16-bit code units decides; neither the process's C locale nor the
// machine has a say. Surrogates are neither letters nor digits nor space.
#pragma once

#include "platform/Types.h"

namespace kbt::multilang {
class CLocaleInfo;
}

namespace cells {

namespace internal {

CVCELLS_API bool IsSpaceBeyondAscii(wchar_t unit);
CVCELLS_API bool IsAlphaBeyondAscii(wchar_t unit);
CVCELLS_API bool IsAlnumBeyondAscii(wchar_t unit);
CVCELLS_API wchar_t ToUpperBeyondAscii(wchar_t unit);

constexpr bool IsAscii(wchar_t unit) { return unit >= 0 && unit < 0x80; }
constexpr bool IsAsciiLetter(wchar_t unit) {
    return (unit | 0x20) >= L'a' && (unit | 0x20) <= L'z';
}

} // namespace internal

// Unicode white space, U+00A0 included.
inline bool IsSpace(wchar_t unit) {
    if (internal::IsAscii(unit)) return unit == L' ' || (unit >= 0x9 && unit <= 0xD);
    return internal::IsSpaceBeyondAscii(unit);
}
// Unicode letters.
inline bool IsAlpha(wchar_t unit) {
    return internal::IsAscii(unit) ? internal::IsAsciiLetter(unit)
                                   : internal::IsAlphaBeyondAscii(unit);
}
// Letters, and decimal digits of every script.
inline bool IsAlnum(wchar_t unit) {
    if (!internal::IsAscii(unit)) return internal::IsAlnumBeyondAscii(unit);
    return internal::IsAsciiLetter(unit) || (unit >= L'0' && unit <= L'9');
}
CVCELLS_API bool IsControl(wchar_t unit); // U+0000 to U+001F, U+007F to U+009F
inline wchar_t ToUpper(wchar_t unit) {
    if (!internal::IsAscii(unit)) return internal::ToUpperBeyondAscii(unit);
    return unit >= L'a' && unit <= L'z' ? wchar_t(unit - 0x20) : unit;
}
CVCELLS_API wchar_t ToLower(wchar_t unit);

// The scanners read "0" to "9" and no other digits.
constexpr bool IsDigit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }

// The form of a unit in which two units that differ only in case are the same.
CVCELLS_API wchar_t FoldCase(wchar_t unit);

// Order of two terminated texts by code units, and by folded code units: -1, 0 or 1.
CVCELLS_API int CompareUnits(wchar_t const * a, wchar_t const * b);
CVCELLS_API int CompareFolded(wchar_t const * a, wchar_t const * b);

// The collation of text comparison in a locale: negative, 0 or positive. It is 0 exactly for equal
// texts, or, without regard to case, for texts whose folded units are equal. With ICU the order is
// that of the locale; without it punctuation, digits and letters, then case, then code units.
// A host may put its own order in Services::collate; the equality rules are kept all the same.
CVCELLS_API int Collate(kbt::multilang::CLocaleInfo const & locale, wchar_t const * a,
                        wchar_t const * b, bool caseSensitive);

} // namespace cells
