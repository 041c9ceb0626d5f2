// Edits that are taken back and made again.
#include "host/Workbook.h"
#include "support/Workbooks.h"

#include <functional>
#include <gtest/gtest.h>
#include <random>

using cells::host::Area;
using cells::host::CellFlag;
using cells::host::NameOf;
using cells::host::Place;
using cells::host::Sheet;
using cells::host::Workbook;
using cells::test::A;
using cells::test::P;

namespace {

// Everything that can be seen, up to date, with a format that an area gives to a new cell.
std::string Shown(Workbook & book) {
    book.Recalculate();
    std::string shown = cells::test::Shown(book);
    for (int i = 0; i < book.Count(); ++i) shown += book.At(i).NumberFormat({2, 8}) + "\n";
    return shown;
}

// A workbook with something of everything.
std::unique_ptr<Workbook> Sample() {
    auto book = std::make_unique<Workbook>("C");
    Sheet &one = book->Add("One"), &two = book->Add("Two");
    one.Enter("A1", "5");
    one.Enter("A2", "text");
    one.Enter("A3", "=A1*2");
    one.Enter("B1", "=SUM(A1:A9)+Two!A1");
    two.Enter("A1", "=One!A3+1");
    two.Enter("B2", "7");
    one.SetNumberFormat(A("C1:C9"), "percent:1");
    one.DefineName("rate", A("A1:A1"));
    two.Enter("C1", "0.25");
    book->Recalculate();
    return book;
}

struct Edit {
    char const * name;
    std::function<void(Workbook &)> make;
};

void PrintTo(Edit const & edit, std::ostream * out) { *out << edit.name; }

class BookHistory : public cells::test::ThreeSheets {};
class EveryEdit : public testing::TestWithParam<Edit> {};

} // namespace

TEST_P(EveryEdit, IsTakenBackAndMadeAgain) {
    auto const book = Sample();
    std::string const before = Shown(*book);
    book->KeepHistory(10);
    GetParam().make(*book);
    std::string const after = Shown(*book);
    EXPECT_NE(after, before);
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(book->Undo());
        EXPECT_EQ(Shown(*book), before);
        EXPECT_EQ(book->CheckInvariants(), std::vector<std::string>());
        EXPECT_FALSE(book->Undo()) << "it was more than one edit";
        EXPECT_TRUE(book->Redo());
        EXPECT_EQ(Shown(*book), after);
        EXPECT_EQ(book->CheckInvariants(), std::vector<std::string>());
        EXPECT_FALSE(book->Redo());
    }
    // It is alive: a change flows through what came back.
    book->Undo();
    book->At(0).Enter("A1", "50");
    book->Recalculate();
    EXPECT_EQ((*book)["Two"].Text("A1"), "101");
}

INSTANTIATE_TEST_SUITE_P(
    Of, EveryEdit,
    testing::Values(
        Edit{"a value", [](Workbook & b) { b.At(0).Enter("A1", "6"); }},
        Edit{"a value in an empty place", [](Workbook & b) { b.At(0).Enter("A9", "6"); }},
        Edit{"a formula", [](Workbook & b) { b.At(0).Enter("A1", "=Two!B2+rate*0"); }},
        Edit{"a value over a formula", [](Workbook & b) { b.At(0).Enter("A3", "1"); }},
        Edit{"clearing",
             [](Workbook & b) {
                 b.At(0).Clear({0, 2});
             }},
        Edit{"a format", [](Workbook & b) { b.At(0).SetNumberFormat(A("A1:A1"), "number:2"); }},
        Edit{"a format of an area",
             [](Workbook & b) { b.At(1).SetNumberFormat(A("A1:C9"), "\"x\"0"); }},
        Edit{"clearing formats", [](Workbook & b) { b.At(0).ClearFormat(A("C1:C9")); }},
        Edit{"protection", [](Workbook & b) { b.At(0).Protect("p"); }},
        Edit{"replacing", [](Workbook & b) { b.At(0).Replace("t", "T"); }},
        Edit{"inserted rows", [](Workbook & b) { b.At(0).InsertRows(1, 2); }},
        Edit{"inserted columns", [](Workbook & b) { b.At(0).InsertColumns(0); }},
        Edit{"deleted rows", [](Workbook & b) { b.At(0).DeleteRows(0, 2); }},
        Edit{"deleted columns", [](Workbook & b) { b.At(0).DeleteColumns(0); }},
        Edit{"a moved area", [](Workbook & b) { b.At(0).Move(A("A1:A2"), P("A2")); }},
        Edit{"a copy", [](Workbook & b) { b.At(0).Copy(A("A1:B3"), P("B1")); }},
        Edit{"a transposed copy",
             [](Workbook & b) { b.At(1).CopyFrom(b.At(0), A("A1:A3"), P("A1"), true); }},
        Edit{"a bulk load",
             [](Workbook & b) {
                 Sheet::Bulk bulk(b.At(0));
                 bulk.Enter({0, 0}, "1");
                 bulk.Enter({0, 20}, "=A1+One!A3");
                 bulk.Commit();
             }},
        Edit{"a new sheet", [](Workbook & b) { b.Add("Three", 1); }},
        Edit{"a removed sheet", [](Workbook & b) { b.Remove(1); }},
        Edit{"a moved sheet", [](Workbook & b) { b.Move(0, 1); }},
        Edit{"a renamed sheet", [](Workbook & b) { b.Rename(0, "Other"); }}));

