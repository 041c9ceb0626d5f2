// Sheets that calculate together: references across sheets, and sheets that come, go and move.
#include "host/Workbook.h"

#include "cells/CCCell.h"
#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/CCRCRef.h"
#include "support/Workbooks.h"

#include <gtest/gtest.h>
#include <map>
#include <random>

using cells::host::Area;
using cells::host::Place;
using cells::host::Sheet;
using cells::host::Workbook;
using cells::test::ThreeSheets;

TEST_F(ThreeSheets, AFormulaReadsACellOfAnotherSheetAndFollowsIt) {
    two.Enter("A1", "5");
    one.Enter("B1", "=Two!A1*2");
    EXPECT_EQ(one.Text("B1"), "10");
    two.Enter("A1", "6");
    book.Recalculate();
    EXPECT_EQ(one.Text("B1"), "12");
}

TEST_F(ThreeSheets, AnEmptyCellOfAnotherSheetIsFollowedToo) {
    one.Enter("B1", "=Two!A1+1");
    EXPECT_EQ(one.Text("B1"), "1");
    two.Enter("A1", "6");
    book.Recalculate();
    EXPECT_EQ(one.Text("B1"), "7");
}

TEST_F(ThreeSheets, ChainsThroughAllSheetsAreComputedInOrder) {
    three.Enter("C1", "=Two!B1+1");
    two.Enter("B1", "=One!A1+1");
    one.Enter("A1", "=Three!A1+1");
    three.Enter("A1", "10");
    book.Recalculate();
    EXPECT_EQ(three.Text("C1"), "13");
    three.Enter("A1", "20");
    book.Recalculate();
    EXPECT_EQ(three.Text("C1"), "23");
}

TEST_F(ThreeSheets, ARegionOfAnotherSheetIsSummed) {
    for (int row = 0; row < 4; ++row) two.Enter(Place{0, row}, std::to_string(row + 1));
    one.Enter("A1", "=SUM(Two!A1:A4)");
    EXPECT_EQ(one.Text("A1"), "10");
    two.Enter("A2", "=A1*10");
    book.Recalculate();
    EXPECT_EQ(one.Text("A1"), "18");
}

TEST_F(ThreeSheets, ARunOfSheetsIsReadSheetBySheet) {
    one.Enter("A1", "1");
    two.Enter("A1", "2");
    three.Enter("A1", "4");
    one.Enter("B1", "=SUM(One:Three!A1)");
    two.Enter("B1", "=SUM(One:Two!A1:A2)");
    EXPECT_EQ(one.Text("B1"), "7");
    EXPECT_EQ(two.Text("B1"), "3");
    two.Enter("A1", "20");
    book.Recalculate();
    EXPECT_EQ(one.Text("B1"), "25");
    EXPECT_EQ(two.Text("B1"), "21");
}

TEST_F(ThreeSheets, WhatAFormulaReadsIsNamedWithItsSheet) {
    using Texts = std::vector<std::string>;
    one.Enter("B1", "=SUM(One:Three!A1)+Two!A2:A3+A4+One!A5");
    EXPECT_EQ(one.Precedents({1, 0}), (Texts{"A1", "A4", "A5", "Three!A1", "Two!A1", "Two!A2:A3"}));
    EXPECT_EQ(one.Dependents({0, 0}), Texts{"B1"});
    EXPECT_EQ(two.Dependents({0, 0}), Texts{"One!B1"});
    EXPECT_EQ(two.Dependents({0, 1}), Texts{"One!B1"});
    book.Rename(1, "Other");
    EXPECT_EQ(one.Precedents({1, 0}),
              (Texts{"A1", "A4", "A5", "Other!A1", "Other!A2:A3", "Three!A1"}));
}

TEST_F(ThreeSheets, ClearingTheFormulaOfARunLeavesNoDependents) {
    one.Enter("B1", "=SUM(One:Three!A1)");
    one.Clear({1, 0});
    for (int sheet = 0; sheet < 3; ++sheet)
        EXPECT_TRUE(book.At(sheet).Dependents({0, 0}).empty()) << sheet;
}

