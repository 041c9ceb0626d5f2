// The commands of the program. Each gives an exit status: 0, or 1 for bad input.
#pragma once

#include "cvcells/LinkSet.h"
#include "cvcells/Output.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace cells::app {

// Runs a command; a failure goes to standard error and gives 1.
int Guarded(std::function<int()> const & work);

struct CalcOptions {
    std::vector<std::string> files; // a document, or texts as the sheets of a workbook
    std::string sheet;              // the one to print; the first otherwise
    std::string inputFormat;        // "csv", "tsv" or by extension
    std::string format = "table";
    std::string show = "values";
    std::string range;
    std::string locale;
    std::vector<std::string> set;        // CELL=TEXT, entered after the load
    std::vector<std::string> formats;    // AREA=FORMAT
    std::vector<std::string> properties; // NAME=TEXT
    LinkOptions links;
    std::string output = "-";
};

int Calc(CalcOptions const & options);

struct ConvertOptions {
    std::vector<std::string> inputs;
    std::string output;
    std::string locale;
    std::string sheet;                   // to write, where a file holds one
    std::string show = "formulas";       // or values
    std::vector<std::string> properties; // NAME=TEXT
    LinkOptions links;
};

// Between texts, saved documents and files of the older version, by extension.
int Convert(ConvertOptions const & options);
// Tells what a document holds and what is damaged in it; 1 with any damage. What can be recovered
// is saved as `recovered`, if that is not empty.
int Check(std::string const & file, std::string const & recovered);

struct EvalOptions {
    std::string locale;
    std::vector<std::string> set, texts;
    std::string format; // a number format for all results; empty: none
    LinkOptions links;
};

int Eval(EvalOptions const & options);
// The built-in custom formats of a locale, with an example each.
int Formats(std::string const & locale);
int Repl(std::string const & locale, std::string const & file, LinkOptions const & links);
int TestFiles(std::string const & locale, std::vector<std::string> const & files);

struct ServeOptions {
    std::vector<std::string> files;
    std::string socket;
    std::string locale;
    bool writable = false;
    LinkOptions links;
};

// Answers other processes until it is told to stop.
int Serve(ServeOptions const & options);
// The language of formulas and messages from now on: a file, or the name of one in the folders of
// languages, such as "de". An unknown one throws InputError.
void ChooseLanguage(std::string const & nameOrFile);
// The function catalogue by category, or one function of it; as lines of text or as the page of the
// documentation.
int Functions(std::string const & name, std::string const & format);

} // namespace cells::app
