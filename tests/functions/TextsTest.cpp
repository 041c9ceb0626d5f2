#include "functions/FormulaCases.h"
#include "functions/internal/TextMatch.h"

#include <chrono>
#include <string>

using cells::host::Sheet;

class Texts : public FormulaCases {};

TEST_P(Texts, Give) { Run(); }

INSTANTIATE_TEST_SUITE_P(
    Parts, Texts,
    testing::Values(
        Case{"=LEFT(\"abc\")", "a"}, Case{"=LEFT(\"abc\",2.9)", "ab"}, Case{"=LEFT(\"abc\",0)", ""},
        Case{"=LEFT(\"abc\",-1)", "#VALUE!"}, Case{"=LEFT(\"abc\",1E300)", "abc"},
        Case{"=LEFT(C1,1)", "#DIV/0!"}, Case{"=LEFT(\"abc\",B3)", "#VALUE!"},
        Case{"=LEFT(\"abc\",\"1\")", "#VALUE!"}, Case{"=LEFT(1=1,2)", "TR"},
        Case{"=LEFT(C2,3)", "2/1"}, Case{"=LEFT(B3)", ""}, Case{"=RIGHT(\"abc\",2)", "bc"},
        Case{"=RIGHT(\"abc\",9)", "abc"}, Case{"=RIGHT(\"abc\",-1)", "#VALUE!"},
        Case{"=MID(\"abcd\",2,2)", "bc"}, Case{"=MID(\"abcd\",2)", "bcd"},
        Case{"=MID(\"abc\",2,1E300)", "bc"}, Case{"=MID(\"abc\",9,1)", ""},
        Case{"=MID(\"abc\",0,1)", "#VALUE!"}, Case{"=MID(\"abc\",1,-1)", "#VALUE!"},
        Case{"=MID(C1,1,1)", "#DIV/0!"}, Case{"=LEN(12.5)", "4", 0}, Case{"=LEN(1/3)", "17", 0},
        Case{"=LEN(B3)", "0", 0}, Case{"=LEN(C1)", "#DIV/0!"}, Case{"=LEN(COTAN(0))", "7", 0},
        Case{"=LEN(D1)", "3", 0}, Case{"=LEN()", "#CALL!"}, Case{"=LEN(A1:A3)", "#CALL!"},
        Case{"=LEN(\"\xF0\x9F\x98\x80\")", "2", 0}, Case{"=REPLACE(\"abcd\",2,2,\"x\")", "axd"},
        Case{"=REPLACE(\"abc\",5,1,\"x\")", "abcx"},
        Case{"=REPLACE(\"abc\",1E300,1,\"x\")", "abcx"},
        Case{"=REPLACE(\"abc\",1,0,\"x\")", "xabc"}, Case{"=REPLACE(\"abc\",0,0,\"x\")", "#VALUE!"},
        Case{"=REPLACE(\"abc\",1,-1,\"x\")", "#VALUE!"},
        Case{"=REPLACE(\"abc\",1,1,C1)", "#DIV/0!"}, Case{"=REPT(\"ab\",2.9)", "abab"},
        Case{"=REPT(\"ab\",0)", ""}, Case{"=REPT(\"ab\",-1)", "#VALUE!"},
        Case{"=REPT(\"ab\",1E9)", "#VALUE!"}, Case{"=REPT(\"\",1E300)", ""}));

