// What a place holds, as bytes: the record of documents, and what edits remember.
#pragma once

#include "host/Place.h"

#include <string>

class CArchive;

namespace cells::host {

class SheetManager;

// Writes value, format and formula of an occupied place; false, and nothing, for a place that holds
// at most dependents. docs/file-formats.md tells the bytes.
bool WriteCellState(CArchive & ar, SheetManager & sheet, Place place);
// Puts them into a place that holds no formula. The formula is not registered, and nobody is told.
// Throws CArchiveException, or std::runtime_error for what is no such record.
void ReadCellState(CArchive & ar, SheetManager & sheet, Place place);

// The same in a string; an empty one for an empty place.
std::string CellStateAt(SheetManager & sheet, Place place);
// Empties a place, its formula is taken out of the graph, and puts the state there.
void RestoreCellState(SheetManager & sheet, Place place, std::string const & state);

} // namespace cells::host
