// Dates and times as arguments, and the arithmetic of months and day counts.
#pragma once

#include "functions/Arguments.h"

namespace cells::internal {

// A number that is a date of the calendar, or a text that is one as a user types it.
bool ToDateArg(CTX * ctx, CCCellValue const & value, double & date);
// The item as such a date; any failure is error 3 in `result`.
bool GetDate(CTX * ctx, CCCellValue & result, double & date, CCFormulaList const * args,
             CCRef const * current);
// Any number, or a text that is a time.
bool ToTimeArg(CTX * ctx, CCCellValue const & value, double & time);

// A date so many months away: the day is held within the new month. False outside the calendar.
bool AddMonths(double date, double months, double & out);

// Days between two dates. Basis 1, 2 and 3 count them; 0 and 4 take months of 30 days, by the
// American and the European rule, without a rule for February.
double DayCount(int basis, double from, double to);
// Days of the year of a date in that count.
double YearDays(int basis, double date);

// An item as basis from 0 to 4, floored; 0 where there is none. False for anything else.
bool GetBasis(CTX * ctx, CCCellValue & result, int & basis, CCFormulaList const * args,
              CCRef const * current);

} // namespace cells::internal
