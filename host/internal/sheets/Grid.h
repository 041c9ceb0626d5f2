// Grid: the sparse store of a sheet.
//
// Columns are cut into pages of 64 rows, and pages come in groups of 32, so that the whole grid
// costs what is occupied. A page keeps plain numbers side by side, so that sums read runs of
// doubles; a place whose number has dependents, a formula or a format of its own is a cell object
// instead. No place is both.
#pragma once

#include "cells/CCCell.h"
#include "formula/CCRCRef.h"
#include "host/Place.h"
#include "host/internal/sheets/KeyIndex.h"
#include "values/BulkRead.h"

#include <array>
#include <bit>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace cells::host {

class Grid;

// A cell of the grid.
class GridCell final : public CCCell {
public:
    explicit GridCell(Place place) : m_Ref(uchar(place.column), ushort(place.row)) {}

    CCRef const * GetRef() const override { return &m_Ref; }
    bool IsEqual(CCItem const * item) const override { return item == this; }
    // What a formula picks is checked anew each time, so that it gives what it would give if it
    // were entered now.
    void Recalc(CTX * ctx) override;
    int SetFormula(CTX * ctx, CCFormula const * formula, int quiet) override;
    // An entry equal to the edit text of a number, an error or a formula leaves it as it is, also
    // where the text alone would read otherwise: a number under a date format, or in hex.
    void SetText(CTX * ctx, wchar_t const * text, int quiet) override;
    bool IsEditText(CTX * ctx, CString const & text);
    void OnValueChanged(CTX * ctx) override;
    void OnValueStored() override;
    // From now on the grid hears of every value that is stored here.
    void Join(Grid & grid) { m_pGrid = &grid; }

    Place At() const { return {m_Ref.col, m_Ref.row}; }
    // Takes everything away but the dependents, and tells nobody.
    void Empty(CTX * ctx);
    // For the grid that moves it. Its formula must be out of the graph.
    void SetPlace(Place place) { m_Ref.Set(uchar(place.column), ushort(place.row)); }
    // Stores a formula without computing it; see CCCell::StoreFormula.
    using CCCell::StoreFormula;
    // Stores a text from a document.
    void RestoreText(CString const & text) {
        CCCellValue value;
        value.Set(text);
        CCCell::SetValue(value);
    }

private:
    template <typename Work>
    void ComputeAndFollow(CTX * ctx, Work && compute);

    CCRCRef m_Ref;
    Grid * m_pGrid = nullptr;
};

class Grid {
public:
    static constexpr int kPageRows = 64, kGroupPages = 32;
    static constexpr int kGroupRows = kPageRows * kGroupPages;

    Grid() = default;
    Grid(Grid const &) = delete;
    Grid & operator=(Grid const &) = delete;

    // The cell object at a place, or null; a plain number is none.
    GridCell * FindCell(Place place) const {
        Page const * const page = FindPage(place);
        return page && page->cells ? (*page->cells)[Slot(place)].get() : nullptr;
    }
    // The plain number at a place with its packed format, or false.
    bool FindNumber(Place place, double & number, std::uint32_t & format) const {
        Page const * const page = FindPage(place);
        if (!page || !(page->numberMask >> Slot(place) & 1)) return false;
        number = page->numbers->values[Slot(place)];
        format = page->numbers->formats[Slot(place)];
        return true;
    }
    // The cell object at a place, made of the plain number there, or empty.
    GridCell & MakeCell(Place place);
    // Stores a plain number where no cell object stands.
    void PutNumber(Place place, double number, std::uint32_t format);
    void RemoveNumber(Place place);
    // Cell objects that go to another place: out of one, into another that is empty.
    std::unique_ptr<GridCell> TakeCell(Place place);
    void PutCell(Place place, std::unique_ptr<GridCell> cell);

    // The value at a place; an empty one where nothing stands.
    void Read(Place place, CCCellValue & value) const;
    // Whether this number or text stands there: the same type and the same content.
    bool Holds(Place place, CCCellValue const & key) const;
    // Told by cells of the grid: of each value, and of the errors of circles among them.
    void NoteChange(Place place);
    void NoteCircle(Place place) { m_Circles.insert(place); }
    // The cells whose formulas were refused as circular. They are out of the graph, and nobody but
    // who changes what their formulas mean can tell them.
    std::vector<GridCell *> CircularCells();

    // The position of the first place of the area, row by row, that holds this number or text; -1
    // for none. False where looking at one place after the other is the better way.
    bool FindKey(Area const & area, CCCellValue const & key, int & position);
    // Gives every number of the area to the sink, row by row.
    void ReadNumbers(Area const & area, NumberSink & sink) const;

    // The first place of the area, row by row, whose number is this one.
    std::optional<Place> FindNumberIn(Area const & area, double number) const;
    // How many places of the area hold a value.
    std::size_t CountValues(Area const & area) const;

