// What a document says of itself.
#include "host/Properties.h"
#include "platform/Exceptions.h"
#include "support/Bytes.h"
#include "support/Workbooks.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

using cells::host::AllProperties;
using cells::host::FindProperty;
using cells::host::Properties;
using cells::host::Property;
using cells::host::Workbook;
using namespace cells::test;

namespace {

class DocumentProperties : public ThreeSheets {};

} // namespace

TEST(Properties, HaveNamesOfTheirOwn) {
    for (Property property : AllProperties()) {
        std::string const name(cells::host::NameOf(property));
        EXPECT_FALSE(name.empty());
        EXPECT_EQ(FindProperty(name), property);
    }
    EXPECT_EQ(FindProperty("TITLE"), Property::kTitle);
    EXPECT_FALSE(FindProperty("colour"));
}

TEST(Properties, KeepWhatIsSetAsText) {
    Properties properties;
    EXPECT_EQ(properties.Text(Property::kTitle), "");
    properties.Set(Property::kTitle, "Grüße");
    properties.Set(Property::kPages, "12");
    properties.Set(Property::kCreated, "2026-03-05");
    properties.Set(Property::kPrinted, "2026-03-05T07:08");
    properties.Set(Property::kEditTime, "30:05:09");
    EXPECT_EQ(properties.Text(Property::kTitle), "Grüße");
    EXPECT_EQ(properties.Text(Property::kPages), "12");
    EXPECT_EQ(properties.Text(Property::kCreated), "2026-03-05 00:00:00");
    EXPECT_EQ(properties.Text(Property::kPrinted), "2026-03-05 07:08:00");
    EXPECT_EQ(properties.Text(Property::kEditTime), "30:05:09");
    properties.Set(Property::kTitle, "");
    EXPECT_EQ(properties.Text(Property::kTitle), "");
}

TEST(Properties, RefuseWhatTheyCannotBe) {
    Properties properties;
    struct Wrong {
        Property property;
        char const * text;
    };
    for (Wrong const & wrong :
         {Wrong{Property::kPages, "many"}, Wrong{Property::kPages, "-1"},
          Wrong{Property::kPages, "4294967296"}, Wrong{Property::kPages, "1 "},
          Wrong{Property::kCreated, "today"}, Wrong{Property::kCreated, "2026-02-29"},
          Wrong{Property::kCreated, "2026-13-01"}, Wrong{Property::kCreated, "2026-00-01"},
          Wrong{Property::kCreated, "1899-12-31"}, Wrong{Property::kCreated, "2072-01-01"},
          Wrong{Property::kCreated, "2026-03-05 24:00"}, Wrong{Property::kCreated, "2026-03-05 1"},
          Wrong{Property::kCreated, "2026-03-05 1:60"}, Wrong{Property::kCreated, "2026-03-05x"},
          Wrong{Property::kEditTime, "5"}, Wrong{Property::kEditTime, "1:2:3:4"},
          Wrong{Property::kEditTime, "1:99"}, Wrong{Property::kEditTime, "99999999:00"}})
        EXPECT_THROW(properties.Set(wrong.property, wrong.text), std::invalid_argument)
            << wrong.text;
    EXPECT_TRUE(properties.IsEmpty());
}

TEST(Properties, AreStoredByTheirNumbers) {
    Properties properties;
    properties.Set(Property::kTitle, "T");
    properties.Set(Property::kPages, "3");
    properties.Set(Property::kFileName, "x.cvs"); // of the file, and not in it
    Bytes const bytes = Written([&](CArchive & ar) { properties.Write(ar); });
    EXPECT_EQ(bytes, Join(U32(2), 10, Bytes{0, 0, 0, 0, 0, 0, 0x08, 0x40}, 13,
                          Bytes{0xFF, 0xFE, 0xFF, 1}, "T"));
    Properties read;
    Reading(bytes, [&](CArchive & ar) { read.Read(ar); });
    EXPECT_EQ(read.Text(Property::kTitle), "T");
    EXPECT_EQ(read.Text(Property::kPages), "3");
}

TEST(Properties, AreNotReadFromOtherBytes) {
    Bytes const half = {0, 0, 0, 0, 0, 0, 0xE0, 0x3F}, infinite = {0, 0, 0, 0, 0, 0, 0xF0, 0x7F};
    for (Bytes const & bytes :
         {Join(U32(1), 99), Join(U32(1), 6, Bytes{0xFF, 0xFE, 0xFF, 0}), Join(U32(1), 10, half),
          Join(U32(1), 0, infinite), Join(U32(5), 13, Bytes{0xFF, 0xFE, 0xFF, 0}), U32(1)}) {
        Properties read;
        EXPECT_THROW(Reading(bytes, [&](CArchive & ar) { read.Read(ar); }), CArchiveException);
    }
}

TEST_F(DocumentProperties, AreShownByFormulasThatFollow) {
    one.Enter("A1", "=TITLE()");
    two.Enter("A1", "=TITLE()+\"!\"");
    two.Enter("A2", "=One!A1+\"?\"");
    EXPECT_EQ(one.Text("A1"), "#VALUE!");
    book.SetProperty(Property::kTitle, "Plan");
    book.Recalculate();
    EXPECT_EQ(one.Text("A1"), "Plan");
    EXPECT_EQ(two.Text("A1"), "Plan!");
    EXPECT_EQ(two.Text("A2"), "Plan?");
    book.SetProperty(Property::kTitle, "");
    book.Recalculate();
    EXPECT_EQ(one.Text("A1"), "#VALUE!");
}

