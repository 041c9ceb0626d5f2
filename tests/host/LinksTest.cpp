// Workbooks that read each other in one process.
#include "host/Links.h"
#include "cells/CCCellManager.h"
#include "formula/CCRemoteRef.h"
#include "platform/CFile.h"
#include "platform/Services.h"
#include "support/Workbooks.h"

#include <gtest/gtest.h>

using cells::host::Links;
using cells::host::Property;
using cells::host::ReadLinks;
using cells::host::Sheet;
using cells::host::Source;
using cells::host::Workbook;
using cells::test::A;
using cells::test::BytesOf;

namespace {

struct Document {
    Document(Links & links, std::string const & name) {
        book.Add("Sheet1");
        links.Open(name, book, ReadLinks::kYes);
    }
    void Enter(std::string const & place, std::string const & text) {
        book.At(0).Enter(place, text);
    }
    std::string Text(std::string const & place) { return book.At(0).Text(place); }
    Workbook book{"C"};
};

struct LinkedBooks : testing::Test {
    void CheckInvariants() {
        for (Workbook * book : {&a.book, &b.book, &c.book})
            EXPECT_EQ(book->CheckInvariants(), std::vector<std::string>());
    }
    Links links;
    Document a{links, "a.cvs"}, b{links, "b.cvs"}, c{links, "c.cvs"};
};

} // namespace

TEST_F(LinkedBooks, ALinkReadsAndFollows) {
    a.Enter("A1", "5");
    b.Enter("B1", "=SSGET(\"a\",\"A1\")*2");
    EXPECT_EQ(b.Text("B1"), "10");
    a.Enter("A1", "7");
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "14");
    a.Enter("A1", "8");
    a.book.Recalculate(); // of one document brings its readers along
    EXPECT_EQ(b.Text("B1"), "16");
}

TEST_F(LinkedBooks, ADocumentIsNamedByPathFileOrBareName) {
    Document d(links, "folder/prices.cvs");
    d.Enter("A1", "3");
    for (char const * name : {"prices", "PRICES.cvs", "folder/prices.cvs"}) {
        b.Enter("B1", std::string("=REMOTE(\"") + name + "\",\"A1\")");
        EXPECT_EQ(b.Text("B1"), "3") << name;
    }
    for (char const * name : {"price", "folder", "prices.cvs2", ""}) {
        b.Enter("B1", std::string("=REMOTE(\"") + name + "\",\"A1\")");
        EXPECT_EQ(b.Text("B1"), "#REF!") << name;
    }
}

TEST_F(LinkedBooks, AnItemMayNameItsSheet) {
    a.book.Add("Two");
    a.book["Two"].Enter("A1", "22");
    a.Enter("A1", "11");
    b.Enter("B1", "=REMOTE(\"a\",\"Two!A1\")");
    b.Enter("B2", "=REMOTE(\"a\",\"Sheet1!A1\")");
    b.Enter("B3", "=REMOTE(\"a\",\"A1\")");
    b.Enter("B4", "=REMOTE(\"a\",\"Three!A1\")");
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "22");
    EXPECT_EQ(b.Text("B2"), "11");
    EXPECT_EQ(b.Text("B3"), "11");
    EXPECT_EQ(b.Text("B4"), "#REF!");
    a.book["Two"].Enter("A1", "23");
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "23");
}

TEST_F(LinkedBooks, AnItemMayBeAName) {
    a.Enter("A1", "5");
    ASSERT_TRUE(a.book.At(0).DefineName("Takings", A("A1")));
    b.Enter("B1", "=REMOTE(\"a\",\"Takings\")");
    b.Enter("B2", "=REMOTE(\"a\",\"Nothing\")");
    EXPECT_EQ(b.Text("B1"), "5");
    EXPECT_EQ(b.Text("B2"), "#REF!");
    a.Enter("A1", "6");
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "6");
}

TEST_F(LinkedBooks, AFormulaTakesAnAreaOfAnotherDocument) {
    for (int row = 1; row <= 100; ++row) a.Enter("A" + std::to_string(row), std::to_string(row));
    b.Enter("B1", "=SUM(REMOTE(\"a\",\"A1:A100\"))");
    b.Enter("B2", "=COUNT(REMOTE(\"a\",\"A1:B200\"))");
    EXPECT_EQ(b.Text("B1"), "5050");
    EXPECT_EQ(b.Text("B2"), "100");
    a.Enter("A50", "0");
    a.Enter("A101", "1");
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "5000");
    EXPECT_EQ(b.Text("B2"), "101");
    CheckInvariants();
}

