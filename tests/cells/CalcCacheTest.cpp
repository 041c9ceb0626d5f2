// The calculation order of a workbook.
#include "cells/CCCalcCache.h"

#include "cells/CCWorkbook.h"
#include "formula/CCRCRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRegionRef.h"
#include "host/Workbook.h"
#include "host/internal/sheets/SheetManager.h"
#include "platform/Utf.h"

#include <gtest/gtest.h>
#include <map>
#include <random>
#include <sstream>

using cells::host::Place;
using cells::host::Sheet;
using cells::host::SheetManager;
using cells::host::Workbook;

namespace {

class CalcCache : public testing::Test {
protected:
    Workbook book{"C"};
    Sheet & sheet = book.Add("One");
    SheetManager & manager = static_cast<SheetManager &>(sheet.Manager());
    CCCalcCache & cache = manager.GetWorkbook()->GetCalcCache();

    static std::string NameOf(CCRef const * placed) {
        std::wostringstream stream;
        cells::internal::InnerRef(placed)->Print(nullptr, stream, 0);
        return cells::ToUtf8(std::wstring_view(stream.str()));
    }
    // The places in the order, a blank between them; dirty ones with a star.
    std::string Order() const {
        std::string order;
        for (int i = 0; SCCalcEntry const * entry = cache.GetEntry(i); ++i)
            order += (i ? " " : "") + NameOf(entry->m_pRef) + (entry->m_bDirty ? "*" : "");
        return order;
    }
    CCRCRef R(char const * name) const {
        Place const place = *cells::host::ParsePlace(name);
        return CCRCRef(uchar(place.column), ushort(place.row));
    }
};

} // namespace

TEST_F(CalcCache, FormulasStandBehindWhatTheyRead) {
    sheet.Enter("A1", "=1");
    sheet.Enter("A2", "=A1");
    sheet.Enter("A3", "=A2");
    book.Recalculate();
    EXPECT_EQ(Order(), "A1 A2 A3");
}

TEST_F(CalcCache, AFormulaOverConstantsStandsInFront) {
    sheet.Enter("A1", "=1");
    sheet.Enter("B1", "=C1");
    book.Recalculate();
    EXPECT_EQ(Order(), "B1 A1");
}

TEST_F(CalcCache, ANewPrecedentStandsBeforeItsDependents) {
    sheet.Enter("A1", "=B1");
    sheet.Enter("A2", "=A1");
    sheet.Enter("B1", "=C1");
    EXPECT_EQ(Order(), "B1* A1* A2*");
}

TEST_F(CalcCache, DependentsThatStandTooEarlyAreMovedInTheirOrder) {
    sheet.Enter("D1", "=1");
    sheet.Enter("A1", "=B1");
    sheet.Enter("A2", "=A1");
    book.Recalculate();
    EXPECT_EQ(Order(), "A1 A2 D1");
    sheet.Enter("B1", "=D1");
    EXPECT_EQ(Order(), "D1 B1* A1* A2*");
}

TEST_F(CalcCache, AChangedFormulaMovesBehindItsNewPrecedents) {
    sheet.Enter("B1", "=1");
    sheet.Enter("C1", "=2");
    sheet.Enter("C1", "=D1");
    sheet.Enter("B1", "=C1");
    sheet.Enter("D1", "7");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "7");
}

TEST_F(CalcCache, ARegionStandsBehindTheCellsThatLieInIt) {
    sheet.Enter("C1", "=SUM(A1:A3)");
    sheet.Enter("A2", "=D1");
    sheet.Enter("B1", "=SUM(A1:A3)");
    book.Recalculate();
    EXPECT_EQ(Order(), "A2 A1:A3 B1 C1");
    sheet.Enter("D1", "5");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("B1"), "5");
    EXPECT_EQ(sheet.Text("C1"), "5");
}

TEST_F(CalcCache, AChangeMarksTheClosureOfItsDependents) {
    sheet.Enter("B1", "=A1");
    sheet.Enter("C1", "=B1");
    sheet.Enter("C2", "=D9");
    book.Recalculate();
    sheet.Enter("A1", "5");
    EXPECT_EQ(Order(), "C2 B1* C1*");
    sheet.Enter("A1", "6"); // everything is marked already
    EXPECT_EQ(Order(), "C2 B1* C1*");
    book.Recalculate();
    EXPECT_EQ(Order(), "C2 B1 C1");
}

TEST_F(CalcCache, MarkAllMakesEveryEntryDirty) {
    sheet.Enter("B1", "=A1");
    book.Recalculate();
    EXPECT_EQ(Order(), "B1");
    cache.MarkAll();
    EXPECT_EQ(Order(), "B1*");
}

TEST_F(CalcCache, ARemovedEntryIsComputedAgainWhenItComesBack) {
    sheet.Enter("A1", "=D1");
    sheet.Enter("B1", "=D1");
    book.Recalculate();
    CCRCRef const a1 = R("A1");
    manager.OnRemoveItem(manager.GetItem(&a1));
    EXPECT_EQ(Order(), "B1");
    sheet.Enter("A1", "=D1+1");
    sheet.Enter("D1", "4");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("A1"), "5");
}

