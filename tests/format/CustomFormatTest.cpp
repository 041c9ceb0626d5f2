#include "context/Context.h"
#include "format/CCNumberFormat.h"
#include "format/CExcelNumberFormat.h"
#include "format/CFormatSection.h"
#include "format/DateSerial.h"
#include "format/FormatTables.h"
#include "format/International.h"
#include "format/LTStrings.h"
#include "platform/Services.h"
#include "platform/Utf.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <rapidcheck.h>
#include <sstream>

namespace {

CCNumberFormat Custom(wchar_t const * text) {
    CCNumberFormat format;
    format.setCustomFormat(text);
    return format;
}

std::string Printed(CCNumberFormat const & format, double value,
                    cells::LCTX * lctx = cells::invariant_LCTX()) {
    std::wostringstream stream;
    format.Print(lctx, stream, value, 0);
    return cells::ToUtf8(std::wstring_view(stream.str()));
}

struct Case {
    wchar_t const * format;
    double value;
    char const * printed;
};

void PrintTo(Case const & row, std::ostream * out) {
    *out << cells::ToUtf8(CString(row.format)) << " of " << row.value;
}

class CustomFormat : public testing::TestWithParam<Case> {};

double At(int hour, int minute, int second) {
    return cells::kSecond * (hour * 3600 + minute * 60 + second);
}
double const kDay = 46085; // 5 March 2026, a Thursday

} // namespace

TEST_P(CustomFormat, Prints) {
    EXPECT_EQ(Printed(Custom(GetParam().format), GetParam().value), GetParam().printed);
}

INSTANTIATE_TEST_SUITE_P(
    Digits, CustomFormat,
    testing::Values(
        Case{L"0", 0.5, "1"}, Case{L"0", 2.5, "3"}, Case{L"0", 1.4, "1"}, Case{L"0", 0, "0"},
        Case{L"000", 7, "007"}, Case{L"#", 0, ""}, Case{L"#", 12, "12"}, Case{L"?\?\?", 7, "  7"},
        Case{L"0#", 5, "05"}, Case{L"0##", 5, "05"}, Case{L"0", 1e20, "100000000000000000000"},
        Case{L"0.00", 1.5, "1.50"}, Case{L"0.00", 1.999, "2.00"}, Case{L"0.00", 1.005, "1.00"},
        Case{L"0.00", 0, "0.00"}, Case{L"0.00", -1.5, "-1.50"}, Case{L"0.0", 1.96, "2.0"},
        Case{L"0.0", 1.04, "1.0"}, Case{L"0.0", 2.6, "2.6"}, Case{L"#.###", 1.5, "1.50"},
        Case{L"#.##", 0.5, ".5"}, Case{L".00", 0.5, ".50"}, Case{L"0.", 5, "5."},
        Case{L"0.0#", 1.5, "1.5"}, Case{L"0.0?", 1.5, "1.5 "},
        Case{L"0.00E+00", 12345, "12345.00E+00"}, Case{L"10", 5, "15"}, Case{L"0", 1e-15, "0"}));

INSTANTIATE_TEST_SUITE_P(
    Groups, CustomFormat,
    testing::Values(Case{L"#,##0", 1234567, "1,234,567"}, Case{L"#,##0", 999, "999"},
                    Case{L"#,##0", 999.5, "1,000"}, Case{L"#,##0", 12, "12"},
                    Case{L"#,##0", -1234, "-1,234"}, Case{L"#,##0", 0, "0"}, Case{L"#,###", 0, ""},
                    Case{L"#,##0.00", 1234.5, "1,234.50"}, Case{L"0,", 1234, "1,234"},
                    Case{L"000,000", 1234, "001,234"}, Case{L"#,###,##0", 1234, "1,234"},
                    Case{L"0,000", 5, "0005"}, Case{L"?,??0", 1234, "1,234"}));

