// Where places go, against sheets that are taken apart and put together again.
#include "host/internal/sheets/PlaceMap.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <numeric>
#include <vector>

using cells::host::Area;
using cells::host::kColumns;
using cells::host::kRows;
using cells::host::Lines;
using cells::host::NameOf;
using cells::host::Place;
using cells::host::PlaceMap;

namespace {

// The lines of a sheet before and after some came or went. Lines that are pushed off the grid are
// kept after its end.
class LineModel {
public:
    LineModel(Lines lines, bool inserted, int at, int count)
        : m_Lines(lines), m_Limit(lines == Lines::kRow ? kRows : kColumns) {
        std::vector<int> sheet(std::size_t(m_Limit), 0); // which line stands there
        std::iota(sheet.begin(), sheet.end(), 0);
        if (inserted)
            sheet.insert(sheet.begin() + at, std::size_t(count), kNew);
        else
            sheet.erase(sheet.begin() + at, sheet.begin() + at + count);
        m_After.assign(std::size_t(m_Limit), kGone);
        for (std::size_t i = 0; i < sheet.size(); ++i)
            if (sheet[i] != kNew) m_After[std::size_t(sheet[i])] = int(i);
        while (m_FirstChanged < m_Limit && m_After[std::size_t(m_FirstChanged)] == m_FirstChanged)
            ++m_FirstChanged;
    }

    int Limit() const { return m_Limit; }
    // The first line where another one stands now; from there on none stays.
    int FirstChanged() const { return m_FirstChanged; }

    Place At(int line, int across) const {
        return m_Lines == Lines::kRow ? Place{across, line} : Place{line, across};
    }

    std::optional<Place> Where(int line, int across) const {
        int const now = m_After[std::size_t(line)];
        if (now == kGone || now >= m_Limit) return std::nullopt;
        return At(now, across);
    }

    // From the first to the last line of the area that is left, as far as the grid goes.
    std::optional<Area> Where(int first, int last, int across) const {
        while (first <= last && m_After[std::size_t(first)] == kGone) ++first;
        while (last >= first && m_After[std::size_t(last)] == kGone) --last;
        if (first > last || m_After[std::size_t(first)] >= m_Limit) return std::nullopt;
        return Area{
            At(m_After[std::size_t(first)], across),
            At(std::min(m_After[std::size_t(last)], m_Limit - 1), across + kWidthOfAreas - 1)};
    }

    static constexpr int kWidthOfAreas = 3;

private:
    static constexpr int kNew = -1, kGone = -2;

    Lines m_Lines;
    int m_Limit;
    int m_FirstChanged = 0;
    std::vector<int> m_After; // of each line, where it stands
};

// The lines at both ends of the grid.
std::vector<int> LinesToTry(int limit) {
    std::vector<int> lines;
    for (int line = 0; line < 6; ++line) lines.push_back(line);
    for (int line = limit - 4; line < limit; ++line) lines.push_back(line);
    return lines;
}

void ExpectLinesGoWhereTheModelSays(PlaceMap const & map, LineModel const & model) {
    std::vector<int> const lines = LinesToTry(model.Limit());
    for (int first : lines) {
        for (int across : {0, 5}) {
            Place const place = model.At(first, across);
            ASSERT_EQ(map.CellTo(place), model.Where(first, across)) << NameOf(place);
            ASSERT_EQ(map.ReferenceTo(place), model.Where(first, across)) << NameOf(place);
            ASSERT_FALSE(map.Overwrites(place)) << NameOf(place);
        }
        for (int last : lines) {
            if (last < first) continue;
            int const across = 2;
            Area const area{model.At(first, across),
                            model.At(last, across + LineModel::kWidthOfAreas - 1)};
            ASSERT_EQ(map.ReferenceTo(area), model.Where(first, last, across)) << NameOf(area);
            ASSERT_EQ(map.Touches(area), last >= model.FirstChanged()) << NameOf(area);
        }
    }
    int const across = model.At(0, 1).row == 1 ? kRows - 1 : kColumns - 1;
    EXPECT_EQ(map.Changed(),
              (Area{model.At(model.FirstChanged(), 0), model.At(model.Limit() - 1, across)}));
}

// A square of places whose cells can be seen, with an area of it moved.
class MoveModel {
public:
    static constexpr int kSide = 4;