TEST_F(LinkedBooks, ARingFollowsAnEditAtEachOfThem) {
    a.Enter("A1", "1");
    b.Enter("A1", "10");
    c.Enter("A1", "100");
    c.Enter("B1", "=A1+REMOTE(\"b\",\"B1\")");
    b.Enter("B1", "=A1+REMOTE(\"a\",\"B1\")");
    a.Enter("B1", "=A1+REMOTE(\"c\",\"A1\")");
    links.Recalculate();
    EXPECT_EQ(c.Text("B1"), "211");
    a.Enter("A1", "2");
    links.Recalculate();
    EXPECT_EQ(c.Text("B1"), "212");
    b.Enter("A1", "20");
    links.Recalculate();
    EXPECT_EQ(c.Text("B1"), "222");
    c.Enter("A1", "200");
    links.Recalculate();
    EXPECT_EQ(a.Text("B1"), "202");
    EXPECT_EQ(c.Text("B1"), "422");
    CheckInvariants();
}

// Every cell reads the one before it, by turns in either document; each is computed once.
TEST_F(LinkedBooks, AZigzagIsComputedInOrderAndOnce) {
    int const kLength = 100;
    a.Enter("A1", "1");
    for (int row = 2; row <= kLength; ++row) {
        Document & here = row % 2 ? a : b;
        char const * const there = row % 2 ? "b" : "a";
        here.Enter("A" + std::to_string(row), std::string("=REMOTE(\"") + there + "\",\"A" +
                                                  std::to_string(row - 1) + "\")+1");
    }
    links.Recalculate();
    EXPECT_EQ(b.Text("A100"), "100");
    int computed = 0;
    for (Document * document : {&a, &b})
        document->book.At(0).OnChanged([&](cells::host::Place) { ++computed; });
    a.Enter("A1", "1001");
    links.Recalculate();
    EXPECT_EQ(b.Text("A100"), "1100");
    EXPECT_EQ(computed, kLength);
}

TEST_F(LinkedBooks, AZigzagLongerThanRequestsMayNestIsComputedAll) {
    int const kLength = 1200;
    a.Enter("A1", "1");
    for (int row = 2; row <= kLength; ++row)
        (row % 2 ? a : b)
            .Enter("A" + std::to_string(row), std::string("=REMOTE(\"") + (row % 2 ? "b" : "a") +
                                                  "\",\"A" + std::to_string(row - 1) + "\")+1");
    links.Recalculate();
    EXPECT_EQ(b.Text("A1200"), "1200");
    a.Enter("A1", "2");
    b.book.At(0).Recalculate();
    links.Recalculate();
    EXPECT_EQ(b.Text("A1200"), "1201");
    EXPECT_EQ(a.Text("A1199"), "1200");
}

TEST_F(LinkedBooks, ACircleThroughTwoDocumentsIsRefused) {
    std::vector<unsigned> messages;
    for (Document * document : {&a, &b})
        document->book.At(0).OnMessage(
            [&](unsigned id, std::string const &) { messages.push_back(id); });
    a.Enter("A1", "1");
    b.Enter("B1", "=REMOTE(\"a\",\"A1\")+1");
    links.Recalculate();
    a.Enter("A1", "=REMOTE(\"b\",\"B1\")+1");
    links.Recalculate();
    EXPECT_EQ(a.Text("A1"), "#CIRC!");
    EXPECT_EQ(b.Text("B1"), "#CIRC!");
    EXPECT_EQ(messages, std::vector<unsigned>{13033});
    EXPECT_EQ(a.book.At(0).EditText(*cells::host::ParsePlace("A1")), "=REMOTE (\"b\", \"B1\") + 1");
    a.Enter("A1", "4");
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "5");
    CheckInvariants();
}

