#include "host/Place.h"

#include "formula/CCRef.h"

#include <algorithm>
#include <cctype>

namespace cells::host {

bool IsOnGrid(Place place) {
    return place.column >= 0 && place.column < kColumns && place.row >= 0 && place.row < kRows;
}

std::optional<Place> ParsePlace(std::string_view text) {
    Place place{0, 0};
    std::size_t at = 0;
    for (; at < text.size() && at < 3 && std::isalpha(uchar(text[at])); ++at)
        place.column = place.column * 26 + std::toupper(uchar(text[at])) - 'A' + 1;
    std::size_t const letters = at;
    for (; at < text.size() && at - letters < 6 && std::isdigit(uchar(text[at])); ++at)
        place.row = place.row * 10 + (text[at] - '0');
    if (letters == 0 || at == letters || at != text.size()) return std::nullopt;
    --place.column;
    --place.row;
    if (!IsOnGrid(place)) return std::nullopt;
    return place;
}

std::optional<Area> ParseArea(std::string_view text) {
    std::size_t const colon = std::min(text.find(':'), text.size());
    std::optional<Place> const a = ParsePlace(text.substr(0, colon));
    std::optional<Place> const b = colon == text.size() ? a : ParsePlace(text.substr(colon + 1));
    if (!a || !b) return std::nullopt;
    return Area{{std::min(a->column, b->column), std::min(a->row, b->row)},
                {std::max(a->column, b->column), std::max(a->row, b->row)}};
}

std::string NameOf(Place place) {
    wchar_t letters[3];
    PrintCol(letters, uchar(place.column));
    std::string name;
    for (wchar_t const * at = letters; *at; ++at) name += char(*at);
    return name + std::to_string(place.row + 1);
}

std::string NameOf(Area const & area) { return NameOf(area.first) + ":" + NameOf(area.last); }

} // namespace cells::host