    MoveModel(Place origin, Area const & source, Place to) : m_Origin(origin), m_Source(source) {
        std::map<Place, Place> taken;
        ForEach([&](Place place) { m_Cells[place] = place; });
        ForEachOf(source, [&](Place place) {
            taken[Target(place, to)] = place;
            m_Cells.erase(place);
        });
        for (auto const & [place, cell] : taken) m_Cells[place] = cell;
        for (auto const & [place, cell] : m_Cells) m_After[cell] = place;
    }

    template <typename Visit>
    void ForEach(Visit && visit) const {
        ForEachOf({m_Origin, {m_Origin.column + kSide - 1, m_Origin.row + kSide - 1}}, visit);
    }

    std::optional<Place> Where(Place cell) const {
        auto const found = m_After.find(cell);
        return found == m_After.end() ? std::nullopt : std::optional(found->second);
    }
    bool Overwrites(Place place) const { return !Where(place); }
    bool Changes(Place place) const {
        auto const found = m_Cells.find(place);
        return found == m_Cells.end() || found->second != place;
    }
    // A reference to an overwritten cell reads the one that came.
    Place ReferenceTo(Place place) const { return Where(place).value_or(place); }

    template <typename Test>
    static bool Any(Area const & area, Test && test) {
        bool any = false;
        ForEachOf(area, [&](Place place) { any = any || test(place); });
        return any;
    }

    // An area goes along if all of it does.
    Area ReferenceTo(Area const & area) const {
        bool const stays = Any(area, [&](Place place) { return !m_Source.Contains(place); });
        return stays ? area : Area{*Where(area.first), *Where(area.last)};
    }

    // The smallest area with all changes.
    Area Changed() const {
        Area changed{m_Source.first, m_Source.first};
        ForEach([&](Place place) {
            if (!Changes(place)) return;
            changed.first.column = std::min(changed.first.column, place.column);
            changed.first.row = std::min(changed.first.row, place.row);
            changed.last.column = std::max(changed.last.column, place.column);
            changed.last.row = std::max(changed.last.row, place.row);
        });
        return changed;
    }

private:
    template <typename Visit>
    static void ForEachOf(Area const & area, Visit && visit) {
        for (int row = area.first.row; row <= area.last.row; ++row)
            for (int column = area.first.column; column <= area.last.column; ++column)
                visit(Place{column, row});
    }

    Place Target(Place place, Place to) const {
        return {place.column - m_Source.first.column + to.column,
                place.row - m_Source.first.row + to.row};
    }

    Place m_Origin;
    Area m_Source;
    std::map<Place, Place> m_Cells; // what stands at a place: the cell that stood there once
    std::map<Place, Place> m_After; // the same the other way round
};

std::vector<Area> AreasOfASquare(Place origin) {
    std::vector<Area> areas;
    int const side = MoveModel::kSide;
    for (int top = 0; top < side; ++top)
        for (int left = 0; left < side; ++left)
            for (int bottom = top; bottom < side; ++bottom)
                for (int right = left; right < side; ++right)
                    areas.push_back({{origin.column + left, origin.row + top},
                                     {origin.column + right, origin.row + bottom}});
    return areas;
}

void ExpectCellsGoWhereTheModelSays(PlaceMap const & map, MoveModel const & model,
                                    std::vector<Area> const & areas) {
    model.ForEach([&](Place place) {
        ASSERT_EQ(map.CellTo(place), model.Where(place)) << NameOf(place);
        ASSERT_EQ(map.ReferenceTo(place), model.ReferenceTo(place)) << NameOf(place);
        ASSERT_EQ(map.Overwrites(place), model.Overwrites(place)) << NameOf(place);
    });
    for (Area const & area : areas) {
        ASSERT_EQ(map.ReferenceTo(area), model.ReferenceTo(area)) << NameOf(area);
        bool const touches = model.Any(area, [&](Place place) { return model.Changes(place); });
        ASSERT_EQ(map.Touches(area), touches) << NameOf(area);
    }
    ASSERT_EQ(map.Changed(), model.Changed());
}

class LinesOf : public testing::TestWithParam<Lines> {};

} // namespace

