// The Print family of CCNumberFormat: one double as text, by the facts of a locale context.
#include "format/CCNumberFormat.h"

#include "format/CExcelNumberFormat.h"
#include "format/DateSerial.h"
#include "format/LTStrings.h"
#include "format/Numbers.h"
#include "platform/Digits.h"
#include "platform/Resources.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ostream>

using cells::DigitText;
using cells::WriteAscii;
using cells::WriteText;

namespace {

constexpr double kPrintedAsZero = 1e-14;
constexpr double kSmallestDifference = 2.220446049250313e-16;
constexpr double kFirstRaised = 0.1; // from here on the difference above is added before printing
constexpr int kNoGroups = 512;       // the group size that stands for none

constexpr wchar_t const * kPosCurrencyFormat[] = {L"$#", L"#$", L"$ #", L"# $"};
constexpr wchar_t const * kNegNoBrCurrencyFormat[] = {
    L"-$#",  L"-$#",  L"$-#",  L"$#-",  L"-#$",  L"-#$",  L"#-$",  L"#$-",
    L"-# $", L"-$ #", L"# $-", L"$ #-", L"$ -#", L"#- $", L"-$ #", L"-# $"};
// With brackets only the place of the currency counts.
constexpr wchar_t const * kNegBrCurrencyFormat[] = {
    L"($#)", L"($#)",  L"($#)",  L"($#)",  L"(#$)",  L"(#$)",  L"(#$)",  L"(#$)",
    L"(#$)", L"($ #)", L"($ #)", L"($ #)", L"($ #)", L"(# $)", L"(# $)", L"(# $)"};

void Widen(std::wstring & out, std::string_view text) { out.assign(text.begin(), text.end()); }

// The first "." is the point of the C formats; the locale's separator takes its place.
std::size_t SetPoint(std::wstring & digits, wchar_t separator) {
    std::size_t const point = digits.find(L'.');
    if (point == std::wstring::npos) return digits.size();
    digits[point] = separator;
    return point;
}

// Writes the first `whole` characters in groups from the right, and the rest as it is.
void WriteGrouped(std::wostream & stream, std::wstring const & digits, std::size_t whole,
                  wchar_t separator, int groupSize) {
    std::size_t const size = std::size_t(groupSize > 0 ? groupSize : kNoGroups);
    std::size_t end = whole % size ? whole % size : std::min(size, whole);
    stream.write(digits.data(), std::streamsize(end));
    for (; end < whole; end += size) {
        stream.put(separator);
        stream.write(digits.data() + end, std::streamsize(size));
    }
    stream.write(digits.data() + whole, std::streamsize(digits.size() - whole));
}

void WriteTwoDigits(std::wostream & stream, int number) {
    int const shown = std::abs(number) % 100;
    stream.put(wchar_t(L'0' + shown / 10));
    stream.put(wchar_t(L'0' + shown % 10));
}

// The tens digit is dropped when it is 0 and not asked for.
void WriteDayOrMonth(std::wostream & stream, int number, bool twoDigits) {
    int const shown = std::abs(number) % 100;
    if (shown >= 10 || twoDigits) stream.put(wchar_t(L'0' + shown / 10));
    stream.put(wchar_t(L'0' + shown % 10));
}

// Signs of year and day in East Asian dates. The locale identifier is compared as bytes, and a wide
// text never matches, so that the signs stay away. That is meant so.
bool g_eastAsianMarks = false;

bool WantsEastAsianMarks(cells::LCTX * lctx) {
    CString const identifier(lctx->info(kbt::multilang::LOCALE_ILANGUAGE));
    wchar_t units[5] = {};
    std::copy_n(identifier.GetString(), std::min(identifier.GetLength(), 4), units);
    char bytes[sizeof units + 1] = {};
    std::memcpy(bytes, units, sizeof units);
    return std::strcmp(bytes, "0411") == 0;
}

constexpr wchar_t kYearMark = 0x5E74, kDayMark = 0x65E5;

} // namespace

