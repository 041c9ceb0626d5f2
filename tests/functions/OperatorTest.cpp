#include "functions/FormulaCases.h"

using cells::host::Kind;
using cells::host::Sheet;

class Formula : public FormulaCases {};

TEST_P(Formula, Gives) { Run(); }

INSTANTIATE_TEST_SUITE_P(
    Arithmetic, Formula,
    testing::Values(Case{"=A1+A2", "3", 0}, Case{"=A2-A3", "-1", 0}, Case{"=A2*A3", "6", 0},
                    Case{"=A3/A2", "1.5", 0}, Case{"=A2^A3", "8", 0}, Case{"=2^3^2", "64", 0},
                    Case{"=10-4-3", "3", 0}, Case{"=B3^C3", "1", 0}, Case{"=B3*C3", "0", 0},
                    Case{"=A3/B3", "#DIV/0!"}, Case{"=B3/A3", "0", 0}, Case{"=-A3^2", "9", 0},
                    Case{"=-D1", "-12%", 3}, Case{"=+D1", "12%", 3}, Case{"=+B1", "a"},
                    Case{"=-B1", "a"}, Case{"=-B3", ""}, Case{"=-C1", "#DIV/0!"},
                    Case{"=A3%", "0.03", 0}, Case{"=B1%", "a"}, Case{"=C1%", "#DIV/0!"},
                    Case{"=B3%", ""}, Case{"=D1+A1", "1.12", 0}, Case{"=D2*2", "#VALUE!"},
                    Case{"=D2", "'7"}));

INSTANTIATE_TEST_SUITE_P(
    Ranges, Formula,
    testing::Values(Case{"=A1:A3+1", "7", 0}, Case{"=A1:A3*A1:A3", "36", 0},
                    Case{"=A1..A3-1", "-5", 0}, Case{"=PLUS(A1:A3,A2)", "8", 0},
                    Case{"=MINUS(A3,A1,A2)", "0", 0}, Case{"=TIMES(A1:A3)", "6", 0},
                    Case{"=TIMES()", ""}, Case{"=DIVIDE(12,A2,A3)", "2", 0},
                    Case{"=POWER(A2,A3)", "8", 0}, Case{"=B1:B2+A1", "#VALUE!"},
                    Case{"=C1:C3+A1", "#DIV/0!"}, Case{"=A3:A1+1", "7", 0}));

INSTANTIATE_TEST_SUITE_P(Texts, Formula,
                         testing::Values(Case{"=B1+B2", "ab"}, Case{"=\"a\"+\"b\"", "ab"},
                                         Case{"=\"a\"+1", "#VALUE!"},
                                         Case{"=\"a\"-\"b\"", "#VALUE!"}, Case{"=B1+B3", "a"},
                                         Case{"=B3+B1", "a"}, Case{"=B1&B2", "#VALUE!"},
                                         Case{"=B1|B2", "#VALUE!"}, Case{"=B1^1", "#VALUE!"},
                                         Case{"=1/B1", "#VALUE!"}));

INSTANTIATE_TEST_SUITE_P(
    Comparison, Formula,
    testing::Values(
        Case{"=A1=A2", "FALSE", 8}, Case{"=A1<>A2", "TRUE", 8}, Case{"=A1<A2", "TRUE", 8},
        Case{"=A1>=A2", "FALSE", 8}, Case{"=A1<=A2", "TRUE", 8}, Case{"=A2<=A1", "FALSE", 8},
        Case{"=B1<>B2", "TRUE", 8}, Case{"=B2>=B1", "TRUE", 8}, Case{"=B1>=B2", "FALSE", 8},
        Case{"=B2>B1", "TRUE", 8}, Case{"=B1=B2", "FALSE", 8}, Case{"=B1<B2", "TRUE", 8},
        Case{"=B2<=B1", "FALSE", 8}, Case{"=\"a\"=1", "FALSE", 8}, Case{"=\"a\"<>1", "TRUE", 8},
        Case{"=\"a\">1", "FALSE", 8}, Case{"=\"a\"<1", "FALSE", 8}, Case{"=1>=\"a\"", "FALSE", 8},
        Case{"=1<=\"a\"", "FALSE", 8}, Case{"=B3=C3", "TRUE", 8}, Case{"=B3<C3", "FALSE", 8},
        Case{"=B3>=C3", "TRUE", 8}, Case{"=B3<=C3", "TRUE", 8}, Case{"=B3<>C3", "FALSE", 8},
        Case{"=B3>C3", "FALSE", 8}, Case{"=B3=0", "TRUE", 8}, Case{"=B3=\"\"", "TRUE", 8},
        Case{"=B3<B1", "TRUE", 8}, Case{"=0.1+0.2=0.3", "TRUE", 8}, Case{"=0.1+0.2>0.3", "TRUE", 8},
        Case{"=C1=C1", "#DIV/0!"}, Case{"=1=C1", "#DIV/0!"}, Case{"=1<2<3", "TRUE", 8},
        Case{"=3>2>1", "FALSE", 8}));