TEST_P(LinesOf, InsertedPushTheOthersOn) {
    int const limit = GetParam() == Lines::kRow ? kRows : kColumns;
    for (int at : LinesToTry(limit))
        for (int count = 1; count <= std::min(3, limit - at); ++count) {
            SCOPED_TRACE(std::to_string(count) + " at " + std::to_string(at));
            ASSERT_NO_FATAL_FAILURE(ExpectLinesGoWhereTheModelSays(
                PlaceMap::Inserted(GetParam(), at, count), LineModel(GetParam(), true, at, count)));
        }
}

TEST_P(LinesOf, DeletedLetTheOthersCloseUp) {
    int const limit = GetParam() == Lines::kRow ? kRows : kColumns;
    for (int at : LinesToTry(limit))
        for (int count = 1; count <= std::min(4, limit - at); ++count) {
            SCOPED_TRACE(std::to_string(count) + " at " + std::to_string(at));
            ASSERT_NO_FATAL_FAILURE(ExpectLinesGoWhereTheModelSays(
                PlaceMap::Deleted(GetParam(), at, count), LineModel(GetParam(), false, at, count)));
        }
}

TEST_P(LinesOf, AllDeletedLeaveNothing) {
    int const limit = GetParam() == Lines::kRow ? kRows : kColumns;
    ASSERT_NO_FATAL_FAILURE(ExpectLinesGoWhereTheModelSays(PlaceMap::Deleted(GetParam(), 0, limit),
                                                           LineModel(GetParam(), false, 0, limit)));
}

INSTANTIATE_TEST_SUITE_P(OneKind, LinesOf, testing::Values(Lines::kRow, Lines::kColumn),
                         [](testing::TestParamInfo<Lines> const & lines) {
                             return lines.param == Lines::kRow ? "Rows" : "Columns";
                         });

TEST(MovedAreas, OverwriteAndTakeTheirReadersAlong) {
    int const side = MoveModel::kSide;
    for (Place const origin : {Place{0, 0}, Place{kColumns - side, kRows - side}}) {
        std::vector<Area> const areas = AreasOfASquare(origin);
        for (Area const & source : areas)
            for (Area const & target : areas) {
                bool const fits =
                    target.last.column - target.first.column ==
                        source.last.column - source.first.column &&
                    target.last.row - target.first.row == source.last.row - source.first.row;
                if (!fits || target == source) continue;
                SCOPED_TRACE(NameOf(source) + " to " + NameOf(target));
                ASSERT_NO_FATAL_FAILURE(
                    ExpectCellsGoWhereTheModelSays(PlaceMap::Moved(source, target.first),
                                                   MoveModel(origin, source, target.first), areas));
            }
    }
}

TEST(MovedAreas, LeaveFormulasOverTheWholeSheetAlone) {
    PlaceMap const map = PlaceMap::Moved({{1, 1}, {2, 2}}, {4, 4});
    EXPECT_EQ(map.ReferenceTo(cells::host::kWholeGrid), cells::host::kWholeGrid);
    EXPECT_TRUE(map.Touches(cells::host::kWholeGrid));
    EXPECT_EQ(map.Changed(), (Area{{1, 1}, {5, 5}}));
}

TEST(InsertedAndDeletedLines, TakeEachOtherBack) {
    for (Lines const lines : {Lines::kRow, Lines::kColumn})
        for (int at = 0; at < 5; ++at)
            for (int count = 1; count <= 3; ++count) {
                PlaceMap const there = PlaceMap::Inserted(lines, at, count),
                               back = PlaceMap::Deleted(lines, at, count);
                for (Area const & area : AreasOfASquare({0, 0})) {
                    EXPECT_EQ(back.ReferenceTo(*there.ReferenceTo(area)), area) << NameOf(area);
                    EXPECT_EQ(back.CellTo(*there.CellTo(area.last)), area.last);
                }
            }
}
