// Dates and times as serial numbers.
//
// A date is a double: the whole part counts days from 1 January 1900, which is 0; the fraction is
// the part of the day. Every year divisible by 4 is a leap year here, 1900 and 2100 included, so
// that 29 February 1900 exists. Valid years run from 1900 to 2071.
#pragma once

#include "platform/COleDateTime.h"
#include "platform/Types.h"

namespace cells {

constexpr int kFirstYear = 1900;
constexpr int kLastYear = 2071;
constexpr double kSecond = 1.1574074074074073e-05; // one second as part of a day

} // namespace cells

CVCELLS_API int GetMonthDays(int month, int year); // 0 for a month outside 1 to 12
CVCELLS_API int GetYearDays(int year);
// Gives a year from 0 to 99 its century: the current one, or the one before it for years from 72
// while the current year stands below 72.
CVCELLS_API void UpdateYear(int & year);

CVCELLS_API bool CheckDate(double serial);
CVCELLS_API bool CheckDate(int day, int month, int year, int maxYear, int minYear);
// Mode 1 is the 24-hour clock, any other the 12-hour clock. Minutes and seconds up to 60 pass.
CVCELLS_API bool CheckTime(int hour, int minute, int second, int mode);

CVCELLS_API double DateToDouble(int day, int month, int year);
CVCELLS_API void DoubleToDate(double serial, int & day, int & month, int & year);
// For a mode other than 1 an hour of 12 or more loses 12, and mode 2 then adds 12.
CVCELLS_API double TimeToDouble(int hour, int minute, int second, int mode);
// The fraction of the magnitude, rounded to the nearest second; hour 24 is possible.
CVCELLS_API void DoubleToTime(double serial, int & hour, int & minute, int & second);

// The day of the week in the real calendar, Sunday being 0; -1 for 29 February 1900, which it does
// not have, and for what is no day.
CVCELLS_API int GetWeekDay(double serial);

CVCELLS_API void GetCurrentDate(int & day, int & month, int & year);
CVCELLS_API void GetCurrTime(int & hour, int & minute, int & second);
CVCELLS_API double GetCurrentDateTime();

// The serial of the date's parts, whatever its own day count.
CVCELLS_API double OleDateTimeToDouble(ATL::COleDateTime const & date);
CVCELLS_API ATL::COleDateTime DoubleToOleDateTime(double serial);
