#include "format/DateSerial.h"
#include "format/LocaleContext.h"
#include "formula/Scanners.h"
#include "platform/Clock.h"
#include "platform/Text.h"

#include <utility>

namespace {

enum MonthType : uchar { kLongName = 0, kShortName = 1, kMonthNumber = 2 };
enum YearType : uchar { kFourDigits = 0, kTwoDigits = 2 };

// The first month, long names before short ones, that the text begins with.
bool TakeMonthName(cells::LCTX * lctx, wchar_t const *& text, int & month, uchar & type) {
    for (int m = 1; m <= 12; ++m) {
        bool const isLong = _StrIIComp(lctx, text, lctx->dateLongMonths(m)) != 0;
        if (!isLong && !_StrIIComp(lctx, text, lctx->dateShortMonths(m))) continue;
        month = m;
        type = isLong ? kLongName : kShortName;
        return true;
    }
    return false;
}

// The parts of a date as they are read.
struct DateParts {
    int number[2] = {0, 0}; // day and month, in the order typed
    int nameAt = -1;        // which of the two is a month name
    int year = 0;
    uchar monthType = kMonthNumber, yearType = kFourDigits;
    wchar_t separator = 0;

    bool TakeDayOrMonth(cells::LCTX * lctx, wchar_t const *& text, int which) {
        if (_EatNDigits(lctx, text, number[which], 2)) return true;
        if (nameAt >= 0 || !TakeMonthName(lctx, text, number[which], monthType)) return false;
        nameAt = which;
        return true;
    }

    // One or two digits get their century; three are no year.
    bool TakeYear(cells::LCTX * lctx, wchar_t const *& text) {
        int const digits = _EatNDigits(lctx, text, year, 4);
        if (digits == 0 || digits == 3) return false;
        yearType = digits < 3 ? kTwoDigits : kFourDigits;
        if (digits < 3) UpdateYear(year);
        return true;
    }

    bool TakeFirstSeparator(cells::LCTX * lctx, wchar_t const *& text) {
        wchar_t const unit = *text;
        bool const known = unit == lctx->dateSeparator() || unit == L'/' || unit == L'.' ||
                           unit == L'-' || unit == L' ' || unit == L'\\';
        if (!unit || !known) return false;
        separator = unit;
        ++text;
        if (unit == L' ') _EatWhite(lctx, text);
        return true;
    }

    // The same separator again; after blanks also the list separator and white space, as in
    // "March 5, 2020", which then is the separator to print.
    bool TakeSecondSeparator(cells::LCTX * lctx, wchar_t const *& text) {
        if (*text == separator) {
            ++text;
            if (separator == L' ') _EatWhite(lctx, text);
            return true;
        }
        if (separator != L' ' || *text != lctx->listSeparartor() || !cells::IsSpace(text[1]))
            return false;
        separator = *text++;
        _EatWhite(lctx, text);
        return true;
    }
};

// Which of the two parts is the day: by the month's name, else by the locale, else as the only
// order that gives a date.
bool IsDayFirst(cells::LCTX * lctx, DateParts const & parts) {
    if (parts.nameAt >= 0) return parts.nameAt == 1;
    bool const natural = lctx->dateOrder() == 0;
    auto const fits = [&](bool dayFirst) {
        return CheckDate(parts.number[dayFirst ? 0 : 1], parts.number[dayFirst ? 1 : 0], parts.year,
                         cells::kLastYear, cells::kFirstYear);
    };
    return fits(natural) || !fits(!natural) ? natural : !natural;
}

// "y m d" in the locale's order of month and day.
bool TakeYearFirst(cells::LCTX * lctx, wchar_t const *& text, DateParts & parts) {
    wchar_t const * at = text;
    if (!parts.TakeYear(lctx, at) || !parts.TakeFirstSeparator(lctx, at)) return false;
    if (!parts.TakeDayOrMonth(lctx, at, 0) || !parts.TakeSecondSeparator(lctx, at)) return false;
    if (!parts.TakeDayOrMonth(lctx, at, 1)) return false;
    text = at;
    return true;
}

bool TakeYearLast(cells::LCTX * lctx, wchar_t const *& text, DateParts & parts) {
    wchar_t const * at = text;
    if (!parts.TakeDayOrMonth(lctx, at, 0) || !parts.TakeFirstSeparator(lctx, at)) return false;
    if (!parts.TakeDayOrMonth(lctx, at, 1)) return false;
    wchar_t const * const second = at;
    if (parts.TakeSecondSeparator(lctx, at)) {
        if (!parts.TakeYear(lctx, at)) return false;
    } else {
        if (parts.separator == L' ') return false;
        at = second;
        parts.year = cells::Now().year;
    }
    text = at;
    return true;
}

// "m d" of the current year, in a locale that puts the year first.
bool TakeWithoutYear(cells::LCTX * lctx, wchar_t const *& text, DateParts & parts) {
    wchar_t const * at = text;
    if (!parts.TakeDayOrMonth(lctx, at, 0) || !parts.TakeFirstSeparator(lctx, at)) return false;
    if (parts.separator == L' ' || !parts.TakeDayOrMonth(lctx, at, 1)) return false;
    parts.year = cells::Now().year;
    text = at;
    return true;
}

void SetTimeOptions(CCNumberFormat & format, int ampm, int hasSeconds) {
    format.SetTimeRange(ampm == kTime24);
    format.SetTimeSeconds(hasSeconds);
}

} // namespace

