// Expectations: commands that fail where a cell is not as they say.
#include "cvcells/Output.h"
#include "cvcells/session/Command.h"
#include "cvcells/session/Session.h"

#include <algorithm>

namespace cells::app {
namespace {

using host::Kind;
using host::Value;

void Require(bool met, std::string const & found) {
    if (!met) throw Unmet("found " + found);
}

Value RequireKind(SheetPlace const & at, Kind kind) {
    Value const value = at.sheet.Get(at.place);
    if (value.kind != kind) throw Unmet(host::NameOf(at.place) + " holds " + Describe(value));
    return value;
}

std::string ToldMessage(Session const & session) {
    std::vector<unsigned> const & messages = session.Messages();
    return messages.empty() ? "no message" : "message " + std::to_string(messages.front());
}

void ExpectShown(Session & session, std::string & rest) {
    SheetPlace const at = session.RequirePlace(TakeWord(rest));
    std::string const shown = at.sheet.Text(at.place);
    Require(shown == rest, shown.empty() ? "nothing" : shown);
}

void ExpectValue(Session & session, std::string & rest) {
    SheetPlace const at = session.RequirePlace(TakeWord(rest));
    Value const value = RequireKind(at, Kind::kNumber);
    Require(value.number == RequireNumber<double>(rest), Describe(value));
}

void ExpectText(Session & session, std::string & rest) {
    SheetPlace const at = session.RequirePlace(TakeWord(rest));
    Value const value = RequireKind(at, Kind::kText);
    Require(value.text == rest, value.text);
}

void ExpectError(Session & session, std::string & rest) {
    int const number = RequireNumber<int>(TakeWord(rest));
    Value const value = RequireKind(session.RequirePlace(rest), Kind::kError);
    Require(value.error == number, Describe(value));
}

void ExpectEmpty(Session & session, std::string & rest) {
    RequireKind(session.RequirePlace(rest), Kind::kEmpty);
}

void ExpectFormula(Session & session, std::string & rest) {
    SheetPlace const at = session.RequirePlace(TakeWord(rest));
    std::string const found = at.sheet.Formula(at.place).value_or("no formula");
    Require(found == rest, found);
}

void ExpectClass(Session & session, std::string & rest) {
    int const number = RequireNumber<int>(TakeWord(rest));
    Value const value = RequireKind(session.RequirePlace(rest), Kind::kNumber);
    Require(value.formatClass == number, "class " + std::to_string(value.formatClass));
}

void ExpectFormat(Session & session, std::string & rest) {
    SheetPlace const at = session.RequirePlace(TakeWord(rest));
    std::string const found = at.sheet.NumberFormat(at.place);
    Require(found == rest, found);
}

void ExpectMessage(Session & session, std::string & rest) {
    unsigned const id = RequireNumber<unsigned>(rest);
    std::vector<unsigned> const & messages = session.Messages();
    Require(std::count(messages.begin(), messages.end(), id) == 1, ToldMessage(session));
}

void ExpectNoMessage(Session & session, std::string & rest) {
    if (rest != "message") throw CommandError("no such cell: no");
    Require(session.Messages().empty(), ToldMessage(session));
}

constexpr Command kRows[] = {
    {"expect", "expect CELL TEXT", "the cell shows the text", ExpectShown},
    {"expect value", "expect value CELL NUMBER", "the cell holds the number", ExpectValue},
    {"expect text", "expect text CELL TEXT", "the cell holds the text", ExpectText},
    {"expect error", "expect error N CELL", "the cell holds the error of this number", ExpectError},
    {"expect empty", "expect empty CELL", "the cell holds nothing", ExpectEmpty},
    {"expect formula", "expect formula CELL TEXT", "the cell has the formula", ExpectFormula},
    {"expect class", "expect class N CELL", "the cell's number has this format class", ExpectClass},
    {"expect format", "expect format CELL TEXT", "the cell has the number format", ExpectFormat},
    {"expect message", "expect message N", "the last edit told this message, once", ExpectMessage},
    {"expect no", "expect no message", "the last edit told none", ExpectNoMessage},
};

} // namespace

std::span<Command const> Expectations() { return kRows; }

} // namespace cells::app
