#include "host/NumberFormats.h"
#include "host/Sheet.h"
#include "support/Workbooks.h"

#include <gtest/gtest.h>
#include <stdexcept>

using namespace cells::host;
using cells::test::A;

namespace {

std::string Names(std::vector<Place> const & places) {
    std::string text;
    for (Place place : places) text += (text.empty() ? "" : " ") + NameOf(place);
    return text;
}

} // namespace

TEST(SheetFormats, AreNamesOrCustomTexts) {
    struct {
        char const *format, *shown;
    } const rows[] = {{"general", "1234.5678"},
                      {"number:2", "1234.57"},
                      {"number", "1234.57"},
                      {"number:0", "1235"},
                      {"currency", "$1,234.57"},
                      {"currency:0", "$1,235"},
                      {"percent:1", "123456.8%"},
                      {"scientific:3", "1.235E+03"},
                      {"fraction", "1234 67/118"},
                      {"fraction:3", "1234 9/16"},
                      {"hex", "0x4D2"},
                      {"oct", "02322"},
                      {"logical", "TRUE"},
                      {"date", "5/19/1903"},
                      {"time", "13:37"},
                      {"#,##0.0", "1,234.6"},
                      {"[h]", "29629"},
                      {"bin", "00000000000000000000010011010010"}};
    for (auto const & row : rows) {
        Sheet sheet("C");
        sheet.Enter("A1", "1234.5678");
        EXPECT_TRUE(sheet.SetNumberFormat(A("A1"), row.format));
        EXPECT_EQ(sheet.Text("A1"), row.shown) << row.format;
        EXPECT_EQ(sheet.Get("A1").number, 1234.5678);
    }
}

TEST(SheetFormats, NamesComeBack) {
    Sheet sheet("C");
    sheet.Enter("A1", "5");
    for (char const * format : {"number:3", "percent:0", "date", "0.00;(0.00)", "hex"}) {
        sheet.SetNumberFormat(A("A1"), format);
        EXPECT_EQ(sheet.NumberFormat({0, 0}), format);
    }
    sheet.SetNumberFormat(A("B1:B9"), "number:3");
    EXPECT_EQ(sheet.NumberFormat({1, 4}), "number:3"); // also where nothing stands
}

TEST(SheetFormats, DecimalsOutOfRangeThrow) {
    Sheet sheet("C");
    for (char const * format :
         {"number:16", "number:-1", "number:", "number:x", "hex:2", "fraction:6", "general:1"})
        EXPECT_THROW(sheet.SetNumberFormat(A("A1"), format), std::invalid_argument) << format;
}

TEST(SheetFormats, OfAnAreaCoverWhatIsEnteredLater) {
    Sheet sheet("C");
    sheet.Enter("A1", "0.5");
    sheet.SetNumberFormat(A("A1:IV65536"), "percent:0");
    sheet.Enter("Z60000", "0.25");
    sheet.Enter("B1", "=A1/2");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("A1"), "50%");
    EXPECT_EQ(sheet.Text("Z60000"), "25%");
    EXPECT_EQ(sheet.Text("B1"), "25%");
    sheet.SetNumberFormat(A("C1:C100"), "number:2"); // a later one counts in its own area
    sheet.Enter("C5", "3");
    sheet.Enter("D5", "3");
    EXPECT_EQ(sheet.Text("C5"), "3.00");
    EXPECT_EQ(sheet.Text("D5"), "300%");
    sheet.ClearFormat(A("C1:D9"));
    sheet.Enter("C6", "3");
    sheet.Enter("C10", "3");
    EXPECT_EQ(sheet.Text("C5"), "3");
    EXPECT_EQ(sheet.Text("C6"), "3");
    EXPECT_EQ(sheet.Text("C10"), "3.00");
    EXPECT_EQ(sheet.UsedArea(), (Area{{0, 0}, {25, 59999}})); // formats occupy nothing
}

TEST(SheetFormats, OfAnAreaReachABulkLoad) {
    Sheet sheet("C");
    sheet.SetNumberFormat(A("A1:B3"), "0.0");
    Sheet::Bulk bulk(sheet);
    bulk.Enter({0, 0}, "1");
    bulk.Enter({1, 0}, "=A1*2");
    bulk.Enter({3, 0}, "=A1*2");
    bulk.Commit();
    EXPECT_EQ(sheet.Text("A1"), "1.0");
    EXPECT_EQ(sheet.Text("B1"), "2.0");
    EXPECT_EQ(sheet.Text("D1"), "2");
}