TEST_F(DocumentProperties, EachHasItsFunction) {
    struct Fact {
        Property property;
        char const *text, *formula, *shown;
    };
    for (Fact const & fact :
         {Fact{Property::kTitle, "t", "=TITLE()", "t"},
          Fact{Property::kSubject, "s", "=SUBJECT()", "s"},
          Fact{Property::kAuthor, "a", "=AUTHOR()", "a"},
          Fact{Property::kKeywords, "k", "=KEYWORDS()", "k"},
          Fact{Property::kComments, "c", "=COMMENTS()", "c"},
          Fact{Property::kCreated, "2026-03-05 13:45", "=CREATEDATE()", "3/5/2026 01:45 PM"},
          Fact{Property::kSaved, "2026-03-06", "=INT(SAVEDATE()-CREATEDATE())", "0"},
          Fact{Property::kPrinted, "2026-03-07", "=INT(PRINTDATE()-SAVEDATE())", "1"},
          Fact{Property::kEditTime, "6:30", "=EDITTIME()", "06:30 AM"},
          Fact{Property::kRevision, "4", "=REVNUM()", "4"},
          Fact{Property::kCharacters, "5", "=NUMCHARS()", "5"},
          Fact{Property::kWords, "6", "=NUMWORDS()", "6"},
          Fact{Property::kPages, "7", "=NUMPAGES()", "7"},
          Fact{Property::kMergeRecord, "8", "=MERGEREC()", "8"},
          Fact{Property::kMergeCount, "9", "=MERGECOUNT()", "9"},
          Fact{Property::kFileName, "f.cvs", "=FILENAME()", "f.cvs"},
          Fact{Property::kFileSize, "10", "=FILESIZE()", "10"}}) {
        book.SetProperty(fact.property, fact.text);
        one.Enter("A1", fact.formula);
        EXPECT_EQ(one.Text("A1"), fact.shown) << fact.formula;
    }
    one.Enter("A1", "=PAGE()"); // a grid has no pages
    EXPECT_EQ(one.Text("A1"), "#VALUE!");
}

#if CVCELLS_WITH_ICU

TEST_F(DocumentProperties, ShowDatesAndTimesAsTheLocaleDoes) {
    Workbook german("de-DE");
    german.Add("Blatt");
    german.SetProperty(Property::kCreated, "2026-03-05 13:45");
    german.SetProperty(Property::kEditTime, "6:30");
    german.At(0).Enter("A1", "=CREATEDATE()");
    german.At(0).Enter("A2", "=EDITTIME()");
    EXPECT_EQ(german.At(0).Text("A1"), "05.03.2026 13:45");
    EXPECT_EQ(german.At(0).Text("A2"), "06:30");
}

#endif

TEST_F(DocumentProperties, TravelWithTheDocument) {
    one.Enter("A1", "=TITLE()");
    EXPECT_EQ(BytesOf(book).find("PROP"), std::string::npos); // none, none stored
    book.SetProperty(Property::kTitle, "Plan");
    book.SetProperty(Property::kFileName, "x");
    auto const read = Workbook::Read(BytesOf(book), "C");
    EXPECT_EQ(read->GetProperty(Property::kTitle), "Plan");
    EXPECT_EQ(read->GetProperty(Property::kFileName), "");
    read->SetProperty(Property::kTitle, "New");
    read->Recalculate();
    EXPECT_EQ(read->At(0).Text("A1"), "New");
}

TEST_F(DocumentProperties, AreTakenBackAndMadeAgain) {
    one.Enter("A1", "=TITLE()");
    book.KeepHistory(10);
    book.SetProperty(Property::kTitle, "a");
    book.SetProperty(Property::kTitle, "b");
    EXPECT_TRUE(book.Undo());
    book.Recalculate();
    EXPECT_EQ(one.Text("A1"), "a");
    EXPECT_TRUE(book.Redo());
    book.Recalculate();
    EXPECT_EQ(one.Text("A1"), "b");
}

TEST_F(DocumentProperties, SavingSetsWhatItKnows) {
    namespace fs = std::filesystem;
    fs::path const folder =
        fs::temp_directory_path() / ("cvcells-prop-" + std::to_string(getpid()));
    fs::create_directory(folder);
    one.Enter("A1", "two words");
    one.Enter("A2", "=REVNUM()");
    one.Enter("A3", "=FILENAME()");
    book.Recalculate(); // A2 and A3 show #VALUE!, a word of 7 characters each
    book.Save(folder / "plan.cvs");
    EXPECT_EQ(book.GetProperty(Property::kSaved), "2026-03-05 13:45:30");
    EXPECT_EQ(book.GetProperty(Property::kCreated), "2026-03-05 13:45:30");
    EXPECT_EQ(book.GetProperty(Property::kRevision), "1");
    EXPECT_EQ(book.GetProperty(Property::kWords), "4");
    EXPECT_EQ(book.GetProperty(Property::kCharacters), "22");
    EXPECT_EQ(book.GetProperty(Property::kFileName), "plan.cvs");
    EXPECT_EQ(book.GetProperty(Property::kFileSize),
              std::to_string(fs::file_size(folder / "plan.cvs")));
    book.Recalculate();
    EXPECT_EQ(one.Text("A2"), "1");
    EXPECT_EQ(one.Text("A3"), "plan.cvs");
    fs::rename(folder / "plan.cvs", folder / "other.cvs");
    auto const opened = Workbook::Open(folder / "other.cvs", "C");
    opened->Recalculate();
    EXPECT_EQ(opened->GetProperty(Property::kRevision), "1");
    EXPECT_EQ(opened->At(0).Text("A3"), "other.cvs");
    fs::remove_all(folder);
}
