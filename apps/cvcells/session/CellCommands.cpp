// Commands about cells: their contents, formats, protection and names.
#include "cvcells/Output.h"
#include "cvcells/session/Command.h"
#include "cvcells/session/Session.h"

#include <iterator>
#include <ostream>

namespace cells::app {
namespace {

using host::CellFlag;
using host::Kind;
using host::Value;

constexpr char const * kClasses[] = {"general",    "fixed", "currency", "percent", "fraction",
                                     "scientific", "time",  "date",     "logical"};

std::string Joined(std::vector<std::string> const & words) {
    std::string text;
    for (std::string const & word : words) text += (text.empty() ? "" : " ") + word;
    return text.empty() ? "none" : text;
}

void Explain(Session & session, std::string & rest) {
    auto const & [sheet, place] = session.RequirePlace(rest);
    Value const value = sheet.Get(place);
    std::ostream & out = session.Out();
    out << host::NameOf(place) << '\n';
    out << "  shows       " << sheet.Text(place) << '\n';
    out << "  formula     " << sheet.Formula(place).value_or("none") << '\n';
    out << "  holds       " << Describe(value) << '\n';
    if (value.kind == Kind::kNumber) {
        bool const known = value.formatClass < int(std::size(kClasses));
        out << "  class       " << value.formatClass << ' '
            << (known ? kClasses[value.formatClass] : "") << '\n';
    }
    if (auto const target = sheet.Hyperlink(place)) out << "  leads to    " << *target << '\n';
    out << "  format      " << sheet.NumberFormat(place) << '\n';
    out << "  reads       " << Joined(sheet.Precedents(place)) << '\n';
    out << "  is read by  " << Joined(sheet.Dependents(place)) << '\n';
}

void Clear(Session & session, std::string & rest) {
    session.ForgetMessages();
    auto const & [sheet, place] = session.RequirePlace(rest);
    sheet.Clear(place);
    session.Edited();
}

void Format(Session & session, std::string & rest) {
    auto const & [sheet, area] = session.RequireArea(TakeWord(rest));
    session.ForgetMessages();
    try {
        if (rest == "none")
            sheet.ClearFormat(area);
        else
            sheet.SetNumberFormat(area, rest);
    } catch (std::invalid_argument const & failure) {
        throw CommandError(failure.what());
    }
    session.Edited();
}

template <CellFlag flag, bool on>
void SetFlag(Session & session, std::string & rest) {
    session.ForgetMessages();
    auto const & [sheet, area] = session.RequireArea(rest);
    sheet.SetFlag(area, flag, on);
    session.Edited();
}

void Protect(Session & session, std::string & rest) { session.CurrentSheet().Protect(rest); }

void Unprotect(Session & session, std::string & rest) {
    if (!session.CurrentSheet().Unprotect(rest)) throw CommandError("wrong password");
}

void Find(Session & session, std::string & rest) {
    host::Sheet & sheet = session.CurrentSheet();
    for (host::Place place : sheet.Find(rest))
        session.Out() << host::NameOf(place) << " = " << sheet.Text(place) << '\n';
}

void Replace(Session & session, std::string & rest) {
    std::string const text = TakeText(rest), by = TakeText(rest);
    if (text.empty()) throw CommandError("replace needs the text to look for and the new one");
    session.ForgetMessages();
    session.CurrentSheet().Replace(text, by);
    session.Edited();
}

void DefineName(Session & session, std::string & rest) {
    std::string const name = TakeWord(rest);
    auto const & [sheet, area] = session.RequireArea(rest);
    if (!sheet.DefineName(name, area)) throw CommandError("no good name: " + name);
    session.Edited();
}

constexpr Command kRows[] = {
    {"", "CELL: TEXT", "enter a text, as a user types it", nullptr},
    {"", "CELL, CELL:CELL", "show values", nullptr},
    {"?", "? CELL", "formula, kind, value, format class, precedents and dependents", Explain},
    {"clear", "clear CELL", "empty a cell", Clear},
    {"format", "format AREA FORMAT",
     "show numbers as general, number:2, currency, percent:1, fraction,\n"
     "scientific:3, time, date, logical, hex, oct, bin or by a custom\n"
     "format such as #,##0.00; none takes all formats away",
     Format},
    {"lock", "lock AREA", "keep the contents of cells while the sheet is protected",
     SetFlag<CellFlag::kLocked, true>},
    {"unlock", "unlock AREA", "let cells be edited at all times",
     SetFlag<CellFlag::kLocked, false>},
    {"hide", "hide AREA", "show nothing of cells while the sheet is protected",
     SetFlag<CellFlag::kHidden, true>},
    {"unhide", "unhide AREA", "show cells at all times", SetFlag<CellFlag::kHidden, false>},
    {"protect", "protect [PASSWORD]", "locked cells keep their contents, hidden ones show nothing",
     Protect},
    {"unprotect", "unprotect [PASSWORD]", "set the sheet free again", Unprotect},
    {"find", "find TEXT", "the cells that show the text", Find},
    {"replace", "replace TEXT TEXT", "the first by the second in all cells; quotes hold blanks",
     Replace},
    {"name", "name NAME AREA", "give a cell or an area a name", DefineName},
};

} // namespace

std::span<Command const> CellCommands() { return kRows; }

} // namespace cells::app
