#include "format/CCNumberFormat.h"
#include "format/LTStrings.h"
#include "platform/LocaleInfo.h"
#include "platform/Utf.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <list>
#include <sstream>

namespace {

using Setup = std::function<void(CCNumberFormat &)>;

std::string Print(uchar type, double value, Setup const & setup = {}, int raw = 0,
                  cells::LCTX * lctx = cells::invariant_LCTX()) {
    CCNumberFormat format;
    format.Set(type);
    if (setup) setup(format);
    std::wostringstream stream;
    format.Print(lctx, stream, value, raw);
    return cells::ToUtf8(std::wstring_view(stream.str()));
}

Setup Decimals(int decimals) {
    return [=](CCNumberFormat & format) { format.SetPrecision(decimals); };
}

// A locale of the invariant facts with some items changed; it lives as long as the tests.
cells::LCTX * Locale(std::initializer_list<std::pair<unsigned, wchar_t const *>> changes) {
    struct Kept {
        kbt::multilang::CLocaleInfo info;
        cells::LCTX context;
        explicit Kept(kbt::multilang::LocaleItems const & items)
            : info(L"test", items, nullptr), context(info) {}
    };
    static std::list<Kept> kept;
    kbt::multilang::LocaleItems items;
    for (auto const & [item, text] : changes) items[item] = text;
    return &kept.emplace_back(items).context;
}

} // namespace

TEST(PrintGeneral, GivesFifteenDigits) {
    EXPECT_EQ(Print(C_NF_GENERAL, 1234.5), "1234.5");
    EXPECT_EQ(Print(C_NF_GENERAL, 1.0 / 3), "0.333333333333333");
    EXPECT_EQ(Print(C_NF_GENERAL, 1e20), "1E+20");
    EXPECT_EQ(Print(C_NF_GENERAL, -0.00001), "-1E-05");
    EXPECT_EQ(Print(C_NF_GENERAL, 9e-15), "0");
    EXPECT_EQ(Print(C_NF_GENERAL, -1e-15), "0");
}

TEST(PrintNumber, RoundsWithTheSmallAddition) {
    EXPECT_EQ(Print(C_NF_NUMBER, 1.005, Decimals(2)), "1.01");
    EXPECT_EQ(Print(C_NF_NUMBER, 0.05, Decimals(1)), "0.1");
    EXPECT_EQ(Print(C_NF_NUMBER, 2.5), "2"); // from 2 on the addition is lost in the last bit
    EXPECT_EQ(Print(C_NF_NUMBER, -0.4), "-0");
    EXPECT_EQ(Print(C_NF_NUMBER, 12.5, Decimals(15)), "12.5");
    EXPECT_EQ(Print(C_NF_NUMBER, 12.5, Decimals(1), 1), "12.5");
}

TEST(PrintNumber, GroupsDigitsAndBracketsNegatives) {
    auto const commas = [](CCNumberFormat & f) {
        f.SetCommas(1);
        f.SetPrecision(1);
        f.SetNegBr(1);
    };
    EXPECT_EQ(Print(C_NF_NUMBER, 1234567.75, commas), "1,234,567.8");
    EXPECT_EQ(Print(C_NF_NUMBER, 123, commas), "123.0");
    EXPECT_EQ(Print(C_NF_NUMBER, -1234, commas), "(1,234.0)");
    auto const many = [](CCNumberFormat & f) {
        f.SetCommas(1);
        f.SetPrecision(15);
    };
    EXPECT_EQ(Print(C_NF_NUMBER, 1e20, many), "1E,+20"); // an exponent counts like digits
}

TEST(PrintNumber, GroupSizeZeroMeansNoGroups) {
    cells::LCTX * const l = Locale({{kbt::multilang::LOCALE_SGROUPING, L"0"}});
    EXPECT_EQ(Print(
                  C_NF_NUMBER, 1234567, [](CCNumberFormat & f) { f.SetCommas(1); }, 0, l),
              "1234567");
}

TEST(PrintNumber, ShowsItsStringBeforeOrBehind) {
    int const index = GetLTStringIndex(L"kg");
    ASSERT_GE(index, 0);
    EXPECT_EQ(Print(C_NF_NUMBER, 5, [&](CCNumberFormat & f) { f.SetLTString(2, index); }), "5 kg");
    EXPECT_EQ(Print(C_NF_NUMBER, -5, [&](CCNumberFormat & f) { f.SetLTString(1, index); }),
              "-kg 5");
    EXPECT_EQ(Print(
                  C_NF_NUMBER, 5, [&](CCNumberFormat & f) { f.SetLTString(2, index); }, 1),
              "5");
    EXPECT_EQ(Print(C_NF_NUMBER, 5, [&](CCNumberFormat & f) { f.SetLTString(2, 200); }), "5");
}

