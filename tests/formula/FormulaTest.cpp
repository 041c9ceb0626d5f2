#include "cells/Guards.h"
#include "formula/CCConstFormula.h"
#include "formula/CCDocumentRef.h"
#include "formula/CCNameRef.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefList.h"
#include "formula/CCRefOpFormula.h"
#include "formula/CCRegionRef.h"
#include "formula/CCRemoteOpFormula.h"
#include "formula/CCRemoteRef.h"
#include "formula/Clipboard.h"
#include "formula/FunctionRegistry.h"
#include "formula/OperatorObjects.h"
#include "formula/Parser.h"
#include "platform/Resources.h"
#include "platform/Services.h"
#include "support/BaseHost.h"

#include <gtest/gtest.h>
#include <random>
#include <rapidcheck.h>
#include <stdexcept>

using cells::test::BaseHost;
using Tree = std::unique_ptr<CCFormula>;

namespace {

Tree Parsed(BaseHost & host, wchar_t const * text, int mode = 0) {
    return Tree(_ParseFormula(&host, text, mode, nullptr));
}

std::string Printed(BaseHost & host, CCFormula const * tree) {
    if (!tree) return "no formula";
    std::wostringstream stream;
    tree->Print(&host, stream, 0);
    return cells::test::Utf8(stream.str());
}

std::string PrintedForFile(BaseHost & host, CCFormula const & tree) {
    std::wostringstream stream;
    tree.Print2File(&host, stream, 0);
    return cells::test::Utf8(stream.str());
}

std::string Nested(std::string const & head, int count, std::string const & middle,
                   std::string const & tail) {
    std::string text;
    for (int i = 0; i < count; ++i) text += head;
    text += middle;
    for (int i = 0; i < count; ++i) text += tail;
    return text;
}

bool Parses(BaseHost & host, std::string const & text) {
    return Parsed(host, std::wstring(text.begin(), text.end()).c_str()) != nullptr;
}

} // namespace

struct PrintRow {
    wchar_t const * text;
    char const * printed;
};

TEST(FormulaPrint, KeepsBracketsWhereTheyAreNeeded) {
    PrintRow const rows[] = {{L"1-(2-3)", "1 - (2 - 3)"},
                             {L"(1-2)-3", "1 - 2 - 3"},
                             {L"(1+2)*3", "(1 + 2) * 3"},
                             {L"-(1+2)", "-(1 + 2)"},
                             {L"2^3^2", "2 ^ 3 ^ 2"},
                             {L"2^(3^2)", "2 ^ (3 ^ 2)"},
                             {L"-2^2", "-2 ^ 2"},
                             {L"-(2^2)", "-(2 ^ 2)"},
                             {L"~A1=1", "~A1 = 1"},
                             {L"(~A1)=1", "(~A1) = 1"},
                             {L"sum(a1,b2)", "SUM (A1, B2)"},
                             {L"NOW()", "NOW ()"},
                             {L"@SUM(1)", "SUM (1)"},
                             {L"A1..B2", "A1:B2"},
                             {L"$A1:B$2", "$A1:B$2"},
                             {L"\"a^\"b^^\"", "\"a^\"b^^\""},
                             {L"{1,2;3}", "{1, 2; 3}"},
                             {L"{-1,+2;\"x\",50%}", "{-1, 2; \"x\", 50%}"},
                             {L"1.50", "1.50"},
                             {L"A1*1E-20", "A1 * 1.E-20"},
                             {L"12.5E3", "1.25E+04"},
                             {L"5%", "5%"},
                             {L"1~=2", "1 <> 2"},
                             {L"1=<2", "1 <= 2"},
                             {L"1=>2", "1 >= 2"},
                             {L"1==2", "1 = 2"},
                             {L"Sheet1!A1", "Sheet1 ! A1"},
                             {L"Sheet1!A1:Sheet2!B2", "Sheet1 ! A1 : Sheet2 ! B2"},
                             {L"a:b!A1", "a : b ! A1"},
                             {L"TRUE|FALSE&1", "TRUE | FALSE & 1"},
                             {L"Q1Sales+1", "Q1Sales + 1"}};
    BaseHost host;
    for (PrintRow const & row : rows)
        EXPECT_EQ(Printed(host, Parsed(host, row.text).get()), row.printed);
}

TEST(FormulaParse, RefusesWhatIsNoFormula) {
    BaseHost host;
    for (wchar_t const * text :
         {L"1+", L"5%%", L"f(1,,2)", L"SUM(1,,2)", L"+~1", L"1=~2", L"SUM", L"foo:bar", L"A1 B1",
          L"(1", L"{}", L"{A1}", L"{1;;2}", L"@A1", L"TRUENORTH", L"1#2", L")", L"\"open"})
        EXPECT_EQ(Parsed(host, text), nullptr) << cells::ToUtf8(CString(text));
}

TEST(FormulaParse, ListOfPeculiaritiesThatAreMeantSo) {
    BaseHost host;
    EXPECT_NE(Parsed(host, L"foo..bar"), nullptr);
    EXPECT_NE(Parsed(host, L"~~A1"), nullptr);
    EXPECT_NE(Parsed(host, L"~1=~2") == nullptr, false);
    EXPECT_NE(Parsed(host, L"OFFSET(A1,1,1):B2"), nullptr);
    EXPECT_NE(Parsed(host, L"A65537"), nullptr); // a name
    EXPECT_EQ(Parsed(host, L"T1")->GetType(), kRefFormula);
    EXPECT_EQ(Parsed(host, L"LOG10(100)")->GetType(), kOpFormula);
    EXPECT_EQ(static_cast<CCOpFormula *>(Parsed(host, L"LOG10(100)").get())->GetFunc()->stringId,
              13061u);
}