TEST(SheetFormats, AReformattedNumberStillTakesPartInSums) {
    Sheet sheet("C");
    for (char const * place : {"A1", "A2", "A3"}) sheet.Enter(place, "2");
    sheet.Enter("B1", "=SUM(A1:A3)");
    sheet.SetNumberFormat(A("A2:A3"), "0.00");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "6");
    EXPECT_TRUE(sheet.CheckInvariants().empty());
}

TEST(Protection, LockedCellsKeepWhatTheyHold) {
    Sheet sheet("C");
    std::vector<unsigned> messages;
    sheet.OnMessage([&](unsigned id, std::string const &) { messages.push_back(id); });
    sheet.Enter("A1", "1");
    sheet.SetFlag(A("A1:A9"), CellFlag::kLocked);
    sheet.Enter("A1", "2"); // not protected yet
    sheet.Protect("secret");
    sheet.Enter("A1", "3");
    sheet.Enter("A5", "3"); // empty, and locked all the same
    EXPECT_FALSE(sheet.SetNumberFormat(A("A1:B1"), "0.00"));
    EXPECT_FALSE(sheet.ClearFormat(A("A4:C4")));
    EXPECT_EQ(messages, (std::vector<unsigned>{13036, 13036, 13036, 13036}));
    EXPECT_EQ(sheet.Text("A1"), "2");
    EXPECT_EQ(sheet.Text("A5"), "");
    sheet.Enter("B1", "4");
    EXPECT_EQ(sheet.Text("B1"), "4");
    EXPECT_FALSE(sheet.Unprotect("wrong"));
    EXPECT_TRUE(sheet.IsProtected());
    EXPECT_TRUE(sheet.Unprotect("secret"));
    sheet.SetFlag(A("A1"), CellFlag::kLocked, false);
    sheet.Enter("A1", "5");
    EXPECT_EQ(sheet.Text("A1"), "5");
}

TEST(Protection, HiddenCellsShowNothing) {
    Sheet sheet("C");
    sheet.Enter("A1", "=1+1");
    sheet.SetFlag(A("A1"), CellFlag::kHidden);
    sheet.Protect();
    EXPECT_EQ(sheet.Text("A1"), "");
    EXPECT_EQ(sheet.EditText({0, 0}), "");
    EXPECT_TRUE(sheet.Find("2").empty());
    EXPECT_TRUE(sheet.Unprotect());
    EXPECT_EQ(sheet.Text("A1"), "2");
}

namespace {

// A protected sheet whose A2 is hidden, and one that is open.
class HiddenCell : public testing::Test {
protected:
    HiddenCell() {
        for (Sheet * sheet : {&secret, &open})
            sheet->OnMessage([this](unsigned id, std::string const &) { messages.push_back(id); });
        secret.Enter("A1", "1");
        secret.Enter("A2", "20");
        secret.Enter("A3", "300");
        secret.SetFlag(A("A2"), CellFlag::kHidden);
    }

    Workbook book{"C"};
    Sheet &secret = book.Add("Secret"), &open = book.Add("Open");
    std::vector<unsigned> messages;
};

std::vector<unsigned> const kOnceRefused{13037};

} // namespace

TEST_F(HiddenCell, IsRefusedToNewFormulasWhichStayTexts) {
    secret.DefineName("hidden", A("A2:A2"));
    secret.DefineName("all", A("A1:A3"));
    secret.Protect();
    for (char const * formula : {"=A2", "=SUM (A1:A3)", "=A1 + A2", "=hidden", "=SUM (all)"}) {
        messages.clear();
        secret.Enter("C1", formula);
        EXPECT_EQ(secret.Text("C1"), formula);
        EXPECT_EQ(messages, kOnceRefused) << formula;
    }
    for (char const * formula :
         {"=Secret ! A2", "=SUM (Secret ! A1:A3)", "=SUM (Secret:Open ! A2)"}) {
        messages.clear();
        open.Enter("C1", formula);
        book.Recalculate();
        EXPECT_EQ(open.Get({2, 0}).kind, Kind::kText) << formula;
        EXPECT_EQ(messages, kOnceRefused) << formula;
    }
    messages.clear();
    open.Enter("C1", "=Secret!A2+Secret!A1:A2"); // two references
    EXPECT_EQ(messages, (std::vector<unsigned>{13037, 13037}));
    EXPECT_TRUE(book.CheckInvariants().empty());
}

