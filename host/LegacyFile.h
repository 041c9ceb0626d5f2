// Sheets as files of the older version: its cell records, one after another, behind a head of this
// host. docs/file-formats.md tells the bytes.
//
//     cells::host::LegacyFile const file = cells::host::WriteLegacyFile(sheet);
//     for (cells::host::LegacyLoss const & loss : file.losses) ... // what file.bytes cannot hold
//
// That version knows one sheet without areas of formats, flags of cells and protection, texts of at
// most 254 characters of the code page, and neither sheets nor choices in formulas. What does not
// pass is told; a formula that does not pass leaves its value.
#pragma once

#include "host/Workbook.h"

#include <string>
#include <string_view>
#include <vector>

namespace cells::host {

struct LegacyLoss {
    std::string what;
    std::vector<std::string> where; // places, names, or numbers of records from 1; empty: the sheet
};

struct LegacyFile {
    std::string bytes;
    std::vector<LegacyLoss> losses;
};

CVCELLS_API LegacyFile WriteLegacyFile(Sheet & sheet);

// Enters what a file holds into an empty sheet, as one edit, and gives what did not pass. Throws
// DocumentError for bytes that are no such file; the sheet is then as it was.
CVCELLS_API std::vector<LegacyLoss> ReadLegacyFile(std::string_view file, Sheet & sheet);

} // namespace cells::host