INSTANTIATE_TEST_SUITE_P(
    Searching, Texts,
    testing::Values(
        Case{"=FINDTEXT(\"b\",\"abcb\")", "2", 0}, Case{"=FINDTEXT(\"b\",\"abcb\",3)", "4", 0},
        Case{"=FINDTEXT(\"B\",\"abcb\")", "#VALUE!"}, Case{"=FINDTEXT(\"\",\"abc\")", "1", 0},
        Case{"=FINDTEXT(\"\",\"abc\",3)", "3", 0}, Case{"=FINDTEXT(\"\",\"\")", "#VALUE!"},
        Case{"=FINDTEXT(\"a\",\"abc\",0)", "#VALUE!"},
        Case{"=FINDTEXT(\"a\",\"abc\",9)", "#VALUE!"}, Case{"=FINDTEXT(\"a\",C1)", "#DIV/0!"},
        Case{"=SEARCHTEXT(\"B?d\",\"abcd\")", "2", 0},
        Case{"=SEARCHTEXT(\"c*\",\"abc\")", "#VALUE!"}, Case{"=SEARCHTEXT(\"b*\",\"abc\")", "2", 0},
        Case{"=SEARCHTEXT(\"~*\",\"a*\")", "2", 0}, Case{"=SEARCHTEXT(\"a~\",\"ab\")", "#VALUE!"},
        Case{"=LIKE(\"abc\",\"a*\")", "TRUE", 8}, Case{"=LIKE(\"a*\",\"abc\")", "FALSE", 8},
        Case{"=LIKE(\"ABC\",\"a*\")", "FALSE", 8}, Case{"=LIKE(\"abc\",\"a?c\",1/0)", "TRUE", 8},
        Case{"=LIKE(\"abc\",\"*\")", "TRUE", 8}, Case{"=LIKE(\"abc\",\"a*d\")", "FALSE", 8},
        Case{"=LIKE(\"\",\"**\")", "TRUE", 8}, Case{"=LIKE(C1,\"*\")", "#DIV/0!"},
        Case{"=EXACT(\"a\",\"A\")", "FALSE", 8}, Case{"=EXACT(12,\"12\")", "TRUE", 8},
        Case{"=EXACT(B3,\"\")", "TRUE", 8}, Case{"=SUBSTITUTE(\"aaa\",\"a\",\"b\",2)", "bba"},
        Case{"=SUBSTITUTE(\"aaa\",\"a\",\"\")", ""}, Case{"=SUBSTITUTE(\"abc\",\"\",\"x\")", "abc"},
        Case{"=SUBSTITUTE(\"abc\",\"\",\"x\",2)", "xxabc"},
        Case{"=SUBSTITUTE(\"aaa\",\"aa\",\"b\")", "ba"},
        Case{"=SUBSTITUTE(\"a\",\"a\",\"b\",0)", "#VALUE!"},
        Case{"=SUBSTITUTE(\"abc\",\"\",\"x\",1E9)", "#VALUE!"}));

