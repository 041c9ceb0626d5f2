#include "format/FormatTables.h"
#include "formula/CCConstFormula.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRefFormula.h"
#include "formula/Clipboard.h"
#include "formula/Parser.h"
#include "platform/CArchive.h"
#include "support/BaseHost.h"
#include "values/ValueCompare.h"

#include <functional>
#include <gtest/gtest.h>

using cells::test::BaseHost;
using cells::test::MapCell;

namespace {

CCRCRef R(char const * name) { return BaseHost::RefOf(name); }

CCCellFormat Lock() {
    CCCellFormat format;
    format.SetLock(1);
    return format;
}

CCCellFormat Hide() {
    CCCellFormat format;
    format.SetHide(1);
    return format;
}

} // namespace

TEST(CellEntry, EqualTextChangesAndQueuesNothing) {
    BaseHost host;
    host.Enter("A1", L"x");
    host.Enter("B1", L"=A1");
    host.Idle();
    int const dirty = host.dirty, changes = host.Make("A1").changes;
    host.Enter("A1", L"x");
    EXPECT_EQ(host.dirty, dirty);
    EXPECT_EQ(host.Make("A1").changes, changes);
    EXPECT_EQ(host.GetCurProcessCount(), 0);
}

TEST(CellEntry, ReplacingAFormulaByItsOwnValueMarksTheDocumentOnce) {
    BaseHost host;
    host.Enter("A1", L"=\"x\"");
    host.Idle();
    int const dirty = host.dirty, changes = host.Make("A1").changes,
              told = host.Make("A1").valueChanges;
    host.Enter("A1", L"x");
    EXPECT_FALSE(host.Make("A1").IsFormulaLink());
    EXPECT_EQ(host.dirty, dirty + 1);
    EXPECT_EQ(host.Make("A1").changes, changes);
    EXPECT_EQ(host.Make("A1").valueChanges, told + 1);
}

TEST(CellEntry, EveryWayOfStoringAValueIsTold) {
    BaseHost host;
    MapCell & cell = host.Make("A1");
    host.Enter("B1", L"1");
    auto const tells = [&](char const * way, auto && store) {
        int const before = cell.valuesStored;
        store();
        EXPECT_GT(cell.valuesStored, before) << way;
    };
    tells("text", [&] { cell.SetText(&host, L"5", 0); });
    tells("formula", [&] { cell.SetText(&host, L"=B1", 0); });
    tells("recalculation", [&] {
        host.Enter("B1", L"2");
        host.Idle();
    });
    tells("a formula that becomes text", [&] { cell.SetText(&host, L"=1+", 0); });
    tells("cycle", [&] { cell.SetText(&host, L"=A1", 0); });
    CCCellValue value;
    value.Set(L"x");
    tells("value", [&] { cell.SetValue(&host, value); });
    CCFormula * formula = nullptr;
    host.Make("A2").SetText(&host, L"=B1+1", 0);
    formula = host.Make("A2").LoadFormula(&host);
    tells("mass fill", [&] { cell.SetFormula1(&host, formula); });
    CCNumberFormat format;
    tells("plain number", [&] { cell.SetPlainNumber(7, format); });
    tells("clearing", [&] { cell.Clear(&host, kClearAll); });
    tells("file", [&] {
        CMemFile file(16);
        {
            CArchive ar(&file, CArchive::store);
            host.Make("A2").Write(&host, ar);
        }
        file.SeekToBegin();
        CArchive ar(&file, CArchive::load);
        cell.Read(&host, ar);
    });
    tells("deletion", [&] { cell.Delete(&host); });
}

TEST(CellEntry, UnparsedFormulasStayAsTextWithAMessage) {
    BaseHost host;
    host.Enter("A1", L"=1+");
    host.Enter("A2", L"=(1");
    EXPECT_EQ(host.Text("A1"), "=1+");
    EXPECT_EQ(host.messages, (std::vector<unsigned>{13034, 13042}));
    host.Make("A3").SetText(&host, L"=1+", 1); // quiet
    EXPECT_EQ(host.messages.size(), 2u);
    host.SetNotifyEnable(0);
    host.Enter("A4", L"=1+");
    EXPECT_EQ(host.messages.size(), 2u);
}

TEST(CellEntry, LeadingBlanksAndApostropheStayInTheValue) {
    BaseHost host;
    host.Enter("A1", L"  text");
    EXPECT_EQ(host.Text("A1"), "  text");
    host.Enter("A1", L"'=1");
    EXPECT_EQ(host.Text("A1"), "'=1");
    host.Enter("A1", L"");
    EXPECT_TRUE(host.Make("A1").GetValue().IsEmpty());
}

TEST(CellEntry, ANumberOverADateIsANumber) {
    BaseHost host;
    host.Enter("A1", L"3/5/2026");
    host.Enter("A1", L"5");
    EXPECT_EQ(host.Text("A1"), "5");
}

TEST(CellEntry, WithoutAManagerNothingChanges) {
    BaseHost host;
    host.Enter("A1", L"5");
    host.withManager = false;
    CCRCRef const a1 = R("A1");
    EXPECT_EQ(host.SetCellText(&a1, L"6"), 1);
    host.withManager = true;
    EXPECT_EQ(host.Text("A1"), "5");
}