TEST_F(LinkedBooks, ACircleThroughThreeDocumentsAndAnAreaIsRefused) {
    a.Enter("A1", "1");
    b.Enter("B1", "=SUM(REMOTE(\"a\",\"A1:A9\"))");
    c.Enter("C1", "=REMOTE(\"b\",\"B1\")");
    links.Recalculate();
    EXPECT_EQ(c.Text("C1"), "1");
    a.Enter("A2", "=REMOTE(\"c\",\"C1\")");
    links.Recalculate();
    int circles = 0;
    for (std::string const & text : {a.Text("A2"), b.Text("B1"), c.Text("C1")})
        circles += text[0] == '#';
    EXPECT_GT(circles, 0);
    a.Enter("A2", "2");
    b.Enter("B1", "=SUM(REMOTE(\"a\",\"A1:A9\"))");
    links.Recalculate();
    EXPECT_EQ(c.Text("C1"), "3");
}

TEST_F(LinkedBooks, ACircleThatLeadsThroughCellsBetweenIsRefused) {
    a.Enter("A1", "1");
    a.Enter("A2", "=A1+1");
    a.Enter("A3", "=SUM(A2:A2)");
    b.Enter("B1", "=REMOTE(\"a\",\"A3\")");
    b.Enter("B2", "=B1+1");
    links.Recalculate();
    a.Enter("A1", "=REMOTE(\"b\",\"B2\")");
    links.Recalculate();
    EXPECT_EQ(a.Text("A1"), "#CIRC!");
    a.Enter("A1", "5");
    links.Recalculate();
    EXPECT_EQ(b.Text("B2"), "7");
}

// Many readers of a document that are not circles, although requests nest.
TEST_F(LinkedBooks, NoCircleIsSeenWhereThereIsNone) {
    a.Enter("A1", "1");
    b.Enter("B1", "=REMOTE(\"a\",\"A1\")");
    a.Enter("A2", "=REMOTE(\"b\",\"B1\")+REMOTE(\"b\",\"B2\")");
    b.Enter("B2", "=REMOTE(\"a\",\"A3\")");
    a.Enter("A3", "=A1*10");
    links.Recalculate();
    EXPECT_EQ(a.Text("A2"), "11");
    a.Enter("A1", "2");
    links.Recalculate();
    EXPECT_EQ(a.Text("A2"), "22");
}

TEST_F(LinkedBooks, LinksToTheOwnDocumentAndItsSheetsAreLinksToo) {
    a.book.Add("Two");
    a.book["Two"].Enter("B1", "9");
    a.Enter("A1", "=REMOTE(\"?Two\",\"B1\")");
    a.Enter("A2", "=REMOTE(\"a\",\"Two!B1\")+1");
    a.Enter("A3", "=REMOTE(\"a\",\"A3\")");
    links.Recalculate();
    EXPECT_EQ(a.Text("A1"), "9");
    EXPECT_EQ(a.Text("A2"), "10");
    EXPECT_EQ(a.Text("A3"), "#CIRC!");
    a.book["Two"].Enter("B1", "10");
    links.Recalculate();
    EXPECT_EQ(a.Text("A1"), "10");
    EXPECT_EQ(a.Text("A2"), "11");
    a.book.Rename(1, "Three");
    EXPECT_EQ(a.book.At(0).EditText({0, 0}), "=REMOTE (\"?Two\", \"B1\")");
}

// Formulas that name a sheet of their workbook in a link are dependents of the sheet too.
TEST_F(LinkedBooks, ALinkWithinTheWorkbookIsKnownToItsSheet) {
    a.book.Add("Two");
    a.Enter("A1", "=REMOTE(\"?Two\",\"B1\")");
    auto & sheet = dynamic_cast<CCItem &>(a.book["Two"].Manager());
    EXPECT_EQ(sheet.GetDependentCount(), 1);
    a.Enter("A1", "1");
    EXPECT_EQ(sheet.GetDependentCount(), 0);
}

TEST_F(LinkedBooks, ToAskWhetherAFormulaMayBeComputedIsAlwaysAYes) {
    a.Enter("A1", "=1+1");
    CCRemoteRef const formula(L"a", L"A1"), number(L"a", L"B1"), nowhere(L"x", L"A1");
    CCTransportInterface & manager = a.book.At(0).Manager();
    for (int flag : {0, 1})
        for (CCRemoteRef const * ref : {&formula, &number, &nowhere})
            EXPECT_EQ(manager.OnRemoteInitRecalc(ref, flag), 1);
}

