#include "cvcells/session/Command.h"

#include "cvcells/session/Words.h"

#include <algorithm>

namespace cells::app {
namespace {

Command const * FindCommand(std::string const & name) {
    std::vector<Command> const & all = AllCommands();
    auto const found =
        std::find_if(all.begin(), all.end(), [&](Command const & row) { return name == row.name; });
    return found == all.end() ? nullptr : &*found;
}

} // namespace

std::vector<Command> const & AllCommands() {
    static std::vector<Command> const all = [] {
        std::vector<Command> rows;
        for (auto const table :
             {CellCommands(), SheetCommands(), BookCommands(), Expectations(), HelpCommands()})
            rows.insert(rows.end(), table.begin(), table.end());
        return rows;
    }();
    return all;
}

Command const * TakeCommand(std::string & line) {
    std::string afterFirst = line;
    std::string const first = TakeWord(afterFirst);
    std::string afterSecond = afterFirst;
    std::string const second = TakeWord(afterSecond);
    if (Command const * const command = FindCommand(first + ' ' + second)) {
        line = afterSecond;
        return command;
    }
    Command const * const command = FindCommand(first);
    if (command) line = afterFirst;
    return command;
}

} // namespace cells::app
