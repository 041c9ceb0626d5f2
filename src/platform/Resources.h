// String resources by number: messages, the words TRUE and FALSE, error texts, the strings of
// functions and operators, and the words of the function catalogue.
//
// A host's own table, Services::loadString, is asked first; English is built in. A number without
// a text gives the empty string.
#pragma once

#include "platform/CString.h"

namespace cells {

// Numbers of the strings that the engine loads by itself.
enum StringId : unsigned int {
    kStringTrue = 13020,
    kStringFalse = 13021,
    kStringDefaultLTStrings = 13029,
    kStringCircular = 13033,
    kStringFormulaError = 13034,
    kStringLocked = 13036,
    kStringHiddenPrecedent = 13037,
    kStringNoEditSource = 13038,
    kStringRecalcRemote = 13039,
    kStringBrackets = 13042,
    kStringListSeparator = 13043,
    kStringFirstFunction = 13044,
    kStringLastFunction = 13305,
    kStringErrorBase = 13381,     // error N has the string kStringErrorBase + N
    kStringFirstCategory = 20000, // of functions, by category number
    kStringFirstArgumentKind = 20020,
    kStringFirstOperator = 20101,
};

CVCELLS_API CString LoadString(unsigned int id);
// The built-in English text, whatever the host's language.
CVCELLS_API CString LoadEnglishString(unsigned int id);

// Field `index` of a text whose fields are separated by line feeds; false when it has none.
CVCELLS_API bool GetField(CString const & text, int index, CString & field);

constexpr int kErrorsWithString = 9; // errors 1 to 9
// The printed form of an error value; numbers without a string print "#ERR" and the number.
CVCELLS_API CString ErrorText(int error);

// The English strings of functions and operators live beside their bodies: the function table names
// its source here, which gives the text of a number or null.
using StringSource = wchar_t const * (*)(unsigned int id);
CVCELLS_API void SetFunctionStrings(StringSource source);

} // namespace cells
