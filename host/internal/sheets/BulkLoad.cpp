// Many entries at once.
//
// Values before the first formula cannot be read by anything in the load and go straight to their
// cells. From the first formula on everything is kept until the commit, which looks at what the
// formulas read: when no cycle leads through them, values are stored, formulas are registered in
// the order of entry, and each is computed once, after all that it reads. With a cycle the outcome
// depends on the order of entry, so then the entries are made one by one.
#include "cells/Resolve.h"
#include "formula/CCNameRef.h"
#include "formula/CCRefList.h"
#include "formula/CCRegionRef.h"
#include "formula/Parser.h"
#include "host/Sheet.h"
#include "host/internal/sheets/History.h"
#include "host/internal/sheets/PlaceRefs.h"
#include "host/internal/sheets/SheetManager.h"
#include "platform/Utf.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <unordered_map>

namespace cells::host {
namespace {

unsigned KeyOf(Place place) { return unsigned(place.column) << 16 | unsigned(place.row); }

// The places of formulas, a sorted column each, from which those that are settled drop out: a
// search over a region passes each of them once.
class FormulaPlaces {
public:
    void Add(Place place) { m_Columns[std::size_t(place.column)].rows.push_back(place.row); }

    void Sort() {
        for (Column & column : m_Columns) {
            std::sort(column.rows.begin(), column.rows.end());
            column.rows.erase(std::unique(column.rows.begin(), column.rows.end()),
                              column.rows.end());
            column.next.resize(column.rows.size() + 1);
            for (std::size_t i = 0; i < column.next.size(); ++i) column.next[i] = i;
        }
    }

    // The first unsettled formula of a column from `row` to `last`, or -1.
    int FirstFrom(int column, int row, int last) {
        Column & c = m_Columns[std::size_t(column)];
        std::size_t const start =
            std::size_t(std::lower_bound(c.rows.begin(), c.rows.end(), row) - c.rows.begin());
        std::size_t const at = c.Root(start);
        return at < c.rows.size() && c.rows[at] <= last ? c.rows[at] : -1;
    }

    void Settle(Place place) {
        Column & c = m_Columns[std::size_t(place.column)];
        auto const at = std::lower_bound(c.rows.begin(), c.rows.end(), place.row);
        if (at != c.rows.end() && *at == place.row)
            c.next[std::size_t(at - c.rows.begin())] = std::size_t(at - c.rows.begin()) + 1;
    }

private:
    struct Column {
        std::vector<int> rows;
        std::vector<std::size_t> next; // itself, or a later entry where this one is settled
        std::size_t Root(std::size_t at) {
            while (next[at] != at) at = next[at] = next[next[at]];
            return at;
        }
    };
    std::array<Column, kColumns> m_Columns;
};

struct Entry {
    Place place;
    CString text;
    CCCellValue value;
    std::unique_ptr<CCFormula> formula;
};

enum class Mark : uchar { kNone, kOpen, kSettled };

// Puts formulas after what they read, by a walk in depth without recursion.
class Ordering {
public:
    Ordering(SheetManager & sheet, std::unordered_map<unsigned, CCFormula const *> const & formulas)
        : m_Sheet(sheet), m_Formulas(formulas) {
        for (auto const & [key, formula] : formulas) m_Places.Add(PlaceOf(key));
        sheet.Cells().ForEachCell(kWholeGrid, [&](GridCell & cell) {
            if (cell.IsFormulaLink() && cell.IsValidFormula()) m_Places.Add(cell.At());
        });
        m_Places.Sort();
    }

    // Walks from a formula; false when it meets a cycle.
    bool Visit(Place place) {
        if (m_Marks.count(KeyOf(place))) return true;
        Open(place);
        while (!m_Stack.empty()) {
            Place next;
            switch (Advance(next)) {
            case Step::kCycle:
                return false;
            case Step::kDown:
                Open(next);
                break;
            case Step::kDone:
                Close();
                break;
            }
        }
        return true;
    }

    std::vector<Place> const & Order() const { return m_Order; }

private:
    enum class Step { kCycle, kDown, kDone };
    struct Frame {
        Place place;
        std::vector<Area> reads; // areas still to be searched
    };

