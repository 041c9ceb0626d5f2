#include "host/internal/sheets/CellState.h"

#include "host/internal/sheets/SheetManager.h"
#include "platform/CArchive.h"

#include <stdexcept>

namespace cells::host {
namespace {

constexpr int kLongestRecordText = 4096; // units that the record of a value holds

enum class CellKind : uchar { kNumber = 0, kCell = 1, kLongText = 2 };

} // namespace

bool WriteCellState(CArchive & ar, SheetManager & sheet, Place place) {
    double number;
    std::uint32_t format;
    if (sheet.Cells().FindNumber(place, number, format)) {
        ar << uchar(CellKind::kNumber) << number << format;
        return true;
    }
    GridCell * const cell = sheet.Cells().FindCell(place);
    if (!cell || (cell->IsValueEmpty() && !cell->IsFormulaLink() && cell->getCFmt().IsEmpty()))
        return false;
    CString const text = cell->CCCell::GetValue().GetTextString();
    bool const isLong = text.GetLength() > kLongestRecordText;
    ar << uchar(isLong ? CellKind::kLongText : CellKind::kCell);
    cell->WriteContent(&sheet, ar);
    if (isLong) ar << text;
    return true;
}

void ReadCellState(CArchive & ar, SheetManager & sheet, Place place) {
    uchar kind;
    ar >> kind;
    if (kind == uchar(CellKind::kNumber)) {
        double number;
        std::uint32_t format;
        ar >> number >> format;
        if (sheet.Cells().FindCell(place)) throw std::runtime_error("a place comes twice");
        return sheet.Cells().PutNumber(place, number, format);
    }
    if (kind > uchar(CellKind::kLongText)) throw std::runtime_error("an unknown kind of cell");
    GridCell & cell = sheet.Cells().MakeCell(place);
    cell.ReadContent(&sheet, ar);
    if (kind != uchar(CellKind::kLongText)) return;
    CString text;
    ar >> text;
    cell.RestoreText(text);
}

std::string CellStateAt(SheetManager & sheet, Place place) {
    CMemFile file(64);
    CArchive ar(&file, CArchive::store, 256);
    WriteCellState(ar, sheet, place);
    ar.Flush();
    auto const & bytes = file.Bytes();
    return {bytes.begin(), bytes.end()};
}

// A plain number in a place that somebody depends on goes into its cell object.
void RestoreCellState(SheetManager & sheet, Place place, std::string const & state) {
    sheet.Cells().RemoveNumber(place);
    GridCell * const cell = sheet.Cells().FindCell(place);
    if (cell) cell->Empty(&sheet);
    if (state.empty()) {
        // As a cell that is made there now.
        if (cell) cell->putCFmt(sheet.Formats().FormatAt(place));
        return;
    }
    CMemFile file(state.data(), state.size());
    CArchive ar(&file, CArchive::load, 256);
    if (!cell || state[0] != char(CellKind::kNumber)) return ReadCellState(ar, sheet, place);
    uchar kind;
    double number;
    std::uint32_t packed;
    ar >> kind >> number >> packed;
    CCNumberFormat format;
    format.UnpackPlain(packed);
    cell->SetPlainNumber(number, format);
}

} // namespace cells::host