TEST(FormulaParse, ASecondCornerThatIsNoAddressLeavesTheFirstAsACell) {
    struct Row {
        wchar_t const * text;
        char const * printed;
    } const rows[] = {
        {L"A1:Q1Sales", "A1 .. Q1Sales"},    {L"A1..Q1Sales", "A1 .. Q1Sales"},
        {L"A1 : Q1Sales", "A1 .. Q1Sales"},  {L"A1:\tQ1Sales", "A1 .. Q1Sales"},
        {L"A1 .. Q1Sales", "A1 .. Q1Sales"}, {L"$A$1:Q1Sales", "$A$1 .. Q1Sales"},
        {L"$A1..B2_", "$A1 .. B2_"},         {L"A$1 : A100000", "A$1 .. A100000"},
        {L"A1:A100000", "A1 .. A100000"},    {L"A1:A65537", "A1 .. A65537"},
    };
    BaseHost host;
    for (Row const & row : rows) {
        SCOPED_TRACE(row.printed);
        Tree const tree = Parsed(host, row.text);
        ASSERT_NE(tree, nullptr);
        EXPECT_EQ(Printed(host, tree.get()), row.printed);
        ASSERT_EQ(tree->GetType(), kRefOpFormula);
        CCFormulaList const * const corners = static_cast<CCOpFormula &>(*tree).GetArgs();
        auto const & first = static_cast<CCRefFormula &>(*corners->formula);
        auto const & last = static_cast<CCRefFormula &>(*corners->next->formula);
        EXPECT_EQ(first.GetRef()->GetType(), kRefCell);
        EXPECT_EQ(last.GetRef()->GetType(), kRefName);
        Tree const again = Parsed(host, cells::FromUtf8(row.printed));
        ASSERT_NE(again, nullptr);
        EXPECT_EQ(Printed(host, again.get()), row.printed);
    }
    EXPECT_EQ(Parsed(host, L"A1:B2")->GetType(), kRefFormula);
    EXPECT_EQ(Parsed(host, L"A1B:B2"), nullptr); // a name, which no ":" may follow
}

namespace {

struct ErrorReader : BaseHost {
    int ReadsErrorTexts() const override { return 1; }
};

} // namespace

TEST(FormulaParse, ErrorTextsAreConstantsWhereTheHostReadsThem) {
    struct Row {
        wchar_t const * text;
        char const * printed;
    } const rows[] = {
        {L"#REF!", "#REF!"},
        {L"SUM(#REF!,A1)", "SUM (#REF!, A1)"},
        {L"-#DIV/0!+1", "-#DIV/0! + 1"},
        {L"{1,#N/A;#VALUE!,2}", "{1, #N/A; #VALUE!, 2}"},
        {L"One!#REF!", "One ! #REF!"},
        {L"#REF!..A2", "#REF! .. A2"},
        {L"A1:#REF!", "A1 .. #REF!"},
        {L"#CIRC!=#CALL!", "#CIRC! = #CALL!"},
    };
    BaseHost plain;
    ErrorReader host;
    for (Row const & row : rows) {
        EXPECT_EQ(Parsed(plain, row.text), nullptr) << row.printed;
        EXPECT_EQ(Printed(host, Parsed(host, row.text).get()), row.printed);
    }
    for (wchar_t const * text : {L"#REF", L"#ref!", L"#ERR67", L"#N/Ax", L"A1#REF!", L"#REF!A1"})
        EXPECT_EQ(Parsed(host, text), nullptr) << cells::ToUtf8(CString(text));
    for (int error = 1; error <= 9; ++error) {
        CCCellValue value;
        Tree const tree = Parsed(host, cells::ErrorText(error));
        ASSERT_NE(tree, nullptr) << error;
        EvalFormula(&host, value, tree.get(), nullptr);
        EXPECT_EQ(value.GetError(), error);
    }
}

TEST(Entries, TheTextOfAnErrorIsThatErrorWhereTheHostReadsIt) {
    BaseHost plain;
    ErrorReader host;
    auto const typed = [](BaseHost & reader, wchar_t const * text) {
        CCCellValue value;
        CCFormula * formula = nullptr;
        EXPECT_EQ(_Parse(&reader, text, value, formula, nullptr), kEntryValue);
        return value;
    };
    EXPECT_EQ(typed(host, L"#N/A").GetError(), 9);
    EXPECT_EQ(typed(host, L" #REF! ").GetError(), 1);
    for (wchar_t const * text : {L"'#REF!", L"#REF! x", L"#REF!1", L"x #REF!", L"#Ref!"})
        EXPECT_TRUE(typed(host, text).IsText()) << cells::ToUtf8(CString(text));
    EXPECT_TRUE(typed(plain, L"#REF!").IsText());
}

TEST(FormulaParse, LongArgumentListsAreRead) {
    BaseHost host;
    std::string list = "1";
    for (int i = 1; i < 100000; ++i) list += ",1";
    std::string const text = "SUM(" + list + ")";
    Tree const tree = Parsed(host, std::wstring(text.begin(), text.end()).c_str());
    ASSERT_NE(tree, nullptr);
    CCCellValue value;
    EvalFormula(&host, value, tree.get(), nullptr);
    EXPECT_EQ(value.GetNumber(), 100000);
}

TEST(FormulaParse, StackHolds1024Symbols) {
    BaseHost host;
    EXPECT_TRUE(Parses(host, Nested("(", 1021, "1", ")")));
    EXPECT_FALSE(Parses(host, Nested("(", 1022, "1", ")")));
    EXPECT_TRUE(Parses(host, Nested("ABS(", 510, "1", ")")));
    EXPECT_FALSE(Parses(host, Nested("ABS(", 511, "1", ")")));
    EXPECT_TRUE(Parses(host, Nested("MOD(1,", 255, "1", ")")));
    EXPECT_FALSE(Parses(host, Nested("MOD(1,", 256, "1", ")")));
    EXPECT_TRUE(Parses(host, Nested("-", 1022, "1", "")));
    EXPECT_FALSE(Parses(host, Nested("-", 1023, "1", "")));
}

TEST(FormulaParse, TreesAreAtMost2048LevelsDeep) {
    BaseHost host;
    EXPECT_TRUE(Parses(host, Nested("1+", 2047, "1", "")));
    EXPECT_FALSE(Parses(host, Nested("1+", 2048, "1", "")));
    EXPECT_FALSE(Parses(host, Nested("1+", 100000, "1", "")));
}

TEST(FormulaParse, DeepTreesCompute) {
    BaseHost host;
    std::string const text = "=" + Nested("1+", 2047, "1", "");
    host.Enter("A1", std::wstring(text.begin(), text.end()));
    EXPECT_EQ(host.Text("A1"), "2048");
}

struct EntryRow {
    wchar_t const * text;
    int kind;
    bool tree;
    char const * value;
};

