#include "format/DateSerial.h"
#include "functions/FormulaCases.h"
#include "functions/internal/DateArguments.h"

#include <algorithm>
#include <random>

using cells::host::Sheet;

// The clock of the tests stands at 5 March 2026, 13:45:30, a Thursday.
class Dates : public FormulaCases {};

TEST_P(Dates, Give) { Run(); }

INSTANTIATE_TEST_SUITE_P(
    Making, Dates,
    testing::Values(
        Case{"=DATE(2026,3,5)", "3/5/2026", 7}, Case{"=DATE(26.9,1,1)", "1/1/2026", 7},
        Case{"=DATE(99,1,1)", "1/1/1999", 7}, Case{"=DATE(1900,2,29)", "2/29/1900", 7},
        Case{"=DATE(2072,1,1)", "#VALUE!"}, Case{"=DATE(2026,2,29)", "#VALUE!"},
        Case{"=DATE(-1,1,1)", "#VALUE!"}, Case{"=DATE(2026,13,1)", "#VALUE!"},
        Case{"=DATE(2026,1,B3)", "#VALUE!"}, Case{"=DATE(1E300,1,1)", "#VALUE!"},
        Case{"=DATE(4294969322,3,5)", "#VALUE!"}, Case{"=DATE(2026,4294967299,5)", "#VALUE!"},
        Case{"=DATE(2026,3,4294967301)", "#VALUE!"}, Case{"=DATE(2026,3,-4294967291)", "#VALUE!"},
        Case{"=TIME(13,45)", "01:45 PM", 6}, Case{"=TIME(24,60,60)*1", "1.04236111111111", 0},
        Case{"=TIME(25,0)", "#VALUE!"}, Case{"=TIME(0,61)", "#VALUE!"},
        Case{"=TIME(-1,0)", "#VALUE!"}, Case{"=TIME(0,0,5)=5*1.1574074074074073E-05", "TRUE"},
        Case{"=TIME(1)", "#CALL!"}, Case{"=TODAY()", "3/5/2026", 7},
        Case{"=NOW()", "3/5/2026 01:45 PM", 7}, Case{"=TODAY()*1", "46085", 0},
        Case{"=DATEVALUE(\"3/5/2026\")", "46085", 0}, Case{"=DATEVALUE(40000)", "#VALUE!"},
        Case{"=DATEVALUE(C2)", "18294", 0}, Case{"=DATEVALUE(\"3/5/2026 x\")", "#VALUE!"},
        Case{"=DATEVALUE(B3)", "#VALUE!"}, Case{"=TIMEVALUE(\"13:45\")", "13:45", 6},
        Case{"=TIMEVALUE(0.5)", "#VALUE!"}, Case{"=TIMEVALUE(\"x\")", "#VALUE!"}));

INSTANTIATE_TEST_SUITE_P(
    Parts, Dates,
    testing::Values(
        Case{"=YEAR(46085)", "2026", 0}, Case{"=MONTH(\"3/5/2026\")", "3", 0},
        Case{"=DAY(46085.9)", "5", 0}, Case{"=MONTH(59)", "2", 0}, Case{"=DAY(59)", "29", 0},
        Case{"=YEAR(0)", "1900", 0}, Case{"=YEAR(-1)", "#VALUE!"}, Case{"=YEAR(62822)", "2071", 0},
        Case{"=YEAR(62823)", "#VALUE!"}, Case{"=YEAR(B3)", "#VALUE!"}, Case{"=YEAR(C1)", "#VALUE!"},
        Case{"=YEAR(\"x\")", "#VALUE!"}, Case{"=HOUR(0.75)", "18", 0},
        Case{"=HOUR(0.9999999)", "24", 0}, Case{"=HOUR(\"13:45:30\")", "13", 0},
        Case{"=MINUTE(\"13:45:30\")", "45", 0}, Case{"=SECOND(\"13:45:30\")", "30", 0},
        Case{"=HOUR(-0.25)", "6", 0}, Case{"=HOUR(\"x\")", "#VALUE!"}, Case{"=WEEKDAY(0)", "2", 0},
        Case{"=WEEKDAY(58)", "4", 0}, Case{"=WEEKDAY(59)", "-1", 0}, Case{"=WEEKDAY(60)", "5", 0},
        Case{"=WEEKDAY(46085)", "5", 0}, Case{"=WEEKDAY(-1)", "#VALUE!"},
        Case{"=WEEKNUM(\"1/1/2026\")", "1", 0}, Case{"=WEEKNUM(\"1/3/2026\")", "1", 0},
        Case{"=WEEKNUM(\"1/4/2026\")", "2", 0}, Case{"=WEEKNUM(\"1/4/2026\",2)", "1", 0},
        Case{"=WEEKNUM(\"1/5/2026\",2)", "2", 0}, Case{"=WEEKNUM(\"1/5/2026\",3)", "#VALUE!"},
        Case{"=WEEKNUM(\"12/31/2026\",1)", "53", 0}));