TEST_F(LinkedBooks, OneEditReachesAThousandLinks) {
    a.Enter("A1", "1");
    for (int row = 1; row <= 1000; ++row)
        b.Enter("A" + std::to_string(row), "=REMOTE(\"a\",\"A1\")+" + std::to_string(row));
    links.Recalculate();
    int changed = 0;
    b.book.At(0).OnChanged([&](cells::host::Place) { ++changed; });
    a.Enter("A1", "5");
    links.Recalculate();
    EXPECT_EQ(b.Text("A1000"), "1005");
    EXPECT_EQ(changed, 1000); // each in one pass
}

TEST_F(LinkedBooks, AClosedDocumentLeavesTheValuesThatWereRead) {
    a.Enter("A1", "5");
    b.Enter("B1", "=REMOTE(\"a\",\"A1\")");
    links.Recalculate();
    links.Close(a.book);
    EXPECT_FALSE(links.IsOpen("a"));
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "5");
    links.Refresh(b.book);
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "#REF!");
    a.Enter("A1", "6");
    links.Open("a.cvs", a.book);
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "6");
    a.Enter("A1", "7");
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "7");
}

TEST_F(LinkedBooks, AClosedReaderIsForgotten) {
    a.Enter("A1", "5");
    b.Enter("B1", "=REMOTE(\"a\",\"A1\")+B2");
    b.Enter("B2", "1");
    EXPECT_EQ(a.book.At(0).Dependents({0, 0}), std::vector<std::string>{"b.cvs!Sheet1!B1"});
    links.Close(b.book);
    EXPECT_EQ(a.book.At(0).Dependents({0, 0}), std::vector<std::string>());
    b.Enter("B2", "2"); // what it reads of its own still counts
    b.book.Recalculate();
    EXPECT_EQ(b.Text("B1"), "#REF!");
}

TEST_F(LinkedBooks, ADocumentThatDiesLeavesByItself) {
    {
        Document d(links, "d");
        d.Enter("A1", "5");
        b.Enter("B1", "=REMOTE(\"d\",\"A1\")");
        EXPECT_EQ(links.Documents().size(), 4u);
    }
    EXPECT_EQ(links.Documents(), (std::vector<std::string>{"a.cvs", "b.cvs", "c.cvs"}));
    links.Refresh(b.book);
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "#REF!");
}

TEST_F(LinkedBooks, ANameThatIsTakenIsRefused) {
    Workbook other("C");
    EXPECT_THROW(links.Open("A", other), std::invalid_argument);
    EXPECT_THROW(links.Open("", other), std::invalid_argument);
    EXPECT_THROW(links.Open("?x", other), std::invalid_argument);
    EXPECT_THROW(links.Open("other", a.book), std::invalid_argument);
}

TEST(LinksTest, DocumentsOutliveTheirLinks) {
    Workbook book("C");
    book.Add("One");
    {
        Links links;
        links.Open("book", book);
        book.At(0).Enter("A1", "=REMOTE(\"book\",\"B1\")");
        links.Recalculate();
    }
    book.At(0).Enter("B1", "1");
    book.Recalculate();
    EXPECT_EQ(book.At(0).Text("A1"), "");
}

// Rows and columns that come and go

TEST_F(LinkedBooks, ALinkInTheDocumentsOwnSpellingFollowsItsPlace) {
    a.Enter("A1", "5");
    a.Enter("A2", "6");
    b.Enter("B1", "=REMOTE(\"a.cvs\",\"Sheet1!A2\")");
    b.Enter("B2", "=REMOTE(\"a\",\"A2\")");
    a.book.At(0).InsertRows(0, 1);
    links.Recalculate();
    EXPECT_EQ(b.book.At(0).EditText({1, 0}), "=REMOTE (\"a.cvs\", \"Sheet1!A3\")");
    EXPECT_EQ(b.Text("B1"), "6");
    EXPECT_EQ(b.Text("B2"), "5"); // the place that it names
    a.Enter("A3", "7");
    a.Enter("A2", "8");
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "7");
    EXPECT_EQ(b.Text("B2"), "8");
}

TEST_F(LinkedBooks, ADeletedPlaceIsAnErrorWhereTheLinkNamesItSo) {
    a.Enter("A1", "5");
    a.Enter("A2", "6");
    b.Enter("B1", "=REMOTE(\"a.cvs\",\"Sheet1!A1\")");
    b.Enter("B2", "=REMOTE(\"a\",\"A1\")");
    a.book.At(0).DeleteRows(0, 1);
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "#VALUE!");
    EXPECT_EQ(b.Text("B2"), "6");
}

