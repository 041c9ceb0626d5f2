#include "formula/CCNameRef.h"
#include "formula/CCRegionRef.h"
#include "functions/FormulaCases.h"
#include "support/BaseHost.h"

#include <random>

using cells::host::Place;
using cells::host::Sheet;

class Lookups : public FormulaCases {};

TEST_P(Lookups, Give) { Run(); }

INSTANTIATE_TEST_SUITE_P(
    Tables, Lookups,
    testing::Values(
        Case{"=VLOOKUP(2,A1:B3,2)", "b"}, Case{"=VLOOKUP(1,A1:B3,1.9)", "1", 0},
        Case{"=VLOOKUP(1.5,A1:B3,2)", "#VALUE!"}, Case{"=VLOOKUP(\"2\",A1:B3,2)", "#VALUE!"},
        Case{"=VLOOKUP(7,D1:D3,1)", "#VALUE!"}, Case{"=VLOOKUP(\"'7\",D1:E3,2)", "4", 0},
        Case{"=VLOOKUP(\"A\",B1:C3,1)", "#VALUE!"}, Case{"=VLOOKUP(\"b\",B1:C3,2)", "2/1/1950", 7},
        Case{"=VLOOKUP(1,A1:B3,0)", "#VALUE!"}, Case{"=VLOOKUP(1,A1:B3,-1)", "#VALUE!"},
        Case{"=VLOOKUP(1,A1:B3,3)", "#VALUE!"}, Case{"=VLOOKUP(1,A1:B3,1E300)", "#VALUE!"},
        Case{"=VLOOKUP(1,A1:B3,\"x\")", "#VALUE!"}, Case{"=VLOOKUP(1,{1,2},1)", "#VALUE!"},
        Case{"=VLOOKUP(1,5,1)", "#VALUE!"}, Case{"=VLOOKUP(1,A1,1)", "1", 0},
        Case{"=VLOOKUP(1,INDIRECT(\"\"),1)", "#REF!"}, Case{"=VLOOKUP(1,A1:B3)", "#CALL!"},
        Case{"=VLOOKUP(A1:A3,A1:B3,2)", "#CALL!"}, Case{"=VLOOKUP(3,OFFSET(A1,0,0,2,3),1)", "3", 0},
        Case{"=VLOOKUP(1,A1:B3,2,1/0)", "a"}, Case{"=VLOOKUP(4,E1:E6,1)", "4", 0},
        Case{"=HLOOKUP(1,A1:E3,3)", "3", 0}, Case{"=HLOOKUP(\"a\",A1:E3,2)", "b"},
        Case{"=HLOOKUP(\"a\",A1:E3,4)", "#VALUE!"}, Case{"=HLOOKUP(2,A1:E3,1)", "2", 0},
        Case{"=HLOOKUP(3,A1:E3,1)", "#VALUE!"}, Case{"=HLOOKUP(1,A1:E3,0.9)", "#VALUE!"}));

INSTANTIATE_TEST_SUITE_P(
    Sorted, Lookups,
    testing::Values(
        Case{"=LOOKUP(2.5,A1:A3,{10;20;30})", "20"}, Case{"=LOOKUP(3,A1:A3,{10;20;30})", "30"},
        Case{"=LOOKUP(3.5,A1:A3,{10;20;30})", "#N/A"}, Case{"=LOOKUP(9,A1:A3,{10;20;30})", "#N/A"},
        Case{"=LOOKUP(0,A1:A3,{10;20;30})", "#N/A"},
        Case{"=LOOKUP(2,{1,\"x\",2,3},{10,20,30,40})", "30"},
        Case{"=LOOKUP(3,A1:A9,E1:E9)", "4", 0}, Case{"=LOOKUP(4,A1:A9,E1:E9)", "#N/A"},
        Case{"=LOOKUP(\"a\",B1:B2,A1:A2)", "1", 0}, Case{"=LOOKUP(1,A1:A3)", "#CALL!"},
        Case{"=LOOKUP(1,INDIRECT(\"\"),A1:A3)", "#REF!"}, Case{"=MATCH(9,A1:A3,1)", "#N/A"},
        Case{"=MATCH(2.5,A1:A3)", "2", 0}, Case{"=MATCH(2,{1,2,2,3})", "3", 0},
        Case{"=MATCH(2,{1,2,2,3},0)", "2", 0}, Case{"=MATCH(3,A1:A3)", "3", 0},
        Case{"=MATCH(0.5,A1:A3)", "#N/A"}, Case{"=MATCH(2.5,A1:A3,0)", "#N/A"},
        Case{"=MATCH(2.5,A1:A3,0.9)", "#N/A"}, Case{"=MATCH(2.5,{3,2,1},-1)", "1", 0},
        Case{"=MATCH(2,{3,2,2,1},-1.5)", "2", 0}, Case{"=MATCH(0.5,{3,2,1},-1)", "#N/A"},
        Case{"=MATCH(4,{3,2,1},-1)", "#N/A"}, Case{"=MATCH(2.5,{1,2,\"x\",3})", "3", 0},
        Case{"=MATCH(\"A\",B1:B3,0)", "1", 0}, Case{"=MATCH(\"c\",B1:B3,0)", "#N/A"},
        Case{"=MATCH(1,A1:A3,\"x\")", "#VALUE!"}, Case{"=MATCH(1,INDIRECT(\"\"))", "#REF!"},
        Case{"=MATCH(1)", "#CALL!"}, Case{"=MATCH(1,A1:A3,1,1)", "#CALL!"}));

