// CCRCRef: one cell.
#pragma once

#include "formula/CCRef.h"
#include "platform/NodePool.h"

class CVCELLS_API CCRCRef : public CCRef, public cells::internal::Pooled<CCRCRef> {
public:
    CCRCRef() : CCRef(kRefCell) {}
    CCRCRef(uchar column, ushort line) : CCRef(kRefCell), col(column), row(line) {}
    explicit CCRCRef(CPoint const & point) : CCRef(kRefCell) { Set(point); }

    void Set(CCRCRef const & other) { *this = other; }
    void Set(uchar column, ushort line) {
        col = column;
        row = line;
    }
    void Set(CPoint const & point) {
        col = uchar(point.x);
        row = ushort(point.y);
    }
    void Get(CPoint & point) const { point = CPoint(col, row); }

    int GetType() const override { return kRefCell; }
    int IsEqual(CCRef const * other) const override;
    void Print(cells::CTX * ctx, std::wostream & stream, uchar mode) const override;
    CCRef * Copy() const override { return new CCRCRef(*this); }
    void Update(cells::CTX * ctx, CCRef const * from, CCRef const * to, uchar flags) override;
    void UpdateInPaste(cells::CTX * ctx, CCClipboardData const * clip) override;
    int IsInside(CCRef const * other) const override;
    int IsInside(CRect const & rect) const override;
    int IsSingleValue(cells::CTX *) const override { return 1; }
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) const override;
    int Compare(CCRef const * other) const override;
    void Move(long dx, long dy) override;
    int Contain(CCRef const * other) const override;

    uchar col = 0;
    ushort row = 0;
};

CVCELLS_API bool AreRCEqual(CCRCRef const & a, CCRCRef const & b);
CVCELLS_API bool AreRCEqual(CCRCRef const & a, uchar col, ushort row);
