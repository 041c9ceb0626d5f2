#include "cvcells/session/Session.h"

#include "cvcells/Output.h"
#include "cvcells/session/Command.h"

#include <algorithm>
#include <ostream>
#include <tuple>

namespace cells::app {
namespace {

using host::Area;
using host::Place;

constexpr int kRememberedEdits = 100;

[[noreturn]] void ThrowNoSuch(std::string const & kind, std::string const & text) {
    throw CommandError("no such " + kind + ": " + (text.empty() ? "(nothing)" : text));
}

} // namespace

Session::Session(std::string locale, std::ostream & out, bool tellChanges)
    : m_Locale(std::move(locale)), m_Links(std::make_unique<LinkSet>(m_Locale)), m_Out(out),
      m_bTellChanges(tellChanges) {
    SetLocale(m_Locale);
}

bool Session::Execute(std::string const & raw) {
    std::string line = Trimmed(raw);
    if (line.empty() || line[0] == '#') return true;
    if (line == "quit") return false;
    if (TryShow(line) || TryEnter(line)) return true;
    if (line[0] == '?') line.insert(1, " ");
    if (Command const * const command = TakeCommand(line)) {
        command->action(*this, line);
        return true;
    }
    std::string const word = TakeWord(line);
    if (word.find('!') != std::string::npos) ThrowNoSuch("cell", word);
    throw CommandError("unknown command: " + word + " (help lists them)");
}

bool Session::TryShow(std::string const & line) {
    auto const found = FindArea(line);
    if (!found) return false;
    auto const & [sheet, area] = *found;
    if (area.first == area.last)
        m_Out << sheet.Text(area.first) << '\n';
    else
        m_Out << Render(sheet, area, OutputFormat::kTable, Show::kValues);
    return true;
}

// "A1: text"; an area has no blank after its colon.
bool Session::TryEnter(std::string const & line) {
    std::size_t const colon = line.find(':');
    if (colon == std::string::npos) return false;
    auto const found = FindPlace(Trimmed(line.substr(0, colon)), *m_Current);
    if (!found) return false;
    std::string const text = line.substr(colon + 1);
    ForgetMessages();
    found->sheet.Enter(found->place, text.empty() || text[0] != ' ' ? text : text.substr(1));
    Edited();
    return true;
}

// Places and areas

host::Sheet * Session::TakeSheet(std::string & text, host::Sheet & otherwise) {
    std::size_t const bang = text.find('!');
    if (bang == std::string::npos) return &otherwise;
    host::Sheet * const sheet = m_Book->Find(Trimmed(text.substr(0, bang)));
    if (sheet) text = Trimmed(text.substr(bang + 1));
    return sheet;
}

std::optional<SheetPlace> Session::FindPlace(std::string text, host::Sheet & otherwise) {
    host::Sheet * const sheet = TakeSheet(text, otherwise);
    auto const place = host::ParsePlace(text);
    if (!sheet || !place) return std::nullopt;
    return SheetPlace{*sheet, *place};
}

std::optional<SheetArea> Session::FindArea(std::string text) {
    host::Sheet * const sheet = TakeSheet(text, *m_Current);
    auto const area = host::ParseArea(text);
    if (!sheet || !area) return std::nullopt;
    return SheetArea{*sheet, *area};
}

SheetPlace Session::RequirePlace(std::string const & text, host::Sheet & otherwise) {
    if (auto const found = FindPlace(text, otherwise)) return *found;
    ThrowNoSuch("cell", text);
}

SheetArea Session::RequireArea(std::string const & text) {
    if (auto const found = FindArea(text)) return *found;
    ThrowNoSuch("area", text);
}

// The workbook and its sheets

void Session::SetLocale(std::string const & locale) {
    SetBook(std::make_unique<host::Workbook>(locale), "Untitled", host::ReadLinks::kYes);
    m_Locale = locale;
}

void Session::SetBook(std::unique_ptr<host::Workbook> book, std::string const & name,
                      host::ReadLinks read) {
    if (book->Count() == 0) book->Add("Sheet1");
    ForgetChanges();
    m_Book = std::move(book);
    m_Links->Links().Open(name, *m_Book, read);
    m_Book->KeepHistory(kRememberedEdits);
    for (int i = 0; i < m_Book->Count(); ++i) Watch(m_Book->At(i));
    m_Current = &m_Book->At(0);
}

void Session::AddLinks(LinkOptions const & links) {
    m_Links->Add(links);
    if (!links.IsEmpty()) RefreshLinks();
}

void Session::RefreshLinks() {
    m_Links->Links().Refresh(*m_Book);
    Edited();
}

void Session::Watch(host::Sheet & sheet) {
    sheet.OnChanged([this, &sheet](Place place) { m_Changed.emplace_back(&sheet, place); });
    sheet.OnMessage([this](unsigned id, std::string const & text) {
        m_Messages.push_back(id);
        if (m_bTellChanges) m_Out << text << '\n';
    });
}

void Session::GoToSheet(std::string const & name) {
    if (host::Sheet * const sheet = m_Book->Find(name)) {
        m_Current = sheet;
        return;
    }
    m_Current = &m_Book->Add(name);
    Watch(*m_Current);
    Edited();
}

void Session::SheetsChanged() {
    if (m_Book->Count() == 0) Watch(m_Book->Add("Sheet1"));
    for (int i = 0; i < m_Book->Count(); ++i)
        if (&m_Book->At(i) == m_Current) return;
    m_Current = &m_Book->At(0);
}

// Edits

void Session::Edited() {
    m_Book->Recalculate();
    std::vector<std::pair<int, Place>> changed; // by the position of the sheet
    for (auto const & [sheet, place] : m_Changed)
        for (int i = 0; i < m_Book->Count(); ++i)
            if (&m_Book->At(i) == sheet) changed.emplace_back(i, place);
    ForgetChanges();
    if (!m_bTellChanges) return;
    std::sort(changed.begin(), changed.end(), [](auto const & a, auto const & b) {
        return std::tuple(a.first, a.second.row, a.second.column) <
               std::tuple(b.first, b.second.row, b.second.column);
    });
    changed.erase(std::unique(changed.begin(), changed.end()), changed.end());
    for (auto const & [position, place] : changed) {
        host::Sheet const & sheet = m_Book->At(position);
        m_Out << (&sheet == m_Current ? "" : m_Book->NameOf(position) + "!") << host::NameOf(place)
              << " = " << sheet.Text(place) << '\n';
    }
}

} // namespace cells::app