// Whether anybody reads a place makes no difference to its format, now or after a save.
TEST(AreaFormats, AnEmptiedPlaceHasTheFormatOfItsArea) {
    for (bool const watched : {false, true}) {
        cells::host::Workbook book("C");
        Sheet & sheet = book.Add("One");
        sheet.SetNumberFormat(*ParseArea("A1:A9"), "percent:0");
        if (watched) sheet.Enter("C1", "=A2");
        sheet.Enter("A2", "1");
        EXPECT_EQ(sheet.NumberFormat({0, 1}), "percent:0");
        sheet.Copy(*ParseArea("B2"), {0, 1}); // nothing stands there
        EXPECT_EQ(sheet.NumberFormat({0, 1}), "percent:0") << watched;
        auto const back = cells::host::Workbook::Read(cells::test::BytesOf(book), "C");
        EXPECT_EQ(back->At(0).NumberFormat({0, 1}), "percent:0") << watched;
    }
}

TEST(AreaFormats, ANumberThatIsCopiedIntoOneKeepsItsFormatWhoeverReadsIt) {
    Sheet sheet("C");
    sheet.SetNumberFormat(*ParseArea("A1:A9"), "percent:0");
    sheet.Enter("B2", "3");
    sheet.Copy(*ParseArea("B2"), {0, 1});
    EXPECT_EQ(sheet.Text("A2"), "3");
    sheet.Enter("C1", "=A2");
    EXPECT_EQ(sheet.Text("A2"), "3");
}

TEST(ClearedFormats, GiveFormulasTheirOwnAgainAndNumbersNone) {
    Sheet sheet("C");
    sheet.KeepHistory(10);
    sheet.Enter("A1", "=4");
    int const own = sheet.Get("A1").formatClass;
    sheet.SetNumberFormat(*ParseArea("A1"), "percent:0");
    sheet.Enter("A2", "50%");
    for (int round = 0; round < 2; ++round) {
        sheet.ClearFormat(*ParseArea("A1:A2"));
        sheet.Recalculate();
        EXPECT_EQ(sheet.Get("A1").formatClass, own);
        EXPECT_EQ(sheet.Text("A2"), "0.5");
        sheet.Undo();
        sheet.Recalculate();
        EXPECT_EQ(sheet.Text("A1"), "400%");
        EXPECT_EQ(sheet.Text("A2"), "50%");
        sheet.Redo();
        sheet.Recalculate();
        EXPECT_EQ(sheet.Get("A1").formatClass, own);
        EXPECT_EQ(sheet.Text("A2"), "0.5");
        sheet.Undo();
    }
}

TEST_F(HiddenCell, IsNotReadByAPlaceThatAFormulaComputes) {
    secret.Protect();
    for (char const * formula :
         {"=INDIRECT(\"A2\")", "=OFFSET(A1,1,0)", "=SUM(OFFSET(A1,0,0,1,2))",
          "=SUM(INDIRECT(\"A1:A3\"))", "=SUM(A1:INDIRECT(\"A2\"))", "=INDIRECT(\"Secret!A2\")",
          "=VLOOKUP(20,INDIRECT(\"A1:A3\"),1,0)"}) {
        messages.clear();
        secret.Enter("C1", formula);
        book.Recalculate();
        EXPECT_EQ(secret.Get({2, 0}).kind, Kind::kError) << formula << " " << secret.Text("C1");
        EXPECT_EQ(messages, kOnceRefused) << formula;
        EXPECT_TRUE(book.CheckInvariants().empty());
    }
    messages.clear();
    open.Enter("C1", "=INDIRECT(\"Secret!A2\")");
    EXPECT_EQ(open.Text("C1"), "#REF!");
    EXPECT_EQ(messages, kOnceRefused);
    secret.Enter("C1", "=OFFSET(A1,2,0)"); // not hidden
    EXPECT_EQ(secret.Text("C1"), "300");
    EXPECT_EQ(messages, kOnceRefused);
}

