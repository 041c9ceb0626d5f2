// Languages supplied from outside: German from its file, and files that are refused.
#include "catalogue/Language.h"
#include "catalogue/CFunctionCategories.h"
#include "formula/FunctionRegistry.h"
#include "host/Engine.h"
#include "host/Sheet.h"
#include "platform/CArchive.h"
#include "platform/Resources.h"
#include "platform/Services.h"
#include "platform/Utf.h"
#include "support/Paths.h"

#include <gtest/gtest.h>
#include <map>

using cells::Language;
using cells::LanguageError;
using cells::ToUtf8;

namespace {

// German for the length of a test.
class German : public testing::Test {
protected:
    German() { cells::host::UseLanguageFile(CVCELLS_RESOURCES "/de.txt"); }
    ~German() override { cells::UseEnglish(); }

    cells::host::Sheet sheet{"C"};
};

LanguageError ErrorOf(std::string_view file) {
    cells::host::StartEngine();
    LanguageError error;
    EXPECT_FALSE(Language::Read(file, error)) << file;
    return error;
}

} // namespace

TEST_F(German, FormulasAreTypedAndPrintedInIt) {
    sheet.Enter("A1", "=summe(1,2)*WENN(1>2,5,10)");
    sheet.Enter("A2", "=LÄNGE(WIEDERHOLEN(\"ab\",3))");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("A1"), "30");
    EXPECT_EQ(*sheet.Formula({0, 0}), "=SUMME (1, 2) * WENN (1 > 2, 5, 10)");
    EXPECT_EQ(sheet.Text("A2"), "6");
}

TEST_F(German, EnglishNamesAreUnknownThen) {
    sheet.Enter("A1", "=SUM(1,2)");
    sheet.Recalculate();
    EXPECT_FALSE(sheet.Formula({0, 0}));
}

TEST_F(German, WordsAndErrorsAreGerman) {
    sheet.Enter("A1", "wahr");
    sheet.Enter("A2", "=1/0");
    sheet.Enter("A3", "=NV()");
    sheet.Enter("A4", "=ISTFEHLER(A2)");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("A1"), "WAHR");
    EXPECT_EQ(sheet.Get("A1").formatClass, 8);
    EXPECT_EQ(sheet.Text("A2"), "#DIV/0!");
    EXPECT_EQ(sheet.Text("A3"), "#NV");
    EXPECT_EQ(sheet.Text("A4"), "WAHR");
}

TEST_F(German, FormulasThatStandInCellsFollowTheLanguage) {
    sheet.Enter("A1", "=MITTELWERT(1,3)");
    EXPECT_EQ(*sheet.Formula({0, 0}), "=MITTELWERT (1, 3)");
    cells::UseEnglish();
    EXPECT_EQ(*sheet.Formula({0, 0}), "=AVERAGE (1, 3)");
}

TEST_F(German, FilesHoldTheEnglishNames) {
    CCFunc * func = nullptr;
    ASSERT_TRUE(_EatFunction(nullptr, L"SUMME", func, cells::kFunction));
    CMemFile file(16);
    {
        CArchive ar(&file, CArchive::store);
        WriteFunc(nullptr, ar, func);
    }
    file.SeekToBegin();
    CArchive ar(&file, CArchive::load);
    cells::UseEnglish();
    CCFunc * const read = ReadFunc(nullptr, ar);
    EXPECT_EQ(read, func);
    EXPECT_STREQ(read->EnglishName(), L"SUM");
    EXPECT_STREQ(read->LocalName(), L"SUM");
}

TEST_F(German, HasEveryFunctionInItsFile) {
    for (unsigned id = cells::kStringFirstFunction; id <= cells::kStringLastFunction; ++id) {
        CString own;
        EXPECT_TRUE(cells::PlatformServices().loadString(id, own)) << id;
    }
}

