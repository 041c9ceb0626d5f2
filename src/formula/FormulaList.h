// CCFormulaList: the arguments of a call, a singly linked list that owns its formulas. An empty
// list is null.
#pragma once

#include "formula/CCFormula.h"
#include "platform/NodePool.h"

struct CVCELLS_API CCFormulaList : cells::internal::Pooled<CCFormulaList> {
    CCFormulaList(CCFormula * item, CCFormulaList * rest) : formula(item), next(rest) {}

    CCFormula * formula;
    CCFormulaList * next;
};

// At least N items, and exactly N items.
CVCELLS_API bool FormulaListHasItems(CCFormulaList const * list, int count);
CVCELLS_API bool FormulaListHasExactly(CCFormulaList const * list, int count);
inline bool FormulaList0Item(CCFormulaList const *) { return true; }
inline bool FormulaList1Item(CCFormulaList const * list) { return FormulaListHasItems(list, 1); }
inline bool FormulaList2Item(CCFormulaList const * list) { return FormulaListHasItems(list, 2); }
inline bool FormulaList3Item(CCFormulaList const * list) { return FormulaListHasItems(list, 3); }
inline bool FormulaList4Item(CCFormulaList const * list) { return FormulaListHasItems(list, 4); }
inline bool FormulaList5Item(CCFormulaList const * list) { return FormulaListHasItems(list, 5); }
inline bool FormulaList6Item(CCFormulaList const * list) { return FormulaListHasItems(list, 6); }
inline bool FormulaList7Item(CCFormulaList const * list) { return FormulaListHasItems(list, 7); }
inline bool FormulaList8Item(CCFormulaList const * list) { return FormulaListHasItems(list, 8); }
inline bool FormulaList0ItemEx(CCFormulaList const * list) {
    return FormulaListHasExactly(list, 0);
}
inline bool FormulaList1ItemEx(CCFormulaList const * list) {
    return FormulaListHasExactly(list, 1);
}
inline bool FormulaList2ItemEx(CCFormulaList const * list) {
    return FormulaListHasExactly(list, 2);
}
inline bool FormulaList3ItemEx(CCFormulaList const * list) {
    return FormulaListHasExactly(list, 3);
}
inline bool FormulaList4ItemEx(CCFormulaList const * list) {
    return FormulaListHasExactly(list, 4);
}
inline bool FormulaList5ItemEx(CCFormulaList const * list) {
    return FormulaListHasExactly(list, 5);
}
inline bool FormulaList6ItemEx(CCFormulaList const * list) {
    return FormulaListHasExactly(list, 6);
}
inline bool FormulaList7ItemEx(CCFormulaList const * list) {
    return FormulaListHasExactly(list, 7);
}
inline bool FormulaList8ItemEx(CCFormulaList const * list) {
    return FormulaListHasExactly(list, 8);
}

inline CCFormulaList * FormulaListCreateEmpty() { return nullptr; }
CVCELLS_API CCFormulaList * FormulaListCreate1Item(CCFormula * a);
CVCELLS_API CCFormulaList * FormulaListCreate2Item(CCFormula * a, CCFormula * b);
CVCELLS_API CCFormulaList * FormulaListCreate3Item(CCFormula * a, CCFormula * b, CCFormula * c);
CVCELLS_API CCFormulaList * FormulaListAddLast(CCFormulaList ** list,
                                               CCFormula * formula); // the head
CVCELLS_API CCFormulaList * CopyFormulaList(CCFormulaList const * list);
CVCELLS_API void FreeFormulaList(CCFormulaList * list, int deleteFormulas);

CVCELLS_API CCFormulaList * FormulaListRead(cells::CTX * ctx, CArchive & ar);
CVCELLS_API void FormulaListWrite(cells::CTX * ctx, CCFormulaList const * list, CArchive & ar);

// The items joined by the locale's list separator and a blank; in brackets when there are two or
// more, or when `force` is set. The second form uses English names.
CVCELLS_API void PrintFormulaList(cells::CTX * ctx, std::wostream & stream,
                                  CCFormulaList const * list, uchar priority, int force);
CVCELLS_API void PrintFormulaList2File(cells::CTX * ctx, std::wostream & stream,
                                       CCFormulaList const * list, uchar priority, int force);

namespace cells::internal {

// The deepest item's depth, 0 for an empty list.
int DepthOf(CCFormulaList const * list);

// Builds a list from front to back in constant time an item; frees what is left in it.
class FormulaListBuilder {
public:
    FormulaListBuilder() = default;
    FormulaListBuilder(FormulaListBuilder const &) = delete;
    FormulaListBuilder & operator=(FormulaListBuilder const &) = delete;
    ~FormulaListBuilder() { FreeFormulaList(m_Head, 1); }

    void Add(CCFormula * formula) {
        *m_End = FormulaListCreate1Item(formula);
        m_End = &(*m_End)->next;
    }
    CCFormulaList * First() const { return m_Head; }
    CCFormulaList * Release() {
        CCFormulaList * list = m_Head;
        m_Head = nullptr;
        m_End = &m_Head;
        return list;
    }

private:
    CCFormulaList * m_Head = nullptr;
    CCFormulaList ** m_End = &m_Head;
};

} // namespace cells::internal
