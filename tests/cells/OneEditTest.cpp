// One edit, step by step: the calls that a host sees when "5" is entered into A1 where B1 holds
// =A1*2, in their order. docs/architecture.md tells the same in words.
#include "host/Sheet.h"
#include "host/internal/sheets/SheetManager.h"
#include "support/BaseHost.h"

#include <gtest/gtest.h>

using cells::test::BaseHost;
using cells::test::MapCell;

namespace {

using Steps = std::vector<std::string>;

class TracedCell : public MapCell {
public:
    TracedCell(Steps & steps, CCRCRef const & ref) : MapCell(ref.col, ref.row), m_Steps(steps) {}

    using MapCell::GetValueText;
    using MapCell::SetValue;
    void SetText(cells::CTX * ctx, wchar_t const * text, int quiet) override {
        Note("SetText");
        MapCell::SetText(ctx, text, quiet);
    }
    int SetValue(cells::CTX * ctx, CCCellValue const & value) override {
        Note("SetValue");
        return MapCell::SetValue(ctx, value);
    }
    int SetFormula(cells::CTX * ctx, CCFormula const * formula, int quiet) override {
        Note("SetFormula");
        return MapCell::SetFormula(ctx, formula, quiet);
    }
    int RegisterDependent(cells::CTX * ctx, CCRef const * ref) override {
        Note("RegisterDependent");
        return MapCell::RegisterDependent(ctx, ref);
    }
    void OnValueStored() override { Note("OnValueStored"); }
    void UpdateNumberFormat(cells::CTX * ctx) override {
        Note("UpdateNumberFormat");
        MapCell::UpdateNumberFormat(ctx);
    }
    void OnChange(cells::CTX * ctx) override {
        Note("OnChange");
        MapCell::OnChange(ctx);
    }
    void OnValueChanged(cells::CTX *) override { Note("OnValueChanged"); }
    void Recalc(cells::CTX * ctx) override {
        Note("Recalc");
        MapCell::Recalc(ctx);
    }
    void GetValueText(cells::CTX * ctx, std::wostream & stream) const override {
        Note("GetValueText");
        MapCell::GetValueText(ctx, stream);
    }

private:
    void Note(char const * step) const {
        m_Steps.push_back(BaseHost::NameOf(GetRef()) + "." + step);
    }

    Steps & m_Steps;
};

// Two cells, A1 with 3 and B1 with its double, all of it computed.
class TracedHost : public BaseHost {
public:
    TracedHost() {
        for (char const * name : {"A1", "B1"}) {
            CCRCRef const ref = RefOf(name);
            cells[{ref.row, ref.col}] = std::make_unique<TracedCell>(steps, ref);
        }
        Enter("A1", L"3");
        Enter("B1", L"=A1*2");
        Idle();
        steps.clear();
    }

    Steps Taken() { return std::exchange(steps, {}); }

    int SetCellText(CCRef const * ref, wchar_t const * text) override {
        Note("SetCellText", ref);
        return BaseHost::SetCellText(ref, text);
    }
    int GetCellValueText(CCRef const * ref, wchar_t * buffer, int bytes) const override {
        Note("GetCellValueText", ref);
        return BaseHost::GetCellValueText(ref, buffer, bytes);
    }
    int BeginSession() override {
        if (depth == 0) steps.push_back("BeginSession");
        return BaseHost::BeginSession();
    }
    using BaseHost::EndSession;
    void EndSession() override {
        BaseHost::EndSession();
        if (depth == 0) steps.push_back("EndSession");
    }
    int DoIdle(int finish) override {
        steps.push_back("DoIdle");
        return BaseHost::DoIdle(finish);
    }
    CCItem * ProcessDependents(CCRef const * ref, CCRecalcList & list) override {
        Note("ProcessDependents", ref);
        return BaseHost::ProcessDependents(ref, list);
    }
    CCItem * PatchProcessDependents(CCRef const * ref, CCRecalcList & list) override {
        Note("PatchProcessDependents", ref);
        return BaseHost::PatchProcessDependents(ref, list);
    }
    CCRefList * LoadDependencies(CCRef const * ref) override {
        Note("LoadDependencies", ref);
        return BaseHost::LoadDependencies(ref);
    }
    int RecalcCell(CCRef const * ref) override {
        Note("RecalcCell", ref);
        return BaseHost::RecalcCell(ref);
    }
    int GetValue(CCRef const * ref, CCCellValue & value, int index) override {
        Note("GetValue", ref);
        return BaseHost::GetValue(ref, value, index);
    }

    mutable Steps steps; // sessions inside another one are left out

private:
    void Note(char const * step, CCRef const * ref) const {
        steps.push_back(step + (" " + NameOf(ref)));
    }
};

} // namespace