TEST(Entries, AreClassified) {
    EntryRow const rows[] = {
        {L"-5", 1, false, "-5"},         {L"-5+1", 2, true, ""},   {L"-A1", 2, true, ""},
        {L"+", 1, false, "+"},           {L"(5)", 1, false, "-5"}, {L"(5)+1", 1, false, "(5)+1"},
        {L"1+2", 1, false, "1+2"},       {L"=1+", 2, false, ""},   {L"'=1", 1, false, "=1"},
        {L"!1+1", 3, true, ""},          {L"!1+", 3, false, ""},   {L"@SUM(1)", 2, true, ""},
        {L"@1", 2, false, ""},           {L"", 1, false, ""},      {L"  ", 1, false, ""},
        {L" x ", 1, false, "x "},        {L"-TRUE", 2, true, ""},  {L"-3/5/2026", 2, true, ""},
        {L"(TRUE)", 1, false, "(TRUE)"}, {L"= 1 ", 2, true, ""},   {L"-5%", 1, false, "-5%"}};
    BaseHost host;
    for (EntryRow const & row : rows) {
        SCOPED_TRACE(cells::ToUtf8(CString(row.text)));
        CCCellValue value;
        CCFormula * formula = nullptr;
        EXPECT_EQ(_Parse(&host, row.text, value, formula, nullptr), row.kind);
        Tree const tree(formula);
        EXPECT_EQ(tree != nullptr, row.tree);
        std::wostringstream stream;
        value.Print(&host, stream, 0);
        EXPECT_EQ(cells::test::Utf8(stream.str()), row.value);
    }
    CCCellValue value;
    CCFormula * formula = nullptr;
    EXPECT_EQ(_Parse(&host, nullptr, value, formula, nullptr), 1);
    _Parse(&host, L"(5)", value, formula, nullptr);
    EXPECT_TRUE(value.GetFormat().getNegBr());
}

TEST(Entries, PrefixesNameCandidates) {
    for (wchar_t const * text : {L"=", L" @x", L"!", L"+1", L"-", L"("})
        EXPECT_TRUE(_IsFormulaPrefix(nullptr, text));
    for (wchar_t const * text : {L"", L"1", L"x="}) EXPECT_FALSE(_IsFormulaPrefix(nullptr, text));
}

TEST(Entries, LegacyReadersGetFormulasOnly) {
    BaseHost host;
    for (wchar_t const * text :
         {L"", L" ", L"*x", L"'x", L"\"x\"", L"-5", L"(5)", L"5", L"1/2/2020", L"1+"}) {
        std::wstring copy = text;
        wchar_t * at = copy.data();
        EXPECT_EQ(CVDOSParse(&host, at), nullptr) << cells::ToUtf8(CString(text));
    }
    for (wchar_t const * text : {L" A1+1", L"-A1", L"(5)+1", L"1+2"}) {
        std::wstring copy = text;
        wchar_t * at = copy.data();
        EXPECT_NE(Tree(CVDOSParse(&host, at)), nullptr) << cells::ToUtf8(CString(text));
    }
}

TEST(Entries, RawParserMovesBehindWhatItReadAndMayBeEnteredAgain) {
    BaseHost host;
    std::wstring text = L"1+2";
    wchar_t * at = text.data();
    ASSERT_EQ(yyparse(&host, at, 0, nullptr), 0);
    Tree const tree(yyresult);
    EXPECT_EQ(Printed(host, tree.get()), "1 + 2");
    EXPECT_EQ(*at, 0);
    std::wstring bad = L"1+)";
    at = bad.data();
    EXPECT_EQ(yyparse(&host, at, 0, nullptr), 1);
    std::wstring tokens = L"SUM(";
    at = tokens.data();
    EXPECT_NE(yylex(&host, at, 0, nullptr), 0);
    EXPECT_EQ(yylex(&host, at, 0, nullptr), L'(');
    EXPECT_EQ(yylex(&host, at, 0, nullptr), 0);
}

TEST(Entries, BrokenFormulasLeakNothing) {
    BaseHost host;
    std::mt19937 random(11);
    wchar_t const * const pieces[] = {L"SUM(", L"A1", L"Sheet1!", L"1.5",   L"\"x\"", L")",    L",",
                                      L";",    L"{",  L"}",       L"+",     L"-",     L"%",    L"^",
                                      L"..",   L":",  L"!",       L"@",     L"~",     L"name", L"=",
                                      L"<>",   L" ",  L"#",       L"B2:C3", L"\"",    L"IF("};
    for (int i = 0; i < 10000; ++i) {
        std::wstring text;
        for (int n = int(random() % 12); n >= 0; --n) text += pieces[random() % std::size(pieces)];
        Parsed(host, text.c_str());
    }
}

TEST(EditText, ReadsBackAsTheSameFormula) {
    // A grammar-driven generator: texts of every node kind, but for what the text cannot carry.
    struct Maker {
        std::mt19937 random;
        unsigned Pick(unsigned n) { return unsigned(random() % n); }
        std::wstring Leaf() {
            wchar_t const * const leaves[] = {
                L"A1",    L"$B$2",        L"C$3:D4",      L"1",
                L"1.50",  L"2E-5",        L"\"a^^b\"",    L"TRUE",
                L"name",  L"{1,2;\"x\"}", L"A1:Q1Sales",  L"$A$1..name",
                L"#REF!", L"One!name",    L"One!A1:name", L"One:Two!A1:B2"};
            return leaves[Pick(unsigned(std::size(leaves)))];
        }
        std::wstring Make(int depth) {
            if (depth == 0) return Leaf();
            wchar_t const * const binary[] = {L"+",  L"-", L"*",  L"/", L"^", L"=",
                                              L"<>", L"<", L">=", L"&", L"|"};
            switch (Pick(6)) {
            case 0:
                return Leaf();
            case 1:
                return L"-(" + Make(depth - 1) + L")";
            case 2:
                return L"(~(" + Make(depth - 1) + L"))";
            case 3:
                return L"IF(" + Make(depth - 1) + L"," + Make(depth - 1) + L",SUM(" +
                       Make(depth - 1) + L"))";
            default:
                return L"(" + Make(depth - 1) + L")" + binary[Pick(11)] + L"(" + Make(depth - 1) +
                       L")";
            }
        }
    };
    ErrorReader host;
    EXPECT_TRUE(rc::check("print, parse, print", [&](unsigned seed) {
        Maker maker{std::mt19937(seed)};
        std::wstring const text = maker.Make(4);
        Tree const first = Parsed(host, text.c_str());
        RC_ASSERT(first != nullptr);
        std::string const printed = Printed(host, first.get());
        Tree const second = Parsed(host, cells::FromUtf8(printed));
        RC_ASSERT(Printed(host, second.get()) == printed);
        Tree const copy(first->Copy());
        RC_ASSERT(Printed(host, copy.get()) == printed);
        RC_ASSERT(copy->GetDepth() == first->GetDepth());
    }));
}