void CCNumberFormat::Print(cells::LCTX * lctx, std::wostream & stream, double value,
                           int raw) const {
    if (std::fabs(value) < kPrintedAsZero) value = 0.0;
    if (m_bCustom && !raw) return WriteText(stream, m_Compiled->Print(lctx, value));
    switch (m_nType) {
    case C_NF_GENERAL:
        return PrintGeneral(lctx, stream, value, raw);
    case C_NF_NUMBER:
        return PrintNumber(lctx, stream, value, raw);
    case C_NF_CURRENCY:
        return PrintCurrency(lctx, stream, value, raw);
    case C_NF_PERCENT:
        return PrintPercent(lctx, stream, value, raw);
    case C_NF_FRACTION:
        return PrintFraction(lctx, stream, value, raw);
    case C_NF_SCIENTIFIC:
        return PrintScientific(lctx, stream, value, raw);
    case C_NF_TIME:
        return PrintTime(lctx, stream, value);
    case C_NF_DATE:
        return PrintDate(lctx, stream, value);
    case C_NF_BOOL:
        return PrintBool(lctx, stream, value);
    case C_NF_HEX:
        return PrintHex(lctx, stream, value);
    case C_NF_OCT:
        return PrintOct(lctx, stream, value);
    case C_NF_BIN:
        return PrintBin(lctx, stream, value);
    default:
        return;
    }
}

void CCNumberFormat::Print(cells::LCTX * lctx, std::wostream & stream, double value,
                           CString & ltString, int raw) const {
    if (m_nType == C_NF_NUMBER)
        PrintNumber(lctx, stream, value, ltString, raw);
    else
        Print(lctx, stream, value, raw);
}

void CCNumberFormat::PrintGeneralNumber(cells::LCTX * lctx, std::wostream & stream, double value,
                                        int raw) const {
    double v = std::fabs(value);
    if (v >= kFirstRaised) v += kSmallestDifference;
    DigitText text;
    if (raw || getPrecision() == kPrecisionAsNeeded)
        cells::PrintGeneralDigits(text, v);
    else
        cells::PrintFixedDigits(text, v, getPrecision());
    bool const money = m_nType == C_NF_CURRENCY;
    std::wstring digits;
    Widen(digits, text);
    std::size_t const whole = SetPoint(digits, money ? lctx->currencyDeciamalSeparartor()
                                                     : lctx->numberDeciamalSeparartor());
    if (!getCommas()) {
        stream.write(digits.data(), std::streamsize(digits.size()));
        return;
    }
    WriteGrouped(stream, digits, whole,
                 money ? lctx->currencyGroupSeparartor() : lctx->numberGroupSeparartor(),
                 money ? lctx->currencyGroupSize() : lctx->numberGroupSize());
}

void CCNumberFormat::PrintGeneral(cells::LCTX * lctx, std::wostream & stream, double value,
                                  int) const {
    DigitText text;
    cells::PrintGeneralDigits(text, value);
    char * const end = text.text + text.length;
    char * const point = std::find(text.text, end, '.');
    WriteAscii(stream, {text.text, std::size_t(point - text.text)});
    if (point == end) return;
    stream.put(lctx->numberDeciamalSeparartor());
    WriteAscii(stream, {point + 1, std::size_t(end - point - 1)});
}

void CCNumberFormat::PrintScientific(cells::LCTX * lctx, std::wostream & stream, double value,
                                     int) const {
    DigitText text;
    cells::PrintScientificDigits(text, value, getPrecision());
    std::wstring digits;
    Widen(digits, text);
    SetPoint(digits, lctx->numberDeciamalSeparartor());
    stream.write(digits.data(), std::streamsize(digits.size()));
}

void CCNumberFormat::PrintNumber(cells::LCTX * lctx, std::wostream & stream, double value,
                                 int raw) const {
    CString ltString = m_nData ? GetLTStringAt(GetLTString()) : CString();
    PrintNumber(lctx, stream, value, ltString, raw);
}

