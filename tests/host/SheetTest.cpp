#include "host/Sheet.h"

#include "cells/CCCellManager.h"
#include "formula/CCRCRef.h"
#include "formula/CCRegionRef.h"

#include <gtest/gtest.h>
#include <random>
#include <stdexcept>

using namespace cells::host;

TEST(Place, NamesGoBothWays) {
    struct Row {
        char const * name;
        Place place;
    };
    for (Row const & row : {Row{"A1", {0, 0}}, Row{"Z9", {25, 8}}, Row{"AA10", {26, 9}},
                            Row{"IV65536", {255, 65535}}}) {
        EXPECT_EQ(NameOf(row.place), row.name);
        EXPECT_EQ(ParsePlace(row.name), row.place);
    }
    EXPECT_EQ(ParsePlace("b7"), (Place{1, 6}));
    for (char const * bad :
         {"", "A", "1", "A0", "IW1", "A65537", "A1B", " A1", "A-1", "AAAA1", "A99999999999"})
        EXPECT_FALSE(ParsePlace(bad)) << bad;
}

TEST(Area, CornersMayStandInAnyOrder) {
    Area const area{{1, 1}, {3, 8}};
    for (char const * text : {"B2:D9", "D9:B2", "B9:D2"}) EXPECT_EQ(ParseArea(text), area) << text;
    EXPECT_EQ(ParseArea("B2"), (Area{{1, 1}, {1, 1}}));
    EXPECT_FALSE(ParseArea("B2:"));
    EXPECT_FALSE(ParseArea(":B2"));
    EXPECT_EQ(NameOf(area), "B2:D9");
}

TEST(Sheet, PlacesOffTheGridThrow) {
    Sheet sheet("C");
    for (Place const place : {Place{-1, 0}, Place{256, 0}, Place{0, -1}, Place{0, 65536}}) {
        EXPECT_THROW(sheet.Enter(place, "1"), std::out_of_range);
        EXPECT_THROW(sheet.Text(place), std::out_of_range);
        EXPECT_THROW(sheet.Get(place), std::out_of_range);
    }
    EXPECT_THROW(sheet.Enter("XYZ", "1"), std::out_of_range);
}

TEST(Sheet, ShowsTheSameForAPlainNumberAndForACell) {
    Sheet plain("C"), watched("C");
    watched.Enter("B1", "=A1"); // A1 is a cell object from here on
    for (char const * text :
         {"1", "1.50", "12%", "1/2/1990", "TRUE", "1E5", "10:30", "-7", "text", ""}) {
        plain.Enter("A1", text);
        watched.Enter("A1", text);
        EXPECT_EQ(plain.Text("A1"), watched.Text("A1")) << text;
        EXPECT_EQ(plain.EditText({0, 0}), watched.EditText({0, 0})) << text;
        EXPECT_EQ(plain.Get("A1").formatClass, watched.Get("A1").formatClass) << text;
    }
}

TEST(Sheet, TellsWhatChanged) {
    Sheet sheet("C");
    std::vector<std::string> changed;
    sheet.OnChanged([&](Place place) { changed.push_back(NameOf(place)); });
    sheet.Enter("A1", "1");
    sheet.Enter("B1", "=A1*2");
    changed.clear();
    sheet.Enter("A1", "5");
    EXPECT_EQ(changed, std::vector<std::string>{"A1"});
    sheet.Recalculate();
    EXPECT_EQ(changed, (std::vector<std::string>{"A1", "B1"}));
}

TEST(Sheet, ReportsAFormulaThatDoesNotParse) {
    Sheet sheet("C");
    std::vector<unsigned> messages;
    sheet.OnMessage([&](unsigned id, std::string const & text) {
        messages.push_back(id);
        EXPECT_FALSE(text.empty());
    });
    sheet.Enter("A1", "=(1+2");
    EXPECT_EQ(messages.size(), 1u);
    EXPECT_EQ(sheet.Get("A1").kind, Kind::kText);
    EXPECT_EQ(sheet.Text("A1"), "=(1+2");
}

