// Where the places of a sheet go when rows or columns come and go, or an area moves.
#pragma once

#include "host/Place.h"

#include <optional>

namespace cells::host {

enum class Lines { kRow, kColumn };

class PlaceMap {
public:
    // Lines from `at` on make room for so many new ones.
    static PlaceMap Inserted(Lines lines, int at, int count);
    // So many lines from `at` on go, and those behind them close up.
    static PlaceMap Deleted(Lines lines, int at, int count);
    // An area goes to another corner; what stands there is overwritten.
    static PlaceMap Moved(Area const & area, Place to);

    // Where the cell at a place goes; nothing when it goes away.
    std::optional<Place> CellTo(Place place) const;
    // Whether another cell takes the place of the one that stands there.
    bool Overwrites(Place place) const {
        return m_Kind == Kind::kMoved && m_Target.Contains(place) && !m_Source.Contains(place);
    }
    // Whether a place of the area holds another cell afterwards.
    bool Touches(Area const & area) const;
    // What a reference to a cell, or to an area, means afterwards. An area grows and shrinks with
    // the lines inside it; it moves only as a whole. Nothing when all it named is gone.
    std::optional<Place> ReferenceTo(Place place) const;
    std::optional<Area> ReferenceTo(Area const & area) const;
    // The places that change: those outside stay as they are.
    Area Changed() const;

private:
    enum class Kind { kInserted, kDeleted, kMoved };
    PlaceMap(Kind kind, Lines lines, int at, int count)
        : m_Kind(kind), m_Lines(lines), m_At(at), m_Count(count) {}

    int & LineOf(Place & place) const { return m_Lines == Lines::kRow ? place.row : place.column; }
    int LastLine() const { return (m_Lines == Lines::kRow ? kRows : kColumns) - 1; }

    Kind m_Kind;
    Lines m_Lines;
    int m_At, m_Count;
    Area m_Source{}, m_Target{}; // of kMoved
};

} // namespace cells::host
