#include "host/Workbook.h"

#include "formula/CCFormula.h"
#include "formula/Parser.h"
#include "host/Book.h"
#include "host/Engine.h"
#include "host/Invariants.h"
#include "host/SheetManager.h"
#include "platform/Utf.h"

#include <algorithm>
#include <stdexcept>

namespace cells::host {
namespace {

// Whether a formula that names such a sheet would be read so.
bool CanNameASheet(CString const & name, SheetManager & reader) {
    if (!IsPlainName(name, reader)) return false;
    std::unique_ptr<CCFormula> const formula(
        _ParseFormula(&reader, name + CString(L"!A1"), 0, nullptr));
    return formula && formula->GetType() == kRefOpFormula;
}

} // namespace

Workbook::Workbook(std::string_view locale)
    : m_Locale(FindLocale(locale)), m_Book(std::make_unique<Book>()) {}

Workbook::~Workbook() { m_Sheets.clear(); }

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

Sheet & Workbook::Add(std::string_view name, std::optional<int> position) {
    int const at = position.value_or(Count());
    if (at != Count()) Require(at);
    if (Count() >= kMostSheets) throw std::invalid_argument("a workbook has at most 255 sheets");
    CString const text = CheckedName(name, -1);
    auto sheet = std::unique_ptr<Sheet>(new Sheet(std::make_unique<SheetManager>(m_Locale)));
    Sheet & added = **m_Sheets.insert(m_Sheets.begin() + at, std::move(sheet));
    m_Book->Insert(at, *added.m_Manager, text);
    return added;
}

void Workbook::Remove(int position) {
    Require(position);
    m_Book->Remove(position);
    m_Sheets.erase(m_Sheets.begin() + position);
}

void Workbook::Move(int from, int to) {
    Require(from);
    Require(to);
    m_Book->Move(from, to);
    auto sheet = std::move(m_Sheets[std::size_t(from)]);
    m_Sheets.erase(m_Sheets.begin() + from);
    m_Sheets.insert(m_Sheets.begin() + to, std::move(sheet));
}

void Workbook::Rename(int position, std::string_view name) {
    Require(position);
    m_Book->Rename(position, CheckedName(name, position));
}

void Workbook::Recalculate() {
    for (int i = 0; i < Count(); ++i) At(i).Recalculate();
}

std::vector<std::string> Workbook::CheckInvariants() {
    Invariants invariants;
    for (int i = 0; i < Count(); ++i) invariants.Read(m_Book->At(i));
    return invariants.Differences();
}

} // namespace cells::host
