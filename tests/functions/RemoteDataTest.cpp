// Functions that read other documents, databases and properties of the document.
#include "context/Context.h"
#include "format/DateSerial.h"
#include "formula/CCConstFormula.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRemoteRef.h"
#include "formula/Parser.h"
#include "functions/internal/Families.h"
#include "host/Engine.h"
#include "platform/CFile.h"
#include "support/BaseHost.h"

#include <gtest/gtest.h>

using cells::test::BaseHost;

namespace {

// A source that knows some names and answers every item with its own text.
class Source final : public CCTransportInterface {
public:
    cells::CTX * ctx() override { return nullptr; }
    cells::CTX * ctx() const override { return nullptr; }
    int OnRemoteIsValidRef(CCRemoteRef const * ref) override {
        asked.push_back(cells::ToUtf8(ref->document()));
        return asked.back() == known;
    }
    int OnRemoteGetValue(CCRemoteRef const * ref, CCCellValue & value, int index) override {
        EXPECT_EQ(index, 0);
        value.Set(ref->document() + CString(L"|") + ref->item());
        return 1;
    }
    int OnRemoteGetDataSources(CCRemoteRef const *, CStringArray & names, int kind) override {
        for (int i = 1; i <= kind; ++i)
            names.Add(CString(L"source") + CString(wchar_t(L'0' + i), 1));
        return kind != refusedKind;
    }
    int OnRemoteGetItems(CCRemoteRef const * ref, CStringArray & names) override {
        names.Add(L"id");
        names.Add(ref->item());
        return ref->document() != CString(L"gone");
    }
    std::vector<std::string> asked;
    std::string known;
    int refusedKind = -1;
};

class Reader : public BaseHost {
public:
    int DoTransport(CCRemoteRef const *, CFile & file) override {
        return source ? source->OnTransport(file) : 0;
    }
    std::string Shows(wchar_t const * formula) {
        Enter("F9", formula);
        return Text("F9");
    }
    Source * source = nullptr;
};

struct RemoteData : testing::Test {
    RemoteData() {
        cells::host::StartEngine();
        reader.source = &source;
    }
    Source source;
    Reader reader;
};

struct Row {
    wchar_t const * formula;
    char const * shown;
};
void PrintTo(Row const & row, std::ostream * out) { *out << row.shown; }

class RemoteLinks : public testing::TestWithParam<Row> {};

} // namespace

INSTANTIATE_TEST_SUITE_P(
    Items, RemoteLinks,
    testing::Values(Row{L"=REMOTE(\"s\",\"i\")", "s|i"}, Row{L"=DBGET(\"d\",\"t\")", "d|t"},
                    Row{L"=DBGET(\"d\",\"t\",\"f\")", "d|t!!!f"},
                    Row{L"=DBGET(\"d\",\"t\",\"f\",3)", "d|t!!!f!3"},
                    Row{L"=DBGET(\"d\",\"t\",\"f\",\"last\")", "d|t!!!f!last"},
                    Row{L"=DBGET(\"d\",\"t\",1)", "d|t!!!id"},
                    Row{L"=DBGET(\"d\",\"t\",2.9)", "d|t!!!t"},
                    Row{L"=DBSQL(\"d\",\"SELECT 1\")", "d|SELECT 1"},
                    Row{L"=DBSQL(\"d\",\"SELECT 1\",\"f\",2)", "d|SELECT 1!!!f!2"},
                    Row{L"=DBSQL(\"d\",\"SELECT 1\",2)", "d|SELECT 1!!!SELECT 1"},
                    Row{L"=DBSORT(\"d\",\"t\",\"x\")", "d|t!x"},
                    Row{L"=DBSORT(\"d\",\"t\",\"x\",\"f\",3)", "d|t!x!!f!3"},
                    Row{L"=DBFILTER(\"d\",\"t\",\"x\")", "d|t!!x"},
                    Row{L"=DBFILTER(\"d\",\"t\",\"x\",\"f\",3)", "d|t!!x!f!3"},
                    Row{L"=DBFILTERSORT(\"d\",\"t\",\"x\",\"y\")", "d|t!x!y"},
                    Row{L"=DBFILTERSORT(\"d\",\"t\",\"x\",\"y\",\"f\",3)", "d|t!x!y!f!3"},
                    Row{L"=DBSQLFILTER(\"d\",\"t\",\"a=1\")", "d|SELECT * FROM t WHERE a=1"},
                    Row{L"=DBSQLSORT(\"d\",\"t\",\"a\",\"f\")", "d|SELECT * FROM t ORDER BY a!!!f"},
                    Row{L"=DBSQLFILTERSORT(\"d\",\"t\",\"a=1\",\"b\",\"f\",3)",
                        "d|SELECT * FROM t WHERE a=1 ORDER BY b!!!f!3"},
                    Row{L"=DBGET(\"d\",\"t\",\"f\",3.9)", "d|t!!!f!3"},
                    Row{L"=DBGET(\"d\",\"t\",\"f\",-0.5)", "d|t!!!f!0"},
                    Row{L"=DBGET(\"d\",\"t\",\"f\",-7.5)", "d|t!!!f!-7"},
                    Row{L"=DBGET(\"d\",\"t\",\"f\",1E300)", "d|t!!!f!-2147483648"}));

