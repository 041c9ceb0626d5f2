// Exact lookups through the index of keys give what looking at one cell after the other gives.
#include "host/Sheet.h"
#include "host/internal/sheets/Grid.h"
#include "host/internal/sheets/SheetManager.h"

#include <gtest/gtest.h>
#include <random>

using cells::host::Area;
using cells::host::Kind;
using cells::host::Place;
using cells::host::Sheet;
using cells::host::Value;

namespace {

constexpr int kTableRows = 40;

bool AreSame(Value const & a, Value const & b) {
    if (a.kind != b.kind) return false;
    if (a.kind == Kind::kNumber) return a.number == b.number;
    return a.kind != Kind::kText || a.text == b.text;
}

// The first place of an area with the key, row by row; -1 for none.
int PositionIn(Sheet const & sheet, Area const & area, Value const & key) {
    int position = 0;
    for (int row = area.first.row; row <= area.last.row; ++row)
        for (int column = area.first.column; column <= area.last.column; ++column, ++position)
            if (AreSame(sheet.Get({column, row}), key)) return position;
    return -1;
}

// Entries of every kind, few enough that keys repeat and are missed too.
std::string RandomEntry(std::mt19937 & random) {
    switch (random() % 9) {
    case 0:
        return "";
    case 1:
        return std::string(1, char('a' + random() % 4));
    case 2:
        return std::string(1, char('A' + random() % 4));
    case 3:
        return "=1/0";
    case 4:
        return "=" + std::to_string(random() % 5) + "+0";
    case 5:
        return random() % 2 ? "TRUE" : "=\"b\"";
    case 6:
        return random() % 2 ? "0.1" : "=0.3-0.2";
    default:
        return std::to_string(random() % 6);
    }
}

// Table in A1:C40, keys in E1:E12, and lookups beside them: over the whole first column, over a
// part of it, over two columns at once.
class LookupSheet {
public:
    LookupSheet() {
        for (int row = 0; row < kKeys; ++row) {
            std::string const key = "E" + std::to_string(row + 1);
            sheet.Enter({5, row}, "=VLOOKUP(" + key + ",A1:C40,3)");
            sheet.Enter({6, row}, "=LOOKUPEX(" + key + ",A5:A30,B5:B30)");
            sheet.Enter({7, row}, "=FINDEX(" + key + ",A1:B40,C1:C40)");
        }
    }

    void ExpectLookupsAreRight() const {
        for (int row = 0; row < kKeys; ++row) {
            Value const key = sheet.Get({4, row});
            ExpectCell({5, row}, ResultOf({{0, 0}, {0, 39}}, key, 2));
            ExpectCell({6, row}, ResultOf({{0, 4}, {0, 29}}, key, 1));
            Value position;
            position.kind = Kind::kNumber;
            if (int const first = PositionIn(sheet, {{0, 0}, {1, 39}}, key); first >= 0)
                position.number = first + 1;
            else if (int const then = PositionIn(sheet, {{2, 0}, {2, 39}}, key); then >= 0)
                position.number = 80 + then + 1;
            else
                position = ErrorValue();
            ExpectCell({7, row}, position);
        }
    }

    static constexpr int kKeys = 12;
    Sheet sheet{"C"};

private:
    static Value ErrorValue() {
        Value value;
        value.kind = Kind::kError;
        value.error = 3;
        return value;
    }

    Value ResultOf(Area const & keys, Value const & key, int column) const {
        int const position = PositionIn(sheet, keys, key);
        return position < 0 ? ErrorValue() : sheet.Get({column, keys.first.row + position});
    }

    void ExpectCell(Place place, Value const & expected) const {
        Value const shown = sheet.Get(place);
        EXPECT_EQ(shown.kind, expected.kind) << cells::host::NameOf(place);
        EXPECT_EQ(shown.number, expected.number) << cells::host::NameOf(place);
        EXPECT_EQ(shown.text, expected.text) << cells::host::NameOf(place);
        EXPECT_EQ(shown.error, expected.error) << cells::host::NameOf(place);
    }
};

std::vector<int> PositionsOf(cells::host::Grid & grid, Area const & area,
                             std::initializer_list<double> keys) {
    std::vector<int> found;
    for (double number : keys) {
        CCCellValue key;
        key.Set(number);
        int position = -2;
        while (!grid.FindKey(area, key, position)) {
        }
        found.push_back(position);
    }
    return found;
}

} // namespace

TEST(KeyIndex, RandomTablesAndEditsGiveWhatALinearSearchGives) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        std::mt19937 random(seed);
        LookupSheet lookups;
        for (int edit = 0; edit < 300; ++edit) {
            bool const isKey = random() % 4 == 0;
            int const row = int(random() % (isKey ? LookupSheet::kKeys : kTableRows));
            lookups.sheet.Enter({isKey ? 4 : int(random() % 3), row}, RandomEntry(random));
            if (random() % 3 == 0) continue; // several changes between two searches
            lookups.sheet.Recalculate();
            lookups.ExpectLookupsAreRight();
            if (testing::Test::HasFailure()) FAIL() << "seed " << seed << ", edit " << edit;
        }
    }
}