TEST(Registry, HoldsTheFunctionsAndOperators) {
    EXPECT_EQ(GetBuiltInFuncSize(), 277);
    int plus = 0, minus = 0, operators = 0;
    for (int i = 0; i < 277; ++i) {
        CCFunc const & func = *GetBuiltInFunc()[i];
        plus += CString(func.LocalName()) == L"+";
        minus += CString(func.LocalName()) == L"-";
        operators += func.kind != cells::kFunction;
        if (func.kind == cells::kFunction) {
            EXPECT_EQ(func.priority, 100);
            EXPECT_GE(func.category, 1);
        }
    }
    EXPECT_EQ(plus, 2);
    EXPECT_EQ(minus, 2);
    EXPECT_EQ(operators, 20);
    for (wchar_t const * name :
         {L"NORMSDIST", L"ZTEST", L"SYD", L"TBILLEQ", L"YIELD", L"", L"NOSUCH"})
        EXPECT_FALSE(IsFunction(name, 0xFF)) << cells::ToUtf8(CString(name));
}

TEST(Registry, SortsLongerNamesBeforeTheirBeginnings) {
    int log = -1, log10 = -1, less = -1, lessOrEqual = -1;
    for (int i = 0; i < 277; ++i) {
        CString const name(GetBuiltInFunc()[i]->LocalName());
        if (name == L"LOG") log = i;
        if (name == L"LOG10") log10 = i;
        if (name == L"<") less = i;
        if (name == L"<=") lessOrEqual = i;
    }
    EXPECT_LT(log10, log);
    EXPECT_LT(lessOrEqual, less);
}

TEST(Registry, FindsNames) {
    BaseHost host;
    EXPECT_TRUE(IsFunction(L"sum", cells::kFunction));
    EXPECT_FALSE(IsFunction(L"sum", cells::kInfix));
    EXPECT_TRUE(IsFunction(L"+", cells::kInfix | cells::kPrefix));
    CCFunc * func = nullptr;
    EXPECT_TRUE(_EatFunction(&host, L"Log10(5)", func, cells::kFunction));
    EXPECT_EQ(func->stringId, 13061u);
    EXPECT_FALSE(_EatFunction(&host,
                              L"\x100"
                              L"1(",
                              func, cells::kFunction));
    EXPECT_EQ(func, nullptr);
    char minus[] = "-";
    CCFormulaList * one = FormulaListCreate1Item(new CCConstFormula(3));
    EXPECT_EQ(GetFunction(&host, minus, one)->kind, cells::kPrefix);
    FormulaListAddLast(&one, new CCConstFormula(3));
    EXPECT_EQ(GetFunction(&host, minus, one)->kind, cells::kInfix);
    FreeFormulaList(one, 1);
}

TEST(Registry, StoredNamesAreWholeNames) {
    auto const find = [](wchar_t const * name) {
        return cells::internal::FindEnglishFunction(name, cells::kFunction);
    };
    EXPECT_EQ(find(L"LOG10")->stringId, 13061u);
    EXPECT_EQ(find(L"SUM")->stringId, 13079u);
    for (wchar_t const * name : {L"YIELD", L"TBILLEQ", L"SUMX", L"", L"LOG1"})
        EXPECT_EQ(find(name), nullptr) << cells::ToUtf8(CString(name));
}

TEST(Registry, ARangeNodeReadsTwoOfItsArguments) {
    BaseHost host;
    CCFunc * range = cells::internal::OperatorObject(cells::internal::Operator::kRange);
    auto const cell = [](uchar col) { return new CCRefFormula(col, 0, 0); };
    Tree const node(ConstructOpFormula(range, FormulaListCreate3Item(cell(0), cell(2), cell(9))));
    for (char const * name : {"A1", "C1", "J1"}) host.Make(name);
    EXPECT_EQ(node->Check(&host, nullptr), 0);
    CCCellValue value;
    node->Eval(&host, value, nullptr);
    CCRegionRef const expected(0, 0, 2, 0);
    ASSERT_TRUE(value.IsRef());
    EXPECT_TRUE(value.GetRef()->IsEqual(&expected));
}

TEST(Registry, FieldsOfAFunctionsString) {
    CCFunc const * sum = cells::internal::FindEnglishFunction(L"SUM", cells::kFunction);
    CString field;
    EXPECT_TRUE(sum->GetFuncString(field, 0));
    EXPECT_EQ(field, L"SUM");
    EXPECT_TRUE(sum->GetFuncString(field, 1));
    EXPECT_FALSE(field.IsEmpty());
    EXPECT_TRUE(sum->GetFuncString(field, 2));
    EXPECT_EQ(field, L"value...");
    EXPECT_FALSE(sum->GetFuncString(field, 3));
    EXPECT_FALSE(
        cells::internal::OperatorObject(cells::internal::Operator::kAdd)->GetFuncString(field, 0));
}

namespace {

int TakeNothing(cells::CTX *, CCFormula *& choice, CCFormulaList const *, CCRef const *) {
    choice = nullptr;
    return 7;
}

int TakeLink(cells::CTX *, CCRemoteRef & remote, CCFormulaList const *, CCRef const *) {
    remote.Set(L"doc", L"A1");
    return 1;
}

int TakeProperty(cells::CTX *, CCDocumentRef & property, CCFormulaList const *, CCRef const *) {
    property.Set(CCDocumentRef::ECDocRefType(5));
    return 1;
}

template <typename Func, typename Extra>
void ExpectInit(Func & func, Extra extra) {
    func.Init(L"EXTENDED", cells::kFunctionPriority, cells::kFunction, 3, nullptr, nullptr, extra);
    EXPECT_STREQ(func.LocalName(), L"EXTENDED");
    EXPECT_EQ(func.extra, extra);
    EXPECT_EQ(func.category, 3);
    func.extra = nullptr;
    func.Init(13044u, cells::kFunctionPriority, cells::kFunction, 1, nullptr, nullptr, extra);
    EXPECT_STREQ(func.EnglishName(), L"ABS");
    EXPECT_EQ(func.stringId, 13044u);
    EXPECT_EQ(func.extra, extra);
    func.Init(L"PLAIN", cells::kFunctionPriority, cells::kFunction, 0, nullptr, nullptr);
    EXPECT_EQ(func.extra, extra); // stays
}

} // namespace

