// The forms of the scanners that take a text which may be changed. They change nothing.
#include "formula/Scanners.h"

namespace {

// Runs a scanner on the const form of the text and moves the position as far as it went.
template <typename Scan>
auto Forward(wchar_t *& text, Scan && scan) {
    wchar_t const * at = text;
    auto const result = scan(at);
    text += at - text;
    return result;
}

} // namespace

int IsEmpty(cells::LCTX * lctx, wchar_t * text) { return _IsEmpty(lctx, text); }

int EatWhite(cells::LCTX * lctx, wchar_t *& text) {
    return Forward(text, [&](wchar_t const *& at) { return _EatWhite(lctx, at); });
}
int StrIComp(cells::LCTX * lctx, wchar_t *& text, wchar_t const * upperWord) {
    return Forward(text, [&](wchar_t const *& at) { return _StrIComp(lctx, at, upperWord); });
}
int StrIIComp(cells::LCTX * lctx, wchar_t *& text, wchar_t const * word) {
    return Forward(text, [&](wchar_t const *& at) { return _StrIIComp(lctx, at, word); });
}
int EatDigits(cells::LCTX * lctx, wchar_t *& text, double & out) {
    return Forward(text, [&](wchar_t const *& at) { return _EatDigits(lctx, at, out); });
}
int EatNDigits(cells::LCTX * lctx, wchar_t *& text, int & out, int max) {
    return Forward(text, [&](wchar_t const *& at) { return _EatNDigits(lctx, at, out, max); });
}
int EatDigitsAndComma(cells::LCTX * lctx, wchar_t *& text, double & out, int & seen,
                      wchar_t separator, int groupSize) {
    return Forward(text, [&](wchar_t const *& at) {
        return _EatDigitsAndComma(lctx, at, out, seen, separator, groupSize);
    });
}
int EatNumberValue(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value, int strict) {
    return Forward(text,
                   [&](wchar_t const *& at) { return _EatNumberValue(lctx, at, value, strict); });
}
int EatNPFSNumber(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value, int signs) {
    return Forward(text,
                   [&](wchar_t const *& at) { return _EatNPFSNumber(lctx, at, value, signs); });
}
int EatNumber(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value, int signs) {
    return Forward(text, [&](wchar_t const *& at) { return _EatNumber(lctx, at, value, signs); });
}
int EatConstant(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value) {
    return Forward(text, [&](wchar_t const *& at) { return _EatConstant(lctx, at, value); });
}
int EatDNumber(cells::LCTX * lctx, wchar_t *& text, int & day, int & month, int & year,
               CCNumberFormat & format) {
    return Forward(
        text, [&](wchar_t const *& at) { return _EatDNumber(lctx, at, day, month, year, format); });
}
int EatDNumber(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value) {
    return Forward(text, [&](wchar_t const *& at) { return _EatDNumber(lctx, at, value); });
}
int EatTNumber(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value) {
    return Forward(text, [&](wchar_t const *& at) { return _EatTNumber(lctx, at, value); });
}
int EatTime(cells::LCTX * lctx, wchar_t *& text, double & out, int & ampm, int & hasSeconds) {
    return Forward(text,
                   [&](wchar_t const *& at) { return _EatTime(lctx, at, out, ampm, hasSeconds); });
}
int EatBOOLValue(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value) {
    return Forward(text, [&](wchar_t const *& at) { return _EatBOOLValue(lctx, at, value); });
}
int EatTextValue(cells::LCTX * lctx, wchar_t *& text, CCCellValue & value) {
    return Forward(text, [&](wchar_t const *& at) { return _EatTextValue(lctx, at, value); });
}
int EatC(cells::CTX * ctx, wchar_t *& text, uchar & col, uchar & flags) {
    return Forward(text, [&](wchar_t const *& at) { return _EatC(ctx, at, col, flags); });
}
int EatR(cells::CTX * ctx, wchar_t *& text, ushort & row, uchar & flags) {
    return Forward(text, [&](wchar_t const *& at) { return _EatR(ctx, at, row, flags); });
}
int EatRC(cells::CTX * ctx, wchar_t *& text, uchar & col, ushort & row, uchar & flags) {
    return Forward(text, [&](wchar_t const *& at) { return _EatRC(ctx, at, col, row, flags); });
}
int EatSpreadRef(cells::CTX * ctx, wchar_t *& text, CCRef *& ref, uchar & flags) {
    return Forward(text, [&](wchar_t const *& at) { return _EatSpreadRef(ctx, at, ref, flags); });
}
int EatNameRef(cells::CTX * ctx, wchar_t *& text, CCRef *& ref, uchar & flags) {
    return Forward(text, [&](wchar_t const *& at) { return _EatNameRef(ctx, at, ref, flags); });
}
int EatRef(cells::CTX * ctx, wchar_t *& text, CCRef *& ref, uchar & flags) {
    return Forward(text, [&](wchar_t const *& at) { return _EatRef(ctx, at, ref, flags); });
}
int EatSheetRef(cells::CTX * ctx, wchar_t *& text, CCRef *& ref) {
    return Forward(text, [&](wchar_t const *& at) { return _EatSheetRef(ctx, at, ref); });
}
wchar_t * EatName(cells::CTX * ctx, wchar_t *& text) {
    return Forward(text, [&](wchar_t const *& at) { return _EatName(ctx, at); });
}