TEST(CellFormula, OfItsOwnCellIsCircular) {
    BaseHost host;
    host.Enter("A1", L"=A1+1");
    MapCell & a1 = host.Make("A1");
    EXPECT_EQ(a1.GetValue().GetError(), 5);
    EXPECT_EQ(host.EditText("A1"), "=A1 + 1");
    EXPECT_EQ(a1.GetFormulaType(), 'C');
    EXPECT_FALSE(a1.IsValidFormula());
    EXPECT_EQ(host.messages, std::vector<unsigned>{13033});
    EXPECT_FALSE(a1.HasDependents());
    a1.Recalc(&host);
    EXPECT_EQ(a1.GetValue().GetError(), 5);
    host.Enter("A1", L"7");
    std::unique_ptr<CCFormula> const tree(_ParseFormula(&host, L"1+1", 0, nullptr));
    a1.SaveFormula(&host, tree.get(), 'F');
    EXPECT_EQ(a1.GetFormulaType(), 'F');
}

TEST(CellFormula, MayBeSetFromTheCellsOwnTree) {
    BaseHost host;
    host.Enter("A1", L"5");
    host.Enter("B1", L"=A1+1");
    MapCell & b1 = host.Make("B1");
    EXPECT_EQ(b1.SetFormula(&host, b1.LoadFormula(&host), 0), 1);
    EXPECT_EQ(host.Text("B1"), "6");
    EXPECT_EQ(host.Make("A1").GetDependentCount(), 1);
}

TEST(CellFormula, ThatCannotRegisterBecomesText) {
    BaseHost host;
    host.Make("A1").SetFormat(&host, Hide());
    host.Protect(L"");
    host.Enter("B1", L"=A1+1");
    MapCell & b1 = host.Make("B1");
    EXPECT_EQ(host.Text("B1"), "=A1 + 1");
    EXPECT_FALSE(b1.IsFormulaLink());
    EXPECT_EQ(host.messages, std::vector<unsigned>{13037});
    EXPECT_EQ(host.depth, 0);
}

TEST(CellFormula, MassFillNeitherTestsForCyclesNorQueues) {
    BaseHost host;
    host.Enter("A1", L"5");
    host.Enter("C1", L"=B1");
    host.Idle();
    std::unique_ptr<CCFormula> const tree(_ParseFormula(&host, L"A1*3", 0, nullptr));
    EXPECT_EQ(host.Make("B1").SetFormula1(&host, tree.get()), 1);
    EXPECT_EQ(host.Text("B1"), "15");
    EXPECT_EQ(host.GetCurProcessCount(), 0);
    EXPECT_EQ(host.Make("A1").GetDependentCount(), 1);
}

// What a host sees of an entry, in order.
namespace {

struct Recorder : BaseHost {
    std::string log;
    void Note(std::string const & what) { log += what + " "; }
    void SetDirty() override { Note("dirty"); }
    int BeginSession() override { return Note("begin"), 1; }
    using BaseHost::EndSession;
    void EndSession() override { Note("end"); }
    void ErrorMessage(unsigned int id) override { Note(std::to_string(id)); }
    struct Cell : MapCell {
        using MapCell::MapCell;
        void OnChange(cells::CTX * ctx) override {
            auto & host = *static_cast<Recorder *>(ctx->manager());
            host.Note("change" +
                      std::to_string(host.GetCurProcessCount() + host.GetCurRecalcCount()));
            CCCell::OnChange(ctx);
        }
        void OnValueChanged(cells::CTX * ctx) override {
            static_cast<Recorder *>(ctx->manager())->Note("told");
        }
    };
    Recorder() {
        Make("A1");
        cells[{0, 1}] = std::make_unique<Cell>(uchar(1), ushort(0));
    }
};

} // namespace

TEST(CellFormula, EffectsOfAnEntryComeInOneOrder) {
    Recorder good;
    good.Enter("B1", L"=A1");
    // In the session of the entry: registered (dirty), evaluated, queued, then told of the change.
    EXPECT_EQ(good.log, "begin begin begin end dirty change1 dirty end told end ");
    Recorder circular;
    circular.Enter("B1", L"=B1");
    // Registered and unregistered again, with a message.
    EXPECT_EQ(circular.log,
              "begin begin begin end dirty begin end dirty 13033 change0 dirty end told end ");
    Recorder refused;
    refused.Make("A1").SetFormat(&refused, Hide());
    refused.Protect(L"");
    refused.log.clear();
    refused.Enter("B1", L"=A1");
    // The text stands before anything is queued.
    EXPECT_EQ(refused.log, "begin begin begin 13037 end begin end change0 dirty end told end ");
}

