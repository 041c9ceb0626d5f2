// Text.
#include "functions/Families.h"

namespace cells::internal {
namespace {

constexpr FunctionRow kRows[] = {
    {13153, L"CHAR", L"number", L"Character of a number from 0 to 255 in the system code page."},
    {13154, L"CLEAN", L"text", L"Text without control characters."},
    {13155, L"CODE", L"text", L"Number of the first character in the system code page."},
    {13156, L"CONCATENATE", L"value...", L"Joined text of all values."},
    {13157, L"DOLLAR", L"number; decimals", L"Number as currency text."},
    {13158, L"EXACT", L"text 1; text 2", L"TRUE when two texts are the same, case included."},
    {13159, L"FINDTEXT", L"find; text; start", L"Position of a text in another, case included."},
    {13160, L"FIXED", L"number; decimals; separators", L"Number as text with fixed decimals."},
    {13161, L"LEFT", L"text; count", L"First characters of a text."},
    {13162, L"LEN", L"text", L"Number of characters of a text."},
    {13163, L"LOWER", L"text", L"Text in lower case."},
    {13164, L"MID", L"text; start; count", L"Characters from the middle of a text."},
    {13165, L"PROPER", L"text", L"Text with a capital at the head of each word."},
    {13166, L"REPLACE", L"text; start; count; new text", L"Text with a part replaced by position."},
    {13167, L"REPT", L"text; count", L"Text repeated."},
    {13168, L"RIGHT", L"text; count", L"Last characters of a text."},
    {13169, L"SEARCHTEXT", L"pattern; text; start",
     L"Position of a pattern with ?, * and ~, without regard to case."},
    {13170, L"SUBSTITUTE", L"text; old text; new text; count",
     L"Text with occurrences of a part replaced, counted from the left."},
    {13171, L"T", L"value", L"Value as text."},
    {13172, L"TRIM", L"text", L"Text without outer blanks and with single inner blanks."},
    {13173, L"UPPER", L"text", L"Text in capitals."},
    {13174, L"VALUE", L"text", L"Number that a text stands for."},
    {13287, L"CONCAT", L"value...", L"Joined text of all values, the same as CONCATENATE."},
    {13295, L"LIKE", L"text; pattern", L"TRUE when a whole text fits a pattern with ? and *."},
};

} // namespace

FunctionFamily Texts() { return MakeFamily(6, kRows); }

} // namespace cells::internal
