// CCRefOpFormula: a function whose value is a reference ("..", ":", "!", OFFSET and the like).
//
// The node follows the place that it yields: each evaluation compares it with the last one and
// moves the registration of the cell when it differs. A node of "!" also listens to the sheet that
// it names, so that its text follows a rename.
#pragma once

#include "context/Events.h"
#include "context/LiveManagers.h"
#include "formula/CCOpFormula.h"

#include <memory>

class CVCELLS_API CCRefOpFormula : public CCOpFormula, public cells::internal::NodeListener {
public:
    CCRefOpFormula() : CCRefOpFormula(nullptr, nullptr) {}
    CCRefOpFormula(CCFunc * func, CCFormulaList * args) : CCOpFormula(kRefOpFormula, func, args) {}
    CCRefOpFormula(CCRefOpFormula const & other);
    ~CCRefOpFormula() override;

    CCRef * GetTarget() const { return m_Target.get(); } // borrowed; what was yielded last

    bool OnEvent(CCBaseEvent const & event) override;
    using CCBaseListener::IsEqual;

    int GetType() const override { return kRefOpFormula; }
    CCFormula * Copy() const override { return new CCRefOpFormula(*this); }
    int Check(cells::CTX * ctx, CCRef const * current) const override;
    void Eval(cells::CTX * ctx, CCCellValue & value, CCRef const * current) const override;
    int IsSingleValue(cells::CTX * ctx, CCRef const * current) override;
    int RegisterDependents(cells::CTX * ctx, CCRef const * dependent) const override;
    void UnRegisterDependents(cells::CTX * ctx, CCRef const * dependent) const override;
    int InvalidateRef(cells::CTX * ctx, CCRef const * ref, CCFormula *& out,
                      CCRef const * self) override;
    void MoveFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to) override;
    void UpdateInPaste(cells::CTX * ctx, CCRef const * oldRef, CCRef const * newRef,
                       CCClipboardData const * clip) override;
    int UpdateRef(cells::CTX * ctx, CCRef const * self, CCRef const * old, CCRef const * now,
                  int unregister, CCFormula *& out) override;
    ushort OpenRef(cells::CTX * ctx, CCRef const * current) override;
    int NextValue(cells::CTX * ctx, ushort handle, CCCellValue & value,
                  CCRef const * current) override;
    int CloseRef(cells::CTX * ctx, ushort handle, CCRef const * current) override;

protected:
    CCOpFormula * Rebuild(CCFormulaList * args) const override;

private:
    bool IsFullRef() const;
    bool NamesPlace() const; // "!", ":" and ".."
    // Visits the references written behind "!" in the context of the sheet that stands before it,
    // and what is computed there in the formula's own; false where that sheet does not exist.
    template <typename Visit>
    bool ForEachPart(cells::CTX * ctx, Visit && visit) const;
    int AwaitPlace(cells::CTX * ctx, CCRef const * dependent) const;
    void Follow(cells::CTX * ctx, CCRef * target, CCRef const * current) const;
    void Leave(cells::CTX * ctx, CCRef const * current) const;
    bool IsKeptOut(cells::CTX * ctx) const;
    void Listen(cells::CTX * ctx, CCCellManager * sheet) const;
    void StopListening() const;
    void TakeOver(CCRefOpFormula const & other);
    bool IsPlaceOf(cells::CTX * ctx, CCRef const * ref) const;

    mutable std::unique_ptr<CCRef> m_Target;
    // The (placed) cell that is registered with the target, if any.
    mutable std::unique_ptr<CCRef> m_Registered;
    mutable bool m_bRefused = false; // by the target, which did not register it
    mutable cells::internal::ManagerSerial m_nSheet = cells::internal::kNoManager; // heard
};
