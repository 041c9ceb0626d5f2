// CCRemoteOpFormula: a function that reads another document. It remembers the link that it
// registered last and follows it when the arguments name another one.
#pragma once

#include "formula/CCOpFormula.h"
#include "formula/CCRemoteRef.h"

class CVCELLS_API CCRemoteOpFormula : public CCOpFormula {
public:
    CCRemoteOpFormula() : CCRemoteOpFormula(nullptr, nullptr) {}
    CCRemoteOpFormula(CCFunc * func, CCFormulaList * args)
        : CCOpFormula(kRemoteOpFormula, func, args) {}
    CCRemoteOpFormula(CCRemoteOpFormula const & other)
        : CCOpFormula(other), m_Remote(other.m_Remote) {}

    CCRemoteRef * GetRemoteRef() const { return new CCRemoteRef(m_Remote); } // the caller's
    CCRemoteRef const & Remote() const { return m_Remote; }

    // Raised when a link moved during an evaluation.
    static int RefRemoteChanged;

    int GetType() const override { return kRemoteOpFormula; }
    CCFormula * Copy() const override { return new CCRemoteOpFormula(*this); }
    int Check(cells::CTX * ctx, CCRef const * current) const override;
    void Eval(cells::CTX * ctx, CCCellValue & value, CCRef const * current) const override;
    int IsEditSourceRef(cells::CTX * ctx, CCRef const * current) const override;
    CCRef const * GetEditSourceRef(cells::CTX * ctx, CCRef const * current) const override;
    int ContainsLink(cells::CTX * ctx, CCRef const * ref, CCRef const * current) const override;
    int ContainsRemoteLinks() override { return 1; }
    int IsSingleValue(cells::CTX * ctx, CCRef const * current) override;
    int RegisterDependents(cells::CTX * ctx, CCRef const * dependent) const override;
    void UnRegisterDependents(cells::CTX * ctx, CCRef const * dependent) const override;
    int InvalidateRef(cells::CTX * ctx, CCRef const * ref, CCFormula *& out,
                      CCRef const * self) override;
    int InvalidateItem(cells::CTX * ctx, CCItem const * item, CCFormula *& out,
                       CCRef const * self) override;
    void MoveFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to) override;
    int UpdateRef(cells::CTX * ctx, CCRef const * self, CCRef const * old, CCRef const * now,
                  int unregister, CCFormula *& out) override;
    ushort OpenRef(cells::CTX * ctx, CCRef const * current) override;
    int NextValue(cells::CTX * ctx, ushort handle, CCCellValue & value,
                  CCRef const * current) override;
    int RefSize(cells::CTX * ctx, ushort handle, CSize & size, CCRef const * current) override;
    int CloseRef(cells::CTX * ctx, ushort handle, CCRef const * current) override;
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) const override;

protected:
    CCOpFormula * Rebuild(CCFormulaList * args) const override;

private:
    bool YieldsOneValue() const;
    bool NamesLink(cells::CTX * ctx, CCRemoteRef & remote, CCRef const * current) const;

    mutable CCRemoteRef m_Remote;
};
