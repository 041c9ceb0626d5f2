#include "formula/CCRCRef.h"

#include "formula/Clipboard.h"
#include "formula/ReferenceText.h"
#include "formula/internal/HandOver.h"

int CCRCRef::IsEqual(CCRef const * other) const {
    return other && other->GetType() == kRefCell &&
           AreRCEqual(*this, *static_cast<CCRCRef const *>(other));
}

void CCRCRef::Print(cells::CTX *, std::wostream & stream, uchar mode) const {
    cells::internal::PrintCorner(stream, col, row, mode);
}

void CCRCRef::Update(cells::CTX *, CCRef const * from, CCRef const * to, uchar flags) {
    if (!from || !to || from->GetType() != kRefCell || to->GetType() != kRefCell) return;
    auto const & a = *static_cast<CCRCRef const *>(from);
    auto const & b = *static_cast<CCRCRef const *>(to);
    int const column = flags & cells::kAbsoluteColumn ? col : col + b.col - a.col;
    int const line = flags & cells::kAbsoluteRow ? row : row + b.row - a.row;
    if (column < 0 || column > cells::kMaxColumn || line < 0 || line > cells::kMaxRow) throw 1;
    Set(uchar(column), ushort(line));
}

void CCRCRef::UpdateInPaste(cells::CTX *, CCClipboardData const * clip) {
    CPoint const place = cells::internal::PastedPlace(*clip, col, row);
    Set(place);
}

int CCRCRef::IsInside(CCRef const * other) const {
    if (!other) return 0;
    if (other->GetType() == kRefCell) return IsEqual(other);
    return cells::internal::AskContain(other, this);
}

int CCRCRef::IsInside(CRect const & rect) const {
    return col >= rect.left && col <= rect.right && row >= rect.top && row <= rect.bottom;
}

int CCRCRef::Compare(CCRef const * other) const {
    if (!other) return 1;
    if (other->GetType() != kRefCell) return -other->Compare(this);
    auto const & cell = *static_cast<CCRCRef const *>(other);
    if (row != cell.row) return row < cell.row ? -1 : 1;
    if (col != cell.col) return col < cell.col ? -1 : 1;
    return 0;
}

void CCRCRef::Move(long dx, long dy) {
    col = uchar(col + dx);
    row = ushort(row + dy);
}

int CCRCRef::Contain(CCRef const * other) const { return IsEqual(other); }

bool AreRCEqual(CCRCRef const & a, CCRCRef const & b) { return AreRCEqual(a, b.col, b.row); }

bool AreRCEqual(CCRCRef const & a, uchar col, ushort row) { return a.col == col && a.row == row; }
