#include "formula/Parser.h"
#include "functions/Arguments.h"
#include "functions/FormulaCases.h"
#include "functions/Ranges.h"
#include "functions/UnnamedFunctions.h"
#include "functions/internal/Families.h"
#include "support/BaseHost.h"
#include "values/CCCellValue.h"

#include <algorithm>
#include <random>

using cells::host::Sheet;

// Values with more than a few digits come from a script that follows the formulas in double
// precision.
class Statistics : public FormulaCases {};

TEST_P(Statistics, Gives) { Run(); }

INSTANTIATE_TEST_SUITE_P(
    MeansAndSpreads, Statistics,
    testing::Values(Case{"=AVERAGE(E1:E6)", "5.25", 0}, Case{"=AVERAGE(B1:B3)", "0", 0},
                    Case{"=AVERAGE()", "0", 0}, Case{"=AVG(A1:A3,\"x\",1/0)", "2", 0},
                    Case{"=VAR(E1:E6)", "6.975", 0}, Case{"=VAR(5)", "#DIV/0!"},
                    Case{"=VAR(B1:B3)", "#DIV/0!"}, Case{"=VARP(E1:E6)", "5.8125", 0},
                    Case{"=VARP(5)", "#DIV/0!"}, Case{"=VAR()", "#CALL!"},
                    Case{"=STD(E1:E6)", "2.64102252924885", 0}, Case{"=STD(5)", "#DIV/0!"},
                    Case{"=STDEV(E1:E6)", "2.64102252924885", 0}, Case{"=STDEV(5)", "#DIV/0!"},
                    Case{"=STDEV()", "#DIV/0!"}, Case{"=STDEVP(E1:E6)", "2.41091269024824", 0},
                    Case{"=STDEVP(5)", "0", 0}, Case{"=STDEVP(B1:B3)", "#DIV/0!"},
                    Case{"=DEVSQ(E1:E6)", "34.875", 0}, Case{"=DEVSQ()", "#DIV/0!"},
                    Case{"=DEVSQ(5)", "0", 0}, Case{"=AVEDEV(E1:E6)", "2", 0},
                    Case{"=AVEDEV(A1:A3,B1)", "#VALUE!"}, Case{"=AVEDEV(B3)", "0", 0},
                    Case{"=SKEW(E1:E6)", "0.714532630181791", 0}, Case{"=SKEW(1,2)", "#VALUE!"},
                    Case{"=SKEW(2,2,2)", "#VALUE!"}, Case{"=KURT(E1:E6)", "0.254750067445175", 0},
                    Case{"=KURT(1,2,3)", "#VALUE!"}, Case{"=GEOMEAN(E1:E6)", "4.68982824607952", 0},
                    Case{"=GEOMEAN(4,0)", "#VALUE!"}, Case{"=GEOMEAN(4,-1)", "#VALUE!"},
                    Case{"=GEOMEAN(4,\"x\")", "#VALUE!"}, Case{"=GEOMEAN()", "#VALUE!"},
                    Case{"=GEOMEAN(B3)", "#VALUE!"}, Case{"=HARMEAN(E1:E6)", "4.14330218068536", 0},
                    Case{"=HARMEAN(1,0)", "#DIV/0!"}, Case{"=HARMEAN(1,-1)", "#VALUE!"},
                    Case{"=HARMEAN(B1)", "#VALUE!"}, Case{"=HARMEAN(B3)", "0", 0},
                    Case{"=HARMEAN()", "0", 0}));

