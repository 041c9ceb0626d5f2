// Stored bytes: a cell is read from them, shown, calculated and written again. What was written
// reads back to the same bytes.
#include "cells/CCCellManager.h"
#include "formula/CCRCRef.h"
#include "host/Sheet.h"
#include "platform/CArchive.h"
#include "platform/Exceptions.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

std::vector<uchar> Stored(CCCellManager & manager, CCItem & item) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    item.Write(manager.ctx(), ar);
    ar.Flush();
    return file.Bytes();
}

bool Load(CCCellManager & manager, CCItem & item, std::vector<uchar> const & bytes) {
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    try {
        item.Read(manager.ctx(), ar);
    } catch (CArchiveException const &) {
        return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    cells::host::Sheet sheet("C");
    sheet.Enter("B2", "text");
    CCCellManager & manager = sheet.Manager();
    CCRCRef const ref(1, 1);
    CCItem & item = *manager.GetItem(&ref);
    if (!Load(manager, item, std::vector<uchar>(data, data + size))) return 0;
    std::vector<uchar> const first = Stored(manager, item);
    if (!Load(manager, item, first) || Stored(manager, item) != first) std::abort();
    sheet.Text("B2");
    sheet.EditText({1, 1});
    manager.RecalcCell(&ref);
    sheet.Recalculate();
    return 0;
}
