// Places between the older file version and today.
#include "formula/CCNameRef.h"
#include "formula/CCRCRef.h"
#include "formula/CCRegionRef.h"
#include "legacy/CCC4W15Convert.h"
#include "platform/CodePage.h"

namespace {

using Legacy = CCC4W15Exchange;

// All in arithmetic modulo 65,536, in which distances may be negative.
std::uint16_t NumberOf(int coordinate, bool absolute, int origin) {
    return std::uint16_t(coordinate + 1 - (absolute ? 0 : origin));
}
std::uint16_t CoordinateOf(std::uint16_t number, bool absolute, int origin) {
    return std::uint16_t(number - 1 + (absolute ? 0 : origin));
}

// One corner, whose flags are the low two bits.
void SetCorner(Legacy::CCC4W15_CoordsRC & corner, uchar col, ushort row, int flags,
               CPoint const * origin) {
    bool const absoluteColumn = (flags & cells::kAbsoluteColumn) || !origin;
    bool const absoluteRow = (flags & cells::kAbsoluteRow) || !origin;
    corner.column = NumberOf(col, absoluteColumn, origin ? origin->x : 0);
    corner.row = NumberOf(row, absoluteRow, origin ? origin->y : 0);
    corner.columnAbsolute = absoluteColumn;
    corner.rowAbsolute = absoluteRow;
}

struct Corner {
    Corner(Legacy::CCC4W15_CoordsRC const & corner, CPoint const * origin) {
        bool const absoluteColumn = corner.columnAbsolute || !origin;
        bool const absoluteRow = corner.rowAbsolute || !origin;
        column = CoordinateOf(corner.column, absoluteColumn, origin ? origin->x : 0);
        row = CoordinateOf(corner.row, absoluteRow, origin ? origin->y : 0);
        flags =
            (absoluteColumn ? cells::kAbsoluteColumn : 0) | (absoluteRow ? cells::kAbsoluteRow : 0);
    }
    bool IsOnGrid() const { return column <= cells::kMaxColumn; }

    std::uint16_t column, row;
    int flags;
};

constexpr int kSecondCorner = 2; // where the flags of the second corner begin

std::unique_ptr<Legacy::CCC4W15_Coords> CoordsOf(CCRef const & ref, uchar flags,
                                                 CPoint const * origin) {
    switch (ref.GetType()) {
    case kRefCell: {
        auto const & cell = static_cast<CCRCRef const &>(ref);
        auto coords = std::make_unique<Legacy::CCC4W15_CoordsRC>();
        SetCorner(*coords, cell.col, cell.row, flags, origin);
        return coords;
    }
    case kRefRegion: {
        auto const & region = static_cast<CCRegionRef const &>(ref);
        auto coords = std::make_unique<Legacy::CCC4W15_CoordsRegion>();
        SetCorner(coords->first, region.left, region.top, flags, origin);
        SetCorner(coords->last, region.right, region.bottom, flags >> kSecondCorner, origin);
        return coords;
    }
    case kRefName: {
        auto const & name = static_cast<CCNameRef const &>(ref);
        auto coords = std::make_unique<Legacy::CCC4W15_CoordsName>();
        if (name.name()) coords->name = cells::ToNarrow(name.name());
        return coords;
    }
    default:
        return nullptr;
    }
}

std::unique_ptr<CCRef> RefOf(Legacy::CCC4W15_Coords const & coords, int & flags,
                             CPoint const * origin) {
    switch (coords.GetType()) {
    case Legacy::kCoordsRC: {
        Corner const at(static_cast<Legacy::CCC4W15_CoordsRC const &>(coords), origin);
        if (!at.IsOnGrid()) return nullptr;
        flags = at.flags;
        return std::make_unique<CCRCRef>(uchar(at.column), at.row);
    }
    case Legacy::kCoordsRegion: {
        auto const & region = static_cast<Legacy::CCC4W15_CoordsRegion const &>(coords);
        Corner const first(region.first, origin), last(region.last, origin);
        if (!first.IsOnGrid() || !last.IsOnGrid()) return nullptr;
        flags = first.flags | last.flags << kSecondCorner;
        return std::make_unique<CCRegionRef>(uchar(first.column), first.row, uchar(last.column),
                                             last.row);
    }
    case Legacy::kCoordsName: {
        auto const & name = static_cast<Legacy::CCC4W15_CoordsName const &>(coords).name;
        return name ? std::make_unique<CCNameRef>(cells::FromNarrow(*name).GetString())
                    : std::make_unique<CCNameRef>();
    }
    default:
        return nullptr;
    }
}

} // namespace

void CCC4W15Convert::ConvertTo15(Legacy::CCC4W15_Coords *& legacy, CCRef const * ref, uchar flags,
                                 CPoint const * origin) const {
    legacy = ref ? CoordsOf(*ref, flags, origin).release() : nullptr;
}

void CCC4W15Convert::ConvertTo95(CCRef *& ref, uchar & flags, Legacy::CCC4W15_Coords const * legacy,
                                 CPoint const * origin) const {
    int bits = 0;
    ref = legacy ? RefOf(*legacy, bits, origin).release() : nullptr;
    flags = uchar(bits);
}

void CCC4W15Convert::ConvertTo15(Legacy::CCC4W15_Ref *& legacy, CCRef const * ref, uchar flags,
                                 CPoint const * origin) const {
    legacy = nullptr;
    std::unique_ptr<Legacy::CCC4W15_Coords> coords;
    if (ref) coords = CoordsOf(*ref, flags, origin);
    if (!coords) return;
    legacy = new Legacy::CCC4W15_Ref;
    legacy->coords = std::move(coords);
}

void CCC4W15Convert::ConvertTo95(CCRef *& ref, uchar & flags, Legacy::CCC4W15_Ref const * legacy,
                                 CPoint const * origin) const {
    bool const isLocal = legacy && legacy->GetType() == Legacy::kRef;
    ConvertTo95(ref, flags, isLocal ? legacy->coords.get() : nullptr, origin);
}