TEST_P(RemoteLinks, AskForTheirItem) {
    Source source;
    Reader reader;
    reader.source = &source;
    EXPECT_EQ(reader.Shows(GetParam().formula), GetParam().shown);
}

class CataloguesAndFailures : public testing::TestWithParam<Row> {};

INSTANTIATE_TEST_SUITE_P(
    Rows, CataloguesAndFailures,
    testing::Values(
        Row{L"=DBTABLECOUNT(\"d\")", "1"}, Row{L"=DBQUERYCOUNT(\"d\")", "2"},
        Row{L"=DBRELATIONCOUNT(\"d\")", "4"}, Row{L"=DBFIELDCOUNT(\"d\",\"t\")", "2"},
        Row{L"=DBTABLENAME(\"d\",1)", "source1"}, Row{L"=DBQUERYNAME(\"d\",2)", "source2"},
        Row{L"=DBQUERYNAME(\"d\",2.9)", "source2"}, Row{L"=DBRELATIONNAME(\"d\",4)", "source4"},
        Row{L"=DBFIELDNAME(\"d\",\"t\",2)", "t"}, Row{L"=DBTABLENAME(\"d\",0)", "#VALUE!"},
        Row{L"=DBTABLENAME(\"d\",0.9)", "#VALUE!"}, Row{L"=DBTABLENAME(\"d\",2)", "#VALUE!"},
        Row{L"=DBTABLENAME(\"d\",-1)", "#VALUE!"}, Row{L"=DBTABLENAME(\"d\",1E300)", "#VALUE!"},
        Row{L"=DBTABLENAME(\"d\",\"1\")", "#VALUE!"},
        Row{L"=DBFIELDCOUNT(\"gone\",\"t\")", "#REF!"},
        Row{L"=DBFIELDNAME(\"gone\",\"t\",0)", "#REF!"},
        Row{L"=ISERROR(DBTABLECOUNT(\"d\"))", "FALSE"},
        // A field that cannot be resolved names no link, and such a formula is not taken.
        Row{L"=DBGET(\"d\",\"t\",3)", "=DBGET (\"d\", \"t\", 3)"},
        Row{L"=DBGET(\"gone\",\"t\",1)", "=DBGET (\"gone\", \"t\", 1)"},
        Row{L"=DBGET(\"d\",\"t\",TRUE)", "d|t!!!id"},
        Row{L"=DBGET(\"d\",\"t\",1/0)", "=DBGET (\"d\", \"t\", 1 / 0)"},
        Row{L"=DBGET(\"d\",\"t\",\"f\",1/0)", "=DBGET (\"d\", \"t\", \"f\", 1 / 0)"},
        Row{L"=DBGET(1,\"t\")", "=DBGET (1, \"t\")"},
        Row{L"=DBSQLSORT(\"d\",\"t\",1)", "=DBSQLSORT (\"d\", \"t\", 1)"},
        Row{L"=HYPERLINK(5)", "#CALL!"}, Row{L"=HYPERLINK(5,\"label\")", "#CALL!"},
        Row{L"=HYPERLINK(1/0)", "#CALL!"}, Row{L"=HYPERLINK(\"page\")", "page"},
        Row{L"=HYPERLINK(\"page\",\"label\")", "label"}, Row{L"=HYPERLINK(\"page\",5)", "5"},
        Row{L"=HYPERLINK(\"page\",1/0)", "#DIV/0!"}));

