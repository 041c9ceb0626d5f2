// The lexer of the formula language, and what it shares with the grammar.
#pragma once

#include "formula/CCConstFormula.h"
#include "formula/CCFunc.h"
#include "formula/CCRefFormula.h"
#include "platform/HeapText.h"

#include <memory>

namespace cells::internal {

// A token and what it carries.
struct Lexeme {
    int token = 0;
    std::unique_ptr<CCFormula> formula; // constants and references
    HeapText name;                      // sheet names
    CCFunc * func = nullptr;
};

class Lexer {
public:
    // Mode 0 reads local function names, any other English ones.
    Lexer(CTX * ctx, wchar_t const * text, int mode) : m_Ctx(ctx), m_At(text), m_Mode(mode) {}

    Lexeme Next();
    wchar_t const * Position() const { return m_At; }

private:
    bool TakeGlyph(Lexeme & lexeme);
    bool TakeError(Lexeme & lexeme);
    bool TakeConstant(Lexeme & lexeme);
    bool TakeFunction(Lexeme & lexeme);
    bool TakeSheetName(Lexeme & lexeme);
    bool TakeReference(Lexeme & lexeme);
    std::unique_ptr<CCRef> TakeAddress(wchar_t const *& at, uchar & flags);
    int Glyph(int token, int length);

    CTX * m_Ctx;
    wchar_t const * m_At;
    int m_Mode;
};

// Parses from `text` to its end or to an error: the tree, or null. The text moves behind the last
// token read. The parser keeps its state in objects of its own, so that it may be entered again.
CCFormula * ParseTree(CTX * ctx, wchar_t const *& text, int mode);

} // namespace cells::internal
