// The families of built-in functions.
//
// A function is one row of its family's table: number, English name, what the catalogue says of its
// arguments and of itself, the shape of its call and its body. Adding a function is adding a row
// (and its body).
#pragma once

#include "formula/CCDocumentRef.h"
#include "formula/CCFunc.h"

#include <cstddef>

namespace cells::internal {

struct FunctionRow {
    constexpr FunctionRow(unsigned int i, wchar_t const * n, wchar_t const * a, char const * k,
                          wchar_t const * d, CheckFn c, EvalFn e, EFuncType t = kPlainFunc,
                          ChoiceFn ch = nullptr, bool r = true)
        : id(i), name(n), arguments(a), kinds(k), description(d), check(c), eval(e), type(t),
          choice(ch), reachable(r) {}
    // With an example and what a cell shows for it.
    constexpr FunctionRow(unsigned int i, wchar_t const * n, wchar_t const * a, char const * k,
                          wchar_t const * d, wchar_t const * x, wchar_t const * s, CheckFn c,
                          EvalFn e, EFuncType t = kPlainFunc, ChoiceFn ch = nullptr)
        : id(i), name(n), arguments(a), kinds(k), description(d), example(x), shows(s), check(c),
          eval(e), type(t), choice(ch) {}

    // A property of the document, with an example.
    constexpr FunctionRow(unsigned int i, wchar_t const * n, wchar_t const * a, char const * k,
                          wchar_t const * d, wchar_t const * x, wchar_t const * s, CheckFn c,
                          EvalFn e, DocumentFn p)
        : FunctionRow(i, n, a, k, d, x, s, c, e, kDocumentFunc) {
        property = p;
    }
    // A link to another document.
    constexpr FunctionRow(unsigned int i, wchar_t const * n, wchar_t const * a, char const * k,
                          wchar_t const * d, CheckFn c, EvalFn e, RemoteFn l)
        : FunctionRow(i, n, a, k, d, c, e, kRemoteFunc) {
        link = l;
    }

    unsigned int id; // its string resource
    wchar_t const * name;
    wchar_t const * arguments; // separated by "; "; "..." marks a repeated one
    // A letter an argument: v value, n number, t text, d date or time, l truth value, r values (a
    // range, an array or one), f reference. Those in brackets may be left out.
    char const * kinds;
    wchar_t const * description; // one line
    wchar_t const * example = nullptr;
    wchar_t const * shows = nullptr;
    CheckFn check = nullptr;
    EvalFn eval = nullptr;
    EFuncType type = kPlainFunc;
    ChoiceFn choice = nullptr;     // of type kChooseFunc
    DocumentFn property = nullptr; // of type kDocumentFunc
    RemoteFn link = nullptr;       // of type kRemoteFunc
    bool reachable = true;         // false: the object exists, but no name leads to it
};

// The object of a function by its string resource, also of one that no name leads to; null for no
// function.
CVCELLS_API CCFunc * FindFunctionObject(unsigned int id);
// What the catalogue says of a function or an operator beside its strings.
struct CatalogueFacts {
    unsigned int strings = 0; // the string resource with name, description and arguments
    char const * kinds = "";  // as in FunctionRow
    wchar_t const * example = nullptr;
    wchar_t const * shows = nullptr;
};
CVCELLS_API CatalogueFacts CatalogueFactsOf(CCFunc const & func);

struct FunctionFamily {
    uchar category;
    FunctionRow const * rows;
    std::size_t count;
};

FunctionFamily Mathematics();     // 1
FunctionFamily Integers();        // 1
FunctionFamily Sums();            // 1
FunctionFamily Trigonometry();    // 2
FunctionFamily Logic();           // 3
FunctionFamily Statistics();      // 4
FunctionFamily OrderStatistics(); // 4
FunctionFamily Regression();      // 4
FunctionFamily Distributions();   // 4
FunctionFamily DatesAndTimes();   // 5
FunctionFamily Texts();           // 6
FunctionFamily Finance();         // 7
FunctionFamily Securities();      // 7
FunctionFamily Lookup();          // 8
FunctionFamily References();      // 8
FunctionFamily Information();     // 9
FunctionFamily RemoteData();      // 10
FunctionFamily DocumentFacts();   // 11

// Names property `Number` of the document, whatever the arguments.
template <int Number>
int DocumentProperty(CTX *, CCDocumentRef & document, CCFormulaList const *, CCRef const *) {
    document.docType = CCDocumentRef::ECDocRefType(Number);
    return 1;
}

template <std::size_t N>
FunctionFamily MakeFamily(uchar category, FunctionRow const (&rows)[N]) {
    return {category, rows, N};
}

} // namespace cells::internal
