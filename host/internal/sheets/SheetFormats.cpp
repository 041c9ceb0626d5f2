// cells::host::Sheet: formats, protection, search.
#include "host/NumberFormats.h"
#include "host/Sheet.h"
#include "host/internal/sheets/History.h"
#include "host/internal/sheets/SheetManager.h"
#include "platform/Resources.h"
#include "platform/Utf.h"

#include <algorithm>

namespace cells::host {
namespace {

CCFindData FindDataOf(std::string_view text, FindOptions const & options) {
    CCFindData data;
    data.findText = FromUtf8(text);
    data.lookIn = options.in == FindOptions::In::kValues     ? CCFindData::kValues
                  : options.in == FindOptions::In::kFormulas ? CCFindData::kFormulas
                                                             : CCFindData::kBoth;
    data.caseSensitive = options.caseSensitive;
    data.wholeWord = options.wholeWord;
    data.matchFormulaValues = options.valuesOfFormulas;
    return data;
}

} // namespace

// Whether protection keeps the area as it is; it then says so, once.
bool Sheet::Refuses(Area const & area) {
    if (!m_Manager->IsProtected()) return false;
    bool locked = m_Manager->Formats().IsLocked(area);
    m_Manager->Cells().ForEachCell(
        area, [&](GridCell const & cell) { locked = locked || cell.IsLocked(m_Manager.get()); });
    if (locked) m_Manager->ErrorMessage(kStringLocked);
    return locked;
}

void Sheet::TouchFormats(Recording & recording, Area const & area) {
    if (area.first == area.last) return recording.Touch(*m_Manager, area.first);
    m_Manager->Cells().ForEach(area, [&](Place place) { recording.Touch(*m_Manager, place); });
    recording.TouchFacts(*m_Manager);
}

bool Sheet::Format(Area const & area, CCCellFormat const & format) {
    Require(area.first);
    Require(area.last);
    if (Refuses(area)) return false;
    CTX * const ctx = m_Manager.get();
    Recording recording(*m_Manager);
    TouchFormats(recording, area);
    if (area.first == area.last) return m_Manager->MakeCell(area.first).SetFormat(ctx, format) != 0;
    m_Manager->ForEachMadeCell(area, [&](GridCell & cell) { cell.SetFormat(ctx, format); });
    m_Manager->Formats().Add(area, format);
    m_Manager->SetDirty();
    return true;
}

bool Sheet::SetNumberFormat(Area const & area, std::string_view format) {
    return SetNumberFormat(area, ParseNumberFormat(format, *m_Manager->lctx()));
}

bool Sheet::SetNumberFormat(Area const & area, CCNumberFormat const & format) {
    CCCellFormat whole;
    whole.SetNumberFormat(format);
    return Format(area, whole);
}

std::string Sheet::NumberFormat(Place place) const {
    Require(place);
    CCRCRef const ref{uchar(place.column), ushort(place.row)};
    GridCell const * const cell = m_Manager->Cells().FindCell(place);
    CCCellValue value;
    m_Manager->GetValue(&ref, value, 0);
    if (value.IsNumber()) return DescribeNumberFormat(value.GetFormat());
    CCCellFormat const format = cell ? cell->getCFmt() : m_Manager->Formats().FormatAt(place);
    return DescribeNumberFormat(format.GetNFmt());
}

bool Sheet::SetFlag(Area const & area, CellFlag flag, bool on) {
    CCCellFormat format;
    switch (flag) {
    case CellFlag::kLocked:
        format.SetLock(on);
        break;
    case CellFlag::kHidden:
        format.SetHide(on);
        break;
    case CellFlag::kHideErrors:
        format.SetHideError(on);
        break;
    case CellFlag::kHideZeros:
        format.SetHideZero(on);
        break;
    }
    return Format(area, format);
}

bool Sheet::ClearFormat(Area const & area) {
    Require(area.first);
    Require(area.last);
    if (Refuses(area)) return false;
    CTX * const ctx = m_Manager.get();
    Recording recording(*m_Manager);
    TouchFormats(recording, area);
    m_Manager->Cells().ForEachCell(
        area, [&](GridCell const & cell) { TouchEntry(recording, cell.At()); });
    // The value of a formula has again the format that the formula gives it.
    m_Manager->Cells().ForEachCell(area, [&](GridCell & cell) {
        cell.Clear(ctx, kClearFormat);
        if (cell.IsValidFormula()) m_Manager->InitIdleRecalc(&cell, 1);
    });
    m_Manager->ClearNumberFormats(area);
    m_Manager->Formats().Clear(area);
    m_Manager->SetDirty();
    return true;
}

void Sheet::Protect(std::string_view password) {
    Recording recording(*m_Manager);
    recording.TouchFacts(*m_Manager);
    m_Manager->Protect(FromUtf8(password));
}

bool Sheet::Unprotect(std::string_view password) {
    if (m_Manager->IsProtected() && !(m_Manager->GetPassword() == FromUtf8(password))) return false;
    Recording recording(*m_Manager);
    recording.TouchFacts(*m_Manager);
    m_Manager->UnProtect();
    return true;
}

bool Sheet::IsProtected() const { return m_Manager->IsProtected() != 0; }

std::vector<Place> Sheet::Find(std::string_view text, FindOptions const & options) {
    CCFindData const data = FindDataOf(text, options);
    CTX * const ctx = m_Manager.get();
    std::vector<Place> places;
    ForEachOccupied([&](Place place) {
        CellView const view(m_Manager->Cells(), place);
        if (view.Get()->Find(ctx, data)) places.push_back(place);
    });
    return places;
}

int Sheet::Replace(std::string_view text, std::string_view by, FindOptions const & options) {
    CCFindData data = FindDataOf(text, options);
    data.replaceText = FromUtf8(by);
    int replaced = 0;
    Recording recording(*m_Manager);
    for (Place place : Find(text, options)) {
        TouchEntry(recording, place);
        replaced += m_Manager->MakeCell(place).Replace(m_Manager.get(), data);
    }
    return replaced;
}

} // namespace cells::host
