#include "context/Context.h"
#include "formula/CCNameRef.h"
#include "formula/CCRCRef.h"
#include "formula/Scanners.h"
#include "platform/Services.h"
#include "platform/Utf.h"
#include "support/BaseHost.h"

#include <gtest/gtest.h>

namespace {

using cells::test::BaseHost;

cells::LCTX * L() { return cells::invariant_LCTX(); }

struct NumberRow {
    wchar_t const * text;
    int taken; // units; 0 for no number
    double value;
    int type;
};

void Check(NumberRow const & row, auto && scan) {
    SCOPED_TRACE(cells::ToUtf8(CString(row.text)));
    wchar_t const * at = row.text;
    CCCellValue value;
    int const found = scan(at, value);
    EXPECT_EQ(found != 0, row.taken != 0);
    EXPECT_EQ(at - row.text, row.taken);
    if (!row.taken || !found) return;
    EXPECT_EQ(value.GetNumber(), row.value);
    EXPECT_EQ(value.GetFormat().GetType(), row.type);
}

} // namespace

TEST(ScanNumberValue, PlainForm) {
    NumberRow const rows[] = {{L"12.50x", 5, 12.5, 1}, {L".5", 2, 0.5, 1}, {L"5.", 2, 5, 1},
                              {L".", 0, 0, 0},         {L"", 0, 0, 0},     {L"1,234", 1, 1, 1},
                              {L"12E3", 4, 12000, 5},  {L"1e", 1, 1, 1},   {L"1 e - 2", 7, 0.01, 5},
                              {L"1/2", 1, 1, 1},       {L"  7", 3, 7, 1},  {L"1e400", 0, 0, 0}};
    for (NumberRow const & row : rows)
        Check(row,
              [](wchar_t const *& at, CCCellValue & v) { return _EatNumberValue(L(), at, v, 0); });
}

TEST(ScanNumberValue, StrictFormReadsGroupsAndFractions) {
    NumberRow const rows[] = {
        {L"1,234.5", 7, 1234.5, 1}, {L"1,23", 0, 0, 0},       {L"12345,678", 9, 12345678, 1},
        {L",123", 0, 0, 0},         {L"1 1/2", 5, 1.5, 4},    {L"12/3", 4, 4, 4},
        {L"1/0", 1, 1, 1},          {L"1,000/2", 5, 1000, 1}, {L"1.5/2", 3, 1.5, 1},
        {L"1 /2", 1, 1, 1}};
    for (NumberRow const & row : rows)
        Check(row,
              [](wchar_t const *& at, CCCellValue & v) { return _EatNumberValue(L(), at, v, 1); });
}

TEST(ScanNumberValue, KeepsDecimalsAndMarks) {
    CCCellValue value;
    wchar_t const * at = L"1,234.50";
    ASSERT_TRUE(_EatNumberValue(L(), at, value, 1));
    EXPECT_EQ(value.GetFormat().getPrecision(), 2);
    EXPECT_TRUE(value.GetFormat().isPrecision());
    EXPECT_TRUE(value.GetFormat().getCommas());
    at = L"0.12345678901234567890";
    ASSERT_TRUE(_EatNumberValue(L(), at, value, 0));
    EXPECT_EQ(value.GetFormat().getPrecision(), 15);
    EXPECT_EQ(value.GetNumber(), 0.12345678901234567890);
    at = L"12.5E3";
    ASSERT_TRUE(_EatNumberValue(L(), at, value, 0));
    EXPECT_EQ(value.GetFormat().getPrecision(), 2); // of the mantissa 1.25
}

