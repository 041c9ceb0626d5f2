// Cells that go to other places of their sheet, with all formulas that name them.
#pragma once

#include <vector>

namespace cells::host {

class PlaceMap;
class Recording;
class SheetManager;

// The cells of `sheet` go where the map leads them. Formulas on all `sheets`, which are those of
// its workbook, name the new places, or #REF! for a place that is gone; names and formats of areas
// follow too. Everything is queued for calculation that may have another value. The recording hears
// of every place that changes.
void Rearrange(std::vector<SheetManager *> const & sheets, SheetManager & sheet,
               PlaceMap const & map, Recording & recording);

} // namespace cells::host