INSTANTIATE_TEST_SUITE_P(
    Arithmetic, Dates,
    testing::Values(
        Case{"=EDATE(\"1/31/2024\",1)", "2/29/2024", 7},
        Case{"=EDATE(\"1/31/2023\",1)", "2/28/2023", 7},
        Case{"=EDATE(\"3/31/2026\",-1.5)", "1/31/2026", 7}, Case{"=EDATE(0,1E9)", "#VALUE!"},
        Case{"=EDATE(0,-1)", "#VALUE!"}, Case{"=EDATE(\"12/5/2026\",1)", "1/5/2027", 7},
        Case{"=EDATE(46085,\"x\")", "#VALUE!"}, Case{"=EOMONTH(\"1/5/2026\",1)", "2/28/2026", 7},
        Case{"=EOMONTH(\"1/5/2026\",0)", "1/31/2026", 7},
        Case{"=EOMONTH(\"12/5/2071\",1)", "#VALUE!"},
        Case{"=DAYS360(\"1/30/2026\",\"1/31/2026\")", "0", 0},
        Case{"=DAYS360(\"1/15/2026\",\"1/31/2026\")", "16", 0},
        Case{"=DAYS360(\"1/15/2026\",\"1/31/2026\",1)", "15", 0},
        Case{"=DAYS360(\"1/31/2026\",\"1/15/2026\")", "-15", 0},
        Case{"=DAYS360(\"2/28/2026\",\"3/31/2026\")", "33", 0},
        Case{"=DAYS360(\"12/15/2026\",\"12/31/2026\")", "16", 0},
        Case{"=DAYS360(\"1/1/2026\",\"1/2/2026\",\"x\")", "#VALUE!"},
        Case{"=YEARFRAC(\"1/1/2026\",\"7/1/2026\")", "50.00%", 3},
        Case{"=YEARFRAC(0,0.5,1)*366", "0.5", 0},
        Case{"=YEARFRAC(\"1/1/2026\",\"1/1/2027\",3)", "100%", 3},
        Case{"=YEARFRAC(\"1/1/2026\",\"1/1/2027\",5)", "#VALUE!"},
        Case{"=YEARFRAC(\"1/1/2026\",\"4/1/2026\",2)", "25.00%", 3},
        Case{"=NETWORKDAYS(\"3/2/2026\",\"3/8/2026\")", "5", 0},
        Case{"=NETWORKDAYS(\"3/2/2026\",\"3/8/2026\",\"3/4/2026\",\"3/4/2026\")", "3", 0},
        Case{"=NETWORKDAYS(\"3/2/2026\",\"3/8/2026\",\"3/7/2026\")", "5", 0},
        Case{"=NETWORKDAYS(\"3/8/2026\",\"3/2/2026\")", "0", 0},
        Case{"=NETWORKDAYS(\"3/2/2026\",\"3/8/2026\",\"x\")", "#VALUE!"},
        Case{"=WORKDAY(\"3/2/2026\",1)", "3/2/2026", 7},
        Case{"=WORKDAY(\"3/6/2026\",2)", "3/9/2026", 7},
        Case{"=WORKDAY(\"3/7/2026\",1)", "3/9/2026", 7},
        Case{"=WORKDAY(\"3/2/2026\",-1)", "3/2/2026", 7},
        Case{"=WORKDAY(\"3/2/2026\",0)", "3/1/2026", 7}, Case{"=WORKDAY(1,0,\"x\")*1", "0", 0},
        Case{"=WORKDAY(1,1,\"x\")", "#VALUE!"},
        Case{"=WORKDAY(\"3/2/2026\",2,\"3/3/2026\")", "3/4/2026", 7},
        Case{"=ISNUMBER(WORKDAY(1,2E9))", "TRUE"}, Case{"=WORKDAY(1,3E9)", "#VALUE!"}));

TEST(Calendar, EveryDayComesBackAndFollowsItsWeek) {
    int day, month, year, weekDay = 1; // serial 0 was a Monday
    for (double serial = 0; serial < 62823; ++serial) {
        DoubleToDate(serial, day, month, year);
        ASSERT_EQ(DateToDouble(day, month, year), serial);
        ASSERT_TRUE(CheckDate(serial));
        if (serial == 59) { // 29 February 1900 is a day of no week
            ASSERT_EQ(GetWeekDay(serial), -1);
            continue;
        }
        ASSERT_EQ(GetWeekDay(serial), weekDay);
        weekDay = (weekDay + 1) % 7;
    }
    EXPECT_FALSE(CheckDate(62823));
    EXPECT_FALSE(CheckDate(1E300));
}

// The walk day by day, as it is told.
TEST(WorkDay, IsTheWalkDayByDay) {
    std::mt19937 random(12);
    Sheet sheet("C");
    for (int round = 0; round < 2000; ++round) {
        int const start = int(random() % 300);
        int const days = int(random() % 200) - 100;
        std::vector<int> holidays;
        std::string arguments;
        for (int i = int(random() % 5); i > 0; --i) {
            holidays.push_back(int(random() % 400));
            arguments += "," + std::to_string(holidays.back());
        }
        double day = start;
        double const direction = days >= 0 ? 1 : -1;
        for (int left = std::abs(days); left > 0; day += direction) {
            int const weekDay = GetWeekDay(day);
            bool const holiday = std::count(holidays.begin(), holidays.end(), int(day)) > 0;
            if (weekDay != 0 && weekDay != 6 && !holiday) --left;
        }
        day -= direction;
        sheet.Enter("A1", "=WORKDAY(" + std::to_string(start) + "," + std::to_string(days) +
                              arguments + ")");
        ASSERT_EQ(sheet.Get("A1").number, day) << sheet.EditText({0, 0});
    }
}