TEST(PrintScientific, KeepsItsPoint) {
    EXPECT_EQ(Print(C_NF_SCIENTIFIC, 12345, Decimals(2)), "1.23E+04");
    EXPECT_EQ(Print(C_NF_SCIENTIFIC, -12345, Decimals(0)), "-1.E+04");
}

struct MoneyRow {
    int order;
    char const *positive, *negative, *brackets;
};

TEST(PrintCurrency, FollowsTheOrdersOfTheLocale) {
    MoneyRow const rows[] = {
        {0, "$5.00", "-$5.00", "($5.00)"},    {1, "5.00$", "-$5.00", "($5.00)"},
        {2, "$ 5.00", "$-5.00", "($5.00)"},   {3, "5.00 $", "$5.00-", "($5.00)"},
        {4, nullptr, "-5.00$", "(5.00$)"},    {5, nullptr, "-5.00$", "(5.00$)"},
        {6, nullptr, "5.00-$", "(5.00$)"},    {7, nullptr, "5.00$-", "(5.00$)"},
        {8, nullptr, "-5.00 $", "(5.00$)"},   {9, nullptr, "-$ 5.00", "($ 5.00)"},
        {10, nullptr, "5.00 $-", "($ 5.00)"}, {11, nullptr, "$ 5.00-", "($ 5.00)"},
        {12, nullptr, "$ -5.00", "($ 5.00)"}, {13, nullptr, "5.00- $", "(5.00 $)"},
        {14, nullptr, "-$ 5.00", "(5.00 $)"}, {15, nullptr, "-5.00 $", "(5.00 $)"}};
    for (MoneyRow const & row : rows) {
        std::wstring const order = std::to_wstring(row.order);
        cells::LCTX * const l =
            Locale({{kbt::multilang::LOCALE_ICURRENCY, row.positive ? order.c_str() : L"0"},
                    {kbt::multilang::LOCALE_INEGCURR, order.c_str()}});
        if (row.positive) {
            EXPECT_EQ(Print(C_NF_CURRENCY, 5, Decimals(2), 0, l), row.positive);
        }
        EXPECT_EQ(Print(C_NF_CURRENCY, -5, Decimals(2), 0, l), row.negative) << row.order;
        auto const brackets = [](CCNumberFormat & f) {
            f.SetPrecision(2);
            f.SetNegBr(1);
        };
        EXPECT_EQ(Print(C_NF_CURRENCY, -5, brackets, 0, l), row.brackets) << row.order;
    }
}

TEST(PrintPercent, MultipliesByAHundred) {
    EXPECT_EQ(Print(C_NF_PERCENT, 0.126, Decimals(2)), "12.60%");
    EXPECT_EQ(Print(C_NF_PERCENT, -0.5, [](CCNumberFormat & f) { f.SetNegBr(1); }), "(50%)");
    EXPECT_EQ(Print(C_NF_PERCENT, 5e-15, Decimals(15)), "0%");
}

struct FractionRow {
    double value;
    int kind;
    char const * text;
};

TEST(PrintFraction, SplitsByKind) {
    FractionRow const rows[] = {{0.999, 1, "100/100"}, {2, 0, "2"},        {0, 0, "0"},
                                {1.5, 0, "1 1/2"},     {-0.25, 4, "-2/8"}, {0.5, 1, "50/100"},
                                {0.3333, 0, "1/3"},    {1.5, 9, "1 0/1"}};
    for (FractionRow const & row : rows)
        EXPECT_EQ(Print(C_NF_FRACTION, row.value, Decimals(row.kind)), row.text) << row.value;
}

TEST(PrintFraction, LeavesThePrecisionMarkedWhereItPrintedAWholePart) {
    CCNumberFormat format;
    format.Set(uchar(C_NF_FRACTION));
    std::wostringstream stream;
    format.Print(cells::invariant_LCTX(), stream, 0.5, 0);
    EXPECT_FALSE(format.isPrecision());
    format.Print(cells::invariant_LCTX(), stream, 1.5, 0);
    EXPECT_TRUE(format.isPrecision());
}

struct TimeRow {
    double value;
    int range24, seconds;
    char const * text;
};

