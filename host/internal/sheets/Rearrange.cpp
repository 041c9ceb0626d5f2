#include "host/internal/sheets/Rearrange.h"

#include "formula/CCConstFormula.h"
#include "formula/CCNameRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefOpFormula.h"
#include "formula/CCRegionRef.h"
#include "formula/OperatorObjects.h"
#include "host/internal/sheets/History.h"
#include "host/internal/sheets/OpenSheets.h"
#include "host/internal/sheets/PlaceMap.h"
#include "host/internal/sheets/PlaceRefs.h"
#include "host/internal/sheets/SheetManager.h"

#include <algorithm>
#include <memory>

namespace cells::host {
namespace {

// What a reference to the sheet means afterwards; null when it means nothing.
std::unique_ptr<CCRef> Mapped(CCRef const & ref, PlaceMap const & map) {
    Area const area = AreaOf(ref);
    if (ref.GetType() == kRefCell) {
        auto const place = map.ReferenceTo(area.first);
        if (!place) return nullptr;
        return std::make_unique<CCRCRef>(RefOf(*place));
    }
    auto const now = map.ReferenceTo(area);
    if (!now) return nullptr;
    return std::make_unique<CCRegionRef>(RefOf(*now));
}

// A formula whose references are mapped, in a copy of its tree.
class Rewriting {
public:
    Rewriting(SheetManager & sheet, PlaceMap const & map) : m_Sheet(sheet), m_Map(map) {}

    // The copy; null where no reference is concerned.
    std::unique_ptr<CCFormula> Rewrite(SheetManager & home, CCFormula const & formula) {
        m_Changed = false;
        CCFormula * copy = formula.Copy();
        std::unique_ptr<CCFormula> owned;
        try {
            Walk(home, copy);
        } catch (...) {
            delete copy;
            throw;
        }
        owned.reset(copy);
        return m_Changed ? std::move(owned) : nullptr;
    }

private:
    struct Step {
        CCFormula ** slot;
        bool onSheet; // plain references are to the sheet
        // The "!", or the ":" between two of them, that it is a part of; null for none.
        CCFormula ** whole;
    };

    void Walk(SheetManager & home, CCFormula *& root) {
        std::vector<Step> steps{{&root, &home == &m_Sheet, nullptr}};
        std::vector<CCFormula **> gone;
        while (!steps.empty()) {
            Step const step = steps.back();
            steps.pop_back();
            CCFormula & node = **step.slot;
            if (node.GetType() == kRefFormula) {
                if (step.onSheet && !Map(*step.slot) && step.whole) gone.push_back(step.whole);
            } else if (node.GetType() >= kOpFormula) {
                auto & call = static_cast<CCOpFormula &>(node);
                bool const isFullRef =
                    internal::IsReferenceOperator(call, internal::Operator::kFullRef);
                bool const isPart = isFullRef || internal::IsReferenceOperator(
                                                     call, internal::Operator::kSheetRange);
                bool const onSheet = isFullRef ? Names(home, call) : step.onSheet;
                CCFormula ** const whole = step.whole || !isPart ? step.whole : step.slot;
                for (CCFormulaList * item = call.GetArgs(); item; item = item->next)
                    steps.push_back({&item->formula, onSheet, whole});
            }
        }
        // A sheet without a place on it is no reference.
        std::sort(gone.begin(), gone.end());
        gone.erase(std::unique(gone.begin(), gone.end()), gone.end());
        for (CCFormula ** slot : gone) Put(*slot, std::make_unique<CCConstFormula>(errRef));
    }

    static void Put(CCFormula *& slot, std::unique_ptr<CCFormula> formula) {
        delete slot;
        slot = formula.release();
    }

    // False when the reference means nothing any more.
    bool Map(CCFormula *& slot) {
        auto const & node = static_cast<CCRefFormula const &>(*slot);
        CCRef const * const ref = node.GetRef();
        if (!ref || (ref->GetType() != kRefCell && ref->GetType() != kRefRegion)) return true;
        std::unique_ptr<CCRef> const now = Mapped(*ref, m_Map);
        // Who reads a place that holds another cell afterwards registers and computes anew.
        if (now && now->IsEqual(ref) && !m_Map.Touches(AreaOf(*ref))) return true;
        m_Changed = true;
        if (now)
            Put(slot, std::make_unique<CCRefFormula>(now.get(), node.GetMode()));
        else
            Put(slot, std::make_unique<CCConstFormula>(errRef));
        return now != nullptr;
    }

    // Whether a "!" leads to the sheet alone. What a run of sheets names stays as it is.
    bool Names(SheetManager & home, CCOpFormula & call) const {
        CCRef const * const target = static_cast<CCRefOpFormula &>(call).GetTarget();
        if (!target || target->GetType() != kRefSheets) return false;
        auto const & sheets = *static_cast<CCRef3D const *>(target);
        return sheets.IsOneSheet() && home.GetManForNameIndex(sheets.firstSheet) == &m_Sheet;
    }

    SheetManager & m_Sheet;
    PlaceMap const & m_Map;
    bool m_Changed = false;
};

// A formula that leaves the graph for the time of the change.
struct Affected {
    SheetManager * sheet;
    GridCell * cell;
    std::unique_ptr<CCFormula> tree; // to be entered; null: as it stands
};

class Rearrangement {
public:
    Rearrangement(SheetManager & sheet, PlaceMap const & map) : m_Sheet(sheet), m_Map(map) {}

