#include "platform/CString.h"

#include <gtest/gtest.h>

TEST(CString, EmptyStringOwnsNothingAndHasATerminator) {
    CString const empty;
    EXPECT_EQ(empty.GetLength(), 0);
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_STREQ(empty.GetString(), L"");
    EXPECT_EQ(sizeof(CString), sizeof(void *));
}

TEST(CString, NullTextIsEmpty) {
    EXPECT_TRUE(CString(static_cast<wchar_t const *>(nullptr)).IsEmpty());
}

TEST(CString, CharacterBeyondTheFirstPlaneBecomesTwoUnits) {
    CString const text(L"\U0001F600");
    ASSERT_EQ(text.GetLength(), 2);
    EXPECT_EQ(text[0], 0xD83D);
    EXPECT_EQ(text[1], 0xDE00);
}

TEST(CString, ZerosInsideAreKept) { EXPECT_EQ(CString(L"a\0b", 3).GetLength(), 3); }

TEST(CString, CopiesShareUntilOneChanges) {
    CString a(L"abc");
    CString b = a;
    EXPECT_TRUE(a.SharesBuffer(b));
    b.SetAt(0, L'x');
    EXPECT_EQ(a, L"abc");
    EXPECT_EQ(b, L"xbc");
}

TEST(CString, AppendingItselfIsSafe) {
    CString a(L"ab");
    a += a;
    a += a.GetString() + 2;
    EXPECT_EQ(a, L"ababab");
}

TEST(CString, PartsOutsideTheTextAreCutToIt) {
    CString const text(L"abcdef");
    EXPECT_EQ(text.Left(2), L"ab");
    EXPECT_EQ(text.Right(9), L"abcdef");
    EXPECT_EQ(text.Mid(4, 9), L"ef");
    EXPECT_EQ(text.Mid(-3, 2), L"ab");
    EXPECT_TRUE(text.Mid(99).IsEmpty());
}

TEST(CString, FindsUnitsAndTexts) {
    CString const text(L"a.b.c");
    EXPECT_EQ(text.Find(L'.'), 1);
    EXPECT_EQ(text.Find(L'.', 2), 3);
    EXPECT_EQ(text.ReverseFind(L'.'), 3);
    EXPECT_EQ(text.Find(L"b."), 2);
    EXPECT_EQ(text.Find(L"x"), -1);
}

TEST(CString, OrdersByUnitsSoThatASurrogateStandsBeforeTheLastLetters) {
    EXPECT_LT(CString(L"\U00010000").Compare(CString(L"\xFF5E")), 0);
    EXPECT_EQ(CString(L"ÄB").CompareNoCase(L"äb"), 0);
}

TEST(CString, ChangesCaseUnitByUnit) {
    EXPECT_EQ(CString(L"straße é").MakeUpper(), L"STRAßE É");
    EXPECT_EQ(CString(L"ÀB").MakeLower(), L"àb");
}
