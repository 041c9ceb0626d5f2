#include "formula/CCRefOpFormula.h"

#include "cells/CCCellManager.h"
#include "cells/Guards.h"
#include "cells/ManagerContext.h"
#include "context/Context.h"
#include "formula/BuiltInIds.h"
#include "formula/CCConstFormula.h"
#include "formula/CCNameRef.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefFormula.h"
#include "formula/Clipboard.h"
#include "formula/OperatorObjects.h"
#include "values/CCCellValue.h"

using namespace cells;
using internal::MakeDependentRef;
using internal::Operator;
using internal::OperatorObject;

CCRefOpFormula::CCRefOpFormula(CCRefOpFormula const & other) : CCOpFormula(other), NodeListener() {
    TakeOver(other);
}

CCRefOpFormula::~CCRefOpFormula() { StopListening(); }

// A node made from another of its class remembers the same target and hears the same sheet.
void CCRefOpFormula::TakeOver(CCRefOpFormula const & other) {
    if (other.m_Target) m_Target.reset(other.m_Target->Copy());
    if (other.m_Registered) m_Registered.reset(other.m_Registered->Copy());
    m_bRefused = other.m_bRefused;
    m_pManager = other.m_pManager;
    if (CCCellManager * sheet = internal::LiveManager(other.m_nSheet)) Listen(nullptr, sheet);
}

CCOpFormula * CCRefOpFormula::Rebuild(CCFormulaList * args) const {
    auto * node = new CCRefOpFormula(m_pFunc, args);
    node->TakeOver(*this);
    return node;
}

bool CCRefOpFormula::IsFullRef() const {
    return m_pFunc && m_pFunc == OperatorObject(Operator::kFullRef);
}

bool CCRefOpFormula::NamesPlace() const {
    return IsFullRef() || (m_pFunc && (m_pFunc == OperatorObject(Operator::kRange) ||
                                       m_pFunc == OperatorObject(Operator::kSheetRange)));
}

namespace {

// The (first) sheet that an operand names, or null.
CCCellManager * NamedSheet(CTX * ctx, CCFormula const & operand) {
    CCCellValue value;
    CCRef const * ref = operand.GetType() == kRefFormula
                            ? static_cast<CCRefFormula const &>(operand).GetRef()
                            : nullptr;
    if (!ref) {
        operand.Eval(ctx, value, nullptr);
        ref = value.GetRef();
    }
    if (!ref || ref->GetType() != kRefSheets || !ctx->manager()) return nullptr;
    auto const & sheets = *static_cast<CCRef3D const *>(ref);
    return sheets.IsManagerForm() ? sheets.GetManager()
                                  : ctx->manager()->GetManForNameIndex(sheets.firstSheet);
}

} // namespace

template <typename Visit>
bool CCRefOpFormula::ForEachPart(CTX * ctx, Visit && visit) const {
    CCCellManager * const sheet = NamedSheet(ctx, *m_pArgs->formula);
    if (!sheet) return false;
    internal::ManagerContext lent(ctx, sheet);
    CTX * const there = sheet == ctx->manager() ? ctx : static_cast<CTX *>(lent);
    CCFormulaList const inner(m_pArgs->next->formula, nullptr);
    CCFormulaList const * part = internal::IsReferenceOperator(*inner.formula, Operator::kRange)
                                     ? static_cast<CCOpFormula *>(inner.formula)->GetArgs()
                                     : &inner;
    for (; part; part = part->next)
        visit(*part->formula, part->formula->GetType() == kRefFormula ? there : ctx);
    return true;
}

// Whether the place after "!" is valid is a question to the sheet before it.
int CCRefOpFormula::Check(CTX * ctx, CCRef const * current) const {
    if (m_bChecked || !IsFullRef() || !FormulaList2ItemEx(m_pArgs))
        return CCOpFormula::Check(ctx, current);
    int status = m_pArgs->formula->Check(ctx, current);
    if (status) return status;
    bool const known = ForEachPart(ctx, [&](CCFormula const & part, CTX * there) {
        if (!status) status = part.Check(there, current);
    });
    if (!known) status = m_pArgs->next->formula->Check(ctx, current);
    m_bChecked = status == 0;
    return status;
}

void CCRefOpFormula::Listen(CTX * ctx, CCCellManager * sheet) const {
    auto * listener = const_cast<CCRefOpFormula *>(this);
    StopListening();
    sheet->RegisterListener(CCBaseEvent::kSheetRename, listener);
    sheet->RegisterListener(CCBaseEvent::kDestroySheet, listener);
    m_nSheet = sheet->GetSerial();
    if (ctx) listener->m_pManager = ctx->manager();
}

void CCRefOpFormula::StopListening() const {
    if (CCCellManager * sheet = internal::LiveManager(m_nSheet))
        sheet->UnRegisterListener(const_cast<CCRefOpFormula *>(this));
    m_nSheet = internal::kNoManager;
}

