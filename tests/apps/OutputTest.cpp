// Sheets as tables, separated texts and JSON.
#include "cvcells/Output.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

using cells::app::Describe;
using cells::app::OutputFormat;
using cells::app::Render;
using cells::app::Show;
using cells::host::Kind;
using cells::host::ParseArea;
using cells::host::Sheet;
using cells::host::Value;

namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;

struct Request {
    char const * area;
    OutputFormat format;
    Show show = Show::kValues;
};

std::string Rendered(Entries const & entries, Request const & request) {
    Sheet sheet("C");
    for (auto const & [place, text] : entries) sheet.Enter(place, text);
    sheet.Recalculate();
    return Render(sheet, *ParseArea(request.area), request.format, request.show);
}

std::string Table(Entries const & entries, char const * area) {
    return Rendered(entries, {area, OutputFormat::kTable});
}

Entries const kPrices = {{"A1", "name"}, {"B1", "price"},       {"A2", "nail"},
                         {"B2", "12.5"}, {"A3", "caf\xC3\xA9"}, {"B3", "=B2*2"}};

} // namespace

TEST(Output, ATableAlignsNumbersToTheRight) {
    EXPECT_EQ(Table(kPrices, "A1:B3"), "   A     B\n"
                                       "1  name  price\n"
                                       "2  nail   12.5\n"
                                       "3  caf\xC3\xA9     25\n");
}

TEST(Output, ATableOfFormulasAlignsAllToTheLeft) {
    EXPECT_EQ(Rendered(kPrices, {"A1:B3", OutputFormat::kTable, Show::kFormulas}),
              "   A     B\n"
              "1  name  price\n"
              "2  nail  12.5\n"
              "3  caf\xC3\xA9  =B2 * 2\n");
}

TEST(Output, ATableIsAsWideAsItsAreaNeeds) {
    struct Row {
        Entries entries;
        char const * area;
        char const * table;
    } const rows[] = {
        {kPrices, "B2:B3", "   B\n2  12.5\n3    25\n"},
        {{}, "A1", "   A\n1\n"},
        {{}, "A1:B2", "   A  B\n1\n2\n"},
        {{{"B1", "x"}}, "A1:C1", "   A  B  C\n1     x\n"},
        {{{"A9", "x"}, {"A10", "y"}}, "A9:A10", "    A\n 9  x\n10  y\n"},
        {{{"IV65536", "5"}}, "IV65536", "       IV\n65536  5\n"},
        {{{"AA1", "5"}, {"AB1", "text"}}, "AA1:AB1", "   AA  AB\n1  5  text\n"},
        {{{"A1", "longer than"}, {"A2", "=1/0"}, {"A3", "=NA()"}},
         "A2:A3",
         "   A\n2  #DIV/0!\n3  #N/A\n"},
        {{{"A1", "true"}, {"A2", "a text"}}, "A1:A2", "   A\n1    TRUE\n2  a text\n"},
    };
    for (Row const & row : rows) EXPECT_EQ(Table(row.entries, row.area), row.table);
}

TEST(Output, ACellOfATableStaysOnItsLine) {
    for (std::string const end : {"\n", "\r\n", "\r"})
        EXPECT_EQ(Table({{"A1", "two" + end + "lines"}, {"B1", "x"}}, "A1:B1"),
                  "   A          B\n"
                  "1  two lines  x\n");
}

TEST(Output, SeparatedFieldsAreQuotedWhereTheyMustBe) {
    Entries const entries = {{"A1", "a,b"},         {"B1", "a\tb"}, {"C1", "say \"hi\""},
                             {"A2", "two\nlines"},  {"C2", "1.5"},  {"A3", "=C2*2"},
                             {"B3", "=SUM(C2,C2)"}, {"D4", "out"}};
    struct Row {
        Request request;
        char const * text;
    } const rows[] = {
        {{"A1:C3", OutputFormat::kCsv},
         "\"a,b\",a\tb,\"say \"\"hi\"\"\"\n\"two\nlines\",,1.5\n3,3,\n"},
        {{"A1:C3", OutputFormat::kTsv},
         "a,b\t\"a\tb\"\t\"say \"\"hi\"\"\"\n\"two\nlines\"\t\t1.5\n3\t3\t\n"},
        {{"A3:B3", OutputFormat::kCsv, Show::kFormulas}, "=C2 * 2,\"=SUM (C2, C2)\"\n"},
        {{"A3:B3", OutputFormat::kTsv, Show::kFormulas}, "=C2 * 2\t=SUM (C2, C2)\n"},
        {{"F6:G7", OutputFormat::kCsv}, ",\n,\n"},
    };
    for (Row const & row : rows) EXPECT_EQ(Rendered(entries, row.request), row.text);
}

TEST(Output, SeparatedValuesAreAsTheyAreShown) {
    Sheet sheet("C");
    sheet.Enter("A1", "1234.5");
    sheet.SetNumberFormat(*ParseArea("A1"), "#,##0.00");
    EXPECT_EQ(Render(sheet, *ParseArea("A1"), OutputFormat::kCsv, Show::kValues), "\"1,234.50\"\n");
    EXPECT_EQ(Render(sheet, *ParseArea("A1"), OutputFormat::kTsv, Show::kValues), "1,234.50\n");
}

TEST(Output, JsonTellsKindValueTextAndFormulaOfOccupiedCells) {
    Entries const entries = {
        {"A1", "12.5"}, {"B1", "=A1*2"}, {"A2", "say \"\xC3\xA9\""}, {"B2", "=1/0"}, {"C3", "out"}};
    EXPECT_EQ(Rendered(entries, {"A1:B3", OutputFormat::kJson}), R"([
  {
    "cell": "A1",
    "kind": "number",
    "value": 12.5,
    "text": "12.5"
  },
  {
    "cell": "B1",
    "kind": "number",
    "value": 25.0,
    "text": "25",
    "formula": "=A1 * 2"
  },
  {
    "cell": "A2",
    "kind": "text",
    "value": "say \"é\"",
    "text": "say \"é\""
  },
  {
    "cell": "B2",
    "kind": "error",
    "error": 2,
    "text": "#DIV/0!",
    "formula": "=1 / 0"
  }
]
)");
}

TEST(Output, JsonOfNothingIsAnEmptyList) {
    EXPECT_EQ(Rendered({}, {"A1:C3", OutputFormat::kJson}), "[]\n");
    EXPECT_EQ(Rendered({{"D4", "out"}}, {"A1:C3", OutputFormat::kJson}), "[]\n");
}

TEST(Output, AValueIsDescribedByItsKind) {
    Value number, text, error;
    number.kind = Kind::kNumber;
    number.number = 0.1;
    text.kind = Kind::kText;
    text.text = "a b";
    error.kind = Kind::kError;
    error.error = 9;
    EXPECT_EQ(Describe(number), "number 0.10000000000000001");
    EXPECT_EQ(Describe(text), "text a b");
    EXPECT_EQ(Describe(error), "error 9");
    EXPECT_EQ(Describe({}), "empty");
}