TEST_F(BookHistory, ANewEditTakesThePlaceOfThoseTakenBack) {
    book.KeepHistory(10);
    one.Enter("A1", "1");
    one.Enter("A1", "2");
    EXPECT_TRUE(book.Undo());
    one.Enter("A1", "3");
    EXPECT_FALSE(book.Redo());
    EXPECT_TRUE(book.Undo());
    EXPECT_EQ(one.Text("A1"), "1");
    EXPECT_TRUE(one.Undo()); // the same history
    EXPECT_EQ(one.Text("A1"), "");
    EXPECT_FALSE(one.Undo());
}

TEST_F(BookHistory, WhatChangesNothingIsNoEdit) {
    one.Enter("A1", "1");
    book.KeepHistory(10);
    one.Enter("A1", "1");
    one.Clear({5, 5});
    EXPECT_FALSE(book.Undo());
}

TEST_F(BookHistory, TheOldestEditsAreForgotten) {
    book.KeepHistory(3);
    for (int i = 0; i < 10; ++i) one.Enter("A1", std::to_string(i));
    int undone = 0;
    while (book.Undo()) ++undone;
    EXPECT_EQ(undone, 3);
    EXPECT_EQ(one.Text("A1"), "6");
    book.KeepHistory(0);
    one.Enter("A1", "x");
    EXPECT_FALSE(book.Undo());
}

TEST_F(BookHistory, EditsBesideACommittedBulkLoadAreEditsOfTheirOwn) {
    book.KeepHistory(10);
    Sheet::Bulk bulk(one);
    one.Enter("A1", "before");
    bulk.Enter({0, 0}, "1");
    bulk.Enter({1, 0}, "=A1+1");
    bulk.Commit();
    one.Enter("A1", "5");
    one.Enter("A1", "6");
    bulk.Enter({0, 0}, "7");
    bulk.Commit();
    book.Recalculate();
    std::vector<std::string> shown{one.Text("A1")};
    while (book.Undo()) {
        book.Recalculate();
        shown.push_back(one.Text("A1") + " " + one.Text("B1"));
    }
    EXPECT_EQ(shown, (std::vector<std::string>{"7", "6 7", "5 6", "1 2", "before ", " "}));
}

TEST_F(BookHistory, OfTwoBulkLoadsTheSecondOutlivesTheFirst) {
    book.KeepHistory(10);
    Sheet::Bulk first(one), second(one);
    first.Enter({0, 0}, "1");
    second.Enter({0, 1}, "2"); // while the first one is open, a part of it
    first.Commit();
    second.Enter({0, 2}, "3");
    second.Commit();
    EXPECT_TRUE(book.Undo());
    EXPECT_EQ(one.Text("A2") + one.Text("A3"), "2");
    EXPECT_TRUE(book.Undo());
    EXPECT_FALSE(one.UsedArea());
    EXPECT_FALSE(book.Undo());
}

