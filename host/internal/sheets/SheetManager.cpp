#include "host/internal/sheets/SheetManager.h"

#include "cells/Resolve.h"
#include "formula/CCFormula.h"
#include "formula/CCNameRef.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefList.h"
#include "formula/CCRegionRef.h"
#include "formula/CCRemoteOpFormula.h"
#include "host/internal/sheets/Book.h"
#include "host/internal/sheets/PlaceRefs.h"
#include "platform/Resources.h"
#include "platform/Text.h"
#include "platform/Utf.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace cells::host {
namespace {

CCRegionRef const & RegionOf(CCRef const * ref) { return *static_cast<CCRegionRef const *>(ref); }

} // namespace

namespace {

template <typename Test>
bool AnyPart(CCFormula const & formula, Test && test) {
    std::vector<CCFormula const *> stack{&formula};
    while (!stack.empty()) {
        CCFormula const * const node = stack.back();
        stack.pop_back();
        if (test(*node)) return true;
        if (node->GetType() < kOpFormula) continue;
        auto const * args = static_cast<CCOpFormula const *>(node)->GetArgs();
        for (; args; args = args->next) stack.push_back(args->formula);
    }
    return false;
}

} // namespace

bool HasPart(CCFormula const & formula, EFormulaType type) {
    return AnyPart(formula, [&](CCFormula const & node) { return node.GetType() == type; });
}

std::vector<std::string> LinksOf(CCFormula const & formula) {
    std::vector<std::string> documents;
    AnyPart(formula, [&](CCFormula const & node) {
        if (node.GetType() == kRemoteOpFormula)
            documents.push_back(
                ToUtf8(static_cast<CCRemoteOpFormula const &>(node).Remote().document()));
        return false;
    });
    return documents;
}

bool MayMove(CCFormula const & formula) {
    return HasPart(formula, kRefOpFormula) || HasName(formula);
}

bool HasName(CCFormula const & formula) {
    return AnyPart(formula, [](CCFormula const & node) {
        if (node.GetType() != kRefFormula) return false;
        CCRef const * const ref = static_cast<CCRefFormula const &>(node).GetRef();
        return ref && ref->GetType() == kRefName;
    });
}

void GridCell::OnValueChanged(CTX * ctx) {
    if (auto * sheet = static_cast<SheetManager *>(ctx->manager())) sheet->OnCellChanged(At());
}

void GridCell::SetText(CTX * ctx, wchar_t const * text, int quiet) {
    if (!IsEditText(ctx, CString(text))) return CCCell::SetText(ctx, text, quiet);
    if (ctx->manager()->IsProtLock(this, 1)) return;
    if (IsFormulaLink()) SetFormula(ctx, LoadFormula(ctx), quiet);
}

// A text is read again: it may have come here by another road than typing. So is a formula of a
// circle, which may be open now.
bool GridCell::IsEditText(CTX * ctx, CString const & text) {
    bool const isKept = IsFormulaLink() ? IsValidFormula() : IsValueNumber() || IsValueError();
    if (!isKept || text.IsEmpty()) return false;
    std::wostringstream stream;
    CCCell::GetFormulaText(ctx, stream);
    return text.View() == std::wstring_view(stream.str());
}

void SheetManager::ErrorMessage(unsigned int id) {
    if (onMessage && GetNotifyEnable())
        onMessage(id);
    else
        CCSheet::ErrorMessage(id);
}

CString SheetManager::Folded(CString name) {
    CString folded;
    for (wchar_t unit : name.View()) folded += FoldCase(unit);
    return folded;
}

// What a reference stands for on this sheet: the place inside a reference of a sheet, the target of
// a name. Null for what this sheet does not hold.
CCRef const * SheetManager::Target(CCRef const * ref) const {
    if (!ref) return nullptr;
    switch (ref->Kind()) {
    case kRefCell:
    case kRefRegion:
        return ref;
    case kRefName:
        return FindName(static_cast<CCNameRef const *>(ref)->name());
    case kRefSheets: {
        auto const & sheets = *static_cast<CCRef3D const *>(ref);
        CCCellManager const * const sheet = sheets.IsManagerForm() ? sheets.GetManager()
                                            : m_Book
                                                ? m_Book->GetSheetByNumber(sheets.firstSheet - 1)
                                                : this;
        return sheet == this ? Target(sheets.ref) : nullptr;
    }
    default:
        return nullptr;
    }
}

GridCell & SheetManager::MakeCell(Place place) {
    double number;
    std::uint32_t packed;
    bool const isNew = !m_Grid.FindCell(place) && !m_Grid.FindNumber(place, number, packed);
    GridCell & cell = m_Grid.MakeCell(place);
    if (!isNew || m_Formats.IsEmpty()) return cell;
    CCCellFormat const format = m_Formats.FormatAt(place);
    if (!format.IsEmpty()) cell.SetFormat(this, format);
    return cell;
}

