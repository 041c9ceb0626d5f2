// Facts of a locale from CLDR, through ICU. All formats are opened with the Gregorian calendar and
// Latin digits, since the engine knows no others.
#include "platform/LocaleSource.h"
#include "platform/Text.h"
#include "platform/Utf.h"

#include <string>
#include <unicode/ucol.h>
#include <unicode/ucurr.h>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/unum.h>
#include <unicode/uset.h>
#include <vector>

namespace cells::internal {
namespace {

using namespace kbt::multilang;
using Units = std::u16string;

struct CloseNumbers {
    void operator()(UNumberFormat * format) const { unum_close(format); }
};
struct CloseDates {
    void operator()(UDateFormat * format) const { udat_close(format); }
};
using NumberFormat = std::unique_ptr<UNumberFormat, CloseNumbers>;
using DateFormat = std::unique_ptr<UDateFormat, CloseDates>;

CString FromUnits(Units const & text) {
    return CString(std::wstring_view(std::wstring(text.begin(), text.end())));
}

CString FromAscii(std::string const & text) { return FromUtf8(text); }

// Runs one of ICU's calls that fill a buffer of units and tell how long the text is.
template <typename Call>
Units Fetch(Call && call) {
    Units text(256, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    int32_t const length = call(text.data(), int32_t(text.size()), &status);
    text.resize(U_SUCCESS(status) && length > 0 ? std::size_t(length) : 0);
    return text;
}

NumberFormat OpenNumbers(std::string const & name, UNumberFormatStyle style) {
    UErrorCode status = U_ZERO_ERROR;
    return NumberFormat(unum_open(style, nullptr, 0, name.c_str(), nullptr, &status));
}

DateFormat OpenDates(std::string const & name, UDateFormatStyle time, UDateFormatStyle date) {
    UErrorCode status = U_ZERO_ERROR;
    return DateFormat(udat_open(time, date, name.c_str(), nullptr, 0, nullptr, 0, &status));
}

CString Symbol(NumberFormat const & format, UNumberFormatSymbol symbol) {
    return FromUnits(Fetch([&](UChar * out, int32_t size, UErrorCode * status) {
        return unum_getSymbol(format.get(), symbol, out, size, status);
    }));
}

CString NumberPattern(NumberFormat const & format) {
    return FromUnits(Fetch([&](UChar * out, int32_t size, UErrorCode * status) {
        return unum_toPattern(format.get(), false, out, size, status);
    }));
}

CString DatePattern(DateFormat const & format) {
    return FromUnits(Fetch([&](UChar * out, int32_t size, UErrorCode * status) {
        return udat_toPattern(format.get(), false, out, size, status);
    }));
}

CString DateSymbol(DateFormat const & format, UDateFormatSymbolType type, int32_t index) {
    return FromUnits(Fetch([&](UChar * out, int32_t size, UErrorCode * status) {
        return udat_getSymbols(format.get(), type, index, out, size, status);
    }));
}

// A narrow no-break space cannot be typed; the usual no-break space stands for it.
CString GroupSeparator(CString text) {
    if (text.GetLength() > 0 && text[0] == 0x202F) text.SetAt(0, 0xA0);
    return text;
}

CString Grouping(NumberFormat const & format) {
    int const size = unum_getAttribute(format.get(), UNUM_GROUPING_SIZE);
    int const secondary = unum_getAttribute(format.get(), UNUM_SECONDARY_GROUPING_SIZE);
    std::string text = std::to_string(size > 0 ? size : 0);
    if (secondary > 0 && secondary != size) text += ";" + std::to_string(secondary);
    return FromAscii(text + ";0");
}

void ReadNumbers(std::string const & name, LocaleItems & items) {
    NumberFormat const numbers = OpenNumbers(name, UNUM_DECIMAL);
    if (!numbers) return;
    items[LOCALE_SDECIMAL] = Symbol(numbers, UNUM_DECIMAL_SEPARATOR_SYMBOL);
    items[LOCALE_STHOUSAND] = GroupSeparator(Symbol(numbers, UNUM_GROUPING_SEPARATOR_SYMBOL));
    items[LOCALE_SGROUPING] = Grouping(numbers);
    items[LOCALE_SLIST] = items[LOCALE_SDECIMAL] == L"," ? L";" : L",";
}

// A currency pattern reduced to the letters of the sixteen known shapes: "$" the symbol, "#" the
// number, "-" the sign, and blanks and brackets as they stand.
CString Shape(std::wstring_view pattern) {
    CString shape;
    bool inNumber = false;
    for (wchar_t unit : pattern) {
        bool const digit = CString(L"#0,.").Find(unit) >= 0;
        if (digit && !inNumber) shape += L'#';
        inNumber = digit;
        if (unit == 0xA4) {
            if (shape.IsEmpty() || shape[shape.GetLength() - 1] != L'$') shape += L'$';
        } else if (unit == 0xA0 || unit == 0x202F || unit == L' ') {
            shape += L' ';
        } else if (unit == L'(' || unit == L')' || unit == L'-') {
            shape += unit;
        }
    }
    return shape;
}

template <std::size_t N>
int IndexOf(CString const & shape, wchar_t const * const (&shapes)[N], int missing) {
    for (std::size_t i = 0; i < N; ++i)
        if (shape == shapes[i]) return int(i);
    return missing;
}

// The patterns of ICU name no negative form unless it differs from "-" before the positive one.
void ReadCurrencyOrders(CString const & pattern, bool unitedStates, LocaleItems & items) {
    static constexpr wchar_t const * kPositive[] = {L"$#", L"#$", L"$ #", L"# $"};
    static constexpr wchar_t const * kNegative[] = {
        L"($#)", L"-$#",  L"$-#",  L"$#-",  L"(#$)", L"-#$",  L"#-$",   L"#$-",
        L"-# $", L"-$ #", L"# $-", L"$ #-", L"$ -#", L"#- $", L"($ #)", L"(# $)"};
    static constexpr int kPlainNegative[] = {1, 5, 9, 8};
    int const semicolon = pattern.Find(L';');
    CString const positive = semicolon < 0 ? pattern : pattern.Left(semicolon);
    int const order = IndexOf(Shape(positive.View()), kPositive, 0);
    int negative = kPlainNegative[order];
    if (semicolon >= 0) negative = IndexOf(Shape(pattern.Mid(semicolon + 1).View()), kNegative, 0);
    if (unitedStates) negative = 0;
    items[LOCALE_ICURRENCY] = FromAscii(std::to_string(order));
    items[LOCALE_INEGCURR] = FromAscii(std::to_string(negative));
}

void ReadCurrency(std::string const & name, LocaleItems & items) {
    Units const code = Fetch([&](UChar * out, int32_t size, UErrorCode * status) {
        return ucurr_forLocale(name.c_str(), out, size, status);
    });
    NumberFormat const money = OpenNumbers(name, UNUM_CURRENCY);
    if (code.empty() || !money) return;
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    UBool choice = false;
    UChar const * symbol =
        ucurr_getName(code.c_str(), name.c_str(), UCURR_SYMBOL_NAME, &choice, &length, &status);
    if (U_SUCCESS(status) && Units(symbol, std::size_t(length)) != u"\u00A4")
        items[LOCALE_SCURRENCY] = FromUnits(Units(symbol, std::size_t(length)));
    items[LOCALE_SINTLSYMBOL] = FromUnits(code) + CString(L" ");
    items[LOCALE_SMONDECIMALSEP] = Symbol(money, UNUM_MONETARY_SEPARATOR_SYMBOL);
    items[LOCALE_SMONTHOUSANDSEP] =
        GroupSeparator(Symbol(money, UNUM_MONETARY_GROUPING_SEPARATOR_SYMBOL));
    items[LOCALE_SMONGROUPING] = Grouping(money);
    status = U_ZERO_ERROR;
    int32_t const digits = ucurr_getDefaultFractionDigits(code.c_str(), &status);
    if (U_SUCCESS(status)) items[LOCALE_ICURRDIGITS] = FromAscii(std::to_string(digits));
    items[LOCALE_IINTLCURRDIGITS] = items[LOCALE_ICURRDIGITS];
    ReadCurrencyOrders(NumberPattern(money), name.rfind("en_US@", 0) == 0, items);
}

// A short date pattern in plain letters: quoted words and direction marks go, years have four
// digits, and nothing stands after the last part.
CString PlainDatePattern(CString const & pattern) {
    CString plain;
    bool quoted = false;
    for (int i = 0; i < pattern.GetLength(); ++i) {
        wchar_t const unit = pattern[i];
        if (unit == L'\'') quoted = !quoted;
        bool const mark = unit == 0x200E || unit == 0x200F || unit == 0x061C;
        if (quoted || unit == L'\'' || mark) continue;
        bool const newYear =
            unit == L'y' && (plain.IsEmpty() || plain[plain.GetLength() - 1] != L'y');
        if (newYear)
            plain += L"yyyy";
        else if (unit != L'y' && unit != L'G')
            plain += unit == L'L' ? L'M' : unit;
    }
    while (!plain.IsEmpty() && !IsAlpha(plain[plain.GetLength() - 1]))
        plain = plain.Left(plain.GetLength() - 1);
    return plain;
}

CString FirstNonLetter(CString const & pattern) {
    for (wchar_t unit : pattern.View())
        if (!IsAlpha(unit)) return CString(unit);
    return {};
}

wchar_t const * DateOrderOf(CString const & pattern) {
    int const day = pattern.Find(L'd'), month = pattern.Find(L'M'), year = pattern.Find(L'y');
    if (year >= 0 && year < day && year < month) return L"2";
    return day < month ? L"1" : L"0";
}

// The character between the hour and the minute.
CString TimeSeparator(CString const & pattern) {
    for (int i = 1; i < pattern.GetLength(); ++i)
        if (CString(L"HhKk").Find(pattern[i - 1]) >= 0 && !IsAlpha(pattern[i]))
            return CString(pattern[i]);
    return {};
}

void ReadDates(std::string const & name, LocaleItems & items) {
    DateFormat const dates = OpenDates(name, UDAT_NONE, UDAT_SHORT);
    if (!dates) return;
    CString const pattern = PlainDatePattern(DatePattern(dates));
    items[LOCALE_SSHORTDATE] = pattern;
    items[LOCALE_SDATE] = FirstNonLetter(pattern);
    items[LOCALE_IDATE] = DateOrderOf(pattern);
    items[LOCALE_ICENTURY] = pattern.Find(L"yyyy") >= 0 ? L"1" : L"0";
    items[LOCALE_IDAYLZERO] = pattern.Find(L"dd") >= 0 ? L"1" : L"0";
    items[LOCALE_IMONLZERO] = pattern.Find(L"MM") >= 0 ? L"1" : L"0";
    for (int i = 0; i < 7; ++i) {
        int32_t const day = i == 6 ? UCAL_SUNDAY : UCAL_MONDAY + i;
        items[LOCALE_SDAYNAME1 + unsigned(i)] = DateSymbol(dates, UDAT_STANDALONE_WEEKDAYS, day);
        items[LOCALE_SABBREVDAYNAME1 + unsigned(i)] =
            DateSymbol(dates, UDAT_STANDALONE_SHORT_WEEKDAYS, day);
    }
    for (int i = 0; i < 12; ++i) {
        items[LOCALE_SMONTHNAME1 + unsigned(i)] = DateSymbol(dates, UDAT_STANDALONE_MONTHS, i);
        items[LOCALE_SABBREVMONTHNAME1 + unsigned(i)] =
            DateSymbol(dates, UDAT_STANDALONE_SHORT_MONTHS, i);
    }
    items[LOCALE_S1159] = DateSymbol(dates, UDAT_AM_PMS, 0);
    items[LOCALE_S2359] = DateSymbol(dates, UDAT_AM_PMS, 1);
}

void ReadTimes(std::string const & name, LocaleItems & items) {
    DateFormat const times = OpenDates(name, UDAT_SHORT, UDAT_NONE);
    if (!times) return;
    CString const pattern = DatePattern(times);
    items[LOCALE_STIME] = TimeSeparator(pattern);
    items[LOCALE_ITIME] = pattern.Find(L'H') >= 0 || pattern.Find(L'k') >= 0 ? L"1" : L"0";
    bool const twoDigits = pattern.Find(L"HH") >= 0 || pattern.Find(L"hh") >= 0;
    items[LOCALE_ITLZERO] = twoDigits ? L"1" : L"0";
}

void ReadNames(std::string const & name, LocaleItems & items) {
    char region[16] = "";
    UErrorCode status = U_ZERO_ERROR;
    uloc_getCountry(name.c_str(), region, sizeof region, &status);
    items[LOCALE_ICOUNTRY] = FromAscii(std::to_string(TelephoneCode(region)));
    char language[64];
    std::snprintf(language, sizeof language, "%04X", unsigned(uloc_getLCID(name.c_str())));
    items[LOCALE_ILANGUAGE] = FromAscii(language);
    char iso[16] = "";
    status = U_ZERO_ERROR;
    uloc_getLanguage(name.c_str(), iso, sizeof iso, &status);
    items[LOCALE_SISO639LANGNAME] = FromAscii(iso);
}

class IcuCollator : public Collator {
public:
    explicit IcuCollator(std::string const & name) {
        UErrorCode status = U_ZERO_ERROR;
        m_Collator = ucol_open(name.c_str(), &status);
        if (!m_Collator) return;
        ucol_setStrength(m_Collator, UCOL_IDENTICAL);
        ucol_setAttribute(m_Collator, UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &status);
    }
    ~IcuCollator() override {
        if (m_Collator) ucol_close(m_Collator);
    }
    IcuCollator(IcuCollator const &) = delete;
    IcuCollator & operator=(IcuCollator const &) = delete;

    int Compare(wchar_t const * a, wchar_t const * b, bool caseSensitive) const override {
        if (!m_Collator) return 0;
        Units const x = Convert(a, caseSensitive), y = Convert(b, caseSensitive);
        return ucol_strcoll(m_Collator, x.data(), int32_t(x.size()), y.data(), int32_t(y.size()));
    }

private:
    static Units Convert(wchar_t const * text, bool caseSensitive) {
        Units units;
        for (; *text; ++text) units += char16_t(caseSensitive ? *text : FoldCase(*text));
        return units;
    }

    UCollator * m_Collator = nullptr;
};

} // namespace

std::unique_ptr<Collator> MakeRootCollator() { return std::make_unique<IcuCollator>(""); }

bool HasLocale(CString const & tag) {
    char language[ULOC_LANG_CAPACITY];
    auto const languageOf = [&](char const * name) {
        UErrorCode status = U_ZERO_ERROR;
        uloc_getLanguage(name, language, sizeof language, &status);
        return std::string(U_SUCCESS(status) ? language : "");
    };
    std::string const asked = languageOf(ToUtf8(tag).c_str());
    for (int32_t i = 0; i < uloc_countAvailable(); ++i)
        if (languageOf(uloc_getAvailable(i)) == asked) return true;
    return false;
}

std::unique_ptr<CLocaleInfo> LoadLocale(CString const & tag) {
    std::string const plain = ToUtf8(tag);
    std::string const name = plain + "@calendar=gregorian;numbers=latn";
    LocaleItems items;
    ReadNames(plain, items);
    ReadNumbers(name, items);
    ReadCurrency(name, items);
    ReadDates(name, items);
    ReadTimes(name, items);
    return std::make_unique<CLocaleInfo>(tag, std::move(items),
                                         std::make_unique<IcuCollator>(plain));
}

} // namespace cells::internal
