// The bytes of cells, items and managers, written out by hand.
#include "cells/CCCellManager.h"
#include "formula/CCDocumentRef.h"
#include "platform/Exceptions.h"
#include "support/BaseHost.h"
#include "support/Bytes.h"

#include <gtest/gtest.h>

using namespace cells::test;

namespace {

Bytes CellBytes(BaseHost & host, char const * name) {
    return Written([&](CArchive & ar) { host.Make(name).Write(&host, ar); });
}

Bytes const kNoFormat = Join(0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFE, 0xFF, 0);

// The head of every cell here: set mask, flags and number format.
std::size_t HeadSize() { return 2 + 1 + kNoFormat.size(); }

Bytes BehindHead(Bytes const & cell) {
    return Bytes(cell.begin() + std::ptrdiff_t(HeadSize()), cell.end());
}

} // namespace

TEST(CellRecord, OfAnEmptyCellIsItsFormatAndZeros) {
    BaseHost host;
    EXPECT_EQ(BehindHead(CellBytes(host, "A1")), Join(0, U32(0), U32(0)));
}

TEST(CellRecord, HoldsFormatValueFormulaAndDependents) {
    BaseHost host;
    host.Make("A1");
    host.Enter("B1", L"=A1");
    // An empty reference shows an empty value; the block counts the formula's bytes only.
    EXPECT_EQ(BehindHead(CellBytes(host, "B1")),
              Join(0, U32(6), int('F'), Bytes{3, 1, 0, 0, 0, 0}, U32(0)));
    Bytes const a1 = BehindHead(CellBytes(host, "A1"));
    ASSERT_GT(a1.size(), 9u);
    EXPECT_EQ(a1[0], 0);                                      // no value
    EXPECT_EQ(Bytes(a1.begin() + 1, a1.begin() + 5), U32(0)); // no formula
    EXPECT_EQ(a1[5] + 9u, a1.size());                         // the rest is one counted block
    EXPECT_EQ(a1.back(), 0);                                  // which ends its list
}

TEST(CellRecord, OfACircularCellSaysSo) {
    BaseHost host;
    host.Make("A1");
    host.Enter("A1", L"=A1");
    Bytes const bytes = BehindHead(CellBytes(host, "A1"));
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 5), Join(1, U32(5))); // error 5 stays the value
    EXPECT_EQ(bytes[9], 'C');
    BaseHost other;
    Reading(CellBytes(host, "A1"), [&](CArchive & ar) { other.Make("A1").Read(&other, ar); });
    EXPECT_EQ(other.Text("A1"), "#CIRC!");
    EXPECT_EQ(CellBytes(other, "A1"), CellBytes(host, "A1"));
}

TEST(CellRecord, ASheetReadsBackAndCalculates) {
    BaseHost host, other;
    char const * const names[] = {"A1", "B1", "C1", "D1"};
    wchar_t const * const texts[] = {L"12.50", L"=A1*2", L"a text", L"=B1+A1"};
    for (int i = 0; i < 4; ++i) host.Enter(names[i], texts[i]);
    host.Idle();
    std::vector<Bytes> records;
    for (char const * name : names) records.push_back(CellBytes(host, name));
    for (int i = 0; i < 4; ++i)
        Reading(records[std::size_t(i)],
                [&](CArchive & ar) { other.Make(names[i]).Read(&other, ar); });
    for (char const * name : names) {
        EXPECT_EQ(other.Text(name), host.Text(name));
        EXPECT_EQ(other.EditText(name), host.EditText(name));
        EXPECT_EQ(CellBytes(other, name), CellBytes(host, name));
    }
    other.Enter("A1", L"2"); // its dependents came with it
    other.Idle();
    EXPECT_EQ(other.Text("D1"), "6");
}

TEST(CellRecord, EveryDamagedByteIsAnExceptionOrACell) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Enter("B1", L"=SUM(A1,2)&\"x\"");
    host.Enter("C1", L"=B1");
    Bytes const sound = CellBytes(host, "B1");
    auto const read = [&](Bytes const & bytes) {
        BaseHost other;
        MapCell & cell = other.Make("B1");
        try {
            Reading(bytes, [&](CArchive & ar) { cell.Read(&other, ar); });
        } catch (CArchiveException const &) {
        }
        other.Text("B1");
        other.EditText("B1");
        CCRCRef const b1(1, 0);
        other.RecalcCell(&b1);
        CellBytes(other, "B1");
    };
    for (std::size_t length = 0; length <= sound.size(); ++length)
        EXPECT_NO_FATAL_FAILURE(read(Bytes(sound.begin(), sound.begin() + std::ptrdiff_t(length))));
    for (std::size_t at = 0; at < sound.size(); ++at)
        for (int bit = 0; bit < 8; ++bit) {
            Bytes damaged = sound;
            damaged[at] ^= uchar(1 << bit);
            EXPECT_NO_FATAL_FAILURE(read(damaged));
        }
}

TEST(CellRecord, AnAnnouncedLengthTakesNoMemory) {
    BaseHost host;
    Bytes bytes = CellBytes(host, "A1");
    std::fill(bytes.end() - 8, bytes.end() - 4, uchar(0xFF)); // the formula's length
    MapCell & cell = host.Make("A1");
    EXPECT_NO_THROW(try {
        Reading(bytes, [&](CArchive & ar) { cell.Read(&host, ar); });
    } catch (CArchiveException const &){});
    EXPECT_EQ(host.Text("A1"), "");
}

TEST(ManagerRecord, HoldsProtectionPasswordAndDocumentItems) {
    BaseHost host;
    EXPECT_EQ(Written([&](CArchive & ar) { host.CCCellManager::Write(ar); }),
              Join(U32(0), 0xFF, 0xFE, 0xFF, 0, 0));
    CCDocumentRef const pages(CCDocumentRef::ECDocRefType(3));
    CCRCRef const a1(0, 0);
    host.RegisterDocumentDependent(&pages, &a1);
    Bytes const bytes = Written([&](CArchive & ar) { host.CCCellManager::Write(ar); });
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 10), Join(U32(0), 0xFF, 0xFE, 0xFF, 0, 1, 3));
    EXPECT_EQ(bytes.back(), 0);
    BaseHost other;
    Reading(bytes, [&](CArchive & ar) { other.CCCellManager::Read(ar); });
    EXPECT_EQ(Written([&](CArchive & ar) { other.CCCellManager::Write(ar); }), bytes);
}
