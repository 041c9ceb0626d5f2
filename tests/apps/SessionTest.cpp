// The session language: its rows, what expectations find, and the session files.
#include "cvcells/session/Session.h"

#include "cvcells/session/Command.h"
#include "support/Paths.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

using cells::app::AllCommands;
using cells::app::Command;
using cells::app::CommandError;
using cells::app::Session;
using cells::app::TakeCommand;
using cells::app::Unmet;

namespace {

// What a line is refused with after those before it; empty where it holds.
std::string Refusal(std::vector<std::string> const & before, std::string const & line) {
    std::ostringstream out;
    Session session("C", out, false);
    for (std::string const & each : before) session.Execute(each);
    try {
        session.Execute(line);
    } catch (Unmet const & failure) {
        return std::string("unmet: ") + failure.what();
    } catch (CommandError const & failure) {
        return std::string("error: ") + failure.what();
    }
    return "";
}

std::string Printed(std::vector<std::string> const & lines) {
    std::ostringstream out;
    Session session("C", out, false);
    for (std::string const & line : lines) session.Execute(line);
    return out.str();
}

} // namespace

TEST(Session, AnExpectationHoldsOrTellsWhatIsFound) {
    std::vector<std::string> const sheet = {"A1: 5",     "A2: some text", "A3: =1/0",
                                            "A4: =A1*2", "A5: 12%",       "sheet Two",
                                            "A1: 7",     "sheet Sheet1",  "A6: =A6+1"};
    struct Row {
        char const * line;
        char const * refusal;
    } const rows[] = {
        {"expect A1 5", ""},
        {"expect A1 6", "unmet: found 5"},
        {"expect A9", ""},
        {"expect A9 6", "unmet: found nothing"},
        {"expect Two!A1 7", ""},
        {"expect Two!A1 5", "unmet: found 7"},
        {"expect", "error: no such cell: (nothing)"},
        {"expect nonsense", "error: no such cell: nonsense"},
        {"expect Three!A1 5", "error: no such cell: Three!A1"},
        {"expect value A1 5", ""},
        {"expect  value\tA1  5.0", ""},
        {"expect value A4 11", "unmet: found number 10"},
        {"expect value A2 5", "unmet: A2 holds text some text"},
        {"expect value A1 five", "error: no number: five"},
        {"expect value A1", "error: no number: (nothing)"},
        {"expect value", "error: no such cell: (nothing)"},
        {"expect text A2 some text", ""},
        {"expect text A2 some", "unmet: found some text"},
        {"expect text A1 5", "unmet: A1 holds number 5"},
        {"expect error 2 A3", ""},
        {"expect error 3 A3", "unmet: found error 2"},
        {"expect error 2 A9", "unmet: A9 holds empty"},
        {"expect error A3 2", "error: no number: A3"},
        {"expect empty A9", ""},
        {"expect empty A3", "unmet: A3 holds error 2"},
        {"expect formula A4 =A1 * 2", ""},
        {"expect formula A4 =A1*2", "unmet: found =A1 * 2"},
        {"expect formula A1 5", "unmet: found no formula"},
        {"expect class 3 A5", ""},
        {"expect class 0 A5", "unmet: found class 3"},
        {"expect class 0 A2", "unmet: A2 holds text some text"},
        {"expect format A5 percent:0", ""},
        {"expect format A1 percent:0", "unmet: found general"},
        {"expect message 13033", ""},
        {"expect message 13034", "unmet: found message 13033"},
        {"expect message one", "error: no number: one"},
        {"expect no message", "unmet: found message 13033"},
        {"expect no cell", "error: no such cell: no"},
    };
    for (Row const & row : rows) EXPECT_EQ(Refusal(sheet, row.line), row.refusal) << row.line;
    EXPECT_EQ(Refusal({"A1: 5"}, "expect no message"), "");
    EXPECT_EQ(Refusal({"A1: 5"}, "expect message 13033"), "unmet: found no message");
}

TEST(Session, ACommandThatCannotBeCarriedOutTellsWhy) {
    struct Row {
        char const * line;
        char const * refusal;
    } const rows[] = {
        {"nonsense A1", "error: unknown command: nonsense (help lists them)"},
        {"value A1 5", "error: unknown command: value (help lists them)"},
        {"quit now", "error: unknown command: quit (help lists them)"},
        {"Three!A1", "error: no such cell: Three!A1"},
        {"clear Three!A1", "error: no such cell: Three!A1"},
        {"format nonsense percent", "error: no such area: nonsense"},
        {"lock", "error: no such area: (nothing)"},
        {"replace", "error: replace needs the text to look for and the new one"},
        {"name A1 A1:A2", "error: no good name: A1"},
        {"remove", "error: it is the only sheet"},
        {"insert cells 1", "error: expected rows or columns: cells"},
        {"insert rows 1 many", "error: no number: many"},
        {"delete columns 1", "error: no such cell: 11"},
        {"copy A1 B1 turned", "error: expected transposed: turned"},
        {"undo", "error: there is nothing to undo"},
        {"redo", "error: there is nothing to redo"},
        {"save", "error: save needs the name of a file"},
        {"link", "error: link needs the name of a file"},
        {"property colour red", "error: no such property: colour"},
    };
    for (Row const & row : rows) EXPECT_EQ(Refusal({}, row.line), row.refusal) << row.line;
    EXPECT_EQ(Refusal({"protect secret"}, "unprotect wrong"), "error: wrong password");
    EXPECT_EQ(Refusal({"sheet Two", "sheet Sheet1"}, "move A1 Two!A1"),
              "error: an area moves on its own sheet only; copy it");
}