TEST_P(CataloguesAndFailures, Show) {
    Source source;
    Reader reader;
    reader.source = &source;
    EXPECT_EQ(reader.Shows(GetParam().formula), GetParam().shown);
}

class WrongCalls : public testing::TestWithParam<wchar_t const *> {};

INSTANTIATE_TEST_SUITE_P(Shapes, WrongCalls,
                         testing::Values(L"=HYPERLINK()", L"=HYPERLINK(\"a\",\"b\",\"c\")",
                                         L"=TITLE(1)", L"=PAGE(1)"));

TEST_P(WrongCalls, AreCallErrorsAndKeepTheirFormula) {
    Reader reader;
    EXPECT_EQ(reader.Shows(GetParam()), "#CALL!");
}

class WrongLinks : public testing::TestWithParam<wchar_t const *> {};

INSTANTIATE_TEST_SUITE_P(Shapes, WrongLinks,
                         testing::Values(L"REMOTE(\"a\")", L"REMOTE(\"a\",\"b\",\"c\")",
                                         L"DBGET(\"d\")", L"DBGET(\"d\",\"t\",\"f\",1,2)",
                                         L"DBSORT(\"d\",\"t\")",
                                         L"DBSQLFILTERSORT(\"d\",\"t\",\"a\")", L"DBTABLECOUNT()",
                                         L"DBTABLENAME(\"d\")", L"SSGET(\"d\",\"i\",1)"));

TEST_P(WrongLinks, AreRefusedByTheirCheck) {
    Reader reader;
    std::unique_ptr<CCFormula> const formula(_ParseFormula(&reader, GetParam(), 0, nullptr));
    ASSERT_TRUE(formula);
    EXPECT_EQ(formula->Check(&reader, nullptr), errLegacy);
}

TEST_F(RemoteData, ARefusedDocumentIsRetriedUnderItsExtension) {
    EXPECT_EQ(reader.Shows(L"=SSGET(\"book\",\"A1\")"), "book.cvs|A1");
    EXPECT_EQ(reader.Shows(L"=WPGET(\"letter\",\"x\")"), "letter.cvw|x");
    EXPECT_EQ(reader.Shows(L"=SSGET(\"book.x\",\"A1\")"), "book.x|A1");
    EXPECT_EQ(reader.Shows(L"=SSGET(\"my.dir/book\",\"A1\")"), "my.dir/book.cvs|A1");
    EXPECT_EQ(reader.Shows(L"=SSGET(\".book\",\"A1\")"), ".book.cvs|A1");
    for (std::string const & name : source.asked) EXPECT_EQ(name.find(".c"), std::string::npos);
}

TEST_F(RemoteData, AKnownDocumentKeepsItsPlainName) {
    source.known = "book";
    EXPECT_EQ(reader.Shows(L"=SSGET(\"book\",\"A1\")"), "book|A1");
}

TEST_F(RemoteData, AnUnreachableSourceIsAReferenceError) {
    reader.source = nullptr;
    for (wchar_t const * formula :
         {L"=REMOTE(\"s\",\"i\")", L"=DBTABLECOUNT(\"d\")", L"=DBFIELDNAME(\"d\",\"t\",1)",
          L"=SSGET(\"book\",\"A1\")", L"=DBGET(\"d\",\"t\",\"f\",1)"})
        EXPECT_EQ(reader.Shows(formula), "#REF!");
}

