// Formats of areas, against a list of all that was ever done to them.
#include "host/internal/sheets/AreaFormats.h"

#include <array>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <vector>

using cells::host::Area;
using cells::host::AreaFormats;
using cells::host::NameOf;
using cells::host::ParseArea;
using cells::host::Place;

namespace {

constexpr int kSide = 5;
constexpr int kDecimals = 0; // the first item of a format; the others are flags
constexpr int kItems = 6;

// A format as its items, each set or not: decimals of a number format, then five flags.
using Items = std::array<std::optional<int>, kItems>;

CCCellFormat FormatOf(Items const & items) {
    CCCellFormat format;
    if (items[kDecimals]) {
        CCNumberFormat number;
        number.Set(C_NF_NUMBER);
        number.SetPrecision(*items[kDecimals]);
        format.SetNumberFormat(number);
    }
    if (items[1]) format.SetLock(*items[1]);
    if (items[2]) format.SetHide(*items[2]);
    if (items[3]) format.SetEditSource(*items[3]);
    if (items[4]) format.SetHideError(*items[4]);
    if (items[5]) format.SetHideZero(*items[5]);
    return format;
}

Items ItemsOf(CCCellFormat const & format) {
    Items items;
    auto const read = [&](int item, unsigned short bit, int value) {
        if (format.GetSetMask() & bit) items[std::size_t(item)] = value;
    };
    read(kDecimals, kCellFormatNumber, format.GetNFmt().GetPrecision());
    read(1, kCellFormatLock, format.IsLocked() != 0);
    read(2, kCellFormatHide, format.IsHidden() != 0);
    read(3, kCellFormatEditSource, format.IsEditSource() != 0);
    read(4, kCellFormatHideError, format.IsErrorHidden() != 0);
    read(5, kCellFormatHideZero, format.IsZeroHidden() != 0);
    return items;
}

// What was done, in order. Nothing is ever left out or joined.
class PlainList {
public:
    void Add(Area const & area, Items const & items) { m_Deeds.push_back({area, items}); }
    void Clear(Area const & area) { m_Deeds.push_back({area, std::nullopt}); }

    Items At(Place place) const {
        Items items;
        for (Deed const & deed : m_Deeds) {
            if (!deed.area.Contains(place)) continue;
            if (!deed.items) items = {};
            for (std::size_t i = 0; deed.items && i < kItems; ++i)
                if ((*deed.items)[i]) items[i] = (*deed.items)[i];
        }
        return items;
    }

private:
    struct Deed {
        Area area;
        std::optional<Items> items; // none: everything was cleared
    };
    std::vector<Deed> m_Deeds;
};

class Random {
public:
    explicit Random(unsigned seed) : m_Random(seed) {}
    int Below(int count) { return int(m_Random() % unsigned(count)); }

    Area AnyArea() {
        int const left = Below(kSide), top = Below(kSide);
        return {{left, top}, {left + Below(kSide - left), top + Below(kSide - top)}};
    }

    Items AnyItems() {
        Items items;
        if (Below(2)) items[kDecimals] = Below(4);
        for (std::size_t flag = 1; flag < kItems; ++flag)
            if (Below(3) == 0) items[flag] = Below(2);
        if (items == Items{}) items[1] = 1; // an edit sets something
        return items;
    }

private:
    std::mt19937 m_Random;
};

void ExpectAlike(AreaFormats const & formats, PlainList const & plain) {
    for (int row = 0; row < kSide; ++row)
        for (int column = 0; column < kSide; ++column) {
            Place const place{column, row};
            Items const expected = plain.At(place);
            ASSERT_EQ(ItemsOf(formats.FormatAt(place)), expected) << NameOf(place);
            ASSERT_EQ(formats.Covers(place), expected != Items{}) << NameOf(place);
            bool const isLocked = expected[1] == 1;
            ASSERT_TRUE(!isLocked || formats.IsLocked({place, place})) << NameOf(place);
        }
}

Items Decimals(int count) { return {count}; }
Items Locked(int on) { return {std::nullopt, on}; }

Area A(char const * text) { return *ParseArea(text); }

struct Step {
    char const * area;
    std::optional<Items> items; // none: the area is cleared
};

AreaFormats After(std::vector<Step> const & steps) {
    AreaFormats formats;
    for (Step const & step : steps) {
        if (step.items)
            formats.Add(A(step.area), FormatOf(*step.items));
        else
            formats.Clear(A(step.area));
    }
    return formats;
}

} // namespace