INSTANTIATE_TEST_SUITE_P(
    ExtremesAndCounts, Statistics,
    testing::Values(Case{"=MAX(5,\"Zebra\")", "5"}, Case{"=MAX(\"Ant\",\"Zebra\")", "Zebra"},
                    Case{"=MIN(\"Zebra\",\"Ant\")", "Ant"}, Case{"=MIN(C1:C3)", "2/1/1950", 7},
                    Case{"=MAX(A1:D3)", "2/1/1950", 7}, Case{"=MIN(D1,5)", "12%", 3},
                    Case{"=MIN(B3)", "0", 0}, Case{"=MAX(C1)", "0", 0}, Case{"=MAX(A1:A3)", "3", 0},
                    Case{"=MIN(A1:A3)", "1", 0}, Case{"=MAX()", "#CALL!"},
                    Case{"=MAX(1,2.50)", "2.50", 1}, Case{"=MAX(B1:B3)", "b"},
                    Case{"=MIN(B1:B3,A1:A3)", "1", 0}, Case{"=COUNT(\"a\",1/0,1)", "3", 0},
                    Case{"=COUNTN(\"a\",1/0,1)", "1", 0}, Case{"=COUNT(A1:D3)", "10", 0},
                    Case{"=COUNTN(A1:D3)", "6", 0}, Case{"=COUNT()", "0", 0},
                    Case{"=COUNT(B3)", "0", 0}, Case{"=COUNT(A1:A65536)", "3", 0}));

INSTANTIATE_TEST_SUITE_P(
    Order, Statistics,
    testing::Values(
        Case{"=MEDIAN(E1:E6)", "4.5", 0}, Case{"=MEDIAN(A1:A3)", "2", 0},
        Case{"=MEDIAN(B1:B3)", "#VALUE!"}, Case{"=MEDIAN(7)", "7", 0},
        Case{"=SMALL(2,E1:E6)", "4", 0}, Case{"=SMALL(1.9,E1:E6)", "2", 0},
        Case{"=SMALL(0,E1:E6)", "#VALUE!"}, Case{"=SMALL(7,E1:E6)", "#VALUE!"},
        Case{"=SMALL(\"x\",E1:E6)", "#VALUE!"}, Case{"=SMALL(1,B1:B3)", "#VALUE!"},
        Case{"=LARGE(1,E1:E6,A1:A3)", "9.5", 0}, Case{"=LARGE(9,E1:E6,A1:A3)", "1", 0},
        Case{"=LARGE(1)", "#CALL!"}, Case{"=LARGE(1E300,A1:A3)", "#VALUE!"},
        Case{"=RANK(2,{1,2,2,3})", "3", 0}, Case{"=RANK(2,{1,2,2,3},1)", "2", 0},
        Case{"=RANK(2,{1,2,2,3},0)", "3", 0}, Case{"=RANK(2.5,{1,2,3})", "#VALUE!"},
        Case{"=RANK(\"x\",{1,2})", "#VALUE!"}, Case{"=RANK(1,{1,2},\"x\")", "#VALUE!"},
        Case{"=RANK(1,{1,2},B3)", "#VALUE!"}, Case{"=PERCENTILE(0.5,E1:E6)", "4.5", 0},
        Case{"=PERCENTILE(0.9,E1:E6)", "8.25", 0}, Case{"=PERCENTILE(1,E1:E6)", "9.5", 0},
        Case{"=PERCENTILE(1.1,E1:E6)", "#VALUE!"}, Case{"=PERCENTILE(0.5,B1:B3)", "#VALUE!"},
        Case{"=PERCENTILE(COTAN(0)-COTAN(0),A1:A3)", "#VALUE!"},
        Case{"=PERCENTRANK(4,E1:E6)", "0.2", 0}, Case{"=PERCENTRANK(2,E1:E6)", "0", 0},
        Case{"=PERCENTRANK(8,E1:E6)", "1", 0}, Case{"=PERCENTRANK(3,E1:E6)", "0.1", 0},
        Case{"=PERCENTRANK(10,E1:E6)", "#VALUE!"}, Case{"=PERCENTRANK(1,B1:B3)", "#VALUE!"},
        Case{"=QUARTILE(5,E1:E6)", "#VALUE!"}, Case{"=QUARTILE(-1,E1:E6)", "#VALUE!"},
        Case{"=QUARTILE(1.9,{1,2,3,4,5})", "2", 0}, Case{"=QUARTILE(1,B1:B3)", "#VALUE!"},
        Case{"=MODE(3,3,3)", "#VALUE!"}, Case{"=MODE(1,2,2,3,3)", "2", 0},
        Case{"=MODE(5)", "#VALUE!"}, Case{"=MODE(B3)", "#VALUE!"},
        Case{"=MODE(1,1,\"x\")", "#VALUE!"}, Case{"=MODE(E1:E6)", "4", 0},
        Case{"=MODE(1,2)", "#VALUE!"}, Case{"=MODE(0.3,1,0.1+0.2)", "0.3", 0}));

