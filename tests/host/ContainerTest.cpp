// The frame of documents: its bytes, and every way in which a small one can be damaged.
#include "host/Container.h"

#include <gtest/gtest.h>

using cells::host::Checksum;
using cells::host::Container;
using cells::host::ContainerWriter;
using cells::host::Damage;
using cells::host::kNoSheet;
using cells::host::ReadContainer;
using cells::host::Section;
using cells::host::SectionTag;

namespace {

constexpr std::size_t kHead = 12, kSectionHead = 20;

std::string U32(std::uint32_t value) {
    return {char(value), char(value >> 8), char(value >> 16), char(value >> 24)};
}

std::string const kMark("\x89"
                        "CVS\r\n\x1A\n",
                        8);

// A section as bytes, with the checksum that it should have.
std::string SectionBytes(std::string const & tag, std::uint32_t sheet, std::uint32_t part,
                         std::string const & payload) {
    std::string const head = tag + U32(sheet) + U32(part) + U32(std::uint32_t(payload.size()));
    return head + U32(Checksum(head + payload)) + payload;
}

std::string Done(std::uint32_t sections) {
    return SectionBytes("DONE", kNoSheet, 0, U32(sections));
}

// The pieces of a small document: its head, three sections and the last one.
std::vector<std::string> SmallPieces() {
    return {kMark + U32(1), SectionBytes("BOOK", kNoSheet, 0, "12"),
            SectionBytes("CELL", 0, 3, "some cells"), SectionBytes("SEND", 0, 0, ""), Done(3)};
}

std::string Joined(std::vector<std::string> const & pieces) {
    std::string document;
    for (std::string const & piece : pieces) document += piece;
    return document;
}

struct Found {
    std::vector<std::size_t> sections; // their offsets
    std::vector<std::string> damages;  // "offset: what"
    bool operator==(Found const &) const = default;
};

std::string Text(std::uint64_t offset, std::string const & what) {
    return std::to_string(offset) + ": " + what;
}

std::string Bytes(std::uint64_t offset, std::size_t count) {
    return Text(offset, "damaged bytes: " + std::to_string(count));
}

Found FoundIn(std::string_view document) {
    Found found;
    Container const container = ReadContainer(document);
    for (Section const & section : container.sections) found.sections.push_back(section.offset);
    for (Damage const & damage : container.damages)
        found.damages.push_back(Text(damage.offset, damage.what));
    return found;
}

void PrintTo(Found const & found, std::ostream * out) {
    for (std::size_t section : found.sections) *out << "section at " << section << "; ";
    for (std::string const & damage : found.damages) *out << damage << "; ";
}

// Where the sections of a document start whose pieces these are, and where it ends.
std::vector<std::size_t> Starts(std::vector<std::string> const & pieces) {
    std::vector<std::size_t> starts;
    std::size_t at = 0;
    for (std::string const & piece : pieces) {
        if (at > 0) starts.push_back(at);
        at += piece.size();
    }
    starts.push_back(at);
    return starts;
}

} // namespace

TEST(Container, TheChecksumIsTheUsualOne) {
    EXPECT_EQ(Checksum(""), 0u);
    EXPECT_EQ(Checksum("123456789"), 0xCBF43926u);
    EXPECT_EQ(Checksum("6789", Checksum("12345")), 0xCBF43926u);
}

TEST(Container, IsWrittenAsAHeadAndSectionsThatCountThemselves) {
    std::string document;
    ContainerWriter writer([&](std::string_view piece) { document += piece; });
    EXPECT_EQ(document, kMark + std::string("\1\0\0\0", 4));
    writer.Add(SectionTag::kBook, kNoSheet, 0, "12");
    writer.Add(SectionTag::kCells, 0, 3, "some cells");
    writer.Add(SectionTag::kSheetEnd, 0, 0, "");
    writer.Finish();
    EXPECT_EQ(document, Joined(SmallPieces()));
    std::string const cells("CELL"
                            "\0\0\0\0\3\0\0\0\x0A\0\0\0",
                            16);
    EXPECT_EQ(document.substr(kHead + kSectionHead + 2, 16), cells);
}

TEST(Container, AWholeOneIsReadSectionBySection) {
    std::string const document = Joined(SmallPieces());
    Container const container = ReadContainer(document);
    EXPECT_TRUE(container.damages.empty());
    ASSERT_EQ(container.sections.size(), 4u);
    Section const & cells = container.sections[1];
    EXPECT_EQ(cells.tag, SectionTag::kCells);
    EXPECT_EQ(cells.sheet, 0u);
    EXPECT_EQ(cells.part, 3u);
    EXPECT_EQ(cells.offset, kHead + kSectionHead + 2);
    EXPECT_EQ(cells.payload, "some cells");
    EXPECT_EQ(cells.payload.data(), document.data() + cells.offset + kSectionHead); // borrowed
    EXPECT_EQ(container.sections[0].sheet, kNoSheet);
    EXPECT_EQ(container.sections[2].payload, "");
}

TEST(Container, EveryTagIsKnown) {
    std::uint32_t count = 0;
    std::string document = kMark + U32(1);
    for (char const * tag : {"BOOK", "PROP", "STRS", "SHET", "CELL", "SEND", "PEND"}) {
        document += SectionBytes(tag, 0, 0, tag);
        ++count;
    }
    Container const container = ReadContainer(document + Done(count));
    EXPECT_TRUE(container.damages.empty());
    EXPECT_EQ(container.sections.size(), 8u);
    EXPECT_EQ(container.sections[6].tag, SectionTag::kPending);
}

