// CCRef: where a value lies.
//
// A reference names one cell, a rectangle, a named thing, a place in another document, a property
// of the document, or any of these on a run of sheets. It holds coordinates and text only. Whatever
// reads or links data goes through the manager that the context names at that moment, so that the
// base bodies of the reading slots simply ask that manager.
//
// A column is 0 to 255, printed "A" to "IV"; a row is 0 to 65535, printed 1 to 65536.
#pragma once

#include "platform/CInstanceCounter.h"
#include "platform/Geometry.h"
#include "platform/Types.h"

#include <iosfwd>

class CArchive;
class CCCellManager;
class CCCellValue;
struct CCClipboardData;

namespace cells {

class CTX;

constexpr int kMaxColumn = 255;
constexpr int kMaxRow = 65535;

// Absolute flags: a dollar before the first column, the first row, the second column, the second
// row.
enum AbsoluteFlag : uchar {
    kAbsoluteColumn = 1,
    kAbsoluteRow = 2,
    kAbsoluteColumn2 = 4,
    kAbsoluteRow2 = 8,
};

} // namespace cells

// Type numbers, also the first byte of a stored reference.
enum ERefType : int {
    kRefCell = 1,
    kRefRegion = 2,
    kRefName = 3,
    kRefRemote = 4,
    kRefDocument = 5,
    kRefSheets = 6,
};

class CVCELLS_API CCRef : public calvera::debug::CInstanceCounter<CCRef> {
public:
    CCRef() = default;
    virtual ~CCRef() = default;
    virtual int GetType() const = 0;
    // The type of the engine's own classes without a virtual call; 0 for a host's.
    uchar Kind() const { return m_nKind; }
    virtual int IsEqual(CCRef const * other) const = 0;
    // Prints the reference; `mode` is the set of absolute flags.
    virtual void Print(cells::CTX * ctx, std::wostream & stream, uchar mode) const;
    virtual CCRef * Copy() const = 0; // deep; the caller's
    // Moves what `flags` does not fix from place `from` to place `to`; throws the int 1 off the
    // grid.
    virtual void Update(cells::CTX * ctx, CCRef const * from, CCRef const * to, uchar flags);
    virtual void UpdateInPaste(cells::CTX * ctx, CCClipboardData const * clip);
    virtual int IsInside(CCRef const * other) const;
    virtual int IsInside(CRect const & rect) const;
    virtual int IsValid(cells::CTX * ctx);
    virtual int GetValue(cells::CTX * ctx, CCCellValue & value);
    // The walk over the values of a reference: a handle (0 is failure), the size, value after
    // value, the end. The handle may change on the way.
    virtual ushort OpenRef(cells::CTX * ctx);
    virtual int RefSize(cells::CTX * ctx, ushort handle, CSize & size);
    virtual int NextValue(cells::CTX * ctx, ushort & handle, CCCellValue & value);
    virtual int CloseRef(cells::CTX * ctx, ushort handle);
    virtual int RegisterDependent(cells::CTX * ctx, CCRef const * dependent);
    virtual int UnRegisterDependent(cells::CTX * ctx, CCRef const * dependent);
    virtual int InvalidateRef(cells::CTX * ctx, CCRef const * by);
    virtual int MoveFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to);
    virtual int MoveDependent(cells::CTX * ctx, CCRef const * from, CCRef const * to, int mode);
    virtual int IsSingleValue(cells::CTX * ctx) const;
    virtual void Read(cells::CTX * ctx, CArchive & ar) = 0;
    virtual void Write(cells::CTX * ctx, CArchive & ar) const = 0;
    // Order of sorted references: -1, 0 or 1. It is not symmetric between the classes.
    virtual int Compare(CCRef const * other) const = 0;
    virtual void Move(long dx, long dy);
    virtual int Contain(CCRef const * other) const;

protected:
    explicit CCRef(ERefType kind) : m_nKind(uchar(kind)) {}

private:
    uchar m_nKind = 0;
};

// For hosts that refer to an object of their own.
class CVCELLS_API CCObjectRef : public CCRef {
public:
    long objectId = -1;
};

// Writes the letters of a zero-based column and a terminator; room for three units.
CVCELLS_API void PrintCol(wchar_t * out, uchar col);

CVCELLS_API CCRef * ReadRef(cells::CTX * ctx, CArchive & ar); // the caller's, or null
CVCELLS_API void WriteRef(cells::CTX * ctx, CArchive & ar, CCRef const * ref);