// All that an operation on an item does happens in one session; the document is marked as changed
// inside or after it.
TEST(CellSessions, EncloseEveryChangeOfAnItem) {
    struct Case {
        char const * name;
        std::function<int(Recorder &, CCCell &)> change;
    };
    CCRCRef const a1 = R("A1"), c1 = R("C1");
    CCCellFormat percent;
    percent.SetNFType(C_NF_PERCENT);
    std::vector<Case> const cases{
        {"RegisterDependent",
         [&](Recorder & host, CCCell & b1) { return b1.RegisterDependent(&host, &c1); }},
        {"UnRegisterDependent",
         [&](Recorder & host, CCCell & b1) { return b1.UnRegisterDependent(&host, &a1); }},
        {"UpdateDependent",
         [&](Recorder & host, CCCell & b1) { return b1.UpdateDependent(&host, &a1, &c1); }},
        {"SetFormat", [&](Recorder & host, CCCell & b1) { return b1.SetFormat(&host, percent); }},
        {"SetEditSource",
         [&](Recorder & host, CCCell & b1) { return b1.SetEditSource(&host, &a1, 0); }},
        {"UpdateFormula",
         [&](Recorder & host, CCCell & b1) { return b1.UpdateFormula(&host, &a1, &c1, 1); }},
        {"ValidateFormulaRef",
         [&](Recorder & host, CCCell & b1) { return b1.ValidateFormulaRef(&host, &a1); }},
        {"InvalidateRef",
         [&](Recorder & host, CCCell & b1) { return b1.InvalidateRef(&host, &a1); }},
        {"InvalidateItem",
         [&](Recorder & host, CCCell & b1) { return b1.InvalidateItem(&host, &host.Make("A1")); }}};
    for (Case const & test : cases) {
        Recorder host;
        for (char const * name : {"A1", "A2", "C1"}) host.Make(name);
        host.Enter("B1", L"=A1+A2");
        CCCell & b1 = *host.cells[{0, 1}];
        b1.RegisterDependent(&host, &a1);
        host.log.clear();
        EXPECT_EQ(test.change(host, b1), 1) << test.name;
        std::istringstream log(host.log);
        int depth = 0, sessions = 0;
        for (std::string what; log >> what;) {
            if (what == "begin")
                sessions += depth++ == 0;
            else if (what == "end")
                --depth;
            else
                EXPECT_TRUE(depth > 0 || what == "dirty") << test.name << ": " << host.log;
        }
        EXPECT_EQ(depth, 0) << test.name;
        EXPECT_EQ(sessions, 1) << test.name << ": " << host.log;
    }
}

TEST(CellFormula, AFailedMassFillQueuesTheDependents) {
    BaseHost host;
    host.Make("A1").SetFormat(&host, Hide());
    host.Enter("C1", L"=B1");
    host.Make("B1");
    host.Enter("C1", L"=B1");
    host.Idle();
    host.Protect(L"");
    std::unique_ptr<CCFormula> const tree(_ParseFormula(&host, L"A1*3", 0, nullptr));
    EXPECT_EQ(host.Make("B1").SetFormula1(&host, tree.get()), 0);
    EXPECT_EQ(host.GetCurProcessCount(), 1);
    EXPECT_EQ(host.Text("B1"), "=A1 * 3");
}

TEST(CellFormula, AHiddenPrecedentTurnsAnInvalidatedFormulaIntoText) {
    BaseHost host;
    for (char const * name : {"A1", "A2"}) host.Make(name);
    host.Enter("B1", L"=A1+A2");
    host.Make("A2").SetFormat(&host, Hide());
    host.Protect(L"");
    host.Make("A1").Delete(&host);
    EXPECT_EQ(host.Text("B1"), "=#VALUE! + A2");
    EXPECT_FALSE(host.Make("B1").IsFormulaLink());
    EXPECT_FALSE(host.Make("A2").HasDependents());
}

TEST(CellFormula, AReferenceToNoCellIsErrorOneUntilThereIsOne) {
    BaseHost host;
    host.Enter("B1", L"=A1");
    EXPECT_EQ(host.Make("B1").GetValue().GetError(), 1);
    host.Enter("A1", L"4");
    CCRCRef const b1 = R("B1");
    host.RecalcCell(&b1);
    EXPECT_EQ(host.Text("B1"), "4");
    host.cells.erase({0, 0});
    host.RecalcCell(&b1);
    EXPECT_EQ(host.Make("B1").GetValue().GetError(), 1);
}

TEST(CellFormula, ARangeOverTheOwnCellReadsTheOldValue) {
    struct Column : BaseHost { // A1:A3 is a region of this host
        int IsValidRef(CCRef const * ref) override {
            return ref && (ref->GetType() == kRefRegion || BaseHost::IsValidRef(ref));
        }
        CSize GetRefSize(CCRef const * ref) override {
            return ref->GetType() == kRefRegion ? CSize(1, 3) : CSize(1, 1);
        }
        int GetValue(CCRef const * ref, CCCellValue & value, int index) override {
            if (ref->GetType() != kRefRegion) return BaseHost::GetValue(ref, value, index);
            CCRCRef const cell(0, ushort(index));
            return BaseHost::GetValue(&cell, value, 0);
        }
    } host;
    host.Enter("A1", L"1");
    host.Enter("A2", L"10");
    host.Enter("A3", L"4");
    host.Enter("A2", L"=SUM(A1:A3)");
    EXPECT_EQ(host.Text("A2"), "15");
    CCRCRef const a2 = R("A2");
    host.RecalcCell(&a2);
    EXPECT_EQ(host.Text("A2"), "20");
}

