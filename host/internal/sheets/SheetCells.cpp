// cells::host::Sheet: cells that move, and copies of them.
#include "formula/Clipboard.h"
#include "host/Sheet.h"
#include "host/internal/sheets/CellState.h"
#include "host/internal/sheets/History.h"
#include "host/internal/sheets/PlaceMap.h"
#include "host/internal/sheets/PlaceRefs.h"
#include "host/internal/sheets/Rearrange.h"
#include "host/internal/sheets/SheetManager.h"
#include "platform/Resources.h"

#include <algorithm>
#include <stdexcept>

namespace cells::host {
namespace {

// The lines from `at` on.
Area LinesFrom(Lines lines, int at) {
    return lines == Lines::kRow ? Area{{0, at}, kWholeGrid.last} : Area{{at, 0}, kWholeGrid.last};
}

void RequireLines(Lines lines, int at, int count) {
    int const limit = lines == Lines::kRow ? kRows : kColumns;
    if (at < 0 || at >= limit || count < 0 || count > limit - at)
        throw std::out_of_range("rows or columns off the grid");
}

// The area of a size with its first corner at a place.
Area AreaAt(Place to, int width, int height) {
    Area const area{to, {to.column + width - 1, to.row + height - 1}};
    if (!IsOnGrid(to) || !IsOnGrid(area.last)) throw std::out_of_range("an area off the grid");
    return area;
}

bool IsOccupied(Sheet const & sheet, Area const & area) {
    bool occupied = false;
    sheet.ForEachOccupied([&](Place place) { occupied = occupied || area.Contains(place); });
    return occupied;
}

} // namespace

bool Sheet::ChangeLines(PlaceMap const & map, Area const & changed) {
    if (Refuses(changed)) return false;
    Recording recording(*m_Manager);
    Rearrange(m_Manager->Family(), *m_Manager, map, recording);
    return true;
}

bool Sheet::InsertRows(int at, int count) {
    RequireLines(Lines::kRow, at, count);
    if (IsOccupied(*this, {{0, std::max(at, kRows - count)}, kWholeGrid.last})) return false;
    return ChangeLines(PlaceMap::Inserted(Lines::kRow, at, count), LinesFrom(Lines::kRow, at));
}

bool Sheet::InsertColumns(int at, int count) {
    RequireLines(Lines::kColumn, at, count);
    if (IsOccupied(*this, {{std::max(at, kColumns - count), 0}, kWholeGrid.last})) return false;
    return ChangeLines(PlaceMap::Inserted(Lines::kColumn, at, count),
                       LinesFrom(Lines::kColumn, at));
}

bool Sheet::DeleteRows(int at, int count) {
    RequireLines(Lines::kRow, at, count);
    return ChangeLines(PlaceMap::Deleted(Lines::kRow, at, count), LinesFrom(Lines::kRow, at));
}

bool Sheet::DeleteColumns(int at, int count) {
    RequireLines(Lines::kColumn, at, count);
    return ChangeLines(PlaceMap::Deleted(Lines::kColumn, at, count), LinesFrom(Lines::kColumn, at));
}

bool Sheet::Move(Area const & area, Place to) {
    Require(area.first);
    Require(area.last);
    Area const target =
        AreaAt(to, area.last.column - area.first.column + 1, area.last.row - area.first.row + 1);
    if (Refuses(area) || Refuses(target)) return false;
    Recording recording(*m_Manager);
    Rearrange(m_Manager->Family(), *m_Manager, PlaceMap::Moved(area, to), recording);
    return true;
}

bool Sheet::CopyFrom(Sheet const & source, Area const & area, Place to, bool transpose) {
    Require(area.first);
    Require(area.last);
    int width = area.last.column - area.first.column + 1,
        height = area.last.row - area.first.row + 1;
    if (transpose) std::swap(width, height);
    Area const target = AreaAt(to, width, height);
    if (Refuses(target)) return false;
    if (&source != this && source.m_Manager->Conceals(area)) {
        source.m_Manager->ErrorMessage(kStringHiddenPrecedent);
        return false;
    }
    struct Copied {
        Place from, to;
        std::string state;
    };
    std::vector<Copied> copies;
    source.m_Manager->Cells().ForEach(area, [&](Place place) {
        int const right = place.column - area.first.column, down = place.row - area.first.row;
        Place const now = transpose ? Place{to.column + down, to.row + right}
                                    : Place{to.column + right, to.row + down};
        copies.push_back({place, now, CellStateAt(*source.m_Manager, place)});
    });
    std::vector<Place> changed;
    m_Manager->Cells().ForEach(target, [&](Place place) { changed.push_back(place); });
    Recording recording(*m_Manager);
    for (Place place : changed) recording.Touch(*m_Manager, place);
    for (Copied const & copy : copies) recording.Touch(*m_Manager, copy.to);
    for (Place place : changed) RestoreCellState(*m_Manager, place, {});
    CCClipboardData clip;
    clip.mode = 1;
    clip.source = CRect(area.first.column, area.first.row, area.last.column, area.last.row);
    clip.col = uchar(to.column);
    clip.row = ushort(to.row);
    clip.transpose = transpose;
    clip.updateOnPaste = 1;
    for (Copied const & copy : copies) {
        RestoreCellState(*m_Manager, copy.to, copy.state);
        changed.push_back(copy.to);
    }
    for (Copied const & copy : copies) {
        GridCell * const cell = m_Manager->Cells().FindCell(copy.to);
        if (!cell || !cell->IsFormulaLink()) continue;
        CCRCRef const from = RefOf(copy.from);
        cell->UpdateInPaste(m_Manager.get(), &from, cell->GetRef(), &clip);
        m_Manager->EnterAgain(*cell); // it may name its own cell now
    }
    m_Manager->TellChanged(changed);
    return true;
}

} // namespace cells::host
