#include "format/DateSerial.h"

#include "platform/Clock.h"
#include "platform/Digits.h"

#include <cmath>
#include <cstdint>

namespace {

constexpr int kMonthDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constexpr int kMonthStarts[12] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
constexpr int kDaysInFourYears = 1461;
constexpr int kCenturyTurn = 72; // two-digit years from here on may lie in the century before

bool IsLeapYear(int year) { return year % 4 == 0; }

int MonthStart(int month, int year) {
    return kMonthStarts[month - 1] + (month >= 3 && IsLeapYear(year) ? 1 : 0);
}

} // namespace

int GetMonthDays(int month, int year) {
    if (month < 1 || month > 12) return 0;
    return month == 2 && IsLeapYear(year) ? 29 : kMonthDays[month - 1];
}

int GetYearDays(int year) { return IsLeapYear(year) ? 366 : 365; }

void UpdateYear(int & year) {
    if (year < 0 || year > 99) return;
    int const current = cells::Now().year;
    int century = current / 100 * 100;
    if (current % 100 < kCenturyTurn && year >= kCenturyTurn) century -= 100;
    year += century;
}

bool CheckDate(double serial) {
    if (!(serial >= 0 && serial < 1e6)) return false;
    int day, month, year;
    DoubleToDate(serial, day, month, year);
    return CheckDate(day, month, year, cells::kLastYear, cells::kFirstYear);
}

bool CheckDate(int day, int month, int year, int maxYear, int minYear) {
    return year >= minYear && year <= maxYear && month >= 1 && month <= 12 && day >= 1 &&
           day <= GetMonthDays(month, year);
}

bool CheckTime(int hour, int minute, int second, int mode) {
    return hour >= 0 && minute >= 0 && second >= 0 && hour <= (mode == 1 ? 24 : 12) &&
           minute <= 60 && second <= 60;
}

double DateToDouble(int day, int month, int year) {
    double days = (double(year) - cells::kFirstYear) * 365;
    if (year > cells::kFirstYear) days += (year - cells::kFirstYear - 1) / 4 + 1;
    if (month >= 1 && month <= 12) days += MonthStart(month, year);
    return days + day - 1;
}

void DoubleToDate(double serial, int & day, int & month, int & year) {
    double const magnitude = std::floor(std::fabs(serial));
    day = month = year = 0;
    if (!(magnitude < 2147483648.0)) return; // beyond every calendar
    std::int64_t v = std::int64_t(magnitude);
    std::int64_t const s = v == 0 ? 0 : 1;
    year = int(4 * ((v - s) / kDaysInFourYears + 475) + (v - s) % kDaysInFourYears / 365);
    v -= (std::int64_t(year) - cells::kFirstYear) * 365;
    if (year > cells::kFirstYear) v -= (year - cells::kFirstYear - 1) / 4 + 1;
    month = 12;
    while (month > 1 && v < MonthStart(month, year)) --month;
    day = int(v - MonthStart(month, year) + 1);
}

double TimeToDouble(int hour, int minute, int second, int mode) {
    if (mode != 1) {
        if (hour >= 12) hour -= 12;
        if (mode == 2) hour += 12;
    }
    return (hour * 3600.0 + minute * 60.0 + second) * cells::kSecond;
}

void DoubleToTime(double serial, int & hour, int & minute, int & second) {
    double const magnitude = std::fabs(serial);
    double const fraction = magnitude - std::floor(magnitude);
    double t = (fraction + 5.787037037037037e-06) / cells::kSecond;
    hour = cells::ToInt32(t / 3600);
    t -= hour * 3600.0;
    minute = cells::ToInt32(t / 60);
    second = cells::ToInt32(t - minute * 60.0);
}

void GetCurrentDate(int & day, int & month, int & year) {
    cells::LocalTime const now = cells::Now();
    day = now.day;
    month = now.month;
    year = now.year;
}

void GetCurrTime(int & hour, int & minute, int & second) {
    cells::LocalTime const now = cells::Now();
    hour = now.hour;
    minute = now.minute;
    second = now.second;
}

double GetCurrentDateTime() {
    cells::LocalTime const now = cells::Now();
    return DateToDouble(now.day, now.month, now.year) +
           (now.hour * 3600.0 + now.minute * 60.0 + now.second) * cells::kSecond;
}

double OleDateTimeToDouble(ATL::COleDateTime const & date) {
    double const day = DateToDouble(date.GetDay(), date.GetMonth(), date.GetYear());
    double const seconds = date.GetHour() * 3600.0 + date.GetMinute() * 60.0 + date.GetSecond();
    return day + seconds * cells::kSecond;
}

ATL::COleDateTime DoubleToOleDateTime(double serial) {
    int day, month, year, hour, minute, second;
    DoubleToDate(serial, day, month, year);
    DoubleToTime(serial, hour, minute, second);
    ATL::COleDateTime date(year, month, day, 0, 0, 0);
    double const seconds = hour * 3600.0 + minute * 60.0 + second;
    date.m_dt += date.m_dt < 0 ? -seconds / 86400 : seconds / 86400;
    return date;
}

int GetWeekDay(double serial) {
    constexpr double kNoSuchDay = 59; // 29 February 1900
    double const day = std::floor(serial);
    if (!(std::fabs(day) < 2147483648.0) || day == kNoSuchDay) return -1;
    // Serial 0 was a Monday, serial 60 a Thursday.
    std::int64_t const shifted = std::int64_t(day) + (day < kNoSuchDay ? 1 : 0);
    return int(((shifted % 7) + 7) % 7);
}