TEST(CellFormula, BuffersHoldWhatFits) {
    BaseHost host;
    host.Enter("A1", std::wstring(100, L'x'));
    wchar_t buffer[8];
    for (int bytes : {0, 1, 3}) {
        buffer[0] = L'!';
        host.Make("A1").CCCell::GetValueText(&host, buffer, bytes);
        EXPECT_EQ(buffer[0], L'!');
    }
    host.Make("A1").CCCell::GetValueText(&host, buffer, int(sizeof(wchar_t)));
    EXPECT_STREQ(buffer, L"");
    host.Make("A1").CCCell::GetValueText(&host, buffer, int(sizeof buffer));
    EXPECT_STREQ(buffer, L"xxxxxxx");
}

TEST(CellProtection, LockedCellsRefuseEveryEdit) {
    BaseHost host;
    host.Enter("A1", L"5");
    host.Make("A1").SetFormat(&host, Lock());
    CCCellFormat unlock;
    unlock.SetLock(0);
    EXPECT_EQ(host.Make("A1").SetFormat(&host, unlock), 1); // unprotected: a lock can be taken off
    host.Make("A1").SetFormat(&host, Lock());
    host.Protect(L"pass");
    host.Enter("A1", L"6");
    EXPECT_EQ(host.Make("A1").Clear(&host, kClearAll), 0);
    EXPECT_EQ(host.Make("A1").SetFormat(&host, unlock), 0);
    EXPECT_EQ(host.Make("A1").Delete(&host), 0);
    EXPECT_EQ(host.Text("A1"), "5");
    EXPECT_EQ(host.messages, (std::vector<unsigned>{13036, 13036, 13036, 13036}));
}

TEST(CellProtection, HiddenCellsShowNothing) {
    BaseHost host;
    host.Enter("A1", L"=1+1");
    host.Make("A1").SetFormat(&host, Hide());
    EXPECT_EQ(host.Text("A1"), "2");
    host.Protect(L"");
    EXPECT_EQ(host.Text("A1"), "");
    EXPECT_EQ(host.EditText("A1"), "");
}

TEST(CellDisplay, ErrorsAndZerosMayBeHidden) {
    BaseHost host;
    CCCellFormat format;
    format.SetHideError(1);
    format.SetHideZero(1);
    host.Enter("A1", L"=1/0");
    host.Enter("A2", L"0");
    for (char const * name : {"A1", "A2"}) {
        EXPECT_NE(host.Text(name), "");
        host.Make(name).SetFormat(&host, format);
        EXPECT_EQ(host.Text(name), "");
    }
}

TEST(CellFormatting, MasksDecideWhatTheValueTakes) {
    BaseHost host;
    host.Enter("A1", L"1234.5");
    CCCellFormat decimals;
    decimals.SetNFPrecision(2);
    host.Make("A1").SetFormat(&host, decimals);
    EXPECT_EQ(host.Text("A1"), "1234.50"); // decimals turn general into fixed
    CCCellFormat commas;
    commas.SetNFCommas(1);
    host.Make("A1").SetFormat(&host, commas);
    EXPECT_EQ(host.Text("A1"), "1,234.50");
    CCCellFormat percent;
    percent.SetNFType(C_NF_PERCENT);
    host.Make("A1").SetFormat(&host, percent);
    EXPECT_EQ(host.Text("A1"), "123,450.00%");
    CCNumberFormat whole;
    whole.Set(uchar(C_NF_SCIENTIFIC));
    CCCellFormat all;
    all.SetNumberFormat(whole);
    host.Make("A1").SetFormat(&host, all);
    EXPECT_EQ(host.Text("A1"), "1.E+03");
    host.Enter("A1", L"7");
    EXPECT_EQ(host.Text("A1"), "7.E+00"); // the format stays with the cell
    host.Make("A1").Clear(&host, kClearFormat);
    EXPECT_EQ(host.Text("A1"), "7");
}

TEST(CellFormatting, ADefaultEntryOfTheHostCounts) {
    struct OwnTable {
        CCCellFormatTable table;
        CCCellFormatTable * const before = CCCellFormatTable::CCellFormats;
        OwnTable() { CCCellFormatTable::CCellFormats = &table; }
        ~OwnTable() { CCCellFormatTable::CCellFormats = before; }
    } own;
    CCCellFormat & first = *own.table.GetAt(0);
    first.SetLock(1);
    first.SetHide(1);
    first.SetEditSource(1);
    first.SetHideError(1);
    first.SetHideZero(1);
    first.SetNFType(C_NF_PERCENT);
    BaseHost host;
    MapCell & a1 = host.Make("A1");
    EXPECT_EQ(a1.GetFormat(), 0);
    EXPECT_TRUE(a1.IsLocked(&host));
    EXPECT_TRUE(a1.IsHidden(&host));
    EXPECT_TRUE(a1.IsEditSource(&host));
    EXPECT_TRUE(a1.IsErrorHidden(&host));
    EXPECT_TRUE(a1.IsZeroHidden(&host));
    host.Enter("A1", L"0.5");
    EXPECT_EQ(a1.GetValue().GetFormat().GetType(), C_NF_PERCENT);
    host.Protect(L"");
    host.Enter("A1", L"1");
    EXPECT_EQ(host.messages, std::vector<unsigned>{13036});
}

