// CCRegionRef: a rectangle of cells; all four sides belong to it.
//
// It is normal when left <= right and top <= bottom. Parsing and Update leave it normal; the moving
// and sizing operations do not check, and Normalize swaps what is out of order.
#pragma once

#include "formula/CCRef.h"

class CVCELLS_API CCRegionRef : public CCRef {
public:
    CCRegionRef() : CCRef(kRefRegion) {}
    CCRegionRef(uchar l, ushort t, uchar r, ushort b)
        : CCRef(kRefRegion), left(l), right(r), top(t), bottom(b) {}
    explicit CCRegionRef(CRect const & rect) : CCRef(kRefRegion) { Set(rect); }

    void Set(CCRegionRef const & other) { *this = other; }
    void Set(uchar l, ushort t, uchar r, ushort b) { *this = CCRegionRef(l, t, r, b); }
    void Set(CRect const & rect); // truncates to the width of the grid
    void Get(CRect & rect) const { rect = CRect(left, top, right, bottom); }

    void Normalize();
    bool IsNormal() const { return IsNormalH() && IsNormalV(); }
    bool IsNormalH() const { return left <= right; }
    bool IsNormalV() const { return top <= bottom; }
    bool IsSingle() const { return left == right && top == bottom; }
    // The second corner moves.
    void Resize(long dx, long dy);
    void ResizeH(long dx) { Resize(dx, 0); }
    void ResizeV(long dy) { Resize(0, dy); }
    void MoveH(long dx) { Move(dx, 0); }
    void MoveV(long dy) { Move(0, dy); }

    int GetType() const override { return kRefRegion; }
    int IsEqual(CCRef const * other) const override;
    void Print(cells::CTX * ctx, std::wostream & stream, uchar mode) const override;
    CCRef * Copy() const override { return new CCRegionRef(*this); }
    void Update(cells::CTX * ctx, CCRef const * from, CCRef const * to, uchar flags) override;
    void UpdateInPaste(cells::CTX * ctx, CCClipboardData const * clip) override;
    int IsInside(CCRef const * other) const override;
    int IsInside(CRect const & rect) const override;
    int IsSingleValue(cells::CTX *) const override { return IsSingle(); }
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) const override;
    int Compare(CCRef const * other) const override;
    void Move(long dx, long dy) override;
    int Contain(CCRef const * other) const override;

    uchar left = 0, right = 0;
    ushort top = 0, bottom = 0;
};

CVCELLS_API bool AreRegionEqual(CCRegionRef const & a, CCRegionRef const & b);
CVCELLS_API bool AreRegionEqualRect(CCRegionRef const & a, CRect const & b);

// Whether the first wholly holds the second; H compares the columns only, V the rows only.
CVCELLS_API bool Contain(CRect const & a, CCRegionRef const & b);
CVCELLS_API bool Contain(CCRegionRef const & a, CRect const & b);
CVCELLS_API bool Contain(CCRegionRef const & a, CCRegionRef const & b);
CVCELLS_API bool ContainH(CRect const & a, CCRegionRef const & b);
CVCELLS_API bool ContainH(CCRegionRef const & a, CRect const & b);
CVCELLS_API bool ContainH(CCRegionRef const & a, CCRegionRef const & b);
CVCELLS_API bool ContainV(CRect const & a, CCRegionRef const & b);
CVCELLS_API bool ContainV(CCRegionRef const & a, CRect const & b);
CVCELLS_API bool ContainV(CCRegionRef const & a, CCRegionRef const & b);