INSTANTIATE_TEST_SUITE_P(KeysAndResultsOfUnequalSize, Lookups,
                         testing::Values(Case{"=LOOKUP(1,A1:A3,E1:E2)", "#REF!"},
                                         Case{"=LOOKUP(1,A1:A2,E1:E3)", "#REF!"},
                                         Case{"=LOOKUP(1,A1:A3,{10,20,30})", "#REF!"},
                                         Case{"=LOOKUPEX(1,A1:A3,E1:E2)", "#REF!"},
                                         Case{"=LOOKUPEX(1,A1:A2,E1:E3)", "#REF!"},
                                         Case{"=LOOKUPEX(1,{1,2},{10,20,30})", "#REF!"},
                                         Case{"=LOOKUPEX(2,A1:C1,{10;20;30})", "#REF!"}));

INSTANTIATE_TEST_SUITE_P(
    Places, Lookups,
    testing::Values(
        Case{"=FIND(0,1,2)", "0", 0}, Case{"=FIND(2.5,A1:A2,A3)", "2", 0},
        Case{"=FIND(9,A1:A2,B1,A3)", "4", 0}, Case{"=FIND(2,\"x\",1)", "2", 0},
        Case{"=FIND(\"x\",1,2)", "0", 0}, Case{"=FIND(1,INDIRECT(\"\"))", "#REF!"},
        Case{"=FIND(2,5,INDIRECT(\"\"))", "0", 0}, Case{"=FIND(1)", "#CALL!"},
        Case{"=FINDEX(0,1,2)", "#VALUE!"}, Case{"=FINDEX(2,5,A1:A3)", "3", 0},
        Case{"=FINDEX(\"A\",\"a\",\"b\")", "#VALUE!"}, Case{"=FINDEX(\"b\",A1:B3)", "4", 0},
        Case{"=FINDEX(2.0000000001,A1:A3)", "#VALUE!"}, Case{"=FINDEX(1,INDIRECT(\"\"))", "#REF!"},
        Case{"=LOOKUPEX(2,{3,2,1},{10,20,30})", "20"},
        Case{"=LOOKUPEX(2.5,{3,2,1},{10,20,30})", "#VALUE!"},
        Case{"=LOOKUPEX(4,E1:E3,A1:A3)", "2", 0}, Case{"=LOOKUPEX(9.5,E1:E2,{1;2})", "#VALUE!"},
        Case{"=LOOKUPEX(1,INDIRECT(\"\"),A1:A3)", "#REF!"},
        Case{"=LOOKUPEX(1,A1:A3,A1:A3,1)", "#CALL!"}, Case{"=INDEX(2,A1:B2)", "a"},
        Case{"=INDEX(4,A1:A3,9)", "9"}, Case{"=INDEX(1.9,5,6)", "5"},
        Case{"=INDEX(0.5,5)", "#VALUE!"}, Case{"=INDEX(3,5,6)", "#VALUE!"},
        Case{"=INDEX(1E300,A1:A3)", "#VALUE!"}, Case{"=INDEX(\"x\",5)", "#VALUE!"},
        Case{"=INDEX(1,INDIRECT(\"\"))", "#REF!"}, Case{"=INDEX(1,C1)", "#DIV/0!"},
        Case{"=INDEX(2,C1:C3)", "2/1/1950", 7}, Case{"=CHOOSE(2.9,5,6,7)", "6"},
        Case{"=CHOOSE(0.9,5,6)", "#VALUE!"}, Case{"=CHOOSE(3,5,6)", "#CALL!"},
        Case{"=CHOOSE(1E300,5,6)", "#CALL!"}, Case{"=CHOOSE(\"x\",5)", "#VALUE!"},
        Case{"=CHOOSE(1,A2,1/0)", "2", 0}, Case{"=SUM(CHOOSE(2,A1,A1:A3))", "6", 0},
        Case{"=CHOOSE(1)", "#CALL!"}, Case{"=CHOOSE(C1,5)", "#VALUE!"}));