bool SheetManager::Conceals(Area const & area) const {
    bool hidden = false;
    if (IsProtected())
        m_Grid.ForEachCell(area,
                           [&](GridCell const & cell) { hidden = hidden || cell.IsHidden(ctx()); });
    return hidden;
}

int SheetManager::IsConcealed(CCRef const * ref) {
    if (ref && ref->Kind() == kRefSheets) {
        std::unique_ptr<CCRef> const run(ref->Copy());
        internal::RefListHolder const sheets(static_cast<CCRef3D &>(*run).TranslateToRefList(this));
        for (CCRefList const * node = sheets.list; node; node = node->m_pNext) {
            auto const & place = *static_cast<CCRef3D const *>(node->m_pRef);
            CCCellManager * const sheet = place.GetManager();
            if (sheet && sheet->IsConcealed(place.ref)) return 1;
        }
        return 0;
    }
    CCRef const * const target = Target(ref);
    return target && Conceals(AreaOf(*target));
}

// Sheets

void SheetManager::Join(Book * book, CString const & name) {
    m_Book = book;
    m_SheetName = name;
}

std::vector<SheetManager *> SheetManager::Family() {
    if (!m_Book) return {this};
    std::vector<SheetManager *> sheets;
    for (int i = 0; i < m_Book->Count(); ++i) sheets.push_back(&m_Book->At(i));
    return sheets;
}

CCWorkbook * SheetManager::GetWorkbook() const { return m_Book; }

CCCellManager * SheetManager::GetManForNameIndex(ushort index) {
    return m_Book ? m_Book->GetSheetByNumber(index - 1) : nullptr;
}

ushort SheetManager::GetNameIndex(CCNameRef const * name) {
    return name ? GetNameIndex(name->name()) : ushort(0);
}

ushort SheetManager::GetNameIndex(wchar_t const * name) {
    return m_Book ? ushort(m_Book->PositionOf(CString(name)) + 1) : CCSheet::GetNameIndex(name);
}

CCItem * SheetManager::GetItem(CCRef const * ref) {
    CCRef const * const target = Target(ref);
    if (!target || target->Kind() != kRefCell) return nullptr;
    Place const place = PlaceOf(*target);
    if (GridCell * cell = m_Grid.FindCell(place)) return cell;
    double number;
    std::uint32_t format;
    return m_Grid.FindNumber(place, number, format) ? &MakeCell(place) : nullptr;
}

CSize SheetManager::GetRefSize(CCRef const * ref) {
    CCRef const * const target = Target(ref);
    if (!target || target->GetType() != kRefRegion) return {1, 1};
    CCRegionRef const & region = RegionOf(target);
    return {region.right - region.left + 1, region.bottom - region.top + 1};
}

// In a workbook the name of a sheet is valid too: it stands before a "!".
int SheetManager::IsValidRef(CCRef const * ref) {
    if (Target(ref)) return 1;
    return m_Book && ref && ref->GetType() == kRefName &&
           GetNameIndex(static_cast<CCNameRef const *>(ref)) != 0;
}

int SheetManager::IsSingleValue(CCRef const * ref) {
    CCRef const * const target = Target(ref);
    return target && (target->GetType() == kRefCell || RegionOf(target).IsSingle());
}

int SheetManager::GetValue(CCRef const * ref, CCCellValue & value, int index) {
    if (!ref) return 0;
    bool const direct = ref->Kind() == kRefCell || ref->Kind() == kRefRegion;
    CCRef const * const target = direct ? ref : Target(ref);
    if (!target || index < 0) return 0;
    if (target->Kind() == kRefCell) {
        if (index == 0) m_Grid.Read(PlaceOf(*target), value);
        return index == 0;
    }
    CCRegionRef const & region = RegionOf(target);
    unsigned const at = unsigned(index), width = unsigned(region.right - region.left + 1);
    unsigned const row = width == 1 ? at : at / width;
    Place const place{region.left + int(at - row * width), region.top + int(row)};
    if (place.row > region.bottom) return 0;
    m_Grid.Read(place, value);
    return 1;
}

int SheetManager::ReadNumbers(CCRef const * ref, NumberSink & sink) {
    CCRef const * const target = Target(ref);
    if (!target || target->GetType() != kRefRegion) return 0;
    m_Grid.ReadNumbers(AreaOf(*target), sink);
    return 1;
}