TEST(Registry, AFunctionIsSetUpTogetherWithItsExtraOne) {
    BaseHost host;
    CCChooseFunc choose;
    ExpectInit(choose, &TakeNothing);
    CCFormula * choice = nullptr;
    EXPECT_EQ(choose.GetChoice(&host, choice, nullptr, nullptr), 7);
    CCRemoteFunc link;
    ExpectInit(link, &TakeLink);
    CCRemoteRef remote;
    EXPECT_EQ(link.GetRemoteRef(&host, remote, nullptr, nullptr), 1);
    EXPECT_STREQ(remote.item(), L"A1");
    CCDocumentFunc document;
    ExpectInit(document, &TakeProperty);
    CCDocumentRef property;
    EXPECT_EQ(document.GetDocumentRef(&host, property, nullptr, nullptr), 1);
    EXPECT_EQ(property.docType, 5);
}

TEST(Registry, AnotherLanguageParsesItsNamesAndStoresEnglishOnes) {
    BaseHost host;
    Tree const before = Parsed(host, L"SUM(1,2)");
    cells::PlatformServices().loadString = [](unsigned id, CString & text) {
        if (id == 13079) return text = L"SUMME\nAddiert\nWert", true;
        if (id == 13104) return text.Empty(), true; // AVG has no name in this language
        return false;
    };
    InitBuiltinFunctions();
    EXPECT_EQ(Printed(host, Parsed(host, L"summe(1,2)").get()), "SUMME (1, 2)");
    EXPECT_EQ(Parsed(host, L"SUM(1,2)"), nullptr);
    EXPECT_EQ(Parsed(host, L"AVG(1,2)"), nullptr);
    Tree const english = Parsed(host, L"SUM(1,2)", 1);
    EXPECT_EQ(PrintedForFile(host, *english), "SUM (1, 2)");
    EXPECT_EQ(Printed(host, before.get()), "SUMME (1, 2)"); // trees keep their objects
    cells::PlatformServices().loadString = nullptr;
    InitBuiltinFunctions();
    EXPECT_EQ(Printed(host, before.get()), "SUM (1, 2)");
}

TEST(FormulaLists, TellHowManyItemsTheyHave) {
    EXPECT_TRUE(FormulaList0Item(nullptr) && FormulaList0ItemEx(nullptr));
    EXPECT_FALSE(FormulaList1Item(nullptr) || FormulaList1ItemEx(nullptr));
    CCFormulaList * list =
        FormulaListCreate3Item(new CCConstFormula(1), new CCConstFormula(2), new CCConstFormula(3));
    EXPECT_TRUE(FormulaList2Item(list) && FormulaList3Item(list) && FormulaList3ItemEx(list));
    EXPECT_FALSE(FormulaList4Item(list) || FormulaList2ItemEx(list));
    CCFormulaList * copy = CopyFormulaList(list);
    EXPECT_TRUE(FormulaList3ItemEx(copy));
    FreeFormulaList(list, 1);
    FreeFormulaList(copy, 1);
}

TEST(ConstructOpFormula, ChoosesTheClassAndFreesWhatItCannotUse) {
    struct Strange : CCFunc {
        int GetType() const override { return 9; }
    } strange;
    EXPECT_EQ(ConstructOpFormula(&strange, new CCConstFormula(1)), nullptr);
    EXPECT_EQ(ConstructOpFormula(&strange, cells::NewHeapText(L"a"), cells::NewHeapText(L"b")),
              nullptr);
    CCFunc * choose = cells::internal::FindEnglishFunction(L"IF", cells::kFunction);
    EXPECT_EQ(Tree(ConstructOpFormula(choose, new CCConstFormula(1)))->GetType(), kChooseOpFormula);
    CCFunc * sheet = cells::internal::OperatorObject(cells::internal::Operator::kSheetRange);
    Tree const node(ConstructOpFormula(sheet, "a", "b"));
    EXPECT_EQ(node->GetType(), kRefOpFormula);
    BaseHost host;
    EXPECT_EQ(Printed(host, node.get()), "a : b");
    CCChooseFunc noExtra;
    CCFormula * choice = reinterpret_cast<CCFormula *>(1);
    EXPECT_EQ(noExtra.GetChoice(&host, choice, nullptr, nullptr), 4);
    EXPECT_EQ(choice, nullptr);
    EXPECT_EQ(GetFuncChoice(nullptr, &host, choice, nullptr, nullptr), 4);
    CCRemoteRef remote;
    EXPECT_EQ(GetFuncRemoteRef(choose, &host, remote, nullptr, nullptr), 0);
}

TEST(EvaluationProtocol, ConstantsAreWalkedOnce) {
    BaseHost host;
    CCConstFormula constant(7);
    EXPECT_EQ(constant.OpenRef(&host, nullptr), 1);
    EXPECT_EQ(constant.OpenRef(&host, nullptr), 0);
    CSize size;
    EXPECT_EQ(constant.RefSize(&host, 1, size, nullptr), 1);
    CCCellValue value;
    EXPECT_EQ(constant.NextValue(&host, 1, value, nullptr), 1);
    EXPECT_EQ(value.GetError(), 7);
    EXPECT_EQ(constant.NextValue(&host, 1, value, nullptr), 0);
    EXPECT_EQ(constant.RefSize(&host, 1, size, nullptr), 0);
    EXPECT_EQ(constant.CloseRef(&host, 1, nullptr), 1);
    Tree const array = Parsed(host, L"{5,6;7,8}");
    EXPECT_EQ(array->OpenRef(&host, nullptr), 1);
    EXPECT_EQ(array->RefSize(&host, 1, size, nullptr), 1);
    EXPECT_EQ(size, CSize(2, 2));
    int count = 0;
    while (array->NextValue(&host, 1, value, nullptr)) ++count;
    EXPECT_EQ(count, 4);
    EXPECT_EQ(Parsed(host, L"{5}")->IsSingleValue(&host, nullptr), 1);
    EXPECT_EQ(array->IsSingleValue(&host, nullptr), 0);
}

