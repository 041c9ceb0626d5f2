// The older file version. A file: what is read is alive, and what is written of it reads back. A
// record: what is written of it reads back as the same bytes, unless it holds a query, whose lists
// are written short.
#include "formula/CCFormula.h"
#include "host/LegacyFile.h"
#include "legacy/CCC4W15Convert.h"
#include "platform/CArchive.h"
#include "platform/Exceptions.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

using cells::host::Place;
using cells::host::Sheet;
using Legacy = CCC4W15Exchange;

void TryFile(std::string_view file) {
    Sheet sheet("C");
    try {
        cells::host::ReadLegacyFile(file, sheet);
    } catch (cells::host::DocumentError const &) {
        return;
    }
    sheet.Recalculate();
    sheet.ForEachOccupied([&](Place place) {
        sheet.Text(place);
        sheet.EditText(place);
    });
    Sheet copy("C");
    cells::host::ReadLegacyFile(cells::host::WriteLegacyFile(sheet).bytes, copy);
    sheet.Enter("A1", "2");
    sheet.Recalculate();
}

bool Load(Legacy::CCC4W15_Cell & cell, std::vector<uchar> const & bytes) {
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    try {
        cell.Read(ar);
    } catch (CArchiveException const &) {
        return false;
    }
    return true;
}

std::vector<uchar> Stored(Legacy::CCC4W15_Cell const & cell) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    cell.Write(ar);
    ar.Flush();
    return file.Bytes();
}

bool HasQuery(Legacy::CCC4W15_Coords const * coords) {
    return coords && coords->GetType() == Legacy::kCoordsQuery;
}
bool HasQuery(Legacy::CCC4W15_Ref const * ref) { return ref && HasQuery(ref->coords.get()); }
bool HasQuery(Legacy::CCC4W15_Formula const * formula) {
    if (!formula || formula->GetType() == Legacy::kFormulaConst) return false;
    if (formula->GetType() == Legacy::kFormulaRef)
        return HasQuery(static_cast<Legacy::CCC4W15_FormulaRef const *>(formula)->ref.get());
    auto const & call = static_cast<Legacy::CCC4W15_FormulaOp const &>(*formula);
    for (auto const * arg = call.args.First(); arg; arg = arg->next)
        if (HasQuery(arg->formula.get())) return true;
    return false;
}
bool HasQuery(Legacy::CCC4W15_Cell const & cell) {
    for (auto const * list : {cell.dependents.First(), cell.editSources.First()})
        for (auto const * node = list; node; node = node->next)
            if (HasQuery(node->ref.get())) return true;
    return HasQuery(cell.coords.get()) || HasQuery(cell.formula.get());
}

void TryRecord(std::vector<uchar> const & bytes) {
    Legacy::CCC4W15_Cell cell, again;
    if (!Load(cell, bytes)) return;
    std::vector<uchar> const first = Stored(cell);
    bool const isSame = Load(again, first) && Stored(again) == first;
    if (!isSame && !HasQuery(cell)) std::abort();
    Sheet sheet("C");
    CCC4W15Convert const convert(&sheet.Manager());
    CPoint const origin(3, 3);
    delete convert.ConvertTo95(cell.formula.get(), &origin);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    TryFile({reinterpret_cast<char const *>(data), size});
    TryRecord({data, data + size});
    return 0;
}
