// Lists of values, and the rectangular constants that the parser builds from them.
#pragma once

#include "platform/Geometry.h"
#include "values/CCCellValue.h"

// A node with a null value marks the end of a row, so that one list carries a rectangle.
struct SCCellValueList {
    CCCellValue * m_pValue;
    SCCellValueList * m_pNext;
};

// The lists take their values over; CellValueListFree destroys them when told to.
CVCELLS_API SCCellValueList * CellValueListCreate(CCCellValue * value);
CVCELLS_API void CellValueListAddLast(SCCellValueList *& list, CCCellValue * value);
// Appends a row mark and hangs `row` behind it.
CVCELLS_API void CellValueListAddRow(SCCellValueList *& list, SCCellValueList * row);
CVCELLS_API void CellValueListFree(SCCellValueList * list, int deleteValues);

// Width: the longest run between row marks. Height: the marks plus 1. A null list is 0 by 0.
CVCELLS_API CSize CalcCellValueArraySize(SCCellValueList const * list);
