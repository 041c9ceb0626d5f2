// Sheets as files of the older version.
#include "host/LegacyFile.h"

#include "support/Documentation.h"
#include "support/Workbooks.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>

using cells::host::CellFlag;
using cells::host::DocumentError;
using cells::host::LegacyFile;
using cells::host::LegacyLoss;
using cells::host::ReadLegacyFile;
using cells::host::Sheet;
using cells::host::Workbook;
using cells::host::WriteLegacyFile;
using cells::test::A;
using cells::test::DumpOfTheDocumentation;
using cells::test::P;
using cells::test::Shown;

namespace {

using Losses = std::map<std::string, std::vector<std::string>>;

Losses ByKind(std::vector<LegacyLoss> const & list) {
    Losses losses;
    for (LegacyLoss const & loss : list) losses[loss.what] = loss.where;
    return losses;
}

LegacyFile Written(Sheet & sheet) {
    sheet.Recalculate();
    return WriteLegacyFile(sheet);
}

// A sheet that a file was read into.
struct Read {
    explicit Read(std::string_view file) : losses(ByKind(ReadLegacyFile(file, sheet))) {
        sheet.Recalculate();
    }
    Sheet sheet{"C"};
    Losses losses;
};

std::string Bytes(std::initializer_list<int> bytes) {
    std::string text;
    for (int byte : bytes) text += char(byte);
    return text;
}

std::string const kHead = Bytes({0x89, 0x43, 0x31, 0x35, 0x0D, 0x0A, 0x1A, 0x0A, 1, 0, 0, 0});

std::string FailureOf(std::string_view file) {
    Sheet sheet("C");
    try {
        ReadLegacyFile(file, sheet);
    } catch (DocumentError const & error) {
        EXPECT_FALSE(sheet.UsedArea()) << "a refused file left cells behind";
        return error.what();
    }
    return "none";
}

} // namespace