INSTANTIATE_TEST_SUITE_P(
    References, Lookups,
    testing::Values(Case{"=ADDRESS(1,1)", "A1"}, Case{"=ADDRESS(1,1,1)", "$A$1"},
                    Case{"=ADDRESS(1,1,2)", "A$1"}, Case{"=ADDRESS(1,1,3.9)", "$A1"},
                    Case{"=ADDRESS(1,1,4)", "A1"}, Case{"=ADDRESS(1,1,5)", "#VALUE!"},
                    Case{"=ADDRESS(1,1,0.9)", "#VALUE!"},
                    Case{"=ADDRESS(65536.9,256.9)", "IV65536"}, Case{"=ADDRESS(1,257)", "#VALUE!"},
                    Case{"=ADDRESS(65537,1)", "#VALUE!"}, Case{"=ADDRESS(0.9,1)", "#VALUE!"},
                    Case{"=ADDRESS(1,1,1,\"any\")", "$A$1"}, Case{"=ADDRESS(1,1,1,5)", "#VALUE!"},
                    Case{"=ADDRESS(1)", "#CALL!"}, Case{"=ADDRESS(A1:A3,1)", "#CALL!"},
                    Case{"=AREAS()", "0", 0},
                    Case{"=AREAS(A1,B1:C2,5,A1+1,INDIRECT(\"\"),OFFSET(A1,1,1))", "4", 0},
                    Case{"=ROWS(B5:C9)", "5", 0}, Case{"=COLUMNS(B5:C9)", "2", 0},
                    Case{"=ROWS(INDIRECT(\"\"))", "#VALUE!"},
                    Case{"=COLUMNS(INDIRECT(\"\"))", "#VALUE!"}, Case{"=ROWS(5)", "1", 0},
                    Case{"=COLUMNS({1,2,3})*ROWS({1,2,3})", "3", 0}, Case{"=ROWS(A1,A2)", "#CALL!"},
                    Case{"=ROW()", "9", 0}, Case{"=COLUMN()", "6", 0}, Case{"=ROW(B5:C9)", "5", 0},
                    Case{"=COLUMN(B5:C9)", "2", 0}, Case{"=ROW(Z100,1/0)", "100", 0},
                    Case{"=ROW(1+1)", "#REF!"}, Case{"=ROW(INDIRECT(\"\"))", "#REF!"},
                    Case{"=ROW(F9)", "9", 0}, Case{"=COLUMN(OFFSET(A1,1,2))", "3", 0}));

