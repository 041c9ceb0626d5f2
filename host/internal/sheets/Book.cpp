#include "host/internal/sheets/Book.h"

#include "formula/CCNameRef.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefFormula.h"
#include "formula/OperatorObjects.h"
#include "host/internal/links/LinkTable.h"
#include "host/internal/sheets/OpenSheets.h"
#include "host/internal/sheets/PlaceRefs.h"

#include <algorithm>
#include <utility>

namespace cells::host {
namespace {

// The places in a formula where a sheet stands by this name: the operands of ":" before a "!".
std::vector<CCFormula **> SheetOperands(CCFormula & formula, CString const & name) {
    std::vector<CCFormula **> operands;
    std::vector<CCFormula *> open{&formula};
    while (!open.empty()) {
        CCFormula * const node = open.back();
        open.pop_back();
        if (node->GetType() < kOpFormula) continue;
        auto & call = *static_cast<CCOpFormula *>(node);
        bool const isRun =
            call.GetFunc() == internal::OperatorObject(internal::Operator::kSheetRange);
        for (CCFormulaList * item = call.GetArgs(); item; item = item->next) {
            open.push_back(item->formula);
            if (!isRun || item->formula->GetType() != kRefFormula) continue;
            CCRef const * const ref = static_cast<CCRefFormula *>(item->formula)->GetRef();
            if (ref && ref->GetType() == kRefName &&
                name.CompareNoCase(static_cast<CCNameRef const *>(ref)->name()) == 0)
                operands.push_back(&item->formula);
        }
    }
    return operands;
}

} // namespace

int Book::PositionOf(CString const & name) const {
    for (int i = 0; i < Count(); ++i)
        if (At(i).GetSheetName().CompareNoCase(name) == 0) return i;
    return -1;
}

int Book::PositionOf(CCCellManager const * sheet) const {
    auto const found = std::find(m_Sheets.begin(), m_Sheets.end(), sheet);
    return found == m_Sheets.end() ? -1 : int(found - m_Sheets.begin());
}

CCCellManager * Book::GetSheet(wchar_t const * link) {
    bool const isLink = link && *link == L'?';
    return isLink ? GetSheetByNumber(PositionOf(CString(link + 1))) : nullptr;
}

CCCellManager * Book::GetSheetByNumber(int number) {
    return number >= 0 && number < Count() ? &At(number) : nullptr;
}

// The cells of a sheet whose formulas name sheets.
std::vector<GridCell *> Book::LinkedCells(SheetManager & sheet) {
    std::vector<GridCell *> linked;
    sheet.Cells().ForEachCell(kWholeGrid, [&](GridCell & cell) {
        CCFormula const * const formula = cell.LoadFormula(&sheet);
        if (formula && HasPart(*formula, kRefOpFormula)) linked.push_back(&cell);
    });
    return linked;
}

void Book::Restructure(std::function<void()> const & change) {
    OpenSheets const open(m_Sheets);
    std::vector<std::pair<SheetManager *, std::vector<GridCell *>>> linked;
    for (SheetManager * sheet : m_Sheets) linked.emplace_back(sheet, LinkedCells(*sheet));
    for (auto const & [sheet, cells] : linked)
        for (GridCell * cell : cells) cell->UnregisterFormula(sheet);
    change();
    for (auto const & [sheet, cells] : linked)
        if (PositionOf(sheet) >= 0)
            for (GridCell * cell : cells) sheet->EnterAgain(*cell);
}

// A sheet that comes back brings formulas along.
void Book::Insert(int position, SheetManager & sheet, CString const & name) {
    OpenSheets const open(m_Sheets), openToo(std::vector<SheetManager *>{&sheet});
    Restructure([&] {
        m_Sheets.insert(m_Sheets.begin() + position, &sheet);
        sheet.Join(this, name);
    });
    for (GridCell * cell : LinkedCells(sheet)) sheet.EnterAgain(*cell);
    TellReaders(sheet);
}

// Who reads a sheet from another document reads it again: it is gone, or there again, or has
// another name.
void Book::TellReaders(SheetManager & sheet) {
    if (!m_pLinks || Count() == 0) return;
    for (auto const & reader : sheet.RemoteReaders())
        At(0).DoRemoteInitRecalc(reader.reader.get(), 1);
}

void Book::Remove(int position) {
    SheetManager & sheet = At(position);
    Restructure([&] {
        sheet.FireEvent(CCDestroySheetEvent());
        m_Sheets.erase(m_Sheets.begin() + position);
        sheet.Join(nullptr, {});
        GetCalcCache().RemoveSheet(sheet);
    });
    TellReaders(sheet);
}

void Book::Move(int from, int to) {
    Restructure([&] {
        SheetManager * const sheet = m_Sheets[std::size_t(from)];
        m_Sheets.erase(m_Sheets.begin() + from);
        m_Sheets.insert(m_Sheets.begin() + to, sheet);
    });
}

void Book::ForEachNaming(CString const & name,
                         std::function<void(SheetManager &, GridCell &)> const & visit) const {
    for (SheetManager * sheet : m_Sheets)
        for (GridCell * cell : LinkedCells(*sheet))
            if (!SheetOperands(*cell->LoadFormula(sheet), name).empty()) visit(*sheet, *cell);
}

// The event gives formulas the new name of the first sheet that they name, while they still listen;
// a run of sheets may name the sheet elsewhere, too.
void Book::Rename(int position, CString const & name) {
    SheetManager & sheet = At(position);
    CString const old = sheet.GetSheetName();
    sheet.FireEvent(CCSheetRenameEvent(old, name));
    sheet.OnRename(name);
    UpdateAllOnRename(old, name);
    Restructure([&] {
        ForEachNaming(old, [&](SheetManager & home, GridCell & cell) {
            for (CCFormula ** operand : SheetOperands(*cell.LoadFormula(&home), old)) {
                delete *operand;
                *operand = new CCRefFormula(name.GetString(), 0);
            }
        });
        sheet.Join(this, name);
    });
    TellReaders(sheet);
}

std::vector<std::pair<int, Place>> Book::Pending() {
    std::vector<std::pair<int, Place>> pending;
    for (CCRef const * ref : GetCalcCache().DirtyRefs()) {
        auto const & placed = *static_cast<CCRef3D const *>(ref);
        int const position = PositionOf(placed.GetManager());
        if (position < 0 || !placed.ref || placed.ref->GetType() != kRefCell) continue;
        Place const place = host::PlaceOf(*placed.ref);
        GridCell const * const cell = At(position).Cells().FindCell(place);
        if (cell && cell->IsValidFormula()) pending.emplace_back(position, place);
    }
    return pending;
}

void Book::Link(LinkTable * links, CString const & document) {
    m_pLinks = links;
    m_Document = document;
}

bool Book::ReadsLinks() {
    if (Count() == 0) return false;
    bool const reads = At(0).GetRecalcRemote(1) != 0;
    SetReadsLinks(At(0).GetTrueRecalcRemote());
    return reads;
}

void Book::SetReadsLinks(ECRecalcRemote answer) {
    for (SheetManager * sheet : m_Sheets) sheet->SetRecalcRemote(answer);
}

void Book::ForEachLink(std::function<void(SheetManager &, GridCell &)> const & visit) const {
    std::vector<std::pair<SheetManager *, GridCell *>> linked;
    for (SheetManager * sheet : m_Sheets)
        sheet->Cells().ForEachCell(kWholeGrid, [&](GridCell & cell) {
            CCFormula * const formula = cell.LoadFormula(sheet);
            if (formula && cell.IsValidFormula() && HasPart(*formula, kRemoteOpFormula))
                linked.emplace_back(sheet, &cell);
        });
    for (auto const & [sheet, cell] : linked) visit(*sheet, *cell);
}

void Book::BringUpToDate() {
    for (std::size_t i = 0; i < m_Sheets.size(); ++i)
        while (m_Sheets[i]->DoIdle(1)) {
        }
}

int Book::Transport(CCRemoteRef const & ref, CFile & request) {
    if (!ref.IsSheetLink()) return m_pLinks && m_pLinks->Carry(ref, request);
    CCCellManager * const sheet = GetSheet(ref.document());
    return sheet ? sheet->OnTransport(request) : 0;
}

} // namespace cells::host