TEST(Sheet, CancelsBetweenSlicesAndGoesOn) {
    Sheet sheet("C");
    sheet.Enter("A1", "1");
    for (int row = 2; row <= 2000; ++row)
        sheet.Enter("A" + std::to_string(row), "=A" + std::to_string(row - 1) + "+1");
    sheet.Recalculate();
    sheet.Enter("A1", "2");
    int calls = 0;
    sheet.OnProgress([&](int, int) { return ++calls < 3; });
    EXPECT_TRUE(sheet.Recalculate()); // work remains
    sheet.OnProgress({});
    EXPECT_FALSE(sheet.Recalculate());
    EXPECT_EQ(sheet.Text("A2000"), "2001");
}

TEST(Sheet, UsedAreaFollowsWhatIsOccupied) {
    Sheet sheet("C");
    EXPECT_FALSE(sheet.UsedArea());
    sheet.Enter("C3", "1");
    sheet.Enter("B9", "text");
    EXPECT_EQ(sheet.UsedArea(), (Area{{1, 2}, {2, 8}}));
    sheet.Enter("E1", "=A1"); // makes the empty A1 known, not occupied
    EXPECT_EQ(sheet.UsedArea(), (Area{{1, 0}, {4, 8}}));
    sheet.Clear({4, 0});
    sheet.Clear({1, 8});
    EXPECT_EQ(sheet.UsedArea(), (Area{{2, 2}, {2, 2}}));
    std::vector<std::string> places;
    sheet.Enter("IV65536", "1");
    sheet.ForEachOccupied([&](Place place) { places.push_back(NameOf(place)); });
    EXPECT_EQ(places, (std::vector<std::string>{"C3", "IV65536"}));
}

TEST(Sheet, AreasAreWatchedAlsoWhereTheyAreEmpty) {
    Sheet sheet("C");
    sheet.Enter("A1", "=SUM(B1:IV65536)");
    sheet.Enter("Z60000", "5");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("A1"), "5");
    sheet.Clear({25, 59999});
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("A1"), "0");
    EXPECT_EQ(sheet.Dependents({25, 59999}), std::vector<std::string>{"A1"});
    EXPECT_EQ(sheet.Precedents({0, 0}), std::vector<std::string>{"B1:IV65536"});
}

TEST(Sheet, NamesFollowTheirRedefinition) {
    Sheet sheet("C");
    sheet.Enter("A1", "1");
    sheet.Enter("A2", "2");
    sheet.Enter("B1", "=both+1");
    EXPECT_EQ(sheet.Get("B1").error, 1);
    EXPECT_TRUE(sheet.DefineName("Both", {{0, 0}, {0, 1}}));
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "4");
    EXPECT_TRUE(sheet.RemoveName("BOTH"));
    sheet.Recalculate();
    EXPECT_EQ(sheet.Get("B1").error, 1);
    EXPECT_FALSE(sheet.RemoveName("both"));
    for (char const * bad : {"", "A1", "1x", "a b", "a-b", "Column", "pi"})
        EXPECT_FALSE(sheet.DefineName(bad, {{0, 0}, {0, 0}})) << bad;
}

TEST(Sheet, FormatsShowTheNumberTheirWay) {
    Sheet sheet("C");
    sheet.Enter("A1", "0.125");
    sheet.SetNumberFormat(*cells::host::ParseArea("A1"), "percent:1");
    EXPECT_EQ(sheet.Text("A1"), "12.5%");
    EXPECT_EQ(sheet.Get("A1").number, 0.125);
    sheet.SetNumberFormat(*cells::host::ParseArea("A1"), "number:2");
    EXPECT_EQ(sheet.Text("A1"), "0.13");
}

