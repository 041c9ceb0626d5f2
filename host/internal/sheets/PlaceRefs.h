// Between places of the grid and the engine's references.
#pragma once

#include "formula/CCRCRef.h"
#include "formula/CCRegionRef.h"
#include "host/Place.h"

namespace cells::host {

inline CCRCRef RefOf(Place place) { return CCRCRef(uchar(place.column), ushort(place.row)); }
inline CCRegionRef RefOf(Area const & area) {
    return CCRegionRef(uchar(area.first.column), ushort(area.first.row), uchar(area.last.column),
                       ushort(area.last.row));
}

// Of a reference to a cell.
inline Place PlaceOf(CCRef const & cell) {
    auto const & place = static_cast<CCRCRef const &>(cell);
    return {place.col, place.row};
}
// Of a reference to a cell or a region.
inline Area AreaOf(CCRef const & ref) {
    if (ref.GetType() == kRefCell) return {PlaceOf(ref), PlaceOf(ref)};
    auto const & region = static_cast<CCRegionRef const &>(ref);
    return {{region.left, region.top}, {region.right, region.bottom}};
}

} // namespace cells::host