TEST_F(German, DescribesEveryFunctionWithAsManyArgumentsAsEnglish) {
    std::map<CCFunc *, cells::FunctionDescription> german;
    CFunctionCategories const catalogue = getCategories();
    for (auto const & category : catalogue.Categories())
        for (auto const & function : category.functions) german[function.func] = function;
    cells::UseEnglish();
    CFunctionCategories const english = getCategories();
    for (auto const & category : english.Categories())
        for (auto const & function : category.functions) {
            auto const & own = german.at(function.func);
            EXPECT_TRUE(ToUtf8(own.description).ends_with('.')) << ToUtf8(own.name);
            ASSERT_EQ(own.arguments.size(), function.arguments.size()) << ToUtf8(own.name);
            for (std::size_t i = 0; i < own.arguments.size(); ++i) {
                EXPECT_EQ(own.arguments[i].kind, function.arguments[i].kind);
                EXPECT_EQ(own.arguments[i].isRepeated, function.arguments[i].isRepeated)
                    << ToUtf8(own.name);
            }
        }
}

TEST_F(German, HasEveryStringOfTheEngine) {
    for (unsigned id = 13029; id <= 20120; ++id) {
        CString const english = cells::LoadEnglishString(id);
        bool const isFunction =
            id >= cells::kStringFirstFunction && id <= cells::kStringLastFunction;
        if (english.IsEmpty() || isFunction) continue;
        CString own;
        EXPECT_TRUE(cells::PlatformServices().loadString(id, own)) << id;
    }
}

TEST_F(German, CategoriesAndKindsHaveGermanWords) {
    CFunctionCategories const catalogue = getCategories();
    EXPECT_EQ(ToUtf8(catalogue.Categories()[7].name), "Finanzen");
    EXPECT_EQ(ToUtf8(cells::NameOfKind(cells::ArgumentKind::kNumber)), "Zahl");
    EXPECT_NE(catalogue.Find(CString(L"zählenwenn")), nullptr);
}

TEST(LanguageFile, LinesWithoutANumberAndATextAreRefused) {
    EXPECT_EQ(ErrorOf("# a comment\n\nSUM SUMME\n").line, 3);
    EXPECT_EQ(ErrorOf("13079\n").line, 1);
    EXPECT_EQ(ErrorOf("13079 \n").line, 1);
    EXPECT_EQ(ErrorOf("99999999999 x\n").line, 1);
}

TEST(LanguageFile, ANumberThatComesTwiceIsRefused) {
    LanguageError const error = ErrorOf("13079 SUMME\n13080 X\n13079 SUMA\n");
    EXPECT_EQ(error.line, 3);
    EXPECT_EQ(error.message, "String 13079 stands here again.");
}

TEST(LanguageFile, BytesThatAreNoUtf8AreRefused) {
    EXPECT_EQ(ErrorOf("13020 OUI\n13079 SOM\xE9\n").line, 2);
}

TEST(LanguageFile, NamesThatCannotBeTypedAreRefused) {
    for (char const * name : {"2SUM", "A B", "S-M", "\xD0\xA1\xD0\xA3\xD0\x9C" /* Cyrillic */})
        EXPECT_EQ(ErrorOf("13020 OUI\n13079 " + std::string(name) + " | x\n").line, 2) << name;
}

TEST(LanguageFile, TheNameOfAnotherFunctionIsRefused) {
    EXPECT_EQ(ErrorOf("13224 SI\n13225 si\n").line, 2);
    LanguageError const error = ErrorOf("13079 ABS\n");
    EXPECT_EQ(error.line, 1);
    EXPECT_EQ(error.message, "\"ABS\" is the name of function 13044 too.");
}

TEST(LanguageFile, WhatItLeavesOutStaysEnglish) {
    cells::host::StartEngine();
    LanguageError error;
    auto const language = Language::Read("\xEF\xBB\xBF"
                                         "13079 SOMME | Somme. | valeur...\r\n",
                                         error);
    ASSERT_TRUE(language) << error.message;
    EXPECT_EQ(ToUtf8(*language->Find(13079)), "SOMME\nSomme.\nvaleur...");
    EXPECT_FALSE(language->Find(13080));
    cells::UseLanguage(*language);
    EXPECT_NE(getCategories().Find(CString(L"SOMME")), nullptr);
    EXPECT_NE(getCategories().Find(CString(L"SUMSQ")), nullptr);
    cells::UseEnglish();
}

TEST(LanguageFile, AFileThatCannotBeReadIsNamed) {
    try {
        cells::host::UseLanguageFile("/nowhere/xx.txt");
        FAIL();
    } catch (std::runtime_error const & error) {
        EXPECT_STREQ(error.what(), "/nowhere/xx.txt: the file cannot be read.");
    }
}
