// Lookup and reference.
#include "functions/Families.h"

namespace cells::internal {
namespace {

constexpr FunctionRow kRows[] = {
    {13236, L"ADDRESS", L"row; column; kind; sheet", L"Text of a cell address."},
    {13237, L"AREAS", L"reference...", L"Number of references among the arguments."},
    {13238, L"CHOOSE", L"index; value...", L"Value picked by a number.", nullptr, nullptr,
     kChooseFunc},
    {13239, L"COLUMNS", L"range", L"Number of columns of a range."},
    {13240, L"FIND", L"value; value...",
     L"Position in sorted values of the last one not above a value, or 0."},
    {13241, L"INDEX", L"number; value...", L"Value at a place, counted through all values."},
    {13242, L"LOOKUP", L"value; keys; results",
     L"Result beside the last sorted key not above a value."},
    {13243, L"ROWS", L"range", L"Number of rows of a range."},
    {13274, L"COLUMN", L"reference", L"Column number of a reference or of the cell itself.",
     nullptr, nullptr, kDocumentFunc},
    {13275, L"ROW", L"reference", L"Row number of a reference or of the cell itself.", nullptr,
     nullptr, kDocumentFunc},
    {13285, L"FINDEX", L"value; value...", L"Position of the first value that is equal."},
    {13286, L"LOOKUPEX", L"value; keys; results", L"Result beside the first equal key."},
    {13291, L"INDIRECT", L"text; style", L"Reference written as text.", nullptr, nullptr, kRefFunc},
    {13292, L"OFFSET", L"reference; rows; columns; width; height", L"Reference moved and extended.",
     nullptr, nullptr, kRefFunc},
    {13293, L"VLOOKUP", L"value; table; column", L"Value in the row whose first cell is equal."},
    {13294, L"HLOOKUP", L"value; table; row", L"Value in the column whose first cell is equal."},
    {13305, L"MATCH", L"value; range; type", L"Position of a value in a range."},
};

} // namespace

FunctionFamily Lookup() { return MakeFamily(8, kRows); }

} // namespace cells::internal
