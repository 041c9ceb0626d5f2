// Expected numbers were worked out by a script from the formulas of each function.
#include "functions/FormulaCases.h"

#include "functions/UnnamedFunctions.h"

class Finance : public FormulaCases {};

TEST_P(Finance, Gives) { Run(); }

INSTANTIATE_TEST_SUITE_P(
    Loans, Finance,
    testing::Values(
        Case{"=PV(0.1,10,100)", "614.456710570469", 0}, Case{"=PV(0,10,100)", "#DIV/0!"},
        Case{"=PV(\"x\",10,100)", "#VALUE!"}, Case{"=PV(0.1,10,A1:A3)", "#CALL!"},
        Case{"=PV(0.1,B3,100)", "#VALUE!"}, Case{"=FV(0.1,10,100)", "1593.7424601", 0},
        Case{"=FV(0,10,100)", "#DIV/0!"}, Case{"=FV(0.1,1)", "#CALL!"},
        Case{"=PMT(0.01,12,1000)", "88.8487886783416", 0}, Case{"=PMT(0,12,1000)", "#DIV/0!"},
        Case{"=PMT(0.1,0,1000)", "#DIV/0!"}, Case{"=COMPOUND(0.05,3,100)", "115.7625", 0},
        Case{"=COMPOUND(0,3,100)", "100", 0}, Case{"=COMPOUND(-2,0.5,100)", "#VALUE!"},
        Case{"=EFFECT(0.12,4)", "0.12550881", 0}, Case{"=EFFECT(0.12,4.9)=EFFECT(0.12,4)", "TRUE"},
        Case{"=EFFECT(0,4)", "#VALUE!"}, Case{"=EFFECT(0.12,0.9)", "#VALUE!"},
        Case{"=NOMINAL(0.1,4)", "9.65%", 3}, Case{"=NOMINAL(0.1,4.9)=NOMINAL(0.1,4)", "TRUE"},
        Case{"=NOMINAL(0,4)", "#VALUE!"}, Case{"=NOMINAL(0.1,0.5)", "#VALUE!"}));

INSTANTIATE_TEST_SUITE_P(
    Rates, Finance,
    testing::Values(Case{"=IRR({-100,110})", "10%", 3}, Case{"=IRR({-100,60,60})", "13%", 3},
                    Case{"=ABS(IRR({-100,60,60})-0.130657958984375)<1E-14", "TRUE"},
                    Case{"=ABS(IRR({-100,30,40,50},0.5)-0.0889581298828125)<1E-14", "TRUE"},
                    Case{"=IRR(0.1,-100,60,60)", "13.07%", 3},
                    Case{"=IRR(0.1,-1000,{100,200},900)", "7.11%", 3},
                    Case{"=IRR({100,110})", "#VALUE!"}, Case{"=IRR({-100,110},-1)", "#DIV/0!"},
                    Case{"=IRR(-1,-100,110)", "#DIV/0!"}, Case{"=IRR({-100,110},\"x\")", "#VALUE!"},
                    Case{"=IRR({-100,110},A1:A3)", "#CALL!"}, Case{"=IRR()", "#CALL!"},
                    Case{"=IRR({\"x\",-100,110})", "#VALUE!"},
                    Case{"=IRR({-100,\"x\",110})", "10%", 3}, Case{"=IRR(0.1,A1:A3,110)", "#CALL!"},
                    Case{"=NPV(0.1,E1:E6)", "21.2532450195054", 0},
                    Case{"=NPV(0.1,A1:B3,\"x\")", "4.81592787377911", 0},
                    Case{"=NPV(-1,A1:A3)", "#DIV/0!"}, Case{"=NPV(0.1)", "#CALL!"},
                    Case{"=NPV(A1:A3,1)", "#CALL!"}, Case{"=MIRR(0.1,0.1,-100,60,60)", "12.25%", 3},
                    Case{"=MIRR(0.1,0.12,{-120000,39000,30000,21000,37000,46000})", "12.61%", 3},
                    Case{"=MIRR(0.1,0.1,60,60)", "#VALUE!"},
                    Case{"=MIRR(0.1,-1,-100,60)", "#VALUE!"},
                    Case{"=MIRR(-1,0.1,-100,60)", "#VALUE!"}, Case{"=MIRR(0.1,0.1)", "#CALL!"}));

