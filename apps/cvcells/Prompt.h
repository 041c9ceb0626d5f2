// Lines from a person at a terminal, with history and completion of function names, or from a pipe.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace cells::app {

class Prompt {
public:
    Prompt();
    Prompt(Prompt const &) = delete;
    Prompt & operator=(Prompt const &) = delete;
    ~Prompt();

    bool IsInteractive() const { return m_Editor != nullptr; }
    // The next line without its end; false at the end of the input. Until there is something to
    // read, `meanwhile` runs, if it is given.
    bool Read(std::string & line, std::function<void()> const & meanwhile = {});
    // A question to the person at the terminal.
    static bool Ask(std::string const & question);

private:
    struct Editor;
    std::unique_ptr<Editor> m_Editor; // null for a pipe
};

} // namespace cells::app
