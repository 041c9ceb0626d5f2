#include "host/Sheet.h"

#include "cells/Resolve.h"
#include "formula/CCFormula.h"
#include "formula/CCNameRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefList.h"
#include "formula/CCRegionRef.h"
#include "formula/FunctionRegistry.h"
#include "formula/Parser.h"
#include "formula/Scanners.h"
#include "host/Engine.h"
#include "host/internal/sheets/History.h"
#include "host/internal/sheets/Invariants.h"
#include "host/internal/sheets/PlaceRefs.h"
#include "host/internal/sheets/SheetManager.h"
#include "host/internal/sheets/TextBuffer.h"
#include "platform/Resources.h"
#include "platform/Utf.h"

#include <algorithm>
#include <stdexcept>

namespace cells::host {
namespace {

TextBuffer & Buffer() {
    static TextBuffer buffer;
    return buffer;
}

// A place on another sheet stands after its name.
std::string PrintRef(SheetManager & sheet, CCRef const * ref) {
    CCRef const * const inner = internal::InnerRef(ref);
    if (!inner) return {};
    std::wostream & stream = Buffer().Restart();
    CCCellManager const * const owner = internal::Resolve(sheet, ref).owner;
    if (owner != &sheet) stream << owner->GetSheetName().GetString() << L'!';
    inner->Print(&sheet, stream, 0);
    return ToUtf8(Buffer().View());
}

std::vector<std::string> PrintRefs(SheetManager & sheet, CCRefList * list) {
    internal::RefListHolder const holder(list);
    std::vector<std::string> texts;
    for (CCRefList const * node = list; node; node = node->m_pNext)
        if (node->m_pRef) texts.push_back(PrintRef(sheet, node->m_pRef));
    std::sort(texts.begin(), texts.end());
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
    return texts;
}

Value ValueOf(CCCellValue const & value) {
    Value result;
    switch (value.GetType()) {
    case vtNumber:
        result.kind = Kind::kNumber;
        result.number = value.GetNumber();
        result.formatClass = value.GetFormat().GetType();
        break;
    case vtText:
        result.kind = Kind::kText;
        result.text = ToUtf8(value.GetTextString());
        break;
    case vtError:
        result.kind = Kind::kError;
        result.error = value.GetError();
        break;
    default:
        break;
    }
    return result;
}

} // namespace

Sheet::Sheet(std::string_view locale)
    : m_Manager(std::make_unique<SheetManager>(FindLocale(locale))) {}

Sheet::Sheet(std::unique_ptr<SheetManager> manager) : m_Manager(std::move(manager)) {}

Sheet::~Sheet() = default;

CCCellManager & Sheet::Manager() { return *m_Manager; }

Place Sheet::At(std::string_view place) {
    if (auto const parsed = ParsePlace(place)) return *parsed;
    throw std::out_of_range("no such cell: " + std::string(place));
}

void Sheet::Require(Place place) {
    if (!IsOnGrid(place)) throw std::out_of_range("a place off the grid");
}

// A plain number goes straight to its page; everything else takes the road of the engine.
void Sheet::Enter(Place place, std::string_view text) {
    Require(place);
    Recording recording(*m_Manager);
    TouchEntry(recording, place);
    CString const entered = FromUtf8(text);
    if (!m_Manager->Cells().FindCell(place)) {
        if (m_Manager->IsEditTextOfNumber(place, entered)) return;
        Entry entry = ReadEntry(m_Manager.get(), entered);
        bool const isValue = entry.kind == kEntryValue;
        double number;
        std::uint32_t format;
        bool const occupied = m_Manager->Cells().FindNumber(place, number, format);
        if (isValue && entry.value.IsEmpty() && !occupied) return;
        if (!isValue || !m_Manager->TryPutNumber(place, entry.value))
            m_Manager->MakeCell(place).Enter(m_Manager.get(), entered, std::move(entry), 0);
        return m_Manager->FinishRecalc();
    }
    CCRCRef const ref = RefOf(place);
    m_Manager->SetCellText(&ref, entered);
}

// An edit source hands an edit on to the cell that it shows, which may be one too.
void Sheet::TouchEntry(Recording & recording, Place place) {
    recording.Touch(*m_Manager, place);
    std::vector<GridCell const *> met; // they may form a ring
    GridCell * cell = m_Manager->Cells().FindCell(place);
    while (cell && std::find(met.begin(), met.end(), cell) == met.end()) {
        recording.Touch(*m_Manager, cell->At());
        std::unique_ptr<CCRef const> const source(cell->GetEditSourceRef(m_Manager.get()));
        if (!source) return;
        met.push_back(cell);
        cell = static_cast<GridCell *>(m_Manager->GetItem(source.get()));
    }
}

void Sheet::KeepHistory(int steps) {
    if (m_Manager->GetWorkbook()) return;
    m_History = steps > 0 ? std::make_shared<History>(std::size_t(steps)) : nullptr;
    m_Manager->history = m_History.get();
}

bool Sheet::Undo() {
    History * const history = m_Manager->history;
    if (!history || !history->CanUndo()) return false;
    history->Undo();
    return true;
}

bool Sheet::Redo() {
    History * const history = m_Manager->history;
    if (!history || !history->CanRedo()) return false;
    history->Redo();
    return true;
}

void Sheet::Clear(Place place) {
    Require(place);
    Recording recording(*m_Manager);
    TouchEntry(recording, place);
    CCRCRef const ref = RefOf(place);
    // What is marked as an edit source and shows no other cell has nothing to hand this on to.
    GridCell * const cell = m_Manager->Cells().FindCell(place);
    if (cell && cell->IsEditSource(m_Manager.get())) {
        std::unique_ptr<CCRef const> const source(cell->GetEditSourceRef(m_Manager.get()));
        if (!source) return void(m_Manager->SetCellText(&ref, L""));
    }
    m_Manager->ClearCell(&ref, kClearFormula);
    m_Manager->ClearCell(&ref, kClearValue);
}

std::string Sheet::Text(Place place) const {
    Require(place);
    std::wostream & stream = Buffer().Restart();
    if (GridCell const * cell = m_Manager->Cells().FindCell(place)) {
        cell->CCCell::GetValueText(m_Manager.get(), stream);
    } else {
        CCRCRef const ref = RefOf(place);
        CCCellValue value;
        if (m_Manager->GetValue(&ref, value, 0)) value.Print(m_Manager.get(), stream, 0);
    }
    return ToUtf8(Buffer().View());
}

std::string Sheet::EditText(Place place) {
    Require(place);
    CellView const view(m_Manager->Cells(), place);
    std::wostream & stream = Buffer().Restart();
    if (view.Get()) view.Get()->CCCell::GetFormulaText(m_Manager.get(), stream);
    return ToUtf8(Buffer().View());
}

std::optional<std::string> Sheet::Formula(Place place) {
    Require(place);
    GridCell const * const cell = m_Manager->Cells().FindCell(place);
    if (!cell || !cell->IsFormulaLink()) return std::nullopt;
    return EditText(place);
}

std::optional<std::string> Sheet::Hyperlink(Place place) {
    Require(place);
    GridCell * const cell = m_Manager->Cells().FindCell(place);
    CString target;
    if (!cell || !cell->GetHyperLink(m_Manager.get(), target)) return std::nullopt;
    return ToUtf8(target);
}

Value Sheet::Get(Place place) const {
    Require(place);
    CCRCRef const ref = RefOf(place);
    CCCellValue value;
    m_Manager->GetValue(&ref, value, 0);
    return ValueOf(value);
}

bool Sheet::Step() { return m_Manager->DoIdle(0) != 0; }

bool Sheet::Recalculate() {
    m_Cancelled = false;
    if (!m_Progress) {
        while (m_Manager->DoIdle(1)) {
        }
        return false;
    }
    int done = 0;
    while (!m_Cancelled && Step()) {
        int const left = m_Manager->GetCurRecalcCount() + m_Manager->GetCurProcessCount();
        ++done;
        if (!m_Progress(done, done + left / 64)) m_Cancelled = true;
    }
    return m_Cancelled;
}

void Sheet::OnProgress(std::function<bool(int, int)> progress) { m_Progress = std::move(progress); }

void Sheet::OnChanged(std::function<void(Place)> changed) {
    m_Manager->onChanged = std::move(changed);
}

void Sheet::OnMessage(std::function<void(unsigned int, std::string const &)> message) {
    m_Manager->onMessage = [message = std::move(message)](unsigned int id) {
        if (message) message(id, ToUtf8(LoadString(id)));
    };
}

bool IsPlainName(CString const & text, CTX & reader) {
    wchar_t const * at = text;
    uchar col, flags;
    ushort row;
    bool const isAddress = _EatRC(&reader, at, col, row, flags) && *at == 0;
    bool const isWord = !text.IsEmpty() && *internal::EndOfWord(text) == 0;
    return isWord && !isAddress && !IsFunction(text, kFunction);
}

bool Sheet::DefineName(std::string_view name, Area const & area) {
    Require(area.first);
    Require(area.last);
    CString const text = FromUtf8(name);
    if (!IsPlainName(text, *m_Manager)) return false;
    Recording recording(*m_Manager);
    recording.TouchFacts(*m_Manager);
    if (area.first == area.last) return m_Manager->DefineName(text, RefOf(area.first));
    return m_Manager->DefineName(text, RefOf(area));
}

bool Sheet::RemoveName(std::string_view name) {
    Recording recording(*m_Manager);
    recording.TouchFacts(*m_Manager);
    return m_Manager->RemoveName(FromUtf8(name));
}

void Sheet::ForEachOccupied(std::function<void(Place)> const & visit) const {
    Grid const & grid = m_Manager->Cells();
    grid.ForEach(kWholeGrid, [&](Place place) {
        GridCell const * const cell = grid.FindCell(place);
        if (!cell || !cell->IsValueEmpty() || cell->IsFormulaLink()) visit(place);
    });
}

std::optional<Area> Sheet::UsedArea() const {
    std::optional<Area> used;
    ForEachOccupied([&](Place place) {
        if (!used) used = Area{place, place};
        used->first.column = std::min(used->first.column, place.column);
        used->last.column = std::max(used->last.column, place.column);
        used->last.row = place.row;
    });
    return used;
}

std::vector<std::string> Sheet::Precedents(Place place) {
    Require(place);
    GridCell * const cell = m_Manager->Cells().FindCell(place);
    return PrintRefs(*m_Manager, cell ? cell->GetPrecedents(m_Manager.get()) : nullptr);
}

std::vector<std::string> Sheet::Dependents(Place place) {
    Require(place);
    CCRCRef const ref = RefOf(place);
    return PrintRefs(*m_Manager, m_Manager->LoadDependencies(&ref));
}

std::vector<std::string> Sheet::CheckInvariants() {
    Invariants invariants;
    invariants.Read(*m_Manager);
    return invariants.Differences();
}

} // namespace cells::host