TEST(CellFormatting, OfATextChangesAndQueuesNothing) {
    BaseHost host;
    host.Enter("A1", L"x");
    host.Enter("B1", L"=A1");
    host.Idle();
    int const changes = host.Make("A1").changes;
    host.Make("A1").SetFormat(&host, Hide());
    EXPECT_EQ(host.Make("A1").changes, changes + 1);
    EXPECT_EQ(host.GetCurProcessCount(), 0);
}

TEST(CellClear, TakesTheParts) {
    BaseHost host;
    host.Enter("A1", L"5");
    host.Enter("B1", L"=A1+1");
    host.Make("B1").Clear(&host, kClearValue);
    EXPECT_EQ(host.Text("B1"), "6"); // the value of a formula stays
    host.Make("B1").Clear(&host, kClearFormula);
    EXPECT_FALSE(host.Make("B1").IsFormulaLink());
    EXPECT_EQ(host.Text("B1"), "6");
    EXPECT_FALSE(host.Make("A1").HasDependents());
    host.Make("B1").Clear(&host, kClearValue);
    EXPECT_TRUE(host.Make("B1").IsEmpty());
}

TEST(EditSources, WriteThroughToTheirSource) {
    BaseHost host;
    host.Enter("A1", L"5");
    host.Enter("B1", L"!A1");
    EXPECT_EQ(host.EditText("B1"), "!A1");
    EXPECT_EQ(host.Text("B1"), "5");
    host.Enter("B1", L"8");
    EXPECT_EQ(host.Text("A1"), "8");
    EXPECT_TRUE(host.Make("B1").IsFormulaLink());
    int const changes = host.Make("B1").changes;
    EXPECT_EQ(host.Make("B1").Clear(&host, kClearValue), 1);
    EXPECT_EQ(host.Make("B1").changes, changes + 1);
    EXPECT_TRUE(host.Make("A1").GetValue().IsEmpty());
}

TEST(EditSources, ARingEndsWithoutAWrite) {
    BaseHost host;
    host.Make("A1");
    host.Make("B1");
    host.Enter("A1", L"!B1");
    host.Enter("B1", L"!A1");
    CCCellValue value;
    value.Set(3.0, uchar(C_NF_GENERAL));
    CCRCRef const a1 = R("A1");
    EXPECT_EQ(host.SetSourceValue(&a1, value), 0);
    EXPECT_EQ(host.SetSourceValue(nullptr, value), 0);
    host.autoCalc = 0;
    EXPECT_EQ(host.SetSourceValue(&a1, value), 1);
}

TEST(EditSources, HandOnWhatIsCleared) {
    struct Case {
        int what;
        char const *shown, *formula;
        bool percent;
    };
    for (Case const & test :
         {Case{kClearFormat, "0.5", "=1 / 2", false}, Case{kClearFormula, "50%", "50%", true},
          Case{kClearFormula | kClearValue, "", "", true}, Case{kClearAll, "", "", false}}) {
        BaseHost host;
        host.Enter("A1", L"=1/2");
        CCCellFormat format;
        format.SetNumberFormat(CCNumberFormat(C_NF_PERCENT));
        host.Make("A1").SetFormat(&host, format);
        host.Enter("B1", L"!A1");
        EXPECT_EQ(host.Make("B1").Clear(&host, test.what), 1);
        EXPECT_EQ(host.Text("A1"), test.shown) << test.what;
        EXPECT_EQ(host.EditText("A1"), test.formula) << test.what;
        EXPECT_EQ(host.Make("A1").getCFmt().IsNF() != 0, test.percent) << test.what;
        EXPECT_EQ(host.EditText("B1"), "!A1");
        EXPECT_TRUE(host.Make("B1").IsEditSource(&host));
    }
}

TEST(EditSources, WithoutAFormulaKeepWhatTheyHold) {
    BaseHost host;
    host.Enter("A1", L"7");
    CCCellFormat source;
    source.SetEditSource(1);
    for (char const * name : {"A1", "B1"}) host.Make(name).SetFormat(&host, source);
    MapCell &a1 = host.Make("A1"), &b1 = host.Make("B1");
    int const changes = a1.changes, empty = b1.changes;
    EXPECT_EQ(a1.Clear(&host, kClearAll), 1);
    EXPECT_EQ(host.Text("A1"), "7");
    EXPECT_TRUE(a1.IsEditSource(&host));
    EXPECT_EQ(a1.changes, changes + 1);
    EXPECT_EQ(b1.Clear(&host, kClearAll), 1);
    EXPECT_EQ(b1.changes, empty);
}

TEST(EditSources, ClearingARingEnds) {
    BaseHost host;
    host.Make("A1");
    host.Make("B1");
    host.Enter("A1", L"!B1");
    host.Enter("B1", L"!A1");
    EXPECT_EQ(host.Make("A1").Clear(&host, kClearAll), 1);
    EXPECT_TRUE(host.Make("A1").IsFormulaLink());
    EXPECT_EQ(host.depth, 0);
}

