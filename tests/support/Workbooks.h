// What tests of workbooks share: places by name, and all that a user can see.
#pragma once

#include "host/Workbook.h"

#include <fstream>
#include <string>

namespace cells::test {

inline host::Area A(char const * text) { return *host::ParseArea(text); }
inline host::Place P(char const * text) { return *host::ParsePlace(text); }

// The dump of docs/file-formats.md that begins with these bytes: hexadecimal digits, a remark
// behind two blanks or more.
inline std::string DumpOfTheDocumentation(std::string_view begin) {
    std::ifstream page(CVCELLS_RESOURCES "/../docs/file-formats.md");
    std::string line, dumped;
    while (std::getline(page, line) && !line.starts_with(begin)) {
    }
    for (; page && line != "```"; std::getline(page, line))
        for (std::size_t at = 0; at + 1 < line.size() && line[at] != ' '; at += 3)
            dumped += char(std::stoi(line.substr(at, 2), nullptr, 16));
    return dumped;
}

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
