// How functions take their arguments.
#include "functions/Arguments.h"

#include "formula/CCOpFormula.h"
#include "formula/Parser.h"
#include "support/BaseHost.h"

#include <gtest/gtest.h>

using cells::internal::NextNumberArg;
using cells::test::BaseHost;

TEST(NextNumberArg, TakesOneItemAfterTheOtherAndTellsWhatItFound) {
    BaseHost host;
    host.Enter("A1", L"4");
    host.Make("B1"); // blank
    std::unique_ptr<CCFormula> const call(
        _ParseFormula(&host, L"SUM(1.5,\"7\",A1,B1,1/0,TRUE)", 0, nullptr));
    ASSERT_TRUE(call);
    CCFormulaList const * args = static_cast<CCOpFormula const &>(*call).GetArgs();
    struct Step {
        int status;
        double number;
    };
    constexpr double kUntouched = -1;
    for (Step const & step : {Step{0, 1.5}, Step{-1, kUntouched}, Step{0, 4}, Step{-1, kUntouched},
                              Step{-1, kUntouched}, Step{0, 1}}) {
        CCFormulaList const * const before = args;
        CCCellValue value;
        double number = kUntouched;
        EXPECT_EQ(NextNumberArg(&host, value, number, args, nullptr), step.status);
        EXPECT_EQ(number, step.number);
        EXPECT_EQ(args, before->next);
    }
    CCCellValue value;
    double number = kUntouched;
    EXPECT_EQ(args, nullptr);
    EXPECT_EQ(NextNumberArg(&host, value, number, args, nullptr), -2);
    EXPECT_EQ(args, nullptr);
    EXPECT_EQ(number, kUntouched);
}

TEST(NextNumberArg, LeavesInTheResultWhatIsNoNumber) {
    BaseHost host;
    std::unique_ptr<CCFormula> const call(_ParseFormula(&host, L"SUM(1/0,2)", 0, nullptr));
    CCFormulaList const * args = static_cast<CCOpFormula const &>(*call).GetArgs();
    CCCellValue value;
    double number;
    EXPECT_EQ(NextNumberArg(&host, value, number, args, nullptr), -1);
    EXPECT_EQ(value.GetError(), 2);
}