TEST(KeyIndex, MoreChangesThanItTakesInBetweenSearchesDropIt) {
    LookupSheet lookups;
    std::mt19937 random(5);
    for (int round = 0; round < 4; ++round) {
        for (int i = 0; i < 200; ++i)
            lookups.sheet.Enter({int(random() % 3), int(random() % kTableRows)},
                                RandomEntry(random));
        lookups.sheet.Enter("E1", "a");
        lookups.sheet.Recalculate();
        lookups.ExpectLookupsAreRight();
    }
}

TEST(KeyIndex, TheFirstSearchWalksAndTheSecondIsServed) {
    cells::host::Grid grid;
    for (int row = 0; row < 100; ++row) grid.PutNumber({0, row}, row % 50, 0);
    CCCellValue key;
    key.Set(7.0);
    int position;
    EXPECT_FALSE(grid.FindKey({{0, 0}, {0, 99}}, key, position));
    EXPECT_TRUE(grid.FindKey({{0, 0}, {0, 99}}, key, position));
    EXPECT_EQ(position, 7);
}

TEST(KeyIndex, AShortAreaIsNotServed) {
    cells::host::Grid grid;
    CCCellValue key;
    key.Set(7.0);
    int position;
    EXPECT_FALSE(grid.FindKey({{0, 0}, {200, 10}}, key, position));
    EXPECT_FALSE(grid.FindKey({{0, 0}, {200, 10}}, key, position));
}

TEST(KeyIndex, BlanksAndErrorsAreNotServed) {
    cells::host::Grid grid;
    int position;
    CCCellValue key;
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(grid.FindKey({{0, 0}, {0, 99}}, key, position));
    key.Set(errDiv0);
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(grid.FindKey({{0, 0}, {0, 99}}, key, position));
}

TEST(KeyIndex, BothZerosAreOneNumberAndNoNumberIsNotANumber) {
    cells::host::Grid grid;
    grid.PutNumber({0, 3}, -0.0, 0);
    grid.PutNumber({0, 4}, std::nan(""), 0);
    EXPECT_EQ(PositionsOf(grid, {{0, 0}, {0, 99}}, {0.0, -0.0, std::nan("")}),
              (std::vector<int>{3, 3, -1}));
}

TEST(KeyIndex, CountsPositionsRowByRow) {
    cells::host::Grid grid;
    grid.PutNumber({2, 5}, 1, 0);
    grid.PutNumber({1, 6}, 1, 0);
    grid.PutNumber({1, 7}, 2, 0);
    grid.PutNumber({2, 7}, 2, 0);
    EXPECT_EQ(PositionsOf(grid, {{1, 5}, {3, 99}}, {1, 2, 3}), (std::vector<int>{1, 6, -1}));
}

TEST(KeyIndex, FollowsNumbersThatComeChangeAndGo) {
    cells::host::Grid grid;
    Area const area{{0, 0}, {0, 999}};
    for (int row = 0; row < 500; ++row) grid.PutNumber({0, row}, 1, 0);
    EXPECT_EQ(PositionsOf(grid, area, {1, 2}), (std::vector<int>{0, -1}));
    grid.PutNumber({0, 0}, 2, 0);
    grid.PutNumber({0, 900}, 3, 0); // below all others
    EXPECT_EQ(PositionsOf(grid, area, {1, 2, 3}), (std::vector<int>{1, 0, 900}));
    grid.RemoveNumber({0, 1});
    grid.PutNumber({0, 400}, 3, 0);
    EXPECT_EQ(PositionsOf(grid, area, {1, 2, 3}), (std::vector<int>{2, 0, 400}));
}

TEST(KeyIndex, HearsOfValuesThatAreStoredInCellsWithoutAnEdit) {
    Sheet sheet("C");
    auto & manager = static_cast<cells::host::SheetManager &>(sheet.Manager());
    Area const area{{0, 0}, {0, 99}};
    auto & cell = manager.MakeCell({0, 4});
    EXPECT_EQ(PositionsOf(manager.Cells(), area, {5}), std::vector<int>{-1});
    CCNumberFormat format;
    cell.SetPlainNumber(5, format);
    EXPECT_EQ(PositionsOf(manager.Cells(), area, {5}), std::vector<int>{4});
    cell.Clear(&manager, kClearAll);
    EXPECT_EQ(PositionsOf(manager.Cells(), area, {5}), std::vector<int>{-1});
}

TEST(KeyIndex, AColumnOfOneValueIsFoundFromAnyRow) {
    cells::host::Grid grid;
    for (int row = 0; row < 65536; ++row) grid.PutNumber({0, row}, 1, 0);
    EXPECT_EQ(PositionsOf(grid, {{0, 65000}, {0, 65535}}, {1, 2}), (std::vector<int>{0, -1}));
}