// Two ranges: a in G1:G5, b in H1:H5.
class TwoRanges : public testing::TestWithParam<Case> {};

TEST_P(TwoRanges, Give) {
    Sheet sheet("C");
    char const * const a[] = {"2", "4", "5", "4", "5"};
    char const * const b[] = {"1", "2", "3", "4", "5.5"};
    for (int row = 0; row < 5; ++row) {
        sheet.Enter({6, row}, a[row]);
        sheet.Enter({7, row}, b[row]);
    }
    sheet.Enter("I1", "2"); // I1:I5 has holes, J1:J5 a zero in their place
    sheet.Enter("I3", "x");
    sheet.Enter("I5", "5");
    for (char const * entry : {"J1", "J2", "J3", "J4", "J5"}) sheet.Enter(entry, "0");
    sheet.Enter("J1", "2");
    sheet.Enter("J5", "5");
    sheet.Enter("A1", GetParam().formula);
    sheet.Recalculate();
    EXPECT_EQ(sheet.Text("A1"), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(
    Regression, TwoRanges,
    testing::Values(
        Case{"=SLOPE(G1:G5,H1:H5)", "0.532786885245902"},
        Case{"=INTERCEPT(G1:G5,H1:H5)", "2.3483606557377"},
        Case{"=FORECAST(7,G1:G5,H1:H5)", "6.07786885245902"},
        Case{"=STEYX(G1:G5,H1:H5)", "0.919580564877568"}, Case{"=COVAR(G1:G5,H1:H5)", "1.3"},
        Case{"=PEARSON(G1:G5,H1:H5)", "0.7597274460948"},
        Case{"=RSQ(G1:G5,H1:H5)", "0.577185792349727"},
        Case{"=CORREL(G1:G5,H1:H5)", "0.7597274460948"},
        Case{"=WAVG(G1:G5,H1:H5)", "4.41935483870968"}, Case{"=SLOPE({1,2},{3,3})", "#VALUE!"},
        Case{"=INTERCEPT({1,2},{3,3})", "#DIV/0!"}, Case{"=FORECAST(1,{1,2},{3,3})", "#DIV/0!"},
        Case{"=FORECAST(\"x\",{1,2},{3,4})", "#VALUE!"}, Case{"=STEYX({1,2},{3,4})", "#DIV/0!"},
        Case{"=STEYX({1,2,3},{3,3,3})", "#DIV/0!"}, Case{"=WAVG({1,2},{0,0})", "#DIV/0!"},
        Case{"=PEARSON({1,1},{3,4})", "#VALUE!"}, Case{"=RSQ({1,1},{3,4})", "#VALUE!"},
        Case{"=CORREL({1,1},{3,4})", "#VALUE!"}, Case{"=CORREL({1},{3})", "#DIV/0!"},
        Case{"=SLOPE(G1:G5,H1:H4)", "#REF!"}, Case{"=SLOPE({1,2},{1;2})", "#REF!"},
        Case{"=SLOPE(G1:G5)", "#CALL!"}, Case{"=FORECAST(G1:G5,G1:G5,H1:H5)", "#CALL!"},
        Case{"=SLOPE(I1:I5,H1:H5)=SLOPE(J1:J5,H1:H5)", "TRUE"},
        Case{"=PEARSON(I1:I5,H1:H5)=PEARSON(J1:J5,H1:H5)", "TRUE"},
        Case{"=CORREL(I1:I5,H1:H5)=PEARSON(I1:I5,H1:H5)", "FALSE"},
        Case{"=PROB(H1:H5,{0.1;0.2;0.3;0.2;0.2},2,4)", "0.7"},
        Case{"=PROB(H1:H5,{0.1;0.2;0.3;0.2;0.2},3)", "0.3"},
        Case{"=PROB({1,2},{0.5,0.6},1,2)", "#VALUE!"},
        Case{"=PROB({1,2},{0.5,-0.1},1,2)", "#VALUE!"}, Case{"=PROB({1,2},{0.5},1,2)", "#REF!"},
        Case{"=PROB({1,\"x\"},{0.5,0.5},1,2)", "#VALUE!"},
        Case{"=PROB({1,2},{0.5,0.5},\"x\")", "#VALUE!"}, Case{"=PROB({1},{1})", "#CALL!"}));

INSTANTIATE_TEST_SUITE_P(
    Distributions, Statistics,
    testing::Values(
        Case{"=BINOMDIST(2,5,0.3,0)", "0.3087", 0}, Case{"=BINOMDIST(2,5,0.3,1)", "0.83692", 0},
        Case{"=BINOMDIST(6,5,0.3,0)", "#VALUE!"}, Case{"=BINOMDIST(2,5,1.1,0)", "#VALUE!"},
        Case{"=BINOMDIST(2,5,0.3,\"x\")", "#VALUE!"}, Case{"=BINOMDIST(0.25,0.5,0.5,0)", "#VALUE!"},
        Case{"=BINOMDIST(2,5,0.3)", "#CALL!"}, Case{"=POISSON(2,3,1)", "0.423190081126844", 0},
        Case{"=POISSON(2,3,0)", "0.224041807655388", 0}, Case{"=POISSON(0,1,0)", "#VALUE!"},
        Case{"=POISSON(200,10,1)", "1", 0}, Case{"=POISSON(400,10,1)", "#VALUE!"},
        Case{"=ROUNDN(POISSON(1E12,0.5,1),9)", "1", 0}, Case{"=POISSON(2,0,1)", "#VALUE!"},
        Case{"=EXPONDIST(1,2,1)", "0.864664716763387", 0},
        Case{"=EXPONDIST(1,2,0)", "0.270670566473225", 0}, Case{"=EXPONDIST(-1,2,0)", "#VALUE!"},
        Case{"=EXPONDIST(1,0,0)", "#VALUE!"}, Case{"=WEIBULL(1,2,3,1)", "0.10516068318563", 0},
        Case{"=WEIBULL(1,2,3,0)", "0.198853181514304", 0}, Case{"=WEIBULL(1,2,0,1)", "#VALUE!"},
        Case{"=WEIBULL(-1,2,1,1)", "#VALUE!"}, Case{"=NEGBINOMDIST(2,3,0.4)", "0.13824", 0},
        Case{"=NEGBINOMDIST(0,1,0.4)", "#VALUE!"}, Case{"=NEGBINOMDIST(2,3,1.4)", "#VALUE!"},
        Case{"=HYPGEOMDIST(1,4,8,20)", "0.363261093911249", 0},
        Case{"=HYPGEOMDIST(5,4,8,20)", "#VALUE!"}, Case{"=HYPGEOMDIST(1,21,8,20)", "#VALUE!"},
        Case{"=GAMMALN(5)", "3.17805382999113", 0}, Case{"=GAMMALN(0.5)", "0.572364942672348", 0},
        Case{"=ISNUMBER(GAMMALN(0))", "TRUE"}, Case{"=GAMMALN(0)", "#VALUE!"},
        Case{"=ISNUMBER(GAMMALN(-1))", "FALSE"}, Case{"=GAMMADIST(2,3,1)", "0.270670542408673", 0},
        Case{"=GAMMADIST(1,1,2)", "0.303264766090999", 0},
        Case{"=GAMMADIST(1,0.5,2)*1E152", "3.83849719257298", 0},
        Case{"=GAMMADIST(2,150,1)", "#VALUE!"}, Case{"=GAMMADIST(-1,1,1)", "#VALUE!"},
        Case{"=NORMDIST(1,2,3)", "0.125794409230998", 0}, Case{"=NORMDIST(0,0,0)", "#DIV/0!"},
        Case{"=NORMDIST(0,0,-1)", "#DIV/0!"}, Case{"=NORMDIST(0,0,1,1)", "#CALL!"},
        Case{"=NORMDIST(\"x\",0,1)", "#VALUE!"}, Case{"=FISHER(0.5)", "0.549306144334055", 0},
        Case{"=FISHER(1)", "#VALUE!"}, Case{"=FISHERINV(1)", "0.761594155955765", 0},
        Case{"=STANDARDIZE(7,5,4)", "0.5", 0}, Case{"=STANDARDIZE(7,5,0)", "#VALUE!"}));

TEST(Quartile, IsATableByTheCount) {
    // From a script that holds the table.
    double const expected[9][5] = {
        {1, 1, 1, 1, 1},          {1, 1.375, 1.75, 2.125, 2.5}, {1, 1.75, 2.5, 3.3, 4.1},
        {1, 2.125, 3.3, 5, 7.7},  {1, 2.5, 4.1, 7.7, 11},       {1, 2.9, 5.9, 10.175, 16.3},
        {1, 3.3, 7.7, 13.65, 22}, {1, 3.7, 9.35, 17.725, 29.9}, {1, 4.1, 11, 22, 37}};
    char const * const data[] = {"1", "2.5", "4.1", "7.7", "11", "16.3", "22", "29.9", "37"};
    Sheet sheet("C");
    for (int n = 1; n <= 9; ++n) {
        sheet.Enter(cells::host::Place{0, n - 1}, data[n - 1]);
        for (int q = 0; q <= 4; ++q) {
            sheet.Enter("C1", "=QUARTILE(" + std::to_string(q) + ",A1:A" + std::to_string(n) + ")");
            EXPECT_DOUBLE_EQ(sheet.Get("C1").number, expected[n - 1][q]) << n << " " << q;
        }
    }
}

TEST(OrderStatistics, AgreeWithASortOfTheData) {
    std::mt19937 random(4);
    Sheet sheet("C");
    std::vector<double> data;
    for (int row = 0; row < 200; ++row) {
        data.push_back(double(random() % 50));
        sheet.Enter(cells::host::Place{0, row}, std::to_string(int(data.back())));
    }
    std::sort(data.begin(), data.end());
    auto const value = [&](std::string const & formula) {
        sheet.Enter("C1", formula);
        return sheet.Get("C1").number;
    };
    for (int k = 1; k <= 200; k += 13) {
        std::string const rank = std::to_string(k);
        EXPECT_EQ(value("=SMALL(" + rank + ",A1:A200)"), data[std::size_t(k - 1)]);
        EXPECT_EQ(value("=LARGE(" + rank + ",A1:A200)"), data[std::size_t(200 - k)]);
        double const x = data[std::size_t(k - 1)];
        auto const first = std::lower_bound(data.begin(), data.end(), x) - data.begin();
        std::string const shown = std::to_string(int(x));
        EXPECT_EQ(value("=RANK(" + shown + ",A1:A200,1)"), double(first + 1));
        EXPECT_EQ(value("=RANK(" + shown + ",A1:A200)"), double(200 - first));
    }
    EXPECT_EQ(value("=MEDIAN(A1:A200)"), (data[99] + data[100]) / 2);
}

TEST(Mode, AgreesWithALinearTally) {
    std::mt19937 random(8);
    for (int round = 0; round < 20; ++round) {
        Sheet sheet("C");
        std::vector<std::pair<double, int>> tally;
        for (int row = 0; row < 300; ++row) {
            double const x = double(random() % 40) / 8;
            sheet.Enter(cells::host::Place{0, row}, std::to_string(x));
            auto const at = std::find_if(tally.begin(), tally.end(),
                                         [&](auto const & entry) { return entry.first == x; });
            if (at == tally.end())
                tally.emplace_back(x, 1);
            else
                ++at->second;
        }
        auto const best =
            std::max_element(tally.begin(), tally.end(),
                             [](auto const & a, auto const & b) { return a.second < b.second; });
        sheet.Enter("C1", "=MODE(A1:A300)");
        EXPECT_EQ(sheet.Get("C1").number, best->first);
    }
}

// Extremes and counts read a range in bulk; over its elements one by one they give the same.
TEST(BulkReads, GiveWhatTheWalkGives) {
    std::mt19937 random(15);
    for (int round = 0; round < 60; ++round) {
        Sheet sheet("C");
        for (int i = 0; i < 60; ++i) {
            cells::host::Place const place{int(random() % 3), int(random() % 150)};
            char const * const texts[] = {"5",    "-2.5", "7%",   "3/5/2026",
                                          "word", "=1/0", "=2+3", ""};
            sheet.Enter(place, texts[random() % std::size(texts)]);
        }
        std::string single; // the same places, each an argument of its own
        for (int row = 0; row < 150; ++row)
            for (char column : {'A', 'B', 'C'})
                single += std::string(single.empty() ? "" : ",") + column + std::to_string(row + 1);
        for (char const * name : {"SUM", "MAX", "MIN", "COUNT", "COUNTN", "AVERAGE"}) {
            sheet.Enter("E1", std::string("=") + name + "(A1:C150)");
            sheet.Enter("E2", std::string("=") + name + "(" + single + ")");
            EXPECT_EQ(sheet.Text("E1"), sheet.Text("E2")) << name;
            EXPECT_EQ(sheet.Get("E1").formatClass, sheet.Get("E2").formatClass) << name;
        }
    }
}

TEST(UnnamedFunctions, ComputeThroughTheirObjects) {
    EXPECT_NEAR(EvalUnnamed(13130, L"0"), 0.398942280401433, 1e-15);
    EXPECT_EQ(EvalUnnamed(13130, L"\"x\""), -3);
    EXPECT_NEAR(EvalUnnamed(13152, L"{3,5},2"), 0.62451794322659, 1e-14);
    EXPECT_NEAR(EvalUnnamed(13152, L"{3,5},2,1"), 0.85323733682626, 1e-14);
    EXPECT_EQ(EvalUnnamed(13152, L"{3,5},2,1E9"), EvalUnnamed(13152, L"{3,5},2,1"));
    EXPECT_NEAR(EvalUnnamed(13152, L"{3},2"), 1 - 0.398942280401433, 1e-15); // no deviation: z is 0
    EXPECT_EQ(EvalUnnamed(13152, L"{\"x\"},2"), -3);
    EXPECT_EQ(cells::internal::FindFunctionObject(1), nullptr);
}

TEST(Collectors, TakeNoArgumentsAtAll) {
    using namespace cells::internal;
    cells::test::BaseHost host;
    NumberStats stats;
    std::vector<double> numbers{1, 2};
    CCCellValue value;
    double number;
    EXPECT_EQ(ListStats(&host, nullptr, nullptr, stats), Status::kDone);
    EXPECT_EQ(FirstArgStats(&host, nullptr, nullptr, stats), Status::kDone);
    EXPECT_EQ(CollectDoubles(&host, nullptr, nullptr, numbers), Status::kDone);
    EXPECT_TRUE(numbers.empty());
    EXPECT_FALSE(EvalArg(&host, value, nullptr, nullptr));
    EXPECT_FALSE(GetNumbers(&host, value, &number, 1, nullptr, nullptr));
    EXPECT_EQ(stats.count, 0);
}
