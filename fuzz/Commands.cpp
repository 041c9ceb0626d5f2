// Command streams, wide and narrow, read into a cell of a sheet that is then used and written.
#include "cells/CCCell.h"
#include "cells/CCCellManager.h"
#include "formula/CCRCRef.h"
#include "host/Sheet.h"
#include "persist/CCRWExchange.h"
#include "platform/CArchive.h"
#include "platform/Exceptions.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    for (FileVersion version : {kFileVersionNarrow, kFileVersionWide}) {
        cells::host::Sheet sheet("C");
        sheet.Enter("B2", "text");
        CCRCRef const ref(1, 1);
        auto * const cell = static_cast<CCCell *>(sheet.Manager().GetItem(&ref));
        CMemFile file(data, size);
        CArchive ar(&file, CArchive::load);
        CCRWExchange reading(version);
        reading.Begin(ar);
        reading.SetCurCell(cell);
        reading.SetCellManager(&sheet.Manager());
        try {
            reading.Read();
        } catch (CArchiveException const &) { // a stream ends by its end
        }
        reading.End();
        sheet.Text("B2");
        sheet.EditText({1, 1});
        sheet.Enter("A1", "3");
        sheet.Recalculate();
        CMemFile out;
        CArchive storing(&out, CArchive::store);
        CCRWExchange writing(version);
        writing.Begin(storing);
        writing.SetCellManager(&sheet.Manager());
        writing.WriteCell(cell);
        writing.WriteManager(&sheet.Manager());
        writing.End();
        storing.Flush();
    }
    return 0;
}
