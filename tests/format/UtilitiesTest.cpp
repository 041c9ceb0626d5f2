#include "context/Context.h"
#include "format/BuiltInFormats.h"
#include "format/DateSerial.h"
#include "format/International.h"
#include "format/LTStrings.h"
#include "format/Numbers.h"
#include "format/TextSearch.h"
#include "platform/LocaleInfo.h"
#include "platform/Services.h"

#include <clocale>
#include <gtest/gtest.h>
#include <vector>

struct SerialRow {
    int day, month, year;
    double serial;
};

TEST(DateSerial, CountsFrom1900WithALeapDayEveryFourthYear) {
    SerialRow const rows[] = {{1, 1, 1900, 0},      {29, 2, 1900, 59}, {1, 3, 1900, 60},
                              {31, 12, 1900, 365},  {1, 1, 1901, 366}, {5, 3, 2026, 46085},
                              {31, 12, 2071, 62822}};
    for (SerialRow const & row : rows) {
        EXPECT_EQ(DateToDouble(row.day, row.month, row.year), row.serial);
        int day, month, year;
        DoubleToDate(row.serial, day, month, year);
        EXPECT_EQ(day, row.day) << row.serial;
        EXPECT_EQ(month, row.month) << row.serial;
        EXPECT_EQ(year, row.year) << row.serial;
    }
}

TEST(DateSerial, EveryDayRoundTrips) {
    for (int serial = 0; serial <= 62822; ++serial) {
        int day, month, year;
        DoubleToDate(serial, day, month, year);
        ASSERT_EQ(DateToDouble(day, month, year), serial);
        ASSERT_TRUE(CheckDate(serial));
    }
    EXPECT_FALSE(CheckDate(62823));
    EXPECT_FALSE(CheckDate(1e300));
}

TEST(DateSerial, MonthsAndYears) {
    EXPECT_EQ(GetMonthDays(2, 2100), 29);
    EXPECT_EQ(GetMonthDays(2, 2026), 28);
    EXPECT_EQ(GetMonthDays(13, 2026), 0);
    EXPECT_EQ(GetYearDays(1900), 366);
    int year = 71;
    UpdateYear(year);
    EXPECT_EQ(year, 2071);
    year = 72;
    UpdateYear(year);
    EXPECT_EQ(year, 1972);
    year = 100;
    UpdateYear(year);
    EXPECT_EQ(year, 100);
}

TEST(DateSerial, TimesMayBeSixtyButNotTwentyFive) {
    EXPECT_FALSE(CheckTime(25, 0, 0, 1));
    EXPECT_TRUE(CheckTime(24, 0, 0, 1));
    EXPECT_TRUE(CheckTime(12, 60, 60, 0));
    EXPECT_FALSE(CheckTime(13, 0, 0, 2));
    EXPECT_FALSE(CheckTime(-1, 0, 0, 1));
}

TEST(DateSerial, TwelveHourTimes) {
    EXPECT_DOUBLE_EQ(TimeToDouble(12, 30, 0, 0), 0.5 / 24);
    EXPECT_DOUBLE_EQ(TimeToDouble(12, 30, 0, 2), 12.5 / 24);
    EXPECT_DOUBLE_EQ(TimeToDouble(1, 0, 0, 2), 13.0 / 24);
    EXPECT_DOUBLE_EQ(TimeToDouble(13, 0, 0, 1), 13.0 / 24);
}

TEST(DateSerial, NowIsThatOfTheClock) {
    int day, month, year, hour, minute, second;
    GetCurrentDate(day, month, year);
    GetCurrTime(hour, minute, second);
    EXPECT_EQ(year * 10000 + month * 100 + day, 20260305);
    EXPECT_EQ(hour * 10000 + minute * 100 + second, 134530);
    EXPECT_NEAR(GetCurrentDateTime(), 46085 + 49530.0 / 86400, 1e-9);
}

TEST(DateSerial, OleDatesGoByTheirParts) {
    ATL::COleDateTime const date(1900, 3, 1, 6, 0, 0);
    EXPECT_DOUBLE_EQ(OleDateTimeToDouble(date), 60.25);
    EXPECT_DOUBLE_EQ(DoubleToOleDateTime(60.25).m_dt, date.m_dt);
    EXPECT_EQ(DoubleToOleDateTime(59).GetStatus(), ATL::COleDateTime::invalid);
    EXPECT_LT(OleDateTimeToDouble(ATL::COleDateTime(2026, 13, 1, 0, 0, 0)), 0);
}

