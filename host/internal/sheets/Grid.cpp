#include "host/internal/sheets/Grid.h"

#include "cells/Guards.h"
#include "formula/CCFormula.h"
#include "host/internal/sheets/SheetManager.h"
#include "values/ValueCompare.h"

#include <utility>
#include <vector>

namespace cells::host {

Grid::Page & Grid::MakePage(Place place) {
    auto & column = m_Columns[std::size_t(place.column)];
    if (!column) column = std::make_unique<Column>();
    auto & group = (*column)[GroupOf(place.row)];
    if (!group) group = std::make_unique<Group>();
    auto & page = (*group)[PageOf(place.row)];
    if (!page) page = std::make_unique<Page>();
    return *page;
}

GridCell & Grid::MakeCell(Place place) {
    Page & page = MakePage(place);
    if (!page.cells) page.cells = std::make_unique<Cells>();
    std::unique_ptr<GridCell> & cell = (*page.cells)[Slot(place)];
    if (cell) return *cell;
    cell = std::make_unique<GridCell>(place);
    std::uint64_t const bit = std::uint64_t(1) << Slot(place);
    if (page.numberMask & bit) {
        CCNumberFormat format;
        format.UnpackPlain(page.numbers->formats[Slot(place)]);
        cell->SetPlainNumber(page.numbers->values[Slot(place)], format);
        page.numberMask &= ~bit;
    }
    page.cellMask |= bit;
    cell->Join(*this);
    return *cell;
}

void Grid::PutNumber(Place place, double number, std::uint32_t format) {
    Page & page = MakePage(place);
    if (!page.numbers) page.numbers = std::make_unique<Numbers>();
    page.numbers->values[Slot(place)] = number;
    page.numbers->formats[Slot(place)] = format;
    page.numberMask |= std::uint64_t(1) << Slot(place);
    NoteChange(place);
}

void Grid::RemoveNumber(Place place) {
    if (!FindPage(place)) return;
    MakePage(place).numberMask &= ~(std::uint64_t(1) << Slot(place));
    NoteChange(place);
}

std::unique_ptr<GridCell> Grid::TakeCell(Place place) {
    if (!FindCell(place)) return nullptr;
    Page & page = MakePage(place);
    page.cellMask &= ~(std::uint64_t(1) << Slot(place));
    NoteChange(place);
    return std::move((*page.cells)[Slot(place)]);
}

void Grid::PutCell(Place place, std::unique_ptr<GridCell> cell) {
    Page & page = MakePage(place);
    if (!page.cells) page.cells = std::make_unique<Cells>();
    cell->SetPlace(place);
    cell->Join(*this);
    (*page.cells)[Slot(place)] = std::move(cell);
    page.cellMask |= std::uint64_t(1) << Slot(place);
    NoteChange(place);
}

CellView::CellView(Grid const & grid, Place place) : m_Cell(grid.FindCell(place)) {
    double number;
    std::uint32_t packed;
    if (m_Cell || !grid.FindNumber(place, number, packed)) return;
    CCNumberFormat format;
    format.UnpackPlain(packed);
    m_Number.emplace(place).SetPlainNumber(number, format);
    m_Cell = &*m_Number;
}

// A formula that turns from one place to another leaves the dependents of the first, although
// another part of it may read that place, too: then it registers anew.
template <typename Work>
void GridCell::ComputeAndFollow(CTX * ctx, Work && compute) {
    unsigned const before = SheetManager::Departures();
    compute();
    CCFormula const * const tree =
        SheetManager::Departures() != before && IsValidFormula() ? LoadFormula(ctx) : nullptr;
    if (!tree || !HasPart(*tree, kRefOpFormula)) return;
    internal::DirtyMarkGuard const silent(ctx->manager());
    RegisterFormula(ctx);
}

void GridCell::Recalc(CTX * ctx) {
    if (CCFormula * tree = LoadFormula(ctx)) tree->ForgetChoices();
    ComputeAndFollow(ctx, [&] { CCCell::Recalc(ctx); });
}

int GridCell::SetFormula(CTX * ctx, CCFormula const * formula, int quiet) {
    int done = 0;
    ComputeAndFollow(ctx, [&] { done = CCCell::SetFormula(ctx, formula, quiet); });
    return done;
}

void GridCell::Empty(CTX * ctx) {
    RemoveFormula(ctx);
    CCCell::SetValue(CCCellValue());
    putCFmt(CCCellFormat());
}

void Grid::Read(Place place, CCCellValue & value) const {
    double number;
    std::uint32_t packed;
    if (FindNumber(place, number, packed)) {
        value.Set(number);
        value.GetFormat().UnpackPlain(packed);
    } else if (GridCell const * cell = FindCell(place)) {
        value.Set(cell->CCCell::GetValue());
    } else {
        value.Set();
    }
}

// Keys

bool Grid::Holds(Place place, CCCellValue const & key) const {
    double number;
    std::uint32_t format;
    if (FindNumber(place, number, format)) return key.IsNumber() && key.GetNumber() == number;
    GridCell const * const cell = FindCell(place);
    return cell && AreSameKeys(cell->CCCell::GetValue(), key);
}

void GridCell::OnValueStored() {
    if (!m_pGrid) return;
    m_pGrid->NoteChange(At());
    if (CCCell::GetValue().IsError() && CCCell::GetValue().GetError() == errCirc)
        m_pGrid->NoteCircle(At());
}

std::vector<GridCell *> Grid::CircularCells() {
    std::vector<GridCell *> cells;
    std::erase_if(m_Circles, [&](Place place) {
        GridCell * const cell = FindCell(place);
        bool const isCircular = cell && cell->IsFormulaLink() && !cell->IsValidFormula();
        if (isCircular) cells.push_back(cell);
        return !isCircular;
    });
    return cells;
}

void Grid::NoteChange(Place place) {
    ColumnKeys & keys = m_Keys[std::size_t(place.column)];
    if (keys.index && !keys.index->NoteChange(place.row)) keys = {};
}

bool Grid::FindKey(Area const & area, CCCellValue const & key, int & position) {
    constexpr int kFewRows = 16;
    if (area.last.row - area.first.row < kFewRows || !KeyIndex::IsKey(key)) return false;
    bool served = true;
    for (int column = area.first.column; column <= area.last.column; ++column)
        served = std::exchange(m_Keys[std::size_t(column)].searched, true) && served;
    if (!served) return false;
    position = -1;
    int const width = area.last.column - area.first.column + 1;
    int lastRow = area.last.row; // only a row above the best one can take over
    for (int column = area.first.column; column <= area.last.column; ++column) {
        if (!m_Columns[std::size_t(column)]) continue;
        std::unique_ptr<KeyIndex> & index = m_Keys[std::size_t(column)].index;
        if (!index) index = std::make_unique<KeyIndex>(*this, column);
        int const row = index->Find(key, area.first.row, lastRow);
        if (row < 0) continue;
        position = (row - area.first.row) * width + column - area.first.column;
        lastRow = row - 1;
    }
    return true;
}

bool Grid::NumberAt(Page const & page, std::size_t slot, double & number) {
    if (page.numberMask >> slot & 1) {
        number = page.numbers->values[slot];
        return true;
    }
    GridCell const * const cell = page.cells ? (*page.cells)[slot].get() : nullptr;
    if (!cell || !cell->IsValueNumber()) return false;
    number = cell->CCCell::GetValue().GetNumber();
    return true;
}

void Grid::ReadPage(Page const & page, std::uint64_t rows, NumberSink & sink) {
    std::uint64_t const occupied = (page.numberMask | page.cellMask) & rows;
    if (!occupied) return;
    int const first = std::countr_zero(occupied);
    std::uint64_t const run = occupied >> first;
    bool const gapless = (run & (run + 1)) == 0;
    if (gapless && !(page.cellMask & rows)) {
        sink.Take(page.numbers->values + first, std::size_t(std::popcount(occupied)));
        return;
    }
    double numbers[kPageRows];
    std::size_t count = 0;
    for (std::uint64_t left = occupied; left; left &= left - 1)
        if (NumberAt(page, std::size_t(std::countr_zero(left)), numbers[count])) ++count;
    sink.Take(numbers, count);
}

std::optional<Place> Grid::FindNumberIn(Area const & area, double number) const {
    std::optional<Place> found;
    ForEachBand(area, [&](int pageRow) {
        if (found) return;
        std::uint64_t const rows = RowsIn(area, pageRow);
        for (int column = area.first.column; column <= area.last.column; ++column) {
            Page const * const page = FindPage(column, pageRow);
            if (!page) continue;
            // Only a place before the best one of this band can take over.
            for (std::uint64_t left = (page->numberMask | page->cellMask) & rows; left;
                 left &= left - 1) {
                int const slot = std::countr_zero(left);
                if (found && pageRow + slot >= found->row) break;
                double value;
                if (!NumberAt(*page, std::size_t(slot), value) || value != number) continue;
                found = Place{column, pageRow + slot};
                break;
            }
        }
    });
    return found;
}

std::size_t Grid::CountValues(Area const & area) const {
    std::size_t count = 0;
    ForEachBand(area, [&](int pageRow) {
        std::uint64_t const rows = RowsIn(area, pageRow);
        for (int column = area.first.column; column <= area.last.column; ++column) {
            Page const * const page = FindPage(column, pageRow);
            if (!page) continue;
            count += std::size_t(std::popcount(page->numberMask & rows));
            for (std::uint64_t left = page->cellMask & rows; left; left &= left - 1)
                count += !(*page->cells)[std::size_t(std::countr_zero(left))]->IsValueEmpty();
        }
    });
    return count;
}

void Grid::ReadColumn(Area const & area, NumberSink & sink) const {
    ForEachBand(area, [&](int pageRow) {
        ReadPage(*FindPage(area.first.column, pageRow), RowsIn(area, pageRow), sink);
    });
}

void Grid::ReadNumbers(Area const & area, NumberSink & sink) const {
    if (area.first.column == area.last.column) return ReadColumn(area, sink);
    std::size_t const width = std::size_t(area.last.column - area.first.column + 1);
    std::vector<Page const *> pages(width);
    std::vector<double> numbers(width * kPageRows);
    ForEachBand(area, [&](int pageRow) {
        std::uint64_t plain = ~std::uint64_t(0);
        for (std::size_t i = 0; i < width; ++i) {
            pages[i] = FindPage(area.first.column + int(i), pageRow);
            plain &= pages[i] ? pages[i]->numberMask : 0;
        }
        std::size_t count = 0;
        for (std::uint64_t left = RowsIn(area, pageRow); left; left &= left - 1) {
            std::size_t const slot = std::size_t(std::countr_zero(left));
            if (plain >> slot & 1) {
                for (Page const * page : pages) numbers[count++] = page->numbers->values[slot];
            } else {
                for (Page const * page : pages)
                    if (page && NumberAt(*page, slot, numbers[count])) ++count;
            }
        }
        sink.Take(numbers.data(), count);
    });
}

} // namespace cells::host