TEST_F(BookHistory, AnEditThroughAChainOfEditSourcesIsTakenBackToItsEnd) {
    one.Enter("A1", "50%");
    one.DefineName("rate", A("A1:A1"));
    one.Enter("A2", "!rate");
    one.Enter("A3", "!A2");
    one.Enter("B1", "=A3");
    book.Recalculate();
    std::string const before = Shown(book);
    std::vector<std::function<void()>> const edits{[&] { one.Enter("A3", "7"); },
                                                   [&] {
                                                       one.Clear({0, 2});
                                                   },
                                                   [&] { one.ClearFormat(A("A3:A3")); }};
    for (std::size_t i = 0; i < edits.size(); ++i) {
        book.KeepHistory(10);
        edits[i]();
        EXPECT_NE(Shown(book), before) << i;
        EXPECT_TRUE(book.Undo()) << i;
        EXPECT_EQ(Shown(book), before) << i;
    }
}

TEST(History, ASheetOfItsOwnHasOneToo) {
    Sheet sheet("C");
    sheet.KeepHistory(5);
    sheet.Enter("A1", "1");
    sheet.InsertRows(0);
    EXPECT_TRUE(sheet.Undo());
    EXPECT_EQ(sheet.Text("A1"), "1");
    EXPECT_TRUE(sheet.Undo());
    EXPECT_FALSE(sheet.UsedArea());
    EXPECT_TRUE(sheet.Redo());
    EXPECT_EQ(sheet.Text("A1"), "1");
}

TEST_F(BookHistory, ASheetOfAWorkbookDoesNotSwitchIt) {
    book.KeepHistory(5);
    one.KeepHistory(0);
    one.Enter("A1", "1");
    EXPECT_TRUE(book.Undo());
}

TEST_F(BookHistory, ASwitchWhileALoadIsOpenForgetsTheLoad) {
    for (int steps : {0, 5}) {
        book.KeepHistory(10);
        {
            Sheet::Bulk load(one);
            load.Enter(P("A1"), "1");
            book.KeepHistory(steps);
            load.Enter(P("A2"), "=A1+1");
            load.Commit();
        }
        EXPECT_EQ(one.Text("A2"), "2") << steps;
        EXPECT_FALSE(book.Undo()) << steps;
    }
}

TEST(History, EditsOfARemovedSheetComeBackWithIt) {
    auto const book = Sample();
    book->KeepHistory(10);
    std::string const before = Shown(*book);
    (*book)["Two"].Enter("B2", "8");
    book->Remove(1);
    book->At(0).Enter("A1", "1");
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(book->Undo());
    EXPECT_EQ(Shown(*book), before);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(book->Redo());
    EXPECT_EQ(book->Count(), 1);
}

TEST_F(BookHistory, TakingBackEntersFormulasOfProtectedSheets) {
    one.Enter("A1", "5");
    one.SetFlag(A("A1:A1"), CellFlag::kHidden);
    one.Enter("B1", "=A1*2");
    book.KeepHistory(5);
    one.Enter("B1", "x");
    one.Protect();
    book.Undo();
    book.Undo();
    book.Redo();
    book.Redo();
    book.Undo();
    book.Undo();
    EXPECT_EQ(*one.Formula(P("B1")), "=A1 * 2");
    EXPECT_EQ(one.Text("B1"), "10");
}

TEST(History, RandomEditsAreTakenBackToTheirBeginning) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        std::mt19937 random(seed);
        auto const book = Sample();
        book->KeepHistory(100);
        std::vector<std::string> states{Shown(*book)};
        for (int step = 0; step < 25; ++step) {
            Sheet & sheet = book->At(int(random() % unsigned(book->Count())));
            Place const place{int(random() % 3), int(random() % 5)};
            switch (random() % 8) {
            case 0:
                sheet.InsertRows(place.row);
                break;
            case 1:
                sheet.DeleteRows(place.row);
                break;
            case 2:
                sheet.Copy({place, {place.column + 1, place.row + 1}}, {2, 2});
                break;
            case 3:
                sheet.Move({place, place}, {1, 3});
                break;
            case 4:
                if (book->Count() > 1) book->Remove(int(random() % unsigned(book->Count())));
                break;
            case 5:
                book->Add("New" + std::to_string(step));
                break;
            default:
                sheet.Enter(place, random() % 2 ? std::to_string(random() % 90) : "=One!Z1+Z2");
            }
            states.push_back(Shown(*book));
        }
        while (book->Undo()) {
        }
        ASSERT_EQ(Shown(*book), states.front()) << seed;
        while (book->Redo()) {
        }
        ASSERT_EQ(Shown(*book), states.back()) << seed;
        ASSERT_EQ(book->CheckInvariants(), std::vector<std::string>()) << seed;
    }
}
