// What the grammar builds, and how it reads its tokens.
#pragma once

#include "core/ValueLists.h"
#include "formula/CCConstFormula.h"
#include "formula/CCOpFormula.h"
#include "formula/Lexer.h"
#include "formula/OperatorObjects.h"

#include <cstdlib>

namespace cells::internal {

struct ParserState {
    ParserState(CTX * ctx, wchar_t const * text, int mode) : lexer(ctx, text, mode) {}
    Lexer lexer;
    std::unique_ptr<CCFormula> result;
};

// The values of a constant array, row after row.
class ArrayBuilder {
public:
    ArrayBuilder() = default;
    ArrayBuilder(ArrayBuilder const &) = delete;
    ArrayBuilder & operator=(ArrayBuilder const &) = delete;
    ~ArrayBuilder() { CellValueListFree(m_Head, 1); }

    void Add(CCCellValue * value) { Append(CellValueListCreate(value)); }
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

// Nodes take their parts over. A tree that would be too deep is deleted, and null is given.
CCFormula * Combine(Operator op, CCFormula * left, CCFormula * right);
CCFormula * Apply(Operator op, CCFormula * argument);
CCFormula * Call(CCFunc * func, FormulaListBuilder * args);
CCFormula * SheetCorners(CCFormula * sheet, CCFormula * ref, CCFormula * sheet2, CCFormula * ref2);
CCFormula * Sheet(wchar_t * name);
CCFormula * SheetRun(wchar_t * first, wchar_t * last);
CCFormula * MakeArray(ArrayBuilder * rows);

CCCellValue * TakeValue(CCFormula * constant);
CCCellValue * Negated(CCCellValue * value);
CCCellValue * AsPercent(CCCellValue * value);

} // namespace cells::internal