INSTANTIATE_TEST_SUITE_P(
    Forms, Texts,
    testing::Values(
        Case{"=UPPER(\"a\xC3\xA9\xC3\x9F\")", "A\xC3\x89\xC3\x9F"},
        Case{"=LOWER(\"A\xC3\x89\")", "a\xC3\xA9"},
        Case{"=PROPER(\"jOHN o'neil 2b\")", "John O'Neil 2B"}, Case{"=TRIM(\"  a   b \")", "a b"},
        Case{"=TRIM(\"\xC2\xA0"
             "a\xC2\xA0\")",
             "a"},
        Case{"=LEN(TRIM(\"a\"+CHAR(9)+\" b\"))", "3"},
        Case{"=CODE(MID(TRIM(\"a\"+CHAR(9)+\" b\"),2,1))", "9"},
        Case{"=CLEAN(\"a\"+CHAR(7)+\"b\")", "ab"}, Case{"=T(12)", "12"}, Case{"=T(C1)", "#DIV/0!"},
        Case{"=T(B3)", ""}, Case{"=CHAR(65.9)", "A"}, Case{"=CHAR(128)", "\xE2\x82\xAC"},
        Case{"=CHAR(256)", "#VALUE!"}, Case{"=CHAR(-1)", "#VALUE!"},
        Case{"=CHAR(1E300)", "#VALUE!"}, Case{"=LEN(CHAR(0))", "0"}, Case{"=CODE(\"A\")", "65", 0},
        Case{"=CODE(\"\xE2\x82\xAC\")", "128", 0}, Case{"=CODE(\"\xE2\x86\x92\")", "#VALUE!"},
        Case{"=CODE(\"\")", "#VALUE!"}, Case{"=CODE(\"\xF0\x9F\x98\x80\")", "#VALUE!"},
        Case{"=CONCAT(A1:A3,\"x\",B3)", "123x"}, Case{"=CONCATENATE()", ""},
        Case{"=CONCAT(1,C1,2)", "#DIV/0!"}, Case{"=CONCAT(D1,C2)", "12%2/1/1950"},
        Case{"=FIXED(1234.567)", "1234.57"}, Case{"=FIXED(1234.567,2,1)", "1,234.57"},
        Case{"=FIXED(1234.567,2,0)", "1234.57"}, Case{"=FIXED(1234.5,-2)", "1200"},
        Case{"=FIXED(1250,-2)", "1300"}, Case{"=FIXED(0.5,0)", "1"}, Case{"=FIXED(2.5,0)", "2"},
        Case{"=FIXED(0.125,2)", "0.13"}, Case{"=FIXED(8.125,2)", "8.12"},
        Case{"=FIXED(1.5,1E300)", "1.5"}, Case{"=FIXED(1.5,B3)", "#VALUE!"},
        Case{"=FIXED(1.5,1,\"x\")", "#VALUE!"}, Case{"=FIXED(\"1\")", "#VALUE!"},
        Case{"=FIXED(1/3,20)", "0.333333333333334"}, Case{"=DOLLAR(-5)", "-$5.00"},
        Case{"=DOLLAR(1299,-2)", "$1,200"}, Case{"=DOLLAR(1234.5,1)", "$1,234.5"},
        Case{"=DOLLAR(-5,-400)", "$0"}, Case{"=VALUE(\"12%\")", "12%", 3},
        Case{"=VALUE(\" 1.5 \")", "1.5", 0}, Case{"=VALUE(B3)", "0", 0},
        Case{"=VALUE(\"\")", "#VALUE!"}, Case{"=VALUE(\"(5)\")", "#VALUE!"},
        Case{"=VALUE(\"TRUE\")", "TRUE", 8}, Case{"=VALUE(\"3/5/2026\")", "3/5/2026", 7},
        Case{"=VALUE(C1)", "#DIV/0!"}, Case{"=VALUE(D1)", "12%", 3},
        Case{"=VALUE(\"5 x\")", "#VALUE!"}));

INSTANTIATE_TEST_SUITE_P(
    Information, Texts,
    testing::Values(Case{"=ISEVEN(-2.5)", "TRUE", 8}, Case{"=ISODD(3.9)", "TRUE", 8},
                    Case{"=ISODD(B1)", "#VALUE!"}, Case{"=ISEVEN(B3)", "#VALUE!"},
                    Case{"=ISNA(NA())", "TRUE", 8}, Case{"=ISNA(C1)", "FALSE", 8},
                    Case{"=ISLOGICAL(1=1)", "TRUE", 8}, Case{"=ISLOGICAL(1)", "FALSE", 8},
                    Case{"=ISLOGICAL(D3)", "TRUE", 8}, Case{"=ISLOGICAL(AND(5))", "FALSE", 8},
                    Case{"=ISNONTEXT(B1)", "FALSE", 8}, Case{"=ISNONTEXT(B3)", "TRUE", 8},
                    Case{"=ISREF(A1)", "TRUE", 8}, Case{"=ISREF(A1:B2)", "TRUE", 8},
                    Case{"=ISREF(1)", "FALSE", 8}, Case{"=ISERR(C1:C3,1/0)", "2", 0},
                    Case{"=ISERR()", "0", 0}, Case{"=COUNTBLANK(A1:C3)", "2", 0},
                    Case{"=COUNTBLANK(\"\")", "0", 0}, Case{"=COUNTRY()", "1", 0}));

