// What each section of a custom format appends.
#include "format/CCNumberFormat.h"
#include "format/CFormatSection.h"
#include "format/DateSerial.h"
#include "platform/Digits.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <sstream>

using namespace kbt::multilang;

namespace {

void AppendNumber(CString & output, long long number, std::size_t digits = 1) {
    cells::DigitText text;
    cells::PrintInteger(text, number);
    std::size_t const sign = number < 0;
    wchar_t wide[cells::kDigitBuffer];
    std::size_t length = 0;
    if (sign) wide[length++] = L'-';
    for (std::size_t i = text.length; i < digits; ++i) wide[length++] = L'0';
    for (std::size_t i = sign; i < text.length; ++i) wide[length++] = wchar_t(text.text[i]);
    output += CString(wide, int(length));
}

constexpr double kLargestCount = 9e15; // hours beyond it are counted no further

// A text of the locale that has one item for each day, Monday first: the name of the date in the
// real calendar. A 29 February that is none there has the name of the day after it.
wchar_t const * DayName(CFormatState const & state, unsigned int first) {
    namespace chrono = std::chrono;
    chrono::month const month{unsigned(state.month)};
    if (!month.ok()) return L""; // beyond every calendar
    constexpr int kEra = 400;    // years after which the calendar and its weekdays come again
    chrono::year const year{2000 + state.year % kEra};
    chrono::sys_days const firstOfMonth{year / month / 1};
    chrono::weekday const weekDay{firstOfMonth + chrono::days(state.day - 1)};
    return state.lctx->info(first + weekDay.iso_encoding() - 1);
}

// The best rational for x > 0 with a denominator of at most `limit`: the last convergent of its
// continued fraction, or the semi-convergent after it where that is closer.
// Source: A. Y. Khinchin, "Continued Fractions", chapter 1.
void Approximate(double x, int limit, int & numerator, int & denominator) {
    constexpr int kMostTerms = 64;
    constexpr double kNoRemainder = 1e-15;
    double h0 = 0, h1 = 1, k0 = 1, k1 = 0; // two convergents, the older first
    double rest = x;
    for (int i = 0; i < kMostTerms; ++i) {
        double const a = std::floor(rest);
        double const h2 = a * h1 + h0, k2 = a * k1 + k0;
        if (!(k2 <= limit)) {
            double const steps = k1 > 0 ? std::floor((limit - k0) / k1) : 0;
            double const hs = steps * h1 + h0, ks = steps * k1 + k0;
            if (ks > 0 && std::fabs(hs / ks - x) < std::fabs(h1 / k1 - x)) h1 = hs, k1 = ks;
            break;
        }
        h0 = h1, h1 = h2, k0 = k1, k1 = k2;
        rest -= a;
        if (!(rest > kNoRemainder)) break;
        rest = 1 / rest;
    }
    numerator = cells::ToInt32(h1);
    denominator = std::max(cells::ToInt32(k1), 1);
}

} // namespace

std::wstring_view CCountSection::TakeInteger(CFormatState & state) const {
    std::size_t count = std::size_t(m_nCount);
    std::size_t const placeholders = std::size_t(state.integerPlaceholders);
    if (state.atFirstDigit && state.integerDigits.size() > placeholders)
        count += state.integerDigits.size() - placeholders;
    state.atFirstDigit = false;
    std::size_t const first = std::min(state.integerUsed, state.integerDigits.size());
    state.integerUsed += count;
    return std::wstring_view(state.integerDigits).substr(first, count);
}

// Leading zeros stay away, and so do the group separators among them.
void CCountSection::PrintSignificant(CFormatState & state, bool blanks) const {
    std::wstring_view digits = TakeInteger(state);
    while (!state.seenSignificant && !digits.empty()) {
        wchar_t const unit = digits.front();
        if (unit >= L'1' && unit <= L'9') {
            state.seenSignificant = true;
        } else {
            if (blanks) state.output += L' ';
            digits.remove_prefix(1);
        }
    }
    state.output += CString(digits);
}

void CLInSignificantDigitSection::Print(CFormatState & state) {
    state.output += CString(TakeInteger(state));
}