TEST_F(RemoteData, ARefusedCatalogueIsAReferenceError) {
    source.refusedKind = 2;
    EXPECT_EQ(reader.Shows(L"=DBQUERYCOUNT(\"d\")"), "#REF!");
    EXPECT_EQ(reader.Shows(L"=DBQUERYNAME(\"d\",1)"), "#REF!");
    EXPECT_EQ(reader.Shows(L"=DBTABLECOUNT(\"d\")"), "1");
}

// No formula text has a row without a field; a host may build one.
TEST_F(RemoteData, AnAbsentFieldGivesTheRowAlone) {
    CCCellValue texts[3];
    texts[0].Set(L"d");
    texts[1].Set(L"t");
    texts[2].Set(3.0);
    CCFormulaList * args =
        FormulaListCreate2Item(new CCConstFormula(texts[0]), new CCConstFormula(texts[1]));
    CCConstFormula field, row(texts[2]);
    CCFormulaList rest{nullptr, nullptr}, last{&row, nullptr};
    args->next->next = &rest;
    rest.next = &last;
    CCRemoteRef remote;
    EXPECT_EQ(GetFuncRemoteRef(cells::internal::FindFunctionObject(13264), &reader, remote, args,
                               nullptr),
              1);
    EXPECT_EQ(cells::ToUtf8(remote.item()), "t!3");
    args->next->next = nullptr;
    FreeFormulaList(args, 1);
}

TEST_F(RemoteData, ACatalogueFunctionIsOneValueAndOthersAskTheirSource) {
    auto const single = [&](wchar_t const * text) {
        std::unique_ptr<CCFormula> const formula(_ParseFormula(&reader, text, 0, nullptr));
        return formula->IsSingleValue(&reader, nullptr);
    };
    EXPECT_EQ(single(L"DBTABLECOUNT(\"d\")"), 1);
    EXPECT_EQ(single(L"REMOTE(\"d\",\"i\")"), 0);
}

TEST_F(RemoteData, ACatalogueFunctionIsWalkedOnce) {
    std::unique_ptr<CCFormula> const formula(
        _ParseFormula(&reader, L"DBTABLECOUNT(\"d\")", 0, nullptr));
    CCCellValue value;
    CSize size;
    EXPECT_EQ(formula->OpenRef(&reader, nullptr), 1);
    EXPECT_EQ(formula->OpenRef(&reader, nullptr), 0);
    EXPECT_EQ(formula->RefSize(&reader, 1, size, nullptr), 1);
    EXPECT_EQ(size, CSize(1, 1));
    EXPECT_EQ(formula->NextValue(&reader, 1, value, nullptr), 1);
    EXPECT_EQ(value.GetNumber(), 1);
    EXPECT_EQ(formula->NextValue(&reader, 1, value, nullptr), 0);
}

TEST_F(RemoteData, AHyperlinkIsGivenByItsCell) {
    reader.Enter("A1", L"=HYPERLINK(\"page\"+\".html\",\"Next\")");
    reader.Enter("A2", L"=HYPERLINK(5)");
    reader.Enter("A3", L"page");
    CString target;
    EXPECT_EQ(reader.Make("A1").GetHyperLink(&reader, target), 1);
    EXPECT_EQ(cells::ToUtf8(target), "page.html");
    EXPECT_EQ(reader.Make("A1").IsHyperLink(), 1);
    EXPECT_EQ(reader.Make("A2").GetHyperLink(&reader, target), 0);
    EXPECT_EQ(reader.Make("A3").GetHyperLink(&reader, target), 0);
    EXPECT_EQ(reader.Make("A3").IsHyperLink(), 0);
}

// Properties of the document

