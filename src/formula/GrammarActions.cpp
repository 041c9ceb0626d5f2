#include "formula/GrammarActions.h"

#include "formula/Grammar.h"

#include <memory>

namespace cells::internal {
namespace {

CCFormula * WithinDepth(CCFormula * node) {
    if (node && node->GetDepth() <= kMaxFormulaDepth) return node;
    delete node;
    return nullptr;
}

} // namespace

CCFormula * Combine(Operator op, CCFormula * left, CCFormula * right) {
    return WithinDepth(ConstructOpFormula(OperatorObject(op), left, right));
}

CCFormula * Apply(Operator op, CCFormula * argument) {
    return WithinDepth(ConstructOpFormula(OperatorObject(op), argument));
}

CCFormula * Call(CCFunc * func, FormulaListBuilder * args) {
    std::unique_ptr<FormulaListBuilder> const owned(args);
    return WithinDepth(ConstructOpFormula(func, owned ? owned->Release() : nullptr));
}

CCFormula * SheetCorners(CCFormula * sheet, CCFormula * ref, CCFormula * sheet2, CCFormula * ref2) {
    CCFormula * const first = Combine(Operator::kFullRef, sheet, ref);
    CCFormula * const last = Combine(Operator::kFullRef, sheet2, ref2);
    if (first && last) return Combine(Operator::kSheetRange, first, last);
    delete first;
    delete last;
    return nullptr;
}

CCFormula * Sheet(wchar_t * name) {
    return ConstructOpFormula(OperatorObject(Operator::kSheetRange), name);
}

CCFormula * SheetRun(wchar_t * first, wchar_t * last) {
    return ConstructOpFormula(OperatorObject(Operator::kSheetRange), first, last);
}

CCFormula * MakeArray(ArrayBuilder * rows) {
    std::unique_ptr<ArrayBuilder> const owned(rows);
    return new CCConstArrayFormula(owned->Release());
}

CCCellValue * TakeValue(CCFormula * constant) {
    std::unique_ptr<CCFormula> const owned(constant);
    return new CCCellValue(static_cast<CCConstFormula *>(constant)->GetValue());
}

CCCellValue * Negated(CCCellValue * value) {
    if (value->IsNumber()) value->Set(-value->GetNumber());
    return value;
}

CCCellValue * AsPercent(CCCellValue * value) {
    if (value->IsNumber()) value->Set(value->GetNumber() / 100, uchar(C_NF_PERCENT));
    return value;
}

} // namespace cells::internal

// The parser's only way to its tokens; the union takes over what the lexeme owns.
int cells_grammar_lex(CELLS_GRAMMAR_STYPE * value, cells::internal::ParserState & state) {
    cells::internal::Lexeme lexeme = state.lexer.Next();
    switch (lexeme.token) {
    case CONST:
    case REF:
        value->formula = lexeme.formula.release();
        break;
    case FUNC:
        value->func = lexeme.func;
        break;
    case NAME:
        value->name = lexeme.name.release();
        break;
    default:
        break;
    }
    return lexeme.token;
}

void cells_grammar_error(cells::internal::ParserState &, char const *) {}