void CCNumberFormat::PrintNumber(cells::LCTX * lctx, std::wostream & stream, double value,
                                 CString & ltString, int raw) const {
    bool const shown = !raw && !ltString.IsEmpty() && m_nData != 0;
    bool const brackets = value < 0 && getNegBr();
    if (value < 0) WriteText(stream, brackets ? L"(" : lctx->negativeSign());
    if (shown && getLTStringMode()) {
        WriteText(stream, ltString);
        stream.put(L' ');
    }
    PrintGeneralNumber(lctx, stream, value, raw);
    if (shown && !getLTStringMode()) {
        stream.put(L' ');
        WriteText(stream, ltString);
    }
    if (brackets) stream.put(L')');
}

void CCNumberFormat::PrintCurrency(cells::LCTX * lctx, std::wostream & stream, double value,
                                   int raw) const {
    wchar_t const * pattern = kPosCurrencyFormat[lctx->currencyPositiveOrder()];
    if (value < 0) {
        int const order = lctx->currencyNegativeOrder();
        pattern = getNegBr() ? kNegBrCurrencyFormat[order] : kNegNoBrCurrencyFormat[order];
    }
    PrintFormatNumber(lctx, stream, value, pattern, raw);
}

void CCNumberFormat::PrintFormatNumber(cells::LCTX * lctx, std::wostream & stream, double value,
                                       wchar_t const * pattern, int raw) const {
    for (; *pattern; ++pattern) {
        switch (*pattern) {
        case L' ':
        case L'(':
        case L')':
            stream.put(*pattern);
            break;
        case L'#':
            PrintGeneralNumber(lctx, stream, value, raw);
            break;
        case L'$':
            WriteText(stream, lctx->currencyString());
            break;
        case L'-':
            WriteText(stream, lctx->negativeSign());
            break;
        default:
            break;
        }
    }
}

void CCNumberFormat::PrintPercent(cells::LCTX * lctx, std::wostream & stream, double value,
                                  int raw) const {
    bool const brackets = value < 0 && getNegBr();
    if (value < 0) WriteText(stream, brackets ? L"(" : lctx->negativeSign());
    PrintGeneralNumber(lctx, stream, value * 100, raw);
    stream.put(L'%');
    if (brackets) stream.put(L')');
}

void CCNumberFormat::PrintFraction(cells::LCTX * lctx, std::wostream & stream, double value,
                                   int) const {
    bool const brackets = value < 0 && getNegBr();
    if (value < 0) WriteText(stream, brackets ? L"(" : lctx->negativeSign());
    double const whole = std::floor(std::fabs(value));
    if (whole != 0) {
        uchar const options = m_nOptionsA;
        m_nOptionsA = uchar(options & ~kPrecisionField);
        PrintGeneralNumber(lctx, stream, whole, 0);
        m_nOptionsA = options;
        m_nSetMask |= kNumberFormatPrecision; // the one mark that printing leaves on a record
    }
    int numerator = 0, denominator = 1;
    if (SplitFraction(value, getPrecision(), numerator, denominator)) {
        if (whole != 0) stream.put(L' ');
        cells::WriteInteger(stream, numerator);
        stream.put(L'/');
        cells::WriteInteger(stream, denominator);
    } else if (whole == 0) {
        stream.put(L'0');
    }
    if (brackets) stream.put(L')');
}

void CCNumberFormat::PrintBool(cells::LCTX *, std::wostream & stream, double value) const {
    WriteText(stream, cells::LoadString(value != 0 ? cells::kStringTrue : cells::kStringFalse));
}

void CCNumberFormat::PrintHex(cells::LCTX *, std::wostream & stream, double value) const {
    char text[16];
    int const length = std::snprintf(text, sizeof text, "0x%X", unsigned(cells::ToInt32(value)));
    WriteAscii(stream, {text, std::size_t(length)});
}