std::wstring_view CCountSection::TakeFraction(CFormatState & state) const {
    std::size_t const first = std::min(state.fractionUsed, state.fractionDigits.size());
    state.fractionUsed += std::size_t(m_nCount);
    return std::wstring_view(state.fractionDigits).substr(first, std::size_t(m_nCount));
}

void CCountSection::PrintFraction(CFormatState & state, wchar_t filler) const {
    std::wstring_view const digits = TakeFraction(state);
    state.output += CString(digits);
    if (filler) state.output += CString(filler, m_nCount - int(digits.size()));
}

void CCommaSection::Print(CFormatState & state) {
    state.output += state.lctx->info(LOCALE_SDECIMAL);
    state.atFirstDigit = true;
    state.seenSignificant = false;
}

void CYearSection::Print(CFormatState & state) {
    if (m_nCount == 2)
        AppendNumber(state.output, std::abs(state.year % 100), 2);
    else
        AppendNumber(state.output, state.year);
}

void CMonthSection::Print(CFormatState & state) {
    if (m_nCount == 3)
        state.output += state.lctx->dateShortMonths(state.month);
    else if (m_nCount == 4 || m_nCount == 5)
        state.output += state.lctx->dateLongMonths(state.month);
    else
        AppendNumber(state.output, state.month, m_nCount == 1 ? 1 : 2);
}

void CDaySection::Print(CFormatState & state) {
    if (m_nCount == 3)
        state.output += DayName(state, LOCALE_SABBREVDAYNAME1);
    else if (m_nCount == 4)
        state.output += DayName(state, LOCALE_SDAYNAME1);
    else
        AppendNumber(state.output, state.day, m_nCount == 1 ? 1 : 2);
}

void CTimeSection::PrintNumber(CFormatState & state, long long number) const {
    AppendNumber(state.output, number, m_nCount == 1 ? 1 : 2);
}

// With a 12-hour clock 13 stays 13: only hours above it lose twelve. Saved formats must go on
// showing what they show.
void CHourSection::Print(CFormatState & state) {
    long long hour = state.hour;
    if (m_bElapsed) {
        double const days = std::min(std::floor(std::fabs(state.value)), kLargestCount);
        hour += static_cast<long long>(days) * 24;
    }
    if (m_bTwelveHour) {
        if (hour > 13) hour -= 12;
        if (hour == 0) hour = 12;
    }
    PrintNumber(state, hour);
}

void CMinutesSection::Print(CFormatState & state) {
    PrintNumber(state, m_bElapsed ? state.hour * 60 + state.minute : state.minute);
}

// Elapsed seconds are a product and no sum: saved formats must go on showing what they show.
void CSecondsSection::Print(CFormatState & state) {
    PrintNumber(state, m_bElapsed ? state.hour * state.second * 60 : state.second);
}

void CAMPMSection::Print(CFormatState & state) { state.output += state.hour < 12 ? L"AM" : L"PM"; }

// Behind an integer digit only the rest of the number counts. The sign is the business of the
// format's other parts.
void CLFractionSection::Print(CFormatState & state) {
    double x = std::fabs(state.value);
    if (state.integerUsed > 0) x -= std::floor(x);
    int numerator = 0;
    if (state.fixedDenominator > 0) {
        double const d = state.fixedDenominator;
        double n = std::trunc(d * x);
        if (std::fabs((n + 1) / d - x) < std::fabs(n / d - x)) ++n;
        numerator = cells::ToInt32(n);
        state.denominator = state.fixedDenominator;
    } else if (state.denominatorLimit > 1) {
        Approximate(x, state.denominatorLimit - 1, numerator, state.denominator);
    }
    AppendNumber(state.output, numerator);
}

void CRFractionSection::Print(CFormatState & state) {
    AppendNumber(state.output, state.denominator);
}

void CHardRFraction::Print(CFormatState & state) { AppendNumber(state.output, m_nDenominator); }

void CGeneralSection::Print(CFormatState & state) {
    std::wostringstream stream;
    CCNumberFormat().PrintGeneral(state.lctx, stream, std::fabs(state.value), 0);
    state.output += stream.str().c_str();
}
