// How numbers look in real locales, and that what is shown can be typed.
#include "format/CCNumberFormat.h"
#include "format/LocaleContext.h"
#include "host/Sheet.h"
#include "platform/LocaleInfo.h"
#include "platform/Utf.h"

#include <gtest/gtest.h>
#include <sstream>

#if CVCELLS_WITH_ICU

using cells::host::Kind;
using cells::host::Sheet;

namespace {

#define NBSP "\xC2\xA0"

struct Row {
    char const * tag;
    char const * number;   // 1234567.5 in class 1, with groups and two decimals
    char const * currency; // 1234.5 and -1234.5 with the locale's decimals
    char const * negative;
    char const * date; // 5 March 2026
    char const * time; // 13:45:30 with the locale's clock and seconds
};

// What cannot be typed as it is shown, and why.
bool CanTypeMoney(std::string const & tag) {
    return tag != "de-DE"; // "1.23" at the beginning is a date, and dates are tried before money
}
bool CanTypeNamedMonths(std::string const & tag) {
    return tag != "ja-JP"; // its names begin with digits, which are read as the month's number
}

Row const kRows[] = {
    {"invariant", "1,234,567.50", "$1,234.50", "-$1,234.50", "3/5/2026", "01:45:30 PM"},
    {"en-US", "1,234,567.50", "$1,234.50", "-$1,234.50", "3/5/2026", "01:45:30 PM"},
    {"en-GB", "1,234,567.50", "\u00A31,234.50", "-\u00A31,234.50", "05/03/2026", "13:45:30"},
    {"de-DE", "1.234.567,50", "1.234,50 \u20AC", "-1.234,50 \u20AC", "05.03.2026", "13:45:30"},
    {"de-CH", "1\u2019234\u2019567.50", "CHF 1\u2019234.50", "CHF-1\u2019234.50", "05.03.2026",
     "13:45:30"},
    {"fr-FR", "1" NBSP "234" NBSP "567,50", "1" NBSP "234,50 \u20AC", "-1" NBSP "234,50 \u20AC",
     "05/03/2026", "13:45:30"},
    {"sv-SE", "1" NBSP "234" NBSP "567,50", "1" NBSP "234,50 kr", "-1" NBSP "234,50 kr",
     "2026-03-05", "13:45:30"},
    {"pl-PL", "1" NBSP "234" NBSP "567,50", "1" NBSP "234,50 z\u0142", "-1" NBSP "234,50 z\u0142",
     "5.03.2026", "13:45:30"},
    {"cs-CZ", "1" NBSP "234" NBSP "567,50", "1" NBSP "234,50 K\u010D", "-1" NBSP "234,50 K\u010D",
     "05.03.2026", "13:45:30"},
    {"ja-JP", "1,234,567.50", "\uFFE51,234", "-\uFFE51,234", "2026/03/05", "13:45:30"},
    {"hi-IN", "1,234,567.50", "\u20B91,234.50", "-\u20B91,234.50", "5/3/2026", "01:45:30 pm"},
    {"ar-EG", "1,234,567.50", "1,234.50 \u062C.\u0645.\u200F", "-1,234.50 \u062C.\u0645.\u200F",
     "5/3/2026", "01:45:30 \u0645"},
    {"pt-BR", "1.234.567,50", "R$ 1.234,50", "-R$ 1.234,50", "05/03/2026", "13:45:30"},
};

void PrintTo(Row const & row, std::ostream * out) { *out << row.tag; }

class LocaleFormats : public testing::TestWithParam<Row> {
protected:
    LocaleFormats()
        : m_Context(kbt::globals::global_environment().locales_cache().find(
              cells::FromUtf8(GetParam().tag))) {}
    CCNumberFormat Format(uchar type) {
        CCNumberFormat format;
        format.SetDefault(&m_Context, type);
        return format;
    }
    std::string Printed(CCNumberFormat const & format, double value) {
        std::wostringstream stream;
        format.Print(&m_Context, stream, value, 0);
        return cells::ToUtf8(std::wstring_view(stream.str()));
    }
    // What a cell holds after the text was typed.
    cells::host::Value Typed(std::string const & text) {
        Sheet sheet(GetParam().tag);
        sheet.Enter("A1", text);
        return sheet.Get("A1");
    }
    void ExpectTyped(std::string const & text, double number, int formatClass) {
        cells::host::Value const value = Typed(text);
        EXPECT_EQ(value.kind, Kind::kNumber) << text;
        EXPECT_DOUBLE_EQ(value.number, number) << text;
        EXPECT_EQ(value.formatClass, formatClass) << text;
    }
    cells::LCTX m_Context;
};

} // namespace