void CCNumberFormat::PrintOct(cells::LCTX *, std::wostream & stream, double value) const {
    char text[16];
    int const length = std::snprintf(text, sizeof text, "0%o", unsigned(cells::ToInt32(value)));
    WriteAscii(stream, {text, std::size_t(length)});
}

void CCNumberFormat::PrintBin(cells::LCTX *, std::wostream & stream, double value) const {
    unsigned const bits = unsigned(cells::ToInt32(value));
    for (int bit = 31; bit >= 0; --bit) stream.put(bits >> bit & 1 ? L'1' : L'0');
}

void CCNumberFormat::PrintTime(cells::LCTX * lctx, std::wostream & stream, double value) const {
    int hour, minute, second;
    DoubleToTime(value, hour, minute, second);
    PrintTime(lctx, stream, hour, minute, second);
}

void CCNumberFormat::PrintTime(cells::LCTX * lctx, std::wostream & stream, int hour, int minute,
                               int second) const {
    bool const halfDays = !getTimeRange();
    WriteTwoDigits(stream, halfDays && hour > 12 ? hour - 12 : hour);
    stream.put(lctx->timeSeparator());
    WriteTwoDigits(stream, minute);
    if (getTimeSeconds()) {
        stream.put(lctx->timeSeparator());
        WriteTwoDigits(stream, second);
    }
    if (!halfDays) return;
    stream.put(L' ');
    WriteText(stream, hour < 12 ? lctx->timeAMString() : lctx->timePMString());
}

void CCNumberFormat::PrintDate(cells::LCTX * lctx, std::wostream & stream, double value) const {
    int day, month, year;
    DoubleToDate(value, day, month, year);
    PrintDate(lctx, stream, day, month, year);
    if (!getTime()) return;
    stream.put(L' ');
    PrintTime(lctx, stream, value);
}

void CCNumberFormat::PrintDate(cells::LCTX * lctx, std::wostream & stream, int day, int month,
                               int year) const {
    g_eastAsianMarks = WantsEastAsianMarks(lctx) && getMonthType() == 0;
    wchar_t const separator = m_nData ? wchar_t(m_nData) : lctx->dateSeparator();
    bool const blankBetween =
        separator != lctx->dateSeparator() && separator == lctx->listSeparartor();
    auto const writeYearSeparator = [&] {
        if (g_eastAsianMarks || getYearType() == 1 || separator == 0) return;
        stream.put(separator);
        if (blankBetween) stream.put(L' ');
    };
    auto const writeDaySeparator = [&] {
        if (!g_eastAsianMarks && separator != 0) stream.put(blankBetween ? L' ' : separator);
    };
    auto const writeDay = [&] {
        WriteDayOrMonth(stream, day, lctx->days2() != 0);
        if (g_eastAsianMarks) stream.put(kDayMark);
    };
    if (lctx->dateYearPosition() == 0) {
        PrintYear(lctx, stream, year);
        writeYearSeparator();
    }
    if (getMDOrder()) {
        writeDay();
        writeDaySeparator();
        PrintMonth(lctx, stream, month);
    } else {
        PrintMonth(lctx, stream, month);
        writeDaySeparator();
        writeDay();
    }
    if (lctx->dateYearPosition() != 0) {
        writeYearSeparator();
        PrintYear(lctx, stream, year);
    }
}

void CCNumberFormat::PrintMonth(cells::LCTX * lctx, std::wostream & stream, int month) const {
    switch (getMonthType()) {
    case 0:
        return WriteText(stream, lctx->dateLongMonths(month));
    case 1:
        return WriteText(stream, lctx->dateShortMonths(month));
    case 2:
        return WriteDayOrMonth(stream, month, lctx->months2() != 0);
    default:
        return;
    }
}

void CCNumberFormat::PrintYear(cells::LCTX *, std::wostream & stream, int year) const {
    if (getYearType() == 0)
        cells::WriteInteger(stream, year);
    else if (getYearType() == 2)
        WriteTwoDigits(stream, year);
    else
        return;
    if (g_eastAsianMarks) stream.put(kYearMark);
}