TEST(Container, EveryPrefixEndsWithWhatIsWholeAndTheOffsetOfTheRest) {
    std::vector<std::string> const pieces = SmallPieces();
    std::vector<std::size_t> const starts = Starts(pieces);
    std::string const document = Joined(pieces);
    for (std::size_t length = 0; length <= document.size(); ++length) {
        Found expected;
        if (length < kMark.size())
            expected.damages.push_back("0: this is no document of cvcells");
        else if (length < kHead)
            expected.damages.push_back(Text(length, "the document ends within its head"));
        std::size_t whole = std::min(length, kHead);
        for (std::size_t i = 0; i + 1 < starts.size() && starts[i + 1] <= length; ++i) {
            expected.sections.push_back(starts[i]);
            whole = starts[i + 1];
        }
        if (length > whole) expected.damages.push_back(Bytes(whole, length - whole));
        if (length < document.size())
            expected.damages.push_back(Text(length, "the document ends too early"));
        EXPECT_EQ(FoundIn(document.substr(0, length)), expected) << length;
    }
}

TEST(Container, EveryFlippedBitIsToldWithTheOffsetOfItsSectionAndSparesTheOthers) {
    std::vector<std::string> const pieces = SmallPieces();
    std::vector<std::size_t> const starts = Starts(pieces);
    std::string const document = Joined(pieces);
    for (std::size_t at = 0; at < document.size(); ++at)
        for (int bit = 0; bit < 8; ++bit) {
            std::string damaged = document;
            damaged[at] = char(damaged[at] ^ 1 << bit);
            Found expected{{starts.begin(), starts.end() - 1}, {}};
            if (at < kMark.size()) {
                expected.damages = {"0: this is no document of cvcells"};
            } else if (at < kHead) {
                std::uint32_t const version = 1u ^ 1u << (8 * (at - kMark.size()) + unsigned(bit));
                expected.damages = {"8: the document has version " + std::to_string(version) +
                                    ", which is unknown"};
            } else {
                std::size_t hit = 0;
                while (starts[hit + 1] <= at) ++hit;
                bool const isLast = hit + 2 == starts.size();
                expected.sections.erase(expected.sections.begin() + std::ptrdiff_t(hit));
                expected.damages = {Bytes(starts[hit], starts[hit + 1] - starts[hit]),
                                    isLast ? Text(document.size(), "the document ends too early")
                                           : Text(starts[3], "sections are missing")};
            }
            EXPECT_EQ(FoundIn(damaged), expected) << "byte " << at << ", bit " << bit;
        }
}

TEST(Container, WhatStandsBetweenSectionsIsTold) {
    std::vector<std::string> const whole = SmallPieces();
    for (std::size_t before = 1; before <= whole.size(); ++before)
        for (std::string const & rubbish :
             {std::string("x"), std::string("DONE"), std::string(100, '\0')}) {
            std::vector<std::string> pieces = whole;
            pieces.insert(pieces.begin() + std::ptrdiff_t(before), rubbish);
            std::string const document = Joined(pieces);
            Found expected{Starts(pieces), {}};
            std::size_t const at = expected.sections[before - 1];
            expected.sections.erase(expected.sections.begin() + std::ptrdiff_t(before) - 1);
            expected.sections.pop_back(); // the end of the document
            expected.damages = {Bytes(at, rubbish.size())};
            EXPECT_EQ(FoundIn(document), expected) << before << " " << rubbish;
        }
}

TEST(Container, SectionsWhoseFormIsWrongAreDamage) {
    std::string const head = kMark + U32(1);
    struct Row {
        char const * what;
        std::string sections;
        Found found;
    };
    Row const rows[] = {
        {"none at all", "", {{}, {"12: the document ends too early"}}},
        {"only the end", Done(0), {{12}, {}}},
        {"a section is left out", Done(1), {{12}, {"12: sections are missing"}}},
        {"a section too many",
         SectionBytes("CELL", 0, 0, "") + Done(0),
         {{12, 32}, {"32: sections are missing"}}},
        {"no number at the end",
         SectionBytes("DONE", kNoSheet, 0, ""),
         {{12}, {"12: sections are missing"}}},
        {"a long number at the end",
         SectionBytes("DONE", kNoSheet, 0, U32(0) + "x"),
         {{12}, {"12: sections are missing"}}},
        {"a section after the end",
         Done(0) + SectionBytes("CELL", 0, 0, ""),
         {{12, 36}, {"56: the document ends too early"}}},
        {"two ends", Done(0) + Done(1), {{12, 36}, {}}},
        {"an unknown tag",
         SectionBytes("ABCD", 0, 0, "") + Done(0),
         {{32}, {"12: damaged bytes: 20"}}},
        {"a length beyond the end",
         "CELL" + U32(0) + U32(0) + U32(0xFFFFFFFF) + U32(0) + Done(0),
         {{32}, {"12: damaged bytes: 20"}}},
    };
    for (Row const & row : rows) EXPECT_EQ(FoundIn(head + row.sections), row.found) << row.what;
}

// Each of them would be summed to the end of the document.
TEST(Container, HeadsThatClaimAllTheRestAreGivenUp) {
    constexpr std::uint32_t kHeads = 5000;
    std::string document = kMark + U32(1);
    for (std::uint32_t i = kHeads; i-- > 0;)
        document += "CELL" + U32(0) + U32(0) + U32(i * std::uint32_t(kSectionHead)) + U32(0);
    EXPECT_EQ(FoundIn(document), (Found{{},
                                        {Bytes(kHead, kHeads * kSectionHead),
                                         Text(document.size(), "the document ends too early")}}));
}