INSTANTIATE_TEST_SUITE_P(
    Made, Lookups,
    testing::Values(
        Case{"=INDIRECT(\"A2\")", "2", 0}, Case{"=SUM(INDIRECT(\"A1:A3\"))", "6", 0},
        Case{"=INDIRECT(\"$A$2\",1)", "2", 0}, Case{"=INDIRECT(\"A2\",\"x\")", "2", 0},
        Case{"=INDIRECT(\"r2c1\",0)", "2", 0}, Case{"=INDIRECT(\"R2C1\",B3)", "2", 0},
        Case{"=INDIRECT(\"R2C1\",\"\")", "2", 0}, Case{"=INDIRECT(\"R2C1\",C1)", "2", 0},
        Case{"=ROW(INDIRECT(\"R300C1\",1=2))", "44", 0},
        Case{"=ROW(INDIRECT(\"R256C1\",0))", "256", 0},
        Case{"=COLUMN(INDIRECT(\"R1C257\",0))", "1", 0}, Case{"=INDIRECT(\"R0C1\",0)", "#REF!"},
        Case{"=INDIRECT(\"R1C1 \",0)", "#REF!"}, Case{"=INDIRECT(\" R1C1\",0)", "#REF!"},
        Case{"=INDIRECT(\"RC1\",0)", "#REF!"}, Case{"=INDIRECT(\"R4294967297C1\",0)", "1", 0},
        Case{"=INDIRECT(\"A2\",0)", "#REF!"}, Case{"=INDIRECT(\"1+1\")", "#REF!"},
        Case{"=INDIRECT(\"\")", "#REF!"}, Case{"=INDIRECT(\"A2)\")", "#REF!"},
        Case{"=INDIRECT(5)", "#VALUE!"}, Case{"=INDIRECT(B3)", "#VALUE!"},
        Case{"=INDIRECT(\"OFFSET(A1,1,0)\")", "2", 0}, Case{"=INDIRECT(\"OFFSET(A1)\")", "#REF!"},
        Case{"=INDIRECT(CONCAT(REPT(\" \",4094),\"E25\"))", "4", 0},
        Case{"=INDIRECT(CONCAT(REPT(\" \",4093),\"E25\"))", ""}, Case{"=INDIRECT()", "#CALL!"},
        Case{"=OFFSET(A1,1,0)", "2", 0}, Case{"=OFFSET(A1,1.9,0.9)", "2", 0},
        Case{"=OFFSET(B2,-1,-1)", "1", 0}, Case{"=OFFSET(A1,-1,0)", "#REF!"},
        Case{"=OFFSET(A1,0,-1)", "#REF!"}, Case{"=ROW(OFFSET(IV65536,0,0))", "65536", 0},
        Case{"=OFFSET(IV65536,1,0)", "#REF!"}, Case{"=OFFSET(A1,0,0,300)", "#REF!"},
        Case{"=OFFSET(A1,1E300,0)", "#REF!"}, Case{"=OFFSET(A1,0,0,1,1E300)", "#REF!"},
        Case{"=SUM(OFFSET(A1,0,0,1,3))", "6", 0}, Case{"=OFFSET(A1,0,0,0)", "#VALUE!"},
        Case{"=OFFSET(A1,0,0,0.9)", "#VALUE!"}, Case{"=OFFSET(A1,0,0,\"x\")", "#VALUE!"},
        Case{"=OFFSET(A1,0,0,1,0)", "#VALUE!"}, Case{"=OFFSET(A1,\"x\",0)", "#VALUE!"},
        Case{"=OFFSET(A1,0,B3)", "#VALUE!"}, Case{"=OFFSET(A1,INDIRECT(\"\"),0)", "#REF!"},
        Case{"=OFFSET(5,0,0)", "#VALUE!"}, Case{"=OFFSET(INDIRECT(\"\"),0,0)", "#VALUE!"},
        Case{"=OFFSET(A1,0,0,1E300*1E300-1E300*1E300)", "#VALUE!"},
        Case{"=OFFSET(A1,0,0,1,1E300*1E300-1E300*1E300)", "#VALUE!"},
        Case{"=OFFSET(A1,1E300*1E300-1E300*1E300,0)", "#VALUE!"}, Case{"=OFFSET(A1,1)", "#CALL!"}));

// Every cell is a power of two of its own, so that a sum tells which cells were read.
TEST(Lookup, WidthAndHeightOfOffsetExtendTheRegion) {
    Sheet sheet("C");
    for (int i = 0; i < 20; ++i) sheet.Enter(Place{i % 5, i / 5}, std::to_string(1 << i));
    sheet.Enter("H1", "=SUM(OFFSET(A1:B2,0,0,3))");
    sheet.Enter("H2", "=SUM(OFFSET(A1,0,0,-2))");
    sheet.Enter("H3", "=SUM(OFFSET(B1:C1,1,1,1,-2.9))");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("H1"), std::to_string(1 + 2 + 4 + 8 + 32 + 64 + 128 + 256)); // A1:D2
    EXPECT_EQ(sheet.Text("H2"), std::to_string(1 + 2));                               // A1:B1
    EXPECT_EQ(sheet.Text("H3"), std::to_string(128 + 256 + 4096 + 8192));             // C2:D3
}

