// Places of a grid and their names: column 0, row 0 is "A1".
#pragma once

#include "platform/Types.h"

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace cells::host {

constexpr int kColumns = 256;
constexpr int kRows = 65536;

struct Place {
    int column = 0; // 0 to 255
    int row = 0;    // 0 to 65535
    auto operator<=>(Place const &) const = default;
};

// A rectangle; both corners belong to it.
struct Area {
    Place first, last;
    bool operator==(Area const &) const = default;
    bool Contains(Place place) const {
        return place.column >= first.column && place.column <= last.column &&
               place.row >= first.row && place.row <= last.row;
    }
    bool Meets(Area const & other) const {
        return first.column <= other.last.column && other.first.column <= last.column &&
               first.row <= other.last.row && other.first.row <= last.row;
    }
};

constexpr Area kWholeGrid{{0, 0}, {kColumns - 1, kRows - 1}};

CVCELLS_API bool IsOnGrid(Place place);
// "B7", in any case and without dollars; nothing for anything else.
CVCELLS_API std::optional<Place> ParsePlace(std::string_view text);
// "B7" or "B7:D9"; the corners may stand in any order.
CVCELLS_API std::optional<Area> ParseArea(std::string_view text);
CVCELLS_API std::string NameOf(Place place);
CVCELLS_API std::string NameOf(Area const & area);

} // namespace cells::host
