#include "cvcells/Commands.h"

#include "cvcells/Documents.h"
#include "cvcells/Prompt.h"
#include "cvcells/session/Session.h"
#include "platform/Services.h"
#include "platform/Utf.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <sstream>
#include <unistd.h>

namespace cells::app {
namespace {

using host::Area;
using host::Place;
using host::Sheet;

// A line on a terminal for work of more than half a second.
class ProgressLine {
public:
    bool Tick(int done, int total) {
        using namespace std::chrono;
        if (!isatty(STDERR_FILENO) || steady_clock::now() - m_Start < milliseconds(500))
            return true;
        std::cerr << "\rcalculating " << 100 * done / std::max(total, 1) << "%" << std::flush;
        m_Shown = true;
        return true;
    }
    ~ProgressLine() {
        if (m_Shown) std::cerr << "\r                    \r" << std::flush;
    }

private:
    std::chrono::steady_clock::time_point m_Start = std::chrono::steady_clock::now();
    bool m_Shown = false;
};

// "A1=5" or "Two!A1=5": the text after the first "=" is entered.
void EnterAssignment(host::Workbook const & book, Sheet & sheet, std::string const & assignment) {
    std::size_t const equals = assignment.find('=');
    std::string name = assignment.substr(0, std::min(equals, assignment.size()));
    Sheet & target = TakeSheet(book, sheet, name);
    auto const place = host::ParsePlace(name);
    if (equals == std::string::npos || !place)
        throw InputError("--set " + assignment + ": expected CELL=TEXT");
    target.Enter(*place, assignment.substr(equals + 1));
}

// "B2:B9=#,##0.00": a number format for an area.
void FormatAssignment(host::Workbook const & book, Sheet & sheet, std::string const & assignment) {
    std::size_t const equals = assignment.find('=');
    std::string name = assignment.substr(0, std::min(equals, assignment.size()));
    Sheet & target = TakeSheet(book, sheet, name);
    auto const area = host::ParseArea(name);
    if (equals == std::string::npos || !area)
        throw InputError("--number-format " + assignment + ": expected AREA=FORMAT");
    target.SetNumberFormat(*area, assignment.substr(equals + 1));
}

std::optional<TextFormat> InputFormatOf(CalcOptions const & options) {
    if (options.inputFormat.empty()) return std::nullopt;
    return options.inputFormat == "tsv" ? TextFormat::kTsv : TextFormat::kCsv;
}

OutputFormat OutputFormatOf(std::string const & name) {
    if (name == "csv") return OutputFormat::kCsv;
    if (name == "tsv") return OutputFormat::kTsv;
    return name == "json" ? OutputFormat::kJson : OutputFormat::kTable;
}

Area ShownArea(Sheet const & sheet, std::string const & range) {
    if (range.empty()) return {{0, 0}, sheet.UsedArea().value_or(Area{}).last};
    if (auto const area = host::ParseArea(range)) return *area;
    throw InputError("--range " + range + ": no such area");
}

} // namespace

int Guarded(std::function<int()> const & work) {
    try {
        return work();
    } catch (std::exception const & failure) {
        std::cerr << "cvcells: " << failure.what() << '\n';
        return 1;
    }
}

int Calc(CalcOptions const & options) {
    return Guarded([&] {
        LinkSet links(options.locale);
        links.Add(options.links);
        auto const book = LoadWorkbook(options.files, options.locale, InputFormatOf(options));
        OpenIn(links, options.links, options.files[0], *book);
        for (std::string const & property : options.properties) SetProperty(*book, property);
        std::string range = options.range;
        Sheet & sheet = TakeSheet(*book, ChooseSheet(*book, options.sheet), range);
        ProgressLine progress;
        sheet.OnProgress([&](int done, int total) { return progress.Tick(done, total); });
        for (std::string const & assignment : options.set)
            EnterAssignment(*book, sheet, assignment);
        for (std::string const & format : options.formats) FormatAssignment(*book, sheet, format);
        book->Recalculate();
        Show const show = options.show == "formulas" ? Show::kFormulas : Show::kValues;
        WriteFile(options.output,
                  Render(sheet, ShownArea(sheet, range), OutputFormatOf(options.format), show));
        return 0;
    });
}

// Each text has a cell of its own below and beyond whatever is set.
int Eval(EvalOptions const & options) {
    return Guarded([&] {
        LinkSet links(options.locale);
        links.Add(options.links);
        host::Workbook book(options.locale);
        Sheet & sheet = book.Add("Sheet1");
        OpenIn(links, options.links, "eval", book);
        std::vector<std::string> const & texts = options.texts;
        for (std::string const & assignment : options.set) EnterAssignment(book, sheet, assignment);
        int const column = sheet.UsedArea() ? sheet.UsedArea()->last.column + 1 : 0;
        if (column >= host::kColumns || texts.size() > std::size_t(host::kRows))
            throw InputError("no room beyond the used part of the sheet");
        int row = 0;
        int status = 0;
        std::string message;
        sheet.OnMessage([&](unsigned int, std::string const & text) { message = text; });
        for (std::string const & text : texts) {
            Place const place{column, row++};
            message.clear();
            sheet.Enter(place, text);
            if (!options.format.empty()) sheet.SetNumberFormat({place, place}, options.format);
            book.Recalculate();
            std::cout << sheet.Text(place) << '\n';
            if (message.empty()) continue;
            std::cerr << "cvcells: " << text << ": " << message << '\n';
            status = 1;
        }
        return status;
    });
}

int Repl(std::string const & locale, std::string const & file, LinkOptions const & links) {
    return Guarded([&] {
        Prompt prompt;
        if (prompt.IsInteractive())
            PlatformServices().askYesNo = [](unsigned int, CString const & text) {
                return Prompt::Ask(ToUtf8(text));
            };
        Session session(locale, std::cout, true);
        session.AddLinks(links);
        if (!file.empty()) session.Execute("load " + file);
        std::function<void()> const serve = [&] { session.ServeUntilInput(STDIN_FILENO); };
        int status = 0;
        std::string line;
        for (int number = 1; prompt.Read(line, session.HasPeers() ? serve : nullptr); ++number) {
            try {
                if (!session.Execute(line)) break;
            } catch (std::exception const & failure) {
                if (!prompt.IsInteractive()) std::cerr << "line " << number << ": ";
                std::cerr << failure.what() << '\n';
                if (!prompt.IsInteractive()) status = 1;
            }
        }
        return status;
    });
}

int TestFiles(std::string const & locale, std::vector<std::string> const & files) {
    int failures = 0, expectations = 0;
    int const status = Guarded([&] {
        for (std::string const & file : files) {
            Session session(locale, std::cout, false);
            std::istringstream lines(ReadFile(file));
            std::string line;
            for (int number = 1; std::getline(lines, line); ++number) {
                if (line.rfind("expect", 0) == 0) ++expectations;
                try {
                    if (!session.Execute(line)) break;
                } catch (std::exception const & failure) {
                    ++failures;
                    std::cout << file << ":" << number << ": " << line << ": " << failure.what()
                              << '\n';
                }
            }
            for (std::string const & flaw : session.GetBook().CheckInvariants()) {
                ++failures;
                std::cout << file << ": " << flaw << '\n';
            }
        }
        return 0;
    });
    std::cout << expectations << " expectations, " << failures << " failed\n";
    return status || failures ? 1 : 0;
}

} // namespace cells::app
