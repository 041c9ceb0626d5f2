#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/CCNameRef.h"
#include "formula/CCRCRef.h"
#include "formula/CCRegionRef.h"
#include "formula/Scanners.h"
#include "platform/HeapText.h"
#include "platform/Text.h"

#include <utility>

namespace {

constexpr int kRowDigits = 5;
constexpr std::ptrdiff_t kSheetBuffer = 80; // a sheet name and its terminator

// The place of a letter in the alphabet, or -1. Only A to Z name columns.
int LetterIndex(wchar_t unit) {
    if (unit >= L'a' && unit <= L'z') return unit - L'a';
    return unit >= L'A' && unit <= L'Z' ? unit - L'A' : -1;
}

bool TakeColon(wchar_t const *& text) {
    if (*text == L':') return ++text, true;
    if (text[0] == L'.' && text[1] == L'.') return text += 2, true;
    return false;
}

bool IsWholeAddress(cells::CTX * ctx, wchar_t const * text, wchar_t const * end) {
    uchar col, flags;
    ushort row;
    return _EatRC(ctx, text, col, row, flags) && text == end;
}

} // namespace

namespace cells::internal {

wchar_t const * EndOfWord(wchar_t const * text) {
    if (!IsAlpha(*text) && *text != L'_') return text;
    while (*text && (IsAlnum(*text) || *text == L'_')) ++text;
    return text;
}

} // namespace cells::internal

using cells::internal::EndOfWord;

int _EatC(cells::CTX *, wchar_t const *& text, uchar & col, uchar & flags) {
    wchar_t const * at = text;
    bool const absolute = *at == L'$';
    if (absolute) ++at;
    int column = LetterIndex(*at);
    if (column < 0) return 0;
    int const second = LetterIndex(*++at);
    if (second >= 0) {
        column = (column + 1) * 26 + second;
        ++at;
    }
    if (column > cells::kMaxColumn) return 0;
    col = uchar(column);
    flags = absolute ? uchar(cells::kAbsoluteColumn) : uchar(0);
    text = at;
    return 1;
}

int _EatR(cells::CTX *, wchar_t const *& text, ushort & row, uchar & flags) {
    wchar_t const * at = text;
    bool const absolute = *at == L'$';
    if (absolute) ++at;
    int number;
    if (!_EatNDigits(nullptr, at, number, kRowDigits)) return 0;
    if (number < 1 || number > cells::kMaxRow + 1) return 0;
    row = ushort(number - 1);
    flags = absolute ? uchar(cells::kAbsoluteRow) : uchar(0);
    text = at;
    return 1;
}

int _EatRC(cells::CTX * ctx, wchar_t const *& text, uchar & col, ushort & row, uchar & flags) {
    wchar_t const * at = text;
    uchar column, columnFlag, rowFlag;
    if (!_EatC(ctx, at, column, columnFlag) || !_EatR(ctx, at, row, rowFlag)) return 0;
    col = column;
    flags = columnFlag | rowFlag;
    text = at;
    return 1;
}

// The flags stay with the corners as typed, also where the corners are swapped: the tree prints
// with them, and the texts of saved formulas must not change.
int _EatSpreadRef(cells::CTX * ctx, wchar_t const *& text, CCRef *& ref, uchar & flags) {
    wchar_t const * at = text;
    _EatWhite(nullptr, at);
    uchar col, first;
    ushort row;
    if (!_EatRC(ctx, at, col, row, first)) return 0;
    wchar_t const * rest = at;
    uchar col2, second;
    ushort row2;
    if (TakeColon(rest) && _EatRC(ctx, rest, col2, row2, second)) {
        auto * region = new CCRegionRef(col, row, col2, row2);
        region->Normalize();
        ref = region;
        flags = uchar(first | second << 2);
        text = rest;
    } else {
        ref = new CCRCRef(col, row);
        flags = first;
        text = at;
    }
    return 1;
}

int _EatNameRef(cells::CTX *, wchar_t const *& text, CCRef *& ref, uchar & flags) {
    wchar_t const * start = text;
    _EatWhite(nullptr, start);
    wchar_t const * const end = EndOfWord(start);
    if (end == start) return 0;
    ref = new CCNameRef(start, unsigned(end - start));
    flags = 0;
    text = end;
    return 1;
}

int _EatRef(cells::CTX * ctx, wchar_t const *& text, CCRef *& ref, uchar & flags) {
    CCCellManager const * manager = ctx->manager();
    if (manager && manager->GetType() == 1 && _EatSpreadRef(ctx, text, ref, flags)) return 1;
    return _EatNameRef(ctx, text, ref, flags);
}

int _EatSheetRef(cells::CTX *, wchar_t const *& text, CCRef *& ref) {
    wchar_t const * start = text;
    _EatWhite(nullptr, start);
    wchar_t const * const end = EndOfWord(start);
    if (end == start || end - start >= kSheetBuffer) return 0;
    wchar_t const * at = end;
    _EatWhite(nullptr, at);
    if (*at != L'!') return 0;
    ref = new CCNameRef(start, unsigned(end - start));
    text = at + 1;
    return 1;
}

wchar_t * _EatName(cells::CTX * ctx, wchar_t const *& text) {
    wchar_t const * start = text;
    _EatWhite(nullptr, start);
    wchar_t const * const end = EndOfWord(start);
    if (end == start || IsWholeAddress(ctx, start, end)) return nullptr;
    wchar_t const * at = end;
    _EatWhite(nullptr, at);
    if (*at != L'!' && *at != L':') return nullptr;
    text = end;
    return cells::NewHeapText(start, std::size_t(end - start));
}
