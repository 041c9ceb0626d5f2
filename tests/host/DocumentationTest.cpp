// The examples of the documentation, run.
#include "host/Sheet.h"
#include "support/Paths.h"

#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using cells::host::Sheet;

namespace {

// The cells of a row of a table; none for any other line. Backquotes are taken off.
std::vector<std::string> TableCells(std::string const & line) {
    std::vector<std::string> cells;
    if (line.empty() || line.front() != '|') return cells;
    for (std::size_t start = 2; start < line.size();) {
        std::size_t const end = line.find(" |", start);
        if (end == std::string::npos) return {};
        std::string cell = line.substr(start, end - start);
        if (cell.size() >= 2 && cell.front() == '`' && cell.back() == '`')
            cell = cell.substr(1, cell.size() - 2);
        cells.push_back(cell);
        start = end + 3;
    }
    return cells;
}

} // namespace

TEST(NumberFormatsPage, ShowsWhatTheEngineShows) {
    std::ifstream page(CVCELLS_DOCUMENTS "/number-formats.md");
    ASSERT_TRUE(page);
    int examples = 0;
    bool inExamples = false;
    for (std::string line; std::getline(page, line);) {
        std::vector<std::string> const cells = TableCells(line);
        if (line.rfind("|-", 0) == 0) continue;
        if (cells.empty()) inExamples = false;
        if (inExamples && cells.size() == 3) {
            Sheet sheet("C");
            sheet.SetNumberFormat(*cells::host::ParseArea("A1"), cells[0]);
            sheet.Enter("A1", cells[1]);
            EXPECT_EQ(sheet.Text("A1"), cells[2]) << line;
            ++examples;
        }
        if (cells == std::vector<std::string>{"Format", "Number", "Shows"}) inExamples = true;
    }
    EXPECT_GT(examples, 45);
}

TEST(FunctionsPage, ShowsWhatTheEngineShows) {
    std::ifstream page(CVCELLS_DOCUMENTS "/functions.md");
    ASSERT_TRUE(page);
    int examples = 0;
    for (std::string line; std::getline(page, line);) {
        std::vector<std::string> const cells = TableCells(line);
        if (cells.size() != 4 || cells[2].empty() || cells[2][0] != '=') continue;
        Sheet sheet("C");
        sheet.Enter("A1", cells[2]);
        sheet.Recalculate();
        EXPECT_EQ(sheet.Text("A1"), cells[3]) << line;
        ++examples;
    }
    EXPECT_GT(examples, 110);
}

TEST(FormulaLanguagePage, ShowsWhatTheEngineShows) {
    std::ifstream page(CVCELLS_DOCUMENTS "/formula-language.md");
    ASSERT_TRUE(page);
    int examples = 0;
    bool inExamples = false;
    for (std::string line; std::getline(page, line);) {
        std::size_t const escaped = line.find("\\|");
        if (escaped != std::string::npos) line.erase(escaped, 1);
        std::vector<std::string> const cells = TableCells(line);
        if (line.rfind("|-", 0) == 0) continue;
        if (cells.empty()) inExamples = false;
        if (inExamples && cells.size() == 2) {
            Sheet sheet("C");
            for (auto const & [place, text] :
                 {std::pair{"A1", "1"}, {"A2", "2"}, {"A3", "3"}, {"B1", "a"}, {"C1", "=1/0"}})
                sheet.Enter(place, text);
            sheet.DefineName("prices", *cells::host::ParseArea("A1:A3"));
            sheet.Enter("F9", cells[0]);
            sheet.Recalculate();
            EXPECT_EQ(sheet.Text("F9"), cells[1]) << line;
            ++examples;
        }
        if (cells == std::vector<std::string>{"Typed", "Shows"}) inExamples = true;
    }
    EXPECT_GT(examples, 45);
}
