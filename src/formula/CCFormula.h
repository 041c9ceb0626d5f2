// CCFormula: a node of a parsed formula.
//
// A formula is a tree: leaves are constants and references, inner nodes apply a CCFunc to a list of
// arguments. Every consumer works through the virtual operations below. Updates do not edit a tree:
// they hand out a new one through an output argument, which is the caller's, also where the result
// says that nothing changed.
//
// Evaluation changes nodes (what has been checked, cursors, targets), so a tree belongs to the one
// calculation thread and cannot be walked by two callers at once. A tree is at most
// kMaxFormulaDepth levels deep; every recursion over trees relies on that bound.
#pragma once

#include "formula/CCRef.h"
#include "platform/CInstanceCounter.h"

class CArchive;
class CCItem;
class CCRemoteRef;
class CString;
struct CCRefList;

namespace cells {

constexpr int kMaxFormulaDepth = 2048;

}

// Type numbers, also the first byte of a stored formula.
enum EFormulaType : int {
    kConstFormula = 1,
    kConstArrayFormula = 2,
    kRefFormula = 3,
    kOpFormula = 4,
    kChooseOpFormula = 5,
    kRemoteOpFormula = 6,
    kDocOpFormula = 7,
    kRefOpFormula = 8,
};

class CVCELLS_API CCFormula : public calvera::debug::CInstanceCounter<CCFormula> {
public:
    CCFormula() = default;
    virtual ~CCFormula() = default;
    virtual int GetType() const = 0;
    // The type of the engine's own classes without a virtual call; 0 for a host's.
    uchar Kind() const { return m_nKind; }
    virtual CCFormula * Copy() const = 0; // deep; the caller's
    // An error number, 0 for a formula that may be evaluated. Success is remembered.
    virtual int Check(cells::CTX * ctx, CCRef const * current) const = 0;
    // Computes the value; `current` is the place of the cell, or null.
    virtual void Eval(cells::CTX * ctx, CCCellValue & value, CCRef const * current) const = 0;
    // The text as the user reads it, and the same with English names. `priority` is the binding
    // strength of the enclosing operator, 0 at the top.
    virtual void Print2File(cells::CTX * ctx, std::wostream & stream, uchar priority) const = 0;
    virtual void Print(cells::CTX * ctx, std::wostream & stream, uchar priority) const = 0;
    virtual int IsEditSourceRef(cells::CTX * ctx, CCRef const * current) const = 0;
    virtual CCRef const * GetEditSourceRef(cells::CTX * ctx, CCRef const * current) const = 0;
    virtual int ContainsLink(cells::CTX * ctx, CCRef const * ref, CCRef const * current) const = 0;
    virtual int ContainsRemoteLinks() = 0;
    virtual int ContainsTodayLinks() = 0;
    virtual int AlwaysRecalc() { return 0; }
    virtual int IsSingleValue(cells::CTX * ctx, CCRef const * current) = 0;
    virtual int RegisterDependents(cells::CTX * ctx, CCRef const * dependent) const = 0;
    virtual void UnRegisterDependents(cells::CTX * ctx, CCRef const * dependent) const = 0;
    virtual int InvalidateRef(cells::CTX * ctx, CCRef const * ref, CCFormula *& out,
                              CCRef const * self) = 0;
    virtual int InvalidateItem(cells::CTX * ctx, CCItem const * item, CCFormula *& out,
                               CCRef const * self) = 0;
    virtual void MoveFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to) = 0;
    virtual void UpdateInPaste(cells::CTX * ctx, CCRef const * oldRef, CCRef const * newRef,
                               CCClipboardData const * clip) = 0;
    virtual int UpdateRef(cells::CTX * ctx, CCRef const * self, CCRef const * old,
                          CCRef const * now, int unregister, CCFormula *& out) = 0;
    // The walk over the values: a handle (0 is failure), values, the size, the end.
    virtual ushort OpenRef(cells::CTX * ctx, CCRef const * current) = 0;
    virtual int NextValue(cells::CTX * ctx, ushort handle, CCCellValue & value,
                          CCRef const * current) = 0;
    virtual int RefSize(cells::CTX * ctx, ushort handle, CSize & size, CCRef const * current) = 0;
    virtual int CloseRef(cells::CTX * ctx, ushort handle, CCRef const * current) = 0;
    virtual void Read(cells::CTX * ctx, CArchive & ar) = 0;
    virtual void Write(cells::CTX * ctx, CArchive & ar) const = 0;
    virtual void OnSheetRename(CString & old, CString & now);
    virtual int ContainsSheetLinks() const { return 0; }
    virtual void UpdateArgsOnSheetRename(cells::CTX * ctx, CCRemoteRef const * old,
                                         CCRemoteRef const * now);
    virtual int IsHyperLink() const { return 0; }

    // The references that the formula reads, newest first. The list is the caller's.
    CCRefList * GetPrecedents(cells::CTX * ctx) const;
    int GetDepth() const { return m_nDepth; }
    bool HasChoice() const { return m_bHasChoice; }
    // A call that picks one of its arguments is checked with what it picks now. This makes the tree
    // forget that such calls, and what holds them, were checked: the next check asks them again.
    void ForgetChoices();

protected:
    explicit CCFormula(EFormulaType kind) : m_nKind(uchar(kind)) {}
    // A copy starts unchecked.
    CCFormula(CCFormula const & other)
        : CInstanceCounter(other), m_nKind(other.m_nKind), m_bHasChoice(other.m_bHasChoice),
          m_nDepth(other.m_nDepth) {}
    CCFormula & operator=(CCFormula const &) = delete;

    mutable bool m_bChecked = false;

private:
    uchar m_nKind = 0;

protected:
    bool m_bHasChoice = false; // this node or one below it picks one of its arguments
    ushort m_nDepth = 1;
};

// Computes a formula for a cell: error 4 for null, the error of a failed check, the value behind a
// reference, error 3 for a number that is not finite.
CVCELLS_API void EvalFormula(cells::CTX * ctx, CCCellValue & value, CCFormula const * formula,
                             CCRef const * current);

CVCELLS_API CCFormula * ReadFormula(cells::CTX * ctx, CArchive & ar); // the caller's, or null
CVCELLS_API void WriteFormula(cells::CTX * ctx, CArchive & ar, CCFormula const * formula);