    void Collect(SheetManager & home) {
        Rewriting rewriting(m_Sheet, m_Map);
        home.Cells().ForEachCell(kWholeGrid, [&](GridCell & cell) {
            CCFormula const * const formula = cell.LoadFormula(&home);
            if (!formula) return;
            std::unique_ptr<CCFormula> tree = rewriting.Rewrite(home, *formula);
            auto const to = &home == &m_Sheet ? m_Map.CellTo(cell.At()) : cell.At();
            bool const moves = !to || *to != cell.At();
            if (tree || moves || MayMove(*formula))
                m_Affected.push_back({&home, &cell, std::move(tree)});
        });
    }

    // Tells the recording which places will hold something else.
    void Record(Recording & recording) {
        for (Affected const & affected : m_Affected)
            recording.Touch(*affected.sheet, affected.cell->At());
        m_Sheet.Cells().ForEach(m_Map.Changed(), [&](Place place) {
            auto const to = m_Map.CellTo(place);
            if (to && *to == place) return;
            recording.Touch(m_Sheet, place);
            if (to) recording.Touch(m_Sheet, *to);
        });
        recording.TouchFacts(m_Sheet);
    }

    void Carry() {
        std::vector<SheetManager::RemoteReader> const readers = TakeReaders();
        for (Affected & affected : m_Affected) {
            if (affected.cell->IsValidFormula()) affected.cell->UnregisterFormula(affected.sheet);
            affected.sheet->OnRemoveItem(affected.cell);
        }
        std::erase_if(m_Affected, [&](Affected const & affected) {
            return affected.sheet == &m_Sheet && !m_Map.CellTo(affected.cell->At());
        });
        MoveCells();
        MoveNames();
        MoveFormats();
        for (Affected & affected : m_Affected) {
            if (affected.tree)
                affected.cell->SetFormula(affected.sheet, affected.tree.get(), 1);
            else
                affected.sheet->EnterAgain(*affected.cell);
        }
        for (auto const & reader : readers)
            m_Sheet.TellMoved(reader, Mapped(*reader.place, m_Map).get());
    }

private:
    // Those of other documents whose places, or what stands there, change: out of the graph for the
    // time of the change.
    std::vector<SheetManager::RemoteReader> TakeReaders() {
        auto readers = m_Sheet.RemoteReaders();
        std::erase_if(readers, [&](auto const & reader) {
            std::unique_ptr<CCRef> const now = Mapped(*reader.place, m_Map);
            return now && now->IsEqual(reader.place.get()) && !m_Map.Touches(AreaOf(*reader.place));
        });
        for (auto const & reader : readers)
            m_Sheet.UnRegisterDependent(reader.place.get(), reader.reader.get());
        return readers;
    }

    struct Moving {
        Place to;
        std::unique_ptr<GridCell> cell; // null: a plain number
        double number = 0;
        std::uint32_t format = 0;
    };

    // What nobody fills stays empty, and cells that hold nothing are not carried.
    void MoveCells() {
        Grid & grid = m_Sheet.Cells();
        std::vector<Place> places;
        grid.ForEach(m_Map.Changed(), [&](Place place) {
            auto const to = m_Map.CellTo(place);
            if (!to || *to != place) places.push_back(place);
        });
        std::vector<Moving> moving;
        for (Place place : places) {
            Moving item;
            bool const isNumber = grid.FindNumber(place, item.number, item.format);
            if (isNumber)
                grid.RemoveNumber(place);
            else
                item.cell = grid.TakeCell(place);
            auto const to = m_Map.CellTo(place);
            if (!to || (item.cell && item.cell->IsEmpty())) continue;
            item.to = *to;
            moving.push_back(std::move(item));
        }
        for (Moving & item : moving) {
            if (item.cell)
                grid.PutCell(item.to, std::move(item.cell));
            else
                grid.PutNumber(item.to, item.number, item.format);
        }
    }

    void MoveNames() {
        for (CString const & name : m_Sheet.Names()) {
            std::unique_ptr<CCRef> const now = Mapped(*m_Sheet.FindName(name), m_Map);
            if (now)
                m_Sheet.DefineName(name, *now);
            else
                m_Sheet.RemoveName(name);
        }
    }

    void MoveFormats() {
        std::vector<AreaFormats::Entry> entries;
        for (AreaFormats::Entry entry : m_Sheet.Formats().Entries())
            if (auto const area = m_Map.ReferenceTo(entry.area)) {
                entry.area = *area;
                entries.push_back(entry);
            }
        m_Sheet.Formats().Restore(std::move(entries));
    }

    SheetManager & m_Sheet;
    PlaceMap const & m_Map;
    std::vector<Affected> m_Affected;
};

} // namespace

void Rearrange(std::vector<SheetManager *> const & sheets, SheetManager & sheet,
               PlaceMap const & map, Recording & recording) {
    Rearrangement rearrangement(sheet, map);
    for (SheetManager * home : sheets) rearrangement.Collect(*home);
    rearrangement.Record(recording);
    {
        OpenSheets const open(sheets);
        rearrangement.Carry();
    }
    sheet.SetDirty();
}

} // namespace cells::host