TEST(EvaluationProtocol, OperatorsDeliverOneValueAndMinusOneIsANumber) {
    BaseHost host;
    Tree const tree = Parsed(host, L"0-1");
    EXPECT_EQ(tree->OpenRef(&host, nullptr), 1);
    EXPECT_EQ(tree->OpenRef(&host, nullptr), 0);
    CCCellValue value;
    EXPECT_EQ(tree->NextValue(&host, 1, value, nullptr), 1);
    EXPECT_EQ(value.GetNumber(), -1);
    EXPECT_EQ(tree->NextValue(&host, 1, value, nullptr), 0);
}

TEST(EvaluationProtocol, AnUnreadableReferenceReplacesWhatTheCallerHad) {
    BaseHost host;
    Tree const tree = Parsed(host, L"A1");
    CCCellValue value;
    value.Set(L"stale");
    tree->Eval(&host, value, nullptr);
    EXPECT_EQ(value.GetError(), 1);
}

TEST(EvaluationProtocol, EveryTrueAnswerOfAHostIsTrue) {
    struct Answering : BaseHost {
        int answer = 1;
        int IsValidRef(CCRef const *) override { return answer; }
        int IsSingleValue(CCRef const *) override { return answer; }
        int GetValue(CCRef const *, CCCellValue & value, int) override {
            value.Set(7, uchar(C_NF_GENERAL));
            return answer;
        }
    } host;
    CCRef const * const name = new CCNameRef(L"tax");
    for (int answer : {1, 2, -1, 1 << 20, 0}) {
        host.answer = answer;
        for (wchar_t const * text : {L"A1", L"tax", L"+A1", L"ABS(A1)", L"INDIRECT(\"A1\")"}) {
            CCCellValue value;
            Tree const tree = Parsed(host, text);
            ASSERT_TRUE(tree);
            EvalFormula(&host, value, tree.get(), nullptr);
            EXPECT_EQ(value.IsNumber(), answer != 0) << cells::ToUtf8(CString(text)) << answer;
        }
        EXPECT_EQ(CCRefFormula(L"tax", 0).IsEditSourceRef(&host, nullptr) != 0, answer != 0);
        EXPECT_EQ(name->IsSingleValue(&host) != 0, answer != 0);
    }
    delete name;
}

TEST(EvaluationProtocol, InAWalkAnAnswerOfMinusOneIsErrorOne) {
    struct Answering : BaseHost {
        int answer = 1;
        int IsValidRef(CCRef const *) override { return 1; }
        int GetValue(CCRef const *, CCCellValue & value, int) override {
            value.Set(7, uchar(C_NF_GENERAL));
            return answer;
        }
    } host;
    // An operator node whose value is a reference.
    struct Yielding : CCFunc {
        static void Eval(cells::CTX *, CCCellValue & result, CCFormulaList const *, CCRef const *) {
            result.AdoptRef(new CCRCRef(0, 0));
        }
        Yielding() {
            Init(L"YIELDING", cells::kFunctionPriority, cells::kFunction, 0, nullptr, Eval);
        }
    } yielding;
    for (int answer : {2, -1}) {
        host.answer = answer;
        Tree const tree(ConstructOpFormula(&yielding));
        CCCellValue value;
        ASSERT_EQ(tree->OpenRef(&host, nullptr), 1);
        EXPECT_EQ(tree->NextValue(&host, 1, value, nullptr), 1);
        EXPECT_EQ(value.GetError(), answer == -1 ? 1 : 0);
        Tree const sum(
            ConstructOpFormula(cells::internal::OperatorObject(cells::internal::Operator::kAdd),
                               ConstructOpFormula(&yielding)));
        EvalFormula(&host, value, sum.get(), nullptr);
        EXPECT_EQ(value.GetError(), answer == -1 ? 1 : 0);
    }
}

TEST(EvaluationProtocol, ARegionWithoutElementsIsErrorOne) {
    struct Empty : BaseHost {
        int IsValidRef(CCRef const *) override { return 1; }
        CSize GetRefSize(CCRef const *) override { return {0, 0}; }
    } host;
    for (wchar_t const * text : {L"A1:A3+1", L"AND(A1:A3)", L"PLUS(A1:A3,1)"}) {
        CCCellValue value;
        Tree const tree = Parsed(host, text);
        EvalFormula(&host, value, tree.get(), nullptr);
        EXPECT_EQ(value.GetError(), 1) << cells::ToUtf8(CString(text));
    }
    EXPECT_EQ(host.GetOpenRefCount(), 0);
}

TEST(EvaluationProtocol, AHostMayParseInTheMiddleOfAnEvaluation) {
    struct Parsing : BaseHost {
        int GetValue(CCRef const * ref, CCCellValue & value, int index) override {
            for (wchar_t const * text : {L"A1+", L"1+2*(3-SUM(4,5))"})
                Tree const parsed(_ParseFormula(this, text, 0, nullptr));
            return BaseHost::GetValue(ref, value, index);
        }
    } host;
    host.Enter("A1", L"5");
    host.Enter("B1", L"=SUM(A1,IF(A1>1,A1*2,0))");
    EXPECT_EQ(host.Text("B1"), "15");
}

TEST(EvaluationProtocol, NullFormulaIsErrorFour) {
    BaseHost host;
    CCCellValue value;
    EvalFormula(&host, value, nullptr, nullptr);
    EXPECT_EQ(value.GetError(), 4);
}

TEST(EvaluationProtocol, AThrowingHostGivesErrorThreeAndNoOpenWalk) {
    struct Throwing : BaseHost {
        bool fail = true;
        int GetValue(CCRef const * ref, CCCellValue & value, int index) override {
            if (fail) throw std::runtime_error("no value");
            return BaseHost::GetValue(ref, value, index);
        }
    } host;
    host.Make("A1");
    host.Enter("B1", L"=SUM(A1,A1)");
    EXPECT_EQ(host.Make("B1").GetValue().GetError(), 3);
    EXPECT_EQ(host.GetOpenRefCount(), 0);
    EXPECT_EQ(host.depth, 0);
    host.fail = false;
    host.Enter("B2", L"=SUM(A1,3)");
    EXPECT_EQ(host.Text("B2"), "3");
}