INSTANTIATE_TEST_SUITE_P(
    PartsAndText, CustomFormat,
    testing::Values(Case{L"0%", 0.126, "13%"}, Case{L"0.00%", 0.1234, "12.34%"},
                    Case{L"0%", -0.05, "-5%"}, Case{L"0;(0)", -5, "(5)"}, Case{L"0;(0)", 0, "0"},
                    Case{L"0;-0;zero", 0, "zero"}, Case{L"0;;", -5, "-5"}, Case{L"0;;", 0, "0"},
                    Case{L"0;-0;z;x", 5, "5"}, Case{L"0;-0;z;x", 0, "z"}, Case{L"\"a;b\"0", 5, "a"},
                    Case{L"\"a;b\"0", -5, "b0"}, Case{L"\"kg \"0", 5, "kg 5"},
                    Case{L"0\" kg", 5, "5 kg"}, Case{L"\\#0", 5, "#5"}, Case{L"0\\", 5, "5"},
                    Case{L"0_", 5, "5"}, Case{L"0*", 5, "5"}, Case{L"*-0", 5, "5"},
                    Case{L"#,##0_);(#,##0)", 5, "5 "}, Case{L"#,##0_);(#,##0)", -5, "(5)"},
                    Case{L"[Red]0", 5, "5"}, Case{L"[blue]0", 5, "5"}, Case{L"[]0", 5, "5"},
                    Case{L"[Purple]0", 5, "Purple]5"}, Case{L"[Red0", 5, "Re65"},
                    Case{L"[$\u20AC-407] 0", 5, "\xE2\x82\xAC 5"}, Case{L"[$kr", 5, "kr"},
                    Case{L"A0", 5, "A5"}, Case{L"@", 5, "@"}, Case{L"", 5, ""}, Case{L"", -5, "-"},
                    Case{L"General", 1.5, "1.5"}, Case{L"GENERAL", -1.5, "-1.5"},
                    Case{L"General", 0, "0"}, Case{L"0;(General)", -5, "(General)"}));

INSTANTIATE_TEST_SUITE_P(
    Fractions, CustomFormat,
    testing::Values(Case{L"# ?/?", 1.5, "1 1/2"}, Case{L"# ?/?", 0.5, " 1/2"},
                    Case{L"# ?/?", -1.5, "-1 1/2"}, Case{L"# ?/?", 2, "2 0/1"},
                    Case{L"?/?", 1.5, "3/2"}, Case{L"# ?/?", 1.999, "1 1/1"},
                    Case{L"# ?\?/?\?", 3.14159265358979, "3 14/99"},
                    Case{L"# ?\?\?\?\?/?\?\?\?\?", 3.14159265358979, "3 14093/99532"},
                    Case{L"# ?/8", 1.3, "1 2/8"}, Case{L"# ?/16", 0.95, " 15/16"},
                    Case{L"#/99999999999", 1.5, "1499999998/999999999"}, Case{L"?/", 1.5, "0/"},
                    Case{L"/", 1.5, "/"}, Case{L"0/0", 0.25, "1/4"}));

