#include "format/BuiltInFormats.h"

#include "format/International.h"
#include "platform/LocaleInfo.h"

#include <array>
#include <string>

namespace cells::internal {
namespace {

using namespace kbt::multilang;
using Formats = std::array<CString, kBuiltInNumberFormats>;

Formats & Table() {
    static Formats * const formats = new Formats;
    return *formats;
}

// "$" stands for the currency, "#" for the body and "-" for the sign.
constexpr wchar_t const * kPositive[] = {L"$#", L"#$", L"$ #", L"# $"};
constexpr wchar_t const * kNegative[] = {L"($#)", L"-$#",  L"$-#",   L"$#-",  L"(#$)", L"-#$",
                                         L"#-$",  L"#$-",  L"-# $",  L"-$ #", L"# $-", L"$ #-",
                                         L"$ -#", L"#- $", L"($ #)", L"(# $)"};

// Inside a format a currency such as "kr." would be read as codes; in quotes it stays text. The
// usual signs need none.
CString Literal(CString const & text) {
    bool plain = true;
    for (wchar_t unit : text.View()) plain = plain && (unit == L'$' || unit > 0x7F);
    return plain ? text : CString(L"\"") + text + CString(L"\"");
}

// A separator that a format would read as a decimal point or a group is marked as text.
CString Separator(wchar_t unit) {
    bool const plain = unit == L'/' || unit == L':' || unit == L'-' || unit == L' ';
    return plain ? CString(unit) : CString(L"\\") + CString(unit);
}

// The shape whose number an item of the locale gives; any other item leaves the body alone.
template <std::size_t Shapes>
wchar_t const * ShapeOf(wchar_t const * const (&shapes)[Shapes], CString const & item) {
    for (std::size_t i = 0; i < Shapes; ++i)
        if (item == CString(std::to_wstring(i))) return shapes[i];
    return L"#";
}

CString CurrencyForm(wchar_t const * shape, CLocaleInfo const & locale, CString const & body) {
    CString text;
    for (; *shape; ++shape) {
        if (*shape == L'$')
            text += Literal(locale.Item(LOCALE_SCURRENCY));
        else if (*shape == L'#')
            text += body;
        else
            text += *shape;
    }
    return text;
}

CString CurrencyPair(CLocaleInfo const & locale, wchar_t const * body, wchar_t const * between) {
    return CurrencyForm(ShapeOf(kPositive, locale.Item(LOCALE_ICURRENCY)), locale, body) +
           CString(between) +
           CurrencyForm(ShapeOf(kNegative, locale.Item(LOCALE_INEGCURR)), locale, body);
}

void BuildDates(Formats & formats, CLocaleInfo const & locale) {
    CString const d = Separator(locale.Get().dateSeparator),
                  t = Separator(locale.Get().timeSeparator);
    CString const date = locale.Item(LOCALE_SSHORTDATE);
    formats[14] = date;
    formats[15] = CString(L"d") + d + L"mmm" + d + L"yy";
    formats[16] = CString(L"d") + d + L"mmm";
    formats[17] = CString(L"mmm") + d + L"yy";
    formats[18] = CString(L"h") + t + L"mm AM/PM";
    formats[19] = CString(L"h") + t + L"mm" + t + L"ss AM/PM";
    formats[20] = CString(L"h") + t + L"mm";
    formats[21] = CString(L"h") + t + L"mm" + t + L"ss";
    formats[22] = date + L" h" + t + L"mm";
    formats[46] = CString(L"mm") + t + L"ss";
    formats[47] = CString(L"mm") + t + L"ss,0";
    formats[49] = CString(L"[h]") + t + L"mm" + t + L"ss";
}

} // namespace

void BuildBuiltInFormats(CLocaleInfo const & locale) {
    Formats & formats = Table();
    formats.fill(L"Unknown");
    constexpr wchar_t const * kFirst[] = {L"General", L"0", L"0.00", L"#,##0", L"#,##0.00"};
    for (std::size_t i = 0; i < 5; ++i) formats[i] = kFirst[i];
    formats[5] = CurrencyPair(locale, L"#,##0", L";");
    formats[6] = CurrencyPair(locale, L"#,##0", L";[Red]");
    formats[7] = CurrencyPair(locale, L"#,##0.00", L";");
    formats[8] = CurrencyPair(locale, L"#,##0.00", L";[Red]");
    formats[9] = L"0%";
    formats[10] = L"0.00%";
    formats[11] = L"0.00E+00";
    formats[12] = L"#\" \"?/?";
    formats[13] = L"#\" \"?\?/?\?";
    BuildDates(formats, locale);
    formats[38] = L"#,##0_);(#,##0)";
    formats[39] = L"#,##0_);[Red](#,##0)";
    formats[40] = L"#,##0.00_);(#,##0.00)";
    formats[41] = L"#,##0.00_);[Red](#,##0.00)";
    formats[48] = L"@";
}

} // namespace cells::internal

CString getBuiltInNumberFormat(int index) {
    bool const inside = index >= 0 && index < kBuiltInNumberFormats;
    return cells::internal::Table()[inside ? std::size_t(index) : 0];
}