TEST(ScanNumber, TriesEveryFormInItsOrder) {
    NumberRow const rows[] = {{L"5", 1, 5, 0},
                              {L"-5", 2, -5, 0},
                              {L"+ 5", 3, 5, 0},
                              {L"12.5%", 5, 0.125, 3},
                              {L"12 %", 4, 0.12, 3},
                              {L"-1/2", 4, -0.5, 4},
                              {L"1/2/2020", 8, 43831, 7},
                              {L"12/31", 5, 12.0 / 31, 4},
                              {L"$5", 2, 5, 2},
                              {L"-$5", 3, -5, 2},
                              {L"$-5", 3, -5, 2},
                              {L"5$", 2, 5, 2},
                              {L"$ 5 -", 5, -5, 2},
                              {L"$$5", 0, 0, 0},
                              {L"TRUE", 4, 1, 8},
                              {L"falsehood", 5, 0, 8},
                              {L"5 apples", 1, 5, 0},
                              {L"13:30", 5, 0.5625, 6},
                              {L"\xA0"
                               L"5",
                               2, 5, 0},
                              {L"\x0665", 0, 0, 0}};
    for (NumberRow const & row : rows)
        Check(row, [](wchar_t const *& at, CCCellValue & v) { return _EatNumber(L(), at, v, 1); });
    CCCellValue value;
    wchar_t const * at = L"-5";
    EXPECT_FALSE(_EatNumber(L(), at, value, 0));
}

TEST(ScanNumber, WithoutTheWordsForTrueNothingIsTrue) {
    cells::PlatformServices().loadString = [](unsigned id, CString & text) {
        if (id == 13020) return text.Empty(), true;
        return false;
    };
    cells::internal::ReloadLogicalWords();
    CCCellValue value;
    wchar_t const * at = L"5";
    EXPECT_TRUE(_EatNumber(L(), at, value, 1));
    EXPECT_EQ(value.GetNumber(), 5);
    at = L"TRUE";
    EXPECT_FALSE(_EatBOOLValue(L(), at, value));
    cells::PlatformServices().loadString = nullptr;
    cells::internal::ReloadLogicalWords();
}

struct DateRow {
    wchar_t const * text;
    int day, month, year; // 0: no date
};

TEST(ScanDate, ReadsTheShapesOfDates) {
    DateRow const rows[] = {
        {L"3/5/2026", 5, 3, 2026},      {L"3-5", 5, 3, 2026},        {L"31/12/2020", 31, 12, 2020},
        {L"March 5, 2020", 5, 3, 2020}, {L"Mar 5 2020", 5, 3, 2020}, {L"5 mar 2020", 5, 3, 2020},
        {L"5.Mar.20", 5, 3, 2020},      {L"3/5/72", 5, 3, 1972},     {L"3/5/71", 5, 3, 2071},
        {L"3/5/202", 0, 0, 0},          {L"3 5", 0, 0, 0},           {L"Mar-Apr", 0, 0, 0},
        {L"3\\5\\2026", 5, 3, 2026},    {L"3/5-2026", 5, 3, 2026}};
    for (DateRow const & row : rows) {
        SCOPED_TRACE(cells::ToUtf8(CString(row.text)));
        wchar_t const * at = row.text;
        int day = 0, month = 0, year = 0;
        CCNumberFormat format;
        EXPECT_EQ(_EatDNumber(L(), at, day, month, year, format) != 0, row.day != 0);
        EXPECT_EQ(day, row.day);
        EXPECT_EQ(month, row.month);
        EXPECT_EQ(year, row.year);
    }
}

TEST(ScanDate, RefusesDaysThatAreNone) {
    for (wchar_t const * text :
         {L"2/30/2020", L"13/13/2020", L"1/1/2072", L"1/1/1899", L"2/29/2021"}) {
        wchar_t const * at = text;
        CCCellValue value;
        EXPECT_FALSE(_EatDNumber(L(), at, value)) << cells::ToUtf8(CString(text));
        EXPECT_EQ(at, text);
    }
    wchar_t const * at = L"2/29/1900";
    CCCellValue value;
    EXPECT_TRUE(_EatDNumber(L(), at, value)); // every fourth year is a leap year here
    EXPECT_EQ(value.GetNumber(), 59);
}

