#include "platform/COleDateTime.h"

#include <chrono>
#include <cmath>

namespace ATL {
namespace {

using std::chrono::days;
using std::chrono::sys_days;

constexpr sys_days kEpoch{std::chrono::year{1899} / 12 / 30};
constexpr int kSecondsPerDay = 86400;
constexpr double kLargest = 2958466; // the day after 31 December 9999

} // namespace

COleDateTime::COleDateTime(int year, int month, int day, int hour, int minute, int second) {
    std::chrono::year_month_day const date{std::chrono::year{year},
                                           std::chrono::month{unsigned(month)},
                                           std::chrono::day{unsigned(day)}};
    bool const good = month > 0 && day > 0 && year >= 100 && year <= 9999 && date.ok() &&
                      hour >= 0 && minute >= 0 && second >= 0;
    if (!good) {
        m_status = invalid;
        return;
    }
    double const whole = double((sys_days{date} - kEpoch).count());
    double const part = (hour * 3600.0 + minute * 60.0 + second) / kSecondsPerDay;
    m_dt = whole >= 0 ? whole + part : whole - part;
}

// Before the epoch the fraction still counts forward from midnight, although the number falls.
COleDateTime::DateParts COleDateTime::Parts() const {
    if (m_status != valid || !(std::fabs(m_dt) < kLargest)) return {-1, -1, -1, -1, -1, -1};
    double day = std::trunc(m_dt);
    long seconds = std::lround(std::fabs(m_dt - day) * kSecondsPerDay);
    if (seconds == kSecondsPerDay) {
        seconds = 0;
        day += 1;
    }
    std::chrono::year_month_day const date{kEpoch + days(long(day))};
    return {int(date.year()),    int(unsigned(date.month())), int(unsigned(date.day())),
            int(seconds / 3600), int(seconds / 60 % 60),      int(seconds % 60)};
}

} // namespace ATL
