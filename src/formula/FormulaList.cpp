#include "formula/FormulaList.h"

#include "context/Context.h"
#include "platform/Digits.h"

#include <algorithm>
#include <memory>
#include <new>
#include <ostream>

bool FormulaListHasItems(CCFormulaList const * list, int count) {
    for (; count > 0 && list; list = list->next) --count;
    return count == 0;
}

bool FormulaListHasExactly(CCFormulaList const * list, int count) {
    for (; count > 0 && list; list = list->next) --count;
    return count == 0 && !list;
}

namespace {

// A node before the list `next`. Both are freed where memory ends.
CCFormulaList * Prepend(CCFormula * formula, CCFormulaList * next) {
    try {
        return new CCFormulaList{formula, next};
    } catch (std::bad_alloc const &) {
        delete formula;
        FreeFormulaList(next, 1);
        throw;
    }
}

} // namespace

CCFormulaList * FormulaListCreate1Item(CCFormula * a) { return Prepend(a, nullptr); }

CCFormulaList * FormulaListCreate2Item(CCFormula * a, CCFormula * b) {
    std::unique_ptr<CCFormula> first(a);
    CCFormulaList * const rest = FormulaListCreate1Item(b);
    return Prepend(first.release(), rest);
}

CCFormulaList * FormulaListCreate3Item(CCFormula * a, CCFormula * b, CCFormula * c) {
    std::unique_ptr<CCFormula> first(a);
    CCFormulaList * const rest = FormulaListCreate2Item(b, c);
    return Prepend(first.release(), rest);
}

CCFormulaList * FormulaListAddLast(CCFormulaList ** list, CCFormula * formula) {
    CCFormulaList ** end = list;
    while (*end) end = &(*end)->next;
    *end = FormulaListCreate1Item(formula);
    return *list;
}

CCFormulaList * CopyFormulaList(CCFormulaList const * list) {
    cells::internal::FormulaListBuilder copy;
    for (; list; list = list->next) copy.Add(list->formula ? list->formula->Copy() : nullptr);
    return copy.Release();
}

void FreeFormulaList(CCFormulaList * list, int deleteFormulas) {
    while (list) {
        CCFormulaList * const next = list->next;
        if (deleteFormulas) delete list->formula;
        delete list;
        list = next;
    }
}

namespace {

using PrintItem = void (CCFormula::*)(cells::CTX *, std::wostream &, uchar) const;

void PrintItems(cells::CTX * ctx, std::wostream & stream, CCFormulaList const * list,
                uchar priority, int force, PrintItem print) {
    bool const brackets = force || FormulaList2Item(list);
    if (brackets) cells::WriteText(stream, L" (");
    for (CCFormulaList const * item = list; item; item = item->next) {
        if (item != list) {
            stream.put(ctx->lctx()->listSeparartor());
            stream.put(L' ');
        }
        (item->formula->*print)(ctx, stream, priority);
    }
    if (brackets) stream.put(L')');
}

} // namespace

void PrintFormulaList(cells::CTX * ctx, std::wostream & stream, CCFormulaList const * list,
                      uchar priority, int force) {
    PrintItems(ctx, stream, list, priority, force, &CCFormula::Print);
}

void PrintFormulaList2File(cells::CTX * ctx, std::wostream & stream, CCFormulaList const * list,
                           uchar priority, int force) {
    PrintItems(ctx, stream, list, priority, force, &CCFormula::Print2File);
}

namespace cells::internal {

int DepthOf(CCFormulaList const * list) {
    int depth = 0;
    for (; list; list = list->next)
        depth = std::max(depth, list->formula ? list->formula->GetDepth() : 0);
    return depth;
}

} // namespace cells::internal