TEST(Sheet, AChainOfAllRowsCalculatesWithoutRecursion) {
    Sheet sheet("C");
    Sheet::Bulk load(sheet);
    load.Enter({0, 0}, "1");
    for (int row = 1; row < kRows; ++row) load.Enter({0, row}, "=A" + std::to_string(row) + "+1");
    load.Commit();
    EXPECT_EQ(sheet.Text("A65536"), "65536");
    sheet.Enter("A1", "2");
    EXPECT_FALSE(sheet.Recalculate());
    EXPECT_EQ(sheet.Text("A65536"), "65537");
}

TEST(Bulk, WithoutACommitDropsWhatWaits) {
    Sheet sheet("C");
    {
        Sheet::Bulk load(sheet);
        load.Enter({0, 0}, "=1+1");
        load.Enter({0, 1}, "5");
    }
    EXPECT_EQ(sheet.Get("A1").kind, Kind::kEmpty);
    EXPECT_TRUE(sheet.CheckInvariants().empty());
}

TEST(Bulk, IsEnteringOneByOne) {
    struct Case {
        char const * what;
        std::vector<std::pair<char const *, char const *>> entries;
    };
    Case const cases[] = {
        {"a cycle", {{"A1", "=B1"}, {"B1", "=A1"}, {"C1", "=A1+1"}}},
        {"a cell that reads itself", {{"A1", "=A1"}, {"B1", "=A1"}}},
        {"a formula that does not parse", {{"A1", "=(1"}, {"B1", "=A1"}}},
        {"the same place twice", {{"A1", "1"}, {"B1", "=A1"}, {"A1", "=C1"}, {"C1", "7"}}},
        {"formulas before their values",
         {{"A1", "=SUM(B1:B3)"}, {"B1", "=C1*2"}, {"B3", "4"}, {"C1", "3"}}},
        {"a wrong call", {{"A1", "=ABS(1,2)"}, {"A2", "=A1"}}},
        {"a value cleared", {{"A1", "1"}, {"B1", "=A1+1"}, {"A1", ""}}},
    };
    for (Case const & row : cases) {
        SCOPED_TRACE(row.what);
        Sheet single("C"), bulk("C");
        for (auto const & [place, text] : row.entries) single.Enter(place, text);
        single.Recalculate();
        Sheet::Bulk load(bulk);
        for (auto const & [place, text] : row.entries) load.Enter(*ParsePlace(place), text);
        load.Commit();
        for (int column = 0; column < 4; ++column)
            for (int line = 0; line < 4; ++line) {
                Place const place{column, line};
                EXPECT_EQ(bulk.Text(place), single.Text(place)) << NameOf(place);
                EXPECT_EQ(bulk.EditText(place), single.EditText(place)) << NameOf(place);
            }
        EXPECT_TRUE(bulk.CheckInvariants().empty());
    }
}

TEST(Sheet, ACellTellsWhereItsHyperlinkLeads) {
    Sheet sheet("C");
    sheet.Enter("A1", "=HYPERLINK(\"page.html\",\"Next\")");
    sheet.Enter("A2", "=HYPERLINK(A1+\"#\")");
    sheet.Enter("A3", "=HYPERLINK(7)");
    sheet.Enter("A4", "page.html");
    EXPECT_EQ(sheet.Text("A1"), "Next");
    EXPECT_EQ(sheet.Hyperlink({0, 0}), "page.html");
    EXPECT_EQ(sheet.Hyperlink({0, 1}), "Next#");
    for (int row : {2, 3, 4}) EXPECT_EQ(sheet.Hyperlink({0, row}), std::nullopt) << row;
}

