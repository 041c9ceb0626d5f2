// The session language: one command a line, at the prompt, in a pipe and in session files.
//
//     A1: =B1*2            enters a text into a cell
//     A1  or  A1:C3        shows values
//     Two!A1: 5            the same on another sheet of the workbook
//     ? A1                 tells all about a cell
//     expect A1 12.50      checks what a cell shows
//
// The command `help` lists all; they are rows of Command.h.
#pragma once

#include "cvcells/LinkSet.h"
#include "cvcells/session/Words.h"
#include "host/Workbook.h"

#include <iosfwd>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace cells::app {

// An expectation that does not hold; what() tells what was found.
struct Unmet : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct SheetPlace {
    host::Sheet & sheet;
    host::Place place;
};

struct SheetArea {
    host::Sheet & sheet;
    host::Area area;
};

class Session {
public:
    // Begins with an empty workbook. `tellChanges`: print messages and the cells that an edit
    // changes. `out` must live as long as the session.
    Session(std::string locale, std::ostream & out, bool tellChanges);

    // Carries out one line; false for "quit". Throws CommandError and Unmet.
    bool Execute(std::string const & line);

    host::Workbook & GetBook() { return *m_Book; }
    // Files and processes that formulas may read.
    void AddLinks(LinkOptions const & links);
    bool HasPeers() const { return m_Links->Peers().Count() > 0; }
    // Answers other processes until the file has something to read.
    void ServeUntilInput(int file) { m_Links->Peers().PollUntilReadable(file); }

    // What follows is for the commands.

    std::ostream & Out() { return m_Out; }
    LinkSet & GetLinks() { return *m_Links; }
    // Reads all links anew.
    void RefreshLinks();
    std::string const & Locale() const { return m_Locale; }
    // An empty workbook in another locale.
    void SetLocale(std::string const & locale);
    // Another workbook under a name by which formulas may read it.
    void SetBook(std::unique_ptr<host::Workbook> book, std::string const & name,
                 host::ReadLinks read);

    // Where commands go that name no sheet.
    host::Sheet & CurrentSheet() { return *m_Current; }
    // Makes the sheet of this name the current one; a new sheet, if there is none.
    void GoToSheet(std::string const & name);
    // After sheets came or went: at least one is there, and one of them is the current one.
    void SheetsChanged();

    // The place or area that a text names: on the sheet of "NAME!" before it, otherwise on the
    // current one. Throw CommandError.
    SheetPlace RequirePlace(std::string const & text) { return RequirePlace(text, *m_Current); }
    SheetPlace RequirePlace(std::string const & text, host::Sheet & otherwise);
    SheetArea RequireArea(std::string const & text);

    // Brings dependents up to date and tells what changed.
    void Edited();
    // What changed since the last edit is not told.
    void ForgetChanges() { m_Changed.clear(); }
    // Numbers of the messages since they were forgotten: those of the last edit.
    std::vector<unsigned> const & Messages() const { return m_Messages; }
    void ForgetMessages() { m_Messages.clear(); }

private:
    void Watch(host::Sheet & sheet);
    host::Sheet * TakeSheet(std::string & text, host::Sheet & otherwise);
    std::optional<SheetPlace> FindPlace(std::string text, host::Sheet & otherwise);
    std::optional<SheetArea> FindArea(std::string text);
    bool TryShow(std::string const & line);
    bool TryEnter(std::string const & line);

    std::string m_Locale;
    std::unique_ptr<LinkSet> m_Links; // outlives the workbook
    std::unique_ptr<host::Workbook> m_Book;
    host::Sheet * m_Current = nullptr;
    std::ostream & m_Out;
    bool m_bTellChanges;
    std::vector<std::pair<host::Sheet *, host::Place>> m_Changed;
    std::vector<unsigned> m_Messages;
};

} // namespace cells::app
