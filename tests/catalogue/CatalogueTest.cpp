// The function catalogue: what a host's dialogs show.
#include "catalogue/CFunctionCategories.h"

#include "formula/CCConstFormula.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRegionRef.h"
#include "formula/FormulaList.h"
#include "formula/FunctionRegistry.h"
#include "platform/Utf.h"
#include "support/BaseHost.h"

#include <gtest/gtest.h>
#include <map>

using cells::ArgumentKind;
using cells::FunctionArgument;
using cells::FunctionCategory;
using cells::FunctionDescription;
using cells::ToUtf8;

namespace {

template <typename Visit>
void ForEachFunction(Visit && visit) {
    CFunctionCategories const catalogue = getCategories();
    for (FunctionCategory const & category : catalogue.Categories())
        for (FunctionDescription const & function : category.functions) visit(function);
}

FunctionDescription Function(wchar_t const * name) {
    CFunctionCategories const catalogue = getCategories();
    FunctionDescription const * const found = catalogue.Find(CString(name));
    return found ? *found : FunctionDescription();
}

// An argument of the kind that the catalogue names.
CCFormula * NewArgument(FunctionArgument const & argument) {
    bool const isSingle =
        argument.kind != ArgumentKind::kValues && argument.kind != ArgumentKind::kReference;
    if (isSingle) return new CCConstFormula(errNA);
    CCRegionRef const region(CRect(0, 0, 1, 1));
    return new CCRefFormula(&region, 0);
}

// Whether the function takes a call with its first `count` arguments.
bool Accepts(FunctionDescription const & function, std::size_t count) {
    cells::test::BaseHost host;
    for (char const * name : {"A1", "A2", "B1", "B2"}) host.Make(name);
    cells::internal::FormulaListBuilder args;
    for (std::size_t i = 0; i < count; ++i) args.Add(NewArgument(function.arguments[i]));
    CCFormulaList * const list = args.Release();
    bool const accepts = function.func->check(&host, list, nullptr);
    FreeFormulaList(list, 1);
    return accepts;
}

} // namespace

TEST(Catalogue, HoldsEveryRegisteredFunctionInItsCategory) {
    std::map<int, std::size_t> const sizes = {{0, 20}, {1, 50}, {2, 13},  {3, 4},
                                              {4, 50}, {5, 20}, {6, 24},  {7, 27},
                                              {8, 17}, {9, 14}, {10, 20}, {11, 18}};
    CFunctionCategories const catalogue = getCategories();
    std::map<int, std::size_t> found;
    for (FunctionCategory const & category : catalogue.Categories()) {
        found[category.number] = category.functions.size();
        for (FunctionDescription const & function : category.functions)
            EXPECT_EQ(function.func->category, category.number) << ToUtf8(function.name);
    }
    EXPECT_EQ(found, sizes);
}

TEST(Catalogue, NamesItsCategories) {
    std::vector<std::string> names;
    CFunctionCategories const catalogue = getCategories();
    for (FunctionCategory const & category : catalogue.Categories())
        names.push_back(ToUtf8(category.name));
    EXPECT_EQ(names, (std::vector<std::string>{"Operators", "Mathematics", "Trigonometry", "Logic",
                                               "Statistics", "Date and time", "Text", "Financial",
                                               "Lookup and reference", "Information", "Remote data",
                                               "Document"}));
}

TEST(Catalogue, ListsTheFunctionsOfACategoryByName) {
    CFunctionCategories const catalogue = getCategories();
    for (FunctionCategory const & category : catalogue.Categories())
        for (std::size_t i = 1; i < category.functions.size(); ++i)
            EXPECT_LE(category.functions[i - 1].name.Compare(category.functions[i].name), 0);
}