TEST_F(ThreeSheets, CornersOnTwoSheetsNameTheRegionOnTheSheetsBetween) {
    one.Enter("A1", "1");
    two.Enter("B2", "2");
    three.Enter("A2", "4");
    one.Enter("D1", "=SUM(One!A1:Three!B2)");
    EXPECT_EQ(one.Text("D1"), "7");
    one.Enter("D2", "=SUM(One!A1:Four!B2)");
    EXPECT_EQ(one.Text("D2"), "#REF!");
}

TEST_F(ThreeSheets, ASheetThatDoesNotExistIsAReferenceErrorUntilItComes) {
    one.Enter("B1", "=Four!A1+1");
    EXPECT_EQ(one.Text("B1"), "#REF!");
    book.Add("Four").Enter("A1", "41");
    book.Recalculate();
    EXPECT_EQ(one.Text("B1"), "42");
}

TEST_F(ThreeSheets, NamesOfSheetsHaveNoRegardToCase) {
    two.Enter("A1", "5");
    one.Enter("A1", "=TWO!A1");
    EXPECT_EQ(one.Text("A1"), "5");
    EXPECT_EQ(book.Find("tWo"), &two);
    EXPECT_EQ(book.Find("Four"), nullptr);
}

TEST_F(ThreeSheets, FormulasFollowARenamedSheet) {
    two.Enter("A1", "5");
    one.Enter("A1", "=Two!A1+SUM(Two:Three!A1)");
    book.Rename(1, "Other");
    EXPECT_EQ(book.NameOf(1), "Other");
    EXPECT_EQ(*one.Formula({0, 0}), "=Other ! A1 + SUM (Other : Three ! A1)");
    two.Enter("A1", "6");
    book.Recalculate();
    EXPECT_EQ(one.Text("A1"), "12");
}

TEST_F(ThreeSheets, ARenamedSheetMeetsTheFormulasThatWaitForItsName) {
    one.Enter("A1", "=Later!A1");
    two.Enter("A1", "5");
    book.Rename(1, "Later");
    book.Recalculate();
    EXPECT_EQ(one.Text("A1"), "5");
}

TEST_F(ThreeSheets, FormulasOverARemovedSheetShowAReferenceErrorAndKeepTheirText) {
    two.Enter("A1", "5");
    one.Enter("B1", "=Two!A1");
    one.Enter("B2", "=B1");
    book.Remove(1);
    book.Recalculate();
    EXPECT_EQ(one.Text("B1"), "#REF!");
    EXPECT_EQ(one.Text("B2"), "#REF!");
    EXPECT_EQ(*one.Formula({1, 0}), "=Two ! A1");
    book.Add("Two").Enter("A1", "7");
    book.Recalculate();
    EXPECT_EQ(one.Text("B2"), "7");
}

TEST_F(ThreeSheets, AFormulaOverARemovedSheetReadsNothingOfItsOwnSheet) {
    for (auto const & [place, formula] :
         {std::pair("A1", "=Two!A1"), std::pair("A2", "=Two!A2+1"),
          std::pair("A3", "=SUM(Two!A1:A9)"), std::pair("A4", "=SUM(Two:Two!A4)"),
          std::pair("B1", "=Two!C1")})
        one.Enter(place, formula);
    one.Enter("C1", "5");
    book.Recalculate();
    book.Remove(1);
    book.Recalculate();
    for (char const * place : {"A1", "A2", "A3", "A4", "B1"})
        EXPECT_EQ(one.Text(place), "#REF!") << place;
    CCRCRef const c1(2, 0), a1(0, 0);
    for (CCRCRef const * ref : {&c1, &a1}) {
        CCItem const * const item = one.Manager().GetItem(ref);
        ASSERT_TRUE(item);
        EXPECT_EQ(item->GetDependentCount(), 0);
    }
    one.Enter("B2", "=Four!B2"); // a sheet that has never been there
    EXPECT_EQ(one.Text("B2"), "#REF!");
    Sheet & again = book.Add("Two", 1);
    again.Enter("A1", "3");
    again.Enter("C1", "4");
    book.Recalculate();
    EXPECT_EQ(one.Text("A1"), "3");
    EXPECT_EQ(one.Text("A3"), "3");
    EXPECT_EQ(one.Text("B1"), "4");
}