INSTANTIATE_TEST_SUITE_P(
    Logic, Formula,
    testing::Values(Case{"=A1&A2", "TRUE", 8}, Case{"=A1&0", "FALSE", 8}, Case{"=0|0", "FALSE", 8},
                    Case{"=0|A2", "TRUE", 8}, Case{"=\"a\"&1", "TRUE", 8},
                    Case{"=1&\"a\"", "TRUE", 8}, Case{"=\"a\"&0", "FALSE", 8},
                    Case{"=\"a\"|0", "FALSE", 8}, Case{"=\"a\"|1", "TRUE", 8},
                    Case{"=B3&C3", "FALSE", 8}, Case{"=B3|C3", "FALSE", 8},
                    Case{"=~A1", "FALSE", 8}, Case{"=~0", "TRUE", 8}, Case{"=~B1", "TRUE", 8},
                    Case{"=~B3", "TRUE", 8}, Case{"=~C1", "#DIV/0!"},
                    Case{"=NOT(\"abc\")", "TRUE", 8}, Case{"=NOT(A1)", "FALSE", 8},
                    Case{"=AND(A1:A3)", "TRUE", 8}, Case{"=AND(A1:A3,0)", "FALSE", 8},
                    Case{"=OR(0,D3)", "FALSE", 8}, Case{"=OR(0,A1:A3)", "TRUE", 8},
                    Case{"=AND()", ""}, Case{"=OR()", ""}));

INSTANTIATE_TEST_SUITE_P(Conditions, Formula,
                         testing::Values(Case{"=IF(1,2,3)", "2", 1}, Case{"=IF(0,2,3)", "3", 1},
                                         Case{"=IF(0,5)", "FALSE", 8}, Case{"=IF(1)", "1", 1},
                                         Case{"=IF(1,5)", "5", 1}, Case{"=IF(B3,1,B2)", "b"},
                                         Case{"=IF(B3,1)", ""}, Case{"=IF(B1,1,2)", "#VALUE!"},
                                         Case{"=IF(C1,1,2)", "#VALUE!"},
                                         Case{"=IF(A1,B1:B1,2)", "a"}, Case{"=IF(1,2,C1)", "2", 1},
                                         Case{"=IF(1,D1,C1)", "12%", 3},
                                         Case{"=IF(D3,1,IF(A1=1,\"x\",\"y\"))", "x"}));

INSTANTIATE_TEST_SUITE_P(
    Information, Formula,
    testing::Values(Case{"=ISBLANK(B3)", "TRUE", 8}, Case{"=ISBLANK(\"\")", "FALSE", 8},
                    Case{"=ISBLANK(A1)", "FALSE", 8}, Case{"=ISERROR(C1)", "TRUE", 8},
                    Case{"=ISERROR(NA())", "TRUE", 8}, Case{"=ISERROR(A1)", "FALSE", 8},
                    Case{"=ISNUMBER(D3)", "TRUE", 8}, Case{"=ISNUMBER(TRUE)", "TRUE", 8},
                    Case{"=ISNUMBER(B1)", "FALSE", 8}, Case{"=ISNUMBER(C1)", "FALSE", 8},
                    Case{"=ISTEXT(B1)", "TRUE", 8}, Case{"=ISTEXT(D2)", "TRUE", 8},
                    Case{"=ISTEXT(A1)", "FALSE", 8}, Case{"=NA()", "#N/A"}));

