// The table of operators and functions, by local name and by English name.
//
// Both arrays are sorted by 16-bit units with a name behind every name that it begins ("LOG10"
// before "LOG"), so that a scan from the first entry of a letter meets the longest name first.
#pragma once

#include "formula/CCFunc.h"

#include <vector>

// Builds all functions and operators in the user's language and seeds the random numbers; runs in
// CVCellInit and again when the language changes. The objects stay where they are.
CVCELLS_API void InitBuiltinFunctions();

CVCELLS_API CCFunc ** GetBuiltInFunc(); // sorted by local name
CVCELLS_API int GetBuiltInFuncSize();

// Whether a local name equals `name` without regard to case, of one of the kinds in the mask.
CVCELLS_API bool IsFunction(CString const & name, uchar kindMask);
// Whether a local name of exactly that kind is a prefix of the text, without regard to case.
CVCELLS_API bool _EatFunction(cells::CTX * ctx, wchar_t const * text, CCFunc *& func, uchar kind);
// The first local name equal to `name` whose check accepts the list; null without one.
CVCELLS_API CCFunc * GetFunction(cells::CTX * ctx, char * name, CCFormulaList * args);

// Functions in files: kind and English name. An unknown name reads as null.
CVCELLS_API CCFunc * ReadFunc(cells::CTX * ctx, CArchive & ar);
CVCELLS_API void WriteFunc(cells::CTX * ctx, CArchive & ar, CCFunc const * func);

namespace cells::internal {

enum class NameTable { kLocal, kEnglish };

// Names that begin beyond this unit are not found: the bound is the number of entries, also as a
// limit of the first unit.
constexpr wchar_t kLastFirstUnit = 277;

// The longest name of that kind at the head of the text, which then moves behind it; or null.
CVCELLS_API CCFunc * TakeFunctionName(NameTable table, wchar_t const *& text, uchar kind);
// The operator or function whose English name and kind these are; or null.
CVCELLS_API CCFunc * FindEnglishFunction(wchar_t const * name, uchar kind);

// Makes the registry of these functions, which live as long as the process.
void BuildRegistry(std::vector<CCFunc *> const & functions);

} // namespace cells::internal
