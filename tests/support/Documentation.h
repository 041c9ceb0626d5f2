// The pages of the documentation that tests compare with the program.
#pragma once

#include "support/Paths.h"

#include <fstream>
#include <string>
#include <string_view>

namespace cells::test {

// The dump of docs/file-formats.md that begins with these bytes: hexadecimal digits, a remark
// behind two blanks or more.
inline std::string DumpOfTheDocumentation(std::string_view begin) {
    std::ifstream page(CVCELLS_DOCUMENTS "/file-formats.md");
    std::string line, dumped;
    while (std::getline(page, line) && !line.starts_with(begin)) {
    }
    for (; page && line != "```"; std::getline(page, line))
        for (std::size_t at = 0; at + 1 < line.size() && line[at] != ' '; at += 3)
            dumped += char(std::stoi(line.substr(at, 2), nullptr, 16));
    return dumped;
}

} // namespace cells::test
