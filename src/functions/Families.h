// The families of built-in functions.
//
// A function is one row of its family's table: number, English name, class, the shape of its call,
// its body, and what the catalogue says of it. Adding a function is adding a row (and its body).
#pragma once

#include "formula/CCFunc.h"

#include <cstddef>

namespace cells::internal {

struct FunctionRow {
    unsigned int id; // its string resource
    wchar_t const * name;
    wchar_t const * arguments;   // separated by "; "; "..." marks a repeated one
    wchar_t const * description; // one line
    CheckFn check = nullptr;
    EvalFn eval = nullptr;
    EFuncType type = kPlainFunc;
    ChoiceFn choice = nullptr; // of type kChooseFunc
    bool reachable = true;     // false: the object exists, but no name leads to it
};

struct FunctionFamily {
    uchar category;
    FunctionRow const * rows;
    std::size_t count;
};

FunctionFamily Mathematics();   // 1
FunctionFamily Trigonometry();  // 2
FunctionFamily Logic();         // 3
FunctionFamily Statistics();    // 4
FunctionFamily DatesAndTimes(); // 5
FunctionFamily Texts();         // 6
FunctionFamily Finance();       // 7
FunctionFamily Lookup();        // 8
FunctionFamily Information();   // 9
FunctionFamily RemoteData();    // 10
FunctionFamily DocumentFacts(); // 11

template <std::size_t N>
FunctionFamily MakeFamily(uchar category, FunctionRow const (&rows)[N]) {
    return {category, rows, N};
}

} // namespace cells::internal