INSTANTIATE_TEST_SUITE_P(
    DatesAndTimes, CustomFormat,
    testing::Values(
        Case{L"m/d/yyyy h:mm", kDay + At(13, 45, 0), "3/5/2026 13:45"},
        Case{L"yyyy-mm-dd", kDay, "2026-03-05"}, Case{L"d.m.yyyy", kDay, "5.3.2026"},
        Case{L"d-mmm-yy", kDay, "5-Mar-26"}, Case{L"mmmm d", kDay, "March 5"},
        Case{L"mmmmm", kDay, "March"}, Case{L"mmmmmm", kDay, "03"}, Case{L"dddd", kDay, "Thursday"},
        Case{L"ddd d", kDay, "Thu 5"}, Case{L"dddd", 60, "Thursday"}, // 1 March 1900
        Case{L"dddd d", 73108, "Sunday 28"}, // of February 2100, the last day of both calendars
        Case{L"dddd d", 73109, "Monday 29"}, Case{L"dddd d", 73110, "Monday 1"},
        Case{L"ddd", 73111, "Tue"}, Case{L"dddd", 1e12, ""}, Case{L"dddd", 0, "Monday"},
        Case{L"ddddd", kDay, "05"}, Case{L"YYYY", kDay, "2026"}, Case{L"y", kDay, "2026"},
        Case{L"h AM/PM", At(13, 0, 0), "13 PM"}, Case{L"h AM/PM", At(14, 0, 0), "2 PM"},
        Case{L"h AM/PM", At(0, 10, 0), "12 AM"}, Case{L"hh:mm AM/PM", At(9, 5, 0), "09:05 AM"},
        Case{L"h:mm", At(13, 45, 0), "13:45"}, Case{L"h:m:s", At(1, 5, 7), "1:5:7"},
        Case{L"mm:ss", At(1, 5, 7), "05:07"}, Case{L"mm:s", At(1, 5, 7), "5:7"},
        Case{L"mm:ss,0", At(0, 45, 30), "45:300"}, Case{L"h.mm", At(13, 45, 0), "13.45"},
        Case{L"[h]", 1.5, "36"}, Case{L"[h]", 60, "1440"}, Case{L"[h]", -1.5, "-36"},
        Case{L"[hh]", At(5, 0, 0), "05"}, Case{L"[m]", 1.5, "720"},
        Case{L"[s]", At(1, 0, 2), "120"}, Case{L"[h]:mm:ss", 1.5, "36:00:00"},
        Case{L"[H]:mm", 2.25, "54:00"}, Case{L"h:mm", 1 - 1e-7, "24:00"}, Case{L"m", -kDay, "-3"}));

TEST(CustomFormats, GiveTheirTypeFromTheFirstPart) {
    struct {
        wchar_t const * text;
        uchar type;
    } const rows[] = {{L"0.00", C_NF_GENERAL}, {L"0%", C_NF_PERCENT},   {L"# ?/?", C_NF_FRACTION},
                      {L"h:mm", C_NF_DATE},    {L"h:mm:ss", C_NF_TIME}, {L"yyyy-mm-dd", C_NF_DATE},
                      {L"m/d/yy", C_NF_DATE},  {L"0;0%", C_NF_GENERAL}, {L"General", C_NF_GENERAL},
                      {L"0%d", C_NF_DATE},     {L"[h]", C_NF_GENERAL},  {L"d h", C_NF_TIME}};
    for (auto const & row : rows) {
        CCNumberFormat format;
        format.Set(uchar(C_NF_CURRENCY));
        format.setCustomFormat(row.text);
        EXPECT_EQ(format.getType(), row.type) << cells::ToUtf8(CString(row.text));
        EXPECT_TRUE(format.isCustomFormat());
        EXPECT_EQ(format.getFormatString(), row.text);
    }
}

TEST(CustomFormats, KeepTheirPartsForPositiveNegativeAndZero) {
    CExcelNumberFormat const one(L"0.0"), two(L"0;(0)"), three(L"a;b;c;d");
    EXPECT_EQ(one.GetSection(1), L"-0.0");
    EXPECT_EQ(one.GetSection(2), L"0.0");
    EXPECT_EQ(two.GetSection(1), L"(0)");
    EXPECT_EQ(two.GetSection(2), L"0");
    EXPECT_EQ(three.GetSection(2), L"c");
    EXPECT_EQ(three.GetText(), L"a;b;c;d");
}

TEST(CustomFormats, EditTextIsThatOfTheType) {
    std::wostringstream shown, edited;
    Custom(L"0%").Print(cells::invariant_LCTX(), shown, 0.125, 0);
    Custom(L"0%").Print(cells::invariant_LCTX(), edited, 0.125, 1);
    EXPECT_EQ(shown.str(), L"13%");
    EXPECT_EQ(edited.str(), L"12.5%");
}