TEST(LegacyFile, OfAnEmptySheetIsItsHeadAndTwoCounts) {
    Sheet sheet("C");
    LegacyFile const file = Written(sheet);
    EXPECT_EQ(file.bytes, kHead + Bytes({0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(file.losses.empty());
}

TEST(LegacyFile, HasNamesThenCellsWithTheirFormats) {
    Sheet sheet("C");
    sheet.Enter("A1", "0.5");
    sheet.Enter("B1", "x");
    sheet.DefineName("n", A("A1:A1"));
    std::string const a1 = Bytes({1, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0});
    std::string const b1 = Bytes({1, 1, 0, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0});
    std::string const half = Bytes({2, 0, 0, 0, 0, 0, 0, 0xE0, 0x3F, 0, 0, 0, 0});
    std::string const text = Bytes({1, 1, 'x', 0, 0, 0, 0});
    std::string const rest(9, '\0'); // no formula, no references
    std::string const allDecimals = Bytes({1, 0, 0, 15, 0}) + std::string(16, '\0');
    EXPECT_EQ(Written(sheet).bytes, kHead + Bytes({1, 0, 0, 0, 1, 'n'}) + a1 + Bytes({2, 0, 0, 0}) +
                                        a1 + half + rest + allDecimals + b1 + text + rest +
                                        Bytes({0}));
}

TEST(LegacyFile, IsTheDumpOfTheDocumentation) {
    Sheet sheet("C");
    sheet.Enter("A1", "12.5");
    sheet.Enter("B2", "=A1*2");
    EXPECT_EQ(Written(sheet).bytes, DumpOfTheDocumentation("89 43 31 35"));
}

TEST(LegacyFile, BringsBackWhatTheOlderVersionCanHold) {
    Sheet sheet("C");
    for (auto const & [place, text] : std::initializer_list<std::pair<char const *, char const *>>{
             {"A1", "12.5"},
             {"A2", "$5.00"},
             {"A3", "50%"},
             {"A4", "3/5/2026"},
             {"A5", "10:30"},
             {"A6", "1 1/2"},
             {"A7", "1e20"},
             {"A8", "text"},
             {"A9", "1,234.50"},
             {"B1", "=A1*2"},
             {"B2", "=1/3"},
             {"B3", "=SUM(A1:A3)"},
             {"B4", "=$A1+A$1+rate"},
             {"B5", "=A2*2"},
             {"B6", "=A1>3"},
             {"B7", "=AND(A1:A3)"},
             {"B8", "=1/0"},
             {"IV65536", "=A1"},
         })
        sheet.Enter(place, text);
    sheet.DefineName("rate", A("A1:A1"));
    sheet.SetNumberFormat(A("C1:C1"), "number:3");
    sheet.Enter("C1", "2");
    sheet.SetNumberFormat(A("C2:C2"), "percent:1"); // of a blank cell
    LegacyFile const file = Written(sheet);
    EXPECT_EQ(ByKind(file.losses), Losses());
    Read back(file.bytes);
    EXPECT_EQ(back.losses, Losses());
    sheet.ForEachOccupied([&](cells::host::Place place) {
        EXPECT_EQ(back.sheet.Text(place), sheet.Text(place)) << NameOf(place);
        EXPECT_EQ(back.sheet.Formula(place), sheet.Formula(place)) << NameOf(place);
    });
    EXPECT_EQ(back.sheet.CheckInvariants(), std::vector<std::string>());
    back.sheet.Enter("C2", "0.5");
    EXPECT_EQ(back.sheet.Text("C2"), "50.0%");
    back.sheet.Enter("A1", "20");
    back.sheet.Recalculate();
    EXPECT_EQ(back.sheet.Text("B1"), "40");
    EXPECT_EQ(back.sheet.Text("B4"), "60");
    EXPECT_EQ(back.sheet.Text("IV65536"), "20");
}

TEST(LegacyFile, TellsWhatItCannotHold) {
    Workbook book("C");
    Sheet & sheet = book.Add("One");
    book.Add("Two").Enter("A1", "3");
    sheet.Enter("A1", "1");
    sheet.Enter("B1", "=IF(A1,5,6)");
    sheet.Enter("B2", "=Two!A1*2");
    sheet.Enter("B3", "=SUM({1,2})");
    sheet.Enter("B4", "=A1+\"\u4E2D\"");
    sheet.Enter("C1", std::string(300, 'x'));
    sheet.Enter("C2", "\u4E2D");
    sheet.Enter("C3", "TRUE");
    sheet.Enter("D1", "2");
    sheet.SetNumberFormat(A("D1:D1"), "0.0 \"kg\"");
    sheet.SetNumberFormat(A("E1:E9"), "number:2");
    sheet.SetFlag(A("A1:A1"), CellFlag::kLocked);
    sheet.Protect();
    book.Recalculate();
    LegacyFile const file = WriteLegacyFile(sheet);
    EXPECT_EQ(ByKind(file.losses),
              (Losses{{"formulas of which only the value is kept", {"B1", "B2", "B3", "B4"}},
                      {"texts that were cut or lack characters", {"C1", "C2"}},
                      {"number formats that changed", {"D1", "C3"}},
                      {"cell flags that are lost", {"A1"}},
                      {"formats of areas that only their cells keep", {"E1:E9"}},
                      {"protection that is lost", {}}}));
    Read back(file.bytes);
    EXPECT_EQ(back.sheet.Text("B1"), "5");
    EXPECT_EQ(back.sheet.Text("B2"), "6");
    EXPECT_EQ(back.sheet.Text("B3"), "3");
    EXPECT_EQ(back.sheet.Text("C1"), std::string(254, 'x'));
    EXPECT_EQ(back.sheet.Text("C2"), "?");
    EXPECT_EQ(back.sheet.Text("C3"), "1");
    EXPECT_EQ(back.sheet.Text("D1"), "2");
    EXPECT_FALSE(back.sheet.Formula(P("B1")));
}

TEST(LegacyFile, ALongTextNeverBringsTheReaderOutOfStep) {
    for (int length : {254, 255, 256, 300}) {
        Sheet sheet("C");
        std::string const text(std::size_t(length), 'x');
        sheet.Enter("A1", text);
        sheet.Enter("A2", "=A1+\"" + text + "\"");
        sheet.Enter("A3", "5");
        Read back(Written(sheet).bytes);
        EXPECT_EQ(back.sheet.Text("A1"), text.substr(0, 254)) << length;
        EXPECT_EQ(back.sheet.Formula(P("A2")).has_value(), length == 254) << length;
        EXPECT_EQ(back.sheet.Text("A3"), "5") << length;
    }
}

TEST(LegacyFile, ResultsKeepTheirLook) {
    Sheet sheet("C");
    sheet.Enter("A1", "=-0.5"); // as the constant shows
    sheet.Enter("A2", "=A1*0.5");
    sheet.Enter("A3", "=1/3");
    LegacyFile const file = Written(sheet);
    EXPECT_TRUE(file.losses.empty());
    Read back(file.bytes);
    EXPECT_EQ(Shown(back.sheet), Shown(sheet));
}

TEST(LegacyFile, NamesThatHaveNoBytesAreTold) {
    Sheet sheet("C");
    sheet.Enter("A1", "5");
    ASSERT_TRUE(sheet.DefineName("\u540D", A("A1:A1")));
    ASSERT_TRUE(sheet.DefineName("area", A("A1:B2")));
    sheet.Enter("B3", "=\u540D+1");
    sheet.Enter("B4", "=SUM(area)");
    LegacyFile const file = Written(sheet);
    EXPECT_EQ(ByKind(file.losses), (Losses{{"names that are lost", {"\u540D"}},
                                           {"formulas of which only the value is kept", {"B3"}}}));
    Read back(file.bytes);
    EXPECT_EQ(back.sheet.Text("B3"), "6");
    EXPECT_EQ(back.sheet.Formula(P("B4")), "=SUM (area)");
    EXPECT_EQ(back.sheet.Text("B4"), "5");
}

TEST(LegacyFile, EditSourcesStayEditSources) {
    Sheet sheet("C");
    sheet.Enter("A1", "5");
    sheet.Enter("B1", "!A1");
    Read back(Written(sheet).bytes);
    EXPECT_EQ(back.sheet.EditText(P("B1")), "!A1");
    back.sheet.Enter("B1", "7");
    EXPECT_EQ(back.sheet.Text("A1"), "7");
}

TEST(LegacyFile, EditSourcesThatCannotBeNamedAreTold) {
    Sheet sheet("C");
    std::string const name(300, 'n');
    sheet.Enter("A1", "5");
    sheet.Enter("C1", "7");
    sheet.DefineName(name, A("A1:A1"));
    sheet.Enter("B1", "!" + name);
    sheet.Enter("B2", "!IF(A1,C1,A1)");
    sheet.Enter("B3", "9");
    LegacyFile const file = Written(sheet);
    EXPECT_EQ(ByKind(file.losses),
              (Losses{{"names that are lost", {name}},
                      {"formulas of which only the value is kept", {"B1"}},
                      {"cell flags that are lost", {"B1"}},
                      {"edit sources of which only the present place is kept", {"B2"}}}));
    Read back(file.bytes);
    EXPECT_EQ(back.sheet.Text("B1"), "5");
    EXPECT_EQ(back.sheet.EditText(P("B2")), "!$C$1");
    EXPECT_EQ(back.sheet.Text("B3"), "9");
}

TEST(LegacyFile, ErrorsAreToldWhereNoFormulaMakesThem) {
    Sheet sheet("C");
    sheet.Enter("A1", "=NA()");
    sheet.Enter("A2", "=A2");
    sheet.Enter("A3", "=IF(1,NA(),2)");
    sheet.Enter("A4", "=IF(1,1/0,2)");
    LegacyFile const file = Written(sheet);
    EXPECT_EQ(ByKind(file.losses),
              (Losses{{"formulas of which only the value is kept", {"A3", "A4"}},
                      {"errors that became others", {"A3"}}}));
    Read back(file.bytes);
    EXPECT_EQ(back.sheet.Get("A1").error, 9);
    EXPECT_EQ(back.sheet.Get("A2").error, 5);
    EXPECT_EQ(back.sheet.Get("A3").error, 3);
    EXPECT_EQ(back.sheet.Get("A4").error, 2);
}

TEST(LegacyFile, ReadingIsOneEdit) {
    Sheet source("C"), sheet("C");
    source.Enter("A1", "5");
    source.Enter("A2", "=rate*2");
    source.DefineName("rate", A("A1:A1"));
    std::string const file = Written(source).bytes;
    sheet.KeepHistory(10);
    ReadLegacyFile(file, sheet);
    sheet.Recalculate();
    std::string const shown = Shown(sheet);
    EXPECT_EQ(sheet.Text("A2"), "10");
    ASSERT_TRUE(sheet.Undo());
    EXPECT_FALSE(sheet.UsedArea());
    ASSERT_TRUE(sheet.Redo());
    sheet.Recalculate();
    EXPECT_EQ(Shown(sheet), shown);
}

// Files that are not as they should be

TEST(LegacyFile, EveryPrefixIsRefused) {
    Sheet sheet("C");
    sheet.Enter("A1", "5");
    sheet.Enter("A2", "=A1+rate");
    sheet.DefineName("rate", A("A1:A1"));
    std::string const file = Written(sheet).bytes;
    for (std::size_t length = 0; length < file.size(); ++length)
        EXPECT_NE(FailureOf(file.substr(0, length)), "none") << length;
    EXPECT_EQ(FailureOf(file + '\0'),
              "at byte " + std::to_string(file.size() + 1) + ": more bytes than cells");
}

TEST(LegacyFile, RefusesWhatItDoesNotKnow) {
    EXPECT_EQ(FailureOf("A1,B1\n"), "at byte 6: no file of the older version");
    std::string head = kHead;
    head[8] = 2;
    EXPECT_EQ(FailureOf(head), "at byte 12: a version that is not known");
}

namespace {

// A file of records of the value 0.0, each with its coordinates and what stands after it.
std::string FileOf(std::initializer_list<std::pair<std::string, std::string>> records) {
    std::string file = kHead + Bytes({0, 0, 0, 0, int(records.size()), 0, 0, 0});
    for (auto const & [coords, behind] : records)
        file += coords + Bytes({3}) + std::string(21, '\0') + behind;
    return file;
}

std::string const kA1 = Bytes({1, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});

} // namespace

TEST(LegacyFile, RefusesAPlaceThatComesTwiceAndAnUnknownKindOfFormat) {
    std::string const none(1, '\0');
    EXPECT_EQ(FailureOf(FileOf({{kA1, none}})), "none");
    std::string const twice = FileOf({{kA1, none}, {kA1, none}});
    EXPECT_EQ(FailureOf(twice),
              "at byte " + std::to_string(twice.size()) + ": a place comes twice");
    std::string const kind = FileOf({{kA1, Bytes({3})}});
    EXPECT_EQ(FailureOf(kind),
              "at byte " + std::to_string(kind.size()) + ": an unknown kind of format");
}

TEST(LegacyFile, RecordsWithoutACellAreTold) {
    std::string const none(1, '\0');
    std::string const name = Bytes({3, 1, 'n'});
    std::string const offGrid = Bytes({1, 1, 0, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0});
    Read const back(
        FileOf({{std::string(1, '\0'), none}, {kA1, none}, {name, none}, {offGrid, none}}));
    EXPECT_EQ(back.losses, (Losses{{"records without a cell", {"1", "3", "4"}}}));
    EXPECT_EQ(back.sheet.Text("A1"), "0");
}

TEST(LegacyFile, AFormulaThatCannotBeReadIsTold) {
    std::string const call = Bytes({1, 3}) + std::string(12, '\0') + Bytes({1, 'Q', 0, 0, 0, 0});
    std::string const file = kHead + Bytes({0, 0, 0, 0, 1, 0, 0, 0}) + kA1 + Bytes({3}) +
                             std::string(6, '\0') + Bytes({0xE0, 0x3F}) + std::string(4, '\0') +
                             call + std::string(9, '\0');
    Read const back(file);
    EXPECT_EQ(back.losses, (Losses{{"formulas of which only the value is kept", {"A1"}}}));
    EXPECT_EQ(back.sheet.Get("A1").number, 0.5);
}

TEST(LegacyFile, NamesThatCannotBeDefinedAreTold) {
    std::string const none = Bytes({0});
    std::string const file = kHead + Bytes({4, 0, 0, 0}) + Bytes({2, 'A', '1'}) + kA1 +
                             Bytes({255}) + kA1 + Bytes({1, 'n', 3, 1, 'm'}) + Bytes({1, 'k'}) +
                             kA1 + std::string(4, '\0');
    Read back(file);
    EXPECT_EQ(back.losses, (Losses{{"names that are lost", {"A1", "", "n"}}}));
    back.sheet.Enter("A1", "4");
    back.sheet.Enter("A2", "=k+1");
    EXPECT_EQ(back.sheet.Text("A2"), "5");
}

// Whatever is entered: what is not told as lost comes back as it was.

namespace {

std::vector<std::string> const kEntries = {
    "12.5",
    "-1234.5678",
    "1e20",
    "$5.00",
    "(7)",
    "50%",
    "1 1/2",
    "3/5/2026",
    "10:30",
    "TRUE",
    "text",
    "'007",
    "\u20AC and \u4E2D",
    std::string(255, 'x'),
    "=A1*2",
    "=1/3",
    "=$B2+C$3",
    "=SUM(A1:C3)",
    "=AND(A1:B2)",
    "=~A1",
    "=A1=B1",
    "=A1+\"\u4E2D\"",
    "=IF(A1>0,B1,C1)",
    "=CHOOSE(2,A1,B1)",
    "=SUM({1,2,3})",
    "=1/0",
    "=NA()",
    "=D4",
    "=TODAY()",
    "=rate*100",
    "!B2",
};
std::vector<std::string> const kFormats = {"general",    "number:2",     "currency:1", "percent:0",
                                           "fraction:2", "scientific:3", "date",       "time",
                                           "logical",    "hex",          "0.00 \"kg\""};

bool IsTold(Losses const & losses, std::string const & place) {
    for (auto const & [what, where] : losses)
        if (std::find(where.begin(), where.end(), place) != where.end()) return true;
    return false;
}

} // namespace

TEST(LegacyFile, WhatIsNotToldAsLostComesBackAsItWas) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        auto const pick = [&](auto const & list) -> auto const & {
            return list[random() % list.size()];
        };
        Sheet sheet("C");
        sheet.DefineName("rate", A("B1:B1"));
        for (int i = 0; i < 16; ++i) {
            cells::host::Place const place{int(random() % 4), int(random() % 5)};
            if (random() % 4 == 0) sheet.SetNumberFormat({place, place}, pick(kFormats));
            sheet.Enter(place, pick(kEntries));
        }
        LegacyFile const file = Written(sheet);
        Losses const losses = ByKind(file.losses);
        Read back(file.bytes);
        EXPECT_EQ(back.losses, Losses());
        EXPECT_EQ(back.sheet.CheckInvariants(), std::vector<std::string>());
        // What formulas compute may depend on how a circle of cells is entered.
        sheet.ForEachOccupied([&](cells::host::Place place) {
            std::string const name = NameOf(place);
            if (IsTold(losses, name)) return;
            EXPECT_EQ(back.sheet.Formula(place), sheet.Formula(place)) << name;
            if (!sheet.Formula(place)) {
                EXPECT_EQ(back.sheet.Text(place), sheet.Text(place)) << name;
            }
        });
        // From then on nothing is lost any more.
        LegacyFile const second = Written(back.sheet);
        EXPECT_EQ(ByKind(second.losses), Losses());
        Read again(second.bytes);
        EXPECT_EQ(Shown(again.sheet), Shown(back.sheet));
    }
}
