// A language supplied from outside: the engine's strings in it, from a text file.
//
// The file is UTF-8. A line is the number of a string, a blank and its text; " | " separates the
// fields of a string with several: of a function its name, its description and the names of its
// arguments. Empty lines and lines that begin with "#" say nothing. What a file leaves out stays
// English. `resources/de.txt` is a complete one.
//
// With a language, formulas are typed and printed with its names of functions. Files hold the
// English names, so a document reads the same in every language.
#pragma once

#include "platform/CString.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace cells {

struct LanguageError {
    int line = 0; // from 1
    std::string message;
};

class CVCELLS_API Language {
public:
    // Reads the bytes of a file. Nothing, with the first error, when a line cannot be understood, a
    // number comes twice, or a function's name could not be typed: it is empty, has a character
    // that no name has, or is another function's name too. The engine must have been started.
    static std::optional<Language> Read(std::string_view utf8, LanguageError & error);

    // The text of a string; nothing where the file has none.
    std::optional<CString> Find(unsigned int id) const;

private:
    struct Entry {
        CString text;
        int line;
    };
    std::map<unsigned int, Entry> m_Strings;

    bool AddLine(std::string_view line, int number, LanguageError & error);
    bool CheckNames(LanguageError & error) const;
};

// From now on the engine speaks this language, formulas that stand in cells too. It takes the place
// of Services::loadString.
CVCELLS_API void UseLanguage(Language language);
// English again.
CVCELLS_API void UseEnglish();

} // namespace cells