INSTANTIATE_TEST_SUITE_P(
    Depreciation, Finance,
    testing::Values(
        Case{"=DB(1000,100,5,1)", "369", 0}, Case{"=DB(1000,100,5,2)", "232.839", 0},
        Case{"=DB(1000,100,5,5.9)", "58.498375128849", 0}, Case{"=DB(1000,100,5,6)", "0", 0},
        Case{"=DB(1000000,100000,6,1,7)", "186083.333333333", 0},
        Case{"=DB(1000000,100000,6,7,7)", "15845.0984738481", 0},
        Case{"=DB(1000,100,5,7)", "#VALUE!"}, Case{"=DB(1000,100,5,0)", "#VALUE!"},
        Case{"=DB(1000,100,5,-1)", "#VALUE!"}, Case{"=DB(1000,100,0,1)", "#VALUE!"},
        Case{"=DB(0,100,5,1)", "#VALUE!"}, Case{"=DB(1000,-1,5,1)", "#VALUE!"},
        Case{"=DB(1000,100,5,1,0)", "#VALUE!"}, Case{"=DB(1000,100,5,1,13)", "#VALUE!"},
        Case{"=DB(1000,100,1E9,1E9)", "0", 0}, Case{"=DB(1000,100,1E300,1E300)", "0", 0},
        Case{"=DB(1000,100,1E9,1E9+1,3)", "0", 0}, Case{"=DB(1000,1E9,1E4,1E9)", "#VALUE!"}));

INSTANTIATE_TEST_SUITE_P(
    Bills, Finance,
    testing::Values(Case{"=TBILLPRICE(\"4/2/2024\",\"6/4/2024\",0.09)", "98.45", 0},
                    Case{"=TBILLYIELD(\"4/2/2024\",\"6/4/2024\",98.45)", "9.14%", 3},
                    Case{"=TBILLPRICE(\"1/1/2026\",\"1/1/2027\",0.1)", "90", 0},
                    Case{"=TBILLPRICE(\"1/1/2026\",\"1/2/2027\",0.1)", "#VALUE!"},
                    Case{"=TBILLPRICE(\"1/1/2026\",\"1/1/2026\",0.1)", "#VALUE!"},
                    Case{"=TBILLPRICE(\"6/1/2071\",\"7/1/2071\",0.1)", "#VALUE!"},
                    Case{"=TBILLPRICE(\"1/1/2026\",\"2/1/2026\",0)", "#VALUE!"},
                    Case{"=TBILLYIELD(\"1/30/2026\",\"1/31/2026\",98)", "#VALUE!"},
                    Case{"=TBILLYIELD(\"1/1/2026\",\"2/1/2026\",0)", "#VALUE!"}));

INSTANTIATE_TEST_SUITE_P(
    PricesAndTaxes, Finance,
    testing::Values(Case{"=DOLLARDE(1.02,16)", "1.125", 0}, Case{"=DOLLARDE(1.1,32)", "1.3125", 0},
                    Case{"=DOLLARDE(-1.02,16)", "-1.125", 0}, Case{"=DOLLARDE(7,16)", "7", 0},
                    Case{"=DOLLARDE(0.29,100)", "2.9", 0}, Case{"=DOLLARDE(1.02,16.9)", "1.125", 0},
                    Case{"=DOLLARDE(1.02,0.5)", "#DIV/0!"}, Case{"=DOLLARDE(1.02,-1)", "#VALUE!"},
                    Case{"=TAXBAND(100,{0,10,50},{0,0.1,0.2})", "14", 0},
                    Case{"=TAXBAND(30,{0,10,50},{0,0.1,0.2})", "2", 0},
                    Case{"=TAXBAND(-5,{0,10,50},{0,0.1,0.2})", "0", 0},
                    Case{"=TAXBAND(100,A1,B1)", "#CALL!"},
                    Case{"=TAXBAND(A1:A3,A1:A3,A1:A3)", "#CALL!"},
                    Case{"=TAXBAND(100,{0,10},{0,0.1,0.2})", "#REF!"},
                    Case{"=TAXBAND(100,B2:B3,A1:A2)", "#VALUE!"},
                    Case{"=TAXBAND(100,A2:A4,A1:A3)", "#VALUE!"},
                    Case{"=TAXBAND(\"x\",A1:A3,A1:A3)", "#VALUE!"}));