TEST_F(ThreeSheets, ARunHoldsTheSheetsThatStandBetweenItsEndsNow) {
    one.Enter("A1", "1");
    two.Enter("A1", "2");
    three.Enter("A1", "4");
    one.Enter("B1", "=SUM(One:Two!A1)");
    book.Move(2, 1);
    book.Recalculate();
    EXPECT_EQ(book.NameOf(1), "Three");
    EXPECT_EQ(one.Text("B1"), "7");
    book.Add("Between", 1).Enter("A1", "8");
    book.Recalculate();
    EXPECT_EQ(one.Text("B1"), "15");
    book.Remove(1);
    book.Recalculate();
    EXPECT_EQ(one.Text("B1"), "7");
}

TEST_F(ThreeSheets, CyclesAcrossSheetsEnd) {
    one.Enter("A1", "=Two!A1+1");
    two.Enter("A1", "=Three!A1+1");
    three.Enter("A1", "=One!A1+1");
    one.Enter("B1", "=A1");
    for (int i = 0; i < 5; ++i) {
        two.Enter("B1", std::to_string(i));
        book.Recalculate();
    }
    one.Enter("A1", "1");
    book.Recalculate();
    EXPECT_EQ(one.Text("B1"), "1"); // the cycle is open now
    EXPECT_EQ(three.Text("A1"), "2");
    EXPECT_EQ(two.Text("A1"), "3");
}

TEST_F(ThreeSheets, OffsetAndIndirectReachOtherSheets) {
    two.Enter("B2", "5");
    one.Enter("A1", "=INDIRECT(\"Two!B2\")");
    one.Enter("A2", "=OFFSET(Two!A1,1,1)");
    EXPECT_EQ(one.Text("A1"), "5");
    two.Enter("B2", "6");
    book.Recalculate();
    EXPECT_EQ(one.Text("A1"), "6");
    EXPECT_EQ(one.Text("A2"), "#REF!"); // it takes places of the own sheet only
}

TEST_F(ThreeSheets, LookupsReadTablesOfOtherSheets) {
    for (int row = 0; row < 30; ++row) {
        two.Enter(Place{0, row}, std::to_string(row * 7 % 30));
        two.Enter(Place{1, row}, std::to_string(row));
        one.Enter(Place{0, row}, "=VLOOKUP(" + std::to_string(row) + ",Two!A1:B30,2)");
    }
    book.Recalculate();
    for (int row = 0; row < 30; ++row)
        EXPECT_EQ(one.Text(Place{0, row * 7 % 30}), std::to_string(row));
}

TEST_F(ThreeSheets, BulkLoadsReachTheReadersOnOtherSheets) {
    one.Enter("A1", "=Two!B1+1");
    Sheet::Bulk bulk(two);
    bulk.Enter(Place{0, 0}, "4");
    bulk.Enter(Place{1, 0}, "=A1*10");
    bulk.Commit();
    book.Recalculate();
    EXPECT_EQ(one.Text("A1"), "41");
}

TEST(RunsOfSheets, FollowAllTheirSheetsInWhateverOrderTheyStand) {
    Workbook book("C");
    for (char const * name : {"One", "Two", "Three"}) book.Add(name).Enter("A1", "1");
    Sheet & sheet = book.At(0);
    sheet.Enter("B1", "=SUM(One:Three!A1)");
    book.Move(2, 0); // Three, One, Two
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "2");
    book["Three"].Enter("A1", "10");
    book["Two"].Enter("A1", "100"); // not between the two any more
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "11");
    book.Move(2, 1); // Three, Two, One
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "111");
}

TEST(Workbook, RefusesNamesThatNoFormulaCouldUse) {
    Workbook book("C");
    book.Add("Sheet1");
    for (char const * name :
         {"", "A1", "iv65536", "SUM", "Two words", "1st", "a!b", "a:b", "sheet1"})
        EXPECT_THROW(book.Add(name), std::invalid_argument) << name;
    for (char const * name : {"Sheet2", "_x", "IW1", "Summary", "Ärger"})
        EXPECT_NO_THROW(book.Add(name)) << name;
    EXPECT_NO_THROW(book.Rename(0, "SHEET1")); // its own name in other letters
    EXPECT_THROW(book.Rename(0, "Sheet2"), std::invalid_argument);
}