    // Calls visit(place) for every place with a number or a cell object, row by row.
    template <typename Visit>
    void ForEach(Area const & area, Visit && visit) const;
    // Calls visit(cell) for every cell object of the area, column by column.
    template <typename Visit>
    void ForEachCell(Area const & area, Visit && visit) const;

private:
    struct Numbers {
        double values[kPageRows];
        std::uint32_t formats[kPageRows];
    };
    using Cells = std::array<std::unique_ptr<GridCell>, kPageRows>;

    struct Page {
        std::uint64_t numberMask = 0, cellMask = 0; // bit n: row n of the page
        std::unique_ptr<Numbers> numbers;
        std::unique_ptr<Cells> cells;
    };
    using Group = std::array<std::unique_ptr<Page>, kGroupPages>;
    using Column = std::array<std::unique_ptr<Group>, kRows / kGroupRows>;

    static std::size_t Slot(Place place) { return std::size_t(place.row % kPageRows); }
    static std::size_t PageOf(int row) { return std::size_t(row / kPageRows % kGroupPages); }
    static std::size_t GroupOf(int row) { return std::size_t(row / kGroupRows); }

    Page const * FindPage(int column, int row) const {
        Column const * const pages = m_Columns[std::size_t(column)].get();
        Group const * const group = pages ? (*pages)[GroupOf(row)].get() : nullptr;
        return group ? (*group)[PageOf(row)].get() : nullptr;
    }
    Page const * FindPage(Place place) const { return FindPage(place.column, place.row); }
    Page & MakePage(Place place);
    bool HasGroup(int column, int row) const {
        Column const * const pages = m_Columns[std::size_t(column)].get();
        return pages && (*pages)[GroupOf(row)];
    }
    // The bits of the rows of a page that lie in the area.
    static std::uint64_t RowsIn(Area const & area, int pageRow) {
        int const first = std::max(area.first.row - pageRow, 0);
        int const last = std::min(area.last.row - pageRow, kPageRows - 1);
        return (~std::uint64_t(0) << first) & (~std::uint64_t(0) >> (kPageRows - 1 - last));
    }
    // Calls visit(row of the page's first row) for every band of pages of the area where at least
    // one of its columns has a page.
    template <typename Visit>
    void ForEachBand(Area const & area, Visit && visit) const;

    void ReadColumn(Area const & area, NumberSink & sink) const;
    static void ReadPage(Page const & page, std::uint64_t rows, NumberSink & sink);
    static bool NumberAt(Page const & page, std::size_t slot, double & number);

    std::array<std::unique_ptr<Column>, kColumns> m_Columns;
    // Of columns that were searched for a key: empty after the first search, made by the second.
    struct ColumnKeys {
        bool searched = false;
        std::unique_ptr<KeyIndex> index;
    };
    std::array<ColumnKeys, kColumns> m_Keys;
    std::set<Place> m_Circles; // where the error of a circle was stored, maybe long ago
};

// What stands at a place as a cell, to be looked at: the cell object there, or one that is made of
// the plain number there and lives as long as this object. The grid stays as it is.
class CellView {
public:
    CellView(Grid const & grid, Place place);
    GridCell * Get() const { return m_Cell; } // null where nothing stands

private:
    std::optional<GridCell> m_Number;
    GridCell * m_Cell;
};

template <typename Visit>
void Grid::ForEachBand(Area const & area, Visit && visit) const {
    for (int row = area.first.row / kPageRows * kPageRows; row <= area.last.row;) {
        bool anyGroup = false, anyPage = false;
        for (int column = area.first.column; column <= area.last.column && !anyPage; ++column) {
            anyGroup = anyGroup || HasGroup(column, row);
            anyPage = FindPage(column, row) != nullptr;
        }
        if (anyPage) visit(row);
        row += anyGroup ? kPageRows : kGroupRows - row % kGroupRows;
    }
}

template <typename Visit>
void Grid::ForEach(Area const & area, Visit && visit) const {
    ForEachBand(area, [&](int pageRow) {
        std::uint64_t const rows = RowsIn(area, pageRow);
        for (std::uint64_t left = rows; left; left &= left - 1) {
            int const slot = std::countr_zero(left);
            for (int column = area.first.column; column <= area.last.column; ++column) {
                Page const * const page = FindPage(column, pageRow);
                if (page && ((page->numberMask | page->cellMask) >> slot & 1))
                    visit(Place{column, pageRow + slot});
            }
        }
    });
}

template <typename Visit>
void Grid::ForEachCell(Area const & area, Visit && visit) const {
    for (int column = area.first.column; column <= area.last.column; ++column) {
        if (!m_Columns[std::size_t(column)]) continue;
        Area const strip{{column, area.first.row}, {column, area.last.row}};
        ForEachBand(strip, [&](int pageRow) {
            Page const & page = *FindPage(column, pageRow);
            for (std::uint64_t left = page.cellMask & RowsIn(area, pageRow); left; left &= left - 1)
                visit(*(*page.cells)[std::size_t(std::countr_zero(left))]);
        });
    }
}

} // namespace cells::host
