#include "host/internal/sheets/PlaceMap.h"

#include <algorithm>

namespace cells::host {

PlaceMap PlaceMap::Inserted(Lines lines, int at, int count) {
    return {Kind::kInserted, lines, at, count};
}

PlaceMap PlaceMap::Deleted(Lines lines, int at, int count) {
    return {Kind::kDeleted, lines, at, count};
}

PlaceMap PlaceMap::Moved(Area const & area, Place to) {
    PlaceMap map(Kind::kMoved, Lines::kRow, 0, 0);
    map.m_Source = area;
    map.m_Target = {to,
                    {to.column + area.last.column - area.first.column,
                     to.row + area.last.row - area.first.row}};
    return map;
}

std::optional<Place> PlaceMap::CellTo(Place place) const {
    return Overwrites(place) ? std::nullopt : ReferenceTo(place);
}

bool PlaceMap::Touches(Area const & area) const {
    if (m_Kind == Kind::kMoved) return area.Meets(m_Source) || area.Meets(m_Target);
    Place last = area.last;
    return LineOf(last) >= m_At;
}

std::optional<Place> PlaceMap::ReferenceTo(Place place) const {
    if (m_Kind == Kind::kMoved) {
        if (!m_Source.Contains(place)) return place;
        return Place{place.column + m_Target.first.column - m_Source.first.column,
                     place.row + m_Target.first.row - m_Source.first.row};
    }
    int & line = LineOf(place);
    if (line < m_At) return place;
    if (m_Kind == Kind::kDeleted && line < m_At + m_Count) return std::nullopt;
    line += m_Kind == Kind::kInserted ? m_Count : -m_Count;
    if (line > LastLine()) return std::nullopt;
    return place;
}

std::optional<Area> PlaceMap::ReferenceTo(Area const & area) const {
    if (m_Kind == Kind::kMoved) {
        if (!m_Source.Contains(area.first) || !m_Source.Contains(area.last)) return area;
        return Area{*ReferenceTo(area.first), *ReferenceTo(area.last)};
    }
    Area result = area;
    int &first = LineOf(result.first), &last = LineOf(result.last);
    if (m_Kind == Kind::kInserted) {
        if (first >= m_At) first += m_Count;
        if (last >= m_At) last = std::min(last + m_Count, LastLine());
        if (first > LastLine()) return std::nullopt;
        return result;
    }
    int const end = m_At + m_Count;
    if (first >= m_At && last < end) return std::nullopt;
    first = first < m_At ? first : std::max(first - m_Count, m_At);
    last = last < m_At ? last : last < end ? m_At - 1 : last - m_Count;
    return result;
}

Area PlaceMap::Changed() const {
    if (m_Kind == Kind::kMoved)
        return {{std::min(m_Source.first.column, m_Target.first.column),
                 std::min(m_Source.first.row, m_Target.first.row)},
                {std::max(m_Source.last.column, m_Target.last.column),
                 std::max(m_Source.last.row, m_Target.last.row)}};
    Area changed = kWholeGrid;
    LineOf(changed.first) = m_At;
    return changed;
}

} // namespace cells::host