// Keys in any order, of all types: the first equal one by the rule, from values read one by one.
TEST(Lookup, ExactLookupsAgreeWithAComparisonKeyByKey) {
    std::mt19937 random(5);
    char const * const keys[] = {"1", "2", "2.5", "x", "X", "xy", "'1", "=1=1", ""};
    for (int round = 0; round < 50; ++round) {
        Sheet sheet("C");
        for (int row = 0; row < 12; ++row) {
            sheet.Enter(Place{0, row}, keys[random() % std::size(keys)]);
            sheet.Enter(Place{1, row}, std::to_string(row + 1));
        }
        sheet.Enter("D1", keys[random() % 7]);
        sheet.Enter("E1", "=FINDEX(D1,A1:A12)");
        sheet.Enter("E2", "=VLOOKUP(D1,A1:B12,2)");
        sheet.Enter("E3", "=LOOKUPEX(D1,A1:A12,B1:B12)");
        sheet.Recalculate();
        std::string expected = "#VALUE!";
        for (int row = 11; row >= 0; --row)
            if (sheet.Get(Place{0, row}).kind == sheet.Get("D1").kind &&
                sheet.Get(Place{0, row}).number == sheet.Get("D1").number &&
                sheet.Get(Place{0, row}).text == sheet.Get("D1").text)
                expected = std::to_string(row + 1);
        for (char const * cell : {"E1", "E2", "E3"}) EXPECT_EQ(sheet.Text(cell), expected) << round;
    }
}

// A cell that a function points at is followed like one that is written down.
TEST(Lookup, MovedAndMadeReferencesFollowTheirTargets) {
    Sheet sheet("C");
    FillSampleSheet(sheet);
    sheet.Enter("F1", "=INDIRECT(\"A2\")");
    sheet.Enter("F2", "=OFFSET(A1,1,0)");
    sheet.Enter("F3", "=SUM(OFFSET(A1,0,0,1,3))");
    sheet.Enter("F4", "=VLOOKUP(3,A1:B3,2)");
    sheet.Enter("F5", "=CHOOSE(A1,A2,A3)");
    sheet.Recalculate();
    sheet.Enter("A2", "20");
    sheet.Enter("B3", "c");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("F1"), "20");
    EXPECT_EQ(sheet.Text("F2"), "20");
    EXPECT_EQ(sheet.Text("F3"), "24");
    EXPECT_EQ(sheet.Text("F4"), "c");
    EXPECT_EQ(sheet.Text("F5"), "20");
    sheet.Enter("A1", "2");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("F5"), "3");
}

// OFFSET listens to its target alone; INDIRECT to its arguments too.
TEST(Lookup, OffsetIsNotComputedAgainForItsArguments) {
    Sheet sheet("C");
    FillSampleSheet(sheet);
    sheet.Enter("F1", "1");
    sheet.Enter("F2", "=OFFSET(A1,F1,0)");
    sheet.Enter("F3", "=INDIRECT(ADDRESS(F1,1))");
    sheet.Recalculate();
    sheet.Enter("F1", "2");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("F2"), "2");
    EXPECT_EQ(sheet.Text("F3"), "2");
    sheet.Enter("A2", "20");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("F2"), "3"); // its target changed, and the arguments point elsewhere now
    EXPECT_EQ(sheet.Text("F3"), "20");
}

TEST(Lookup, AClearedPositionLeavesWhatItWasComputedFrom) {
    Sheet sheet("C");
    sheet.Enter("A1", "5");
    for (char const * text : {"=ROW(OFFSET(A1,1,0))", "=COLUMN(OFFSET(A1,1,0):C4)",
                              "=ROW(INDIRECT(\"A2\"))", "=ROW(OFFSET(A1,1,0)+1)"}) {
        sheet.Enter("F9", text);
        sheet.Recalculate();
        sheet.Clear({5, 8});
        EXPECT_EQ(sheet.CheckInvariants(), std::vector<std::string>()) << text;
    }
}

// What the text of an INDIRECT computes is computed for the cell, and leaves nothing registered.
TEST(Lookup, AnIndirectIsComputedForItsCell) {
    Sheet sheet("C");
    FillSampleSheet(sheet);
    sheet.Enter("F2", "=INDIRECT(\"OFFSET(A1,ROW()-1,COLUMN()-6)\")");
    sheet.Enter("F3", "=INDIRECT(\"OFFSET(A1,ROW()-1,0)\")+A1");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("F2"), "2");
    EXPECT_EQ(sheet.Text("F3"), "4");
    EXPECT_EQ(sheet.CheckInvariants(), std::vector<std::string>());
    sheet.Enter("A2", "20");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("F2"), "20");
    sheet.Enter("F2", "1");
    sheet.Enter("F3", "1");
    EXPECT_EQ(sheet.Dependents({0, 1}), std::vector<std::string>());
    EXPECT_EQ(sheet.Dependents({0, 0}), std::vector<std::string>());
}

