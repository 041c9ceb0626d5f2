// cvcells: calculates sheets, evaluates entries, runs sessions.
#include "cvcells/Commands.h"
#include "cvcells/Csv.h"
#include "host/Workbook.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <iostream>
#include <unistd.h>

namespace {

constexpr int kBadOutput = 1, kBadUsage = 2;

using cells::app::CalcOptions;

void AddLinks(CLI::App & command, cells::app::LinkOptions & links) {
    command
        .add_option("--link", links.files,
                    "a workbook, a text or a database that formulas may read by its file name")
        ->allow_extra_args(false);
    command
        .add_option("--peer", links.peers,
                    "the socket of a process that serves documents (cvcells serve)")
        ->allow_extra_args(false);
}

void AddProperties(CLI::App & command, std::vector<std::string> & properties) {
    command
        .add_option("--property", properties,
                    "NAME=TEXT, what the document says of itself, such as title=Plan")
        ->allow_extra_args(false);
}

void AddCalc(CLI::App & app, std::function<int()> & run) {
    auto options = std::make_shared<CalcOptions>();
    CLI::App * calc = app.add_subcommand("calc", "Read a sheet, bring it up to date and print it");
    calc->add_option("FILE", options->files,
                     "a saved document, or CSV and TSV in UTF-8 and files of the older version "
                     "(.cv15) as sheets of one workbook, named after the files; - is standard "
                     "input")
        ->required();
    calc->add_option("--sheet", options->sheet, "the sheet to print; the first otherwise");
    calc->add_option("--input-format", options->inputFormat, "csv or tsv; by extension otherwise")
        ->check(CLI::IsMember({"csv", "tsv"}));
    calc->add_option("--format", options->format, "table, csv, tsv or json")
        ->check(CLI::IsMember({"table", "csv", "tsv", "json"}))
        ->capture_default_str();
    calc->add_option("--show", options->show, "values or formulas")
        ->check(CLI::IsMember({"values", "formulas"}))
        ->capture_default_str();
    calc->add_option("--range", options->range, "the area to print, such as A1:F20");
    calc->add_option("--locale", options->locale,
                     "a locale tag, such as de-DE; the user's otherwise");
    calc->add_option("--set", options->set, "CELL=TEXT, entered after the load")
        ->allow_extra_args(false);
    calc->add_option("--number-format", options->formats,
                     "AREA=FORMAT, such as B2:B9=#,##0.00 or C1=percent:1")
        ->allow_extra_args(false);
    AddProperties(*calc, options->properties);
    AddLinks(*calc, options->links);
    calc->add_option("-o,--output", options->output, "the file to write; - is standard output")
        ->capture_default_str();
    calc->callback([&run, options] { run = [options] { return cells::app::Calc(*options); }; });
}

void AddConvert(CLI::App & app, std::function<int()> & run) {
    auto options = std::make_shared<cells::app::ConvertOptions>();
    CLI::App * convert =
        app.add_subcommand("convert", "Between CSV, TSV, saved documents (.cvs) and files of the "
                                      "older version (.cv15)");
    convert
        ->add_option("FILE", options->inputs,
                     "IN... OUT: a saved document, or texts and .cv15 files as its sheets; then "
                     "the file to write (.cvs, .csv, .tsv or .cv15)")
        ->required()
        ->expected(2, cells::host::Workbook::kMostSheets + 1);
    convert->add_option("--sheet", options->sheet, "the sheet to write, where a file holds one");
    convert->add_option("--show", options->show, "what a text holds: formulas or values")
        ->check(CLI::IsMember({"values", "formulas"}))
        ->capture_default_str();
    convert->add_option("--locale", options->locale,
                        "a locale tag, such as de-DE; the user's otherwise");
    AddProperties(*convert, options->properties);
    AddLinks(*convert, options->links);
    convert->callback([&run, options] {
        options->output = options->inputs.back();
        options->inputs.pop_back();
        run = [options] { return cells::app::Convert(*options); };
    });
}

void AddCheck(CLI::App & app, std::function<int()> & run) {
    auto file = std::make_shared<std::string>(), recovered = std::make_shared<std::string>();
    CLI::App * check =
        app.add_subcommand("check", "Verify a saved document and tell what it holds");
    check->add_option("FILE", *file, "a saved document, or a file of the older version (.cv15)")
        ->required();
    check->add_option("--recover", *recovered, "save the sheets that are whole as this document");
    check->callback(
        [&run, file, recovered] { run = [=] { return cells::app::Check(*file, *recovered); }; });
}

void AddEval(CLI::App & app, std::function<int()> & run) {
    auto options = std::make_shared<cells::app::EvalOptions>();
    CLI::App * eval =
        app.add_subcommand("eval", "Enter each text into a cell and print what the cell shows");
    eval->add_option("TEXT", options->texts, "what a user would type, such as =1+2")->required();
    eval->add_option("--set", options->set, "CELL=TEXT, entered before")->allow_extra_args(false);
    eval->add_option("--locale", options->locale,
                     "a locale tag, such as de-DE; the user's otherwise");
    eval->add_option("--format-string", options->format,
                     "a number format for the results: a name or a custom text");
    AddLinks(*eval, options->links);
    eval->callback([&run, options] { run = [options] { return cells::app::Eval(*options); }; });
}

void AddFormats(CLI::App & app, std::function<int()> & run) {
    auto locale = std::make_shared<std::string>();
    CLI::App * formats =
        app.add_subcommand("formats", "The built-in number formats, with an example each");
    formats->add_option("--locale", *locale, "a locale tag, such as de-DE; the user's otherwise");
    formats->callback([&run, locale] { run = [locale] { return cells::app::Formats(*locale); }; });
}

void AddRepl(CLI::App & app, std::function<int()> & run) {
    auto locale = std::make_shared<std::string>(), file = std::make_shared<std::string>();
    CLI::App * repl =
        app.add_subcommand("repl", "An interactive prompt; reads a session from a pipe too");
    repl->add_option("FILE", *file, "a sheet to load first");
    repl->add_option("--locale", *locale, "a locale tag, such as de-DE; the user's otherwise");
    auto links = std::make_shared<cells::app::LinkOptions>();
    AddLinks(*repl, *links);
    repl->callback([&run, locale, file, links] {
        run = [=] { return cells::app::Repl(*locale, *file, *links); };
    });
}

void AddServe(CLI::App & app, std::function<int()> & run) {
    auto options = std::make_shared<cells::app::ServeOptions>();
    CLI::App * serve = app.add_subcommand(
        "serve", "Let other processes of the user read documents, until it is interrupted");
    serve->add_option("DOC", options->files, "workbooks and texts, named by their files")
        ->required();
    serve->add_option("--socket", options->socket, "the file by which others reach them")
        ->required();
    serve->add_option("--locale", options->locale,
                      "a locale tag, such as de-DE; the user's otherwise");
    serve->add_flag("--writable", options->writable,
                    "others may set values; workbooks are saved at the end");
    AddLinks(*serve, options->links);
    serve->callback([&run, options] { run = [options] { return cells::app::Serve(*options); }; });
}

void AddTest(CLI::App & app, std::function<int()> & run) {
    auto locale = std::make_shared<std::string>("C");
    auto files = std::make_shared<std::vector<std::string>>();
    CLI::App * test =
        app.add_subcommand("test", "Run session files and report the expectations that fail");
    test->add_option("FILE", *files, "session files")->required();
    test->add_option("--locale", *locale, "a locale tag; C is the invariant locale")
        ->capture_default_str();
    test->callback(
        [&run, locale, files] { run = [=] { return cells::app::TestFiles(*locale, *files); }; });
}

void AddFunctions(CLI::App & app, std::function<int()> & run) {
    auto name = std::make_shared<std::string>(), format = std::make_shared<std::string>("text");
    CLI::App * functions = app.add_subcommand("functions", "The function catalogue");
    functions->add_option("NAME", *name, "one function only");
    functions->add_option("--format", *format, "text or markdown")
        ->check(CLI::IsMember({"text", "markdown"}))
        ->capture_default_str();
    functions->callback(
        [&run, name, format] { run = [=] { return cells::app::Functions(*name, *format); }; });
}

// A stream that the caller closed is a file that nothing can be written to: no file that is opened
// later may take its place.
void HoldClosedStreams() {
    for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) == -1 && open("/dev/null", O_RDONLY) != stream)
            std::_Exit(kBadOutput);
}

