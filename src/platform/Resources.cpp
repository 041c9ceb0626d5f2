#include "platform/Resources.h"

#include "platform/Services.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace cells {
namespace {

struct Entry {
    unsigned int id;
    wchar_t const * text;
};

// Sorted by number. No error text may scan as a number or begin a formula, so that a copied
// display text is never taken for one.
constexpr Entry kEnglish[] = {
    {13020, L"TRUE"},
    {13021, L"FALSE"},
    {13024, L"SELECT"},
    {13025, L"FROM"},
    {13026, L"WHERE"},
    {13027, L"ORDER BY"},
    {13028, L"*"},
    {13029, L"kg\ng\nkm\nm\ncm\nmm\nl\nh\nmin\npcs"},
    {13033, L"The formula refers to its own cell, directly or through other cells. It is kept but "
            L"not calculated."},
    {13034, L"The formula contains an error. It is kept as text."},
    {13036, L"The cell is locked. Remove the protection to change it."},
    {13037, L"A hidden cell of a protected sheet cannot be used in a formula."},
    {13038, L"An edit source cell needs a reference to one single cell."},
    {13039, L"This document uses data of other documents. Recalculate this data now?"},
    {13042, L"The brackets of the formula do not match. It is kept as text."},
    {13043, L"The list separator is the same as the decimal separator. \"%s\" is used as list "
            L"separator instead."},
    {13382, L"#REF!"},
    {13383, L"#DIV/0!"},
    {13384, L"#VALUE!"},
    {13385, L"#CALL!"},
    {13386, L"#CIRC!"},
    {13387, L"#ERR6"},
    {13388, L"#ERR7"},
    {13389, L"#ERR8"},
    {13390, L"#N/A"},
    {20000, L"Operators"},
    {20001, L"Mathematics"},
    {20002, L"Trigonometry"},
    {20003, L"Logic"},
    {20004, L"Statistics"},
    {20005, L"Date and time"},
    {20006, L"Text"},
    {20007, L"Financial"},
    {20008, L"Lookup and reference"},
    {20009, L"Information"},
    {20010, L"Remote data"},
    {20011, L"Document"},
    {20020, L"value"},
    {20021, L"number"},
    {20022, L"text"},
    {20023, L"date or time"},
    {20024, L"truth value"},
    {20025, L"values or range"},
    {20026, L"reference"},
};

StringSource & FunctionStrings() {
    static StringSource source = nullptr;
    return source;
}

} // namespace

void SetFunctionStrings(StringSource source) { FunctionStrings() = source; }

CString LoadString(unsigned int id) {
    CString text;
    if (PlatformServices().loadString && PlatformServices().loadString(id, text)) return text;
    return LoadEnglishString(id);
}

CString LoadEnglishString(unsigned int id) {
    auto const * entry = std::lower_bound(std::begin(kEnglish), std::end(kEnglish), id,
                                          [](Entry const & e, unsigned int n) { return e.id < n; });
    if (entry != std::end(kEnglish) && entry->id == id) return CString(entry->text);
    return FunctionStrings() ? CString(FunctionStrings()(id)) : CString();
}

bool GetField(CString const & text, int index, CString & field) {
    int start = 0;
    for (; index > 0; --index) {
        int const end = text.Find(L'\n', start);
        if (end < 0) return false;
        start = end + 1;
    }
    if (index < 0 || text.IsEmpty()) return false;
    int const end = text.Find(L'\n', start);
    field = end < 0 ? text.Mid(start) : text.Mid(start, end - start);
    return true;
}

CString ErrorText(int error) {
    if (error >= 1 && error <= kErrorsWithString)
        return LoadString(unsigned(kStringErrorBase) + unsigned(error));
    std::string const digits = std::to_string(error);
    return CString(L"#ERR") +
           CString(std::wstring_view(std::wstring(digits.begin(), digits.end())));
}

} // namespace cells
