// The session language: one command a line, at the prompt, in a pipe and in session files.
//
//     A1: =B1*2            enters a text into a cell
//     A1  or  A1:C3        shows values
//     ? A1                 tells all about a cell
//     expect A1 12.50      checks what a cell shows
//
// HelpText() lists every command.
#pragma once

#include "host/Sheet.h"

#include <iosfwd>
#include <memory>
#include <stdexcept>
#include <string>
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

    host::Sheet & GetSheet() { return *m_Sheet; }
    static std::string const & HelpText();

private:
    using Action = void (Session::*)(std::string const & rest);
    struct Command {
        char const * name;
        Action action;
    };
    static Command const kCommands[];

    void NewSheet(std::string const & locale);
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
    void Help(std::string const & rest);
    void Expect(std::string const & rest);
    void ExpectKind(host::Place place, host::Kind kind) const;

    std::unique_ptr<host::Sheet> m_Sheet;
    std::ostream & m_Out;
    bool m_bTellChanges;
    std::vector<host::Place> m_Changed;
    std::vector<unsigned int> m_Messages; // of the last edit
};

} // namespace cells::app
