#include "formula/Parser.h"

#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/Scanners.h"
#include "formula/internal/Lexer.h"

#include <memory>

CCFormula * yyresult = nullptr;

namespace {

using cells::internal::ParseTree;
using Tree = std::unique_ptr<CCFormula>;

// The whole entry is the text of an error, and the host reads those.
bool ParseError(cells::CTX * ctx, wchar_t const * text, CCCellValue & value) {
    CCCellManager const * const manager = ctx->manager();
    if (!manager || !manager->ReadsErrorTexts()) return false;
    int const error = cells::internal::EatErrorText(text);
    if (!error || !_IsEmpty(ctx->lctx(), text)) return false;
    value.Set(error);
    return true;
}

// The tree of the text when nothing but white space stands after it.
Tree ParseWhole(cells::CTX * ctx, wchar_t const * text, int mode) {
    Tree tree(ParseTree(ctx, text, mode));
    return _IsEmpty(ctx->lctx(), text) ? std::move(tree) : nullptr;
}

// A number of its own: dates, times and logical words take no sign and no brackets.
bool IsSignable(CCCellValue const & value) {
    uchar const type = value.GetFormat().GetType();
    return type != C_NF_TIME && type != C_NF_DATE && type != C_NF_BOOL;
}

bool TakeUnsigned(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value) {
    return _EatNumber(lctx, text, value, 0) && IsSignable(value);
}

bool ParseSigned(cells::LCTX * lctx, wchar_t const * text, CCCellValue & value) {
    bool const negative = *text == L'-';
    CCCellValue number;
    if (!TakeUnsigned(lctx, ++text, number) || !_IsEmpty(lctx, text)) return false;
    if (negative) number.Set(-number.GetNumber());
    value.Set(number);
    return true;
}

// "(5)" is the number -5, and says in its format how it was written.
bool ParseBracketed(cells::LCTX * lctx, wchar_t const * text, CCCellValue & value) {
    CCCellValue number;
    if (!TakeUnsigned(lctx, ++text, number)) return false;
    _EatWhite(lctx, text);
    if (*text != L')' || !_IsEmpty(lctx, text + 1)) return false;
    number.Set(-number.GetNumber());
    number.GetFormat().SetNegBr(1);
    value.Set(number);
    return true;
}

bool ParsePlain(cells::LCTX * lctx, wchar_t const * text, CCCellValue & value) {
    CCCellValue number;
    if (!_EatNumber(lctx, text, number, 1) || !_IsEmpty(lctx, text)) return false;
    value.Set(number);
    return true;
}

} // namespace

cells::Entry cells::ReadEntry(CTX * ctx, CString const & text) {
    LCTX * const lctx = ctx->lctx();
    Entry entry;
    wchar_t const * at = text;
    _EatWhite(lctx, at);
    if (!*at || ParseError(ctx, at, entry.value)) return entry;
    switch (*at) {
    case L'\'':
        entry.value.Set(at + 1);
        return entry;
    case L'@':
    case L'=':
    case L'!':
        entry.kind = *at == L'!' ? kEntryEditSource : kEntryFormula;
        entry.formula = ParseWhole(ctx, *at == L'@' ? at : at + 1, 0);
        return entry;
    case L'+':
    case L'-':
        if (ParseSigned(lctx, at, entry.value)) return entry;
        entry.formula = ParseWhole(ctx, at, 0);
        if (!entry.formula) break;
        entry.kind = kEntryFormula;
        return entry;
    case L'(':
        if (ParseBracketed(lctx, at, entry.value)) return entry;
        [[fallthrough]];
    default:
        if (ParsePlain(lctx, at, entry.value)) return entry;
    }
    entry.value.Set(at);
    return entry;
}

int _Parse(cells::CTX * ctx, wchar_t const * text, CCCellValue & value, CCFormula *& formula,
           CCRef *) {
    CString const units(text); // splits what is above U+FFFF
    cells::Entry entry = cells::ReadEntry(ctx, units);
    formula = entry.formula.release();
    value.Release(); // texts and errors leave its format alone
    if (entry.value.IsNumber()) value.Set(entry.value);
    if (entry.value.IsText()) value.Set(entry.value.GetTextString());
    if (entry.value.IsError()) value.Set(entry.value.GetError());
    return entry.kind;
}

int Parse(cells::CTX * ctx, wchar_t * text, CCCellValue & value, CCFormula *& formula,
          CCRef * current) {
    return _Parse(ctx, text, value, formula, current);
}

CCFormula * _ParseFormula(cells::CTX * ctx, wchar_t const * text, int mode, CCRef *) {
    CString const units(text);
    return ParseWhole(ctx, units, mode).release();
}

CCFormula * ParseFormula(cells::CTX * ctx, wchar_t * text, int mode, CCRef * current) {
    return _ParseFormula(ctx, text, mode, current);
}

CCFormula * CVDOSParse(cells::CTX * ctx, wchar_t *& text) {
    cells::LCTX * const lctx = ctx->lctx();
    EatWhite(lctx, text);
    CCCellValue constant;
    switch (*text) {
    case 0:
    case L'*':
    case L'\'':
    case L'"':
        return nullptr;
    case L'+':
    case L'-':
        if (ParseSigned(lctx, text, constant)) return nullptr;
        break;
    case L'(':
        if (ParseBracketed(lctx, text, constant)) return nullptr;
        break;
    default:
        if (ParsePlain(lctx, text, constant)) return nullptr;
    }
    return ParseWhole(ctx, text, 0).release();
}

bool _IsFormulaPrefix(cells::LCTX * lctx, wchar_t const * text) {
    _EatWhite(lctx, text);
    return *text && CString(L"=@!+-(").Find(*text) >= 0;
}

bool IsFormulaPrefix(cells::LCTX * lctx, wchar_t * text) { return _IsFormulaPrefix(lctx, text); }

int yyparse(cells::CTX * ctx, wchar_t *& text, int mode, CCRef *) {
    wchar_t const * at = text;
    CCFormula * const tree = ParseTree(ctx, at, mode);
    text += at - text;
    if (!tree) return 1;
    yyresult = tree;
    return 0;
}

int yylex(cells::CTX * ctx, wchar_t *& text, int mode, CCRef *) {
    cells::internal::Lexer lexer(ctx, text, mode);
    cells::internal::Lexeme const lexeme = lexer.Next();
    text += lexer.Position() - text;
    return lexeme.token;
}

void yyerror(cells::CTX *, wchar_t *) {}
