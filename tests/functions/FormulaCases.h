// Formulas over a small sheet, and what a cell shows for them.
//
// A1:A3 are 1, 2, 3; B1 is "a", B2 is "b", B3 is empty; C1 is error 2, C2 a date, C3 empty;
// D1 is 12%, D2 is the text "'7", D3 is FALSE. E1:E6 are 2, 4, 4, 5, 7, 9.5.
#pragma once

#include "host/Sheet.h"

#include <gtest/gtest.h>
#include <ostream>

struct Case {
    char const * formula;
    char const * shown;
    int formatClass = -1; // of a number; -1 where it is none or does not matter
};

inline void PrintTo(Case const & row, std::ostream * out) { *out << row.formula; }

inline void FillSampleSheet(cells::host::Sheet & sheet) {
    sheet.Enter("A1", "1");
    sheet.Enter("A2", "2");
    sheet.Enter("A3", "3");
    sheet.Enter("B1", "a");
    sheet.Enter("B2", "b");
    sheet.Enter("C1", "=1/0");
    sheet.Enter("C2", "2/1/1950");
    sheet.Enter("D1", "12%");
    sheet.Enter("D2", "'7");
    sheet.Enter("D3", "=1=2");
    int row = 1;
    for (char const * number : {"2", "4", "4", "5", "7", "9.5"})
        sheet.Enter("E" + std::to_string(row++), number);
    sheet.Recalculate();
}

class FormulaCases : public testing::TestWithParam<Case> {
protected:
    void Run() {
        cells::host::Sheet sheet("C");
        FillSampleSheet(sheet);
        sheet.Enter("F9", GetParam().formula);
        sheet.Recalculate();
        EXPECT_TRUE(sheet.Formula({5, 8})) << "the formula was not taken";
        EXPECT_EQ(sheet.Text("F9"), GetParam().shown);
        if (GetParam().formatClass < 0) return;
        EXPECT_EQ(sheet.Get("F9").kind, cells::host::Kind::kNumber);
        EXPECT_EQ(sheet.Get("F9").formatClass, GetParam().formatClass);
    }
};