TEST_F(LinkedBooks, AMovedFormulaKeepsItsLink) {
    a.Enter("A1", "5");
    b.Enter("B1", "=REMOTE(\"a\",\"A1\")");
    b.book.At(0).InsertRows(0, 2);
    a.Enter("A1", "6");
    links.Recalculate();
    EXPECT_EQ(b.Text("B3"), "6");
    EXPECT_EQ(a.book.At(0).Dependents({0, 0}), std::vector<std::string>{"b.cvs!Sheet1!B3"});
}

TEST_F(LinkedBooks, ARemovedSheetIsMissed) {
    a.book.Add("Two");
    a.book["Two"].Enter("A1", "5");
    b.Enter("B1", "=REMOTE(\"a\",\"Two!A1\")");
    a.book.Remove(1);
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "#REF!");
}

TEST_F(LinkedBooks, ASheetThatComesBackOrIsRenamedIsReadAgain) {
    a.book.Add("Two");
    a.book.KeepHistory(10);
    a.book["Two"].Enter("A1", "5");
    b.Enter("B1", "=REMOTE(\"a\",\"Two!A1\")");
    links.Recalculate();
    a.book.Remove(1);
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "#REF!");
    a.book.Undo();
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "5");
    a.book["Two"].Enter("A1", "6");
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "6");
    a.book.Rename(1, "Three");
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "#REF!");
    a.book.Rename(1, "Two");
    links.Recalculate();
    EXPECT_EQ(b.Text("B1"), "6");
}

// Opening

namespace {

struct Asked {
    explicit Asked(bool answer) {
        before = cells::PlatformServices().askYesNo;
        cells::PlatformServices().askYesNo = [this, answer](unsigned id, CString const &) {
            questions.push_back(id);
            return answer;
        };
    }
    ~Asked() { cells::PlatformServices().askYesNo = before; }
    decltype(cells::Services::askYesNo) before;
    std::vector<unsigned> questions;
};

} // namespace

TEST_F(LinkedBooks, OpeningADocumentWithLinksAsksOnce) {
    a.Enter("A1", "5");
    b.book.Add("Two");
    b.Enter("B1", "=REMOTE(\"a\",\"A1\")");
    b.book["Two"].Enter("B1", "=REMOTE(\"a\",\"A1\")*2");
    links.Recalculate();
    std::string const bytes = BytesOf(b.book);
    a.Enter("A1", "6");
    for (bool answer : {true, false}) {
        Asked asked(answer);
        auto const copy = Workbook::Read(bytes, "C");
        links.Open("copy", *copy);
        links.Recalculate();
        EXPECT_EQ(copy->At(0).Text("B1"), answer ? "6" : "5");
        EXPECT_EQ(copy->At(1).Text("B1"), answer ? "12" : "10");
        EXPECT_EQ(asked.questions, std::vector<unsigned>{13039});
        EXPECT_EQ(copy->At(1).Manager().GetTrueRecalcRemote(), answer ? rrYes : rrNo);
        // What changes from now on is followed in either case.
        a.Enter("A1", "7");
        links.Recalculate();
        EXPECT_EQ(copy->At(0).Text("B1"), "7");
        a.Enter("A1", "6");
        links.Close(*copy);
    }
}

TEST_F(LinkedBooks, OpeningADocumentWithoutLinksAsksNothing) {
    Asked asked(true);
    Workbook plain("C");
    plain.Add("One").Enter("A1", "=1+1");
    links.Open("plain", plain);
    EXPECT_TRUE(asked.questions.empty());
}

// A source of the host's own

namespace {

class Clock final : public Source {
public:
    bool Serves(std::string_view document) override { return document == "clock"; }
    int OnRemoteGetValue(CCRemoteRef const *, CCCellValue & value, int) override {
        value.Set(++ticks);
        return 1;
    }
    double ticks = 0;
};

} // namespace

