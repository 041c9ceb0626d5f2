#include "functions/Arguments.h"

#include "context/Context.h"
#include "formula/Dereference.h"

#include <cmath>
#include <sstream>

namespace cells::internal {

bool EvalArg(CTX * ctx, CCCellValue & value, CCFormulaList const * args, CCRef const * current) {
    if (!args) {
        value.Set();
        return false;
    }
    args->formula->Eval(ctx, value, current);
    if (value.GetRef()) Dereference(ctx, value);
    return true;
}

int NextNumberArg(CTX * ctx, CCCellValue & result, double & out, CCFormulaList const *& args,
                  CCRef const * current) {
    if (!EvalArg(ctx, result, args, current)) return -2;
    args = args->next;
    if (!result.IsNumber()) return -1;
    out = result.GetNumber();
    return 0;
}

bool GetNumbers(CTX * ctx, CCCellValue & result, double * out, int count,
                CCFormulaList const * args, CCRef const * current) {
    for (int i = 0; i < count; ++i)
        if (NextNumberArg(ctx, result, out[i], args, current) != 0) return false;
    return true;
}

bool ToTextArg(CTX * ctx, CCCellValue const & value, CString & text) {
    if (value.IsError()) return false;
    text = value.GetTextString();
    if (!value.IsNumber()) return true;
    std::wostringstream stream;
    value.Print(ctx, stream, 0);
    text = CString(std::wstring_view(stream.str()));
    return true;
}

bool GetText(CTX * ctx, CCCellValue & result, CString & text, CCFormulaList const * args,
             CCRef const * current) {
    EvalArg(ctx, result, args, current);
    return ToTextArg(ctx, result, text);
}

CCFormula const * EvalChosen(CTX * ctx, CCCellValue & result, ChoiceFn choose,
                             CCFormulaList const * args, CCRef const * current) {
    CCFormula * choice = nullptr;
    int status = choose(ctx, choice, args, current);
    if (!status && !choice) status = errValue;
    if (!status) status = choice->Check(ctx, current); // it may not have been live when checked
    if (status) {
        result.Set(status);
        return nullptr;
    }
    CCFormulaList const chosen(choice, nullptr);
    EvalArg(ctx, result, &chosen, current);
    return choice;
}

void SetStatusResult(CTX * ctx, Status status, CCCellValue & result, double number, uchar type) {
    switch (status) {
    case Status::kBadReference:
        return result.Set(errRef);
    case Status::kBadValue:
        return result.Set(errValue);
    case Status::kDivisionByZero:
        return result.Set(errDiv0);
    case Status::kDone:
        break;
    }
    result.Set(number, type);
    if (type < C_NF_NUMBER || type > C_NF_FRACTION) return;
    bool const whole = number == std::floor(number);
    result.GetFormat().SetPrecision(whole ? 0 : ctx->lctx()->numberPrecision());
}

} // namespace cells::internal