TEST(ScanDate, ATimeMayFollow) {
    wchar_t const * at = L"3/5/2026 6:00 PM";
    CCCellValue value;
    ASSERT_TRUE(_EatDNumber(L(), at, value));
    EXPECT_EQ(*at, 0);
    EXPECT_EQ(value.GetNumber(), 46085.75);
    EXPECT_TRUE(value.GetFormat().getTime());
    EXPECT_FALSE(value.GetFormat().getTimeRange());
}

struct ClockRow {
    wchar_t const * text;
    double part; // of the day; -1: no time
    int mark, seconds;
};

TEST(ScanTime, ReadsBothClocks) {
    ClockRow const rows[] = {
        {L"6:00", 0.25, 1, 0},   {L"18:00:00", 0.75, 1, 1}, {L"12:00 AM", 0, 0, 0},
        {L"12:00pm", 0.5, 2, 0}, {L"13:00 PM", -1, 0, 0},   {L"25:00", -1, 0, 0},
        {L"6", -1, 0, 0},        {L"6:", -1, 0, 0},         {L"24:00", 1, 1, 0}};
    for (ClockRow const & row : rows) {
        SCOPED_TRACE(cells::ToUtf8(CString(row.text)));
        wchar_t const * at = row.text;
        double part = 0;
        int mark = 0, seconds = 0;
        ASSERT_EQ(_EatTime(L(), at, part, mark, seconds) != 0, row.part >= 0);
        if (row.part < 0) continue;
        EXPECT_DOUBLE_EQ(part, row.part);
        EXPECT_EQ(mark, row.mark);
        EXPECT_EQ(seconds, row.seconds);
    }
}

TEST(ScanConstant, NumbersWordsAndQuotedText) {
    struct {
        wchar_t const * text;
        int taken;
        char const * shown;
    } const rows[] = {{L"1,234", 1, "1"},    {L"\"a^\"b\"", 6, "a\"b"}, {L"\"\"", 2, ""},
                      {L"\"2^3\"", 5, "23"}, {L"\"2^^3\"", 6, "2^3"},   {L"\"open", 0, ""},
                      {L"\"a^\"", 0, ""},    {L"TRUE1", 4, "TRUE"},     {L"\"tail^", 0, ""}};
    for (auto const & row : rows) {
        SCOPED_TRACE(cells::ToUtf8(CString(row.text)));
        wchar_t const * at = row.text;
        CCCellValue value;
        EXPECT_EQ(_EatConstant(L(), at, value) != 0, row.taken != 0);
        EXPECT_EQ(at - row.text, row.taken);
        BaseHost host;
        std::wostringstream stream;
        if (row.taken) value.Print(&host, stream, 0);
        EXPECT_EQ(cells::test::Utf8(stream.str()), row.shown);
    }
}

struct RefRow {
    wchar_t const * text;
    int taken;
    char const * printed;
    int flags;
};

TEST(ScanReference, CellsAndRegions) {
    RefRow const rows[] = {{L"IV65536", 7, "IV65536", 0},
                           {L"IW1", 0, "", 0},
                           {L"A65537", 0, "", 0},
                           {L"A0", 0, "", 0},
                           {L"$b$3", 4, "B3", 3},
                           {L"A1:", 2, "A1", 0},
                           {L"A1:B2", 5, "A1:B2", 0},
                           {L"A1..B2", 6, "A1:B2", 0},
                           {L"B5:$A1", 6, "A1:B5", 4},
                           {L"\xC9"
                            L"1",
                            0, "", 0},
                           {L"A100000", 6, "A10000", 0},
                           {L"ABC1", 0, "", 0},
                           {L"A1:$IW1", 2, "A1", 0}};
    BaseHost host;
    for (RefRow const & row : rows) {
        SCOPED_TRACE(cells::ToUtf8(CString(row.text)));
        wchar_t const * at = row.text;
        CCRef * ref = nullptr;
        uchar flags = 0;
        EXPECT_EQ(_EatSpreadRef(&host, at, ref, flags) != 0, row.taken != 0);
        std::unique_ptr<CCRef> const owned(ref);
        EXPECT_EQ(at - row.text, row.taken);
        if (!row.taken) continue;
        std::wostringstream stream;
        ref->Print(&host, stream, 0);
        EXPECT_EQ(cells::test::Utf8(stream.str()), row.printed);
        EXPECT_EQ(flags, row.flags);
    }
}

