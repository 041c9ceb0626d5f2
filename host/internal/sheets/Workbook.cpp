#include "host/Workbook.h"

#include "formula/CCFormula.h"
#include "formula/Parser.h"
#include "host/Engine.h"
#include "host/internal/links/LinkTable.h"
#include "host/internal/sheets/Book.h"
#include "host/internal/sheets/CellState.h"
#include "host/internal/sheets/History.h"
#include "host/internal/sheets/Invariants.h"
#include "host/internal/sheets/SheetManager.h"
#include "platform/Text.h"
#include "platform/Utf.h"

#include <algorithm>
#include <stdexcept>
#include <tuple>

namespace cells::host {
namespace {

// Whether a formula that names such a sheet would be read so.
bool CanNameASheet(CString const & name, SheetManager & reader) {
    if (!IsPlainName(name, reader)) return false;
    std::unique_ptr<CCFormula> const formula(
        _ParseFormula(&reader, name + CString(L"!A1"), 0, nullptr));
    return formula && formula->GetType() == kRefOpFormula;
}

using StatesOfCells = std::vector<std::tuple<SheetManager *, Place, std::string>>;

} // namespace

Workbook::Workbook(std::string_view locale)
    : m_Locale(FindLocale(locale)), m_Book(std::make_unique<Book>()) {}

Workbook::~Workbook() {
    if (LinkTable * links = m_Book->Links()) links->Leave(*m_Book);
    m_History.reset(); // it may hold sheets
    m_Sheets.clear();
}

int Workbook::Count() const { return m_Book->Count(); }

void Workbook::Require(int position) const {
    if (position < 0 || position >= Count())
        throw std::out_of_range("no sheet " + std::to_string(position));
}

Sheet & Workbook::At(int position) const {
    Require(position);
    return *m_Sheets[std::size_t(position)];
}

Sheet * Workbook::Find(std::string_view name) const {
    int const position = m_Book->PositionOf(FromUtf8(name));
    return position < 0 ? nullptr : &At(position);
}

Sheet & Workbook::operator[](std::string_view name) const {
    if (Sheet * sheet = Find(name)) return *sheet;
    throw std::out_of_range("no sheet " + std::string(name));
}

std::string Workbook::NameOf(int position) const {
    Require(position);
    return ToUtf8(m_Book->At(position).GetSheetName());
}

int Workbook::PositionOf(Sheet const & sheet) const {
    for (int i = 0; i < Count(); ++i)
        if (&At(i) == &sheet) return i;
    throw std::out_of_range("a sheet of another workbook");
}

// The name as text; `position` is that of the sheet that will bear it, -1 for a new one.
CString Workbook::CheckedName(std::string_view name, int position) const {
    CString const text = FromUtf8(name);
    int const bearer = m_Book->PositionOf(text);
    if (bearer >= 0 && bearer != position)
        throw std::invalid_argument("there is a sheet " + std::string(name) + " already");
    SheetManager reader(m_Locale);
    if (!CanNameASheet(text, reader))
        throw std::invalid_argument("no sheet can be named \"" + std::string(name) + "\"");
    return text;
}

// A sheet that is out of the workbook for as long as the history may bring it back.
struct Workbook::Stash {
    std::unique_ptr<Sheet> sheet;
};

Sheet & Workbook::Add(std::string_view name, std::optional<int> position) {
    int const at = position.value_or(Count());
    if (at != Count()) Require(at);
    if (Count() >= kMostSheets) throw std::invalid_argument("a workbook has at most 255 sheets");
    CString const text = CheckedName(name, -1);
    Insert(std::unique_ptr<Sheet>(new Sheet(std::make_unique<SheetManager>(m_Locale))), at, text);
    auto const stash = std::make_shared<Stash>();
    Remember([this, at, stash] { stash->sheet = TakeOut(at); },
             [this, at, text, stash] { Insert(std::move(stash->sheet), at, text); });
    return At(at);
}

void Workbook::Remember(std::function<void()> undo, std::function<void()> redo) {
    if (m_History) m_History->Add(std::move(undo), std::move(redo));
}

void Workbook::Insert(std::unique_ptr<Sheet> sheet, int position, CString const & name) {
    Sheet & added = **m_Sheets.insert(m_Sheets.begin() + position, std::move(sheet));
    added.m_Manager->history = m_History.get();
    m_Book->Insert(position, *added.m_Manager, name);
}

std::unique_ptr<Sheet> Workbook::TakeOut(int position) {
    m_Book->Remove(position);
    std::unique_ptr<Sheet> taken = std::move(m_Sheets[std::size_t(position)]);
    m_Sheets.erase(m_Sheets.begin() + position);
    return taken;
}

void Workbook::Shift(int from, int to) {
    m_Book->Move(from, to);
    auto sheet = std::move(m_Sheets[std::size_t(from)]);
    m_Sheets.erase(m_Sheets.begin() + from);
    m_Sheets.insert(m_Sheets.begin() + to, std::move(sheet));
}

void Workbook::Remove(int position) {
    Require(position);
    CString const name = m_Book->At(position).GetSheetName();
    auto const stash = std::make_shared<Stash>();
    stash->sheet = TakeOut(position);
    Remember([this, position, name, stash] { Insert(std::move(stash->sheet), position, name); },
             [this, position, stash] { stash->sheet = TakeOut(position); });
}

void Workbook::Move(int from, int to) {
    Require(from);
    Require(to);
    Shift(from, to);
    Remember([this, from, to] { Shift(to, from); }, [this, from, to] { Shift(from, to); });
}

void Workbook::Rename(int position, std::string_view name) {
    Require(position);
    CString const now = CheckedName(name, position);
    CString const old = m_Book->At(position).GetSheetName();
    // What names the new name now will name the sheet; taken back, it names nothing again.
    auto const named = std::make_shared<StatesOfCells>();
    if (m_History)
        m_Book->ForEachNaming(now, [&](SheetManager & sheet, GridCell & cell) {
            named->emplace_back(&sheet, cell.At(), CellStateAt(sheet, cell.At()));
        });
    m_Book->Rename(position, now);
    Remember(
        [this, position, old, named] {
            m_Book->Rename(position, old);
            for (auto const & [sheet, place, state] : *named) {
                RestoreCellState(*sheet, place, state);
                sheet->EnterAgain(*sheet->Cells().FindCell(place));
                sheet->TellChanged({place});
            }
        },
        [this, position, now] { m_Book->Rename(position, now); });
}

void Workbook::KeepHistory(int steps) {
    m_History = steps > 0 ? std::make_shared<History>(std::size_t(steps)) : nullptr;
    for (auto const & sheet : m_Sheets) sheet->m_Manager->history = m_History.get();
}

bool Workbook::Undo() {
    if (!m_History || !m_History->CanUndo()) return false;
    m_History->Undo();
    return true;
}

bool Workbook::Redo() {
    if (!m_History || !m_History->CanRedo()) return false;
    m_History->Redo();
    return true;
}

void Workbook::Recalculate() {
    LinkTable * const links = m_Book->Links();
    if (links) links->Deliver();
    for (int i = 0; i < Count(); ++i)
        if (At(i).Recalculate()) return;
    if (links) links->Recalculate();
}

void Workbook::SetProperty(Property property, std::string_view text) {
    Properties const before = m_Book->properties;
    m_Book->properties.Set(property, text);
    if (m_Book->properties == before) return;
    TellProperty(property);
    Remember(
        [this, property, before] {
            m_Book->properties = before;
            TellProperty(property);
        },
        [this, property, now = m_Book->properties] {
            m_Book->properties = now;
            TellProperty(property);
        });
}

std::string Workbook::GetProperty(Property property) const {
    return m_Book->properties.Text(property);
}

void Workbook::TellProperty(Property property) {
    for (int i = 0; i < Count(); ++i)
        m_Book->At(i).RecalcDocumentItems(CCDocumentRef::ECDocRefType(int(property)));
}

namespace {

// Characters without blanks around words, and words, of all that a workbook shows.
struct TextCount {
    double characters = 0, words = 0;

