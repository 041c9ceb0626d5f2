// Dates and times. The calendar is the engine's own; days of the week are those of the real one.
#include "context/Context.h"
#include "format/DateSerial.h"
#include "formula/Scanners.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/DateArguments.h"
#include "functions/internal/Families.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace cells::internal {
namespace {

constexpr double kNoSuchDay = 59; // 29 February 1900: no day of any week

void SetDate(CCCellValue & result, double serial) { result.Set(serial, uchar(C_NF_DATE)); }

bool IsWeekend(double serial) {
    int const weekDay = GetWeekDay(serial);
    return weekDay == 0 || weekDay == 6;
}

// Parts of a date or a time

enum class Part { kYear, kMonth, kDay, kHour, kMinute, kSecond };

template <Part Which>
void EvalDatePart(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    double date;
    if (!GetDate(ctx, result, date, args, current)) return;
    int day, month, year;
    DoubleToDate(date, day, month, year);
    int const part = Which == Part::kYear ? year : Which == Part::kMonth ? month : day;
    SetNumber(result, double(part));
}

template <Part Which>
void EvalTimePart(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    double time;
    EvalArg(ctx, result, args, current);
    if (!ToTimeArg(ctx, result, time) || !std::isfinite(time)) return result.Set(errValue);
    int hour, minute, second;
    DoubleToTime(time, hour, minute, second);
    int const part = Which == Part::kHour ? hour : Which == Part::kMinute ? minute : second;
    SetNumber(result, double(part));
}

// Making dates and times

void EvalDate(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    double x[3];
    if (!GetNumbers(ctx, result, x, 3, args, current)) return result.Set(errValue);
    for (double part : x)
        if (!(std::fabs(part) < 2147483648.0)) return result.Set(errValue);
    int year = int(x[0]);
    int const month = int(x[1]), day = int(x[2]);
    UpdateYear(year);
    if (!CheckDate(day, month, year, kLastYear, kFirstYear)) return result.Set(errValue);
    SetDate(result, DateToDouble(day, month, year));
}

void EvalTime(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    double x[3] = {0, 0, 0};
    int const count = FormulaListHasItems(args, 3) ? 3 : 2;
    if (!GetNumbers(ctx, result, x, count, args, current)) return result.Set(errValue);
    for (double & part : x) part = std::trunc(part);
    bool const inside = x[0] >= 0 && x[1] >= 0 && x[2] >= 0 && x[0] < 25 && x[1] < 61 && x[2] < 61;
    if (!inside) return result.Set(errValue);
    result.Set((x[0] * 3600 + x[1] * 60 + x[2]) * kSecond, uchar(C_NF_TIME));
}

// A number counts only where it is shown as a date.
void EvalDateValue(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                   CCRef const * current) {
    EvalArg(ctx, result, args, current);
    double date;
    bool const taken = result.IsNumber() ? result.GetFormat().GetType() == C_NF_DATE
                                         : result.IsText() && ToDateArg(ctx, result, date);
    if (!taken) return result.Set(errValue);
    if (result.IsNumber()) date = result.GetNumber();
    SetNumber(result, date);
}

void EvalTimeValue(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                   CCRef const * current) {
    EvalArg(ctx, result, args, current);
    if (!result.IsText()) return result.Set(errValue);
    CString const text = result.GetTextString();
    wchar_t const * at = text;
    CCCellValue time;
    if (!_EatTNumber(ctx->lctx(), at, time) || !_IsEmpty(ctx->lctx(), at))
        return result.Set(errValue);
    result.Set(time);
}

void EvalToday(CTX *, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    int day, month, year;
    GetCurrentDate(day, month, year);
    SetDate(result, DateToDouble(day, month, year));
}

void EvalNow(CTX *, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    SetDate(result, GetCurrentDateTime());
    result.GetFormat().SetTime(1);
    result.GetFormat().SetTimeRange(invariant_LCTX()->timeRange() == 24);
}

// Months

template <bool ToEnd>
void EvalMonthsAway(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                    CCRef const * current) {
    double date, months;
    if (!GetDate(ctx, result, date, args, current)) return;
    if (!GetNumbers(ctx, result, &months, 1, args->next, current)) return result.Set(errValue);
    if (!AddMonths(std::floor(date), months, date)) return result.Set(errValue);
    if (ToEnd) {
        int day, month, year;
        DoubleToDate(date, day, month, year);
        date = DateToDouble(GetMonthDays(month, year), month, year);
    }
    SetDate(result, date);
}

// Weeks

void EvalWeekDay(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    double date;
    if (!GetDate(ctx, result, date, args, current)) return;
    int const weekDay = GetWeekDay(date);
    SetNumber(result, weekDay < 0 ? -1.0 : weekDay + 1.0);
}

// From 1 January on, every Saturday or Sunday before the date begins a new week.
void EvalWeekNum(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    double date, type = 1;
    if (!GetDate(ctx, result, date, args, current)) return;
    if (args->next && !GetNumbers(ctx, result, &type, 1, args->next, current))
        return result.Set(errValue);
    if (!(type >= 1 && type < 3)) return result.Set(errValue);
    int const counted = type < 2 ? 6 : 0;
    int day, month, year;
    DoubleToDate(date, day, month, year);
    double week = 1;
    for (double at = DateToDouble(1, 1, year); at < date; ++at) week += GetWeekDay(at) == counted;
    SetNumber(result, week);
}

// The holidays of all further arguments; a value that is no date is error 3.
Status CollectHolidays(CTX * ctx, CCFormulaList const * args, CCRef const * current,
                       std::vector<double> & holidays) {
    return TryEachValue(ctx, args, current, [&](CCCellValue const & value) {
        double date;
        if (!ToDateArg(ctx, value, date)) return Status::kBadValue;
        holidays.push_back(date);
        return Status::kDone;
    });
}

// A holiday that is listed twice counts twice.
void EvalNetWorkDays(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                     CCRef const * current) {
    double start, end;
    if (!GetDate(ctx, result, start, args, current)) return;
    if (!GetDate(ctx, result, end, args->next, current)) return;
    start = std::floor(start);
    end = std::floor(end);
    auto const isWorkDay = [](double day) { return GetWeekDay(day) > 0 && !IsWeekend(day); };
    std::vector<double> holidays;
    Status const status = CollectHolidays(ctx, args->next->next, current, holidays);
    double count = 0;
    for (double holiday : holidays)
        count -= holiday >= start && holiday <= end && isWorkDay(holiday);
    for (double day = start; day <= end; ++day) count += isWorkDay(day);
    SetStatusResult(ctx, status, result, std::max(count, 0.0), C_NF_GENERAL);
}

// Days of work from a day on, in either direction. Whole weeks without a holiday are passed at
// once.
class WorkDays {
public:
    explicit WorkDays(std::vector<double> holidays) : m_Special(std::move(holidays)) {
        m_Special.push_back(kNoSuchDay);
        std::sort(m_Special.begin(), m_Special.end());
    }