TEST_F(LinkedBooks, ASourceOfTheHostIsReadAndRefreshed) {
    Clock clock;
    CCTransportInterface & asker = a.book.At(0).Manager();
    EXPECT_EQ(asker.IsRemoteDocumentOpen(L"clock"), 0);
    EXPECT_EQ(asker.IsRemoteDocumentOpen(L"b"), 1);
    links.Add(clock);
    EXPECT_EQ(asker.IsRemoteDocumentOpen(L"clock"), 1);
    a.Enter("A1", "=REMOTE(\"clock\",\"now\")");
    EXPECT_EQ(a.Text("A1"), "1");
    links.Recalculate();
    double const before = clock.ticks;
    links.Recalculate();
    EXPECT_EQ(clock.ticks, before); // nothing has changed that anybody told of
    links.Refresh(a.book);
    links.Recalculate();
    EXPECT_EQ(clock.ticks, before + 1);
    links.Remove(clock);
    links.Refresh(a.book);
    links.Recalculate();
    EXPECT_EQ(a.Text("A1"), "#REF!");
}

TEST(LinksTest, CarriersDieInAnyOrder) {
    Workbook book("C");
    book.Add("One");
    {
        Links links;
        Clock clock;
        links.Add(clock);
        links.Open("book", book);
        book.At(0).Enter("A1", "=REMOTE(\"clock\",\"x\")");
    } // the clock is gone when the document leaves
    Clock clock;
    {
        Links first, second;
        first.Add(clock);
        second.Add(clock);
        first.Open("book", book);
        book.At(0).Enter("A2", "=REMOTE(\"clock\",\"x\")");
        EXPECT_EQ(book.At(0).Text("A2"), "#REF!"); // it is the second's now
    }
    EXPECT_EQ(clock.ticks, 0);
}

TEST_F(LinkedBooks, WhatProtectionHidesOrLocksIsNotReachedFromElsewhere) {
    a.Enter("A1", "5");
    a.Enter("A2", "6");
    a.Enter("A3", "7");
    a.book.At(0).SetFlag(A("A1"), cells::host::CellFlag::kHidden);
    a.book.At(0).SetFlag(A("A2"), cells::host::CellFlag::kLocked);
    a.book.At(0).Protect();
    CCTransportInterface & reader = b.book.At(0).Manager();
    CCCellValue value;
    CCRemoteRef const hidden(L"a", L"A1"), locked(L"a", L"A2"), open(L"a", L"A3"),
        area(L"a", L"A1:A3");
    EXPECT_EQ(reader.DoRemoteGetValue(&hidden, value, 0), 0);
    EXPECT_EQ(reader.DoRemoteOpenRef(&area), 0);
    EXPECT_EQ(reader.DoRemoteGetValue(&locked, value, 0), 1);
    value.Set(9.0);
    EXPECT_EQ(reader.DoRemoteSetSourceValue(&locked, value), 0);
    EXPECT_EQ(reader.DoRemoteSetSourceValue(&open, value), 1);
    EXPECT_EQ(a.Text("A2"), "6");
    EXPECT_EQ(a.Text("A3"), "9");
    b.Enter("B1", "=REMOTE(\"a\",\"A1\")");
    EXPECT_EQ(b.Text("B1"), "=REMOTE (\"a\", \"A1\")"); // as within a document
}

TEST_F(LinkedBooks, WritingFromElsewhereNeedsLeave) {
    a.Enter("A1", "5");
    CCRemoteRef const there(L"a", L"A1");
    for (bool mayWrite : {false, true}) {
        struct Elsewhere final : Source {
            Elsewhere(Links & l, bool w) : links(l), mayWrite(w) {}
            bool Serves(std::string_view) override { return false; }
            int DoTransport(CCRemoteRef const *, CFile & file) override {
                return links.Answer(file, mayWrite);
            }
            Links & links;
            bool mayWrite;
        } elsewhere(links, mayWrite);
        CCCellValue value;
        value.Set(9.0);
        EXPECT_EQ(elsewhere.DoRemoteSetSourceValue(&there, value), mayWrite);
        EXPECT_EQ(a.Text("A1"), mayWrite ? "9" : "5");
        EXPECT_EQ(elsewhere.DoRemoteIsValidRef(&there), 1);
        CCRemoteRef const inside(L"?Sheet1", L"A1"), nowhere(L"nowhere", L"A1");
        EXPECT_EQ(elsewhere.DoRemoteIsValidRef(&inside), 0);
        EXPECT_EQ(elsewhere.DoRemoteIsValidRef(&nowhere), 0);
    }
}
