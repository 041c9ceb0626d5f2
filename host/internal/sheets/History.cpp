#include "host/internal/sheets/History.h"

#include "host/internal/sheets/CellState.h"
#include "host/internal/sheets/OpenSheets.h"

#include <set>

namespace cells::host {

namespace {

SheetFacts FactsOf(SheetManager & sheet) {
    SheetFacts facts;
    for (CString const & name : sheet.Names())
        facts.names.emplace_back(name, sheet.FindName(name)->Copy());
    facts.formats = sheet.Formats().Entries();
    facts.isProtected = sheet.IsProtected();
    facts.password = sheet.GetPassword();
    return facts;
}

void RestoreNames(SheetManager & sheet, SheetFacts const & facts) {
    std::set<CString> wanted;
    for (auto const & [name, target] : facts.names) {
        wanted.insert(name);
        CCRef const * const now = sheet.FindName(name);
        if (!now || !now->IsEqual(target.get())) sheet.DefineName(name, *target);
    }
    for (CString const & name : sheet.Names())
        if (!wanted.count(name)) sheet.RemoveName(name);
}

void RestoreProtection(SheetManager & sheet, SheetFacts const & facts) {
    if (facts.isProtected)
        sheet.Protect(facts.password);
    else
        sheet.UnProtect();
}

} // namespace

// First every place is emptied, then filled, and names mean what they meant; only then formulas are
// entered, which read all that.
void History::Apply(Edit const & edit, bool forward) {
    if (edit.undo) return forward ? edit.redo() : edit.undo();
    std::set<SheetManager *> sheets;
    auto const addFamily = [&](SheetManager & member) {
        for (SheetManager * sheet : member.Family()) sheets.insert(sheet);
    };
    for (auto const & [key, states] : edit.cells) addFamily(*key.first);
    for (auto const & [sheet, facts] : edit.facts) addFamily(*sheet);
    auto const wanted = [&](auto const & facts) -> SheetFacts const & {
        return forward ? facts.second : facts.first;
    };
    {
        OpenSheets const open(sheets);
        for (auto const & [sheet, facts] : edit.facts)
            sheet->Formats().Restore(wanted(facts).formats);
        for (auto const & [key, states] : edit.cells) RestoreCellState(*key.first, key.second, {});
        for (auto const & [key, states] : edit.cells)
            RestoreCellState(*key.first, key.second, forward ? states.after : states.before);
        for (auto const & [sheet, facts] : edit.facts) RestoreNames(*sheet, wanted(facts));
        std::map<SheetManager *, std::vector<Place>> changed;
        for (auto const & [key, states] : edit.cells) {
            GridCell * const cell = key.first->Cells().FindCell(key.second);
            if (cell && cell->IsFormulaLink()) key.first->EnterAgain(*cell);
            changed[key.first].push_back(key.second);
        }
        for (auto & [sheet, places] : changed) sheet->TellChanged(std::move(places));
    }
    for (auto const & [sheet, facts] : edit.facts) RestoreProtection(*sheet, wanted(facts));
}

void History::Undo() {
    m_Replaying = true;
    Apply(m_Edits[--m_At], false);
    m_Replaying = false;
}

void History::Redo() {
    m_Replaying = true;
    Apply(m_Edits[m_At++], true);
    m_Replaying = false;
}

void History::Add(std::function<void()> undo, std::function<void()> redo) {
    if (m_Replaying) return;
    Edit edit;
    edit.undo = std::move(undo);
    edit.redo = std::move(redo);
    Push(std::move(edit));
}

// A new edit takes the place of those that were taken back.
void History::Push(Edit edit) {
    for (; m_Edits.size() > m_At; m_Edits.pop_back()) m_Bytes -= m_Edits.back().bytes;
    for (auto const & [key, states] : edit.cells)
        edit.bytes += sizeof(States) + states.before.size() + states.after.size();
    m_Bytes += edit.bytes;
    m_Edits.push_back(std::move(edit));
    while (m_Edits.size() > m_MostSteps || (m_Bytes > m_MostBytes && m_Edits.size() > 1)) {
        m_Bytes -= m_Edits.front().bytes;
        m_Edits.pop_front();
    }
    m_At = m_Edits.size();
}

Recording::Recording(SheetManager & sheet) {
    History * const history = sheet.history;
    if (!history || history->m_Replaying) return;
    m_History = history->shared_from_this();
    Open();
}

// The edit that is in the making: this one, where it is part of no other.
History::Edit & Recording::Open() {
    if (!m_History->m_Open) m_History->m_Open = &m_Edit;
    return *m_History->m_Open;
}

// Places that hold what they held before are no part of the edit.
Recording::~Recording() {
    if (!m_History || m_History->m_Open != &m_Edit) return;
    m_History->m_Open = nullptr;
    for (auto at = m_Edit.cells.begin(); at != m_Edit.cells.end();) {
        at->second.after = CellStateAt(*at->first.first, at->first.second);
        at = at->second.after == at->second.before ? m_Edit.cells.erase(at) : std::next(at);
    }
    for (auto & [sheet, facts] : m_Edit.facts) facts.second = FactsOf(*sheet);
    if (!m_Edit.cells.empty() || !m_Edit.facts.empty()) m_History->Push(std::move(m_Edit));
}

void Recording::Touch(SheetManager & sheet, Place place) {
    if (!m_History) return;
    auto const [at, isNew] = Open().cells.try_emplace({&sheet, place});
    if (isNew) at->second.before = CellStateAt(sheet, place);
}

void Recording::TouchFacts(SheetManager & sheet) {
    if (!m_History || Open().facts.count(&sheet)) return;
    Open().facts[&sheet].first = FactsOf(sheet);
}

} // namespace cells::host
