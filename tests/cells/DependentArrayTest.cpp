// The dependents of an item, against a vector that is searched from its beginning.
#include "cells/DependentArray.h"

#include "formula/CCNameRef.h"
#include "formula/CCRCRef.h"
#include "formula/CCRegionRef.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>

using cells::internal::DependentArray;

namespace {

constexpr int kPlainUpTo = 15; // from one more on there is a hash of the entries

int g_alive = 0;

// A reference that is equal to those of the same number, of one kind or the other, and counts
// itself while it lives.
template <typename Ref>
class Counted final : public Ref {
public:
    template <typename... Parts>
    explicit Counted(Parts... parts) : Ref(parts...) {
        ++g_alive;
    }
    Counted(Counted const &) = delete;
    Counted & operator=(Counted const &) = delete;
    ~Counted() override { --g_alive; }
};

CCRef * NewRef(int number) {
    uchar const column = uchar(number / 3);
    switch (number % 3) {
    case 0:
        return new Counted<CCRCRef>(column, ushort(7));
    case 1:
        return new Counted<CCRegionRef>(column, ushort(1), column, ushort(9));
    default:
        return new Counted<CCNameRef>(std::wstring(1, wchar_t(L'a' + column)).c_str());
    }
}

// An array, and a vector of the same entries that answers by looking at one after the other.
class Twins {
public:
    ~Twins() {
        m_Array.Clear();
        EXPECT_EQ(g_alive, 0);
    }

    DependentArray & Array() { return m_Array; }
    int Count() const { return int(m_Plain.size()); }

    void Add(int number) {
        if (Count() == m_Capacity) m_Capacity += DependentArray::kGrowth;
        m_Plain.push_back({number, NewRef(number)});
        m_Array.Add(m_Plain.back().ref);
    }

    // The first of the entries with a number gives way to another one, or to none.
    void ReplaceFirst(int number, int by) {
        int const position = PositionOf(number);
        if (position < 0) return;
        int const slot = Slot(number);
        m_Plain[std::size_t(position)] = {by, NewRef(by)};
        m_Array.Replace(slot, m_Plain[std::size_t(position)].ref);
    }
    void RemoveFirst(int number) {
        int const position = PositionOf(number);
        if (position < 0) return;
        m_Array.Remove(Slot(number));
        m_Plain.erase(m_Plain.begin() + position);
    }

    // The same where nothing stands between the entries, so that a position is a slot.
    void ReplaceAt(int position, int by) {
        m_Array.Entries();
        m_Plain[std::size_t(position)] = {by, NewRef(by)};
        m_Array.Replace(position, m_Plain[std::size_t(position)].ref);
    }
    void RemoveAt(int position) {
        m_Array.Entries();
        m_Array.Remove(position);
        m_Plain.erase(m_Plain.begin() + position);
    }

    void Clear() {
        m_Array.Clear();
        m_Plain.clear();
        m_Capacity = 0;
    }

    void ExpectAlike(int numbers) {
        ASSERT_EQ(m_Array.Count(), Count());
        ASSERT_EQ(m_Array.Capacity(), m_Capacity);
        ASSERT_EQ(g_alive, Count());
        for (int number = 0; number < numbers; ++number) {
            int const position = PositionOf(number), slot = Slot(number);
            ASSERT_EQ(slot < 0, position < 0) << number;
            if (position < 0) continue;
            ASSERT_EQ(m_Array.At(slot), m_Plain[std::size_t(position)].ref)
                << "not the first of equal entries, " << number;
        }
        std::size_t next = 0;
        m_Array.ForEach([&](CCRef * ref) {
            ASSERT_LT(next, m_Plain.size());
            ASSERT_EQ(ref, m_Plain[next].ref) << next;
            ++next;
        });
        ASSERT_EQ(next, m_Plain.size());
    }

private:
    struct Entry {
        int number;
        CCRef * ref; // the array's
    };

    int PositionOf(int number) const {
        for (std::size_t i = 0; i < m_Plain.size(); ++i)
            if (m_Plain[i].number == number) return int(i);
        return -1;
    }

    int Slot(int number) const {
        std::unique_ptr<CCRef> const like(NewRef(number));
        return m_Array.Find(like.get());
    }

    DependentArray m_Array;
    std::vector<Entry> m_Plain;
    int m_Capacity = 0;
};

} // namespace

