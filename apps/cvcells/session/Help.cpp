// The command `help`.
#include "cvcells/session/Command.h"
#include "cvcells/session/Session.h"

#include <algorithm>
#include <ostream>
#include <string_view>

namespace cells::app {
namespace {

constexpr std::size_t kUsageWidth = 26; // with the blanks after the longest usage

std::string LinesOf(Command const & row) {
    std::string text = row.usage;
    text.resize(std::max(text.size() + 2, kUsageWidth), ' ');
    for (char const * c = row.help; *c; ++c) {
        text += *c;
        if (*c == '\n') text.append(kUsageWidth, ' ');
    }
    return text + '\n';
}

void Help(Session & session, std::string &) {
    for (Command const & row : AllCommands()) session.Out() << LinesOf(row);
}

constexpr Command kRows[] = {
    {"", "# ...", "a comment", nullptr},
    {"help", "help", "this list", Help},
    {"", "quit", "end the session", nullptr},
};

} // namespace

std::span<Command const> HelpCommands() { return kRows; }

} // namespace cells::app
