#include "formula/CCRegionRef.h"

#include "formula/CCRCRef.h"
#include "formula/Clipboard.h"
#include "formula/ReferenceText.h"
#include "formula/internal/HandOver.h"

#include <ostream>
#include <utility>

namespace {

CRect RectOf(CCRegionRef const & region) {
    CRect rect;
    region.Get(rect);
    return rect;
}

bool HoldsColumns(CRect const & a, CRect const & b) {
    return a.left <= b.left && b.right <= a.right;
}
bool HoldsRows(CRect const & a, CRect const & b) { return a.top <= b.top && b.bottom <= a.bottom; }
bool Holds(CRect const & a, CRect const & b) { return HoldsColumns(a, b) && HoldsRows(a, b); }

bool IsOutside(int value, int largest) { return value < 0 || value > largest; }

} // namespace

void CCRegionRef::Set(CRect const & rect) {
    left = uchar(rect.left);
    top = ushort(rect.top);
    right = uchar(rect.right);
    bottom = ushort(rect.bottom);
}

void CCRegionRef::Normalize() {
    if (!IsNormalH()) std::swap(left, right);
    if (!IsNormalV()) std::swap(top, bottom);
}

void CCRegionRef::Resize(long dx, long dy) {
    right = uchar(right + dx);
    bottom = ushort(bottom + dy);
}

void CCRegionRef::Move(long dx, long dy) {
    left = uchar(left + dx);
    top = ushort(top + dy);
    Resize(dx, dy);
}

int CCRegionRef::IsEqual(CCRef const * other) const {
    return other && other->GetType() == kRefRegion &&
           AreRegionEqual(*this, *static_cast<CCRegionRef const *>(other));
}

void CCRegionRef::Print(cells::CTX *, std::wostream & stream, uchar mode) const {
    cells::internal::PrintCorner(stream, left, top, mode);
    stream.put(L':');
    cells::internal::PrintCorner(stream, right, bottom, uchar(mode >> 2));
}

// Columns are stored before they are tested, rows are tested before they are stored: a region that
// leaves the grid downwards has its columns moved already.
void CCRegionRef::Update(cells::CTX *, CCRef const * from, CCRef const * to, uchar flags) {
    if (!from || !to || from->GetType() != kRefCell || to->GetType() != kRefCell) return;
    auto const & a = *static_cast<CCRCRef const *>(from);
    auto const & b = *static_cast<CCRCRef const *>(to);
    int const dx = b.col - a.col, dy = b.row - a.row;
    int const l = left + (flags & cells::kAbsoluteColumn ? 0 : dx);
    int const r = right + (flags & cells::kAbsoluteColumn2 ? 0 : dx);
    int const t = top + (flags & cells::kAbsoluteRow ? 0 : dy);
    int const d = bottom + (flags & cells::kAbsoluteRow2 ? 0 : dy);
    left = uchar(l);
    right = uchar(r);
    if (IsOutside(l, cells::kMaxColumn) || IsOutside(r, cells::kMaxColumn)) throw 1;
    if (IsOutside(t, cells::kMaxRow) || IsOutside(d, cells::kMaxRow)) throw 1;
    top = ushort(t);
    bottom = ushort(d);
    Normalize();
}

void CCRegionRef::UpdateInPaste(cells::CTX *, CCClipboardData const * clip) {
    CPoint const first = cells::internal::PastedPlace(*clip, left, top);
    CPoint const last = cells::internal::PastedPlace(*clip, right, bottom);
    Set(CRect(first.x, first.y, last.x, last.y));
}

int CCRegionRef::IsInside(CCRef const * other) const {
    if (!other) return 0;
    if (other->GetType() == kRefRegion)
        return ::Contain(*static_cast<CCRegionRef const *>(other), *this);
    if (other->GetType() != kRefCell) return cells::internal::AskContain(other, this);
    auto const & cell = *static_cast<CCRCRef const *>(other);
    return IsSingle() && left == cell.col && top == cell.row;
}

int CCRegionRef::IsInside(CRect const & rect) const { return ::Contain(rect, *this); }

int CCRegionRef::Contain(CCRef const * other) const {
    if (!other) return 0;
    if (other->GetType() == kRefRegion)
        return ::Contain(*this, *static_cast<CCRegionRef const *>(other));
    if (other->GetType() == kRefCell) return other->IsInside(RectOf(*this));
    return cells::internal::AskIsInside(other, this);
}

int CCRegionRef::Compare(CCRef const * other) const {
    if (!other || other->GetType() == kRefCell) return 1;
    if (other->GetType() != kRefRegion) return -other->Compare(this);
    auto const & region = *static_cast<CCRegionRef const *>(other);
    if (top > region.top) return 1;
    if (bottom < region.bottom || top < region.top) return -1;
    if (bottom > region.bottom) return 1;
    if (left > region.left) return 1;
    if (right < region.right || left < region.left) return -1;
    return right > region.right ? 1 : 0;
}

bool AreRegionEqual(CCRegionRef const & a, CCRegionRef const & b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

bool AreRegionEqualRect(CCRegionRef const & a, CRect const & b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

bool Contain(CRect const & a, CCRegionRef const & b) { return Holds(a, RectOf(b)); }
bool Contain(CCRegionRef const & a, CRect const & b) { return Holds(RectOf(a), b); }
bool Contain(CCRegionRef const & a, CCRegionRef const & b) { return Holds(RectOf(a), RectOf(b)); }
bool ContainH(CRect const & a, CCRegionRef const & b) { return HoldsColumns(a, RectOf(b)); }
bool ContainH(CCRegionRef const & a, CRect const & b) { return HoldsColumns(RectOf(a), b); }
bool ContainH(CCRegionRef const & a, CCRegionRef const & b) {
    return HoldsColumns(RectOf(a), RectOf(b));
}
bool ContainV(CRect const & a, CCRegionRef const & b) { return HoldsRows(a, RectOf(b)); }
bool ContainV(CCRegionRef const & a, CRect const & b) { return HoldsRows(RectOf(a), b); }
bool ContainV(CCRegionRef const & a, CCRegionRef const & b) {
    return HoldsRows(RectOf(a), RectOf(b));
}