TEST_F(HiddenCell, IsFollowedOnceItIsOpenAgain) {
    secret.Protect();
    secret.Enter("B1", "2");
    secret.Enter("C1", "=INDIRECT(ADDRESS(B1,1))");
    EXPECT_EQ(secret.Text("C1"), "#REF!");
    secret.Enter("B1", "3");
    book.Recalculate();
    EXPECT_EQ(secret.Text("C1"), "300");
    secret.Enter("B1", "2");
    book.Recalculate();
    EXPECT_EQ(secret.Text("C1"), "#REF!");
    secret.Unprotect();
    secret.Enter("B1", "2.5"); // the same place, computed again
    secret.Enter("A2", "21");
    book.Recalculate();
    EXPECT_EQ(secret.Text("C1"), "21");
    secret.Enter("A2", "22");
    book.Recalculate();
    EXPECT_EQ(secret.Text("C1"), "22");
}

TEST_F(HiddenCell, StaysWithTheFormulasThatReadItBeforeItWasProtected) {
    book.KeepHistory(10);
    secret.Enter("C1", "=SUM(A1:A3)");
    secret.Enter("C2", "=OFFSET(A1,1,0)");
    open.Enter("C1", "=Secret!A2*2");
    secret.Protect();
    book.Recalculate();
    auto const check = [&](char const * what) {
        book.Recalculate();
        EXPECT_EQ(secret.Text("C1"), "321") << what;
        EXPECT_EQ(secret.Text("C2"), "20") << what;
        EXPECT_EQ(open.Text("C1"), "40") << what;
        EXPECT_TRUE(messages.empty()) << what;
        EXPECT_TRUE(secret.IsProtected()) << what;
        EXPECT_TRUE(book.CheckInvariants().empty()) << what;
    };
    book.Add("Third");
    check("another sheet");
    book.Rename(2, "Fourth");
    check("a sheet with another name");
    book.Undo();
    check("a name taken back");
    open.Enter("C1", "1");
    book.Undo();
    check("an entry taken back");
    open.InsertRows(8, 1);
    check("rows elsewhere");
}

TEST(Protection, ErrorsAndZerosMayBeHidden) {
    Sheet sheet("C");
    sheet.Enter("A1", "=1/0");
    sheet.Enter("A2", "0");
    sheet.SetFlag(A("A1:A3"), CellFlag::kHideErrors);
    EXPECT_EQ(sheet.Text("A1"), "");
    EXPECT_EQ(sheet.Text("A2"), "0");
    sheet.SetFlag(A("A1:A3"), CellFlag::kHideZeros);
    EXPECT_EQ(sheet.Text("A2"), "");
    sheet.Enter("A3", "0");
    EXPECT_EQ(sheet.Text("A3"), "");
}

TEST(Search, FindsWhatCellsShow) {
    Sheet sheet("C");
    sheet.Enter("A1", "Tax rate");
    sheet.Enter("B1", "0.19");
    sheet.Enter("A2", "syntax");
    sheet.Enter("B2", "=B1*100");
    sheet.Recalculate();
    EXPECT_EQ(Names(sheet.Find("tax")), "A1 A2");
    FindOptions options;
    options.caseSensitive = true;
    EXPECT_EQ(Names(sheet.Find("tax", options)), "A2");
    options.caseSensitive = false;
    options.wholeWord = true;
    EXPECT_EQ(Names(sheet.Find("tax", options)), "A1");
    EXPECT_EQ(Names(sheet.Find("19")), "B1 B2"); // 0.19, and 19 as the formula shows it
    options = {};
    options.valuesOfFormulas = false;
    EXPECT_EQ(Names(sheet.Find("19", options)), "B1");
    options.in = FindOptions::In::kFormulas;
    EXPECT_EQ(Names(sheet.Find("B1", options)), "B2");
    EXPECT_EQ(Names(sheet.Find("nothing", options)), "");
}

TEST(Search, ReplacesAsIfTyped) {
    Sheet sheet("C");
    sheet.Enter("A1", "10");
    sheet.Enter("A2", "10 apples");
    sheet.Enter("A3", "=A1*10");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Replace("10", "20"), 2);
    sheet.Recalculate();
    EXPECT_EQ(sheet.Get("A1").number, 20);
    EXPECT_EQ(sheet.Text("A2"), "20 apples");
    EXPECT_EQ(sheet.Text("A3"), "200");
    FindOptions options;
    options.in = FindOptions::In::kFormulas;
    EXPECT_EQ(sheet.Replace("10", "3", options), 1);
    EXPECT_EQ(sheet.Text("A3"), "60");
}