namespace {

using cells::internal::BeginsWithPattern;
using cells::internal::IsLike;
using cells::internal::Match;

Match Begins(std::wstring const & text, std::wstring const & pattern) {
    int budget = 100'000'000;
    return BeginsWithPattern(text, pattern, budget);
}

// The rules of the pattern, as they are told, with a try at every place.
bool Literal(std::string const & text, std::string const & pattern, std::size_t at = 0,
             std::size_t p = 0) {
    for (;; ++at, ++p) {
        if (p == pattern.size()) return true;
        if (at == text.size()) return false;
        if (pattern[p] == '*') {
            for (; at < text.size(); ++at)
                if (Literal(text, pattern, at, p + 1)) return true;
            return false;
        }
        if (pattern[p] == '~') {
            if (++p == pattern.size() || text[at] != pattern[p]) return false;
        } else if (pattern[p] != '?' && text[at] != pattern[p]) {
            return false;
        }
    }
}

std::vector<std::string> AllTexts(std::string const & units, int longest) {
    std::vector<std::string> all{""};
    for (std::size_t first = 0, length = 0; int(length) < longest; ++length) {
        std::size_t const last = all.size();
        for (; first < last; ++first)
            for (char unit : units) all.push_back(all[first] + unit);
    }
    return all;
}

} // namespace

TEST(Patterns, MatchAsATryAtEveryPlaceWould) {
    for (std::string const & pattern : AllTexts("ab*?~", 4))
        for (std::string const & text : AllTexts("ab*", 5))
            ASSERT_EQ(Begins(std::wstring(text.begin(), text.end()),
                             std::wstring(pattern.begin(), pattern.end())),
                      Literal(text, pattern) ? Match::kYes : Match::kNo)
                << text << " against " << pattern;
}

TEST(Patterns, ManyStarsAreSoonTold) {
    std::wstring const text(100000, L'a');
    std::wstring pattern;
    for (int i = 0; i < 30; ++i) pattern += L"*a";
    EXPECT_EQ(Begins(text, pattern + L"*b"), Match::kNo);
    EXPECT_EQ(IsLike(text, pattern + L"*b", 1'000'000), Match::kNo);
    EXPECT_EQ(IsLike(text, pattern + L"*", 1'000'000), Match::kYes);
}

TEST(Patterns, GiveUpWhenTheirStepsAreSpent) {
    std::wstring const text(2000, L'a'), pattern = L"*" + std::wstring(1000, L'a') + L"b";
    int budget = 10000;
    EXPECT_EQ(BeginsWithPattern(text, pattern, budget), Match::kTooLong);
    EXPECT_EQ(budget, 0);
    EXPECT_EQ(IsLike(text, pattern, 10000), Match::kTooLong);
    EXPECT_EQ(IsLike(text, pattern, 10'000'000), Match::kNo);
}

TEST(TextFinder, FindsWhatATryAtEveryPlaceFinds) {
    for (std::string const & find : AllTexts("ab", 5))
        for (std::string const & text : AllTexts("ab", 8)) {
            std::wstring const wide(text.begin(), text.end()), what(find.begin(), find.end());
            cells::internal::TextFinder const finder(what);
            for (std::size_t from = 0; from <= text.size(); ++from)
                ASSERT_EQ(finder.Find(wide, from), wide.find(what, from))
                    << find << " in " << text << " from " << from;
        }
}

// Trying every place would take ten thousand million steps.
TEST(TextFinder, RepeatedBeginningsCostNoMoreThanOthers) {
    Sheet sheet("C");
    sheet.Enter("A1", "=REPT(\"a\",1000000)");
    sheet.Enter("A2", "=REPT(\"a\",100000)+\"b\"");
    sheet.Enter("A3", "=FINDTEXT(A2,A1)");
    sheet.Enter("A4", "=LEN(SUBSTITUTE(A1+A2,A2,\"\"))");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("A3"), "#VALUE!");
    EXPECT_EQ(sheet.Text("A4"), "1000000");
}

TEST(TextLimit, DoublingEndsInAnError) {
    Sheet sheet("C");
    sheet.Enter("A1", "'xx");
    for (int row = 2; row <= 30; ++row) {
        std::string const above = "A" + std::to_string(row - 1);
        sheet.Enter("A" + std::to_string(row), "=" + above + "+" + above);
    }
    EXPECT_EQ(sheet.Get("A10").kind, cells::host::Kind::kText);
    EXPECT_EQ(sheet.Get("A30").error, 3);
}
