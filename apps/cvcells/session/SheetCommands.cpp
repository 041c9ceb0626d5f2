// Commands about the sheets of a workbook, their rows and columns, copies, and edits taken back.
#include "cvcells/session/Command.h"
#include "cvcells/session/Session.h"

#include <ostream>

namespace cells::app {
namespace {

using host::Sheet;

void ListSheets(Session & session, std::string &) {
    host::Workbook const & book = session.GetBook();
    for (int i = 0; i < book.Count(); ++i)
        session.Out() << (&book.At(i) == &session.CurrentSheet() ? "* " : "  ") << book.NameOf(i)
                      << '\n';
}

void GoToSheet(Session & session, std::string & rest) { session.GoToSheet(rest); }

void RenameSheet(Session & session, std::string & rest) {
    host::Workbook & book = session.GetBook();
    book.Rename(book.PositionOf(session.CurrentSheet()), rest);
    session.Edited();
}

void RemoveSheet(Session & session, std::string &) {
    host::Workbook & book = session.GetBook();
    if (book.Count() == 1) throw CommandError("it is the only sheet");
    book.Remove(book.PositionOf(session.CurrentSheet()));
    session.SheetsChanged();
    session.Edited();
}

using Change = bool (Sheet::*)(int first, int count);

// "rows 3 2" or "columns C": what `ofRows` or `ofColumns` does from there on.
void ChangeLines(Session & session, std::string & rest, Change ofRows, Change ofColumns) {
    std::string const kind = TakeWord(rest), at = TakeWord(rest);
    bool const isRows = kind == "rows" || kind == "row";
    if (!isRows && kind != "columns" && kind != "column")
        throw CommandError("expected rows or columns: " + kind);
    // A line is named as the place where it begins.
    auto const & [sheet, place] = session.RequirePlace(isRows ? "A" + at : at + "1");
    int const count = rest.empty() ? 1 : RequireNumber<int>(rest);
    session.ForgetMessages();
    bool const done =
        isRows ? (sheet.*ofRows)(place.row, count) : (sheet.*ofColumns)(place.column, count);
    if (!done) throw CommandError("cells would leave the grid, or are locked");
    session.Edited();
}

void InsertLines(Session & session, std::string & rest) {
    ChangeLines(session, rest, &Sheet::InsertRows, &Sheet::InsertColumns);
}

void DeleteLines(Session & session, std::string & rest) {
    ChangeLines(session, rest, &Sheet::DeleteRows, &Sheet::DeleteColumns);
}

void Copy(Session & session, std::string & rest) {
    SheetArea const from = session.RequireArea(TakeWord(rest));
    SheetPlace const to = session.RequirePlace(TakeWord(rest));
    if (!rest.empty() && rest != "transposed") throw CommandError("expected transposed: " + rest);
    session.ForgetMessages();
    to.sheet.CopyFrom(from.sheet, from.area, to.place, !rest.empty());
    session.Edited();
}

void Move(Session & session, std::string & rest) {
    SheetArea const from = session.RequireArea(TakeWord(rest));
    session.ForgetMessages();
    SheetPlace const to = session.RequirePlace(TakeWord(rest), from.sheet);
    if (&to.sheet != &from.sheet)
        throw CommandError("an area moves on its own sheet only; copy it");
    from.sheet.Move(from.area, to.place);
    session.Edited();
}

void Undo(Session & session, std::string &) {
    if (!session.GetBook().Undo()) throw CommandError("there is nothing to undo");
    session.SheetsChanged();
    session.Edited();
}

void Redo(Session & session, std::string &) {
    if (!session.GetBook().Redo()) throw CommandError("there is nothing to redo");
    session.SheetsChanged();
    session.Edited();
}

constexpr Command kRows[] = {
    {"sheets", "sheets", "the sheets of the workbook; \"*\" marks the present one", ListSheets},
    {"sheet", "sheet NAME",
     "go to a sheet, which is made if there is none; NAME!CELL and\n"
     "NAME!AREA name places of other sheets in every command",
     GoToSheet},
    {"rename", "rename NAME", "give the present sheet another name", RenameSheet},
    {"remove", "remove", "take the present sheet away", RemoveSheet},
    {"insert", "insert rows AT [COUNT]",
     "or columns; AT is the number of a row or the letters of a column", InsertLines},
    {"delete", "delete rows AT [COUNT]", "or columns, named as for insert", DeleteLines},
    {"copy", "copy AREA CELL", "to the cell and on; \"transposed\" after it swaps rows and columns",
     Copy},
    {"move", "move AREA CELL", "to the cell and on; formulas follow", Move},
    {"undo", "undo", "take edits back, one by one", Undo},
    {"redo", "redo", "do them again", Redo},
};

} // namespace

std::span<Command const> SheetCommands() { return kRows; }

} // namespace cells::app
