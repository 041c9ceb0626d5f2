#include "cvcells/Prompt.h"

#include "formula/FunctionRegistry.h"
#include "platform/Utf.h"

#include <algorithm>
#include <cctype>
#include <histedit.h>
#include <iostream>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace cells::app {
namespace {

char const * ShowPrompt(EditLine *) { return "cvcells> "; }

std::vector<std::string> NamesBeginningWith(std::string word) {
    std::transform(word.begin(), word.end(), word.begin(),
                   [](unsigned char c) { return char(std::toupper(c)); });
    std::vector<std::string> names;
    for (int i = 0; i < GetBuiltInFuncSize(); ++i) {
        CCFunc const & func = *GetBuiltInFunc()[i];
        std::string const name = ToUtf8(std::wstring_view(func.LocalName()));
        if (func.kind == kFunction && !word.empty() && name.rfind(word, 0) == 0)
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// What all of the names begin with.
std::string CommonBeginning(std::vector<std::string> const & names) {
    std::string const &first = names.front(), &last = names.back();
    auto const ends = std::mismatch(first.begin(), first.end(), last.begin(), last.end());
    return {first.begin(), ends.first};
}

unsigned char Complete(EditLine * editor, int) {
    LineInfo const * const line = el_line(editor);
    char const * start = line->cursor;
    while (start > line->buffer && std::isalnum(static_cast<unsigned char>(start[-1]))) --start;
    std::string const word(start, line->cursor);
    std::vector<std::string> const names = NamesBeginningWith(word);
    if (names.empty()) return CC_ERROR;
    std::string completion = CommonBeginning(names);
    if (names.size() == 1) completion += '(';
    if (completion.size() == word.size()) {
        std::cout << '\n';
        for (std::string const & name : names) std::cout << name << ' ';
        std::cout << '\n';
        return CC_REDISPLAY;
    }
    el_deletestr(editor, int(word.size()));
    return el_insertstr(editor, completion.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
}

} // namespace

struct Prompt::Editor {
    EditLine * line = el_init("cvcells", stdin, stdout, stderr);
    History * history = history_init();
    HistEvent event{};

    Editor() {
        el_set(line, EL_PROMPT, ShowPrompt);
        el_set(line, EL_EDITOR, "emacs");
        ::history(history, &event, H_SETSIZE, 1000);
        el_set(line, EL_HIST, ::history, history);
        el_set(line, EL_ADDFN, "complete", "Complete a function name", Complete);
        el_set(line, EL_BIND, "^I", "complete", nullptr);
    }
    Editor(Editor const &) = delete;
    Editor & operator=(Editor const &) = delete;
    ~Editor() {
        history_end(history);
        el_end(line);
    }
};

Prompt::Prompt() {
    if (isatty(STDIN_FILENO)) m_Editor = std::make_unique<Editor>();
}

Prompt::~Prompt() = default;

namespace {

// A terminal that gives each key as it is pressed and shows none, as the editor wants them.
class KeyByKey {
public:
    KeyByKey() : m_bTerminal(tcgetattr(STDIN_FILENO, &m_Before) == 0) {
        termios keys = m_Before;
        keys.c_lflag &= ~tcflag_t(ICANON | ECHO);
        if (m_bTerminal) tcsetattr(STDIN_FILENO, TCSANOW, &keys);
    }
    KeyByKey(KeyByKey const &) = delete;
    KeyByKey & operator=(KeyByKey const &) = delete;
    ~KeyByKey() {
        if (m_bTerminal) tcsetattr(STDIN_FILENO, TCSANOW, &m_Before);
    }

private:
    termios m_Before{};
    bool m_bTerminal;
};

void RunUntilInput(bool interactive, std::function<void()> const & meanwhile) {
    if (!interactive) {
        if (std::cin.rdbuf()->in_avail() <= 0) meanwhile();
        return;
    }
    KeyByKey const keys;
    std::cout << ShowPrompt(nullptr) << std::flush;
    meanwhile();
    std::cout << '\r' << std::flush; // the editor shows its prompt itself
}

} // namespace

bool Prompt::Read(std::string & line, std::function<void()> const & meanwhile) {
    if (meanwhile) RunUntilInput(IsInteractive(), meanwhile);
    if (!m_Editor) return static_cast<bool>(std::getline(std::cin, line));
    int count = 0;
    char const * const text = el_gets(m_Editor->line, &count);
    if (!text || count <= 0) return false;
    line.assign(text, std::size_t(count));
    if (line.back() == '\n') line.pop_back();
    if (!line.empty()) history(m_Editor->history, &m_Editor->event, H_ENTER, line.c_str());
    return true;
}

bool Prompt::Ask(std::string const & question) {
    std::cout << question << " [y/N] " << std::flush;
    std::string answer;
    return std::getline(std::cin, answer) && !answer.empty() &&
           (answer[0] == 'y' || answer[0] == 'Y');
}

} // namespace cells::app
