#include "format/FormatTables.h"

// The order matters: a cell format looks into the number format table.
CCNumberFormatTable CCNumberFormatTable::DefNumFormats;
CCNumberFormatTable * CCNumberFormatTable::NumFormats = &CCNumberFormatTable::DefNumFormats;
CCCellFormatTable CCCellFormatTable::DefCellFormats;
CCCellFormatTable * CCCellFormatTable::CCellFormats = &CCCellFormatTable::DefCellFormats;
