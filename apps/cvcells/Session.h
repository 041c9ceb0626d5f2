// The session language: one command a line, at the prompt, in a pipe and in session files.
//
//     A1: =B1*2            enters a text into a cell
//     A1  or  A1:C3        shows values
//     Two!A1: 5            the same on another sheet of the workbook
//     ? A1                 tells all about a cell
//     expect A1 12.50      checks what a cell shows
//
// HelpText() lists every command.
#pragma once

#include "cvcells/LinkSet.h"
#include "host/Workbook.h"

#include <iosfwd>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace cells::app {

// A command that cannot be carried out.
struct CommandError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// An expectation that does not hold; what() tells what was found.
struct Unmet : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Session {
public:
    // `tellChanges`: print the cells that an edit changes.
    Session(std::string locale, std::ostream & out, bool tellChanges);

    // Carries out one line; false for "quit". Throws CommandError and Unmet.
    bool Execute(std::string const & line);

    // Files and processes that formulas may read.
    void AddLinks(LinkOptions const & links);
    bool HasPeers() const { return m_Links->Peers().Count() > 0; }
    // Answers other processes until the file has something to read.
    void ServeUntilInput(int file);

    host::Workbook & GetBook() { return *m_Book; }
    static std::string const & HelpText();

private:
    using Action = void (Session::*)(std::string const & rest);
    struct Command {
        char const * name;
        Action action;
    };
    static Command const kCommands[];

    void SetBook(std::unique_ptr<host::Workbook> book, std::string const & name,
                 host::ReadLinks read);
    void Watch(host::Sheet & sheet);
    // Places and areas as commands name them: behind "NAME!" on that sheet, which is the command's
    // sheet then.
    bool TakeSheet(std::string & text);
    std::optional<host::Place> FindPlace(std::string text);
    std::optional<host::Area> FindArea(std::string text);
    host::Place RequirePlace(std::string const & text);
    host::Area RequireArea(std::string const & text);
    void Edited();
    bool TryEnter(std::string const & line);
    void ShowArea(host::Area const & area);
    void Explain(std::string const & rest);
    void Clear(std::string const & rest);
    void Format(std::string const & rest);
    void DefineName(std::string const & rest);
    void SetFlag(std::string const & rest, host::CellFlag flag, bool on);
    void Lock(std::string const & rest);
    void Unlock(std::string const & rest);
    void Hide(std::string const & rest);
    void Unhide(std::string const & rest);
    void Protect(std::string const & rest);
    void Unprotect(std::string const & rest);
    void Find(std::string const & rest);
    void Replace(std::string const & rest);
    void SetLocale(std::string const & rest);
    void Load(std::string const & rest);
    void Save(std::string const & rest);
    void Idle(std::string const & rest);
    void Link(std::string const & rest);
    void Peer(std::string const & rest);
    void ShowLinks(std::string const & rest);
    void Refresh(std::string const & rest);
    void ShowOrSetProperty(std::string const & rest);
    void Sheets(std::string const & rest);
    void GoToSheet(std::string const & rest);
    void RenameSheet(std::string const & rest);
    void RemoveSheet(std::string const & rest);
    void InsertLines(std::string const & rest);
    void DeleteLines(std::string const & rest);
    void ChangeLines(std::string const & rest, bool insert);
    void Copy(std::string const & rest);
    void Move(std::string const & rest);
    void Undo(std::string const & rest);
    void Redo(std::string const & rest);
    void Replayed();
    void Help(std::string const & rest);
    void Expect(std::string const & rest);
    void ExpectKind(host::Place place, host::Kind kind) const;

    std::string m_Locale;
    std::unique_ptr<LinkSet> m_Links; // outlives the workbook
    std::unique_ptr<host::Workbook> m_Book;
    host::Sheet * m_Current = nullptr; // where commands go that name no sheet
    host::Sheet * m_Sheet = nullptr;   // the sheet of the running command
    std::ostream & m_Out;
    bool m_bTellChanges;
    std::vector<std::pair<host::Sheet *, host::Place>> m_Changed;
    std::vector<unsigned int> m_Messages; // of the last edit
};

} // namespace cells::app