namespace {

class Described : public BaseHost {
public:
    using Date = ATL::COleDateTime;
    int GetDocumentCreateDate(Date & date) override {
        date = Date(2026, 3, 5, 13, 45, 0);
        return 1;
    }
    int GetDocumentEditTime(Date & date) override {
        date = edited;
        return 1;
    }
    int GetDocumentSaveDate(Date & date) override {
        date.SetStatus(Date::invalid);
        return 1;
    }
    int GetDocumentAuthor(CString & text) override { return text = CString(L"Ann"), 1; }
    int GetDocumentTitle(CString & text) override { return text = title, 1; }
    int GetDocumentFileSize(double & size) override { return size = 1e12, 1; }
    int GetDocumentNumChars(unsigned int & count) override { return count = 4000000000u, 1; }
    int GetDocumentPage(CCRef const * ref, unsigned int & page) override {
        return page = ref ? static_cast<CCRCRef const *>(cells::internal::InnerRef(ref))->row : 99u,
               1;
    }
    Date edited{1900, 1, 1, 6, 30, 0};
    CString title{L"One"};
};

} // namespace

TEST(DocumentFacts, AreWhatTheHostSays) {
    cells::host::StartEngine();
    Described host;
    struct Fact {
        wchar_t const * formula;
        char const * shown;
        int formatClass;
    };
    for (Fact const & fact :
         {Fact{L"=AUTHOR()", "Ann", -1}, Fact{L"=TITLE()", "One", -1},
          Fact{L"=FILESIZE()", "1000000000000", 0}, Fact{L"=NUMCHARS()", "4000000000", 0},
          Fact{L"=PAGE()", "8", 0}, Fact{L"=CREATEDATE()", "3/5/2026 01:45 PM", 7},
          Fact{L"=EDITTIME()", "06:30 AM", 6}}) {
        host.Enter("F9", fact.formula);
        EXPECT_EQ(host.Text("F9"), fact.shown);
        CCCellValue const & value = host.Make("F9").CCCell::GetValue();
        EXPECT_EQ(value.IsNumber() ? value.GetFormat().GetType() : -1, fact.formatClass);
    }
}

TEST(DocumentFacts, AreValueErrorsWhereTheHostHasNone) {
    Described host;
    BaseHost plain;
    host.Enter("F9", L"=SAVEDATE()"); // no valid date
    EXPECT_EQ(host.Text("F9"), "#VALUE!");
    for (wchar_t const * name :
         {L"CREATEDATE", L"EDITTIME", L"PRINTDATE", L"SAVEDATE", L"AUTHOR", L"COMMENTS",
          L"FILENAME", L"FILESIZE", L"KEYWORDS", L"NUMCHARS", L"NUMPAGES", L"NUMWORDS", L"SUBJECT",
          L"TITLE", L"REVNUM", L"PAGE", L"MERGEREC", L"MERGECOUNT"}) {
        plain.Enter("F9", std::wstring(L"=") + name + L"()");
        EXPECT_EQ(plain.Text("F9"), "#VALUE!") << cells::ToUtf8(CString(name));
    }
}

TEST(DocumentFacts, EditTimeIsALengthBeyondDaysToo) {
    Described host;
    for (auto const & [days, serial] :
         {std::pair(0.25, 0.25), std::pair(70.5, 70.5), std::pair(1.0 / 86400, cells::kSecond)}) {
        host.edited = ATL::COleDateTime(2 + days);
        host.Enter("F9", L"=EDITTIME()");
        EXPECT_DOUBLE_EQ(host.Make("F9").CCCell::GetValue().GetNumber(), serial);
    }
}

TEST(DocumentFacts, FollowTheirProperty) {
    Described host;
    host.Enter("A1", L"=TITLE()");
    host.Enter("A2", L"=A1+\"!\"");
    host.Idle();
    host.title = CString(L"Two");
    host.RecalcDocumentItems(CCDocumentRef::ECDocRefType(13));
    host.Idle();
    EXPECT_EQ(host.Text("A2"), "Two!");
    EXPECT_EQ(host.GetDocumentItem(CCDocumentRef::ECDocRefType(4)), nullptr);
    host.Enter("A1", L"1");
    EXPECT_EQ(host.GetDocumentItem(CCDocumentRef::ECDocRefType(13)), nullptr);
}
