// How functions fetch their arguments, and how they report.
#pragma once

#include "formula/CCFunc.h"
#include "formula/FormulaList.h"
#include "values/CCCellValue.h"

#include <utility>

namespace cells::internal {

// Outcome of the helpers. The order is not that of the error numbers; only SetStatusResult maps it.
enum class Status { kDone = 0, kBadReference = 1, kBadValue = 2, kDivisionByZero = 3 };

// The value of the first item, with a reference replaced by its content. False, and an empty value,
// only where there is no item.
bool EvalArg(CTX * ctx, CCCellValue & value, CCFormulaList const * args, CCRef const * current);

// The next item as a number: 0, or -1 for an item that is none, an error or a blank included, which
// stays in `result`; the cursor moves behind the item. -2 where no item is left.
int NextNumberArg(CTX * ctx, CCCellValue & result, double & out, CCFormulaList const *& args,
                  CCRef const * current);

// The first `count` items as numbers. False at the first that is none, an error or a blank
// included.
bool GetNumbers(CTX * ctx, CCCellValue & result, double * out, int count,
                CCFormulaList const * args, CCRef const * current);

// What a value shows, under its own format; false for an error, which stays in the value.
bool ToTextArg(CTX * ctx, CCCellValue const & value, CString & text);
// The first item as a text; an error, which stays in `result`, gives false.
bool GetText(CTX * ctx, CCCellValue & result, CString & text, CCFormulaList const * args,
             CCRef const * current);

// Evaluates the argument that `choose` picks, and gives it; null, and an error in `result`, where
// there is none or its shape is wrong.
CCFormula const * EvalChosen(CTX * ctx, CCCellValue & result, ChoiceFn choose,
                             CCFormulaList const * args, CCRef const * current);

// Writes the error of a status, or the number in its class; classes 1 to 4 show whole numbers
// without decimals and others with the locale's.
void SetStatusResult(CTX * ctx, Status status, CCCellValue & result, double number, uchar type);

// What a function of numbers gives: a number, or why there is none.
struct Outcome {
    Outcome(double n) : number(n) {}
    Outcome(Status s) : status(s) {}
    double number = 0;
    Status status = Status::kDone;
};

// The eval function of `Compute`, an Outcome of one or more doubles: each argument must be a
// number, else the call is error 3.
template <auto Compute>
struct NumberFunction;

template <typename... Numbers, Outcome (*Compute)(Numbers...)>
struct NumberFunction<Compute> {
    static void Eval(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                     CCRef const * current) {
        double x[sizeof...(Numbers)];
        if (!GetNumbers(ctx, result, x, int(sizeof...(Numbers)), args, current))
            return result.Set(errValue);
        Outcome const outcome = Call(x, std::index_sequence_for<Numbers...>());
        SetStatusResult(ctx, outcome.status, result, outcome.number, C_NF_GENERAL);
    }

private:
    template <std::size_t... I>
    static Outcome Call(double const * x, std::index_sequence<I...>) {
        return Compute(x[I]...);
    }
};

template <auto Compute>
constexpr EvalFn OfNumbers = &NumberFunction<Compute>::Eval;

// Steps of a loop that a cell's number drives; a call that needs more is error 3.
constexpr int kStepBudget = 100'000'000;

inline void SetNumber(CCCellValue & result, double number) {
    result.Set(number, uchar(C_NF_GENERAL));
}

inline void SetTruth(CCCellValue & result, bool truth) {
    result.Set(truth ? 1.0 : 0.0, uchar(C_NF_BOOL));
}

} // namespace cells::internal