// From 15 February to 15 June 2024 pass 120 days of twelve equal months, and 121 of the calendar.
INSTANTIATE_TEST_SUITE_P(
    Discounted, Finance,
    testing::Values(
        Case{"=DISC(\"2/15/2024\",\"6/15/2024\",97,100)", "9.00%", 3},
        Case{"=DISC(\"2/15/2024\",\"6/15/2024\",97,100,1)", "9.07%", 3},
        Case{"=DISC(\"2/15/2024\",\"6/15/2024\",97,100,2)", "8.93%", 3},
        Case{"=DISC(\"2/15/2024\",\"6/15/2024\",97,100,3)", "9.05%", 3},
        Case{"=DISC(\"2/15/2024\",\"6/15/2024\",97,100,4.9)", "9.00%", 3},
        Case{"=DISC(\"2/15/2024\",\"6/15/2024\",97,100,5)", "#VALUE!"},
        Case{"=DISC(\"2/15/2024\",\"6/15/2024\",97,100,-0.1)", "#VALUE!"},
        Case{"=DISC(\"2/15/2024\",\"6/15/2024\",0,100)", "#VALUE!"},
        Case{"=DISC(\"2/15/2024\",\"6/15/2024\",97,0)", "#VALUE!"},
        Case{"=DISC(\"6/15/2024\",\"2/15/2024\",97,100)", "#VALUE!"},
        Case{"=DISC(\"x\",\"6/15/2024\",97,100)", "#VALUE!"},
        Case{"=DISC(\"1/30/2026\",\"1/31/2026\",95,100)", "#VALUE!"},
        Case{"=ABS(DISC(\"12/31/2024\",\"1/10/2025\",99,100,1)-36.6*0.01)<1E-12", "TRUE"},
        Case{"=INTRATE(\"2/15/2024\",\"6/15/2024\",96,100,2)", "12.40%", 3},
        Case{"=INTRATE(\"2/15/2024\",\"6/15/2024\",96)", "#CALL!"},
        Case{"=PRICEDISC(\"2/15/2024\",\"6/15/2024\",0.0525,100,2)", "98.2354166666667", 0},
        Case{"=RECEIVED(\"2/15/2024\",\"6/15/2024\",96,0.05,2)", "97.6409097330131", 0},
        Case{"=RECEIVED(\"2/15/2024\",\"6/15/2024\",96,0)", "#VALUE!"},
        Case{"=ACCRINTM(\"2/15/2024\",\"6/15/2024\",0.1,1000,3)", "33.1506849315069", 0},
        Case{"=ACCRINTM(\"2/15/2024\",\"6/15/2024\",0.1,500)", "16.6666666666667", 0},
        Case{"=ACCRINTM(39000,39100,0.1)>0", "TRUE"},
        Case{"=ACCRINTM(39000,39100,-0.1)", "#VALUE!"},
        Case{"=ACCRINTM(39000,39100,62823)", "#VALUE!"},
        Case{"=ACCRINTM(39000,39100,\"1/1/1950\")=ACCRINTM(39000,39100,DATE(1950,1,1)*1)", "TRUE"},
        Case{"=ACCRINTM(39000,39100,0.1,0)", "#VALUE!"},
        Case{"=PRICEMAT(\"2/15/2024\",\"4/13/2024\",\"11/11/2023\",0.061,0.061)",
             "99.9844988755569", 0},
        Case{"=PRICEMAT(\"4/13/2024\",\"2/15/2024\",\"11/11/2023\",0.061,0.061)", "#VALUE!"},
        Case{"=PRICEMAT(\"2/15/2024\",\"4/13/2024\",\"11/11/2023\",0,0.061)", "#VALUE!"}));

