#include "cvcells/Documents.h"

#include "cvcells/Commands.h"
#include "cvcells/Output.h"
#include "host/LegacyFile.h"
#include "platform/Text.h"
#include "platform/Utf.h"

#include <filesystem>
#include <iostream>

namespace cells::app {
namespace {

using host::Sheet;
using host::Workbook;

// A name that the workbook takes: that of the file, with "_" for what no name has, and a number
// where another sheet has it already.
std::string AddSheetFor(Workbook & book, std::string const & file) {
    CString const title = FromUtf8(std::filesystem::path(file).stem().string());
    CString name;
    for (wchar_t unit : title.View()) name += IsAlnum(unit) ? unit : L'_';
    std::string const stem = ToUtf8(name);
    for (std::string const & candidate : {stem, "_" + stem})
        for (int number = 1; number <= Workbook::kMostSheets; ++number) {
            std::string const tried =
                number == 1 ? candidate : candidate + "_" + std::to_string(number);
            try {
                book.Add(tried);
                return tried;
            } catch (std::invalid_argument const &) {
                if (!book.Find(tried)) break; // no sheet can be called so
            }
        }
    throw InputError(file + ": too many sheets");
}

std::unique_ptr<Workbook> ReadDocument(std::string const & file, std::string const & locale) {
    try {
        return Workbook::Read(ReadFile(file), locale);
    } catch (host::DocumentError const & error) {
        throw InputError(file + ": " + error.what() +
                         "; \"cvcells check\" tells what can be recovered");
    }
}

// "plan.cv15: names that are lost: 2 (rate, tax)".
void PrintLoss(std::string const & file, host::LegacyLoss const & loss) {
    constexpr std::size_t kNamed = 10;
    std::string named;
    for (std::size_t i = 0; i < std::min(loss.where.size(), kNamed); ++i)
        named += (i ? ", " : "") + loss.where[i];
    if (loss.where.size() > kNamed) named += ", ...";
    std::cerr << "cvcells: " << file << ": " << loss.what;
    if (!named.empty()) std::cerr << ": " << loss.where.size() << " (" << named << ')';
    std::cerr << '\n';
}

void ReadLegacy(Sheet & sheet, std::string const & file) {
    try {
        for (host::LegacyLoss const & loss : host::ReadLegacyFile(ReadFile(file), sheet))
            PrintLoss(file, loss);
    } catch (host::DocumentError const & error) {
        throw InputError(file + ": " + error.what());
    }
}

// The one sheet that a file of the kind of `output` takes.
Sheet & OnlySheet(Workbook const & book, std::string const & name) {
    if (name.empty() && book.Count() > 1)
        throw InputError("there are " + std::to_string(book.Count()) +
                         " sheets: choose one with --sheet, or write a .cvs document");
    return ChooseSheet(book, name);
}

// What a file of the older version lacks of a workbook, beside what it lacks of its sheet.
void PrintLossesBeyond(Sheet const & sheet, Workbook const & book, std::string const & file) {
    host::LegacyLoss sheets{"sheets that are left out", {}};
    for (int i = 0; i < book.Count(); ++i)
        if (&book.At(i) != &sheet) sheets.where.push_back(book.NameOf(i));
    host::LegacyLoss properties{"properties that are lost", {}};
    for (host::Property property : host::AllProperties())
        if (!book.GetProperty(property).empty())
            properties.where.emplace_back(host::NameOf(property));
    for (host::LegacyLoss const & loss : {sheets, properties})
        if (!loss.where.empty()) PrintLoss(file, loss);
}

void PrintDamages(std::string const & file, std::vector<host::Damage> const & damages) {
    for (host::Damage const & damage : damages)
        std::cout << file << ": at byte " << damage.offset << ": " << damage.what << '\n';
}

void PrintSheets(Workbook & book) {
    for (int i = 0; i < book.Count(); ++i) {
        int values = 0, formulas = 0;
        Sheet & sheet = book.At(i);
        sheet.ForEachOccupied(
            [&](host::Place place) { ++(sheet.Formula(place) ? formulas : values); });
        auto const used = sheet.UsedArea();
        std::cout << book.NameOf(i) << ": " << values << " values, " << formulas << " formulas"
                  << (used ? " in " + host::NameOf(*used) : std::string())
                  << (sheet.IsProtected() ? ", protected" : "") << '\n';
    }
}

} // namespace

void OpenIn(LinkSet & links, LinkOptions const & options, std::string const & name,
            Workbook & book) {
    if (!options.IsEmpty()) links.Links().Open(name, book, host::ReadLinks::kYes);
}

bool IsDocumentName(std::string const & path) {
    return std::filesystem::path(path).extension() == ".cvs";
}

bool IsLegacyName(std::string const & path) {
    return std::filesystem::path(path).extension() == ".cv15";
}

void WriteLegacy(Sheet & sheet, std::string const & file) {
    host::LegacyFile const legacy = host::WriteLegacyFile(sheet);
    WriteFile(file, legacy.bytes);
    for (host::LegacyLoss const & loss : legacy.losses) PrintLoss(file, loss);
}

std::unique_ptr<Workbook> LoadWorkbook(std::vector<std::string> const & files,
                                       std::string const & locale,
                                       std::optional<TextFormat> format) {
    if (files.size() == 1 && IsDocumentName(files[0])) return ReadDocument(files[0], locale);
    auto book = std::make_unique<Workbook>(locale);
    std::vector<std::string> names;
    for (std::string const & file : files) {
        if (IsDocumentName(file)) throw InputError(file + ": a document is read by itself");
        names.push_back(AddSheetFor(*book, file));
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        Sheet & sheet = (*book)[names[i]];
        if (IsLegacyName(files[i]))
            ReadLegacy(sheet, files[i]);
        else
            LoadText(sheet, files[i], ReadFile(files[i]), format.value_or(FormatOf(files[i])));
    }
    return book;
}

Sheet & ChooseSheet(Workbook const & book, std::string const & name) {
    if (book.Count() == 0) throw InputError("the workbook has no sheet");
    if (name.empty()) return book.At(0);
    if (Sheet * sheet = book.Find(name)) return *sheet;
    throw InputError("--sheet " + name + ": no such sheet");
}

Sheet & TakeSheet(Workbook const & book, Sheet & sheet, std::string & text) {
    std::size_t const bang = text.find('!');
    if (bang == std::string::npos) return sheet;
    std::string const name = text.substr(0, bang);
    text.erase(0, bang + 1);
    if (Sheet * named = book.Find(name)) return *named;
    throw InputError(name + ": no such sheet");
}

void SetProperty(Workbook & book, std::string const & assignment) {
    std::size_t const equals = assignment.find('=');
    auto const property = host::FindProperty(assignment.substr(0, equals));
    if (equals == std::string::npos || !property) {
        std::string names;
        for (host::Property known : host::AllProperties())
            names += " " + std::string(host::NameOf(known));
        throw InputError("--property " + assignment + ": expected NAME=TEXT, with a name of" +
                         names);
    }
    try {
        book.SetProperty(*property, assignment.substr(equals + 1));
    } catch (std::invalid_argument const & error) {
        throw InputError("--property " + assignment + ": " + error.what());
    }
}

int Convert(ConvertOptions const & options) {
    return Guarded([&] {
        LinkSet links(options.locale);
        links.Add(options.links);
        auto const book = LoadWorkbook(options.inputs, options.locale);
        for (std::string const & property : options.properties) SetProperty(*book, property);
        OpenIn(links, options.links, options.output, *book);
        book->Recalculate();
        if (IsDocumentName(options.output)) {
            book->Save(options.output);
            return 0;
        }
        Sheet & sheet = OnlySheet(*book, options.sheet);
        if (IsLegacyName(options.output)) {
            WriteLegacy(sheet, options.output);
            PrintLossesBeyond(sheet, *book, options.output);
            return 0;
        }
        host::Area const area{{0, 0}, sheet.UsedArea().value_or(host::Area{}).last};
        WriteFile(options.output,
                  Render(sheet, area,
                         FormatOf(options.output) == TextFormat::kTsv ? OutputFormat::kTsv
                                                                      : OutputFormat::kCsv,
                         options.show == "values" ? Show::kValues : Show::kFormulas));
        return 0;
    });
}

int Check(std::string const & file, std::string const & recovered) {
    return Guarded([&] {
        auto const found = IsLegacyName(file) ? Workbook::Recovered{LoadWorkbook({file}, "C"), {}}
                                              : Workbook::Recover(ReadFile(file), "C");
        PrintDamages(file, found.damages);
        PrintSheets(*found.book);
        for (host::Property property : host::AllProperties())
            if (std::string const text = found.book->GetProperty(property); !text.empty())
                std::cout << host::NameOf(property) << ": " << text << '\n';
        for (std::string const & flaw : found.book->CheckInvariants())
            std::cout << file << ": " << flaw << '\n';
        if (!recovered.empty()) found.book->Save(recovered);
        return found.damages.empty() ? 0 : 1;
    });
}

} // namespace cells::app
