// What tests of workbooks share: places by name, and all that a user can see.
#pragma once

#include "host/Workbook.h"

#include <string>

namespace cells::test {

inline host::Area A(char const * text) { return *host::ParseArea(text); }
inline host::Place P(char const * text) { return *host::ParsePlace(text); }

inline std::string Shown(host::Sheet & sheet) {
    std::string shown = sheet.IsProtected() ? "protected\n" : "";
    sheet.ForEachOccupied([&](host::Place place) {
        shown += host::NameOf(place) + " " + sheet.Text(place) + " | " + sheet.EditText(place) +
                 " | " + sheet.NumberFormat(place) + "\n";
    });
    return shown;
}

inline std::string Shown(host::Workbook & book) {
    std::string shown;
    for (int i = 0; i < book.Count(); ++i) shown += book.NameOf(i) + "\n" + Shown(book.At(i));
    return shown;
}

} // namespace cells::test
