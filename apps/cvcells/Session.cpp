#include "cvcells/Session.h"

#include "cvcells/Documents.h"
#include "cvcells/Output.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <ostream>
#include <stdexcept>
#include <tuple>

namespace cells::app {
namespace {

using host::Area;
using host::Kind;
using host::Place;
using host::Value;

constexpr int kRememberedEdits = 100;
constexpr char const * kClasses[] = {"general",    "fixed", "currency", "percent", "fraction",
                                     "scientific", "time",  "date",     "logical"};

std::string Trimmed(std::string const & text) {
    std::size_t const first = text.find_first_not_of(" \t\r");
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// Cuts the first word off.
std::string TakeWord(std::string & text) {
    std::size_t const end = std::min(text.find_first_of(" \t"), text.size());
    std::string const word = text.substr(0, end);
    text = Trimmed(text.substr(end));
    return word;
}

// Cuts off the first word, or the text between quotes that stands there.
std::string TakeText(std::string & text) {
    std::size_t const end = text.empty() || text[0] != '"' ? std::string::npos : text.find('"', 1);
    if (end == std::string::npos) return TakeWord(text);
    std::string const quoted = text.substr(1, end - 1);
    text = Trimmed(text.substr(end + 1));
    return quoted;
}

template <typename Number>
Number RequireNumber(std::string const & text) {
    Number number{};
    auto const result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        throw CommandError("no number: " + (text.empty() ? "(nothing)" : text));
    return number;
}

std::string Describe(Value const & value) {
    char number[40];
    switch (value.kind) {
    case Kind::kNumber:
        std::snprintf(number, sizeof number, "%.17g", value.number);
        return std::string("number ") + number;
    case Kind::kText:
        return "text " + value.text;
    case Kind::kError:
        return "error " + std::to_string(value.error);
    default:
        return "empty";
    }
}

std::string Joined(std::vector<std::string> const & words) {
    std::string text;
    for (std::string const & word : words) text += (text.empty() ? "" : " ") + word;
    return text.empty() ? "none" : text;
}

} // namespace

Session::Command const Session::kCommands[] = {
    {"?", &Session::Explain},
    {"clear", &Session::Clear},
    {"format", &Session::Format},
    {"name", &Session::DefineName},
    {"lock", &Session::Lock},
    {"unlock", &Session::Unlock},
    {"hide", &Session::Hide},
    {"unhide", &Session::Unhide},
    {"protect", &Session::Protect},
    {"unprotect", &Session::Unprotect},
    {"find", &Session::Find},
    {"replace", &Session::Replace},
    {"locale", &Session::SetLocale},
    {"load", &Session::Load},
    {"save", &Session::Save},
    {"idle", &Session::Idle},
    {"help", &Session::Help},
    {"expect", &Session::Expect},
    {"sheets", &Session::Sheets},
    {"sheet", &Session::GoToSheet},
    {"rename", &Session::RenameSheet},
    {"remove", &Session::RemoveSheet},
    {"insert", &Session::InsertLines},
    {"delete", &Session::DeleteLines},
    {"copy", &Session::Copy},
    {"move", &Session::Move},
    {"undo", &Session::Undo},
    {"redo", &Session::Redo},
    {"link", &Session::Link},
    {"peer", &Session::Peer},
    {"links", &Session::ShowLinks},
    {"refresh", &Session::Refresh},
    {"property", &Session::ShowOrSetProperty},
};

std::string const & Session::HelpText() {
    static std::string const text =
        "CELL: TEXT            enter a text, as a user types it\n"
        "CELL, CELL:CELL       show values\n"
        "? CELL                formula, kind, value, format class, precedents and dependents\n"
        "clear CELL            empty a cell\n"
        "format AREA FORMAT    show numbers as general, number:2, currency, percent:1, fraction,\n"
        "                      scientific:3, time, date, logical, hex, oct, bin or by a custom\n"
        "                      format such as #,##0.00; none takes all formats away\n"
        "lock AREA, unlock AREA, hide AREA, unhide AREA\n"
        "protect [PASSWORD], unprotect [PASSWORD]\n"
        "                      locked cells keep their contents, hidden ones show nothing\n"
        "find TEXT             the cells that show the text\n"
        "replace TEXT TEXT     the first by the second in all cells; quotes hold blanks\n"
        "name NAME AREA        give a cell or an area a name\n"
        "sheets                the sheets of the workbook; \"*\" marks the present one\n"
        "sheet NAME            go to a sheet, which is made if there is none; NAME!CELL and\n"
        "                      NAME!AREA name places of other sheets in every command\n"
        "rename NAME, remove   the present sheet\n"
        "insert rows AT [COUNT], insert columns AT [COUNT], delete rows ..., delete columns ...\n"
        "                      AT is the number of a row or the letters of a column\n"
        "copy AREA CELL [transposed], move AREA CELL\n"
        "undo, redo            edits, one by one\n"
        "locale TAG            start an empty workbook in another locale, such as de-DE\n"
        "load FILE, save FILE  a workbook (.cvs), or the present sheet as comma or tab separated\n"
        "                      text or in the older version (.cv15), by extension\n"
        "link FILE             let formulas read another workbook, a text or a database\n"
        "peer SOCKET           let formulas read what another process serves there\n"
        "links                 what can be read\n"
        "refresh               read all links anew\n"
        "property [NAME [TEXT]]  what the workbook says of itself, such as its title; - is "
        "nothing\n"
        "idle                  bring everything up to date (edits do it by themselves)\n"
        "expect CELL TEXT      the cell shows the text; also: expect value CELL NUMBER,\n"
        "                      expect text CELL TEXT, expect error N CELL, expect empty CELL,\n"
        "                      expect formula CELL TEXT, expect class N CELL,\n"
        "                      expect format CELL TEXT,\n"
        "                      expect message N, expect no message\n"
        "# ...                 a comment\n"
        "help, quit\n";
    return text;
}

Session::Session(std::string locale, std::ostream & out, bool tellChanges)
    : m_Locale(std::move(locale)), m_Links(std::make_unique<LinkSet>(m_Locale)), m_Out(out),
      m_bTellChanges(tellChanges) {
    SetLocale(m_Locale);
}

void Session::SetBook(std::unique_ptr<host::Workbook> book, std::string const & name,
                      host::ReadLinks read) {
    if (book->Count() == 0) book->Add("Sheet1");
    m_Changed.clear();
    m_Book = std::move(book);
    m_Links->Links().Open(name, *m_Book, read);
    m_Book->KeepHistory(kRememberedEdits);
    for (int i = 0; i < m_Book->Count(); ++i) Watch(m_Book->At(i));
    m_Current = m_Sheet = &m_Book->At(0);
}

void Session::Watch(host::Sheet & sheet) {
    sheet.OnChanged([this, &sheet](Place place) { m_Changed.emplace_back(&sheet, place); });
    sheet.OnMessage([this](unsigned int id, std::string const & text) {
        m_Messages.push_back(id);
        if (m_bTellChanges) m_Out << text << '\n';
    });
}

bool Session::TakeSheet(std::string & text) {
    std::size_t const bang = text.find('!');
    if (bang == std::string::npos) return true;
    host::Sheet * const sheet = m_Book->Find(Trimmed(text.substr(0, bang)));
    if (!sheet) return false;
    m_Sheet = sheet;
    text = Trimmed(text.substr(bang + 1));
    return true;
}

std::optional<Place> Session::FindPlace(std::string text) {
    return TakeSheet(text) ? host::ParsePlace(text) : std::nullopt;
}

std::optional<Area> Session::FindArea(std::string text) {
    return TakeSheet(text) ? host::ParseArea(text) : std::nullopt;
}

Place Session::RequirePlace(std::string const & text) {
    if (auto const place = FindPlace(text)) return *place;
    throw CommandError("no such cell: " + (text.empty() ? "(nothing)" : text));
}

Area Session::RequireArea(std::string const & text) {
    if (auto const area = FindArea(text)) return *area;
    throw CommandError("no such area: " + (text.empty() ? "(nothing)" : text));
}

// Brings dependents up to date and tells what changed.
void Session::Edited() {
    m_Book->Recalculate();
    std::vector<std::pair<int, Place>> changed; // by the position of the sheet
    for (auto const & [sheet, place] : m_Changed)
        for (int i = 0; i < m_Book->Count(); ++i)
            if (&m_Book->At(i) == sheet) changed.emplace_back(i, place);
    m_Changed.clear();
    std::sort(changed.begin(), changed.end(), [](auto const & a, auto const & b) {
        return std::tuple(a.first, a.second.row, a.second.column) <
               std::tuple(b.first, b.second.row, b.second.column);
    });
    changed.erase(std::unique(changed.begin(), changed.end()), changed.end());
    if (!m_bTellChanges) return;
    for (auto const & [position, place] : changed) {
        host::Sheet const & sheet = m_Book->At(position);
        m_Out << (&sheet == m_Current ? "" : m_Book->NameOf(position) + "!") << host::NameOf(place)
              << " = " << sheet.Text(place) << '\n';
    }
}

// "A1: text"; an area has no blank behind its colon.
bool Session::TryEnter(std::string const & line) {
    std::size_t const colon = line.find(':');
    if (colon == std::string::npos) return false;
    auto const place = FindPlace(Trimmed(line.substr(0, colon)));
    if (!place) return false;
    std::string const text = line.substr(colon + 1);
    m_Messages.clear();
    m_Sheet->Enter(*place, text.empty() || text[0] != ' ' ? text : text.substr(1));
    Edited();
    return true;
}

bool Session::Execute(std::string const & raw) {
    std::string line = Trimmed(raw);
    if (line.empty() || line[0] == '#') return true;
    if (line == "quit") return false;
    m_Sheet = m_Current;
    if (auto const area = FindArea(line)) {
        ShowArea(*area);
        return true;
    }
    m_Sheet = m_Current;
    if (TryEnter(line)) return true;
    m_Sheet = m_Current;
    if (line[0] == '?') line.insert(1, " ");
    std::string const word = TakeWord(line);
    for (Command const & command : kCommands) {
        if (word != command.name) continue;
        (this->*command.action)(line);
        return true;
    }
    if (word.find('!') != std::string::npos) throw CommandError("no such cell: " + word);
    throw CommandError("unknown command: " + word + " (help lists them)");
}

void Session::ShowArea(Area const & area) {
    if (area.first == area.last)
        m_Out << m_Sheet->Text(area.first) << '\n';
    else
        m_Out << Render(*m_Sheet, area, OutputFormat::kTable, Show::kValues);
}

void Session::Explain(std::string const & rest) {
    Place const place = RequirePlace(rest);
    Value const value = m_Sheet->Get(place);
    m_Out << host::NameOf(place) << '\n';
    m_Out << "  shows       " << m_Sheet->Text(place) << '\n';
    m_Out << "  formula     " << m_Sheet->Formula(place).value_or("none") << '\n';
    m_Out << "  holds       " << Describe(value) << '\n';
    if (value.kind == Kind::kNumber) {
        bool const known = value.formatClass < int(std::size(kClasses));
        m_Out << "  class       " << value.formatClass << ' '
              << (known ? kClasses[value.formatClass] : "") << '\n';
    }
    if (auto const target = m_Sheet->Hyperlink(place)) m_Out << "  leads to    " << *target << '\n';
    m_Out << "  format      " << m_Sheet->NumberFormat(place) << '\n';
    m_Out << "  reads       " << Joined(m_Sheet->Precedents(place)) << '\n';
    m_Out << "  is read by  " << Joined(m_Sheet->Dependents(place)) << '\n';
}

void Session::Clear(std::string const & rest) {
    m_Messages.clear();
    Place const place = RequirePlace(rest);
    m_Sheet->Clear(place);
    Edited();
}

void Session::Format(std::string const & rest) {
    std::string format = rest;
    Area const area = RequireArea(TakeWord(format));
    m_Messages.clear();
    try {
        if (format == "none")
            m_Sheet->ClearFormat(area);
        else
            m_Sheet->SetNumberFormat(area, format);
    } catch (std::invalid_argument const & failure) {
        throw CommandError(failure.what());
    }
    Edited();
}

void Session::SetFlag(std::string const & rest, host::CellFlag flag, bool on) {
    m_Messages.clear();
    Area const area = RequireArea(rest);
    m_Sheet->SetFlag(area, flag, on);
    Edited();
}

void Session::Lock(std::string const & rest) { SetFlag(rest, host::CellFlag::kLocked, true); }
void Session::Unlock(std::string const & rest) { SetFlag(rest, host::CellFlag::kLocked, false); }
void Session::Hide(std::string const & rest) { SetFlag(rest, host::CellFlag::kHidden, true); }
void Session::Unhide(std::string const & rest) { SetFlag(rest, host::CellFlag::kHidden, false); }

void Session::Protect(std::string const & rest) { m_Sheet->Protect(rest); }

void Session::Unprotect(std::string const & rest) {
    if (!m_Sheet->Unprotect(rest)) throw CommandError("wrong password");
}

void Session::Find(std::string const & rest) {
    for (Place place : m_Sheet->Find(rest))
        m_Out << host::NameOf(place) << " = " << m_Sheet->Text(place) << '\n';
}

void Session::Replace(std::string const & rest) {
    std::string words = rest;
    std::string const text = TakeText(words), by = TakeText(words);
    if (text.empty()) throw CommandError("replace needs the text to look for and the new one");
    m_Messages.clear();
    m_Sheet->Replace(text, by);
    Edited();
}

void Session::DefineName(std::string const & rest) {
    std::string words = rest;
    std::string const name = TakeWord(words);
    Area const area = RequireArea(words);
    if (!m_Sheet->DefineName(name, area)) throw CommandError("no good name: " + name);
    Edited();
}

void Session::SetLocale(std::string const & rest) {
    SetBook(std::make_unique<host::Workbook>(rest), "Untitled", host::ReadLinks::kYes);
    m_Locale = rest;
}

void Session::Load(std::string const & rest) {
    if (IsDocumentName(rest) || IsLegacyName(rest))
        return SetBook(LoadWorkbook({rest}, m_Locale), rest, host::ReadLinks::kAsk);
    LoadText(*m_Sheet, rest, ReadFile(rest), FormatOf(rest));
    m_Changed.clear();
}

void Session::Save(std::string const & rest) {
    if (rest.empty()) throw CommandError("save needs the name of a file");
    if (IsDocumentName(rest)) return m_Book->Save(rest);
    if (IsLegacyName(rest)) return WriteLegacy(*m_Sheet, rest);
    Area const area{{0, 0}, m_Sheet->UsedArea().value_or(Area{}).last};
    OutputFormat const format =
        FormatOf(rest) == TextFormat::kTsv ? OutputFormat::kTsv : OutputFormat::kCsv;
    WriteFile(rest, Render(*m_Sheet, area, format, Show::kFormulas));
}

// Sheets

void Session::Sheets(std::string const &) {
    for (int i = 0; i < m_Book->Count(); ++i)
        m_Out << (&m_Book->At(i) == m_Current ? "* " : "  ") << m_Book->NameOf(i) << '\n';
}

void Session::GoToSheet(std::string const & rest) {
    m_Current = m_Book->Find(rest);
    if (m_Current) return;
    m_Current = m_Sheet;
    m_Current = &m_Book->Add(rest);
    Watch(*m_Current);
    Edited();
}

void Session::RenameSheet(std::string const & rest) {
    m_Book->Rename(m_Book->PositionOf(*m_Current), rest);
    Edited();
}

void Session::RemoveSheet(std::string const &) {
    if (m_Book->Count() == 1) throw CommandError("it is the only sheet");
    m_Book->Remove(m_Book->PositionOf(*m_Current));
    m_Current = &m_Book->At(0);
    Edited();
}

// Cells that move

void Session::InsertLines(std::string const & rest) { ChangeLines(rest, true); }
void Session::DeleteLines(std::string const & rest) { ChangeLines(rest, false); }

void Session::ChangeLines(std::string const & rest, bool insert) {
    std::string words = rest;
    std::string const kind = TakeWord(words), at = TakeWord(words);
    bool const isRows = kind == "rows" || kind == "row";
    if (!isRows && kind != "columns" && kind != "column")
        throw CommandError("expected rows or columns: " + kind);
    // A line is named as the place where it begins.
    Place const first = RequirePlace(isRows ? "A" + at : at + "1");
    int const count = words.empty() ? 1 : RequireNumber<int>(words);
    m_Messages.clear();
    host::Sheet & sheet = *m_Sheet;
    bool const done =
        isRows   ? insert ? sheet.InsertRows(first.row, count) : sheet.DeleteRows(first.row, count)
          : insert ? sheet.InsertColumns(first.column, count)
                 : sheet.DeleteColumns(first.column, count);
    if (!done) throw CommandError("cells would leave the grid, or are locked");
    Edited();
}

void Session::Copy(std::string const & rest) {
    std::string words = rest;
    Area const area = RequireArea(TakeWord(words));
    host::Sheet const & source = *m_Sheet;
    m_Sheet = m_Current;
    Place const to = RequirePlace(TakeWord(words));
    if (!words.empty() && words != "transposed")
        throw CommandError("expected transposed: " + words);
    m_Messages.clear();
    m_Sheet->CopyFrom(source, area, to, !words.empty());
    Edited();
}

void Session::Move(std::string const & rest) {
    std::string words = rest;
    Area const area = RequireArea(TakeWord(words));
    host::Sheet const * const source = m_Sheet;
    m_Messages.clear();
    Place const to = RequirePlace(TakeWord(words));
    if (m_Sheet != source) throw CommandError("an area moves on its own sheet only; copy it");
    m_Sheet->Move(area, to);
    Edited();
}

void Session::Undo(std::string const &) {
    if (!m_Book->Undo()) throw CommandError("there is nothing to undo");
    Replayed();
}

void Session::Redo(std::string const &) {
    if (!m_Book->Redo()) throw CommandError("there is nothing to redo");
    Replayed();
}

// The present sheet may be gone.
void Session::Replayed() {
    bool found = false;
    for (int i = 0; i < m_Book->Count(); ++i) found = found || &m_Book->At(i) == m_Current;
    if (m_Book->Count() == 0) Watch(m_Book->Add("Sheet1"));
    if (!found) m_Current = &m_Book->At(0);
    Edited();
}

void Session::Idle(std::string const &) { Edited(); }

// Links and properties

void Session::AddLinks(LinkOptions const & links) {
    m_Links->Add(links);
    if (!links.IsEmpty()) Refresh({});
}

void Session::ServeUntilInput(int file) { m_Links->Peers().PollUntilReadable(file); }

void Session::Link(std::string const & rest) {
    if (rest.empty()) throw CommandError("link needs the name of a file");
    m_Links->AddFile(rest);
    Refresh({});
}

void Session::Peer(std::string const & rest) {
    m_Links->AddPeer(rest);
    Refresh({});
}

void Session::ShowLinks(std::string const &) {
    for (std::string const & name : m_Links->Links().Documents()) m_Out << name << '\n';
    for (std::string const & name : m_Links->Databases()) m_Out << name << " (database)\n";
    for (std::string const & name : m_Links->Peers().Documents()) m_Out << name << " (peer)\n";
}

void Session::Refresh(std::string const &) {
    m_Links->Links().Refresh(*m_Book);
    Edited();
}

void Session::ShowOrSetProperty(std::string const & rest) {
    std::string text = rest;
    std::string const name = TakeWord(text);
    if (name.empty()) {
        for (host::Property property : host::AllProperties())
            if (std::string const value = m_Book->GetProperty(property); !value.empty())
                m_Out << host::NameOf(property) << ": " << value << '\n';
        return;
    }
    auto const property = host::FindProperty(name);
    if (!property) throw CommandError("no such property: " + name);
    if (text.empty()) {
        m_Out << m_Book->GetProperty(*property) << '\n';
        return;
    }
    m_Book->SetProperty(*property, text == "-" ? "" : text);
    Edited();
}

void Session::Help(std::string const &) { m_Out << HelpText(); }

void Session::ExpectKind(Place place, Kind kind) const {
    Value const value = m_Sheet->Get(place);
    if (value.kind != kind) throw Unmet(host::NameOf(place) + " holds " + Describe(value));
}

void Session::Expect(std::string const & rest) {
    std::string words = rest;
    std::string const what = TakeWord(words);
    auto const require = [](bool met, std::string const & found) {
        if (!met) throw Unmet("found " + found);
    };
    if (what == "value") {
        Place const place = RequirePlace(TakeWord(words));
        ExpectKind(place, Kind::kNumber);
        Value const value = m_Sheet->Get(place);
        require(value.number == RequireNumber<double>(words), Describe(value));
    } else if (what == "text") {
        Place const place = RequirePlace(TakeWord(words));
        ExpectKind(place, Kind::kText);
        require(m_Sheet->Get(place).text == words, m_Sheet->Get(place).text);
    } else if (what == "error") {
        int const number = RequireNumber<int>(TakeWord(words));
        Place const place = RequirePlace(words);
        ExpectKind(place, Kind::kError);
        require(m_Sheet->Get(place).error == number, Describe(m_Sheet->Get(place)));
    } else if (what == "empty") {
        ExpectKind(RequirePlace(words), Kind::kEmpty);
    } else if (what == "formula") {
        Place const place = RequirePlace(TakeWord(words));
        std::string const found = m_Sheet->Formula(place).value_or("no formula");
        require(found == words, found);
    } else if (what == "format") {
        Place const place = RequirePlace(TakeWord(words));
        std::string const found = m_Sheet->NumberFormat(place);
        require(found == words, found);
    } else if (what == "class") {
        int const number = RequireNumber<int>(TakeWord(words));
        Place const place = RequirePlace(words);
        ExpectKind(place, Kind::kNumber);
        int const found = m_Sheet->Get(place).formatClass;
        require(found == number, "class " + std::to_string(found));
    } else if (what == "message") {
        unsigned const id = RequireNumber<unsigned>(words);
        require(std::count(m_Messages.begin(), m_Messages.end(), id) == 1,
                m_Messages.empty() ? "no message"
                                   : "message " + std::to_string(m_Messages.front()));
    } else if (what == "no" && words == "message") {
        require(m_Messages.empty(),
                m_Messages.empty() ? "" : "message " + std::to_string(m_Messages.front()));
    } else {
        Place const place = RequirePlace(what);
        std::string const shown = m_Sheet->Text(place);
        require(shown == words, shown.empty() ? "nothing" : shown);
    }
}

} // namespace cells::app