// The second place of a copy is on the current sheet, that of a move on the sheet of the area.
TEST(Session, AMoveStaysOnTheSheetOfItsArea) {
    std::vector<std::string> const before = {"A1: 5", "sheet Two", "A1: 7"};
    auto after = [&](std::string const & line, std::string const & expectation) {
        std::vector<std::string> lines = before;
        lines.push_back(line);
        return Refusal(lines, expectation);
    };
    EXPECT_EQ(after("copy Sheet1!A1 B1", "expect Two!B1 5"), "");
    EXPECT_EQ(after("copy Sheet1!A1 B1", "expect empty Sheet1!B1"), "");
    EXPECT_EQ(after("move Sheet1!A1 B1", "expect Sheet1!B1 5"), "");
    EXPECT_EQ(after("move Sheet1!A1 B1", "expect empty Two!B1"), "");
}

TEST(Session, AnAreaIsShownAsATableAndACellAsItsText) {
    EXPECT_EQ(Printed({"A1: 5", "A1"}), "5\n");
    EXPECT_EQ(Printed({"A1: 5", "A2: 12", "A1:A2"}), "   A\n1   5\n2  12\n");
    EXPECT_EQ(Printed({"A1: 5", "sheet Two", "Sheet1!A1"}), "5\n");
}

TEST(Session, AChangeIsToldWithTheNameOfAnotherSheet) {
    std::ostringstream out;
    Session session("C", out, true);
    for (char const * line : {"A1: 5", "sheet Two", "B2: =Sheet1!A1*2", "Sheet1!A1: 6"})
        EXPECT_TRUE(session.Execute(line));
    EXPECT_EQ(out.str(), "A1 = 5\nB2 = 10\nSheet1!A1 = 6\nB2 = 12\n");
    EXPECT_FALSE(session.Execute(" quit "));
}

TEST(Session, EveryCommandIsARowThatHelpCanShow) {
    std::set<std::string> names;
    for (Command const & row : AllCommands()) {
        std::string const name = row.name, usage = row.usage, help = row.help;
        EXPECT_EQ(name.empty(), row.action == nullptr) << usage;
        EXPECT_EQ(usage.substr(0, name.size()), name);
        EXPECT_LE(usage.size(), 24u) << usage;
        EXPECT_TRUE(name.empty() || names.insert(name).second) << name << " has two rows";
        std::istringstream lines(help);
        for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 70u) << line;
    }
}

TEST(Session, HelpIsMadeOfTheRows) {
    std::string const help = Printed({"help"});
    for (char const * line : {
             "CELL: TEXT                enter a text, as a user types it\n",
             "\nclear CELL                empty a cell\n",
             "\nexpect value CELL NUMBER  the cell holds the number\n",
             "\nsave FILE                 a workbook (.cvs), or the present sheet as comma or tab "
             "separated\n                          text or in the older version (.cv15), by "
             "extension\n",
         })
        EXPECT_NE(help.find(line), std::string::npos) << line;
    for (Command const & row : AllCommands())
        EXPECT_NE(("\n" + help).find(std::string("\n") + row.usage + ' '), std::string::npos)
            << row.usage;
}

TEST(Session, ACommandIsNamedByTwoWordsBeforeOne) {
    struct Row {
        std::string line;
        char const * name; // null: none
        char const * rest;
    } const rows[] = {
        {"expect value A1 5", "expect value", "A1 5"},
        {"expect A1 5", "expect", "A1 5"},
        {"clear  A1 ", "clear", "A1"},
        {"help", "help", ""},
        {"value A1 5", nullptr, "value A1 5"},
        {"clearA1", nullptr, "clearA1"},
    };
    for (Row row : rows) {
        Command const * const command = TakeCommand(row.line);
        EXPECT_EQ(command ? command->name : std::string(), row.name ? row.name : "") << row.rest;
        EXPECT_EQ(row.line, row.rest);
    }
}

// What a story comes to is checked at its end.
TEST(Session, EverySessionFileEndsWithAnExpectation) {
    int files = 0;
    for (auto const & entry :
         std::filesystem::directory_iterator(CVCELLS_DOCUMENTS "/../tests/sessions")) {
        std::ifstream lines(entry.path());
        std::string last;
        for (std::string line; std::getline(lines, line);)
            if (!line.empty() && line[0] != '#') last = line;
        EXPECT_EQ(last.substr(0, 7), "expect ") << entry.path();
        ++files;
    }
    EXPECT_GT(files, 5);
}