TEST(PrintTime, RoundsToTheSecondAndMayReach24) {
    double const minute = 1.0 / 1440, second = 1.0 / 86400;
    TimeRow const rows[] = {{0.5, 0, 0, "12:00 PM"},
                            {30 * minute, 0, 0, "00:30 AM"},
                            {13.0 / 24, 0, 0, "01:00 PM"},
                            {13.0 / 24, 1, 0, "13:00"},
                            {1 - 0.1 * second, 1, 0, "24:00"},
                            {-1.25, 1, 1, "06:00:00"},
                            {45296.4 * second, 1, 1, "12:34:56"}};
    for (TimeRow const & row : rows)
        EXPECT_EQ(Print(C_NF_TIME, row.value,
                        [&](CCNumberFormat & f) {
                            f.SetTimeRange(row.range24);
                            f.SetTimeSeconds(row.seconds);
                        }),
                  row.text);
}

struct DateRow {
    int month, year, dayFirst;
    wchar_t delimiter;
    char const * text;
};

TEST(PrintDate, FollowsItsFields) {
    double const serial = 46085; // 5 March 2026
    DateRow const rows[] = {{2, 0, 0, 0, "3/5/2026"},         {2, 2, 1, L'-', "5-3-26"},
                            {0, 0, 1, L' ', "5 March 2026"},  {1, 0, 0, L'.', "Mar.5.2026"},
                            {0, 0, 0, L',', "March 5, 2026"}, {2, 1, 0, 0, "3/5"},
                            {3, 0, 0, 0, "/5/2026"}};
    for (DateRow const & row : rows)
        EXPECT_EQ(Print(C_NF_DATE, serial,
                        [&](CCNumberFormat & f) {
                            f.SetMonthType(row.month);
                            f.SetYearType(row.year);
                            f.SetMDOrder(row.dayFirst);
                            f.SetDelimiter(row.delimiter);
                        }),
                  row.text);
}

TEST(PrintDate, MayShowTheTime) {
    EXPECT_EQ(Print(C_NF_DATE, 46085.5, [](CCNumberFormat & f) { f.SetTime(1); }),
              "3/5/2026 12:00 PM");
}

TEST(PrintDate, PutsTheYearFirstAndTwoDigitsWhereTheLocaleSaysSo) {
    using namespace kbt::multilang;
    cells::LCTX * const l = Locale({{LOCALE_SSHORTDATE, L"yyyy-MM-dd"},
                                    {LOCALE_SDATE, L"-"},
                                    {LOCALE_IDAYLZERO, L"1"},
                                    {LOCALE_IMONLZERO, L"1"}});
    EXPECT_EQ(Print(C_NF_DATE, 46085, {}, 0, l), "2026-03-05");
}

TEST(PrintDate, EastAsianMarksStayDormant) {
    cells::LCTX * const l = Locale({{kbt::multilang::LOCALE_ILANGUAGE, L"0411"}});
    EXPECT_EQ(Print(
                  C_NF_DATE, 46085, [](CCNumberFormat & f) { f.SetMonthType(0); }, 0, l),
              "March/5/2026");
}

TEST(PrintDate, PartsOutOfRangePrintSomething) {
    CCNumberFormat format;
    format.Set(uchar(C_NF_DATE));
    std::wostringstream stream;
    format.PrintDate(cells::invariant_LCTX(), stream, 0, 0, 0);
    format.SetMonthType(0);
    format.PrintDate(cells::invariant_LCTX(), stream, -7, 13, -5);
    EXPECT_FALSE(stream.str().empty());
}

TEST(PrintOther, BoolHexOctBin) {
    EXPECT_EQ(Print(C_NF_BOOL, 2), "TRUE");
    EXPECT_EQ(Print(C_NF_BOOL, 0), "FALSE");
    EXPECT_EQ(Print(C_NF_HEX, 255), "0xFF");
    EXPECT_EQ(Print(C_NF_HEX, -1), "0xFFFFFFFF");
    EXPECT_EQ(Print(C_NF_HEX, 1e300), "0x80000000");
    EXPECT_EQ(Print(C_NF_OCT, 8), "010");
    EXPECT_EQ(Print(C_NF_BIN, -1), std::string(32, '1'));
    EXPECT_EQ(Print(C_NF_BIN, 5), std::string(29, '0') + "101");
    EXPECT_EQ(Print(99, 5), "");
}

TEST(PrintNumber, WithItsOwnStringSkipsTheZeroing) {
    CCNumberFormat format;
    format.Set(uchar(C_NF_NUMBER));
    format.SetPrecision(15);
    CString none;
    std::wostringstream stream;
    format.Print(cells::invariant_LCTX(), stream, 1e-20, none, 0);
    EXPECT_EQ(stream.str(), L"1E-20");
}