// Takes the cell out of the target's dependents, if this node put it there.
void CCRefOpFormula::Leave(CTX * ctx, CCRef const * current) const {
    if (!m_Target || !m_Registered || !current) return;
    std::unique_ptr<CCRef> const place(MakeDependentRef(ctx, current));
    if (!m_Registered->IsEqual(place.get())) return; // it belongs to another cell
    m_Target->UnRegisterDependent(ctx, place.get());
    m_Registered.reset();
}

// Whether the target refused the cell and still conceals what it holds.
bool CCRefOpFormula::IsKeptOut(CTX * ctx) const {
    CCCellManager * const manager = ctx->manager();
    return m_bRefused && m_Registered && manager && manager->IsConcealed(m_Target.get());
}

// Makes `target`, which it takes over, the place that the node follows. The registration made here
// marks nothing as changed: an evaluation must not look like an edit.
void CCRefOpFormula::Follow(CTX * ctx, CCRef * target, CCRef const * current) const {
    std::unique_ptr<CCRef> now(target);
    std::unique_ptr<CCRef> const place(MakeDependentRef(ctx, current));
    bool const same = m_Target && now && m_Target->IsEqual(now.get());
    bool const known = m_Registered && m_Registered->IsEqual(place.get());
    if (same && (!place || (known && (!m_bRefused || IsKeptOut(ctx))))) return;
    if (!same) {
        Leave(ctx, current);
        m_Target = std::move(now);
        m_Registered.reset();
    }
    if (!m_Target || !place) return;
    internal::DirtyMarkGuard const silent(ctx->manager());
    m_bRefused = !m_Target->RegisterDependent(ctx, place.get());
    m_Registered.reset(place->Copy());
    // The formula has a new precedent: it stands after it from the next pass on.
    if (CCCellManager * manager = ctx->manager()) manager->OnNewPrecedent(place.get());
}

void CCRefOpFormula::Eval(CTX * ctx, CCCellValue & value, CCRef const * current) const {
    CCOpFormula::Eval(ctx, value, current);
    CCRef const * const ref = value.GetRef();
    if (!ref) {
        Leave(ctx, Follower(current));
        m_Target.reset();
        if (CCCellManager * manager = NamesPlace() || !Follower(current) ? nullptr : ctx->manager())
            manager->OnPlaceMissing(current);
    } else {
        Follow(ctx, ref->Copy(), Follower(current));
        if (IsKeptOut(ctx)) value.Set(errRef);
    }
}

int CCRefOpFormula::IsSingleValue(CTX * ctx, CCRef const *) {
    CCCellValue value;
    CCOpFormula::Eval(ctx, value, nullptr);
    return value.IsRef() && value.GetRef() ? value.GetRef()->IsSingleValue(ctx) : 1;
}

// For a place that cannot be computed yet: the cell follows what the place is made of, and the node
// the name of its sheet.
int CCRefOpFormula::AwaitPlace(CTX * ctx, CCRef const * dependent) const {
    int all = 1;
    bool const known =
        IsFullRef() && FormulaList2ItemEx(m_pArgs) &&
        ForEachPart(ctx, [&](CCFormula const & part, CTX * there) {
            std::unique_ptr<CCRef> const placed(MakeDependentRef(ctx, dependent));
            if (!part.RegisterDependents(there, there == ctx ? dependent : placed.get())) all = 0;
        });
    if (!known) {
        // Only what names the sheet, where its places are not those of the own one.
        CCCellManager const * const manager = IsFullRef() ? ctx->manager() : nullptr;
        if (manager && !manager->RegistersPlacesOfMissingSheets())
            return m_pArgs ? m_pArgs->formula->RegisterDependents(ctx, dependent) : 1;
        return CCOpFormula::RegisterDependents(ctx, dependent);
    }
    Listen(ctx, NamedSheet(ctx, *m_pArgs->formula));
    return all;
}

int CCRefOpFormula::RegisterDependents(CTX * ctx, CCRef const * dependent) const {
    if (!NamesPlace()) {
        std::unique_ptr<CCRef> const place(MakeDependentRef(ctx, dependent));
        if (m_Target && !m_bRefused && m_Registered && m_Registered->IsEqual(place.get())) {
            // The node that this one was copied from may have left the target since.
            internal::DirtyMarkGuard const silent(ctx->manager());
            m_Target->RegisterDependent(ctx, place.get());
        }
        return HasId(kIdOffset) ? 1 : CCOpFormula::RegisterDependents(ctx, dependent);
    }
    CCCellValue value;
    Eval(ctx, value, dependent);
    if (!m_Target || m_Target->GetType() != kRefSheets) return AwaitPlace(ctx, dependent);
    CCCellManager * const manager = ctx->manager();
    auto & sheets = *static_cast<CCRef3D *>(m_Target.get());
    if (IsFullRef() && manager)
        if (CCCellManager * sheet = manager->GetManForNameIndex(sheets.firstSheet))
            Listen(ctx, sheet);
    if (dependent && m_bRefused) return 0; // it told so when it was evaluated
    return sheets.RegisterDependent(ctx, dependent);
}