TEST_F(CalcCache, AnEntryThatIsRemovedByAHookOfThePassDoesNotHurtIt) {
    for (int row = 0; row < 10; ++row) sheet.Enter(Place{0, row}, "=D1");
    book.Recalculate();
    int hooks = 0;
    sheet.OnChanged([&](Place place) {
        if (place.column != 0 || place.row % 2 == 0) return;
        ++hooks;
        CCRCRef const own(0, ushort(place.row)), next(0, ushort((place.row + 3) % 10));
        manager.OnRemoveItem(manager.GetItem(&own));
        manager.OnRemoveItem(manager.GetItem(&next));
    });
    sheet.Enter("D1", "4");
    book.Recalculate();
    EXPECT_GT(hooks, 0);
    EXPECT_FALSE(cache.IsDirty());
}

TEST_F(CalcCache, WhatIsMarkedBehindThePassWaitsForTheNext) {
    sheet.Enter("A1", "=D1");
    sheet.Enter("B1", "=A1");
    book.Recalculate();
    ASSERT_EQ(Order(), "A1 B1");
    bool once = true;
    sheet.OnChanged([&](Place place) {
        CCRCRef const first = R("A1");
        if (place == Place{1, 0} && std::exchange(once, false)) cache.Mark(&first);
    });
    sheet.Enter("D1", "4");
    EXPECT_EQ(manager.DoIdle(0), 0);
    EXPECT_EQ(Order(), "A1* B1*");
    book.Recalculate();
    EXPECT_EQ(Order(), "A1 B1");
}

TEST_F(CalcCache, ATargetFoundDuringAPassCountsFromTheNextPassOn) {
    sheet.Enter("A1", "=INDIRECT(CONCAT(\"C\",B1))");
    sheet.Enter("B1", "1");
    sheet.Enter("C1", "=D1");
    sheet.Enter("C2", "=D1*10");
    sheet.Enter("D1", "1");
    book.Recalculate();
    sheet.Enter("B1", "2");
    book.Recalculate();
    sheet.Enter("D1", "3");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("A1"), "30");
}

TEST_F(CalcCache, NonIdleCalculationComputesAtOnce) {
    sheet.Enter("B1", "=A1");
    book.Recalculate();
    sheet.Enter("A1", "5");
    CCRCRef const b1 = R("B1");
    manager.DoNonIdleCalc(manager.GetItem(&b1), 0);
    EXPECT_EQ(sheet.Text("B1"), "5");
    manager.DoNonIdleCalc(nullptr, 0);
}

TEST_F(CalcCache, AHookThatHearsOfAValueMayHaveAnotherComputedAtOnce) {
    sheet.Enter("A1", "=D1");
    sheet.Enter("B1", "=A1*2");
    sheet.Enter("C1", "=B1+1");
    book.Recalculate();
    std::string seen;
    sheet.OnChanged([&](Place place) {
        if (place != Place{0, 0}) return;
        CCRCRef const b1 = R("B1");
        manager.DoNonIdleCalc(manager.GetItem(&b1), 1);
        seen = sheet.Text("B1") + " " + sheet.Text("C1");
    });
    sheet.Enter("D1", "4");
    book.Recalculate();
    EXPECT_EQ(seen, "8 9");
    EXPECT_FALSE(cache.IsDirty());
}

TEST_F(CalcCache, HooksThatQueueTheirOwnCellForEverEnd) {
    for (int row = 0; row < 40; ++row)
        sheet.Enter(Place{0, row}, row == 0 ? "=RAND()+D1" : "=RAND()+A" + std::to_string(row));
    book.Recalculate();
    int hooks = 0;
    sheet.OnChanged([&](Place place) {
        if (place.column != 0) return;
        ++hooks;
        CCRCRef const own(0, ushort(place.row));
        manager.DoNonIdleCalc(manager.GetItem(&own), 1);
    });
    sheet.Enter("D1", "4");
    manager.DoIdle(1);
    EXPECT_GT(hooks, 40);
    EXPECT_LT(hooks, 2'000'000);
}

TEST_F(CalcCache, AHookOfEveryCellOfALongChainNeedsNoDeepStack) {
    int const n = 3000;
    for (int row = 0; row < n; ++row)
        sheet.Enter(Place{0, row}, row == 0 ? "=D1" : "=A" + std::to_string(row) + "+1");
    book.Recalculate();
    sheet.OnChanged([&](Place place) {
        CCRCRef const next(0, ushort(place.row + 1));
        if (place.column == 0) manager.DoNonIdleCalc(manager.GetItem(&next), 1);
    });
    sheet.Enter("D1", "4");
    book.Recalculate();
    EXPECT_EQ(sheet.Text("A3000"), "3003");
}

TEST_F(CalcCache, NotifyOfNothingDoesNothing) {
    EXPECT_EQ(cache.Notify(&manager, nullptr, 1), 0);
    CCRCRef const empty = R("Z9");
    EXPECT_EQ(cache.Notify(&manager, &empty, 0), 1);
    EXPECT_EQ(cache.GetCount(), 0);
}

