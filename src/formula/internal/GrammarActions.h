// What the grammar builds, and how it reads its tokens.
#pragma once

#include "formula/CCConstFormula.h"
#include "formula/CCOpFormula.h"
#include "formula/OperatorObjects.h"
#include "formula/internal/Lexer.h"
#include "values/ValueLists.h"

#include <cstdlib>
#include <memory>

namespace cells::internal {

struct ParserState {
    ParserState(CTX * ctx, wchar_t const * text, int mode) : lexer(ctx, text, mode) {}
    Lexer lexer;
    std::unique_ptr<CCFormula> result;
    bool outOfMemory = false; // an action or the lexer failed for want of memory
};

// The values of a constant array, row after row.
class ArrayBuilder {
public:
    ArrayBuilder() = default;
    ArrayBuilder(ArrayBuilder const &) = delete;
    ArrayBuilder & operator=(ArrayBuilder const &) = delete;
    ~ArrayBuilder() { CellValueListFree(m_Head, 1); }

    void Add(std::unique_ptr<CCCellValue> value) {
        Append(CellValueListCreate(value.get()));
        value.release();
    }
    void EndRow() { Append(CellValueListCreate(nullptr)); }
    SCCellValueList * Release() {
        SCCellValueList * list = m_Head;
        m_Head = nullptr;
        return list;
    }

private:
    void Append(SCCellValueList * node) {
        *m_End = node;
        m_End = &node->m_pNext;
    }

    SCCellValueList * m_Head = nullptr;
    SCCellValueList ** m_End = &m_Head;
};

// All take their parts over, also where they give null: for a tree that would be too deep, and
// without memory.
CCFormula * Combine(ParserState & state, Operator op, CCFormula * left, CCFormula * right);
CCFormula * Apply(ParserState & state, Operator op, CCFormula * argument);
CCFormula * Call(ParserState & state, CCFunc * func, FormulaListBuilder * args);
CCFormula * SheetCorners(ParserState & state, CCFormula * sheet, CCFormula * ref,
                         CCFormula * sheet2, CCFormula * ref2);
CCFormula * Sheet(ParserState & state, wchar_t * name);
CCFormula * SheetRun(ParserState & state, wchar_t * first, wchar_t * last);
CCFormula * MakeArray(ParserState & state, ArrayBuilder * rows);

// The first argument or item makes its list.
FormulaListBuilder * AddArgument(ParserState & state, FormulaListBuilder * list,
                                 CCFormula * argument);
ArrayBuilder * AddItem(ParserState & state, ArrayBuilder * rows, CCCellValue * item, bool newRow);

CCCellValue * TakeValue(ParserState & state, CCFormula * constant);
CCCellValue * Negated(CCCellValue * value);
void AsPercent(CCCellValue * value);

} // namespace cells::internal