TEST(CustomFormats, AreCompiledOncePerText) {
    unsigned long const before = cells::internal::CompiledFormatCount();
    CCNumberFormat const first = Custom(L"0.000\"once\"");
    for (int i = 0; i < 1000; ++i) {
        CCNumberFormat format = Custom((CString(L"0.000\"") + L"once\"").GetString());
        CCNumberFormat const copy = format;
        EXPECT_TRUE(copy.IsEqual(nullptr, first));
    }
    EXPECT_EQ(cells::internal::CompiledFormatCount(), before + 1);
}

TEST(CustomFormats, OutliveTheCache) {
    CCNumberFormat const before = Custom(L"0.00");
    CVCellExit();
    EXPECT_EQ(Printed(before, 1.5), "1.50");
    CCNumberFormat const without = Custom(L"0.0");
    EXPECT_EQ(Printed(without, 1.5), "1.5");
    EXPECT_EQ(Custom(L"0%").getType(), C_NF_PERCENT);
    CVCellInit();
    EXPECT_EQ(Printed(Custom(L"0.00"), 1.5), "1.50");
    CVCellInit(); // frees the first store
    EXPECT_EQ(Printed(before, 1.5), "1.50");
}

TEST(CustomFormats, PrintAnythingTheyAreGiven) {
    // Random pictures of all special characters over the whole range of doubles.
    std::mt19937 random(7);
    std::wstring const units = L"#0?.,/%*_\\\"[];-+$ABmdyhsMDYHSE18 :()GeneralRd@\u20AC\u00E9";
    double const values[] = {0,
                             -1.5,
                             1e300,
                             -1e300,
                             1e-300,
                             0.5,
                             46085,
                             -46085.75,
                             std::numeric_limits<double>::max(),
                             std::numeric_limits<double>::quiet_NaN(),
                             -std::numeric_limits<double>::infinity()};
    for (int i = 0; i < 20000; ++i) {
        CString text;
        for (int n = int(random() % 24); n > 0; --n) text += units[random() % units.size()];
        CExcelNumberFormat const format(text);
        for (double value : values) {
            CString const printed = format.Print(cells::invariant_LCTX(), value);
            // Dates and times have words for single letters; everything else grows by digits only.
            ASSERT_LE(printed.GetLength(), 13 * text.GetLength() + 500);
        }
    }
}

TEST(CustomFormats, LongPicturesPrintInFull) {
    CString const zeros(L'0', 5000);
    EXPECT_EQ(Custom(zeros).getFormatString().GetLength(), 5000);
    EXPECT_EQ(Printed(Custom(zeros), 7).size(), 5000u);
    std::string const decimals = Printed(Custom(CString(L"0.") + zeros), 0.5);
    EXPECT_EQ(decimals.substr(0, 5), "0.500");
    EXPECT_EQ(decimals.size(), 5002u);
}