int SheetManager::FindNumber(CCRef const * ref, double number, CCCellValue & value) {
    CCRef const * const target = Target(ref);
    if (!target || target->GetType() != kRefRegion) return 0;
    auto const place = m_Grid.FindNumberIn(AreaOf(*target), number);
    if (place) m_Grid.Read(*place, value);
    return place.has_value();
}

int SheetManager::FindKey(CCRef const * ref, CCCellValue const & key, int & position) {
    CCRef const * const target = Target(ref);
    if (!target || target->GetType() != kRefRegion) return 0;
    return m_Grid.FindKey(AreaOf(*target), key, position);
}

int SheetManager::CountOccupied(CCRef const * ref, double & count) {
    CCRef const * const target = Target(ref);
    if (!target || target->GetType() != kRefRegion) return 0;
    count = double(m_Grid.CountValues(AreaOf(*target)));
    return 1;
}

bool SheetManager::TryPutNumber(Place place, CCCellValue const & value) {
    std::uint32_t format;
    uchar const type = value.GetFormat().GetType();
    if (!value.IsNumber() || type == C_NF_NUMBER || type == C_NF_CURRENCY) return false;
    if (!value.GetFormat().PackPlain(format) || m_Grid.FindCell(place)) return false;
    if (!m_Regions.IsEmpty() && IsWatched(place)) return false;
    if (!m_Formats.IsEmpty() && m_Formats.Covers(place)) return false;
    m_Grid.PutNumber(place, value.GetNumber(), format);
    SetDirty();
    OnCellChanged(place);
    return true;
}

void SheetManager::ClearNumberFormats(Area const & area) {
    std::uint32_t general;
    CCNumberFormat().PackPlain(general);
    std::vector<Place> changed;
    m_Grid.ForEach(area, [&](Place place) {
        double number;
        std::uint32_t format;
        if (!m_Grid.FindNumber(place, number, format) || format == general) return;
        m_Grid.PutNumber(place, number, general);
        changed.push_back(place);
    });
    if (!changed.empty()) TellChanged(std::move(changed));
}

bool SheetManager::IsEditTextOfNumber(Place place, CString const & text) {
    if (m_Grid.FindCell(place)) return false;
    CellView const view(m_Grid, place);
    return view.Get() && view.Get()->IsEditText(this, text);
}

int SheetManager::RegisterDependent(CCRef const * ref, CCRef const * dependent) {
    if (!ref || !dependent) return 0;
    if (ref->GetType() == kRefName) {
        Name & name = m_Names[Folded(static_cast<CCNameRef const *>(ref)->name())];
        bool const known = std::any_of(name.users.begin(), name.users.end(),
                                       [&](auto const & user) { return user->IsEqual(dependent); });
        if (!known) name.users.push_back(std::unique_ptr<CCRef>(dependent->Copy()));
    }
    CCRef const * const target = Target(ref);
    if (!target) return 1;
    std::unique_ptr<CCRef> const placed(internal::MakeDependentRef(this, dependent));
    if (target->GetType() == kRefCell)
        return MakeCell(PlaceOf(*target)).RegisterDependent(this, placed.get());
    if (!m_Regions.Register(RegionOf(target), placed.get())) return 1;
    if (Conceals(AreaOf(*target))) {
        m_Regions.UnRegister(RegionOf(target), placed.get());
        ErrorMessage(kStringHiddenPrecedent);
        return 0;
    }
    if (GetDirtyMarking()) SetDirty();
    return 1;
}

unsigned SheetManager::s_nDepartures = 0;

int SheetManager::UnRegisterDependent(CCRef const * ref, CCRef const * dependent) {
    if (!ref || !dependent) return 0;
    ++s_nDepartures;
    if (ref->GetType() == kRefName) {
        auto const name = m_Names.find(Folded(static_cast<CCNameRef const *>(ref)->name()));
        if (name != m_Names.end())
            std::erase_if(name->second.users,
                          [&](auto const & user) { return user->IsEqual(dependent) != 0; });
    }
    CCRef const * const target = Target(ref);
    if (!target) return 0;
    std::unique_ptr<CCRef> const placed(internal::MakeDependentRef(this, dependent));
    if (target->GetType() == kRefCell)
        return UnRegisterDependent(static_cast<CCItem *>(m_Grid.FindCell(PlaceOf(*target))),
                                   placed.get());
    return m_Regions.UnRegister(RegionOf(target), placed.get());
}

int SheetManager::MoveFormula(CCRef const * ref, CCRef const * from, CCRef const * to) {
    CCRef const * const target = Target(ref);
    if (!target || target->GetType() != kRefRegion) return CCSheet::MoveFormula(ref, from, to);
    std::unique_ptr<CCRef> const old(internal::MakeDependentRef(this, from));
    std::unique_ptr<CCRef> const now(internal::MakeDependentRef(this, to));
    if (now) m_Regions.Update(RegionOf(target), old.get(), now.get());
    return 1;
}

