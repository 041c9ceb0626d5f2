// The literal scanners: numbers, dates, times, logical words, quoted text and references at a
// position of a text.
//
// Each takes the position by reference and moves it only on success; a result of 0 is failure and
// leaves position and outputs alone. Every name has a twin with a leading "_" on const text, which
// does the same.
#pragma once

#include "formula/CCRef.h"
#include "values/CCCellValue.h"

namespace cells {
class LCTX;
}

// Meridian of a scanned time.
enum ETimeMark : int { kTimeAM = 0, kTime24 = 1, kTimePM = 2 };

CVCELLS_API int _EatWhite(cells::LCTX * lctx, wchar_t const *& text);
CVCELLS_API int _IsEmpty(cells::LCTX * lctx, wchar_t const * text); // only white space is left
// Whether a word is a prefix: the first form upper-cases the text alone, the second folds both. An
// empty word is a prefix of nothing.
CVCELLS_API int _StrIComp(cells::LCTX * lctx, wchar_t const *& text, wchar_t const * upperWord);
CVCELLS_API int _StrIIComp(cells::LCTX * lctx, wchar_t const *& text, wchar_t const * word);

// Digits, accumulated as a double; gives how many. The second form takes at most `max`.
CVCELLS_API int _EatDigits(cells::LCTX * lctx, wchar_t const *& text, double & out);
CVCELLS_API int _EatNDigits(cells::LCTX * lctx, wchar_t const *& text, int & out, int max);
// Digits in groups: every group behind a separator has exactly `groupSize` digits.
CVCELLS_API int _EatDigitsAndComma(cells::LCTX * lctx, wchar_t const *& text, double & out,
                                   int & seen, wchar_t separator, int groupSize);

// A number without sign. With `strict`, group separators and fractions are read too.
CVCELLS_API int _EatNumberValue(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value,
                                int strict);
// A number, percentage or fraction, with a sign if `signs` is set.
CVCELLS_API int _EatNPFSNumber(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value,
                               int signs);
// Whatever a typed entry may be: number, date, time, money or logical word.
CVCELLS_API int _EatNumber(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value,
                           int signs);
// A constant inside a formula: plain number, logical word or quoted text.
CVCELLS_API int _EatConstant(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value);
CVCELLS_API int _EatDNumber(cells::LCTX * lctx, wchar_t const *& text, int & day, int & month,
                            int & year, CCNumberFormat & format);
CVCELLS_API int _EatDNumber(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value);
CVCELLS_API int _EatTNumber(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value);
CVCELLS_API int _EatTime(cells::LCTX * lctx, wchar_t const *& text, double & out, int & ampm,
                         int & hasSeconds);
CVCELLS_API int _EatBOOLValue(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value);
CVCELLS_API int _EatTextValue(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value);

CVCELLS_API int _EatC(cells::CTX * ctx, wchar_t const *& text, uchar & col, uchar & flags);
CVCELLS_API int _EatR(cells::CTX * ctx, wchar_t const *& text, ushort & row, uchar & flags);
CVCELLS_API int _EatRC(cells::CTX * ctx, wchar_t const *& text, uchar & col, ushort & row,
                       uchar & flags);
// The references are the caller's.
CVCELLS_API int _EatSpreadRef(cells::CTX * ctx, wchar_t const *& text, CCRef *& ref, uchar & flags);
CVCELLS_API int _EatNameRef(cells::CTX * ctx, wchar_t const *& text, CCRef *& ref, uchar & flags);
CVCELLS_API int _EatRef(cells::CTX * ctx, wchar_t const *& text, CCRef *& ref, uchar & flags);
CVCELLS_API int _EatSheetRef(cells::CTX * ctx, wchar_t const *& text, CCRef *& ref);
// A word before "!" or ":" that is no cell address, as a new text of the C heap; or null.
CVCELLS_API wchar_t * _EatName(cells::CTX * ctx, wchar_t const *& text);

CVCELLS_API int EatWhite(cells::LCTX * lctx, wchar_t *& text);
CVCELLS_API int IsEmpty(cells::LCTX * lctx, wchar_t * text);
CVCELLS_API int StrIComp(cells::LCTX * lctx, wchar_t *& text, wchar_t const * upperWord);
CVCELLS_API int StrIIComp(cells::LCTX * lctx, wchar_t *& text, wchar_t const * word);
CVCELLS_API int EatDigits(cells::LCTX * lctx, wchar_t *& text, double & out);
CVCELLS_API int EatNDigits(cells::LCTX * lctx, wchar_t *& text, int & out, int max);
CVCELLS_API int EatDigitsAndComma(cells::LCTX * lctx, wchar_t *& text, double & out, int & seen,
                                  wchar_t separator, int groupSize);
CVCELLS_API int EatNumberValue(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value,
                               int strict);
CVCELLS_API int EatNPFSNumber(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value, int signs);
CVCELLS_API int EatNumber(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value, int signs);
CVCELLS_API int EatConstant(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value);
CVCELLS_API int EatDNumber(cells::LCTX * lctx, wchar_t *& text, int & day, int & month, int & year,
                           CCNumberFormat & format);
CVCELLS_API int EatDNumber(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value);
CVCELLS_API int EatTNumber(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value);
CVCELLS_API int EatTime(cells::LCTX * lctx, wchar_t *& text, double & out, int & ampm,
                        int & hasSeconds);
CVCELLS_API int EatBOOLValue(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value);
CVCELLS_API int EatTextValue(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value);
CVCELLS_API int EatC(cells::CTX * ctx, wchar_t *& text, uchar & col, uchar & flags);
CVCELLS_API int EatR(cells::CTX * ctx, wchar_t *& text, ushort & row, uchar & flags);
CVCELLS_API int EatRC(cells::CTX * ctx, wchar_t *& text, uchar & col, ushort & row, uchar & flags);
CVCELLS_API int EatSpreadRef(cells::CTX * ctx, wchar_t *& text, CCRef *& ref, uchar & flags);
CVCELLS_API int EatNameRef(cells::CTX * ctx, wchar_t *& text, CCRef *& ref, uchar & flags);
CVCELLS_API int EatRef(cells::CTX * ctx, wchar_t *& text, CCRef *& ref, uchar & flags);
CVCELLS_API int EatSheetRef(cells::CTX * ctx, wchar_t *& text, CCRef *& ref);
CVCELLS_API wchar_t * EatName(cells::CTX * ctx, wchar_t *& text);

namespace cells::internal {

// Reads the words for true and false, and the texts of errors, again; runs when the language
// changes.
void ReloadLogicalWords();
void ReloadErrorTexts();
// The number of the error whose printed text stands there; 0 for none. The longest text decides.
int EatErrorText(wchar_t const *& text);
// The end of the word (letter or "_", then letters, digits and "_") at `text`, or `text` itself.
wchar_t const * EndOfWord(wchar_t const * text);

} // namespace cells::internal