TEST(AreaFormats, RandomFormatsAndClearingsGiveWhatAPlainListGives) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        AreaFormats formats;
        PlainList plain;
        for (int step = 0; step < 60; ++step) {
            Area const area = random.AnyArea();
            if (random.Below(4) == 0) {
                formats.Clear(area);
                plain.Clear(area);
            } else {
                Items const items = random.AnyItems();
                formats.Add(area, FormatOf(items));
                plain.Add(area, items);
            }
            ASSERT_NO_FATAL_FAILURE(ExpectAlike(formats, plain)) << "step " << step;
            // A document holds the entries as they stand.
            AreaFormats restored;
            restored.Restore(formats.Entries());
            ASSERT_NO_FATAL_FAILURE(ExpectAlike(restored, plain)) << "step " << step;
        }
    }
}

TEST(AreaFormats, KeepNoMoreEntriesThanCount) {
    struct Row {
        char const * what;
        std::vector<Step> steps;
        std::size_t entries;
    };
    Row const rows[] = {
        {"nothing", {}, 0},
        {"the same again", {{"A1:B2", Decimals(1)}, {"A1:B2", Decimals(2)}}, 1},
        {"a larger area over it", {{"B2", Decimals(1)}, {"A1:C3", Decimals(2)}}, 1},
        {"a smaller area over it", {{"A1:C3", Decimals(1)}, {"B2", Decimals(2)}}, 2},
        {"areas that overlap", {{"A1:B2", Decimals(1)}, {"B2:C3", Decimals(2)}}, 2},
        {"another item over it", {{"A1:B2", Decimals(1)}, {"A1:B2", Locked(1)}}, 2},
        {"both items over one", {{"A1:B2", Locked(1)}, {"A1:B2", {Items{1, 0}}}}, 1},
        {"one item over both", {{"A1:B2", {Items{1, 0}}}, {"A1:B2", Locked(1)}}, 2},
        {"a cleared area of its own", {{"A1:B2", Decimals(1)}, {"A1:B2", {}}}, 0},
        {"a larger cleared area", {{"B2", Decimals(1)}, {"C3", Locked(1)}, {"A1:D4", {}}}, 0},
        {"a cleared part", {{"A1:B2", Decimals(1)}, {"A1", {}}}, 2},
        {"a part cleared twice", {{"A1:B2", Decimals(1)}, {"A1", {}}, {"A1", {}}}, 2},
        {"a clearing that meets nothing", {{"A1:B2", Decimals(1)}, {"C3:D4", {}}}, 1},
        {"a cleared part that is formatted",
         {{"A1:B2", Decimals(1)}, {"A1", {}}, {"A1", Decimals(2)}},
         3}, // the cleared part still hides what the area would give
    };
    for (Row const & row : rows) {
        AreaFormats const formats = After(row.steps);
        EXPECT_EQ(formats.Entries().size(), row.entries) << row.what;
        EXPECT_EQ(formats.IsEmpty(), row.entries == 0) << row.what;
    }
}

TEST(AreaFormats, AFormatReachesFromCornerToCornerAndNoFurther) {
    AreaFormats const formats = After({{"B2:C3", Decimals(3)}});
    for (int row = 0; row < kSide; ++row)
        for (int column = 0; column < kSide; ++column) {
            bool const inside = column >= 1 && column <= 2 && row >= 1 && row <= 2;
            EXPECT_EQ(formats.Covers({column, row}), inside) << NameOf(Place{column, row});
        }
}

TEST(AreaFormats, AnAreaIsLockedWhereALockedOneMeetsIt) {
    AreaFormats const formats = After({{"B2:C3", Locked(1)}, {"D4", Locked(0)}});
    for (char const * area : {"B2", "C3:E5", "A1:B2", "A1:E5"})
        EXPECT_TRUE(formats.IsLocked(A(area))) << area;
    for (char const * area : {"A1:A5", "A1:E1", "D1:D5", "D4"})
        EXPECT_FALSE(formats.IsLocked(A(area))) << area;
    EXPECT_FALSE(After({{"B2:C3", Locked(1)}, {"B2:C3", Locked(0)}}).IsLocked(A("B2")));
    EXPECT_FALSE(After({{"B2:C3", Locked(1)}, {"A1:E5", {}}}).IsLocked(A("B2")));
}