TEST(Fractions, BestFitStopsAtAnExactOne) {
    int n = 0, d = 0;
    EXPECT_EQ(SplitFraction(0.5, 0, n, d), 1);
    EXPECT_EQ(n * 1000 + d, 1002);
    EXPECT_EQ(SplitFraction(2.75, 0, n, d), 1);
    EXPECT_EQ(n * 1000 + d, 3004);
    EXPECT_EQ(SplitFraction(3, 0, n, d), 0);
    EXPECT_EQ(SplitFraction(1e-300, 0, n, d), 0);
    EXPECT_EQ(SplitFraction(0.5, 1, n, d), 1);
    EXPECT_EQ(n * 1000 + d, 50100);
    EXPECT_EQ(SplitFraction(0.001, 5, n, d), 0);
    n = d = 7;
    EXPECT_EQ(SplitFraction(0.5, 6, n, d), 1);
    EXPECT_EQ(n, 7);
}

TEST(Sieve, KeepsTheBitsOfPrimes) {
    uchar bits[4];
    GetSimpleNumbers(bits, 4);
    std::vector<int> set;
    for (int i = 0; i < 32; ++i)
        if (bits[i / 8] >> i % 8 & 1) set.push_back(i);
    EXPECT_EQ(set, (std::vector<int>{0, 1, 2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31}));
    GetSimpleNumbers(bits, 0);
}

TEST(Search, FindsWholeWordsAndFoldsCase) {
    wchar_t const * const text = L"Cat catalog cat";
    EXPECT_EQ(StrStrW(text, L"cat", 1, 0) - text, 4);
    EXPECT_EQ(StrStrW(text, L"cat", 1, 1) - text, 12);
    EXPECT_EQ(StrStrW(text, L"cat", 0, 1) - text, 0);
    EXPECT_EQ(StrStrW(text, L"", 0, 0), text);
    EXPECT_EQ(StrStrW(text, L"dog", 0, 0), nullptr);
    EXPECT_EQ(StrStrW(nullptr, L"a", 0, 0), nullptr);
    EXPECT_EQ(StrFind(L"abc", L"xc"), 2);
    EXPECT_EQ(StrFind(L"abc", L"x"), 3);
    EXPECT_EQ(StrFind(nullptr, L"x"), 0);
}

TEST(Search, ReplacingStopsAtTheRoom) {
    wchar_t buffer[6];
    wchar_t * target = buffer;
    wchar_t const * source = L"aaaa";
    int remaining = 6;
    while (StrRep(target, source, remaining, L"a", L"bc", 1, 0)) {
    }
    EXPECT_STREQ(buffer, L"bcbcb");
}

TEST(Search, BracketsAreCountedNotNested) {
    EXPECT_EQ(MatchBrackets(L""), 1);
    EXPECT_EQ(MatchBrackets(L")("), 1);
    EXPECT_EQ(MatchBrackets(L"(1"), 0);
    EXPECT_EQ(MatchBrackets(L"{(}"), 0);
}

TEST(LTStrings, LoadTheDefaultListOnce) {
    EXPECT_EQ(GetLTStringIndex(L"kg"), 0);
    int const count = GetNumberLTStrings();
    LoadLTStrings();
    EXPECT_EQ(GetNumberLTStrings(), count);
    EXPECT_EQ(AddLTString(L"kg"), count); // adding does not search
    EXPECT_EQ(GetLTStringIndex(L"no such"), -1);
    CStringArray strings;
    GetLTStrings(strings);
    EXPECT_EQ(strings.GetSize(), count + 1);
}

TEST(LTStrings, SkipEmptyAndRepeatedLines) {
    CString text(L"kg\n\nkg\nm");
    SetDefaultLTStrings(text);
    InitLTStrings();
    LoadLTStrings();
    EXPECT_EQ(GetNumberLTStrings(), 2);
    ClearDefaultLTStrings();
    InitLTStrings();
    LoadLTStrings();
    EXPECT_EQ(GetNumberLTStrings(), 10);
}