TEST(EvaluationProtocol, EveryOperatorHasASession) {
    struct Counting : BaseHost {
        int sessions = 0, deepest = 0;
        int BeginSession() override {
            deepest = std::max(deepest, ++depth);
            return ++sessions;
        }
    } host;
    Tree const tree = Parsed(host, L"1+2*3");
    CCCellValue value;
    EvalFormula(&host, value, tree.get(), nullptr);
    EXPECT_EQ(value.GetNumber(), 7);
    EXPECT_EQ(host.sessions, 2);
    EXPECT_EQ(host.deepest, 2);
    EXPECT_EQ(host.depth, 0);
}

TEST(Check, IsRememberedOnlyWhenItSucceeds) {
    BaseHost host;
    CCRefFormula const formula(1, 1, 0);
    EXPECT_EQ(formula.Check(&host, nullptr), 1);
    host.Make("B2");
    EXPECT_EQ(formula.Check(&host, nullptr), 0);
    EXPECT_EQ(CCConstArrayFormula().Check(&host, nullptr), 3);
    Tree const copy(formula.Copy());
    host.cells.clear();
    EXPECT_EQ(formula.Check(&host, nullptr), 0);
    EXPECT_EQ(copy->Check(&host, nullptr), 1); // a copy starts unchecked
}

TEST(Check, ABranchThatWasNotLiveIsCheckedWhenItIsPicked) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Enter("B1", L"=IF(A1,1,ABS())");
    EXPECT_EQ(host.Text("B1"), "1");
    host.Enter("A1", L"0");
    host.Idle();
    EXPECT_EQ(host.Make("B1").GetValue().GetError(), 4);
}

TEST(Check, AnIndexThatSelectsNothingIsErrorFourAndErrorThreeOnACheckedTree) {
    BaseHost host;
    EXPECT_EQ(Parsed(host, L"CHOOSE(3,5,6)")->Check(&host, nullptr), 4);
    EXPECT_EQ(Parsed(host, L"CHOOSE(1E300,5,6)")->Check(&host, nullptr), 4);
    EXPECT_EQ(Parsed(host, L"CHOOSE(0,5,6)")->Check(&host, nullptr), 3); // no index
    host.Enter("A1", L"2");
    Tree const tree = Parsed(host, L"CHOOSE(A1,5,6)");
    EXPECT_EQ(tree->Check(&host, nullptr), 0);
    host.Enter("A1", L"3");
    CCCellValue value;
    tree->Eval(&host, value, nullptr);
    EXPECT_EQ(value.GetError(), 3);
    EXPECT_EQ(tree->OpenRef(&host, nullptr), 0);
    EvalFormula(&host, value, Tree(tree->Copy()).get(), nullptr);
    EXPECT_EQ(value.GetError(), 4);
}

TEST(TreeUpdates, LeaveTheOldTreeAndHandOutANewOne) {
    BaseHost host;
    host.Make("A1");
    Tree const tree = Parsed(host, L"$A$1+A2*SUM(A1)");
    CCRCRef const a1(0, 0), c3(2, 2), far(9, 9);
    CCFormula * out = nullptr;
    EXPECT_EQ(tree->UpdateRef(&host, nullptr, &a1, &c3, 0, out), 1);
    EXPECT_EQ(Printed(host, Tree(out).get()), "$C$3 + A2 * SUM (C3)");
    EXPECT_EQ(Printed(host, tree.get()), "$A$1 + A2 * SUM (A1)");
    EXPECT_EQ(tree->UpdateRef(&host, nullptr, &far, &c3, 0, out), 0);
    EXPECT_EQ(Printed(host, Tree(out).get()), Printed(host, tree.get()));
    EXPECT_EQ(tree->InvalidateRef(&host, &a1, out, nullptr), 1);
    EXPECT_EQ(Printed(host, Tree(out).get()), "#VALUE! + A2 * SUM (#VALUE!)");
    CCItem const * const item = host.GetItem(&a1);
    EXPECT_EQ(tree->InvalidateItem(&host, item, out, nullptr), 1);
    EXPECT_EQ(Printed(host, Tree(out).get()), "#REF! + A2 * SUM (#REF!)");
}

TEST(TreeUpdates, AnItemWithoutAPlaceIsGoneWhereItIsTheItemFound) {
    struct Unplaced : CCItem {
        CCRef const * GetRef() const override { return nullptr; }
        bool IsEqual(CCItem const * item) const override { return item == this; }
    };
    struct ItemHost : BaseHost {
        Unplaced item;
        using BaseHost::GetItem;
        CCItem * GetItem(CCRef const * ref) override {
            CCNameRef const tax(L"tax");
            return ref && ref->IsEqual(&tax) ? &item : BaseHost::GetItem(ref);
        }
    } host;
    host.Make("A1");
    Tree const tree = Parsed(host, L"tax+A1");
    CCFormula * out = nullptr;
    EXPECT_EQ(tree->InvalidateItem(&host, &host.item, out, nullptr), 1);
    EXPECT_EQ(Printed(host, Tree(out).get()), "#REF! + A1");
    Unplaced other;
    EXPECT_EQ(tree->InvalidateItem(&host, &other, out, nullptr), 0);
    EXPECT_EQ(Printed(host, Tree(out).get()), "tax + A1");
}

TEST(TreeUpdates, AnAssignedConstantIsTheOther) {
    CCConstFormula constant{CCCellValue(L"before")};
    CCConstFormula const other{CCCellValue(L"text")};
    constant = other;
    EXPECT_STREQ(constant.GetValue().GetText(), L"text");
    EXPECT_STREQ(other.GetValue().GetText(), L"text");
}

TEST(TreeUpdates, APasteTurnsWhatFallsOffIntoAnError) {
    BaseHost host;
    CCClipboardData clip;
    clip.mode = 1;
    clip.source = CRect(0, 10, 1, 11);
    CCRCRef const from(0, 10), to(1, 10);
    Tree const tree = Parsed(host, L"IV1+A1+$A1");
    tree->UpdateInPaste(&host, &from, &to, &clip);
    EXPECT_EQ(Printed(host, tree.get()), "#REF! + B1 + $A1");
}

TEST(Precedents, AreTheReferencesNewestFirst) {
    BaseHost host;
    Tree const tree = Parsed(host, L"A1+SUM(B1:B2,name)*A1");
    CCRefList * list = tree->GetPrecedents(&host);
    std::string order;
    for (CCRefList * node = list; node; node = node->m_pNext) {
        std::wostringstream stream;
        node->m_pRef->Print(&host, stream, 0);
        order += cells::test::Utf8(stream.str()) + " ";
    }
    RefListFree(list, 0);
    EXPECT_EQ(order, "A1 B1:B2 name A1 ");
}

