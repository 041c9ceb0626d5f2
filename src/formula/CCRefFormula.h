// CCRefFormula: a reference in a formula, with its absolute flags.
#pragma once

#include "formula/CCFormula.h"
#include "platform/NodePool.h"

#include <memory>

class CVCELLS_API CCRefFormula : public CCFormula, public cells::internal::Pooled<CCRefFormula> {
public:
    CCRefFormula() : CCFormula(kRefFormula) {}
    CCRefFormula(CCRef const * ref, uchar mode)
        : CCFormula(kRefFormula), m_Ref(ref ? ref->Copy() : nullptr), m_nMode(mode) {}
    CCRefFormula(wchar_t const * name, uchar mode);
    CCRefFormula(uchar col, ushort row, uchar mode);
    CCRefFormula(uchar left, ushort top, uchar right, ushort bottom, uchar mode);
    CCRefFormula(CCRefFormula const & other);

    CCRef * GetRef() const { return m_Ref.get(); } // borrowed
    uchar GetMode() const { return m_nMode; }

    int GetType() const override { return kRefFormula; }
    CCFormula * Copy() const override { return new CCRefFormula(*this); }
    int Check(cells::CTX * ctx, CCRef const * current) const override;
    void Eval(cells::CTX * ctx, CCCellValue & value, CCRef const * current) const override;
    void Print2File(cells::CTX * ctx, std::wostream & stream, uchar priority) const override;
    void Print(cells::CTX * ctx, std::wostream & stream, uchar priority) const override;
    int IsEditSourceRef(cells::CTX * ctx, CCRef const * current) const override;
    CCRef const * GetEditSourceRef(cells::CTX * ctx, CCRef const * current) const override;
    int ContainsLink(cells::CTX * ctx, CCRef const * ref, CCRef const * current) const override;
    int ContainsRemoteLinks() override;
    int ContainsTodayLinks() override { return 0; }
    int IsSingleValue(cells::CTX * ctx, CCRef const * current) override;
    int RegisterDependents(cells::CTX * ctx, CCRef const * dependent) const override;
    void UnRegisterDependents(cells::CTX * ctx, CCRef const * dependent) const override;
    int InvalidateRef(cells::CTX * ctx, CCRef const * ref, CCFormula *& out,
                      CCRef const * self) override;
    int InvalidateItem(cells::CTX * ctx, CCItem const * item, CCFormula *& out,
                       CCRef const * self) override;
    void MoveFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to) override;
    void UpdateInPaste(cells::CTX * ctx, CCRef const * oldRef, CCRef const * newRef,
                       CCClipboardData const * clip) override;
    int UpdateRef(cells::CTX * ctx, CCRef const * self, CCRef const * old, CCRef const * now,
                  int unregister, CCFormula *& out) override;
    ushort OpenRef(cells::CTX * ctx, CCRef const * current) override;
    int NextValue(cells::CTX * ctx, ushort handle, CCCellValue & value,
                  CCRef const * current) override;
    int RefSize(cells::CTX * ctx, ushort handle, CSize & size, CCRef const * current) override;
    int CloseRef(cells::CTX * ctx, ushort handle, CCRef const * current) override;
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) const override;
    void OnSheetRename(CString & old, CString & now) override;
    int ContainsSheetLinks() const override;
    void UpdateArgsOnSheetRename(cells::CTX * ctx, CCRemoteRef const * old,
                                 CCRemoteRef const * now) override;

    friend CVCELLS_API void SwapFormulaRefs(CCRefFormula * a, CCRefFormula * b);

private:
    std::unique_ptr<CCRef> m_Ref;
    uchar m_nMode = 0;
    // A walk over a run of sheets changes its handle; the caller keeps the one it was given.
    ushort m_nOpened = 0, m_nRunning = 0;
};

// Exchanges the references of two nodes, so that a move does not rebuild a tree.
CVCELLS_API void SwapFormulaRefs(CCRefFormula * a, CCRefFormula * b);
