// Workbooks as command streams.
#include "host/Exchange.h"

#include "catalogue/Language.h"
#include "host/Engine.h"
#include "host/internal/sheets/SheetManager.h"
#include "support/Paths.h"
#include "support/Workbooks.h"

#include <gtest/gtest.h>

using cells::host::DocumentError;
using cells::host::ExportExchange;
using cells::host::ImportExchange;
using cells::host::NameOf;
using cells::host::Place;
using cells::host::Sheet;
using cells::host::Workbook;
using cells::test::A;
using cells::test::Shown;

namespace {

std::unique_ptr<Workbook> Sample(char const * locale = "C") {
    auto book = std::make_unique<Workbook>(locale);
    Sheet &one = book->Add("One"), &two = book->Add("Two");
    one.Enter("A1", "5");
    one.Enter("A2", "text");
    one.Enter("A3", "=SUM(A1:A2)*2");
    one.Enter("A4", "=1/0");
    one.Enter("A5", "=A5");
    one.DefineName("rate", A("A1:A1"));
    one.Enter("B1", "=rate+Two!A1");
    one.SetNumberFormat(A("A1:A1"), "0.0 \"kg\"");
    two.Enter("A1", "=IF(One!A1>3,\"big\",\"small\")+\"!\"");
    two.Protect("secret");
    book->Recalculate();
    return book;
}

} // namespace

TEST(Exchange, AWideStreamCarriesTheWorkbook) {
    auto const book = Sample();
    auto const back = ImportExchange(ExportExchange(*book), kFileVersionWide, "C");
    EXPECT_EQ(Shown(*back), Shown(*book));
    EXPECT_EQ(back->CheckInvariants(), std::vector<std::string>());
    back->At(0).Enter("A1", "2");
    back->Recalculate();
    EXPECT_EQ(back->At(0).Text("A3"), "4");
    EXPECT_EQ(back->At(1).Text("A1"), "small!");
}

// What is looked at stays a plain number, which takes no cell object.
TEST(Exchange, LeavesTheWorkbookAsItIs) {
    Workbook book("C");
    Sheet & sheet = book.Add("One");
    for (int row = 0; row < 100; ++row) sheet.Enter(Place{0, row}, std::to_string(row));
    ExportExchange(book);
    EXPECT_EQ(sheet.EditText({0, 50}), "50");
    sheet.Find("5");
    int objects = 0;
    auto & manager = static_cast<cells::host::SheetManager &>(sheet.Manager());
    manager.Cells().ForEachCell(cells::host::kWholeGrid, [&](auto const &) { ++objects; });
    EXPECT_EQ(objects, 0);
}

TEST(Exchange, PassesBetweenLanguages) {
    std::string const stream = ExportExchange(*Sample());
    cells::host::UseLanguageFile(CVCELLS_RESOURCES "/de.txt");
    auto const german = ImportExchange(stream, kFileVersionWide, "C");
    EXPECT_EQ(*german->At(0).Formula({0, 2}), "=SUMME (A1:A2) * 2");
    EXPECT_EQ(ExportExchange(*german), stream);
    cells::UseEnglish();
}

#if CVCELLS_WITH_ICU
TEST(Exchange, PassesBetweenLocales) {
    Workbook german("de-DE");
    german.Add("One").Enter("A1", "=SUM(1,5;2)");
    auto const back = ImportExchange(ExportExchange(german), kFileVersionWide, "en-US");
    EXPECT_EQ(*back->At(0).Formula({0, 0}), "=SUM (1.5, 2)");
}
#endif

TEST(Exchange, ANarrowStreamKeepsValues) {
    auto const back =
        ImportExchange(ExportExchange(*Sample(), kFileVersionNarrow), kFileVersionNarrow, "C");
    EXPECT_EQ(back->At(0).Get("A1").number, 5);
    EXPECT_EQ(back->At(0).Text("A2"), "text");
    EXPECT_EQ(back->At(0).Get("A4").error, 2);
}

TEST(Exchange, EveryPrefixIsRefused) {
    std::string const stream = ExportExchange(*Sample());
    for (std::size_t length = 0; length < stream.size(); ++length)
        EXPECT_THROW(ImportExchange(stream.substr(0, length), kFileVersionWide, "C"), DocumentError)
            << length;
}

TEST(Exchange, CommandsThatNameWhatCannotBeAreRefused) {
    auto const refuses = [](std::string const & stream) {
        EXPECT_THROW(ImportExchange(stream, kFileVersionWide, "C"), DocumentError);
    };
    refuses(std::string("\1\1\2\0\0\0", 6));                       // a sheet that is not there
    refuses(std::string("\2\1\3\0\0\0\0", 7));                     // a cell before its sheet
    refuses(std::string("\0\1\2\0!\0", 6));                        // no name of a sheet
    refuses(std::string("\0\1\2\0Q\0\1\1\2\0\0\0\2\1\1\0\0", 17)); // a place of one byte
}