TEST(LinkQuestions, AreAnsweredByTheTree) {
    BaseHost host;
    EXPECT_TRUE(Parsed(host, L"1+NOW()")->ContainsTodayLinks());
    EXPECT_TRUE(Parsed(host, L"COUNTRY()")->ContainsTodayLinks());
    EXPECT_FALSE(Parsed(host, L"1+A1")->ContainsTodayLinks());
    EXPECT_TRUE(Parsed(host, L"SUM(RAND())")->AlwaysRecalc());
    EXPECT_FALSE(Parsed(host, L"OFFSET(A1,1,1)")->AlwaysRecalc());
    EXPECT_TRUE(Parsed(host, L"HYPERLINK(\"x\")")->IsHyperLink());
    EXPECT_TRUE(Parsed(host, L"REMOTE(\"d\",\"i\")")->ContainsRemoteLinks());
    CCRCRef const a1(0, 0);
    EXPECT_TRUE(Parsed(host, L"2*A1")->ContainsLink(&host, &a1, nullptr));
    CCRemoteRef const link(L"?Sheet", L"A1");
    CCRefFormula const sheetLink(&link, 0);
    EXPECT_TRUE(sheetLink.ContainsSheetLinks());
    EXPECT_FALSE(const_cast<CCRefFormula &>(sheetLink).ContainsRemoteLinks());
}

TEST(LinkQuestions, GoThroughAllArguments) {
    BaseHost host;
    CCRemoteRef const sheet(L"?Sheet", L"A1"), document(L"doc", L"A1");
    auto const sum = [&](CCRef const & ref) {
        return Tree(
            ConstructOpFormula(cells::internal::FindEnglishFunction(L"SUM", cells::kFunction),
                               new CCRefFormula(1, 1, 0), new CCRefFormula(&ref, 0)));
    };
    EXPECT_TRUE(sum(sheet)->ContainsSheetLinks());
    EXPECT_FALSE(sum(sheet)->ContainsRemoteLinks());
    EXPECT_TRUE(sum(document)->ContainsRemoteLinks());
    EXPECT_FALSE(sum(document)->ContainsSheetLinks());
    EXPECT_FALSE(Parsed(host, L"SUM(A1)")->ContainsRemoteLinks());
    EXPECT_FALSE(Parsed(host, L"SUM(A1)+1")->ContainsSheetLinks());
    CCRCRef const far(9, 9);
    EXPECT_FALSE(Parsed(host, L"SUM(A1)+1")->ContainsLink(&host, &far, nullptr));
}

TEST(LinkQuestions, ADocumentFunctionIsLinkedToItsProperty) {
    BaseHost host;
    Tree const title = Parsed(host, L"TITLE()"), author = Parsed(host, L"AUTHOR()");
    CCDocumentRef property;
    auto const & node = static_cast<CCOpFormula const &>(*title);
    ASSERT_TRUE(GetFuncDocumentRef(node.GetFunc(), &host, property, node.GetArgs(), nullptr));
    EXPECT_TRUE(title->ContainsLink(&host, &property, nullptr));
    EXPECT_FALSE(author->ContainsLink(&host, &property, nullptr));
    CCRCRef const a1(0, 0);
    EXPECT_TRUE(Parsed(host, L"ROW(A1)")->ContainsLink(&host, &a1, nullptr));
}

TEST(LinkQuestions, ARemoteFunctionIsLinkedToItsPlace) {
    BaseHost host;
    Tree const owned = Parsed(host, L"REMOTE(\"doc\",\"B2\")");
    CCFormula * const tree = owned.get();
    ASSERT_EQ(tree->GetType(), kRemoteOpFormula);
    CCRCRef const here(0, 0);
    tree->RegisterDependents(&host, &here);
    CCRemoteRef const place(L"DOC", L"b2"), other(L"doc", L"B3");
    EXPECT_TRUE(tree->ContainsLink(&host, &place, nullptr));
    EXPECT_FALSE(tree->ContainsLink(&host, &other, nullptr));
    CCFormula * untouched = nullptr;
    EXPECT_EQ(tree->InvalidateItem(&host, &host.Make("C3"), untouched, nullptr), 0);
    EXPECT_EQ(untouched, nullptr);
    CCRCRef const local(2, 2);
    CCFormula * out = nullptr;
    EXPECT_EQ(tree->UpdateRef(&host, nullptr, &place, &local, 0, out), 1);
    EXPECT_EQ(Printed(host, Tree(out).get()), "C3");
    EXPECT_EQ(tree->UpdateRef(&host, nullptr, &place, &other, 0, out), 1);
    EXPECT_EQ(Printed(host, Tree(out).get()), "REMOTE (\"doc\", \"B3\")");
}

TEST(TreeUpdates, ASheetLinkFollowsItsSheetsName) {
    CCRemoteRef const link(L"?Old", L"A1"), other(L"?Else", L"A1");
    CCRefFormula follows(&link, 0), stays(&other, 0), plain(1, 1, 0);
    CString old(L"?OLD"), now(L"?New");
    for (CCRefFormula * node : {&follows, &stays, &plain}) node->OnSheetRename(old, now);
    EXPECT_EQ(static_cast<CCRemoteRef *>(follows.GetRef())->document(), L"?New");
    EXPECT_EQ(static_cast<CCRemoteRef *>(stays.GetRef())->document(), L"?Else");
}

TEST(TreeUpdates, AMovedFormulaIsKnownByItsNewPlace) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Make("D4");
    host.Enter("B1", L"=A1+1");
    CCRCRef const from(1, 0), to(3, 3);
    CCRef3D const was(&host, &from), is(&host, &to);
    host.Make("B1").LoadFormula(&host)->MoveFormula(&host, &was, &is);
    cells::internal::RefListHolder const list(host.Make("A1").LoadDependents(&host));
    ASSERT_NE(list.list, nullptr);
    EXPECT_EQ(BaseHost::NameOf(list.list->m_pRef), "D4");
    EXPECT_EQ(list.list->m_pNext, nullptr);
}

TEST(FormulaPrint, ARegionHasItsOwnFlags) {
    BaseHost host;
    CCRefFormula const region(1, 2, 3, 4, cells::kAbsoluteColumn);
    EXPECT_EQ(Printed(host, &region), "$B3:D5");
}
