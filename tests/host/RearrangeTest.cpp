// Rows and columns that come and go, areas that move, copies.
#include "host/Workbook.h"
#include "support/Workbooks.h"

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
using cells::test::Shown;

namespace {

class Cells : public cells::test::ThreeSheets {
protected:
    Sheet &sheet = one, &other = two;

    std::string Formula(char const * place) { return sheet.EditText(P(place)); }
};

} // namespace

TEST_F(Cells, InsertedRowsPushCellsDownAndFormulasFollow) {
    sheet.Enter("A1", "1");
    sheet.Enter("A2", "2");
    sheet.Enter("A3", "=A1+A2");
    other.Enter("A1", "=One!A2");
    other.Enter("A2", "=A2"); // of its own sheet
    EXPECT_TRUE(sheet.InsertRows(1, 2));
    EXPECT_EQ(Formula("A5"), "=A1 + A4");
    EXPECT_EQ(sheet.Text("A4"), "2");
    EXPECT_EQ(sheet.Text("A2"), "");
    EXPECT_EQ(other.EditText(P("A1")), "=One ! A4");
    EXPECT_EQ(other.EditText(P("A2")), "=A2");
    sheet.Enter("A4", "20");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("A5"), "21");
    EXPECT_EQ(other.Text("A1"), "20");
}

TEST_F(Cells, RegionsGrowWithRowsInsertedInsideThem) {
    for (int row = 0; row < 4; ++row) sheet.Enter(Place{0, row}, "1");
    sheet.Enter("B1", "=SUM(A2:A3)");
    sheet.Enter("C1", "=SUM($A$1:$A$2)");
    sheet.InsertRows(2);
    EXPECT_EQ(Formula("B1"), "=SUM (A2:A4)");
    EXPECT_EQ(Formula("C1"), "=SUM ($A$1:$A$2)");
    sheet.Enter("A3", "5");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "7");
}

TEST_F(Cells, InsertedColumnsPushCellsToTheRight) {
    sheet.Enter("A1", "1");
    sheet.Enter("B1", "=A1*2");
    sheet.Enter("C1", "=SUM(A1:B1)");
    EXPECT_TRUE(sheet.InsertColumns(1));
    EXPECT_EQ(Formula("C1"), "=A1 * 2");
    EXPECT_EQ(Formula("D1"), "=SUM (A1:C1)");
}

TEST_F(Cells, DeletedRowsCloseUpAndReferencesToThemAreErrors) {
    for (int row = 0; row < 6; ++row) sheet.Enter(Place{0, row}, std::to_string(row + 1));
    sheet.Enter("B1", "=A3");
    sheet.Enter("B2", "=SUM(A1:A6)");
    sheet.Enter("B6", "=A6");
    other.Enter("A1", "=SUM(One!A3:A4)");
    other.Enter("A2", "=SUM(One!A2..A6)+SUM(One!A2..A3)");
    EXPECT_TRUE(sheet.DeleteRows(2, 2));
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "#REF!");
    EXPECT_EQ(Formula("B2"), "=SUM (A1:A4)");
    EXPECT_EQ(sheet.Text("B2"), "14");
    EXPECT_EQ(Formula("B4"), "=A4");
    EXPECT_EQ(sheet.Text("A3"), "5");
    EXPECT_EQ(*other.Formula(P("A1")), "=SUM (#REF!)");
    EXPECT_EQ(*other.Formula(P("A2")), "=SUM (One ! A2:A4) + SUM (One ! A2:A2)");
}

TEST_F(Cells, DeletedColumnsCutRegions) {
    sheet.Enter("E1", "=SUM(A1:C1)");
    sheet.Enter("E2", "=SUM(B1:D1)");
    sheet.DeleteColumns(1, 2);
    EXPECT_EQ(Formula("C1"), "=SUM (A1:A1)");
    EXPECT_EQ(Formula("C2"), "=SUM (B1:B1)");
}

TEST_F(Cells, CellsAreNotPushedOffTheGrid) {
    sheet.Enter("A65536", "1");
    sheet.Enter("IV1", "1");
    EXPECT_FALSE(sheet.InsertRows(0));
    EXPECT_FALSE(sheet.InsertColumns(255));
    EXPECT_EQ(sheet.Text("A65536"), "1");
    EXPECT_THROW(sheet.InsertRows(-1), std::out_of_range);
    EXPECT_THROW(sheet.DeleteRows(65535, 2), std::out_of_range);
    EXPECT_THROW(sheet.DeleteColumns(256), std::out_of_range);
    EXPECT_TRUE(sheet.DeleteRows(0, 65536));
    EXPECT_FALSE(sheet.UsedArea());
}

TEST_F(Cells, ReferencesToTheEndOfTheGridStayOnIt) {
    sheet.Enter("B1", "=SUM(A2:A65536)");
    sheet.Enter("B2", "=A65536");
    sheet.InsertRows(5);
    EXPECT_EQ(Formula("B1"), "=SUM (A2:A65536)");
    EXPECT_EQ(Formula("B2"), "=#REF!");
}