TEST(CustomFormats, EquivalentTextOfAPlainRecord) {
    struct {
        char const * text;
        CCNumberFormat format;
    } rows[16];
    int n = 0;
    auto const row = [&](char const * text, uchar type, auto && change) {
        rows[n].text = text;
        rows[n].format.Set(type);
        change(rows[n++].format);
    };
    auto const nothing = [](CCNumberFormat &) {};
    row("General", C_NF_GENERAL, nothing);
    row("General", C_NF_BOOL, nothing);
    row("General", C_NF_NUMBER, nothing);
    row("#,0.00", C_NF_NUMBER, [](auto & f) { f.SetPrecision(2), f.SetCommas(1); });
    row("$#.00", C_NF_CURRENCY, [](auto & f) { f.SetPrecision(2); });
    row("#%", C_NF_PERCENT, nothing);
    row("#/#", C_NF_FRACTION, nothing);
    row("#.0E+000", C_NF_SCIENTIFIC, [](auto & f) { f.SetPrecision(1); });
    row("#.0;[RED](#.0)", C_NF_NUMBER, [](auto & f) { f.SetPrecision(1), f.SetNegBr(1); });
    row("#.0;[RED](#.0)", C_NF_NUMBER,
        [](auto & f) { f.SetPrecision(1), f.SetNegBr(1), f.SetNegRed(1); });
    row("#.0;[RED](#.0)", C_NF_NUMBER, [](auto & f) { f.SetPrecision(1), f.SetNegRed(1); });
    row("hh:mm AM/PM", C_NF_TIME, nothing);
    row("hh:mm:ss", C_NF_TIME, [](auto & f) { f.SetTimeRange(1), f.SetTimeSeconds(1); });
    row("mm/dd/yyyy", C_NF_DATE, nothing);
    row("dd-mmm-yy hh:mm", C_NF_DATE, [](auto & f) {
        f.SetMDOrder(1), f.SetDelimiter(L'-'), f.SetMonthType(1), f.SetYearType(2), f.SetTime(1);
        f.SetTimeRange(1);
    });
    row("mmmm/dd", C_NF_DATE, [](auto & f) { f.SetMonthType(0), f.SetYearType(1); });
    for (auto & r : rows) {
        bool const custom = r.format.isCustomFormat();
        r.format.convertToFormatString(nullptr);
        EXPECT_EQ(cells::ToUtf8(r.format.getFormatString()), r.text);
        EXPECT_EQ(r.format.isCustomFormat(), custom);
    }
}

TEST(CustomFormats, LeadingAndTrailingStringsStandInQuotes) {
    CCNumberFormat format;
    format.Set(uchar(C_NF_NUMBER));
    format.SetLTString(1, GetLTStringIndex(L"kg"));
    format.convertToFormatString(nullptr);
    EXPECT_EQ(cells::ToUtf8(format.getFormatString()), "\"kg \"#");
    format.SetLTStringMode(2);
    format.convertToFormatString(nullptr);
    EXPECT_EQ(cells::ToUtf8(format.getFormatString()), "#\" kg\"");
}

TEST(CustomFormats, EqualAPlainRecordByItsText) {
    CCNumberFormat percent;
    percent.Set(uchar(C_NF_PERCENT));
    EXPECT_TRUE(Custom(L"#%").IsEqual(nullptr, percent));
    EXPECT_TRUE(percent.IsEqual(nullptr, Custom(L"#%")));
    EXPECT_FALSE(percent.IsEqual(nullptr, Custom(L"0%")));
    EXPECT_FALSE(Custom(L"0").IsEqual(nullptr, Custom(L"0.0")));
}

TEST(CustomFormats, TravelThroughTheSetAlgebra) {
    CCNumberFormat target, plain;
    target.set(Custom(L"0%"));
    EXPECT_TRUE(target.isCustomFormat());
    EXPECT_EQ(target.getType(), C_NF_PERCENT);
    target.set(plain); // a plain record ends the custom format, and its text stays
    EXPECT_FALSE(target.isCustomFormat());
    EXPECT_EQ(target.getFormatString(), L"0%");
    target.mergeCommons(Custom(L"h:mm")); // the type alone
    EXPECT_FALSE(target.isCustomFormat());
    EXPECT_EQ(target.getType(), C_NF_DATE);
}

TEST(FormatTable, RemembersWhatItFoundAndFindsTheFirstMatch) {
    std::mt19937 random(3);
    CCNumberFormatTable table;
    std::vector<CCNumberFormat> linear;
    linear.push_back(*table.GetAt(0));
    auto const search = [&](CCNumberFormat const & format) {
        for (std::size_t i = 0; i < linear.size(); ++i)
            if (linear[i].IsEqual(nullptr, format)) return int(i);
        return -1;
    };
    for (int i = 0; i < 3000; ++i) {
        CCNumberFormat format;
        format.Set(uchar(random() % 11));
        format.SetPrecision(int(random() % 3));
        if (random() % 4 == 0) format.setCustomFormat(random() % 2 ? L"#%" : L"0.00");
        ASSERT_EQ(table.Find(format), search(format));
        if (random() % 2) {
            int const expected = search(format) < 0 ? int(linear.size()) : search(format);
            ASSERT_EQ(table.Add(format), expected);
            if (expected == int(linear.size())) linear.push_back(format);
        }
        if (random() % 50 == 0 && table.GetSize() > 1) {
            table.DeleteAt(1);
            linear.erase(linear.begin() + 1);
        }
    }
}