TEST(International, SettersAndGetters) {
    SetNumberPrecision(5);
    EXPECT_EQ(GetNumberPrecision(), 5);
    SetNegativeSign(L"~");
    EXPECT_STREQ(GetNegativeSign(), L"-");
    SetPositiveSign(L"~");
    EXPECT_STREQ(GetPositiveSign(), L"+");
    SetCurrencyGroupSeparartor(L'!');
    EXPECT_EQ(GetCurrencyGroupSeparartor(), GetNumberGroupSeparartor());
    SetCurrencyDeciamalSeparartor(L'!');
    EXPECT_EQ(GetCurrencyDeciamalSeparartor(), GetNumberDeciamalSeparartor());
    SetCurrencyString(std::wstring(40, L'x').c_str());
    EXPECT_EQ(std::wstring(GetCurrencyString()).size(), 32u);
    SetDateLongMonths(13, L"Smarch");
    EXPECT_EQ(GetDateLongMonths(13), nullptr);
    EXPECT_EQ(GetDateLongMonths(0), nullptr);
    SetDateShortMonths(5, nullptr);
    EXPECT_STREQ(GetDateShortMonths(5), L"May");
    InitInternationalSettings();
    EXPECT_EQ(GetNumberPrecision(), 2);
    EXPECT_STREQ(GetCurrencyString(), L"$");
}

TEST(International, EverySettingGivesBackWhatWasSet) {
    struct Number {
        void (*set)(int);
        int (*get)();
    };
    for (Number const & n : {Number{SetNumberGroupSize, GetNumberGroupSize},
                             {SetNumberPrecision, GetNumberPrecision},
                             {SetCurrencyGroupSize, GetCurrencyGroupSize},
                             {SetCurrencyPrecision, GetCurrencyPrecision},
                             {SetCurrencyPositiveOrder, GetCurrencyPositiveOrder},
                             {SetCurrencyNegativeOrder, GetCurrencyNegativeOrder},
                             {SetDateOrder, GetDateOrder},
                             {SetDateYearSize, GetDateYearSize},
                             {SetTimeRange, GetTimeRange}}) {
        int const before = n.get();
        n.set(before + 7);
        EXPECT_EQ(n.get(), before + 7);
    }
    struct Unit {
        void (*set)(wchar_t);
        wchar_t (*get)();
    };
    for (Unit const & u : {Unit{SetListSeparartor, GetListSeparartor},
                           {SetListSeparartor2, GetListSeparartor2},
                           {SetNumberDeciamalSeparartor, GetNumberDeciamalSeparartor},
                           {SetNumberGroupSeparartor, GetNumberGroupSeparartor},
                           {SetDateSeparator, GetDateSeparator},
                           {SetTimeSeparator, GetTimeSeparator}}) {
        u.set(L'#');
        EXPECT_EQ(u.get(), L'#');
    }
    EXPECT_EQ(GetCurrencyGroupSeparartor(), L'#'); // that of numbers
    EXPECT_EQ(GetCurrencyDeciamalSeparartor(), L'#');
    struct Text {
        void (*set)(wchar_t const *);
        wchar_t const * (*get)();
    };
    for (Text const & t : {Text{SetTimeAMString, GetTimeAMString},
                           {SetTimePMString, GetTimePMString},
                           {SetCurrencyString, GetCurrencyString}}) {
        t.set(L"text");
        EXPECT_STREQ(t.get(), L"text");
    }
    SetDateLongMonths(12, L"Last");
    EXPECT_STREQ(GetDateLongMonths(12), L"Last");
    InitInternationalSettings();
}

