// The commands of the program. Each gives an exit status: 0, or 1 for bad input.
#pragma once

#include "cvcells/Output.h"

#include <string>
#include <utility>
#include <vector>

namespace cells::app {

struct CalcOptions {
    std::string file;
    std::string inputFormat; // "csv", "tsv" or by extension
    std::string format = "table";
    std::string show = "values";
    std::string range;
    std::string locale;
    std::vector<std::string> set;     // CELL=TEXT, entered after the load
    std::vector<std::string> formats; // AREA=FORMAT
    std::string output = "-";
};

int Calc(CalcOptions const & options);
struct EvalOptions {
    std::string locale;
    std::vector<std::string> set, texts;
    std::string format; // a number format for all results; empty: none
};

int Eval(EvalOptions const & options);
// The built-in custom formats of a locale, with an example each.
int Formats(std::string const & locale);
int Repl(std::string const & locale, std::string const & file);
int TestFiles(std::string const & locale, std::vector<std::string> const & files);
// The language of formulas and messages from now on: a file, or the name of one in the folders of
// languages, such as "de". An unknown one throws InputError.
void ChooseLanguage(std::string const & nameOrFile);
// The function catalogue by category, or one function of it; as lines of text or as the page of the
// documentation.
int Functions(std::string const & name, std::string const & format);

} // namespace cells::app
