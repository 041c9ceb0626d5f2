// Information: what kind of value an argument is.
#include "context/Context.h"
#include "functions/Arguments.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Families.h"

#include <cmath>

namespace cells::internal {
namespace {

bool IsBlank(CCCellValue const & value) { return value.IsEmpty(); }
bool IsError(CCCellValue const & value) { return value.IsError(); }
bool IsNumber(CCCellValue const & value) { return value.IsNumber(); }
bool IsText(CCCellValue const & value) { return value.IsText(); }

template <bool (*Test)(CCCellValue const &)>
void EvalIs(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    EvalArg(ctx, result, args, current);
    SetTruth(result, Test(result));
}

bool IsNA(CCCellValue const & value) { return value.GetError() == errNA; }
bool IsNonText(CCCellValue const & value) { return !value.IsText(); }
// A format read as a type: a number typed into a cell of that class counts too.
bool IsLogical(CCCellValue const & value) {
    return value.IsNumber() && value.GetFormat().GetType() == C_NF_BOOL;
}

template <bool Odd>
void EvalParity(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    double x;
    if (!GetNumbers(ctx, result, &x, 1, args, current)) return result.Set(errValue);
    double const rest = std::fmod(std::floor(std::fabs(x)), 2);
    SetTruth(result, Odd ? rest > 0 : rest == 0);
}

void EvalIsRef(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CCFormula const & argument = *args->formula;
    if (argument.GetType() == kRefFormula) return SetTruth(result, true);
    argument.Eval(ctx, result, current);
    SetTruth(result, result.IsRef());
}

// A count and no test, although one of them has the name of one.
template <bool (*Test)(CCCellValue const &)>
void EvalCountOf(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    double count = 0;
    Status const status = TryEachValue(ctx, args, current, [&](CCCellValue const & value) {
        count += Test(value);
        return Status::kDone;
    });
    SetStatusResult(ctx, status, result, count, C_NF_GENERAL);
}

void EvalNA(CTX *, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    result.Set(errNA);
}

void EvalCountry(CTX * ctx, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    SetNumber(result, double(ctx->lctx()->countryCode()));
}

constexpr FunctionRow kRows[] = {
    {13227, L"COUNTBLANK", L"value...", "[r]", L"Number of blank values.", L"COUNTBLANK(1,\"\",2)",
     L"0", AtLeast<0>, EvalCountOf<IsBlank>},
    {13228, L"ISBLANK", L"value", "v", L"TRUE when a value is blank.", L"ISBLANK(0)", L"FALSE",
     Singles<1>, EvalIs<IsBlank>},
    {13229, L"ISERR", L"value...", "[r]", L"Number of error values.", L"ISERR(1/0,NA(),1)", L"2",
     AtLeast<0>, EvalCountOf<IsError>},
    {13230, L"ISERROR", L"value", "v", L"TRUE when a value is an error.", L"ISERROR(1/0)", L"TRUE",
     Singles<1>, EvalIs<IsError>},
    {13231, L"ISEVEN", L"number", "n", L"TRUE when the whole part of a number is even.",
     L"ISEVEN(-2.5)", L"TRUE", Singles<1>, EvalParity<false>},
    {13232, L"ISNUMBER", L"value", "v", L"TRUE when a value is a number.", L"ISNUMBER(TRUE)",
     L"TRUE", Singles<1>, EvalIs<IsNumber>},
    {13233, L"ISODD", L"number", "n", L"TRUE when the whole part of a number is odd.",
     L"ISODD(3.9)", L"TRUE", Singles<1>, EvalParity<true>},
    {13234, L"ISREF", L"value", "v", L"TRUE when an argument is a reference.", L"ISREF(B1:B2)",
     L"TRUE", Exactly<1>, EvalIsRef},
    {13235, L"ISTEXT", L"value", "v", L"TRUE when a value is text.", L"ISTEXT(\"1\")", L"TRUE",
     Singles<1>, EvalIs<IsText>},
    {13296, L"COUNTRY", L"", "", L"Country code of the locale.", L"COUNTRY()", L"1", Exactly<0>,
     EvalCountry},
    {13301, L"NA", L"", "", L"The error for a value that is not available.", L"NA()", L"#N/A",
     Exactly<0>, EvalNA},
    {13302, L"ISNA", L"value", "v", L"TRUE when a value is the not-available error.", L"ISNA(NA())",
     L"TRUE", Singles<1>, EvalIs<IsNA>},
    {13303, L"ISLOGICAL", L"value", "v", L"TRUE when a value is a number in logical format.",
     L"ISLOGICAL(1=1)", L"TRUE", Singles<1>, EvalIs<IsLogical>},
    {13304, L"ISNONTEXT", L"value", "v", L"TRUE when a value is not text.", L"ISNONTEXT(1)",
     L"TRUE", Singles<1>, EvalIs<IsNonText>},
};

} // namespace

FunctionFamily Information() { return MakeFamily(9, kRows); }

} // namespace cells::internal