TEST(International, DefaultsOfTheInvariantLocale) {
    cells::PlatformServices().localeName = [] { return CString(L"C"); };
    InitInternationalSettings();
    EXPECT_EQ(GetListSeparartor(), L',');
    EXPECT_EQ(GetListSeparartor2(), L';');
    EXPECT_EQ(GetNumberDeciamalSeparartor(), L'.');
    EXPECT_EQ(GetNumberGroupSeparartor(), L',');
    EXPECT_EQ(GetNumberGroupSize(), 3);
    EXPECT_EQ(GetCurrencyGroupSize(), 3);
    EXPECT_EQ(GetCurrencyPrecision(), 2);
    EXPECT_EQ(GetCurrencyPositiveOrder(), 0);
    EXPECT_EQ(GetCurrencyNegativeOrder(), 0);
    EXPECT_EQ(GetDateSeparator(), L'/');
    EXPECT_EQ(GetDateOrder(), 0);
    EXPECT_EQ(GetDateYearSize(), 4);
    EXPECT_EQ(GetTimeSeparator(), L':');
    EXPECT_EQ(GetTimeRange(), 12);
    EXPECT_STREQ(GetTimeAMString(), L"AM");
    EXPECT_STREQ(GetTimePMString(), L"PM");
    EXPECT_EQ(GetDefaultDateFormat(), 0x10);
}

TEST(International, LocaleItemsOutsideTheTableAreEmpty) {
    EXPECT_EQ(getLocaleInfo(14, 1), L".");
    EXPECT_TRUE(getLocaleInfo(0, 1).IsEmpty());
    EXPECT_TRUE(getLocaleInfo(90, 1).IsEmpty());
    EXPECT_TRUE(getLocaleInfo(0, 0).IsEmpty());
}

TEST(International, BuiltInFormats) {
    EXPECT_EQ(getBuiltInNumberFormat(0), L"General");
    EXPECT_EQ(getBuiltInNumberFormat(-1), L"General");
    EXPECT_EQ(getBuiltInNumberFormat(50), L"General");
    EXPECT_EQ(getBuiltInNumberFormat(5), L"$#,##0;($#,##0)");
    EXPECT_EQ(getBuiltInNumberFormat(8), L"$#,##0.00;[Red]($#,##0.00)");
    EXPECT_EQ(getBuiltInNumberFormat(12), L"#\" \"?/?");
    EXPECT_EQ(getBuiltInNumberFormat(14), L"M/d/yyyy");
    EXPECT_EQ(getBuiltInNumberFormat(15), L"d/mmm/yy");
    EXPECT_EQ(getBuiltInNumberFormat(30), L"Unknown");
    EXPECT_EQ(getBuiltInNumberFormat(49), L"[h]:mm:ss");
}

TEST(International, OrdersOfCurrencyThatNobodyKnowsLeaveTheNumberAlone) {
    using namespace kbt::multilang;
    struct Row {
        wchar_t const *positive, *negative, *text;
    } const rows[] = {
        {L"0", L"1", L"$#,##0;-$#,##0"}, {L"3", L"15", L"#,##0 $;(#,##0 $)"},
        {L"4", L"16", L"#,##0;#,##0"},   {L"0", L"31", L"$#,##0;#,##0"},
        {L"7", L"0", L"#,##0;($#,##0)"}, {L"x", L"-1", L"#,##0;#,##0"},
    };
    for (Row const & row : rows) {
        LocaleItems items;
        items[LOCALE_ICURRENCY] = row.positive;
        items[LOCALE_INEGCURR] = row.negative;
        cells::internal::BuildBuiltInFormats(CLocaleInfo(L"xx", items, nullptr));
        EXPECT_EQ(getBuiltInNumberFormat(5), row.text);
    }
    InitInternationalSettings();
}

TEST(International, TheInvariantListSeparatorNeedsNoWarning) {
    std::vector<CString> shown;
    cells::Services & services = cells::PlatformServices();
    services.showMessage = [&](unsigned id, CString const & text) {
        EXPECT_EQ(id, 13043u);
        shown.push_back(text);
    };
    services.localeName = [] { return CString(L"C"); };
    InitInternationalSettings();
    services.showMessage = nullptr;
    EXPECT_TRUE(shown.empty());
}

TEST(Library, TheProcessLocaleIsNeverChanged) {
    std::string const before = std::setlocale(LC_ALL, nullptr);
    CVCellInit();
    EXPECT_EQ(before, std::setlocale(LC_ALL, nullptr));
}

TEST(Library, StartAndStopMayBeRepeated) {
    CVCellExit();
    CVCellExit();
    EXPECT_STREQ(cells::invariant_LCTX()->currencyString(), L"$");
    CVCellInit();
    CVCellInit();
    EXPECT_EQ(GetNumberLTStrings(), 10);
}
