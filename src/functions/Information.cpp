// Information: what kind of value an argument is.
#include "functions/Arguments.h"
#include "functions/Families.h"
#include "functions/Shapes.h"

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

void EvalNA(CTX *, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    result.Set(errNA);
}

constexpr FunctionRow kRows[] = {
    {13227, L"COUNTBLANK", L"value...", L"Number of blank values."},
    {13228, L"ISBLANK", L"value", L"TRUE when a value is blank.", Singles<1>, EvalIs<IsBlank>},
    {13229, L"ISERR", L"value...", L"Number of error values."},
    {13230, L"ISERROR", L"value", L"TRUE when a value is an error.", Singles<1>, EvalIs<IsError>},
    {13231, L"ISEVEN", L"number", L"TRUE when the whole part of a number is even."},
    {13232, L"ISNUMBER", L"value", L"TRUE when a value is a number.", Singles<1>, EvalIs<IsNumber>},
    {13233, L"ISODD", L"number", L"TRUE when the whole part of a number is odd."},
    {13234, L"ISREF", L"value", L"TRUE when an argument is a reference."},
    {13235, L"ISTEXT", L"value", L"TRUE when a value is text.", Singles<1>, EvalIs<IsText>},
    {13296, L"COUNTRY", L"", L"Country code of the locale."},
    {13301, L"NA", L"", L"The error for a value that is not available.", Exactly<0>, EvalNA},
    {13302, L"ISNA", L"value", L"TRUE when a value is the not-available error."},
    {13303, L"ISLOGICAL", L"value", L"TRUE when a value is a number in logical format."},
    {13304, L"ISNONTEXT", L"value", L"TRUE when a value is not text."},
};

} // namespace

FunctionFamily Information() { return MakeFamily(9, kRows); }

} // namespace cells::internal