TEST(EditSources, AMassFillReportsWhatIsNoSource) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Enter("B1", L"!A1");
    CCRCRef const a1 = R("A1");
    EXPECT_EQ(host.Make("B1").SetFormula1(&host, std::make_unique<CCRefFormula>(&a1, 0).get()), 1);
    EXPECT_EQ(host.messages, std::vector<unsigned>{});
    std::unique_ptr<CCFormula> const sum(_ParseFormula(&host, L"A1+1", 0, nullptr));
    EXPECT_EQ(host.Make("C1").SetFormula1(&host, sum.get()), 1); // no edit source
    EXPECT_EQ(host.messages, std::vector<unsigned>{});
    EXPECT_EQ(host.Make("B1").SetFormula1(&host, sum.get()), 1);
    EXPECT_EQ(host.messages, std::vector<unsigned>{13038});
    EXPECT_EQ(host.Text("B1"), "2");
}

TEST(EditSources, AFormulaThatIsNoSourceIsReported) {
    BaseHost host;
    host.Enter("A1", L"!1+1");
    EXPECT_EQ(host.messages, std::vector<unsigned>{13038});
    CCRCRef const b1 = R("B1");
    host.Make("B1");
    EXPECT_EQ(host.Make("C1").SetEditSource(&host, &b1, 3), 1);
    EXPECT_EQ(host.EditText("C1"), "!$B$1");
}

TEST(FindAndReplace, LooksInValuesAndFormulas) {
    BaseHost host;
    host.Enter("A1", L"Tax rate");
    host.Enter("A2", L"=\"Tax\"+\"es\"");
    CCFindData find;
    find.findText = L"tax";
    MapCell &text = host.Make("A1"), &formula = host.Make("A2");
    EXPECT_TRUE(text.Find(&host, find));
    EXPECT_FALSE(formula.Find(&host, find));
    find.matchFormulaValues = 1;
    EXPECT_TRUE(formula.Find(&host, find));
    find.matchFormulaValues = 0;
    find.lookIn = CCFindData::kFormulas;
    EXPECT_FALSE(text.Find(&host, find));
    EXPECT_TRUE(formula.Find(&host, find));
    find.caseSensitive = 1;
    EXPECT_FALSE(formula.Find(&host, find));
    CCFindData copy;
    copy.matchFormulaValues = 1;
    copy.Set(find);
    EXPECT_EQ(copy.matchFormulaValues, 1);
    EXPECT_EQ(copy.caseSensitive, 1);
}

TEST(FindAndReplace, ReplacesThroughAnEntry) {
    BaseHost host;
    host.Enter("A1", std::wstring(1000, L'a'));
    CCFindData data;
    data.findText = L"a";
    data.replaceText = L"aa";
    EXPECT_EQ(host.Make("A1").Replace(&host, data), 1);
    EXPECT_EQ(host.Text("A1").size(), 1023u);
    host.Enter("A2", L"=1+1");
    data.findText = L"1";
    data.replaceText = L"2";
    EXPECT_EQ(host.Make("A2").Replace(&host, data), 0);
    data.lookIn = CCFindData::kBoth;
    EXPECT_EQ(host.Make("A2").Replace(&host, data), 1);
    EXPECT_EQ(host.Text("A2"), "4");
    data.findText = L"nothing";
    EXPECT_EQ(host.Make("A2").Replace(&host, data), 0);
}

TEST(CellFormula, AnInvalidatedItemBecomesErrorOne) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Enter("A2", L"2");
    host.Enter("B1", L"=A1+A2*3");
    MapCell & b1 = host.Make("B1");
    EXPECT_EQ(b1.InvalidateItem(&host, &host.Make("C9")), 0);
    EXPECT_EQ(host.EditText("B1"), "=A1 + A2 * 3");
    int const changes = b1.valueChanges;
    EXPECT_EQ(b1.InvalidateItem(&host, &host.Make("A1")), 1);
    EXPECT_EQ(host.EditText("B1"), "=#REF! + A2 * 3");
    EXPECT_EQ(b1.GetValue().GetError(), 1);
    EXPECT_EQ(b1.valueChanges, changes + 1);
    EXPECT_FALSE(host.Make("A1").HasDependents());
    EXPECT_TRUE(host.Make("A2").HasDependents());
    EXPECT_EQ(host.Make("A1").InvalidateItem(&host, &b1), 0); // no formula
}

TEST(CellFormula, ANewTreeIsComputedWhileTheOldOneIsRegistered) {
    struct Reader : BaseHost {
        using BaseHost::GetValue;
        int GetValue(CCRef const * ref, CCCellValue & value, int index) override {
            CCRCRef const a2 = R("A2");
            if (ref->IsEqual(&a2)) dependents = Make("A1").GetDependentCount();
            return BaseHost::GetValue(ref, value, index);
        }
        int dependents = -1;
    };
    for (bool byItem : {false, true}) {
        Reader host;
        host.Enter("A1", L"1");
        host.Enter("A2", L"2");
        host.Enter("B1", L"=A2+A1");
        host.dependents = -1;
        CCRCRef const a1 = R("A1");
        EXPECT_EQ(byItem ? host.Make("B1").InvalidateItem(&host, &host.Make("A1"))
                         : host.Make("B1").InvalidateRef(&host, &a1),
                  1);
        EXPECT_EQ(host.dependents, 1);
        EXPECT_FALSE(host.Make("A1").HasDependents());
        EXPECT_EQ(host.Make("A2").GetDependentCount(), 1);
    }
}