    // The day after the last one counted.
    double Walk(double day, double count, double direction) const {
        while (count > 0) {
            double const weeks = FreeWeeks(day, count, direction);
            if (weeks > 0) {
                day += direction * 7 * weeks;
                count -= 5 * weeks;
                continue;
            }
            if (IsWorkDay(day)) --count;
            day += direction;
        }
        return day;
    }

private:
    bool IsWorkDay(double day) const {
        constexpr double kSmallestDifference = 2.220446049250313e-16;
        if (IsWeekend(day)) return false;
        return day == kNoSuchDay ? !IsHoliday(day, kSmallestDifference, 1)
                                 : !IsHoliday(day, kSmallestDifference, 0);
    }
    // Whether more than `besides` special days are this one.
    bool IsHoliday(double day, double difference, int besides) const {
        auto at = std::lower_bound(m_Special.begin(), m_Special.end(), day - difference);
        for (; at != m_Special.end() && *at <= day + difference; ++at)
            if (besides-- == 0) return true;
        return false;
    }
    // How many whole weeks lie before the next special day, of which none is the last.
    double FreeWeeks(double day, double count, double direction) const {
        double distance = 1e9;
        if (direction > 0) {
            auto const next = std::lower_bound(m_Special.begin(), m_Special.end(), day - 1);
            if (next != m_Special.end()) distance = *next - day;
        } else {
            auto const next = std::upper_bound(m_Special.begin(), m_Special.end(), day + 1);
            if (next != m_Special.begin()) distance = day - *std::prev(next);
        }
        double const weeks = std::min(std::floor((distance - 1) / 7), std::floor((count - 1) / 5));
        return std::max(weeks, 0.0);
    }