CCRefList * SheetManager::LoadDependencies(CCRef const * ref) {
    CCRef const * const target = Target(ref);
    if (!target) return CCSheet::LoadDependencies(ref);
    if (target->GetType() == kRefRegion) return m_Regions.LoadDependents(RegionOf(target));
    Place const place = PlaceOf(*target);
    GridCell * const cell = m_Grid.FindCell(place);
    CCRefList * own = cell ? cell->LoadDependents(this) : nullptr;
    if (m_Regions.IsEmpty()) return own;
    return m_Regions.LoadDependents(uchar(place.column), ushort(place.row), own);
}

// Names

CCRef const * SheetManager::FindName(CString const & name) const {
    auto const found = m_Names.find(Folded(name));
    return found == m_Names.end() ? nullptr : found->second.target.get();
}

CCRef * SheetManager::TranslateNameRef(CCNameRef const * name) {
    CCRef const * const target = name ? FindName(name->name()) : nullptr;
    return target ? target->Copy() : nullptr;
}

std::vector<CString> SheetManager::Names() const {
    std::vector<CString> names;
    for (auto const & [folded, name] : m_Names)
        if (name.target) names.push_back(folded);
    return names;
}

bool SheetManager::DefineName(CString const & name, CCRef const & target) {
    int const type = target.GetType();
    if (type != kRefCell && type != kRefRegion) return false;
    Redefine(name, std::unique_ptr<CCRef>(target.Copy()));
    return true;
}

bool SheetManager::RemoveName(CString const & name) {
    if (!FindName(name)) return false;
    Redefine(name, nullptr);
    return true;
}

void SheetManager::OnPlaceMissing(CCRef const * cell) {
    CCRef const * const inner = internal::InnerRef(cell);
    if (inner->GetType() == kRefCell) m_Missing.insert(PlaceOf(*inner));
}

std::vector<GridCell *> SheetManager::CellsWithoutTarget() {
    std::vector<GridCell *> cells;
    for (Place place : std::exchange(m_Missing, {})) {
        GridCell * const cell = m_Grid.FindCell(place);
        CCFormula const * const formula =
            cell && cell->IsValidFormula() ? cell->LoadFormula(this) : nullptr;
        if (formula && HasPart(*formula, kRefOpFormula)) cells.push_back(cell);
    }
    for (GridCell * cell : m_Grid.CircularCells()) {
        CCFormula const * const formula = cell->LoadFormula(this);
        if (formula && MayMove(*formula)) cells.push_back(cell);
    }
    return cells;
}

// The users leave the old target and join the new one, and are computed again.
void SheetManager::Redefine(CString const & name, std::unique_ptr<CCRef> target) {
    std::vector<std::pair<SheetManager *, GridCell *>> cells;
    for (auto const & user : m_Names[Folded(name)].users) {
        internal::Place const place = internal::Resolve(*this, user.get());
        if (place.item)
            cells.emplace_back(static_cast<SheetManager *>(place.owner),
                               static_cast<GridCell *>(place.item));
    }
    for (auto const & [sheet, cell] : cells) cell->UnregisterFormula(sheet);
    for (SheetManager * sheet : Family())
        for (GridCell * cell : sheet->CellsWithoutTarget()) cells.emplace_back(sheet, cell);
    m_Names[Folded(name)].target = std::move(target);
    for (auto const & [sheet, cell] : cells) sheet->EnterAgain(*cell);
}

void SheetManager::TellChanged(std::vector<Place> places) {
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    for (Place place : places) {
        GridCell const * cell = m_Grid.FindCell(place);
        // A number that nobody knew of yet may lie in a region that somebody reads.
        if (!cell && IsWatched(place)) cell = &MakeCell(place);
        if (cell) InitIdleRecalc(cell, cell->IsFormulaLink() && cell->IsValidFormula());
        OnCellChanged(place);
    }
    SetDirty();
}

void SheetManager::FindTargets(GridCell & cell) {
    CCFormula const * const formula = cell.LoadFormula(this);
    if (!formula || !HasPart(*formula, kRefOpFormula)) return;
    CCRef3D const place(this, cell.GetRef());
    CCCellValue value;
    EvalFormula(this, value, formula, &place);
}

void SheetManager::EnterAgain(GridCell & cell) {
    CCFormula * tree = nullptr;
    uchar type = kFormulaNone;
    cell.LoadFormula(this, tree, type); // a fresh copy checks its references anew
    std::unique_ptr<CCFormula> const fresh(tree);
    if (fresh) cell.SetFormula(this, fresh.get(), 1);
}

} // namespace cells::host