TEST(Workbook, RefusesPositionsThatThereAreNot) {
    Workbook book("C");
    EXPECT_THROW(book.At(0), std::out_of_range);
    book.Add("A_");
    EXPECT_THROW(book.Add("B_", 2), std::out_of_range);
    EXPECT_THROW(book.Remove(1), std::out_of_range);
    EXPECT_THROW(book.Move(0, 1), std::out_of_range);
    EXPECT_THROW(book["None"], std::out_of_range);
}

TEST(Workbook, HasAtMost255Sheets) {
    Workbook book("C");
    for (int i = 0; i < 255; ++i) book.Add("Sheet" + std::to_string(i));
    EXPECT_THROW(book.Add("OneMore"), std::invalid_argument);
    book.At(254).Enter("A1", "3");
    book.At(0).Enter("A1", "=SUM(Sheet0:Sheet254!A2:B2)+Sheet254!A1");
    EXPECT_EQ(book.At(0).Text("A1"), "3");
}

TEST_F(ThreeSheets, OneIdleCallComputesAllSheets) {
    one.Enter("A1", "1");
    for (int row = 0; row < 200; ++row) two.Enter(Place{0, row}, "=One!A1");
    one.Enter("A1", "2");
    EXPECT_FALSE(one.Step());
    EXPECT_EQ(two.Text("A200"), "2");
}

TEST(Workbook, RandomEditsGiveWhatAFreshWorkbookGives) {
    char const * const names[] = {"One", "Two", "Three"};
    for (unsigned seed = 1; seed <= 12; ++seed) {
        std::mt19937 random(seed);
        Workbook book("C");
        for (char const * name : names) book.Add(name);
        std::map<std::pair<int, int>, std::string> entered; // by sheet and row, in column A
        for (int edit = 0; edit < 120; ++edit) {
            int const sheet = int(random() % 3), row = int(random() % 8);
            std::string text = std::to_string(random() % 100);
            // A formula reads only cells with a smaller number, so that there is no cycle.
            int const own = row * 3 + sheet;
            if (own > 0 && random() % 3 != 0) {
                auto const earlier = [&] {
                    int const cell = int(random() % unsigned(own));
                    return std::string(names[cell % 3]) + "!A" + std::to_string(cell / 3 + 1);
                };
                text = "=" + earlier() + "+" + earlier();
                if (row > 0 && random() % 3 == 0)
                    text += "+SUM(One:Three!A1:A" + std::to_string(row) + ")";
            }
            entered[{sheet, row}] = text;
            book.At(sheet).Enter(Place{0, row}, text);
            if (random() % 4 == 0) book.Recalculate();
        }
        book.Recalculate();
        Workbook fresh("C");
        for (char const * name : names) fresh.Add(name);
        for (int row = 0; row < 8; ++row)
            for (int sheet = 0; sheet < 3; ++sheet)
                fresh.At(sheet).Enter(Place{0, row}, entered[{sheet, row}]);
        for (auto const & [place, text] : entered)
            ASSERT_EQ(book.At(place.first).Text(Place{0, place.second}),
                      fresh.At(place.first).Text(Place{0, place.second}))
                << "seed " << seed << ", " << names[place.first] << "!A" << place.second + 1 << " "
                << text;
        ASSERT_EQ(book.CheckInvariants(), std::vector<std::string>()) << seed;
    }
}

TEST_F(ThreeSheets, RecalculatingTheDependentsOfAnItemGoesThroughTheOrderOfTheWorkbook) {
    one.Enter("A1", "1");
    one.Enter("B1", "=A1*2");
    two.Enter("A1", "=One!A1*3");
    book.Recalculate();
    CCRCRef const a1(0, 0);
    auto & cell = static_cast<CCCell &>(*one.Manager().GetItem(&a1));
    for (bool all : {false, true}) {
        CCNumberFormat format;
        cell.SetPlainNumber(all ? 20 : 10, format); // silently
        if (all)
            cell.ReCalcAllDependents(one.Manager().ctx());
        else
            cell.ReCalcDependents(one.Manager().ctx());
        book.Recalculate();
        EXPECT_EQ(one.Text("B1"), all ? "40" : "20");
        EXPECT_EQ(two.Text("A1"), all ? "60" : "30");
    }
}

