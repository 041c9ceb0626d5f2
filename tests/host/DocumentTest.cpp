// Saved documents: what comes back, the bytes, damage, and saves that fail on the way.
#include "catalogue/Language.h"
#include "format/CCNumberFormat.h"
#include "format/LTStrings.h"
#include "host/Engine.h"
#include "host/Workbook.h"
#include "host/internal/documents/AtomicFile.h"
#include "support/Documentation.h"
#include "support/Paths.h"
#include "support/Workbooks.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using cells::host::Area;
using cells::host::AtomicFile;
using cells::host::CellFlag;
using cells::host::DocumentError;
using cells::host::Place;
using cells::host::Sheet;
using cells::host::Workbook;
using cells::test::BytesOf;
using cells::test::DumpOfTheDocumentation;
using cells::test::Shown;

namespace {

std::unique_ptr<Workbook> ThereAndBack(Workbook const & book, char const * locale = "C") {
    return Workbook::Read(BytesOf(book), locale);
}

std::unique_ptr<Workbook> SmallBook() {
    auto book = std::make_unique<Workbook>("C");
    Sheet &one = book->Add("One"), &two = book->Add("Two");
    one.Enter("A1", "5");
    one.Enter("A2", "text");
    one.Enter("B1", "=A1*2+Two!A1");
    two.Enter("A1", "7");
    two.Enter("A2", "=One!B1");
    book->Recalculate();
    return book;
}

class SavedBook : public cells::test::ThreeSheets {};

class Folder {
public:
    Folder() {
        std::string name = (fs::temp_directory_path() / "cvcells.XXXXXX").string();
        m_Path = mkdtemp(name.data());
    }
    ~Folder() { fs::remove_all(m_Path); }
    fs::path operator/(char const * name) const { return m_Path / name; }
    std::size_t Count() const {
        return std::size_t(std::distance(fs::directory_iterator(m_Path), fs::directory_iterator()));
    }

private:
    fs::path m_Path;
};

std::string Contents(fs::path const & file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

TEST_F(SavedBook, ValuesFormulasAndFormatsComeBack) {
    char const * const entries[] = {
        "5",          "-2.5e300", "12%",   "$3.50", "2/1/1950", "10:30",        "TRUE",
        "text",       "=1/0",     "=A1*2", "=NA()", "=B99",     "=\"a\"+\"b\"", "=SUM(A1:A9)",
        "={1,2;3,4}", "1/4",      "'5"};
    int row = 0;
    for (char const * entry : entries) one.Enter(Place{0, row++}, entry);
    one.SetNumberFormat({{0, 0}, {0, 0}}, "#,##0.00 \"kg\"");
    one.SetNumberFormat({{3, 0}, {3, 65535}}, "percent:1");
    one.SetFlag({{0, 1}, {0, 1}}, CellFlag::kHideZeros);
    one.DefineName("rate", {{0, 0}, {0, 0}});
    one.Enter("B1", "=rate+1");
    book.Recalculate();
    auto const back = ThereAndBack(book);
    EXPECT_EQ(Shown(*back), Shown(book));
    EXPECT_EQ(back->CheckInvariants(), std::vector<std::string>());
    Sheet & read = back->At(0);
    read.Enter("D7", "0.5"); // the format of the area
    EXPECT_EQ(read.Text("D7"), "50.0%");
    read.Enter("A1", "1000");
    back->Recalculate();
    EXPECT_EQ(read.Text("B1"), "1001");
    EXPECT_EQ(read.Text("A10"), "2000");
}

TEST(Document, WhatItHoldsIsSavedTheSameAgain) {
    auto const book = SmallBook();
    std::string const bytes = BytesOf(*book);
    EXPECT_EQ(BytesOf(*Workbook::Read(bytes, "C")), bytes);
}

TEST(Document, SheetsCalculateTogetherAgain) {
    auto const back = ThereAndBack(*SmallBook());
    (*back)["Two"].Enter("A1", "10");
    back->Recalculate();
    EXPECT_EQ((*back)["Two"].Text("A2"), "20");
    back->Rename(0, "Other");
    EXPECT_EQ(*(*back)["Two"].Formula({0, 1}), "=Other ! B1");
    EXPECT_EQ(back->CheckInvariants(), std::vector<std::string>());
}

TEST_F(SavedBook, CircularFormulasStayCircular) {
    one.Enter("A1", "=A1+1");
    auto const back = ThereAndBack(book);
    EXPECT_EQ(back->At(0).Text("A1"), "#CIRC!");
    back->At(0).Enter("B1", "1");
    back->Recalculate();
    EXPECT_EQ(back->At(0).Text("A1"), "#CIRC!");
}

TEST_F(SavedBook, ProtectedSheetsComeBackProtectedWithTheirFormulasAlive) {
    one.Enter("A1", "5");
    one.Enter("B1", "=A1*2");
    one.SetFlag({{0, 0}, {0, 0}}, CellFlag::kHidden);
    one.Protect("secret");
    auto const back = ThereAndBack(book);
    Sheet & read = back->At(0);
    EXPECT_TRUE(read.IsProtected());
    EXPECT_FALSE(read.Unprotect("wrong"));
    EXPECT_TRUE(read.Unprotect("secret"));
    read.Enter("A1", "6");
    back->Recalculate();
    EXPECT_EQ(read.Text("B1"), "12");
}

TEST_F(SavedBook, LongTextsAreWhole) {
    one.Enter("A1", "=REPT(\"ab\",5000)");
    one.Enter("A2", std::string(4096, 'x'));
    one.Enter("A3", std::string(4097, 'y'));
    auto const back = ThereAndBack(book);
    for (char const * cell : {"A1", "A2", "A3"})
        EXPECT_EQ(back->At(0).Text(cell), one.Text(cell)) << cell;
}

TEST_F(SavedBook, ManyCellsTakeSeveralSections) {
    for (int row = 0; row < 6000; ++row) {
        one.Enter(Place{0, row}, std::to_string(row));
        one.Enter(Place{1, row * 10}, "=A" + std::to_string(row + 1));
    }
    book.Recalculate();
    EXPECT_EQ(Shown(*ThereAndBack(book)), Shown(book));
}

TEST_F(SavedBook, ReadsTheSameInAnotherLanguage) {
    one.Enter("A1", "=SUM(1,2.5)&TRUE");
    std::string const bytes = BytesOf(book);
    cells::host::UseLanguageFile(CVCELLS_RESOURCES "/de.txt");
    auto const german = Workbook::Read(bytes, "C");
    EXPECT_EQ(*german->At(0).Formula({0, 0}), "=SUMME (1, 2.5) & WAHR");
    EXPECT_EQ(BytesOf(*german), bytes);
    cells::UseEnglish();
}

#if CVCELLS_WITH_ICU
TEST(Document, ReadsTheSameInAnotherLocale) {
    Workbook book("de-DE");
    book.Add("One").Enter("A1", "=SUM(1,5;2)");
    auto const american = ThereAndBack(book, "en-US");
    EXPECT_EQ(*american->At(0).Formula({0, 0}), "=SUM (1.5, 2)");
    EXPECT_EQ(american->At(0).Text("A1"), "3.5");
}
#endif

TEST_F(SavedBook, VolatileFormulasAreComputedAfterReading) {
    one.Enter("A1", "=NOW()");
    one.Enter("A2", "=A1+0");
    int changed = 0;
    auto const back = ThereAndBack(book);
    back->At(0).OnChanged([&](Place) { ++changed; });
    back->Recalculate();
    SUCCEED();
    EXPECT_EQ(back->At(0).Get("A2").number, back->At(0).Get("A1").number);
}

TEST_F(SavedBook, WhatWaitsToBeComputedWaitsAgain) {
    one.Enter("A1", "1");
    one.Enter("A2", "=A1*2");
    two.Enter("A1", "=One!A2+1");
    book.Recalculate();
    EXPECT_EQ(BytesOf(book).find("PEND"), std::string::npos);
    one.Enter("A1", "5");
    std::string const bytes = BytesOf(book);
    std::string const pending("\x02\0\0\0"
                              "\0\0\0\0\0\x01\0"
                              "\x01\0\0\0\0\0\0",
                              18);
    std::size_t const at = bytes.find("PEND");
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(bytes.substr(at + 20, pending.size()), pending); // One!A2, then Two!A1
    auto const back = Workbook::Read(bytes, "C");
    EXPECT_EQ(back->At(0).Text("A2"), "2");
    back->Recalculate();
    EXPECT_EQ(back->At(0).Text("A2"), "10");
    EXPECT_EQ(back->At(1).Text("A1"), "11");
    book.Recalculate(); // saving has changed nothing here
    EXPECT_EQ(two.Text("A1"), "11");
}

TEST_F(SavedBook, FormulasWhosePlacesAreComputedFollowThemAfterReading) {
    one.Enter("E3", "=INDIRECT(\"C2\")");
    one.Enter("E2", "=SUM(OFFSET(B1,1,0,2,1))");
    one.Enter("E4", "=INDIRECT(D1)");
    one.Enter("D1", "Two!A1");
    one.Enter("E5", "=SUM(INDIRECT(\"late\"))");
    book.Recalculate();
    auto const back = ThereAndBack(book);
    Sheet & there = back->At(0);
    there.Enter("C2", "3");
    there.Enter("B2", "4");
    back->At(1).Enter("A1", "5");
    there.DefineName("late", {{1, 1}, {2, 2}});
    back->Recalculate();
    EXPECT_EQ(there.Text("E3"), "3");
    EXPECT_EQ(there.Text("E2"), "7");
    EXPECT_EQ(there.Text("E4"), "5");
    EXPECT_EQ(there.Text("E5"), "7");
    EXPECT_EQ(back->CheckInvariants(), std::vector<std::string>());
    EXPECT_EQ(two.Text("A1"), "");
}

TEST(Document, TheSmallestOneIsTheDumpOfTheDocumentation) {
    Workbook book("C");
    book.Add("A_").Enter("B2", "1");
    EXPECT_EQ(BytesOf(book), DumpOfTheDocumentation("89 43 56 53"));
}

// A document from a program in which the number of "kg" here belongs to "xx".
TEST_F(SavedBook, LeadingStringsKeepTheirTextsWhereNumbersDiffer) {
    CCNumberFormat format;
    format.Set(C_NF_NUMBER);
    format.SetPrecision(0);
    format.SetLTString(2, std::max(GetLTStringIndex(L"kg"), 0));
    one.Enter("A1", "5");
    one.SetNumberFormat({{0, 0}, {0, 0}}, format);
    std::string const shown = one.Text("A1");
    ASSERT_NE(shown.find("kg"), std::string::npos) << shown;
    std::string bytes, document = BytesOf(book);
    cells::host::ContainerWriter writer([&](std::string_view piece) { bytes += piece; });
    for (cells::host::Section const & section : cells::host::ReadContainer(document).sections) {
        std::string payload(section.payload);
        if (section.tag == cells::host::SectionTag::kStrings)
            payload.replace(payload.find("k\0g", 0, 3), 3, std::string("x\0x", 3));
        if (section.tag != cells::host::SectionTag::kDone)
            writer.Add(section.tag, section.sheet, section.part, payload);
    }
    writer.Finish();
    EXPECT_EQ(Workbook::Read(bytes, "C")->At(0).Text("A1"),
              std::string(shown).replace(shown.find("kg"), 2, "xx"));
}

TEST(DamagedDocument, EveryPrefixIsRefusedAndGivesTheSheetsThatAreWhole) {
    auto const book = SmallBook();
    std::string const bytes = BytesOf(*book);
    std::string const one = Shown(book->At(0));
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        std::string const prefix = bytes.substr(0, length);
        EXPECT_THROW(Workbook::Read(prefix, "C"), DocumentError) << length;
        auto const recovered = Workbook::Recover(prefix, "C");
        EXPECT_FALSE(recovered.damages.empty()) << length;
        ASSERT_LE(recovered.book->Count(), 2) << length;
        if (recovered.book->Count() == 2) {
            EXPECT_EQ(Shown(*recovered.book), Shown(*book)) << length;
        }
    }
}

TEST(DamagedDocument, EveryFlippedBitIsToldAndChangesNoValue) {
    auto const book = SmallBook();
    std::string const bytes = BytesOf(*book);
    for (std::size_t at = 0; at < bytes.size(); ++at)
        for (int bit = 0; bit < 8; bit += 5) {
            std::string damaged = bytes;
            damaged[at] = char(damaged[at] ^ 1 << bit);
            try {
                Workbook::Read(damaged, "C");
                ADD_FAILURE() << "byte " << at;
            } catch (DocumentError const & error) {
                EXPECT_LE(error.offset, bytes.size());
            }
            auto const recovered = Workbook::Recover(damaged, "C");
            EXPECT_FALSE(recovered.damages.empty()) << at;
            if (recovered.book->Count() == 2) {
                EXPECT_EQ(Shown(*recovered.book), Shown(*book)) << "byte " << at;
            }
        }
}

TEST(DamagedDocument, TheOtherSheetsAreRecoveredAndComputedAnew) {
    auto const book = SmallBook();
    std::string bytes = BytesOf(*book);
    bytes[bytes.rfind("CELL") + 25] ^= 1; // a cell of the second sheet
    auto const recovered = Workbook::Recover(bytes, "C");
    ASSERT_EQ(recovered.book->Count(), 1);
    EXPECT_EQ(recovered.book->NameOf(0), "One");
    Sheet & one = recovered.book->At(0);
    EXPECT_EQ(one.Text("A1"), "5");
    EXPECT_EQ(one.Text("A2"), "text");
    EXPECT_EQ(*one.Formula({1, 0}), "=A1 * 2 + Two ! A1");
    EXPECT_EQ(one.Get("B1").kind, cells::host::Kind::kError);
    ASSERT_GE(recovered.damages.size(), 2u);
    EXPECT_EQ(recovered.damages[0].what.substr(0, 13), "damaged bytes");
}

TEST(DamagedDocument, ASheetWhoseHeadCannotBeReadIsLeftOut) {
    std::string const bytes = BytesOf(*SmallBook());
    std::string document;
    cells::host::ContainerWriter writer([&](std::string_view piece) { document += piece; });
    for (cells::host::Section const & section : cells::host::ReadContainer(bytes).sections) {
        bool const isHead = section.tag == cells::host::SectionTag::kSheet && section.sheet == 0;
        if (section.tag != cells::host::SectionTag::kDone)
            writer.Add(section.tag, section.sheet, section.part,
                       section.payload.substr(0, section.payload.size() - (isHead ? 3 : 0)));
    }
    writer.Finish();
    auto const recovered = Workbook::Recover(document, "C");
    ASSERT_EQ(recovered.book->Count(), 1);
    EXPECT_EQ(recovered.book->NameOf(0), "Two");
    EXPECT_EQ(recovered.damages.front().what,
              "a section cannot be read: the archive ends too early");
}

TEST(DamagedDocument, AnUnknownVersionIsNamed) {
    std::string bytes = BytesOf(*SmallBook());
    bytes[8] = 2;
    try {
        Workbook::Read(bytes, "C");
        FAIL();
    } catch (DocumentError const & error) {
        EXPECT_STREQ(error.what(), "at byte 8: the document has version 2, which is unknown");
    }
}

// Sections whose sums are right but whose contents are not.
TEST(DamagedDocument, HostileContentsEndInAComplaint) {
    auto const book = SmallBook();
    std::string const bytes = BytesOf(*book);
    auto const sections = cells::host::ReadContainer(bytes).sections;
    std::mt19937 random(3);
    for (int round = 0; round < 600; ++round) {
        std::string document;
        cells::host::ContainerWriter writer([&](std::string_view piece) { document += piece; });
        for (cells::host::Section const & section : sections) {
            std::string payload(section.payload);
            if (section.tag == cells::host::SectionTag::kDone) continue;
            if (!payload.empty() && random() % 4 == 0)
                for (unsigned i = 0; i <= random() % 3; ++i)
                    payload[random() % payload.size()] = char(random());
            if (random() % 20 == 0) payload.resize(random() % (payload.size() + 1));
            writer.Add(section.tag, random() % 30 ? section.sheet : unsigned(random()) % 3,
                       section.part, payload);
        }
        writer.Finish();
        auto const recovered = Workbook::Recover(document, "C");
        Shown(*recovered.book);
        for (int i = 0; i < recovered.book->Count(); ++i) recovered.book->At(i).Enter("A1", "3");
        recovered.book->Recalculate();
    }
}

TEST(SavedFile, IsOpenedAgain) {
    Folder folder;
    auto const book = SmallBook();
    book->Save(folder / "book.cvs");
    EXPECT_EQ(Contents(folder / "book.cvs"), BytesOf(*book));
    EXPECT_EQ(Shown(*Workbook::Open(folder / "book.cvs", "C")), Shown(*book));
    EXPECT_EQ(folder.Count(), 1u);
}

TEST(SavedFile, AFailureAtAnyStepLeavesTheOldOrTheNewDocument) {
    Folder folder;
    fs::path const file = folder / "book.cvs";
    auto const old = SmallBook(), now = SmallBook();
    now->At(0).Enter("A1", "99");
    now->Recalculate();
    int steps = 0;
    AtomicFile::beforeStep = [&](char const *) { ++steps; };
    now->Save(file);
    int const all = steps;
    EXPECT_GT(all, 10);
    for (int failing = 1; failing <= all; ++failing) {
        AtomicFile::beforeStep = nullptr;
        old->Save(file);
        std::string const before = Contents(file);
        int step = 0;
        AtomicFile::beforeStep = [&](char const *) {
            if (++step == failing) throw std::runtime_error("no room");
        };
        EXPECT_THROW(now->Save(file), std::runtime_error);
        std::string const found = Contents(file);
        EXPECT_TRUE(found == before || Shown(*Workbook::Read(found, "C")) == Shown(*now))
            << failing;
        EXPECT_EQ(folder.Count(), 1u) << "a temporary file is left";
    }
    AtomicFile::beforeStep = nullptr;
}

TEST(SavedFile, KeepsItsPermissionsAndIsReachedThroughALink) {
    Folder folder;
    auto const book = SmallBook();
    book->Save(folder / "book.cvs");
    fs::permissions(folder / "book.cvs", fs::perms(0640));
    fs::create_symlink(folder / "book.cvs", folder / "link.cvs");
    book->At(0).Enter("A1", "6");
    book->Save(folder / "link.cvs");
    EXPECT_TRUE(fs::is_symlink(folder / "link.cvs"));
    EXPECT_EQ(Contents(folder / "book.cvs"), BytesOf(*book));
    EXPECT_EQ(fs::status(folder / "book.cvs").permissions(), fs::perms(0640));
}

TEST(SavedFile, APipeIsWrittenAndNotReplaced) {
    Folder folder;
    fs::path const pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    int const reader = open(pipe.c_str(), O_RDWR); // so that nobody waits for the other end
    auto const book = SmallBook();
    book->Save(pipe);
    std::string const expected = BytesOf(*book);
    std::string found(expected.size(), 0);
    EXPECT_EQ(read(reader, found.data(), found.size()), ssize_t(found.size()));
    close(reader);
    EXPECT_EQ(found, expected);
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_EQ(folder.Count(), 1u);
}

TEST(SavedFile, WhatCannotBeWrittenOrReadIsNamed) {
    auto const book = SmallBook();
    EXPECT_THROW(book->Save("/nowhere/book.cvs"), std::runtime_error);
    EXPECT_THROW(Workbook::Open("/nowhere/book.cvs"), std::runtime_error);
    Folder folder;
    std::ofstream(folder / "text.cvs") << "a,b\n";
    EXPECT_THROW(Workbook::Open(folder / "text.cvs"), DocumentError);
}