TEST(ScanReference, NamesAndSheetNames) {
    BaseHost host;
    wchar_t const * at = L"_tax_1 + 2";
    CCRef * ref = nullptr;
    uchar flags = 9;
    ASSERT_TRUE(_EatNameRef(&host, at, ref, flags));
    EXPECT_STREQ(static_cast<CCNameRef *>(ref)->name(), L"_tax_1");
    EXPECT_EQ(flags, 0);
    delete ref;
    struct {
        wchar_t const * text;
        wchar_t const * name;
    } const names[] = {{L"Sheet1 !A1", L"Sheet1"},
                       {L"one:two!A1", L"one"},
                       {L"A1:B2", nullptr},
                       {L"plain", nullptr},
                       {L"AB12!x", nullptr}};
    for (auto const & row : names) {
        at = row.text;
        cells::HeapText const name(_EatName(&host, at));
        EXPECT_EQ(name != nullptr, row.name != nullptr);
        EXPECT_STREQ(name.get(), row.name);
        if (!row.name) {
            EXPECT_EQ(at, row.text);
        }
    }
    at = L"Sheet!rest";
    ASSERT_TRUE(_EatSheetRef(&host, at, ref));
    EXPECT_STREQ(at, L"rest");
    delete ref;
    std::wstring const longName = std::wstring(80, L'x') + L"!";
    at = longName.c_str();
    EXPECT_FALSE(_EatSheetRef(&host, at, ref));
}

TEST(ScanTwins, DoTheSameOnATextThatMayChange) {
    std::wstring text = L"$B$3 rest";
    wchar_t * at = text.data();
    BaseHost host;
    uchar col = 0, flags = 0;
    ushort row = 0;
    EXPECT_TRUE(EatRC(&host, at, col, row, flags));
    EXPECT_EQ(at - text.data(), 4);
    EXPECT_EQ(col * 100 + row, 102);
    EXPECT_TRUE(EatWhite(L(), at));
    EXPECT_FALSE(EatWhite(L(), at));
    EXPECT_TRUE(StrIIComp(L(), at, L"REST"));
    EXPECT_TRUE(IsEmpty(L(), at));
    std::wstring digits = L"1,234,5";
    at = digits.data();
    double number = 0;
    int seen = 0;
    EXPECT_FALSE(EatDigitsAndComma(L(), at, number, seen, L',', 3));
    EXPECT_EQ(at, digits.data());
    EXPECT_EQ(EatDigits(L(), at, number), 1);
    std::wstring lower = L"true";
    at = lower.data();
    EXPECT_TRUE(StrIComp(L(), at, L"TRUE"));
    at = lower.data();
    EXPECT_FALSE(StrIComp(L(), at, L"True")); // the word must be in capitals
    EXPECT_FALSE(StrIComp(L(), at, L""));
}

namespace {

// Both forms give the same and take the same part of the text.
template <typename Plain, typename Twin>
void ExpectTwins(char const * name, std::wstring text, int taken, Plain && plain, Twin && twin) {
    SCOPED_TRACE(name);
    wchar_t const * readOnly = text.c_str();
    wchar_t * changing = text.data();
    EXPECT_EQ(plain(readOnly), twin(changing));
    EXPECT_EQ(readOnly - text.c_str(), taken);
    EXPECT_EQ(changing - text.data(), taken);
}

// The number that a scanner found, as text, or "-".
template <typename Scan, typename At>
std::string Found(Scan && scan, At & at) {
    CCCellValue value;
    if (!scan(at, value)) return "-";
    return value.IsText() ? cells::ToUtf8(value.GetTextString())
                          : std::to_string(value.GetNumber());
}

// The reference that a scanner found, with its flags.
template <typename Scan, typename At>
std::string FoundRef(Scan && scan, At & at) {
    CCRef * made = nullptr;
    uchar flags = 0;
    if (!scan(at, made, flags)) return "-";
    std::unique_ptr<CCRef> const ref(made);
    std::wostringstream stream;
    ref->Print(nullptr, stream, flags);
    return cells::test::Utf8(stream.str());
}

} // namespace