TEST(Sheet, AnEditSourceIsClearedThroughToWhatItShows) {
    Sheet sheet("C");
    sheet.Enter("A1", "=1/2");
    sheet.SetNumberFormat(*cells::host::ParseArea("A1:A1"), "percent:0");
    sheet.Enter("B1", "!A1");
    EXPECT_EQ(sheet.Text("B1"), "50%");
    sheet.ClearFormat(*cells::host::ParseArea("B1:B1"));
    sheet.Recalculate();
    EXPECT_EQ(sheet.EditText({0, 0}), "=1 / 2"); // only the format went away
    EXPECT_EQ(sheet.Text("B1"), "0.5");
    sheet.Clear({1, 0});
    EXPECT_EQ(sheet.EditText({0, 0}), "");
    EXPECT_EQ(sheet.EditText({1, 0}), "!A1");
}

TEST(Sheet, AnEditSourceThatShowsNothingElseIsCleared) {
    Sheet sheet("C");
    sheet.Enter("A1", "!1+1"); // with a message: no edit source
    sheet.Enter("B1", "!A1");
    sheet.Enter("B1", "=5");
    sheet.Enter("B1", "6");
    for (int column : {0, 1}) {
        sheet.Clear({column, 0});
        EXPECT_EQ(sheet.EditText({column, 0}), "") << column;
    }
}

TEST(SheetManager, ReadsAndMovesNothingWithoutAReference) {
    Sheet sheet("C");
    sheet.Enter("B1", "=SUM(A1:A3)");
    CCCellManager & manager = sheet.Manager();
    CCCellValue value;
    EXPECT_EQ(manager.GetValue(nullptr, value, 0), 0);
    CCRegionRef const area(0, 0, 0, 2);
    CCRCRef const b1(1, 0);
    EXPECT_EQ(manager.MoveFormula(nullptr, &b1, &b1), 0);
    EXPECT_EQ(manager.MoveFormula(&area, &b1, nullptr), 1);
    EXPECT_EQ(manager.MoveFormula(&area, nullptr, &b1), 1);
    sheet.Enter("A1", "5");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "5"); // it reads as before
    EXPECT_TRUE(sheet.CheckInvariants().empty());
}

TEST(Sheet, ErrorTextsAreReadWhereTheyArePrinted) {
    Sheet sheet("C");
    sheet.Enter("A1", "=SUM(#REF!,5)");
    sheet.Enter("A2", "=#REF!");
    sheet.Enter("A3", "#N/A");
    sheet.Enter("A4", "'#N/A");
    sheet.Enter("A5", "=COUNTIF(A1:A4,#N/A)");
    EXPECT_EQ(sheet.Text("A1"), "5");
    EXPECT_EQ(sheet.EditText({0, 0}), "=SUM (#REF!, 5)");
    EXPECT_EQ(sheet.Get("A2").error, 1);
    EXPECT_EQ(sheet.Get("A3").error, 9);
    EXPECT_FALSE(sheet.Formula({0, 2}));
    EXPECT_EQ(sheet.Get("A4").kind, Kind::kText);
    EXPECT_EQ(sheet.Text("A5"), "1");
    sheet.Enter("B1", "=A9*2+SUM(A9:A10)");
    sheet.DeleteRows(8, 2);
    EXPECT_EQ(sheet.EditText({1, 0}), "=#REF! * 2 + SUM (#REF!)");
    std::string const edit = sheet.EditText({1, 0});
    sheet.Enter("B1", "");
    sheet.Enter("B1", edit);
    EXPECT_EQ(sheet.EditText({1, 0}), edit);
    EXPECT_EQ(sheet.Text("B1"), "#REF!");
}