TEST(OneEdit, AnEntryIsStoredNotifiedAndQueuedWithinASession) {
    TracedHost host;
    host.Enter("A1", L"5");
    Steps const steps = {
        "SetCellText A1",
        "A1.SetText", // as typed
        "BeginSession",
        "A1.SetValue", // as read by the locale
        "A1.OnValueStored",     "A1.UpdateNumberFormat", "A1.OnChange",
        "ProcessDependents A1", // B1 is queued
        "LoadDependencies A1",  "A1.OnValueChanged",     "EndSession",
    };
    EXPECT_EQ(host.Taken(), steps);
    EXPECT_EQ(host.GetCurProcessCount(), 1);
    EXPECT_EQ(host.Text("B1"), "6"); // nothing is computed yet
}

TEST(OneEdit, ASliceOrdersTheDependentsAndThenComputesThem) {
    TracedHost host;
    host.Enter("A1", L"5");
    host.Taken();
    EXPECT_EQ(host.DoIdle(0), 0);
    Steps const steps = {
        "DoIdle",
        "PatchProcessDependents B1", // nobody reads B1
        "LoadDependencies B1",
        "RecalcCell B1",
        "B1.Recalc",
        "BeginSession", // the call of "*"
        "GetValue A1",
        "EndSession",
        "B1.OnValueStored",
        "B1.UpdateNumberFormat",
        "B1.OnChange",
        "B1.OnValueChanged",
    };
    EXPECT_EQ(host.Taken(), steps);
    EXPECT_EQ(host.GetCurProcessCount() + host.GetCurRecalcCount(), 0);
}

TEST(OneEdit, TheValueIsPrintedWhenItIsAskedFor) {
    TracedHost host;
    host.Enter("A1", L"5");
    host.Idle();
    host.Taken();
    CCRCRef const b1 = BaseHost::RefOf("B1");
    wchar_t text[8];
    EXPECT_EQ(host.GetCellValueText(&b1, text, sizeof text), 1);
    EXPECT_STREQ(text, L"10");
    EXPECT_EQ(host.Taken(), (Steps{"GetCellValueText B1", "B1.GetValueText"}));
}

TEST(OneEdit, AnEqualValueIsNeitherStoredNorQueued) {
    TracedHost host;
    host.Enter("A1", L"3");
    EXPECT_EQ(host.Taken(), (Steps{"SetCellText A1", "A1.SetText", "BeginSession", "A1.SetValue",
                                   "A1.OnValueChanged", "EndSession"}));
    EXPECT_EQ(host.DoIdle(0), 0);
    EXPECT_EQ(host.Taken(), Steps{"DoIdle"});
}

TEST(OneEdit, AResultThatStaysTheSameIsStoredAndNotNotified) {
    TracedHost host;
    host.Enter("B1", L"=A1*0");
    host.Idle();
    host.Enter("A1", L"5");
    host.Taken();
    host.DoIdle(0);
    EXPECT_EQ(host.Taken(), (Steps{"DoIdle", "PatchProcessDependents B1", "LoadDependencies B1",
                                   "RecalcCell B1", "B1.Recalc", "BeginSession", "GetValue A1",
                                   "EndSession", "B1.OnValueStored", "B1.UpdateNumberFormat"}));
}

TEST(OneEdit, AFormulaIsRegisteredComputedAndOnlyThenSearchedForACycle) {
    TracedHost host;
    host.Enter("B1", L"5");
    host.Idle();
    host.Taken();
    host.Enter("B1", L"=A1+1");
    Steps const steps = {
        "SetCellText B1",
        "B1.SetText",
        "BeginSession",
        "B1.SetFormula",
        "A1.RegisterDependent",
        "GetValue A1",
        "B1.OnValueStored",
        "B1.UpdateNumberFormat",
        "LoadDependencies B1",       // the search in this document
        "PatchProcessDependents B1", // the search through others
        "LoadDependencies B1",
        "B1.OnChange",
        "B1.OnValueChanged",
        "EndSession",
    };
    EXPECT_EQ(host.Taken(), steps);
    EXPECT_EQ(host.GetCurProcessCount(), 1);
}

// The ready host takes a shorter road while nobody reads the place, and the same from then on.
TEST(OneEdit, InTheReadyHostANumberIsNoCellUntilAFormulaReadsIt) {
    cells::host::Sheet sheet("C");
    Steps changed;
    sheet.OnChanged([&](cells::host::Place place) { changed.push_back(NameOf(place)); });
    auto const isCell = [&] {
        auto & manager = static_cast<cells::host::SheetManager &>(sheet.Manager());
        return manager.Cells().FindCell({0, 0}) != nullptr;
    };
    sheet.Enter("A1", "3");
    EXPECT_FALSE(isCell());
    sheet.Enter("B1", "=A1*2");
    EXPECT_TRUE(isCell());
    sheet.Recalculate();
    changed.clear();
    sheet.Enter("A1", "5");
    EXPECT_EQ(changed, Steps{"A1"});
    EXPECT_EQ(sheet.Text("B1"), "6");
    sheet.Recalculate();
    EXPECT_EQ(changed, (Steps{"A1", "B1"}));
    EXPECT_EQ(sheet.Text("B1"), "10");
}