TEST_F(Cells, NamesAndFormatsOfAreasFollow) {
    sheet.Enter("A3", "7");
    sheet.DefineName("rate", A("A3:A3"));
    sheet.Enter("B1", "=rate+1");
    sheet.SetNumberFormat(A("C3:C9"), "percent:1");
    sheet.InsertRows(0, 2);
    book.Recalculate();
    EXPECT_EQ(Formula("B3"), "=rate + 1");
    sheet.Enter("A5", "8");
    sheet.Enter("C11", "0.5");
    sheet.Enter("C4", "0.5");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B3"), "9");
    EXPECT_EQ(sheet.Text("C11"), "50.0%");
    EXPECT_EQ(sheet.Text("C4"), "0.5");
    sheet.DeleteRows(4);
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B3"), "#REF!");
}

TEST_F(Cells, FormulasThatTellTheirOwnPlaceAreComputedAgain) {
    sheet.Enter("A3", "=ROW()");
    sheet.Enter("A4", "=OFFSET(A1,1,0)");
    sheet.Enter("A2", "5");
    book.Recalculate();
    sheet.InsertRows(0);
    book.Recalculate();
    EXPECT_EQ(sheet.Text("A4"), "4");
    EXPECT_EQ(Formula("A5"), "=OFFSET (A2, 1, 0)");
    EXPECT_EQ(sheet.Text("A5"), "5");
}

TEST_F(Cells, ProtectionRefusesWhatWouldChangeALockedCell) {
    sheet.Enter("A5", "1");
    sheet.SetFlag(A("A5:A5"), CellFlag::kLocked);
    sheet.Protect();
    EXPECT_FALSE(sheet.InsertRows(2));
    EXPECT_FALSE(sheet.DeleteRows(4));
    EXPECT_FALSE(sheet.Move(A("A5:A5"), P("B1")));
    EXPECT_FALSE(sheet.Copy(A("B1:B1"), P("A5")));
    EXPECT_TRUE(sheet.InsertRows(5));
    EXPECT_TRUE(sheet.Copy(A("A5:A5"), P("C1")));
    EXPECT_EQ(sheet.Text("A5"), "1");
}

TEST_F(Cells, AMovedAreaTakesItsReadersAlong) {
    sheet.Enter("A1", "1");
    sheet.Enter("A2", "=A1*2");
    sheet.Enter("B1", "=A2+SUM(A1:A2)+SUM(A1:A9)");
    other.Enter("A1", "=One!A2");
    EXPECT_TRUE(sheet.Move(A("A1:A2"), P("D5")));
    EXPECT_EQ(Formula("D6"), "=D5 * 2");
    EXPECT_EQ(Formula("B1"), "=D6 + SUM (D5:D6) + SUM (A1:A9)");
    EXPECT_EQ(other.EditText(P("A1")), "=One ! D6");
    EXPECT_EQ(sheet.Text("A1"), "");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "5");
}

TEST_F(Cells, AnAreaMovesOverItself) {
    for (int row = 0; row < 4; ++row) sheet.Enter(Place{0, row}, std::to_string(row + 1));
    sheet.Enter("B1", "=A1*1000+A2*100+A3*10+A4");
    EXPECT_TRUE(sheet.Move(A("A1:A4"), P("A3")));
    EXPECT_EQ(Formula("B1"), "=A3 * 1000 + A4 * 100 + A5 * 10 + A6");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "1234");
    EXPECT_EQ(sheet.Text("A2"), "");
}

TEST_F(Cells, WhatAMoveOverwritesIsGoneAndItsReadersReadTheNewCell) {
    sheet.Enter("A1", "1");
    sheet.Enter("C1", "=B1*2");
    sheet.Enter("B1", "=5+5");
    sheet.Move(A("A1:A1"), P("B1"));
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "1");
    EXPECT_EQ(sheet.Text("C1"), "2");
    EXPECT_THROW(sheet.Move(A("A1:B2"), P("IV1")), std::out_of_range);
}

TEST_F(Cells, CopiesKeepTheDistanceOfRelativeReferences) {
    sheet.Enter("A1", "1");
    sheet.Enter("A2", "2");
    sheet.Enter("B1", "=A1*$A$1");
    sheet.SetNumberFormat(A("B1:B1"), "number:2");
    EXPECT_TRUE(sheet.Copy(A("B1:B1"), P("B2")));
    EXPECT_EQ(Formula("B2"), "=A2 * $A$1");
    EXPECT_EQ(sheet.Text("B2"), "2.00");
    sheet.Enter("A1", "10");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B2"), "20.00");
}

TEST_F(Cells, ReferencesInsideACopiedAreaGoWithIt) {
    sheet.Enter("A1", "5");
    sheet.Enter("B1", "=A1+$A$1");
    sheet.Copy(A("A1:B1"), P("A4"));
    EXPECT_EQ(Formula("B4"), "=A4 + $A$4");
    EXPECT_EQ(sheet.Text("A4"), "5");
}