    static Place PlaceOf(unsigned key) { return {int(key >> 16), int(key & 0xFFFF)}; }

    void Open(Place place) {
        m_Marks[KeyOf(place)] = Mark::kOpen;
        m_Stack.push_back({place, ReadsOf(place)});
    }

    void Close() {
        Place const place = m_Stack.back().place;
        m_Marks[KeyOf(place)] = Mark::kSettled;
        m_Places.Settle(place);
        m_Order.push_back(place);
        m_Stack.pop_back();
    }

    // The next unsettled formula that the top of the stack reads.
    Step Advance(Place & next) {
        Frame & frame = m_Stack.back();
        while (!frame.reads.empty()) {
            Area const & area = frame.reads.back();
            for (int column = area.first.column; column <= area.last.column; ++column) {
                int const row = m_Places.FirstFrom(column, area.first.row, area.last.row);
                if (row < 0) continue;
                next = {column, row};
                return m_Marks.count(KeyOf(next)) ? Step::kCycle : Step::kDown;
            }
            frame.reads.pop_back();
        }
        return Step::kDone;
    }

    std::vector<Area> ReadsOf(Place place) {
        auto const own = m_Formulas.find(KeyOf(place));
        CCFormula const * formula = own == m_Formulas.end() ? nullptr : own->second;
        if (own == m_Formulas.end())
            formula = m_Sheet.Cells().FindCell(place)->LoadFormula(&m_Sheet);
        std::vector<Area> reads;
        if (!formula) return reads;
        internal::RefListHolder const precedents(formula->GetPrecedents(&m_Sheet));
        for (CCRefList const * node = precedents.list; node; node = node->m_pNext)
            AddRead(node->m_pRef, reads);
        return reads;
    }

    void AddRead(CCRef const * ref, std::vector<Area> & reads) {
        if (ref && ref->GetType() == kRefName)
            ref = m_Sheet.FindName(static_cast<CCNameRef const *>(ref)->name());
        if (ref && (ref->GetType() == kRefCell || ref->GetType() == kRefRegion))
            reads.push_back(AreaOf(*ref));
    }

    SheetManager & m_Sheet;
    std::unordered_map<unsigned, CCFormula const *> const & m_Formulas;
    FormulaPlaces m_Places;
    std::unordered_map<unsigned, Mark> m_Marks;
    std::vector<Frame> m_Stack;
    std::vector<Place> m_Order;
};

} // namespace

struct Sheet::Bulk::State {
    explicit State(Sheet & s) : sheet(s), manager(*s.m_Manager) {}

    Sheet & sheet;
    SheetManager & manager;
    std::optional<Recording> recording; // the load is one edit, from its first entry on
    std::deque<Entry> waiting;          // from the first formula on
    bool ordered = true;                // false: something in the load needs the order of entry