TEST(Catalogue, TellsNameDescriptionAndArguments) {
    FunctionDescription const fixed = Function(L"fixed");
    EXPECT_EQ(ToUtf8(fixed.name), "FIXED");
    EXPECT_EQ(ToUtf8(fixed.description), "Number as text with fixed decimals.");
    EXPECT_EQ(ToUtf8(fixed.Call()), "FIXED(number; decimals; separators)");
    ASSERT_EQ(fixed.arguments.size(), 3u);
    EXPECT_EQ(ToUtf8(fixed.arguments[2].name), "separators");
    EXPECT_EQ(fixed.arguments[0].kind, ArgumentKind::kNumber);
    EXPECT_EQ(fixed.arguments[2].kind, ArgumentKind::kTruth);
    EXPECT_FALSE(fixed.arguments[0].isOptional);
    EXPECT_TRUE(fixed.arguments[1].isOptional);
    EXPECT_TRUE(fixed.arguments[2].isOptional);
    EXPECT_FALSE(fixed.arguments[2].isRepeated);
}

TEST(Catalogue, MarksARepeatedArgumentAndKeepsItsNameClean) {
    FunctionDescription const days = Function(L"NETWORKDAYS");
    ASSERT_EQ(days.arguments.size(), 3u);
    EXPECT_EQ(ToUtf8(days.arguments[2].name), "holiday");
    EXPECT_TRUE(days.arguments[2].isRepeated);
    EXPECT_EQ(days.arguments[0].kind, ArgumentKind::kDate);
    EXPECT_EQ(days.arguments[2].kind, ArgumentKind::kValues);
    EXPECT_EQ(ToUtf8(days.Call()), "NETWORKDAYS(start; end; holiday...)");
}

TEST(Catalogue, FunctionsWithoutArgumentsHaveNone) {
    EXPECT_TRUE(Function(L"PI").arguments.empty());
    EXPECT_EQ(ToUtf8(Function(L"PI").Call()), "PI()");
}

TEST(Catalogue, AFunctionOfTwoFormsTellsBothAndListsTheFirst) {
    FunctionDescription const irr = Function(L"IRR");
    EXPECT_EQ(ToUtf8(irr.Call()), "IRR(values; guess, or guess; initial; value...)");
    ASSERT_EQ(irr.arguments.size(), 2u);
    EXPECT_EQ(ToUtf8(irr.arguments[0].name), "values");
    EXPECT_EQ(ToUtf8(irr.arguments[1].name), "guess");
}

TEST(Catalogue, OperatorsStandUnderTheirGlyphAndAreNotFoundByName) {
    CFunctionCategories const catalogue = getCategories();
    FunctionDescription const & first = catalogue.Categories().front().functions.front();
    EXPECT_EQ(ToUtf8(first.Call()), "!");
    EXPECT_EQ(ToUtf8(first.description), "Reference on a sheet.");
    EXPECT_EQ(catalogue.Find(CString(L"+")), nullptr);
    EXPECT_EQ(catalogue.Find(CString(L"NOSUCH")), nullptr);
}

TEST(Catalogue, NamesTheKindsOfArguments) {
    EXPECT_EQ(ToUtf8(cells::NameOfKind(ArgumentKind::kValue)), "value");
    EXPECT_EQ(ToUtf8(cells::NameOfKind(ArgumentKind::kDate)), "date or time");
    EXPECT_EQ(ToUtf8(cells::NameOfKind(ArgumentKind::kReference)), "reference");
}

TEST(Catalogue, EveryEntryIsDescribed) {
    ForEachFunction([](FunctionDescription const & function) {
        EXPECT_FALSE(function.name.IsEmpty());
        EXPECT_TRUE(ToUtf8(function.description).ends_with('.')) << ToUtf8(function.name);
        for (FunctionArgument const & argument : function.arguments)
            EXPECT_FALSE(argument.name.IsEmpty()) << ToUtf8(function.name);
    });
}

TEST(Catalogue, EachFunctionTakesTheArgumentsThatItNames) {
    ForEachFunction([](FunctionDescription const & function) {
        if (!function.func->check) return;
        std::string const name = ToUtf8(function.Call());
        std::size_t needed = 0;
        for (FunctionArgument const & argument : function.arguments) needed += !argument.isOptional;
        EXPECT_TRUE(Accepts(function, needed)) << name;
        EXPECT_TRUE(Accepts(function, function.arguments.size())) << name;
        bool const isInfix = function.func->kind == cells::kInfix;
        if (needed == 0 || isInfix) return;
        EXPECT_FALSE(Accepts(function, needed - 1)) << name;
    });
}
