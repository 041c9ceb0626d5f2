#include "platform/Text.h"

#include "format/LocaleContext.h"
#include "platform/CodePage.h"
#include "platform/Utf.h"

#include <clocale>
#include <gtest/gtest.h>

TEST(Text, WhiteSpaceIsThatOfUnicode) {
    for (wchar_t unit :
         {0x9, 0xD, 0x20, 0x85, 0xA0, 0x1680, 0x2000, 0x200A, 0x2028, 0x202F, 0x205F, 0x3000})
        EXPECT_TRUE(cells::IsSpace(unit)) << std::hex << int(unit);
    for (wchar_t unit : {0x0, 0x1F, 0x200B, 0xFEFF, 0xD800})
        EXPECT_FALSE(cells::IsSpace(unit)) << std::hex << int(unit);
}

TEST(Text, ClassesDoNotDependOnTheProcessLocale) {
    for (char const * locale : {"C", "C.UTF-8"}) {
        std::setlocale(LC_ALL, locale);
        EXPECT_TRUE(cells::IsAlpha(0xE9));
        EXPECT_EQ(cells::ToUpper(0xE9), 0xC9);
        EXPECT_TRUE(cells::IsAlnum(0x661));
        EXPECT_FALSE(cells::IsDigit(0x661));
        EXPECT_FALSE(cells::IsAlpha(0xD83D));
    }
    std::setlocale(LC_ALL, "C");
}

TEST(Text, CaseMappingKeepsOneUnit) {
    EXPECT_EQ(cells::ToUpper(0xDF), 0xDF);   // sharp s has no single capital
    EXPECT_EQ(cells::ToUpper(0xFF), 0x178);  // y with diaeresis
    EXPECT_EQ(cells::ToLower(0x130), 0x130); // dotted capital I has no single small letter
    EXPECT_EQ(cells::FoldCase(L'Q'), cells::FoldCase(L'q'));
}

TEST(Text, ControlsAreThoseOfBothRanges) {
    EXPECT_TRUE(cells::IsControl(0x1F));
    EXPECT_TRUE(cells::IsControl(0x85));
    EXPECT_FALSE(cells::IsControl(0xA0));
}

struct Order {
    wchar_t const *a, *b;
    int sign;
};

TEST(Collation, PutsWordsInTheirOrderAndNeverMakesDifferentTextsEqual) {
    Order const orders[] = {{L"a", L"B", -1},       {L"ant", L"Zebra", -1}, {L"ant", L"Ant", -1},
                            {L"same", L"same", 0},  {L"", L"a", -1},        {L"1", L"a", -1},
                            {L"co-op", L"coop", -1}};
    for (Order const & order : orders) {
        int const result = StrColl(order.a, order.b, 1);
        EXPECT_EQ(result < 0 ? -1 : result > 0, order.sign) << cells::ToUtf8(CString(order.a));
        int const reverse = StrColl(order.b, order.a, 1);
        EXPECT_EQ(reverse < 0 ? -1 : reverse > 0, -order.sign) << cells::ToUtf8(CString(order.a));
    }
    EXPECT_NE(StrColl(L"a", L"a\x1", 1), 0);
    EXPECT_NE(StrColl(L"e\x301", L"\xE9", 1), 0);
}

TEST(Collation, WithoutCaseIsEqualExactlyWhereFoldedUnitsAre) {
    EXPECT_EQ(StrColl(L"STRASSE", L"strasse", 0), 0);
    EXPECT_NE(StrColl(L"Straße", L"STRASSE", 0), 0);
    EXPECT_NE(StrColl(L"a", L"A", 1), 0);
}

TEST(Collation, NullStandsBeforeEverythingAndEqualsNull) {
    EXPECT_EQ(StrColl(nullptr, nullptr, 1), 0);
    EXPECT_EQ(StrColl(nullptr, L"", 1), -1);
    EXPECT_EQ(StrColl(L"", nullptr, 1), 1);
}

TEST(Utf8, RoundTripsAndRepairs) {
    std::string const text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
    EXPECT_EQ(cells::FromUtf8(text).GetLength(), 5);
    EXPECT_EQ(cells::ToUtf8(cells::FromUtf8(text)), text);
    EXPECT_EQ(cells::FromUtf8("a\xFF"), L"a\xFFFD");
    EXPECT_EQ(cells::ToUtf8(std::wstring_view(L"\xD83D", 1)), "\xEF\xBF\xBD");
    EXPECT_EQ(cells::FindInvalidUtf8("ab\xC3"), 2u);
    EXPECT_EQ(cells::FindInvalidUtf8("ab"), 2u);
}

TEST(CodePage, Is1252WithControlsForItsGaps) {
    EXPECT_EQ(cells::UnitOfByte(0x80), 0x20AC);
    EXPECT_EQ(cells::UnitOfByte(0x81), 0x81);
    EXPECT_EQ(cells::UnitOfByte(0xE9), 0xE9);
    EXPECT_EQ(cells::ByteOfUnit(0x20AC, -1), 0x80);
    EXPECT_EQ(cells::ByteOfUnit(0x4E2D, -1), -1);
    bool usedDefault = false;
    EXPECT_EQ(cells::ToNarrow(L"a\x4E2D", &usedDefault), "a?");
    EXPECT_TRUE(usedDefault);
}
