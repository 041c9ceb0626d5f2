#include "formula/internal/Lexer.h"

#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/CCRCRef.h"
#include "formula/FunctionRegistry.h"
#include "formula/Grammar.h"
#include "formula/Scanners.h"
#include "platform/Text.h"

namespace cells::internal {
namespace {

bool ContinuesWord(wchar_t unit) { return unit && (IsAlnum(unit) || unit == L'_'); }

} // namespace

int Lexer::Glyph(int token, int length) {
    m_At += length;
    return token;
}

Lexeme Lexer::Next() {
    LCTX * const lctx = m_Ctx->lctx();
    _EatWhite(lctx, m_At);
    Lexeme lexeme;
    if (!*m_At) return lexeme;
    // Separators come first: one that is also an operator means the separator.
    if (*m_At == lctx->listSeparartor()) {
        lexeme.token = Glyph(SEP, 1);
    } else if (*m_At == lctx->listSeparartor2()) {
        lexeme.token = Glyph(SEP2, 1);
    } else if (!TakeError(lexeme) && !TakeGlyph(lexeme) && !TakeConstant(lexeme) &&
               !TakeFunction(lexeme) && !TakeSheetName(lexeme) && !TakeReference(lexeme)) {
        bool const bracket = *m_At == L'(' || *m_At == L')' || *m_At == L'{' || *m_At == L'}';
        lexeme.token = Glyph(bracket ? int(*m_At) : int(UNKNOWN), 1);
    }
    return lexeme;
}

bool Lexer::TakeGlyph(Lexeme & lexeme) {
    wchar_t const next = m_At[1];
    int & token = lexeme.token;
    switch (*m_At) {
    case L'+':
        token = Glyph(ADD, 1);
        return true;
    case L'-':
        token = Glyph(SUB, 1);
        return true;
    case L'%':
        token = Glyph(PERCENT, 1);
        return true;
    case L'^':
        token = Glyph(POW, 1);
        return true;
    case L'*':
        token = Glyph(MUL, 1);
        return true;
    case L'/':
        token = Glyph(DIV, 1);
        return true;
    case L'&':
        token = Glyph(AND, 1);
        return true;
    case L'|':
        token = Glyph(OR, 1);
        return true;
    case L':':
        token = Glyph(COLON, 1);
        return true;
    case L'!':
        token = Glyph(BANG, 1);
        return true;
    case L'@':
        token = Glyph(AT, 1);
        return true;
    case L'~':
        token = next == L'=' ? Glyph(NE, 2) : Glyph(NOT, 1);
        return true;
    case L'<':
        token = next == L'=' ? Glyph(LE, 2) : next == L'>' ? Glyph(NE, 2) : Glyph(LT, 1);
        return true;
    case L'>':
        token = next == L'=' ? Glyph(GE, 2) : Glyph(GT, 1);
        return true;
    case L'=':
        if (next == L'<')
            token = Glyph(LE, 2);
        else if (next == L'>')
            token = Glyph(GE, 2);
        else
            token = Glyph(EQ, next == L'=' ? 2 : 1);
        return true;
    case L'.':
        // A point before a digit begins a number where it is the decimal separator.
        if (next == L'.')
            token = Glyph(DOTS, 2);
        else if (IsDigit(next) && m_Ctx->lctx()->numberDeciamalSeparartor() == L'.')
            return false;
        else
            token = Glyph(BANG, 1);
        return true;
    default:
        return false;
    }
}

bool Lexer::TakeError(Lexeme & lexeme) {
    CCCellManager const * const manager = m_Ctx->manager();
    if (!manager || !manager->ReadsErrorTexts()) return false;
    int const error = EatErrorText(m_At);
    if (!error) return false;
    lexeme.formula = std::make_unique<CCConstFormula>(error);
    lexeme.token = ERROR;
    return true;
}

bool Lexer::TakeConstant(Lexeme & lexeme) {
    CCCellValue value;
    if (!_EatConstant(m_Ctx->lctx(), m_At, value)) return false;
    lexeme.formula = std::make_unique<CCConstFormula>(value);
    lexeme.token = CONST;
    return true;
}

// The longest name decides: when a word goes on after it, no shorter one is tried.
bool Lexer::TakeFunction(Lexeme & lexeme) {
    wchar_t const * at = m_At;
    CCFunc * const func =
        TakeFunctionName(m_Mode == 0 ? NameTable::kLocal : NameTable::kEnglish, at, kFunction);
    if (!func || ContinuesWord(*at) || *at == L'$') return false;
    m_At = at;
    lexeme.func = func;
    lexeme.token = FUNC;
    return true;
}

bool Lexer::TakeSheetName(Lexeme & lexeme) {
    lexeme.name.reset(_EatName(m_Ctx, m_At));
    if (!lexeme.name) return false;
    lexeme.token = NAME;
    return true;
}

bool Lexer::TakeReference(Lexeme & lexeme) {
    wchar_t const * at = m_At;
    uchar flags = 0;
    std::unique_ptr<CCRef> ref = TakeAddress(at, flags);
    if (!ref) {
        CCRef * name = nullptr;
        if (!_EatNameRef(m_Ctx, at, name, flags)) return false;
        ref.reset(name);
    }
    m_At = at;
    lexeme.formula = std::make_unique<CCRefFormula>(ref.get(), flags);
    lexeme.token = REF;
    return true;
}

// A cell, or a region whose second corner is an address to its end; where that is a longer word,
// the first corner stands alone. Null for a word that only begins like an address.
std::unique_ptr<CCRef> Lexer::TakeAddress(wchar_t const *& at, uchar & flags) {
    CCCellManager const * const manager = m_Ctx->manager();
    if (!manager || manager->GetType() != 1) return nullptr;
    wchar_t const * end = at;
    CCRef * found = nullptr;
    if (!_EatSpreadRef(m_Ctx, end, found, flags)) return nullptr;
    std::unique_ptr<CCRef> ref(found);
    if (ContinuesWord(*end)) {
        if (ref->GetType() != kRefRegion) return nullptr;
        uchar col;
        ushort row;
        end = at;
        _EatRC(m_Ctx, end, col, row, flags);
        ref = std::make_unique<CCRCRef>(col, row);
    }
    at = end;
    return ref;
}

} // namespace cells::internal
