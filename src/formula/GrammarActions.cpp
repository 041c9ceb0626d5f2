#include "formula/internal/GrammarActions.h"

#include "formula/Grammar.h"

#include <memory>
#include <new>

namespace cells::internal {
namespace {

// What `make` gives, or null where memory ends.
template <typename Make>
auto Guarded(ParserState & state, Make && make) -> decltype(make()) {
    try {
        return make();
    } catch (std::bad_alloc const &) {
        state.outOfMemory = true;
        return nullptr;
    }
}

template <typename... Parts>
CCFormula * MakeNode(ParserState & state, CCFunc * func, Parts... parts) {
    CCFormula * const node = Guarded(state, [&] { return ConstructOpFormula(func, parts...); });
    if (node && node->GetDepth() <= kMaxFormulaDepth) return node;
    delete node;
    return nullptr;
}

} // namespace

CCFormula * Combine(ParserState & state, Operator op, CCFormula * left, CCFormula * right) {
    return MakeNode(state, OperatorObject(op), left, right);
}

CCFormula * Apply(ParserState & state, Operator op, CCFormula * argument) {
    return MakeNode(state, OperatorObject(op), argument);
}

CCFormula * Call(ParserState & state, CCFunc * func, FormulaListBuilder * args) {
    std::unique_ptr<FormulaListBuilder> const owned(args);
    return MakeNode(state, func, owned ? owned->Release() : nullptr);
}

CCFormula * SheetCorners(ParserState & state, CCFormula * sheet, CCFormula * ref,
                         CCFormula * sheet2, CCFormula * ref2) {
    CCFormula * const first = Combine(state, Operator::kFullRef, sheet, ref);
    CCFormula * const last = Combine(state, Operator::kFullRef, sheet2, ref2);
    if (first && last) return Combine(state, Operator::kSheetRange, first, last);
    delete first;
    delete last;
    return nullptr;
}

CCFormula * Sheet(ParserState & state, wchar_t * name) {
    return MakeNode(state, OperatorObject(Operator::kSheetRange), name);
}

CCFormula * SheetRun(ParserState & state, wchar_t * first, wchar_t * last) {
    return MakeNode(state, OperatorObject(Operator::kSheetRange), first, last);
}

CCFormula * MakeArray(ParserState & state, ArrayBuilder * rows) {
    std::unique_ptr<ArrayBuilder> const owned(rows);
    return Guarded(state,
                   [&]() -> CCFormula * { return new CCConstArrayFormula(owned->Release()); });
}

FormulaListBuilder * AddArgument(ParserState & state, FormulaListBuilder * list,
                                 CCFormula * argument) {
    std::unique_ptr<FormulaListBuilder> owned(list);
    std::unique_ptr<CCFormula> formula(argument);
    return Guarded(state, [&] {
        if (!owned) owned = std::make_unique<FormulaListBuilder>();
        owned->Add(formula.release());
        return owned.release();
    });
}

ArrayBuilder * AddItem(ParserState & state, ArrayBuilder * rows, CCCellValue * item, bool newRow) {
    std::unique_ptr<ArrayBuilder> owned(rows);
    std::unique_ptr<CCCellValue> value(item);
    return Guarded(state, [&] {
        if (!owned) owned = std::make_unique<ArrayBuilder>();
        if (newRow) owned->EndRow();
        owned->Add(std::move(value));
        return owned.release();
    });
}

CCCellValue * TakeValue(ParserState & state, CCFormula * constant) {
    std::unique_ptr<CCFormula> const owned(constant);
    return Guarded(state, [&] {
        return new CCCellValue(static_cast<CCConstFormula *>(constant)->GetValue());
    });
}

CCCellValue * Negated(CCCellValue * value) {
    if (value->IsNumber()) value->Set(-value->GetNumber());
    return value;
}

void AsPercent(CCCellValue * value) {
    if (value->IsNumber()) value->Set(value->GetNumber() / 100, uchar(C_NF_PERCENT));
}

} // namespace cells::internal

// The parser's only way to its tokens; the union takes over what the lexeme owns.
int cells_grammar_lex(CELLS_GRAMMAR_STYPE * value, cells::internal::ParserState & state) {
    cells::internal::Lexeme lexeme;
    try {
        lexeme = state.lexer.Next();
    } catch (std::bad_alloc const &) {
        state.outOfMemory = true;
        return UNKNOWN;
    }
    switch (lexeme.token) {
    case CONST:
    case REF:
    case ERROR:
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