TEST(CellFormula, ANewTreeFollowsTheComputedPlaceOfTheOldOne) {
    BaseHost host;
    for (char const * name : {"A1", "C1"}) host.Make(name);
    host.Enter("A2", L"2");
    host.Enter("B1", L"=SUM(OFFSET(A1,1,0),INDIRECT(\"A2\"),IF(ISERROR(C1),0))");
    host.Idle();
    EXPECT_EQ(host.Text("B1"), "4");
    EXPECT_EQ(host.Make("B1").InvalidateItem(&host, &host.Make("C1")), 1);
    EXPECT_EQ(host.Make("A2").GetDependentCount(), 1);
    host.Enter("A2", L"5");
    host.Idle();
    EXPECT_EQ(host.Text("B1"), "10");
    host.Enter("B1", L"");
    EXPECT_FALSE(host.Make("A2").HasDependents());
}

TEST(CellFormula, ATreeThatReplacesARefusedCircleIsAliveAgain) {
    for (bool byItem : {false, true}) {
        BaseHost host;
        host.Enter("A1", L"1");
        host.Enter("B1", L"=IF(FALSE,B1,A1)");
        MapCell & b1 = host.Make("B1");
        EXPECT_EQ(b1.GetValue().GetError(), 5);
        CCRCRef const own = R("B1");
        EXPECT_EQ(byItem ? b1.InvalidateItem(&host, &b1) : b1.InvalidateRef(&host, &own), 1);
        EXPECT_EQ(b1.GetFormulaType(), kFormulaNormal);
        EXPECT_EQ(host.Text("B1"), "1");
        host.Enter("A1", L"9");
        host.Idle();
        EXPECT_EQ(host.Text("B1"), "9");
    }
}

TEST(CellFormula, ACopyOfACellKeepsItWhetherStoredOrRead) {
    for (char const * text : {"=A1 * 2", "=B1 + 1"}) { // the second one reads its own cell
        BaseHost host;
        host.Enter("A1", L"4");
        std::string const entered(text);
        host.Enter("B1", std::wstring(entered.begin(), entered.end()));
        CMemFile file;
        CArchive out(&file, CArchive::store);
        host.Make("B1").WriteContent(&host, out);
        out.Flush();
        file.SeekToBegin();
        CArchive in(&file, CArchive::load);
        MapCell read(1, 0);
        read.ReadContent(&host, in);
        ASSERT_FALSE(read.HasTree());
        for (bool loaded : {false, true}) {
            if (loaded) read.LoadFormula(&host);
            MapCell copy(read);
            EXPECT_EQ(copy.HasTree(), loaded);
            EXPECT_EQ(copy.IsValidFormula(), read.IsValidFormula());
            std::wostringstream stream;
            copy.CCCell::GetFormulaText(&host, stream);
            EXPECT_EQ(cells::test::Utf8(stream.str()), text);
            CMemFile again;
            CArchive ar(&again, CArchive::store);
            copy.WriteContent(&host, ar);
            ar.Flush();
            EXPECT_EQ(again.Bytes(), file.Bytes());
        }
    }
}

TEST(CellFormula, AReferenceIsUpdatedInPlaceOrInANewTree) {
    BaseHost host;
    for (char const * name : {"A1", "C1"}) host.Make(name);
    host.Enter("B1", L"=$A1");
    host.Enter("B2", L"=A1*2");
    CCRCRef const from = R("A1"), to = R("C1"), other = R("D1");
    CCFormula const * const tree = host.Make("B1").LoadFormula(&host);
    EXPECT_EQ(host.Make("B1").UpdateFormula(&host, &other, &to, 0), 0);
    EXPECT_EQ(host.Make("B1").UpdateFormula(&host, &from, &to, 1), 1);
    EXPECT_EQ(host.EditText("B1"), "=$C1");
    EXPECT_EQ(host.Make("B1").LoadFormula(&host), tree);
    EXPECT_EQ(host.Make("B2").UpdateFormula(&host, &from, &to, 1), 1);
    EXPECT_EQ(host.EditText("B2"), "=C1 * 2");
    EXPECT_FALSE(host.Make("A1").HasDependents());
    EXPECT_EQ(host.Make("A1").UpdateFormula(&host, &from, &to, 1), 0); // no formula
}

TEST(CellFormula, ValidatingAReferenceRegistersItAnew) {
    BaseHost host;
    host.Enter("A1", L"4");
    host.Enter("B1", L"=A1+1");
    MapCell & b1 = host.Make("B1");
    host.Idle();
    b1.UnregisterFormula(&host);
    CCRCRef const a1 = R("A1"), other = R("D1");
    EXPECT_EQ(b1.ValidateFormulaRef(&host, &other), 0);
    EXPECT_FALSE(host.Make("A1").HasDependents());
    host.recalculated.clear();
    EXPECT_EQ(b1.ValidateFormulaRef(&host, &a1), 1);
    EXPECT_TRUE(host.Make("A1").HasDependents());
    host.Idle();
    EXPECT_EQ(host.recalculated, std::vector<std::string>{"B1"});

    b1.UnregisterFormula(&host);
    host.Make("A1").SetFormat(&host, Hide());
    host.Protect(L"");
    EXPECT_EQ(b1.ValidateFormulaRef(&host, &a1), 0);
    EXPECT_EQ(host.Text("B1"), "=A1 + 1");
    EXPECT_FALSE(b1.IsFormulaLink());
    EXPECT_EQ(b1.ValidateFormulaRef(&host, &a1), 0); // no formula any more
}