namespace {

CCNumberFormat AnyFormat(unsigned seed) {
    std::mt19937 random(seed);
    CCNumberFormat format;
    format.SetDefault(cells::invariant_LCTX(), uchar(random() % 9));
    if (random() % 2) format.setPrecision(uchar(random() % 16));
    if (random() % 2) format.setCommas(random() % 2);
    if (random() % 2) format.setNegBr(random() % 2);
    if (random() % 2) format.setNegRed(random() % 2);
    if (random() % 2) format.setTimeRange(random() % 2);
    if (random() % 2) format.setTimeSeconds(random() % 2);
    if (random() % 2) format.setMonthType(uchar(random() % 4));
    if (random() % 2) format.setYearType(uchar(random() % 4));
    if (random() % 2) format.setMDOrder(random() % 2);
    if (random() % 8 == 0) format.setCustomFormat(L"0.0");
    return format;
}

bool Same(CCNumberFormat const & a, CCNumberFormat const & b) { return a.Key() == b.Key(); }

} // namespace

TEST(FormatAlgebra, HasItsLaws) {
    EXPECT_TRUE(rc::check("laws of partial formats", [](unsigned seedA, unsigned seedB) {
        CCNumberFormat const a = AnyFormat(seedA), b = AnyFormat(seedB);
        CCNumberFormat once = a, twice = a;
        once.set(b);
        twice.set(b);
        twice.set(b);
        RC_ASSERT(Same(once, twice)); // an overlay is idempotent

        CCNumberFormat flat, overlaid;
        a.flattern(b, flat);
        overlaid.set(b);
        overlaid.set(a);
        RC_ASSERT(flat.GetSetMask() == (a.GetSetMask() | b.GetSetMask()));
        RC_ASSERT(flat.getType() == a.getType()); // this record wins over the base
        if (a.isPrecision()) RC_ASSERT(flat.getPrecision() == a.getPrecision());

        CCNumberFormat ab, ba;
        a.extractCommons(b, ab);
        b.extractCommons(a, ba);
        RC_ASSERT(ab.GetSetMask() == ba.GetSetMask()); // symmetric in its mask

        CCNumberFormat difference, common;
        a.substract(b, difference);
        a.extractCommons(b, common);
        // What both have is either common or different, and never both.
        RC_ASSERT((difference.GetSetMask() & common.GetSetMask() & ~kNumberFormatType) == 0);
        RC_ASSERT((difference.GetSetMask() | common.GetSetMask()) == a.getCommonSetMask(b));

        CCNumberFormat none;
        a.substract(a, none);
        RC_ASSERT((none.GetSetMask() & ~kNumberFormatType) == 0); // nothing differs from itself

        CCNumberFormat merged = a;
        merged.merge(b, 0);
        RC_ASSERT(merged.GetSetMask() == a.GetSetMask()); // without a mask only the type comes over
    }));
}

#if CVCELLS_WITH_ICU