int _EatDNumber(cells::LCTX * lctx, wchar_t const *& text, int & day, int & month, int & year,
                CCNumberFormat & format) {
    wchar_t const * at = text;
    _EatWhite(lctx, at);
    DateParts parts;
    if (lctx->dateYearPosition() == 0) {
        if (!TakeYearFirst(lctx, at, parts)) {
            parts = DateParts();
            if (!TakeWithoutYear(lctx, at, parts)) return 0;
        }
    } else if (!TakeYearLast(lctx, at, parts)) {
        return 0;
    }
    bool const dayFirst = IsDayFirst(lctx, parts);
    day = parts.number[dayFirst ? 0 : 1];
    month = parts.number[dayFirst ? 1 : 0];
    year = parts.year;
    format.Set(uchar(C_NF_DATE));
    format.SetDelimiter(parts.separator);
    format.SetYearType(parts.yearType);
    format.SetMonthType(parts.monthType);
    format.SetMDOrder(dayFirst);
    text = at;
    return 1;
}

int _EatDNumber(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value) {
    wchar_t const * at = text;
    int day, month, year;
    CCNumberFormat format;
    if (!_EatDNumber(lctx, at, day, month, year, format)) return 0;
    if (!CheckDate(day, month, year, cells::kLastYear, cells::kFirstYear)) return 0;
    double serial = DateToDouble(day, month, year);
    double time;
    int ampm, hasSeconds;
    if (_EatTime(lctx, at, time, ampm, hasSeconds)) {
        serial += time;
        format.SetTime(1);
        SetTimeOptions(format, ampm, hasSeconds);
    }
    value.Set(serial, format);
    text = at;
    return 1;
}

int _EatTime(cells::LCTX * lctx, wchar_t const *& text, double & out, int & ampm,
             int & hasSeconds) {
    wchar_t const * at = text;
    int hour, minute, second = 0;
    _EatWhite(lctx, at);
    if (!_EatNDigits(lctx, at, hour, 2) || *at != lctx->timeSeparator()) return 0;
    if (!_EatNDigits(lctx, ++at, minute, 2)) return 0;
    wchar_t const * rest = at;
    _EatWhite(lctx, rest);
    bool seconds = false;
    if (*rest == lctx->timeSeparator() && _EatNDigits(lctx, ++rest, second, 2)) {
        seconds = true;
        at = rest;
    }
    rest = at;
    _EatWhite(lctx, rest);
    int mark = kTime24;
    if (_StrIIComp(lctx, rest, lctx->timeAMString()))
        mark = kTimeAM;
    else if (_StrIIComp(lctx, rest, lctx->timePMString()))
        mark = kTimePM;
    if (mark != kTime24) at = rest;
    if (!CheckTime(hour, minute, second, mark)) return 0;
    out = TimeToDouble(hour, minute, second, mark);
    ampm = mark;
    hasSeconds = seconds;
    text = at;
    return 1;
}

int _EatTNumber(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value) {
    double time;
    int ampm, hasSeconds;
    if (!_EatTime(lctx, text, time, ampm, hasSeconds)) return 0;
    value.Set(time, uchar(C_NF_TIME));
    SetTimeOptions(value.GetFormat(), ampm, hasSeconds);
    return 1;
}
