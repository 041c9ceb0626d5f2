// The order list, against a vector that does the same.
#include "cells/CalcOrder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>

using cells::internal::CalcOrder;

namespace {

// Entries that live as long as the test.
class Entries {
public:
    SCCalcEntry * New() {
        m_Entries.push_back(std::make_unique<SCCalcEntry>());
        return m_Entries.back().get();
    }

private:
    std::vector<std::unique_ptr<SCCalcEntry>> m_Entries;
};

void ExpectSame(CalcOrder const & order, std::vector<SCCalcEntry *> const & twin) {
    SCCalcEntry const * entry = order.First();
    for (std::size_t i = 0; i < twin.size(); ++i, entry = entry->next) {
        ASSERT_EQ(entry, twin[i]) << i;
        ASSERT_EQ(entry->previous, i ? twin[i - 1] : nullptr) << i;
        if (i) {
            ASSERT_LT(twin[i - 1]->label, entry->label) << i;
        }
    }
    ASSERT_EQ(entry, nullptr);
    ASSERT_EQ(order.Last(), twin.empty() ? nullptr : twin.back());
}

// Inserts `count` entries, each after the one that `place` picks.
template <typename Pick>
void InsertMany(int count, Pick && place) {
    CalcOrder order;
    Entries entries;
    SCCalcEntry * last = nullptr;
    for (int i = 0; i < count; ++i) {
        SCCalcEntry * const entry = entries.New();
        order.InsertAfter(place(order, last), entry);
        last = entry;
    }
    int found = 0;
    for (SCCalcEntry const * entry = order.First(); entry; entry = entry->next, ++found)
        if (entry->next) {
            ASSERT_LT(entry->label, entry->next->label);
        }
    EXPECT_EQ(found, count);
}

} // namespace

TEST(CalcOrder, RandomInsertionsAndRemovalsGiveWhatAVectorGives) {
    for (unsigned seed = 1; seed <= 5; ++seed) {
        std::mt19937 random(seed);
        CalcOrder order;
        Entries entries;
        std::vector<SCCalcEntry *> twin;
        for (int step = 0; step < 3000; ++step) {
            if (!twin.empty() && random() % 4 == 0) {
                std::size_t const at = random() % twin.size();
                order.Remove(twin[at]);
                EXPECT_EQ(twin[at]->m_nIndex, -1);
                twin.erase(twin.begin() + std::ptrdiff_t(at));
                continue;
            }
            // Often at one place, so that labels run out there.
            std::size_t const at =
                random() % 2 ? std::min<std::size_t>(twin.size(), 3) : random() % (twin.size() + 1);
            SCCalcEntry * const entry = entries.New();
            order.InsertAfter(at ? twin[at - 1] : nullptr, entry);
            twin.insert(twin.begin() + std::ptrdiff_t(at), entry);
        }
        ExpectSame(order, twin);
        EXPECT_EQ(order.At(7), twin[7]);
        EXPECT_EQ(order.IndexOf(twin[7]), 7);
        EXPECT_EQ(order.At(int(twin.size())), nullptr);
    }
}

TEST(CalcOrder, ManyInsertionsAtOnePlaceKeepTheLabelsGrowing) {
    InsertMany(100000, [](CalcOrder const &, SCCalcEntry *) { return nullptr; });
    InsertMany(100000, [](CalcOrder const & order, SCCalcEntry *) { return order.Last(); });
    InsertMany(100000, [](CalcOrder const & order, SCCalcEntry *) { return order.First(); });
    InsertMany(100000, [](CalcOrder const &, SCCalcEntry * last) { return last; });
    InsertMany(100000, [](CalcOrder const & order, SCCalcEntry * last) {
        return last && last->previous ? last->previous : order.First();
    });
}