// The built-in formats follow the user's locale.
TEST(BuiltInFormats, TakeCurrencyAndSeparatorsAsText) {
    struct {
        wchar_t const * tag;
        int index;
        char const * text;
        double value;
        char const * printed;
    } const rows[] = {
        {L"C", 5, "$#,##0;($#,##0)", -5, "($5)"},
        {L"C", 8, "$#,##0.00;[Red]($#,##0.00)", -5, "($5.00)"},
        {L"C", 12, "#\" \"?/?", 1.5, "1 1/2"},
        {L"C", 22, "M/d/yyyy h:mm", 46085 + 13.75 / 24, "3/5/2026 13:45"},
        {L"C", 49, "[h]:mm:ss", 1.5, "36:00:00"},
        {L"C", 30, "Unknown", 5, "Unknown"},
        {L"de-CH", 5, "\"CHF\" #,##0;\"CHF\"-#,##0", 5, "CHF 5"},
        {L"de-CH", 5, "\"CHF\" #,##0;\"CHF\"-#,##0", -5, "CHF-5"},
        {L"de-DE", 7, "#,##0.00 \u20AC;-#,##0.00 \u20AC", -1234.5, "-1.234,50 \u20AC"},
        {L"de-DE", 14, "dd.MM.yyyy", 46085, "05.03.2026"},
        {L"da-DK", 20, "h\\.mm", 13.75 / 24, "13.45"},
        {L"da-DK", 5, "#,##0 \"kr.\";-#,##0 \"kr.\"", 5, "5 kr."},
        {L"sv-SE", 14, "yyyy-MM-dd", 46085, "2026-03-05"},
    };
    auto & hook = cells::PlatformServices().localeName;
    auto const before = hook;
    for (auto const & row : rows) {
        hook = [&] { return CString(row.tag); };
        InitInternationalSettings();
        SCOPED_TRACE(cells::ToUtf8(CString(row.tag)) + " " + std::to_string(row.index));
        EXPECT_EQ(cells::ToUtf8(getBuiltInNumberFormat(row.index)), row.text);
        EXPECT_EQ(Printed(Custom(getBuiltInNumberFormat(row.index)), row.value, cells::user_LCTX()),
                  row.printed);
    }
    hook = before;
    InitInternationalSettings();
}

#endif

TEST(FormatSections, AHostsSectionMayCountWhatItPrintsAndTakeInTheNext) {
    struct Counting : CFormatSection {
        explicit Counting(int c) : count(c) {}
        void Print(CFormatState & state) override {
            ++prints;
            state.output += L'*';
        }
        int GetType() const override { return kText; }
        bool Merge(CFormatSection * next) override {
            auto & other = static_cast<Counting &>(*next);
            count += std::exchange(other.count, 0);
            return true;
        }
        int count, prints = 0;
    } section(2), next(3);
    CFormatSection & base = section;
    EXPECT_TRUE(base.Merge(&next));
    EXPECT_EQ(section.count, 5);
    EXPECT_EQ(next.count, 0);
    CFormatState state;
    base.Print(state);
    base.Print(state);
    EXPECT_EQ(section.prints, 2);
    EXPECT_STREQ(state.output.GetString(), L"**");
    CSpaceSection blank(L'x'), other(L'y');
    EXPECT_FALSE(static_cast<CFormatSection &>(blank).Merge(&other)); // the base takes nothing in
}

// An empty text keeps what stands around it apart, as any other text does.
TEST(CustomFormats, AnEmptyTextIsASectionOfItsOwn) {
    for (wchar_t const * empty : {L"\"\"", L"[$]", L"[$-409]"}) {
        SCOPED_TRACE(cells::ToUtf8(CString(empty)));
        CString const apart = CString(L"0") + CString(empty) + CString(L"0");
        auto const list = cells::internal::CompileFormatSection(apart.View());
        std::vector<int> types;
        for (auto const & section : list->sections) types.push_back(section->GetType());
        EXPECT_EQ(types,
                  (std::vector<int>{CFormatSection::kLInSignificantDigit, CFormatSection::kText,
                                    CFormatSection::kLInSignificantDigit}));
        EXPECT_EQ(Printed(Custom(CString(L"yy") + CString(empty) + CString(L"yy")), kDay), "2626");
    }
    EXPECT_TRUE(cells::internal::CompileFormatSection(L"\\")->sections.empty());
}
