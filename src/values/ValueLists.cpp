#include "values/ValueLists.h"

#include <algorithm>

namespace {

SCCellValueList ** EndOf(SCCellValueList *& list) {
    SCCellValueList ** end = &list;
    while (*end) end = &(*end)->m_pNext;
    return end;
}

} // namespace

SCCellValueList * CellValueListCreate(CCCellValue * value) {
    return new SCCellValueList{value, nullptr};
}

void CellValueListAddLast(SCCellValueList *& list, CCCellValue * value) {
    *EndOf(list) = CellValueListCreate(value);
}

void CellValueListAddRow(SCCellValueList *& list, SCCellValueList * row) {
    *EndOf(list) = new SCCellValueList{nullptr, row};
}

void CellValueListFree(SCCellValueList * list, int deleteValues) {
    while (list) {
        SCCellValueList * const next = list->m_pNext;
        if (deleteValues) delete list->m_pValue;
        delete list;
        list = next;
    }
}

CSize CalcCellValueArraySize(SCCellValueList const * list) {
    if (!list) return {0, 0};
    int width = 0, height = 1, run = 0;
    for (; list; list = list->m_pNext) {
        if (list->m_pValue) {
            width = std::max(width, ++run);
        } else {
            ++height;
            run = 0;
        }
    }
    return {width, height};
}
