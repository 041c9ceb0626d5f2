// ATL::COleDateTime: a moment of the real calendar as days since 30 December 1899.
#pragma once

#include "platform/Types.h"

namespace ATL {

class CVCELLS_API COleDateTime {
public:
    enum DateTimeStatus { valid, invalid, null };

    COleDateTime() = default; // 30 December 1899, midnight
    explicit COleDateTime(double days) : m_dt(days) {}
    COleDateTime(int year, int month, int day, int hour, int minute, int second);

    DateTimeStatus GetStatus() const { return m_status; }
    void SetStatus(DateTimeStatus status) { m_status = status; }

    // The parts, rounded to the second; -1 each for an invalid date.
    int GetYear() const { return Parts().year; }
    int GetMonth() const { return Parts().month; }
    int GetDay() const { return Parts().day; }
    int GetHour() const { return Parts().hour; }
    int GetMinute() const { return Parts().minute; }
    int GetSecond() const { return Parts().second; }

    static constexpr double kBeginOf1900 = 2; // 1 January 1900, midnight

    double m_dt = 0;
    DateTimeStatus m_status = valid;

private:
    struct DateParts {
        int year, month, day, hour, minute, second;
    };
    DateParts Parts() const;
};

} // namespace ATL
