// Searching and replacing in text, and the bracket count behind a syntax message.
#pragma once

#include "platform/Types.h"

// Index of the first unit of `text` that occurs in `set`, else its length; 0 if either is null.
CVCELLS_API int StrFind(wchar_t const * text, wchar_t const * set);

// The first place of `find`, or null. An empty `find` gives `text`. With `wholeWord` a place
// counts only where neither neighbour is a letter or digit.
CVCELLS_API wchar_t const * StrStrW(wchar_t const * text, wchar_t const * find, int caseSensitive,
                                    int wholeWord);

// Copies from `source` to `target` up to the next match and writes `replace` in its place: 1, with
// both pointers moved on. Without a match it copies the rest and its terminator: 0. `remaining`
// counts down the units, terminator included, that may still be written. Call it until it gives 0.
CVCELLS_API int StrRep(wchar_t *& target, wchar_t const *& source, int & remaining,
                       wchar_t const * find, wchar_t const * replace, int caseSensitive,
                       int wholeWord);

// 1 when "(" and ")" occur equally often, and "{" and "}" too; else 0.
CVCELLS_API int MatchBrackets(wchar_t const * text);