    void Enter(Place place, CString const & text);
    bool TryOrdered();
    bool KeepsContent(Entry & entry);
    void StoreInOrder(Entry & entry);
    void Compute(std::vector<Place> const & order,
                 std::unordered_map<unsigned, CCFormula const *> const & formulas);
};

Sheet::Bulk::Bulk(Sheet & sheet) : m_State(std::make_unique<State>(sheet)) {}

Sheet::Bulk::~Bulk() = default;

void Sheet::Bulk::State::Enter(Place place, CString const & text) {
    if (!recording) recording.emplace(manager);
    recording->Touch(manager, place);
    auto [kind, value, formula] = ReadEntry(&manager, text);
    bool const isValue = kind == kEntryValue;
    if (!isValue && !formula) ordered = false; // it raises a message when it is entered
    if (kind == kEntryEditSource) ordered = false;
    if (!isValue || !waiting.empty())
        return void(waiting.push_back({place, text, std::move(value), std::move(formula)}));
    if (manager.IsEditTextOfNumber(place, text) || manager.TryPutNumber(place, value)) return;
    if (value.IsEmpty() && !manager.Cells().FindCell(place))
        return manager.Cells().RemoveNumber(place);
    manager.MakeCell(place).SetText(&manager, text, 0);
}

void Sheet::Bulk::Enter(Place place, std::string_view text) {
    Require(place);
    m_State->Enter(place, FromUtf8(text));
}

// Whether the entry is the edit text of what stands there; a formula is then taken from the cell.
bool Sheet::Bulk::State::KeepsContent(Entry & entry) {
    GridCell * const cell = manager.Cells().FindCell(entry.place);
    if (!cell) return manager.IsEditTextOfNumber(entry.place, entry.text);
    if (!cell->IsEditText(&manager, entry.text)) return false;
    if (entry.formula && cell->IsFormulaLink())
        entry.formula.reset(cell->LoadFormula(&manager)->Copy());
    return true;
}

// Stores an entry in its turn, without computing a formula.
void Sheet::Bulk::State::StoreInOrder(Entry & entry) {
    if (!entry.formula) {
        if (manager.IsEditTextOfNumber(entry.place, entry.text)) return;
        if (entry.value.IsNumber() && manager.TryPutNumber(entry.place, entry.value)) return;
        manager.MakeCell(entry.place).SetText(&manager, entry.text, 0);
        return;
    }
    manager.MakeCell(entry.place).StoreFormula(&manager, std::move(entry.formula));
}

bool Sheet::Bulk::State::TryOrdered() {
    if (!ordered) return false;
    std::unordered_map<unsigned, CCFormula const *> formulas; // the last entry of a place counts
    std::unordered_map<unsigned, std::size_t> last;
    last.reserve(waiting.size());
    for (std::size_t i = 0; i < waiting.size(); ++i) last[KeyOf(waiting[i].place)] = i;
    formulas.reserve(waiting.size());
    bool const repeated = last.size() < waiting.size();
    bool moving = false;
    for (auto const & [key, i] : last) {
        if (KeepsContent(waiting[i]) && repeated) return false;
        if (!waiting[i].formula) continue;
        formulas[key] = waiting[i].formula.get();
        moving = moving || HasPart(*waiting[i].formula, kRefOpFormula);
    }
    if (moving) return false;
    Ordering ordering(manager, formulas);
    for (std::size_t i = 0; i < waiting.size(); ++i)
        if (waiting[i].formula && last[KeyOf(waiting[i].place)] == i &&
            !ordering.Visit(waiting[i].place))
            return false;
    for (std::size_t i = 0; i < waiting.size(); ++i)
        if (last[KeyOf(waiting[i].place)] == i) StoreInOrder(waiting[i]);
    Compute(ordering.Order(), formulas);
    return true;
}

// Formulas of the sheet that read the load are queued; those of the load are settled already.
void Sheet::Bulk::State::Compute(std::vector<Place> const & order,
                                 std::unordered_map<unsigned, CCFormula const *> const & formulas) {
    for (Place place : order)
        if (GridCell * cell = manager.Cells().FindCell(place)) cell->Recalc(&manager);
    for (Place place : order) {
        GridCell * const cell = manager.Cells().FindCell(place);
        if (!cell) continue;
        internal::RefListHolder const dependents(manager.LoadDependencies(cell->GetRef()));
        for (CCRefList const * node = dependents.list; node; node = node->m_pNext) {
            internal::Place const reader = internal::Resolve(manager, node->m_pRef);
            if (!reader.item) continue;
            bool const isLoaded = reader.owner == &manager &&
                                  formulas.count(KeyOf(static_cast<GridCell *>(reader.item)->At()));
            if (!isLoaded) reader.owner->InitIdleRecalc(reader.item, 1);
        }
    }
}

void Sheet::Bulk::Commit() {
    std::deque<Entry> & waiting = m_State->waiting;
    if (!waiting.empty() && !m_State->TryOrdered())
        for (Entry const & entry : waiting) {
            m_State->manager.MakeCell(entry.place);
            CCRCRef const ref = RefOf(entry.place);
            m_State->manager.SetCellText(&ref, entry.text);
        }
    waiting.clear();
    m_State->ordered = true;
    while (m_State->manager.DoIdle(1)) {
    }
    m_State->recording.reset();
}

} // namespace cells::host