TEST_F(ThreeSheets, ANameOfAnotherSheetIsReadFollowedAndAwaited) {
    one.Enter("A1", "5");
    one.Enter("A2", "6");
    one.DefineName("prices", *cells::host::ParseArea("A1:A2"));
    two.Enter("B1", "=SUM(One!prices)");
    two.Enter("B2", "=SUM(INDIRECT(\"One!prices\"))");
    two.Enter("B3", "=VLOOKUP(6,One!prices,1)");
    two.Enter("B4", "=One!later*2");
    two.Enter("B5", "=SUM(One!A1:Q1Sales)");
    two.Enter("B6", "=SUM(prices)");
    auto const shown = [&](char const * place) {
        EXPECT_TRUE(two.Formula(*cells::host::ParsePlace(place))) << place;
        return two.Text(place);
    };
    EXPECT_EQ(shown("B1"), "11");
    EXPECT_EQ(shown("B2"), "11");
    EXPECT_EQ(shown("B3"), "6");
    EXPECT_EQ(shown("B4"), "#REF!");
    EXPECT_EQ(shown("B5"), "#REF!");
    EXPECT_EQ(shown("B6"), "#REF!"); // a name of its own sheet, which has none
    one.Enter("A2", "60");
    book.Recalculate();
    EXPECT_EQ(shown("B1"), "65");
    EXPECT_EQ(shown("B2"), "65");
    one.Enter("A3", "7");
    one.DefineName("prices", *cells::host::ParseArea("A1:A3"));
    one.DefineName("later", *cells::host::ParseArea("A3"));
    one.DefineName("Q1Sales", *cells::host::ParseArea("A3"));
    book.Recalculate();
    EXPECT_EQ(shown("B1"), "72");
    EXPECT_EQ(shown("B2"), "72");
    EXPECT_EQ(shown("B4"), "14");
    EXPECT_EQ(shown("B5"), "72");
    book.Rename(0, "First");
    EXPECT_EQ(two.EditText({1, 0}), "=SUM (First ! prices)");
    one.RemoveName("prices");
    book.Recalculate();
    EXPECT_EQ(shown("B1"), "#REF!");
    book.Rename(0, "Again"); // a place that is none follows its sheet's name, too
    EXPECT_EQ(two.EditText({1, 0}), "=SUM (Again ! prices)");
    one.DefineName("prices", *cells::host::ParseArea("A1"));
    book.Recalculate();
    EXPECT_EQ(shown("B1"), "5");
    EXPECT_EQ(shown("B6"), "#REF!");
}

TEST_F(ThreeSheets, AFormulaOverAPlaceThatIsNoneStaysAFormula) {
    for (char const * text : {"=One!nope", "=SUM(One!A1:Q1Sales)", "=One!nope..A1", "=One:Two!nope",
                              "=One!A1:A100000", "=Nowhere!nope", "=Nowhere!A1:Q1Sales"}) {
        two.Enter("C9", text);
        EXPECT_TRUE(two.Formula({2, 8})) << text;
        EXPECT_EQ(two.Text("C9"), "#REF!") << text;
        EXPECT_EQ(book.CheckInvariants(), std::vector<std::string>()) << text;
    }
}

TEST_F(ThreeSheets, RowAndColumnOfAPlaceOnAnotherSheet) {
    two.Enter("A1", "=ROW(One!C7)");
    two.Enter("A2", "=COLUMN(One!C7:D9)");
    two.Enter("A3", "=ROW(One:Three!B5)");
    two.Enter("A4", "=COLUMN(INDIRECT(\"Three!IV1\"))");
    two.Enter("A5", "=ROW(Nowhere!A1)");
    two.Enter("A6", "=ROW(One!nope)");
    EXPECT_EQ(two.Text("A1"), "7");
    EXPECT_EQ(two.Text("A2"), "3");
    EXPECT_EQ(two.Text("A3"), "5");
    EXPECT_EQ(two.Text("A4"), "256");
    EXPECT_EQ(two.Text("A5"), "#REF!");
    EXPECT_EQ(two.Text("A6"), "#REF!");
    one.InsertRows(0, 3);
    book.Recalculate();
    EXPECT_EQ(two.Text("A1"), "10");
}