TEST_F(Cells, ACopyThatFallsOffTheGridIsAnErrorInItsPlace) {
    sheet.Enter("B2", "=A1+1");
    sheet.Copy(A("B2:B2"), P("A1"));
    EXPECT_EQ(Formula("A1"), "=#REF! + 1");
    sheet.Enter("C3", "=$C$9");
    sheet.Copy(A("C3:C3"), P("C9")); // onto the cell that it names
    EXPECT_EQ(sheet.Text("C9"), "#CIRC!");
}

TEST_F(Cells, ATransposedCopyTurnsRowsToColumns) {
    sheet.Enter("A1", "1");
    sheet.Enter("B1", "2");
    sheet.Enter("A2", "=A1+B1");
    EXPECT_TRUE(sheet.Copy(A("A1:B2"), P("D5"), true));
    EXPECT_EQ(sheet.Text("D5"), "1");
    EXPECT_EQ(sheet.Text("D6"), "2");
    EXPECT_EQ(Formula("E5"), "=D5 + D6");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("E5"), "3");
}

TEST_F(Cells, ACopyOverwritesAndItsReadersAreTold) {
    sheet.Enter("A1", "1");
    sheet.Enter("B1", "=7");
    sheet.Enter("B2", "old");
    sheet.Enter("C1", "=B1+0");
    sheet.Enter("C2", "=SUM(B1:B9)");
    book.Recalculate();
    sheet.Copy(A("A1:A2"), P("B1"));
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "1");
    EXPECT_EQ(sheet.Text("B2"), "");
    EXPECT_EQ(sheet.Text("C1"), "1");
    EXPECT_EQ(sheet.Text("C2"), "1");
}

TEST_F(Cells, CopiesGoToOtherSheets) {
    sheet.Enter("A1", "4");
    sheet.Enter("B1", "=A1*2+Two!C1");
    EXPECT_TRUE(other.CopyFrom(sheet, A("A1:B1"), P("A3")));
    EXPECT_EQ(other.Text("A3"), "4");
    EXPECT_EQ(other.EditText(P("B3")), "=A3 * 2 + Two ! C3");
    book.Recalculate();
    EXPECT_EQ(other.Text("B3"), "8");
}

TEST_F(Cells, WhatAProtectedSheetHidesIsNotCopiedToAnother) {
    sheet.Enter("A1", "=2*21");
    sheet.SetFlag(A("A1:A1"), CellFlag::kHidden);
    EXPECT_TRUE(other.CopyFrom(sheet, A("A1:A1"), P("C1")));
    sheet.Protect("p");
    std::vector<unsigned> messages;
    sheet.OnMessage([&](unsigned id, std::string const &) { messages.push_back(id); });
    EXPECT_FALSE(other.CopyFrom(sheet, A("A1:B2"), P("D1")));
    EXPECT_EQ(messages, std::vector<unsigned>{13037});
    EXPECT_EQ(other.EditText(P("D1")), "");
    EXPECT_TRUE(other.CopyFrom(sheet, A("B1:B2"), P("D1")));
    EXPECT_TRUE(sheet.Copy(A("A1:A1"), P("B5"))); // its copy is hidden as well
    EXPECT_EQ(sheet.EditText(P("B5")), "");
}

TEST(Rearranging, InsertingAndDeletingTheSameLinesChangesNothing) {
    for (unsigned seed = 1; seed <= 15; ++seed) {
        std::mt19937 random(seed);
        Workbook book("C");
        Sheet &one = book.Add("One"), &two = book.Add("Two");
        // Formulas read rows above them only, so that there is no cycle.
        for (int row = 0; row < 8; ++row)
            for (int column = 0; column < 4; ++column) {
                auto const above = [&] {
                    return NameOf(Place{int(random() % 4), int(random() % unsigned(row))});
                };
                std::string text = std::to_string(random() % 50);
                if (row && random() % 2) text = "=" + above() + "+One!" + above();
                if (row && random() % 4 == 0) text = "=SUM(" + above() + ":" + above() + ")";
                if (random() % 4) (random() % 2 ? one : two).Enter(Place{column, row}, text);
            }
        book.Recalculate();
        std::string const before = Shown(book);
        int const at = int(random() % 8), count = 1 + int(random() % 3);
        ASSERT_TRUE(one.InsertRows(at, count));
        book.Recalculate();
        ASSERT_EQ(book.CheckInvariants(), std::vector<std::string>()) << seed;
        ASSERT_TRUE(one.DeleteRows(at, count));
        ASSERT_TRUE(one.InsertColumns(at % 4, count));
        ASSERT_TRUE(one.DeleteColumns(at % 4, count));
        book.Recalculate();
        ASSERT_EQ(Shown(book), before) << "seed " << seed << ", rows at " << at;
        ASSERT_EQ(book.CheckInvariants(), std::vector<std::string>()) << seed;
    }
}