TEST(DependentArray, RandomChangesGiveWhatAVectorGives) {
    constexpr int kNumbers = 24; // few, so that many entries are equal
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        auto const any = [&](int count) { return int(random() % unsigned(count)); };
        Twins twins;
        for (int step = 0; step < 800; ++step) {
            // Back and forth over the border: it fills up to 60 entries and is emptied to none.
            bool const fills = step / 100 % 2 == 0;
            int const change = any(10);
            if (change == 0)
                twins.ReplaceFirst(any(kNumbers), any(kNumbers));
            else if (change == 1 && twins.Count() > 0)
                twins.ReplaceAt(any(twins.Count()), any(kNumbers));
            else if (change == 2)
                twins.Array().Entries();
            else if (fills != (change == 3))
                twins.Add(any(kNumbers));
            else if (change % 2)
                twins.RemoveFirst(any(kNumbers));
            else if (twins.Count() > 0)
                twins.RemoveAt(any(twins.Count()));
            ASSERT_NO_FATAL_FAILURE(twins.ExpectAlike(kNumbers)) << "step " << step;
        }
    }
}

TEST(DependentArray, EveryCountAroundTheBorderIsSearchedAndEmptiedFromEitherEnd) {
    for (int count = 0; count <= 2 * kPlainUpTo + 4; ++count)
        for (bool const fromTheFront : {true, false}) {
            SCOPED_TRACE(std::to_string(count) + (fromTheFront ? ", first" : ", last"));
            Twins twins;
            for (int number = 0; number < count; ++number) twins.Add(number);
            ASSERT_NO_FATAL_FAILURE(twins.ExpectAlike(count + 1));
            for (int number = 0; number < count; ++number) {
                twins.RemoveFirst(fromTheFront ? number : count - 1 - number);
                ASSERT_NO_FATAL_FAILURE(twins.ExpectAlike(count + 1)) << number;
            }
        }
}

TEST(DependentArray, OfEqualEntriesTheFirstIsFoundHoweverLateItCame) {
    for (int count : {4, kPlainUpTo, kPlainUpTo + 1, 40}) {
        SCOPED_TRACE(count);
        Twins twins;
        for (int i = 0; i < count; ++i) twins.Add(i < 2 ? i : 5);
        twins.ReplaceFirst(1, 5); // it stands before all its equals now
        ASSERT_NO_FATAL_FAILURE(twins.ExpectAlike(6));
        twins.RemoveFirst(5);
        twins.RemoveFirst(5);
        ASSERT_NO_FATAL_FAILURE(twins.ExpectAlike(6));
        twins.Add(1);
        ASSERT_NO_FATAL_FAILURE(twins.ExpectAlike(6));
    }
}

TEST(DependentArray, ReplacingOneEntryAgainAndAgainKeepsTheOthersInReach) {
    Twins twins;
    for (int i = 0; i < 20; ++i) twins.Add(i);
    for (int i = 0; i < 500; ++i) {
        twins.ReplaceFirst(i % 2 ? 21 : 3, i % 2 ? 3 : 21);
        ASSERT_NO_FATAL_FAILURE(twins.ExpectAlike(22)) << i;
    }
}

TEST(DependentArray, ItsEntriesStandWithoutGaps) {
    Twins twins;
    for (int i = 0; i < 40; ++i) twins.Add(i);
    for (int i = 0; i < 40; i += 2) twins.RemoveFirst(i);
    CCRef * const * const entries = twins.Array().Entries();
    for (int i = 0; i < 20; ++i) {
        std::unique_ptr<CCRef> const odd(NewRef(2 * i + 1));
        EXPECT_TRUE(entries[i]->IsEqual(odd.get())) << i;
        EXPECT_EQ(twins.Array().Find(odd.get()), i);
    }
}

TEST(DependentArray, ReportsACapacityThatGrowsByTensAndFallsOnlyWhenItIsCleared) {
    Twins twins;
    EXPECT_EQ(twins.Array().Capacity(), 0);
    for (int i = 0; i < 25; ++i) {
        twins.Add(i);
        EXPECT_EQ(twins.Array().Capacity(), i < 10 ? 10 : i < 20 ? 20 : 30) << i;
    }
    for (int i = 0; i < 25; ++i) twins.RemoveFirst(i);
    EXPECT_EQ(twins.Array().Capacity(), 30);
    twins.Array().Grow(7);
    EXPECT_EQ(twins.Array().Capacity(), 37);
    twins.Clear();
    EXPECT_EQ(twins.Array().Capacity(), 0);
}

TEST(DependentArray, FindsNothingForNoReferenceAndInNoEntries) {
    DependentArray array;
    CCRCRef const a1(0, 0);
    EXPECT_EQ(array.Find(nullptr), -1);
    EXPECT_EQ(array.Find(&a1), -1);
    EXPECT_EQ(array.Count(), 0);
    for (int i = 0; i < 20; ++i) array.Add(new CCRCRef(uchar(i), 0));
    EXPECT_EQ(array.Find(nullptr), -1);
    EXPECT_EQ(array.Find(&a1), 0);
}