INSTANTIATE_TEST_SUITE_P(
    CouponsOf, Finance,
    testing::Values(Case{"=COUPPCD(\"2/15/2024\",\"11/15/2027\",2)", "11/15/2023", 7},
                    Case{"=COUPNCD(\"2/15/2024\",\"11/15/2027\",2)", "5/15/2024", 7},
                    Case{"=COUPPCD(\"5/15/2024\",\"11/15/2027\",2)", "5/15/2024", 7},
                    Case{"=COUPNCD(\"5/15/2024\",\"11/15/2027\",2)", "11/15/2024", 7},
                    Case{"=COUPDAYS(\"2/15/2024\",\"11/15/2027\",2)", "180", 0},
                    Case{"=COUPDAYS(\"2/15/2024\",\"11/15/2027\",2,1)", "182", 0},
                    Case{"=COUPDAYS(\"2/15/2024\",\"11/15/2027\",4)", "90", 0},
                    Case{"=COUPDAYSNC(\"2/15/2024\",\"11/15/2027\",2)", "90", 0},
                    Case{"=COUPDAYBS(\"2/15/2024\",\"11/15/2027\",2)", "90", 0},
                    Case{"=COUPDAYBS(\"2/15/2024\",\"11/15/2027\",2,1)", "92", 0},
                    Case{"=COUPNUM(\"2/15/2024\",\"11/15/2027\",2)", "8", 0},
                    Case{"=COUPNUM(\"5/15/2027\",\"11/15/2027\",2)", "1", 0},
                    Case{"=COUPNUM(\"5/14/2027\",\"11/15/2027\",2)", "2", 0},
                    Case{"=COUPPCD(\"4/15/2026\",\"8/31/2027\",4)", "2/28/2026", 7},
                    Case{"=COUPNCD(\"4/15/2026\",\"8/31/2027\",4)", "5/31/2026", 7},
                    Case{"=COUPPCD(\"1/2/1900\",\"8/31/1900\",1)", "#VALUE!"},
                    Case{"=COUPDAYBS(\"12/1/2071\",\"12/20/2071\",2)", "#VALUE!"},
                    Case{"=COUPNUM(\"2/15/2024\",\"11/15/2027\",3)", "#VALUE!"},
                    Case{"=COUPNUM(\"2/15/2024\",\"11/15/2027\",2.9)", "8", 0},
                    Case{"=COUPNUM(\"2/15/2024\",\"2/15/2024\",2)", "#VALUE!"},
                    Case{"=COUPNUM(\"2/15/2024\",\"11/15/2027\",2,5)", "#VALUE!"},
                    Case{"=PRICE(\"2/15/2024\",\"11/15/2027\",0.0575,0.065,100,2)",
                         "97.5276743219741", 0},
                    Case{"=PRICE(\"2/15/2024\",\"11/15/2027\",0.0575,0.065,100,2)="
                         "PRICE(\"2/15/2024\",\"11/15/2027\",0.0575,0.065,100,2,4)",
                         "TRUE"},
                    Case{"=PRICE(\"2/15/2024\",\"11/15/2027\",-0.1,0.065,100,2)", "#VALUE!"},
                    Case{"=PRICE(\"2/15/2024\",\"11/15/2027\",0.1,-0.065,100,2)", "#VALUE!"},
                    Case{"=PRICE(\"2/15/2024\",\"11/15/2027\",0.1,0.065,0,2)", "#VALUE!"},
                    Case{"=PRICE(\"2/15/2024\",\"11/15/2027\",0.1,0.065,100)", "#CALL!"}));

// From 2 April to 4 June 2024, serials 45383 and 45446, pass 62 days of twelve equal months.
TEST(UnnamedFinance, ComputesAsWritten) {
    EXPECT_EQ(EvalUnnamed(13219, L"1000,100,5,1"), 13500);
    EXPECT_EQ(EvalUnnamed(13219, L"1000,100,5.9,6.9"), 81000);
    EXPECT_EQ(EvalUnnamed(13219, L"1000,100,5,7"), -3);
    EXPECT_EQ(EvalUnnamed(13219, L"1000,100,0,1"), -3);
    EXPECT_EQ(EvalUnnamed(13219, L"1000,100,5,0"), -3);
    EXPECT_EQ(EvalUnnamed(13219, L"0,0,5,1"), -3);
    EXPECT_EQ(EvalUnnamed(13219, L"1000,-1,5,1"), -3);
    EXPECT_NEAR(EvalUnnamed(13220, L"45383,45446,0.0914"), -5.574130555555555, 1e-14);
    EXPECT_EQ(EvalUnnamed(13220, L"45383,45383,0.0914"), -3);
    // The same formula at a settlement 1350 days before maturity and at one of 20 years.
    EXPECT_NEAR(EvalUnnamed(13244, L"45336,46705,0.0575,95,100,2"), 0.017800820911644, 1e-14);
    EXPECT_NEAR(EvalUnnamed(13244, L"45291,52596,0.05,90,100,1"), (1.05 / 0.9 - 1) / 20, 1e-14);
    EXPECT_EQ(EvalUnnamed(13244, L"45336,46705,0.0575,0,100,2"), -3);
}