// A cell whose format hides what it holds: entered as it is edited, it stays what it is.
TEST(Sheet, AnEntryEqualToTheEditTextChangesNothing) {
    struct Row {
        char const *typed, *format, *edited;
        double number;
    } const rows[] = {
        {"5", "logical", "TRUE", 5},
        {"255", "hex", "0xFF", 255},
        {"3/5/2026 13:45:30", "date", "3/5/2026", 46085.5732638889},
        {"0.12345678", "percent:1", "", 0.12345678},
        {"0.123456789", "custom", "", 0.123456789},
    };
    for (bool const bulk : {false, true})
        for (Row const & row : rows) {
            SCOPED_TRACE(row.format);
            Sheet sheet("C");
            sheet.Enter("A1", row.typed);
            sheet.SetNumberFormat(*ParseArea("A1"),
                                  std::string(row.format) == "custom" ? "#,##0.00" : row.format);
            double const number = sheet.Get("A1").number;
            EXPECT_NEAR(number, row.number, 1e-6);
            std::string const edit = sheet.EditText({0, 0}), shown = sheet.Text("A1");
            if (*row.edited) {
                EXPECT_EQ(edit, row.edited);
            }
            int changes = 0;
            sheet.OnChanged([&](Place) { ++changes; });
            if (bulk) {
                Sheet::Bulk load(sheet);
                load.Enter({0, 0}, edit);
                load.Commit();
            } else {
                sheet.Enter("A1", edit);
            }
            EXPECT_EQ(sheet.Get("A1").kind, Kind::kNumber);
            EXPECT_EQ(sheet.Get("A1").number, number);
            EXPECT_EQ(sheet.Text("A1"), shown);
            EXPECT_EQ(changes, 0);
        }
}

TEST(Sheet, AnEntryThatOnlyLooksLikeWhatStandsThereIsTaken) {
    Sheet sheet("C");
    CCCellValue text;
    text.Set(L"5");
    sheet.Enter("A1", "x");
    CCRCRef const a1(0, 0);
    sheet.Manager().SetValue(&a1, text);
    ASSERT_EQ(sheet.EditText({0, 0}), "5");
    sheet.Enter("A1", "5");
    EXPECT_EQ(sheet.Get("A1").kind, Kind::kNumber);
    sheet.Enter("A2", "5");
    sheet.SetNumberFormat(*ParseArea("A2"), "logical");
    sheet.Enter("A2", "FALSE"); // not what it shows
    EXPECT_EQ(sheet.Get("A2").number, 0);
    sheet.Enter("A3", "=A4");
    sheet.Enter("A4", "=A3"); // a circle, which the first formula is refused for when it comes anew
    sheet.Enter("A4", "7");
    sheet.Enter("A3", "=A4");
    EXPECT_EQ(sheet.Text("A3"), "7");
    sheet.Enter("B1", "=B1");
    ASSERT_EQ(sheet.Text("B1"), "#CIRC!");
    sheet.Enter("B1", "=B1");
    EXPECT_EQ(sheet.Text("B1"), "#CIRC!");
}

// What its text rounds stays exact in the formula, and what it reads is read again.
TEST(Sheet, AFormulaEnteredAgainAsItIsEditedStaysExact) {
    for (bool const bulk : {false, true}) {
        Sheet sheet("C");
        sheet.Enter("A1", "=0.1234567890123456789*1000000");
        double const exact = sheet.Get("A1").number;
        Sheet::Bulk load(sheet);
        if (bulk) {
            load.Enter({0, 0}, sheet.EditText({0, 0}));
            load.Commit();
        } else {
            sheet.Enter("A1", sheet.EditText({0, 0}));
        }
        EXPECT_EQ(sheet.Get("A1").number, exact);
        EXPECT_EQ(sheet.CheckInvariants(), std::vector<std::string>());
    }
}

TEST(Sheet, ALockedCellRefusesItsOwnEditTextToo) {
    Sheet sheet("C");
    sheet.Enter("A1", "=1+1");
    sheet.SetFlag(*ParseArea("A1"), cells::host::CellFlag::kLocked);
    sheet.Protect();
    std::vector<unsigned> messages;
    sheet.OnMessage([&](unsigned id, std::string const &) { messages.push_back(id); });
    sheet.Enter("A1", "=1 + 1");
    EXPECT_EQ(messages, std::vector<unsigned>{13036});
}