    std::vector<double> m_Special; // holidays, and the day of no week, in order
};

// The count begins on the start day itself, and at its end the walk steps back once: one working
// day from a Monday is that Monday, and none is the day before.
void EvalWorkDay(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    double start, days;
    if (!GetDate(ctx, result, start, args, current)) return;
    if (!GetNumbers(ctx, result, &days, 1, args->next, current) ||
        !(std::fabs(days) < 2147483648.0))
        return result.Set(errValue);
    start = std::floor(start);
    days = std::floor(days);
    double const direction = days >= 0 ? 1 : -1;
    std::vector<double> holidays;
    if (days != 0) {
        Status const status = CollectHolidays(ctx, args->next->next, current, holidays);
        if (status != Status::kDone) return SetStatusResult(ctx, status, result, 0, C_NF_GENERAL);
    }
    double const day = WorkDays(std::move(holidays)).Walk(start, std::fabs(days), direction);
    SetDate(result, day - direction);
}

// Day counts

void EvalDays360(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    double start, end, european = 0;
    if (!GetDate(ctx, result, start, args, current)) return;
    if (!GetDate(ctx, result, end, args->next, current)) return;
    CCFormulaList const * const third = args->next->next;
    if (third && !GetNumbers(ctx, result, &european, 1, third, current))
        return result.Set(errValue);
    SetNumber(result, DayCount(european != 0 ? 4 : 0, start, end));
}

void EvalYearFrac(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    double start, end;
    int basis;
    if (!GetDate(ctx, result, start, args, current)) return;
    if (!GetDate(ctx, result, end, args->next, current)) return;
    if (!GetBasis(ctx, result, basis, args->next->next, current)) return result.Set(errValue);
    SetStatusResult(ctx, Status::kDone, result,
                    DayCount(basis, start, end) / YearDays(basis, start), C_NF_PERCENT);
}

constexpr FunctionRow kRows[] = {
    {13175, L"DATE", L"year; month; day", "nnn", L"Date of a year, month and day.",
     L"DATE(2026,3,5)", L"3/5/2026", Singles<3>, EvalDate},
    {13176, L"DATEVALUE", L"text", "t", L"Serial number of a date text.",
     L"DATEVALUE(\"3/5/2026\")", L"46085", Singles<1>, EvalDateValue},
    {13177, L"DAY", L"date", "d", L"Day of the month.", L"DAY(46085)", L"5", Singles<1>,
     EvalDatePart<Part::kDay>},
    {13178, L"DAYS360", L"start; end; European", "dd[l]",
     L"Days between two dates in a year of 360 days.", L"DAYS360(\"1/15/2026\",\"1/31/2026\")",
     L"16", SinglesBetween<2, 3>, EvalDays360},
    {13179, L"EDATE", L"date; months", "dn", L"Date a number of months away.",
     L"EDATE(\"1/31/2026\",1)", L"2/28/2026", Singles<2>, EvalMonthsAway<false>},
    {13180, L"EOMONTH", L"date; months", "dn", L"Last day of the month a number of months away.",
     L"EOMONTH(\"1/5/2026\",1)", L"2/28/2026", Singles<2>, EvalMonthsAway<true>},
    {13181, L"HOUR", L"time", "d", L"Hour of a time.", L"HOUR(0.75)", L"18", Singles<1>,
     EvalTimePart<Part::kHour>},
    {13182, L"MINUTE", L"time", "d", L"Minute of a time.", L"MINUTE(\"13:45\")", L"45", Singles<1>,
     EvalTimePart<Part::kMinute>},
    {13183, L"MONTH", L"date", "d", L"Month of a date.", L"MONTH(46085)", L"3", Singles<1>,
     EvalDatePart<Part::kMonth>},
    {13184, L"NETWORKDAYS", L"start; end; holiday...", "dd[r]", L"Working days from start to end.",
     L"NETWORKDAYS(\"3/2/2026\",\"3/8/2026\")", L"5", FirstTwoSingle<2>, EvalNetWorkDays},
    {13185, L"NOW", L"", "", L"Present date and time.", Exactly<0>, EvalNow},
    {13186, L"SECOND", L"time", "d", L"Second of a time.", L"SECOND(\"13:45:30\")", L"30",
     Singles<1>, EvalTimePart<Part::kSecond>},
    {13187, L"TIME", L"hour; minute; second", "nn[n]", L"Time of an hour, minute and second.",
     L"TIME(13,45)", L"01:45 PM", SinglesBetween<2, 3>, EvalTime},
    {13188, L"TIMEVALUE", L"text", "t", L"Time that a text stands for.", L"TIMEVALUE(\"13:45\")",
     L"13:45", Singles<1>, EvalTimeValue},
    {13189, L"TODAY", L"", "", L"Present date.", Exactly<0>, EvalToday},
    {13190, L"WEEKDAY", L"date", "d", L"Day of the week, Sunday being 1.", L"WEEKDAY(46085)", L"5",
     Singles<1>, EvalWeekDay},
    {13191, L"WEEKNUM", L"date; first day", "d[n]",
     L"Week of the year, counted from Saturdays (1) or Sundays (2).", L"WEEKNUM(\"1/4/2026\",1)",
     L"2", SinglesBetween<1, 2>, EvalWeekNum},
    {13192, L"WORKDAY", L"start; days; holiday...", "dn[r]",
     L"Working day that a count beginning on the start day ends on.", L"WORKDAY(\"3/6/2026\",2)",
     L"3/9/2026", FirstTwoSingle<2>, EvalWorkDay},
    {13193, L"YEAR", L"date", "d", L"Year of a date.", L"YEAR(46085)", L"2026", Singles<1>,
     EvalDatePart<Part::kYear>},
    {13194, L"YEARFRAC", L"start; end; basis", "dd[n]", L"Part of a year between two dates.",
     L"YEARFRAC(\"1/1/2026\",\"7/1/2026\")", L"50.00%", SinglesBetween<2, 3>, EvalYearFrac},
};

} // namespace

FunctionFamily DatesAndTimes() { return MakeFamily(5, kRows); }

} // namespace cells::internal