TEST(ScanTwins, OfValuesAgree) {
    struct Row {
        char const * name;
        wchar_t const * text;
        int taken;
        int (*plain)(wchar_t const *&, CCCellValue &);
        int (*twin)(wchar_t *&, CCCellValue &);
    };
    using Const = wchar_t const *;
    Row const rows[] = {
        {"NumberValue", L"1,234.5x", 7,
         [](Const & at, CCCellValue & v) { return _EatNumberValue(L(), at, v, 1); },
         [](wchar_t *& at, CCCellValue & v) { return EatNumberValue(L(), at, v, 1); }},
        {"NPFSNumber", L"-50% of", 4,
         [](Const & at, CCCellValue & v) { return _EatNPFSNumber(L(), at, v, 1); },
         [](wchar_t *& at, CCCellValue & v) { return EatNPFSNumber(L(), at, v, 1); }},
        {"NPFSNumber without signs", L"-50%", 0,
         [](Const & at, CCCellValue & v) { return _EatNPFSNumber(L(), at, v, 0); },
         [](wchar_t *& at, CCCellValue & v) { return EatNPFSNumber(L(), at, v, 0); }},
        {"Number", L"3/5/2026", 8,
         [](Const & at, CCCellValue & v) { return _EatNumber(L(), at, v, 1); },
         [](wchar_t *& at, CCCellValue & v) { return EatNumber(L(), at, v, 1); }},
        {"Constant", L"\"ab\"+1", 4,
         [](Const & at, CCCellValue & v) { return _EatConstant(L(), at, v); },
         [](wchar_t *& at, CCCellValue & v) { return EatConstant(L(), at, v); }},
        {"DNumber", L"3/5/2026", 8,
         [](Const & at, CCCellValue & v) { return _EatDNumber(L(), at, v); },
         [](wchar_t *& at, CCCellValue & v) { return EatDNumber(L(), at, v); }},
        {"DNumber of no date", L"13/13/2026", 0,
         [](Const & at, CCCellValue & v) { return _EatDNumber(L(), at, v); },
         [](wchar_t *& at, CCCellValue & v) { return EatDNumber(L(), at, v); }},
        {"TNumber", L"10:30", 5,
         [](Const & at, CCCellValue & v) { return _EatTNumber(L(), at, v); },
         [](wchar_t *& at, CCCellValue & v) { return EatTNumber(L(), at, v); }},
        {"BOOLValue", L"TRUE", 4,
         [](Const & at, CCCellValue & v) { return _EatBOOLValue(L(), at, v); },
         [](wchar_t *& at, CCCellValue & v) { return EatBOOLValue(L(), at, v); }},
        {"TextValue", L"\"a b\" c", 5,
         [](Const & at, CCCellValue & v) { return _EatTextValue(L(), at, v); },
         [](wchar_t *& at, CCCellValue & v) { return EatTextValue(L(), at, v); }},
    };
    for (Row const & row : rows)
        ExpectTwins(
            row.name, row.text, row.taken, [&](auto & at) { return Found(row.plain, at); },
            [&](auto & at) { return Found(row.twin, at); });
}