TEST(Lookup, AnIndirectOfItselfIsCircular) {
    Sheet sheet("C");
    sheet.Enter("A1", "=INDIRECT(\"A1\")");
    sheet.Enter("B1", "=VLOOKUP(1,A1:A3,1)");
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("A1"), "#CIRC!");
    EXPECT_EQ(sheet.Text("B1"), "#VALUE!"); // no key is 1
}

namespace {

// A sheet whose regions can be read, that knows the name "table", another sheet and a document.
struct GridHost : cells::test::BaseHost {
    int IsValidRef(CCRef const * ref) override {
        return ref && (ref->GetType() == kRefRegion || ref->GetType() == kRefName ||
                       BaseHost::IsValidRef(ref));
    }
    CSize GetRefSize(CCRef const * ref) override {
        if (ref->GetType() != kRefRegion) return CSize(1, 1);
        auto const & region = static_cast<CCRegionRef const &>(*ref);
        return CSize(region.right - region.left + 1, region.bottom - region.top + 1);
    }
    int GetValue(CCRef const * ref, CCCellValue & value, int index) override {
        if (ref->GetType() != kRefRegion) return BaseHost::GetValue(ref, value, index);
        auto const & region = static_cast<CCRegionRef const &>(*ref);
        int const width = region.right - region.left + 1;
        CCRCRef const cell(uchar(region.left + index % width), ushort(region.top + index / width));
        return BaseHost::GetValue(&cell, value, 0);
    }
    CCRef * TranslateNameRef(CCNameRef const * name) override {
        return std::wstring(name->name()) == L"table" ? new CCRegionRef(0, 0, 1, 2) : nullptr;
    }
    using BaseHost::GetNameIndex;
    ushort GetNameIndex(CCNameRef const * name) override {
        return std::wstring(name->name()) == L"Other" ? 2 : 0;
    }
    CCCellManager * GetManForNameIndex(ushort index) override { return index == 2 ? other : this; }
    int GetDocumentRow(CCRef const * ref, unsigned int & row) override {
        row = 70;
        return ref->GetType() == kRefName;
    }
    GridHost * other = nullptr;
};

} // namespace

TEST(Lookup, TablesAreRegionsOfOtherSheetsAndNames) {
    GridHost host, other;
    host.other = &other;
    int row = 1;
    for (wchar_t const * key : {L"5", L"6", L"7"}) {
        host.Enter("A" + std::to_string(row), key);
        host.Enter("B" + std::to_string(row), std::to_wstring(row * 10));
        other.Enter("A" + std::to_string(row), key);
        other.Enter("B" + std::to_string(row), std::to_wstring(row * 100));
        ++row;
    }
    host.Enter("D1", L"=VLOOKUP(6,table,2)");
    host.Enter("D2", L"=VLOOKUP(6,Other!A1:B3,2)");
    host.Enter("D3", L"=HLOOKUP(100,Other!B1:B3,3)");
    host.Enter("D4", L"=ROW(table)");
    EXPECT_EQ(host.Text("D1"), "20");
    EXPECT_EQ(host.Text("D2"), "200");
    EXPECT_EQ(host.Text("D3"), "300");
    EXPECT_EQ(host.Text("D4"), "70");
    host.Enter("D6", L"=OFFSET(Other!A1,1,1)");
    EXPECT_EQ(host.Text("D6"), "#REF!");
}

TEST(Lookup, ANullTextCountsAsAnEmptyOne) {
    cells::host::Sheet sheet("C");
    CCCellValue null;
    null.Set(static_cast<wchar_t const *>(nullptr));
    sheet.Enter("A5", "x");
    CCRCRef const a5(0, 4);
    sheet.Manager().SetValue(&a5, null);
    for (char const * cell : {"B1", "B2", "B3"}) {
        sheet.Enter(cell, "=FINDEX(\"\",A1:A40)");
        EXPECT_EQ(sheet.Text(cell), "5") << cell;
    }
    sheet.Enter("B4", "=FINDEX(A5,{1,\"\"})");
    EXPECT_EQ(sheet.Text("B4"), "2");
}
