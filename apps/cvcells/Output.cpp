#include "cvcells/Output.h"

#include "cvcells/Csv.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <vector>

namespace cells::app {
namespace {

using host::Area;
using host::Kind;
using host::Place;
using host::Sheet;
using host::Value;

std::string Shown(Sheet & sheet, Place place, Show show) {
    return show == Show::kFormulas ? sheet.EditText(place) : sheet.Text(place);
}

// Characters of a UTF-8 text.
std::size_t WidthOf(std::string const & text) {
    return std::size_t(
        std::count_if(text.begin(), text.end(), [](char c) { return (uchar(c) & 0xC0) != 0x80; }));
}

// With a blank for each end of a line: LF, CR LF or CR.
std::string OneLine(std::string const & text) {
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 2, "\r\n") == 0) ++i;
        line += text[i] == '\r' || text[i] == '\n' ? ' ' : text[i];
    }
    return line;
}

std::string Padded(std::string const & text, std::size_t width, bool right) {
    std::string const blanks(width > WidthOf(text) ? width - WidthOf(text) : 0, ' ');
    return right ? blanks + text : text + blanks;
}

void TrimEnd(std::string & line) { line.erase(line.find_last_not_of(' ') + 1); }

std::string RenderTable(Sheet & sheet, Area const & area, Show show) {
    std::size_t const columns = std::size_t(area.last.column - area.first.column + 1);
    std::vector<std::size_t> widths(columns, 1);
    std::vector<std::vector<std::string>> rows;
    for (int row = area.first.row; row <= area.last.row; ++row) {
        rows.emplace_back();
        for (std::size_t c = 0; c < columns; ++c) {
            rows.back().push_back(OneLine(Shown(sheet, {area.first.column + int(c), row}, show)));
            widths[c] = std::max(widths[c], WidthOf(rows.back().back()));
        }
    }
    std::size_t const margin = std::to_string(area.last.row + 1).size();
    std::string out(margin, ' ');
    for (std::size_t c = 0; c < columns; ++c) {
        std::string const name = host::NameOf(Place{area.first.column + int(c), 0});
        out += "  " + Padded(name.substr(0, name.size() - 1), widths[c], false);
    }
    TrimEnd(out);
    out += '\n';
    for (std::size_t r = 0; r < rows.size(); ++r) {
        std::string line = Padded(std::to_string(area.first.row + int(r) + 1), margin, true);
        for (std::size_t c = 0; c < columns; ++c) {
            Place const place{area.first.column + int(c), area.first.row + int(r)};
            bool const right = show == Show::kValues && sheet.Get(place).kind == Kind::kNumber;
            line += "  " + Padded(rows[r][c], widths[c], right);
        }
        TrimEnd(line);
        out += line + '\n';
    }
    return out;
}

std::string RenderFields(Sheet & sheet, Area const & area, Show show, char separator) {
    std::string out;
    for (int row = area.first.row; row <= area.last.row; ++row) {
        for (int column = area.first.column; column <= area.last.column; ++column) {
            if (column > area.first.column) out += separator;
            out += QuoteField(Shown(sheet, {column, row}, show), separator);
        }
        out += '\n';
    }
    return out;
}

char const * NameOfKind(Kind kind) {
    switch (kind) {
    case Kind::kNumber:
        return "number";
    case Kind::kText:
        return "text";
    case Kind::kError:
        return "error";
    default:
        return "empty";
    }
}

std::string RenderJson(Sheet & sheet, Area const & area) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    sheet.ForEachOccupied([&](Place place) {
        if (!area.Contains(place)) return;
        Value const value = sheet.Get(place);
        nlohmann::ordered_json cell;
        cell["cell"] = host::NameOf(place);
        cell["kind"] = NameOfKind(value.kind);
        if (value.kind == Kind::kNumber && std::isfinite(value.number))
            cell["value"] = value.number;
        if (value.kind == Kind::kText) cell["value"] = value.text;
        if (value.kind == Kind::kError) cell["error"] = value.error;
        cell["text"] = sheet.Text(place);
        if (auto const formula = sheet.Formula(place)) cell["formula"] = *formula;
        list.push_back(cell);
    });
    return list.dump(2) + '\n';
}

} // namespace

std::string Describe(Value const & value) {
    std::string const kind = NameOfKind(value.kind);
    char number[40];
    switch (value.kind) {
    case Kind::kNumber:
        std::snprintf(number, sizeof number, "%.17g", value.number);
        return kind + ' ' + number;
    case Kind::kText:
        return kind + ' ' + value.text;
    case Kind::kError:
        return kind + ' ' + std::to_string(value.error);
    default:
        return kind;
    }
}

std::string Render(Sheet & sheet, Area const & area, OutputFormat format, Show show) {
    switch (format) {
    case OutputFormat::kCsv:
        return RenderFields(sheet, area, show, ',');
    case OutputFormat::kTsv:
        return RenderFields(sheet, area, show, '\t');
    case OutputFormat::kJson:
        return RenderJson(sheet, area);
    default:
        return RenderTable(sheet, area, show);
    }
}

} // namespace cells::app