    void Add(std::string_view text) {
        bool inWord = false;
        CString const units = FromUtf8(text);
        for (wchar_t unit : units.View()) {
            bool const isBlank = IsSpace(unit);
            if (!isBlank && !inWord) ++words;
            if (!isBlank) ++characters;
            inWord = !isBlank;
        }
    }
};

} // namespace

void Workbook::NoteSaving() {
    Properties & properties = m_Book->properties;
    TextCount count;
    for (int i = 0; i < Count(); ++i)
        At(i).ForEachOccupied([&](Place place) { count.Add(At(i).Text(place)); });
    double revision = 0;
    properties.Give(Property::kRevision, revision);
    properties.SetNumber(Property::kRevision, revision + 1);
    properties.SetNumber(Property::kCharacters, count.characters);
    properties.SetNumber(Property::kWords, count.words);
    properties.SetNow(Property::kSaved);
    if (properties.Text(Property::kCreated).empty()) properties.SetNow(Property::kCreated);
}

void Workbook::NoteFile(std::filesystem::path const & file, std::uint64_t size) {
    m_Book->properties.Set(Property::kFileName, file.filename().string());
    m_Book->properties.SetNumber(Property::kFileSize, double(size));
}

std::vector<std::string> Workbook::CheckInvariants() {
    Invariants invariants;
    for (int i = 0; i < Count(); ++i) invariants.Read(m_Book->At(i));
    return invariants.Differences();
}

} // namespace cells::host