TEST(CellValues, CompareWithNoCellBehindAll) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Enter("A2", L"2");
    host.Enter("A3", L"text");
    MapCell &one = host.Make("A1"), &two = host.Make("A2"), &text = host.Make("A3");
    EXPECT_EQ(CompareCells(&one, &two, 0), -1);
    EXPECT_EQ(CompareCells(&two, &one, 0), 1);
    EXPECT_EQ(CompareCells(&two, &two, 0), 0);
    EXPECT_EQ(CompareCells(&two, &text, 0), -CompareCells(&text, &two, 0));
    EXPECT_EQ(CompareCells(nullptr, &two, 0), 1);
    EXPECT_EQ(CompareCells(&two, nullptr, 0), -1);
    EXPECT_EQ(CompareCells(nullptr, nullptr, 0), 0);
}

TEST(CellValues, TextIsWhateverIsNotEmpty) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Enter("B1", L"=A2");
    MapCell &number = host.Make("A1"), &formula = host.Make("B1"), &empty = host.Make("C1");
    EXPECT_TRUE(number.CCCell::IsValueText(&host) && number.CCCell::IsFormulaText(&host));
    EXPECT_TRUE(formula.CCCell::IsFormulaText(&host));
    EXPECT_FALSE(empty.CCCell::IsValueText(&host) || empty.CCCell::IsFormulaText(&host));
}

TEST(CellClear, OfItsOwnNumberFormatIsAChangeOfValue) {
    BaseHost host;
    host.Enter("A1", L"50%");
    host.Enter("B1", L"=A1");
    host.Idle();
    EXPECT_EQ(host.Text("B1"), "50%");
    MapCell & a1 = host.Make("A1");
    int const changes = a1.changes, told = a1.valueChanges;
    a1.Clear(&host, kClearFormat);
    EXPECT_EQ(a1.changes, changes + 1);
    EXPECT_EQ(a1.valueChanges, told + 1);
    host.Idle();
    EXPECT_EQ(host.Text("B1"), "0.5");
    a1.Clear(&host, kClearFormat); // it has none any more
    EXPECT_EQ(a1.changes, changes + 1);
    EXPECT_EQ(a1.valueChanges, told + 1);
    EXPECT_EQ(host.GetCurProcessCount() + host.GetCurRecalcCount(), 0);
}

TEST(CellClear, AHiddenCellOfAProtectedSheetStaysHidden) {
    BaseHost host;
    host.Enter("A1", L"0.5");
    CCCellFormat format = Hide();
    format.SetNumberFormat(CCNumberFormat(C_NF_PERCENT));
    host.Make("A1").SetFormat(&host, format);
    host.Protect(L"");
    EXPECT_EQ(host.Make("A1").Clear(&host, kClearFormat), 1);
    EXPECT_TRUE(host.Make("A1").IsHidden(&host));
    EXPECT_FALSE(host.Make("A1").getCFmt().IsNF());
    EXPECT_EQ(host.Make("A1").GetValue().GetFormat().GetType(), C_NF_GENERAL);
}

TEST(CellPaste, ReferencesMoveAndRegisterAnew) {
    BaseHost host;
    host.Enter("A1", L"1");
    host.Enter("B1", L"2");
    host.Enter("C1", L"=A1*10");
    CCClipboardData clip;
    clip.source = CRect(0, 0, 2, 0);
    clip.col = 1;
    CCRCRef const from = R("C1"), to = R("D1");
    EXPECT_EQ(host.Make("C1").UpdateInPaste(&host, &from, &to, &clip), 1);
    EXPECT_EQ(host.EditText("C1"), "=B1 * 10");
    EXPECT_EQ(host.Text("C1"), "20");
    EXPECT_FALSE(host.Make("A1").HasDependents());
    host.Enter("D1", L"=A1");
    clip.mode = 1;
    clip.source = CRect(5, 5, 5, 5);
    CCRCRef const beyond(1, 0), minus(0, 0);
    host.Make("D1").UpdateInPaste(&host, &beyond, &minus, &clip); // one column to the left of A
    EXPECT_EQ(host.EditText("D1"), "=#REF!");
}

TEST(Hyperlinks, GiveTheirFirstArgument) {
    BaseHost host;
    host.Enter("A1", L"=HYPERLINK(\"target\")");
    CString text;
    EXPECT_TRUE(host.Make("A1").IsHyperLink());
    EXPECT_EQ(host.Make("A1").GetHyperLink(&host, text), 1);
    EXPECT_EQ(text, L"target");
    host.Enter("A2", L"=1");
    EXPECT_EQ(host.Make("A2").GetHyperLink(&host, text), 0);
}