TEST_P(LocaleFormats, NumbersAreShownAndTyped) {
    CCNumberFormat format = Format(C_NF_NUMBER);
    format.SetPrecision(2);
    format.SetCommas(1);
    std::string const shown = Printed(format, 1234567.5);
    EXPECT_EQ(shown, GetParam().number);
    ExpectTyped(shown, 1234567.5, C_NF_GENERAL);
    ExpectTyped(Printed(format, -1234567.5), -1234567.5, C_NF_GENERAL);
}

TEST_P(LocaleFormats, MoneyIsShownAndTyped) {
    CCNumberFormat format = Format(C_NF_CURRENCY);
    format.SetCommas(1);
    double const amount = m_Context.currencyPrecision() ? 1234.5 : 1234;
    EXPECT_EQ(Printed(format, amount), GetParam().currency);
    EXPECT_EQ(Printed(format, -amount), GetParam().negative);
    if (!CanTypeMoney(GetParam().tag)) {
        EXPECT_EQ(Typed(Printed(format, amount)).kind, Kind::kText);
        format.SetCommas(0);
    }
    ExpectTyped(Printed(format, amount), amount, C_NF_CURRENCY);
    ExpectTyped(Printed(format, -amount), -amount, C_NF_CURRENCY);
}

TEST_P(LocaleFormats, DatesAreShownAndTyped) {
    EXPECT_EQ(Printed(Format(C_NF_DATE), 46085), GetParam().date);
    ExpectTyped(GetParam().date, 46085, C_NF_DATE);
    CCNumberFormat named = Format(C_NF_DATE);
    named.SetMonthType(0);
    named.SetDelimiter(L' ');
    if (CanTypeNamedMonths(GetParam().tag))
        ExpectTyped(Printed(named, 46085), 46085, C_NF_DATE);
    else
        EXPECT_EQ(Typed(Printed(named, 46085)).kind, Kind::kText);
}

TEST_P(LocaleFormats, TimesAreShownAndTyped) {
    CCNumberFormat format = Format(C_NF_TIME);
    format.SetTimeRange(m_Context.timeRange() == 24);
    format.SetTimeSeconds(1);
    double const value = (13 * 3600 + 45 * 60 + 30) / 86400.0;
    EXPECT_EQ(Printed(format, value), GetParam().time);
    ExpectTyped(GetParam().time, value, C_NF_TIME);
}

TEST_P(LocaleFormats, CustomFormatsUseItsSeparators) {
    CCNumberFormat format;
    format.setCustomFormat(L"#,##0.00");
    EXPECT_EQ(Printed(format, 1234567.5), GetParam().number);
    format.setCustomFormat(L"mmmm");
    EXPECT_EQ(Printed(format, 46085), cells::ToUtf8(CString(m_Context.dateLongMonths(3))));
    format.setCustomFormat(L"dddd"); // a Thursday: the fourth day of a week from Monday
    EXPECT_EQ(Printed(format, 46085), cells::ToUtf8(CString(m_Context.info(45))));
}

INSTANTIATE_TEST_SUITE_P(Real, LocaleFormats, testing::ValuesIn(kRows), [](auto const & row) {
    std::string name = row.param.tag;
    std::erase(name, '-');
    return name;
});

#endif
