#include "host/internal/sheets/Invariants.h"

#include "formula/CCFormula.h"
#include "formula/CCNameRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefList.h"
#include "host/internal/sheets/SheetManager.h"
#include "platform/Utf.h"

#include <algorithm>
#include <sstream>

namespace cells::host {
namespace {

std::string NameOf(CCCellManager const & sheet, CCRef const * ref) {
    std::wostringstream stream;
    ref->Print(sheet.ctx(), stream, 0);
    CString const name = sheet.GetSheetName();
    return (name.IsEmpty() ? "" : ToUtf8(name) + "!") + ToUtf8(std::wstring_view(stream.str()));
}

// A place as seen from a sheet: on that sheet, or on the one that it names itself.
std::string PlaceOf(SheetManager & sheet, CCRef const * ref) {
    if (ref->GetType() != kRefSheets) return NameOf(sheet, ref);
    auto const & sheets = *static_cast<CCRef3D const *>(ref);
    CCCellManager const * named =
        sheets.IsManagerForm() ? sheets.GetManager() : sheet.GetManForNameIndex(sheets.firstSheet);
    if (!sheets.ref) return {};
    return NameOf(named ? *named : sheet, sheets.ref);
}

// Links between documents are kept by both, so one cannot tell.
bool IsLink(CCRef const * ref) { return ref && ref->GetType() == kRefRemote; }

void Sort(std::vector<std::string> & lines) {
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
}

void Excuse(std::vector<std::string> & differences, std::vector<std::string> const & readers) {
    std::erase_if(differences, [&](std::string const & line) {
        return std::any_of(readers.begin(), readers.end(),
                           [&](std::string const & reader) { return line.starts_with(reader); });
    });
}

} // namespace

void Invariants::Read(SheetManager & sheet) {
    CTX * const ctx = &sheet;
    sheet.Cells().ForEachCell(kWholeGrid, [&](GridCell & cell) {
        std::string const place = PlaceOf(sheet, cell.GetRef());
        internal::RefListHolder const dependents(cell.LoadDependents(ctx));
        for (CCRefList const * node = dependents.list; node; node = node->m_pNext)
            if (!IsLink(node->m_pRef))
                m_Stored.push_back(PlaceOf(sheet, node->m_pRef) + " reads " + place);
        CCFormula const * const formula = cell.IsValidFormula() ? cell.LoadFormula(ctx) : nullptr;
        if (!formula) return;
        bool const moves = HasPart(*formula, kRefOpFormula);
        if (moves) m_Moving.push_back(place + " reads ");
        if (moves || HasPart(*formula, kDocOpFormula)) m_Inexact.push_back(place + " reads ");
        internal::RefListHolder const precedents(cell.GetPrecedents(ctx));
        for (CCRefList const * node = precedents.list; node; node = node->m_pNext) {
            CCRef const * ref = node->m_pRef;
            std::unique_ptr<CCRef> named;
            if (ref && ref->GetType() == kRefName) {
                named.reset(sheet.TranslateNameRef(static_cast<CCNameRef const *>(ref)));
                ref = named.get();
            }
            if (ref && !IsLink(ref)) m_Implied.push_back(place + " reads " + PlaceOf(sheet, ref));
        }
    });
    sheet.Regions().ForEach([&](CCRegionRef const & region, CCRef * dependent) {
        if (!IsLink(dependent))
            m_Stored.push_back(PlaceOf(sheet, dependent) + " reads " + PlaceOf(sheet, &region));
    });
    if (int const open = sheet.GetOpenRefCount())
        m_Lines.push_back(std::to_string(open) + " walks left open");
}

std::vector<std::string> Invariants::Differences() {
    Sort(m_Stored);
    Sort(m_Implied);
    std::vector<std::string> beyond, missing;
    std::set_difference(m_Stored.begin(), m_Stored.end(), m_Implied.begin(), m_Implied.end(),
                        std::back_inserter(beyond));
    std::set_difference(m_Implied.begin(), m_Implied.end(), m_Stored.begin(), m_Stored.end(),
                        std::back_inserter(missing));
    // A formula whose place cannot be computed reads, for safety, whatever it mentions.
    Excuse(beyond, m_Moving);
    // OFFSET, ROW and COLUMN mention cells that they do not read.
    Excuse(missing, m_Inexact);
    for (std::string const & line : beyond)
        m_Lines.push_back("stored, but no formula says: " + line);
    for (std::string const & line : missing) m_Lines.push_back("not stored: " + line);
    return m_Lines;
}

} // namespace cells::host
