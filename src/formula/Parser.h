// From text to values and formula trees.
#pragma once

#include "formula/CCFormula.h"
#include "values/CCCellValue.h"

#include <memory>

// What an entry is.
enum EEntryKind : int { kEntryValue = 1, kEntryFormula = 2, kEntryEditSource = 3 };

namespace cells {

// What a user typed, read once.
struct Entry {
    EEntryKind kind = kEntryValue;
    CCCellValue value;                  // of a value entry
    std::unique_ptr<CCFormula> formula; // of the others; null where the text does not parse
};
CVCELLS_API Entry ReadEntry(CTX * ctx, CString const & text);

} // namespace cells

// Classifies what a user types: a value in `value`, or a formula (it begins with "=", "@" or "!",
// or is a calculation behind a sign) in `formula`, which is the caller's. A formula that does not
// parse is a formula entry with a null tree.
CVCELLS_API int Parse(cells::CTX * ctx, wchar_t * text, CCCellValue & value, CCFormula *& formula,
                      CCRef * current);
CVCELLS_API int _Parse(cells::CTX * ctx, wchar_t const * text, CCCellValue & value,
                       CCFormula *& formula, CCRef * current);

// The tree of a formula without prefix, or null; the caller's. Mode 0 reads function names of the
// user's language, any other English ones.
CVCELLS_API CCFormula * ParseFormula(cells::CTX * ctx, wchar_t * text, int mode, CCRef * current);
CVCELLS_API CCFormula * _ParseFormula(cells::CTX * ctx, wchar_t const * text, int mode,
                                      CCRef * current);
// For readers of older files: null for constants, which stay for the caller.
CVCELLS_API CCFormula * CVDOSParse(cells::CTX * ctx, wchar_t *& text);

// Whether a text may be a formula: "=", "@", "!", "+", "-" or "(" after white space.
CVCELLS_API bool IsFormulaPrefix(cells::LCTX * lctx, wchar_t * text);
CVCELLS_API bool _IsFormulaPrefix(cells::LCTX * lctx, wchar_t const * text);

// The parser itself: 0 with the tree in yyresult, or 1. The text moves behind what was read.
CVCELLS_API int yyparse(cells::CTX * ctx, wchar_t *& text, int mode, CCRef * current);
// The next token; the text moves behind it. 0 at the end.
CVCELLS_API int yylex(cells::CTX * ctx, wchar_t *& text, int mode, CCRef * current);
CVCELLS_API void yyerror(cells::CTX * ctx, wchar_t * message);
extern CVCELLS_API CCFormula * yyresult; // the tree of the last success; the caller's