// The status of a command, whose output must have arrived.
int Finished(int status) {
    if (std::cout.flush()) return status;
    std::cerr << "cvcells: standard output cannot be written\n";
    return status ? status : kBadOutput;
}

} // namespace

int main(int argc, char ** argv) {
    HoldClosedStreams();
    CLI::App app("cvcells, a spreadsheet calculation engine", "cvcells");
    app.set_version_flag("--version", CVCELLS_VERSION);
    app.require_subcommand(1);
    app.fallthrough();
    std::string language;
    app.add_option("--language", language,
                   "the language of function names and messages, such as de, or a file of strings");
    app.footer("Example: cvcells eval --set A1=1200 '=A1*1.05'");
    std::function<int()> run;
    AddCalc(app, run);
    AddConvert(app, run);
    AddCheck(app, run);
    AddEval(app, run);
    AddFormats(app, run);
    AddRepl(app, run);
    AddServe(app, run);
    AddTest(app, run);
    AddFunctions(app, run);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const & error) {
        return Finished(app.exit(error) == 0 ? 0 : kBadUsage);
    }
    try {
        if (!language.empty()) cells::app::ChooseLanguage(language);
    } catch (cells::app::InputError const & error) {
        std::cerr << "cvcells: " << error.what() << '\n';
        return kBadUsage;
    }
    return Finished(run());
}
