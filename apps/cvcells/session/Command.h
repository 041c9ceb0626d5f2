// The commands of the session language, one row each. A new one is a function and a row in the
// table of its subject; `help` is made of the rows.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace cells::app {

class Session;

struct Command {
    // The first word of its lines, or the first two. Empty for a form of line that
    // Session::Execute reads itself, which has no action.
    char const * name;
    char const * usage; // how a line is written
    char const * help;  // what it does; lines of at most 70 characters, ended by '\n' but the last
    // Carries the command out. `rest` is what follows the name, to be cut off word by word. Throws
    // CommandError and Unmet.
    void (*action)(Session & session, std::string & rest);
};

std::span<Command const> CellCommands();  // contents, formats, protection and names of cells
std::span<Command const> SheetCommands(); // sheets, their rows and columns, copies, undo
std::span<Command const> BookCommands();  // files, links and properties
std::span<Command const> Expectations();
std::span<Command const> HelpCommands();

// The rows of all tables, in the order of `help`.
std::vector<Command> const & AllCommands();

// Cuts the name of a command off a line and gives its row; null for a line of no command, which
// stays.
Command const * TakeCommand(std::string & line);

} // namespace cells::app