INSTANTIATE_TEST_SUITE_P(Mathematics, Formula,
                         testing::Values(Case{"=SUM(A1:A3)", "6", 0},
                                         Case{"=SUM(A1:A3,4,A1)", "11", 0},
                                         Case{"=TOTAL(A1:A3)", "6", 0},
                                         Case{"=SUM(A1:D3,-6)", "18294.12", 0},
                                         Case{"=SUM(C1)", "0", 0}, Case{"=SUM(\"5\",2)", "2", 0},
                                         Case{"=ABS(-2)", "2", 0}, Case{"=ABS(B3)", "#VALUE!"},
                                         Case{"=ABS(C1)", "#VALUE!"}, Case{"=ABS(B1)", "#VALUE!"},
                                         Case{"=INT(-2.5)", "-3", 0}, Case{"=INT(2.5)", "2", 0},
                                         Case{"=MOD(7,3)", "1", 0}, Case{"=MOD(-7,3)", "2", 0},
                                         Case{"=MOD(7,-3)", "-2", 0}, Case{"=MOD(7,0)", "#DIV/0!"},
                                         Case{"=MOD(B1,0)", "#VALUE!"}, Case{"=SQRT(9)", "3", 0},
                                         Case{"=SQRT(-1)", "#VALUE!"}, Case{"=SQRT(0)", "0", 0},
                                         Case{"=ABS(D1)", "0.12", 0}));

INSTANTIATE_TEST_SUITE_P(
    Statistics, Formula,
    testing::Values(Case{"=AVERAGE(A1:A3)", "2", 0}, Case{"=AVG(A1:A3)", "2", 0},
                    Case{"=AVERAGE(B1:B3)", "0", 0}, Case{"=AVERAGE(A1:C1)", "1", 0},
                    Case{"=AVERAGE()", "0", 0}, Case{"=MIN(A1:A3)", "1", 0},
                    Case{"=MAX(A1:A3)", "3", 0}, Case{"=MAX(5,\"Zebra\")", "5", 1},
                    Case{"=MAX(\"Zebra\",5)", "5", 1}, Case{"=MAX(\"Ant\",\"Zebra\")", "Zebra"},
                    Case{"=MIN(\"Zebra\",\"Ant\")", "Ant"}, Case{"=MIN(C1,A2)", "2", 0},
                    Case{"=MAX(B3)", "0", 0}, Case{"=MAX(D1,0)", "12%", 3},
                    Case{"=COUNT(A1:D3)", "10", 0}, Case{"=COUNTN(A1:D3)", "6", 0},
                    Case{"=COUNT()", "0", 0}, Case{"=COUNT(B3,C1,B1)", "2", 0}));

TEST(Formula, PiIsTheNearestDouble) {
    Sheet sheet("C");
    sheet.Enter("A1", "=PI()");
    EXPECT_EQ(sheet.Get("A1").number, 3.141592653589793);
}

TEST(Formula, EqualityHasATolerance) {
    Sheet sheet("C");
    struct Row {
        double a, b;
        char const * equal;
    };
    // 2^-52 is the first difference that counts.
    for (Row const row :
         {Row{0, 1.1102230246251565e-16, "TRUE"}, Row{0, 2.220446049250313e-16, "FALSE"},
          Row{1, 1.0000000000000002, "FALSE"}, Row{0.5, 0.5000000000000001, "TRUE"}}) {
        sheet.Enter("A1", "0");
        sheet.Enter("C1", "=A1=B1");
        char a[40], b[40];
        std::snprintf(a, sizeof a, "=%.17g", row.a);
        std::snprintf(b, sizeof b, "=%.17g", row.b);
        sheet.Enter("A1", a);
        sheet.Enter("B1", b);
        sheet.Recalculate();
        EXPECT_EQ(sheet.Get("B1").number, row.b);
        EXPECT_EQ(sheet.Text("C1"), row.equal) << row.a << " and " << row.b;
    }
}

class CallShape : public testing::TestWithParam<char const *> {};

TEST_P(CallShape, OutsideItsTableIsACallError) {
    Sheet sheet("C");
    sheet.Enter("A1", GetParam());
    EXPECT_EQ(sheet.Get("A1").kind, Kind::kError);
    EXPECT_EQ(sheet.Get("A1").error, 4);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CallShape,
    testing::Values("=ABS()", "=ABS(1,2)", "=ABS(B1:B2)", "=INT(1,2)", "=MOD(1)", "=MOD(1,2,3)",
                    "=MOD(B1:B2,1)", "=SQRT()", "=PI(1)", "=SUM()", "=TOTAL()", "=MIN()", "=MAX()",
                    "=IF()", "=IF(B1:B2,1)", "=NOT()", "=NOT(1,2)", "=NOT(B1:B2)", "=NA(1)",
                    "=ISBLANK()", "=ISERROR(1,2)", "=ISNUMBER(B1:B2)", "=ISTEXT()", "=PLUS()",
                    "=MINUS()", "=DIVIDE()", "=POWER(1)", "=-B1:B2", "=B1:B2%", "=~B1:B2"));