TEST_F(CalcCache, SortedEntriesAreFoundByTheirNumbers) {
    bool found = true;
    CCRef3D const a2(&manager, std::make_unique<CCRCRef>(uchar(0), ushort(1)).get());
    EXPECT_EQ(cache.FindSorted(&a2, found), -1);
    EXPECT_FALSE(found);
    for (char const * cell : {"A4", "A2", "A6"}) {
        CCRCRef const ref = R(cell);
        cache.SetManager(&manager);
        cache.AppendEntry(&ref);
    }
    auto const at = [&](char const * cell) {
        CCRCRef const ref = R(cell);
        CCRef3D const placed(&manager, &ref);
        return cache.FindSorted(&placed, found);
    };
    EXPECT_EQ(at("A1"), -2);
    EXPECT_EQ(at("A7"), -3);
    EXPECT_EQ(at("A2"), 0);
    EXPECT_TRUE(found);
    EXPECT_EQ(at("A4"), 1);
    EXPECT_TRUE(found);
    EXPECT_EQ(at("A5"), 1);
    EXPECT_FALSE(found);
    // The ends are not found by their own references.
    EXPECT_EQ(cache.FindSorted(cache.GetEntry(1)->m_pRef, found), -2);
    EXPECT_EQ(cache.FindSorted(cache.GetEntry(2)->m_pRef, found), -3);
    EXPECT_EQ(Order(), "A4 A2 A6");
}

TEST_F(CalcCache, EntriesMayBePutInByHand) {
    cache.SetManager(&manager);
    for (char const * cell : {"A1", "A2"}) {
        CCRCRef const ref = R(cell);
        cache.AppendEntry(&ref);
    }
    auto const made = [&](char const * cell) {
        CCRCRef const ref = R(cell);
        auto * const entry = new SCCalcEntry;
        entry->m_pRef = new CCRef3D(&manager, &ref);
        bool found = true;
        cache.FindSorted(entry->m_pRef, found);
        EXPECT_FALSE(found);
        cache.IndexSorted(entry);
        return entry;
    };
    cache.InsertBefore(0, made("C1"));
    EXPECT_EQ(Order(), "C1 A1 A2");
    cache.InsertBefore(2, made("C2"));
    EXPECT_EQ(Order(), "C1 A1 C2 A2");
    cache.InsertAfter(3, made("C3"));
    cache.InsertAfter(-1, made("C4"));
    EXPECT_EQ(Order(), "C4 C1 A1 C2 A2 C3");
    EXPECT_EQ(cache.GetCount(), 6);
}

TEST_F(CalcCache, AnInsertedRegionStandsBehindItsCellsAndBeforeItsReaders) {
    sheet.Enter("A1", "=1");
    sheet.Enter("B1", "=SUM(A1:A3)");
    sheet.Enter("A2", "=A1");
    book.Recalculate();
    CCRegionRef const region(0, 0, 0, 2), other(0, 0, 0, 8);
    cache.SetManager(&manager);
    std::string const before = Order();
    cache.Insert(&region); // it is there
    EXPECT_EQ(Order(), before);
    cache.Insert(nullptr);
    cache.Insert(&other); // nobody reads it
    EXPECT_EQ(Order(), before + " A1:A9");
}

TEST_F(CalcCache, ReorderMovesTheEntriesBehindAPlace) {
    cache.SetManager(&manager);
    for (char const * cell : {"A1", "A2", "A3", "A4"}) {
        CCRCRef const ref = R(cell);
        cache.AppendEntry(&ref);
    }
    std::vector<int> places{1, 0, 1};
    cache.Reorder(places, 2);
    EXPECT_TRUE(places.empty());
    EXPECT_EQ(Order(), "A3 A1 A2 A4");
}

TEST_F(CalcCache, RandomInsertionsKeepTheOrderTopological) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        std::mt19937 random(seed);
        Workbook own("C");
        Sheet & cells = own.Add("One");
        CCCalcCache & order = cells.Manager().GetWorkbook()->GetCalcCache();
        std::vector<std::vector<int>> reads(20);
        for (int step = 0; step < 40; ++step) {
            int const row = int(random() % 20);
            std::string text = "=0";
            reads[std::size_t(row)].clear();
            for (int i = 0; row > 0 && i < 3; ++i) {
                int const read = int(random() % unsigned(row));
                reads[std::size_t(row)].push_back(read);
                text += "+A" + std::to_string(read + 1);
            }
            cells.Enter(Place{0, row}, text);
        }
        std::map<std::string, int> places;
        for (int i = 0; SCCalcEntry const * entry = order.GetEntry(i); ++i)
            places[NameOf(entry->m_pRef)] = i;
        for (int row = 0; row < 20; ++row)
            for (int read : reads[std::size_t(row)]) {
                auto const reader = places.find("A" + std::to_string(row + 1));
                auto const precedent = places.find("A" + std::to_string(read + 1));
                if (reader == places.end() || precedent == places.end()) continue;
                ASSERT_LT(precedent->second, reader->second) << "seed " << seed;
            }
    }
}
