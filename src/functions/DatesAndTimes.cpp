// Dates and times.
#include "functions/Families.h"

namespace cells::internal {
namespace {

constexpr FunctionRow kRows[] = {
    {13175, L"DATE", L"year; month; day", L"Date of a year, month and day."},
    {13176, L"DATEVALUE", L"text", L"Serial number of a date text."},
    {13177, L"DAY", L"date", L"Day of the month."},
    {13178, L"DAYS360", L"start; end; European", L"Days between two dates in a year of 360 days."},
    {13179, L"EDATE", L"date; months", L"Date a number of months away."},
    {13180, L"EOMONTH", L"date; months", L"Last day of the month a number of months away."},
    {13181, L"HOUR", L"time", L"Hour of a time."},
    {13182, L"MINUTE", L"time", L"Minute of a time."},
    {13183, L"MONTH", L"date", L"Month of a date."},
    {13184, L"NETWORKDAYS", L"start; end; holiday...", L"Working days from start to end."},
    {13185, L"NOW", L"", L"Present date and time."},
    {13186, L"SECOND", L"time", L"Second of a time."},
    {13187, L"TIME", L"hour; minute; second", L"Time of an hour, minute and second."},
    {13188, L"TIMEVALUE", L"text", L"Time that a text stands for."},
    {13189, L"TODAY", L"", L"Present date."},
    {13190, L"WEEKDAY", L"date", L"Day of the week, Sunday being 1."},
    {13191, L"WEEKNUM", L"date; first day",
     L"Week of the year, counted from Saturdays (1) or Sundays (2)."},
    {13192, L"WORKDAY", L"start; days; holiday...",
     L"Working day that a count beginning on the start day ends on."},
    {13193, L"YEAR", L"date", L"Year of a date."},
    {13194, L"YEARFRAC", L"start; end; basis", L"Part of a year between two dates."},
};

} // namespace

FunctionFamily DatesAndTimes() { return MakeFamily(5, kRows); }

} // namespace cells::internal