TEST(ScanTwins, OfPartsAgree) {
    int a = 0, b = 0, c = 0, d = 0, e = 0, f = 0;
    ExpectTwins(
        "NDigits", L"12345", 3, [&](auto & at) { return _EatNDigits(L(), at, a, 3); },
        [&](auto & at) { return EatNDigits(L(), at, b, 3); });
    EXPECT_EQ(a, 123);
    EXPECT_EQ(b, 123);
    double x = 0, y = 0;
    ExpectTwins(
        "Time", L"10:30:15 x", 8, [&](auto & at) { return _EatTime(L(), at, x, a, b); },
        [&](auto & at) { return EatTime(L(), at, y, c, d); });
    EXPECT_EQ(x, y);
    EXPECT_EQ(a, c);
    EXPECT_EQ(b, d);
    CCNumberFormat first, second;
    ExpectTwins(
        "DNumber", L"3/5/2026", 8, [&](auto & at) { return _EatDNumber(L(), at, a, b, c, first); },
        [&](auto & at) { return EatDNumber(L(), at, d, e, f, second); });
    EXPECT_EQ(a * 10000 + b * 100 + c % 100, 50326);
    EXPECT_EQ(d * 10000 + e * 100 + f % 100, 50326);
    EXPECT_TRUE(first.IsEqual(L(), second));
}

TEST(ScanTwins, OfReferencesAgree) {
    BaseHost host;
    uchar col = 0, flags = 0, col2 = 0, flags2 = 0;
    ushort row = 0, row2 = 0;
    ExpectTwins(
        "C", L"$AB7", 3, [&](auto & at) { return _EatC(&host, at, col, flags); },
        [&](auto & at) { return EatC(&host, at, col2, flags2); });
    EXPECT_EQ(col, 27);
    EXPECT_EQ(col2, 27);
    EXPECT_EQ(flags, flags2);
    ExpectTwins(
        "R", L"$12+", 3, [&](auto & at) { return _EatR(&host, at, row, flags); },
        [&](auto & at) { return EatR(&host, at, row2, flags2); });
    EXPECT_EQ(row, 11);
    EXPECT_EQ(row2, 11);
    EXPECT_EQ(flags, flags2);

    struct Row {
        char const * name;
        wchar_t const * text;
        int taken;
        int (*plain)(cells::CTX *, wchar_t const *&, CCRef *&, uchar &);
        int (*twin)(cells::CTX *, wchar_t *&, CCRef *&, uchar &);
    };
    Row const rows[] = {
        {"SpreadRef", L"$A1:B$2+1", 7, _EatSpreadRef, EatSpreadRef},
        {"NameRef", L"tax+1", 3, _EatNameRef, EatNameRef},
        {"Ref", L"B7-1", 2, _EatRef, EatRef},
        {"Ref of a name", L"tax", 3, _EatRef, EatRef},
        {"SheetRef", L"Two!A1", 4,
         [](cells::CTX * ctx, wchar_t const *& at, CCRef *& ref, uchar &) {
             return _EatSheetRef(ctx, at, ref);
         },
         [](cells::CTX * ctx, wchar_t *& at, CCRef *& ref, uchar &) {
             return EatSheetRef(ctx, at, ref);
         }},
    };
    for (Row const & r : rows)
        ExpectTwins(
            r.name, r.text, r.taken,
            [&](wchar_t const *& at) {
                return FoundRef(
                    [&](auto & a, CCRef *& ref, uchar & f) { return r.plain(&host, a, ref, f); },
                    at);
            },
            [&](wchar_t *& at) {
                return FoundRef(
                    [&](auto & a, CCRef *& ref, uchar & f) { return r.twin(&host, a, ref, f); },
                    at);
            });
    ExpectTwins(
        "Name", L"Two!A1", 3,
        [&](wchar_t const *& at) {
            cells::HeapText const name(_EatName(&host, at));
            return name ? std::wstring(name.get()) : std::wstring();
        },
        [&](wchar_t *& at) {
            cells::HeapText const name(EatName(&host, at));
            return name ? std::wstring(name.get()) : std::wstring();
        });
}