void CCRefOpFormula::UnRegisterDependents(CTX * ctx, CCRef const * dependent) const {
    if (IsFullRef()) {
        StopListening();
        const_cast<CCRefOpFormula *>(this)->m_pManager = nullptr;
    }
    CCOpFormula::UnRegisterDependents(ctx, dependent);
    if (IsFullRef() && FormulaList2ItemEx(m_pArgs))
        ForEachPart(ctx, [&](CCFormula const & part, CTX * there) {
            std::unique_ptr<CCRef> const placed(MakeDependentRef(ctx, dependent));
            if (there != ctx) part.UnRegisterDependents(there, placed.get());
        });
    if (m_Target) m_Target->UnRegisterDependent(ctx, dependent);
    m_Registered.reset();
}

void CCRefOpFormula::MoveFormula(CTX * ctx, CCRef const * from, CCRef const *) {
    UnRegisterDependents(ctx, from);
    m_Target.reset();
}

// Whether `ref` names, from another sheet, the place that a node of "!" yields.
bool CCRefOpFormula::IsPlaceOf(CTX * ctx, CCRef const * ref) const {
    if (!IsFullRef() || !ref || ref->GetType() != kRefSheets || !m_Target) return false;
    if (m_Target->GetType() != kRefSheets || !ctx->manager()) return false;
    auto const & place = *static_cast<CCRef3D const *>(ref);
    auto const & own = *static_cast<CCRef3D const *>(m_Target.get());
    return place.IsManagerForm() && own.IsOneSheet() && own.ref && own.ref->IsEqual(place.ref) &&
           ctx->manager()->GetManForNameIndex(own.firstSheet) == place.GetManager();
}

int CCRefOpFormula::InvalidateRef(CTX * ctx, CCRef const * ref, CCFormula *& out,
                                  CCRef const * self) {
    if (!IsPlaceOf(ctx, ref)) return CCOpFormula::InvalidateRef(ctx, ref, out, self);
    out = new CCConstFormula(errValue);
    return 1;
}

int CCRefOpFormula::UpdateRef(CTX * ctx, CCRef const * self, CCRef const * old, CCRef const * now,
                              int unregister, CCFormula *& out) {
    if (!IsPlaceOf(ctx, old)) return CCOpFormula::UpdateRef(ctx, self, old, now, unregister, out);
    if (unregister) m_Target->UnRegisterDependent(ctx, self);
    CCFormula const * const part = m_pArgs->next->formula;
    uchar const mode = part->GetType() == kRefFormula
                           ? static_cast<CCRefFormula const *>(part)->GetMode()
                           : uchar(0);
    out = ConstructOpFormula(m_pFunc, m_pArgs->formula->Copy(),
                             new CCRefFormula(internal::InnerRef(now), mode));
    return 1;
}

void CCRefOpFormula::UpdateInPaste(CTX * ctx, CCRef const * oldRef, CCRef const * newRef,
                                   CCClipboardData const * clip) {
    if (clip && clip->updateOnPaste) CCOpFormula::UpdateInPaste(ctx, oldRef, newRef, clip);
}

ushort CCRefOpFormula::OpenRef(CTX * ctx, CCRef const * current) {
    CCCellValue value;
    Eval(ctx, value, current);
    return m_nOpen = value.GetRef() ? m_Target->OpenRef(ctx) : ushort(0);
}

int CCRefOpFormula::NextValue(CTX * ctx, ushort, CCCellValue & value, CCRef const *) {
    return m_Target && m_nOpen ? m_Target->NextValue(ctx, m_nOpen, value) : 0;
}

int CCRefOpFormula::CloseRef(CTX * ctx, ushort, CCRef const *) {
    ushort const handle = m_nOpen;
    m_nOpen = 0;
    return m_Target && handle ? m_Target->CloseRef(ctx, handle) : 0;
}

bool CCRefOpFormula::OnEvent(CCBaseEvent const & event) {
    if (!IsFullRef() || !m_pArgs) return true;
    if (event.GetId() == CCBaseEvent::kSheetRename) {
        // The sheet operand is the name itself, or the first argument of a ":" around it.
        CCFormulaList * operand = m_pArgs;
        if (operand->formula->GetType() == kRefOpFormula)
            operand = static_cast<CCOpFormula *>(operand->formula)->GetArgs();
        if (!operand) return true;
        delete operand->formula;
        operand->formula = new CCRefFormula(
            static_cast<CCSheetRenameEvent const &>(event).m_strNew.GetString(), 0);
    } else if (event.GetId() == CCBaseEvent::kDestroySheet) {
        m_Target.reset();
        m_Registered.reset();
        if (!m_pManager) return true;
        CCCellValue value;
        CCOpFormula::Eval(m_pManager->ctx(), value, nullptr);
        if (value.GetRef()) m_Target.reset(value.GetRef()->Copy());
    }
    return true;
}

namespace cells::internal {

bool IsReferenceOperator(CCFormula const & formula, Operator op) {
    return formula.GetType() == kRefOpFormula &&
           static_cast<CCOpFormula const &>(formula).GetFunc() == OperatorObject(op);
}

} // namespace cells::internal
