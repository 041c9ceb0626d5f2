#include "cells/CCCell.h"

#include "cells/CCCellManager.h"
#include "cells/CCWorkbook.h"
#include "cells/Guards.h"
#include "cells/internal/TreesInUse.h"
#include "context/Context.h"
#include "format/FormatTables.h"
#include "formula/CCConstFormula.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefList.h"
#include "formula/CCRemoteOpFormula.h"
#include "platform/Resources.h"
#include "values/ValueCompare.h"

#include <utility>

using cells::internal::SessionGuard;
using cells::internal::TreesInUse;
using Placed = std::unique_ptr<CCRef>;

CCCell::CCCell(CCCell const & other)
    : CCItem(other), m_nFormat(other.m_nFormat), m_bCircular(other.m_bCircular),
      m_Value(other.m_Value), m_pFormulaData(other.CopyFormulaBlock()),
      m_pFormula(other.m_pFormula ? other.m_pFormula->Copy() : nullptr) {}

CCCell::CCCell() = default;
CCCell::~CCCell() = default;

CCCellFormat const & CCCell::getCFmt() const {
    return CCCellFormatTable::CCellFormats->At(m_nFormat);
}

void CCCell::putCFmt(CCCellFormat const & format) {
    m_nFormat = CCCellFormatTable::CCellFormats->Add(format);
}

int CCCell::IsEmpty() const {
    return m_Value.IsEmpty() && !IsFormulaLink() && getCFmt().IsEmpty() && CCItem::IsEmpty();
}

int CCCell::IsHidden(cells::CTX *) const { return getCFmt().IsHidden(); }
int CCCell::IsLocked(cells::CTX *) const { return getCFmt().IsLocked(); }
int CCCell::IsEditSource(cells::CTX *) const { return getCFmt().IsEditSource(); }
int CCCell::IsErrorHidden(cells::CTX *) const { return getCFmt().IsErrorHidden(); }
int CCCell::IsZeroHidden(cells::CTX *) const { return getCFmt().IsZeroHidden(); }

int CCCell::RefusesChange(cells::CTX * ctx) const {
    CCCellManager * const manager = ctx->manager();
    return manager && manager->IsProtLock(this, 1);
}

int CCCell::IsValueText(cells::CTX *) { return !m_Value.IsEmpty(); }
int CCCell::IsFormulaText(cells::CTX *) { return IsFormulaLink() || !m_Value.IsEmpty(); }
void CCCell::GetValue(CCCellValue & value) const { value.Set(m_Value); }
void CCCell::OnChange(cells::CTX * ctx) {
    if (CCCellManager * manager = ctx->manager()) manager->SetDirty();
}

CCRef * CCCell::MakeCellRef3D(cells::CTX * ctx, CCCell const * cell) {
    CCRef const * const ref = cell->GetRef();
    return ctx->manager() ? new CCRef3D(ctx, ref) : ref->Copy();
}

// Values

int CCCell::SetValue(cells::CTX * ctx, CCCellValue const & value) {
    TreesInUse const walk;
    CCCellManager * const manager = ctx->manager();
    {
        SessionGuard const session(manager);
        bool const hadFormula = IsFormulaLink() != 0;
        bool removed = false;
        Placed const own(IsEditSource(ctx) && hadFormula && manager ? GetRef()->Copy() : nullptr);
        CCFormula * const tree = own ? LoadFormula(ctx) : nullptr;
        if (tree && tree->IsEditSourceRef(ctx, own.get())) {
            manager->SetSourceValue(own.get(), value);
        } else {
            RemoveFormula(ctx);
            removed = hadFormula;
        }
        if (!m_Value.IsEqual(value)) {
            SetValue(value);
            UpdateNumberFormat(ctx);
            OnChange(ctx);
            if (manager) manager->InitIdleRecalc(this, 0);
        } else if (removed && manager) {
            manager->SetDirty(); // the formula is gone, although the value is the same
            manager->OnFormulaRemoved(this);
        }
    }
    OnValueChanged(ctx);
    return 1;
}

void CCCell::UpdateNumberFormat(cells::CTX *) {
    if (!m_Value.IsNumber()) return;
    CCCellFormat const & format = getCFmt();
    if (!format.IsNF()) return;
    CCNumberFormat shown = m_Value.GetFormat();
    if (format.GetSetMask() & kCellFormatNumber) {
        shown = format.GetNFmt();
    } else {
        if (format.IsNFType()) shown.SetType(format.GetNFType());
        if (format.IsNFPrecision()) shown.SetPrecision(format.GetNFPrecision());
        if (format.IsNFCommas()) shown.SetCommas(format.GetNFCommas());
        if ((format.IsNFPrecision() || format.IsNFCommas()) && shown.GetType() == C_NF_GENERAL)
            shown.SetType(C_NF_NUMBER);
    }
    m_Value.Set(shown);
}

// Formulas

int CCCell::IsValidFormula() const {
    if (m_pFormula) return !m_bCircular;
    return m_pFormulaData && m_pFormulaData[4] == kFormulaNormal;
}

uchar CCCell::GetFormulaType() const {
    if (!m_pFormula) return kFormulaNone;
    return m_bCircular ? kFormulaCircular : kFormulaNormal;
}

CCFormula * CCCell::LoadFormula(cells::CTX * ctx) {
    if (!m_pFormula && m_pFormulaData) {
        m_bCircular = m_pFormulaData[4] == kFormulaCircular;
        m_pFormula.reset(ReadBlock(ctx));
    }
    return m_pFormula.get();
}

int CCCell::LoadFormula(cells::CTX * ctx, CCFormula *& formula, uchar & type) {
    CCFormula const * const tree = LoadFormula(ctx);
    formula = tree ? tree->Copy() : nullptr;
    type = GetFormulaType();
    return tree != nullptr;
}

void CCCell::StoreTree(CCFormula * formula) {
    std::unique_ptr<CCFormula> old(formula);
    m_pFormula.swap(old);
    TreesInUse::Discard(std::move(old));
    m_pFormulaData.reset();
}

void CCCell::RemoveFormula(cells::CTX * ctx) {
    if (!IsFormulaLink()) return;
    TreesInUse const walk;
    CCFormula * const tree = LoadFormula(ctx);
    if (tree && !m_bCircular) {
        Placed const place(MakeCellRef3D(ctx, this));
        tree->UnRegisterDependents(ctx, place.get());
    }
    StoreTree(nullptr);
    m_bCircular = false;
}

int CCCell::RegisterFormula(cells::CTX * ctx) {
    TreesInUse const walk;
    CCFormula const * const tree = LoadFormula(ctx);
    if (!tree) return 0;
    Placed const place(MakeCellRef3D(ctx, this));
    tree->RegisterDependents(ctx, place.get());
    return 1;
}

int CCCell::UnregisterFormula(cells::CTX * ctx) {
    TreesInUse const walk;
    CCFormula const * const tree = LoadFormula(ctx);
    if (!tree) return 0;
    Placed const place(MakeCellRef3D(ctx, this));
    tree->UnRegisterDependents(ctx, place.get());
    return 1;
}

namespace {

// Evaluations nest through other documents: each is notified only of links that moved in itself.
class MovedLinks {
public:
    MovedLinks() : m_Outer(std::exchange(CCRemoteOpFormula::RefRemoteChanged, 0)) {}
    MovedLinks(MovedLinks const &) = delete;
    MovedLinks & operator=(MovedLinks const &) = delete;
    ~MovedLinks() { CCRemoteOpFormula::RefRemoteChanged = m_Outer; }
    bool Any() const { return CCRemoteOpFormula::RefRemoteChanged != 0; }

private:
    int m_Outer;
};

} // namespace

// The result is built aside: a range over the own cell reads the old value, not half a sum.
void CCCell::Compute(cells::CTX * ctx, CCFormula const & formula, CCRef const * place) {
    MovedLinks const moved;
    CCCellValue result = m_Value;
    EvalFormula(ctx, result, &formula, place);
    if (m_pFormula.get() != &formula) return; // another one came meanwhile
    m_Value.Swap(result);
    OnValueStored();
    UpdateNumberFormat(ctx);
}

// For this function and the next: another tree, which came meanwhile, stays as it is.
void CCCell::FailToRegister(cells::CTX * ctx, CCFormula const & tree, CCRef const * place) {
    if (m_pFormula.get() == &tree) tree.UnRegisterDependents(ctx, place);
    if (m_pFormula.get() != &tree) return;
    TurnIntoText(ctx);
    OnChange(ctx);
    if (CCCellManager * manager = ctx->manager()) manager->InitIdleRecalc(this, 0);
}

// The text of the formula becomes the value, so that nothing is lost.
void CCCell::TurnIntoText(cells::CTX * ctx) {
    CString const text = FormulaString(ctx);
    StoreTree(nullptr);
    m_bCircular = false;
    m_Value.Set(text);
    OnValueStored();
}

void CCCell::MarkCircular(cells::CTX * ctx, CCFormula const & tree, CCRef const * place,
                          int quiet) {
    CCCellManager * const manager = ctx->manager();
    tree.UnRegisterDependents(ctx, place);
    if (m_pFormula.get() != &tree) return;
    m_bCircular = true;
    if (m_pFormulaData) m_pFormulaData[4] = kFormulaCircular;
    m_Value.Set(errCirc);
    OnValueStored();
    if (!manager) return;
    manager->InitIdleRecalc(this, 0);
    if (!quiet) manager->ErrorMessage(cells::kStringCircular);
}

void CCCell::RefuseCircle(cells::CTX * ctx) {
    TreesInUse const walk;
    CCFormula const * const tree = LoadFormula(ctx);
    if (!tree || m_bCircular) return;
    Placed const place(MakeCellRef3D(ctx, this));
    MarkCircular(ctx, *tree, place.get(), 0);
    OnChange(ctx);
    OnValueChanged(ctx);
}

void CCCell::WarnOfNoEditSource(cells::CTX * ctx, CCRef const * place) {
    CCCellManager * const manager = ctx->manager();
    if (manager && IsEditSource(ctx) && !m_pFormula->IsEditSourceRef(ctx, place))
        manager->ErrorMessage(cells::kStringNoEditSource);
}

int CCCell::SetFormula(cells::CTX * ctx, CCFormula const * formula, int quiet) {
    if (!formula) return 0;
    TreesInUse const walk;
    CCCellManager * const manager = ctx->manager();
    int done = 0;
    {
        SessionGuard const session(manager);
        std::unique_ptr<CCFormula> copy(formula->Copy()); // it may be the cell's own tree
        RemoveFormula(ctx);
        StoreTree(copy.release());
        Placed const place(MakeCellRef3D(ctx, this));
        if (!quiet) WarnOfNoEditSource(ctx, place.get());
        // Where another formula comes meanwhile, from another document, that one stays.
        CCFormula const * const own = m_pFormula.get();
        if (!own->RegisterDependents(ctx, place.get())) {
            FailToRegister(ctx, *own, place.get());
        } else {
            Compute(ctx, *own, place.get());
            if (m_pFormula.get() == own && IsCirc(ctx)) {
                MarkCircular(ctx, *own, place.get(), quiet);
            } else if (m_pFormula.get() == own) {
                m_bCircular = false;
                if (manager) manager->InitFormulaRecalc(this);
            }
            OnChange(ctx);
            done = 1;
        }
    }
    OnValueChanged(ctx);
    return done;
}

int CCCell::SetFormula1(cells::CTX * ctx, CCFormula const * formula) {
    if (!formula) return 0;
    TreesInUse const walk;
    int done = 0;
    {
        SessionGuard const session(ctx->manager());
        Placed const place(MakeCellRef3D(ctx, this));
        MovedLinks const moved;
        CCCellValue result = m_Value;
        EvalFormula(ctx, result, formula, place.get());
        std::unique_ptr<CCFormula> copy(formula->Copy());
        RemoveFormula(ctx);
        StoreTree(copy.release());
        WarnOfNoEditSource(ctx, place.get());
        CCFormula const * const own = m_pFormula.get();
        if (!own->RegisterDependents(ctx, place.get())) {
            FailToRegister(ctx, *own, place.get());
        } else if (m_pFormula.get() == own) {
            SetValue(result);
            UpdateNumberFormat(ctx);
            OnChange(ctx);
            done = 1;
        }
    }
    OnValueChanged(ctx);
    return done;
}

int CCCell::StoreFormula(cells::CTX * ctx, std::unique_ptr<CCFormula> formula) {
    TreesInUse const walk;
    RemoveFormula(ctx);
    StoreTree(formula.release());
    CCRef3D const place(ctx, GetRef());
    CCFormula const * const own = m_pFormula.get();
    if (own->RegisterDependents(ctx, &place)) return 1;
    FailToRegister(ctx, *own, &place);
    return 0;
}

void CCCell::Recalc(cells::CTX * ctx) {
    TreesInUse const walk;
    CCFormula const * const tree = LoadFormula(ctx);
    if (!tree) return;
    CCCellValue other = m_Value; // the result, and after the exchange the value before
    if (m_bCircular) {
        other.Set(errCirc);
    } else {
        MovedLinks const moved;
        EvalFormula(ctx, other, tree, GetRef());
        if (m_pFormula.get() != tree) return; // another one came meanwhile, with its own value
        if (moved.Any()) StoreTree(tree->Copy());
    }
    m_Value.Swap(other);
    OnValueStored(); // equal values may differ in their last bit
    UpdateNumberFormat(ctx);
    if (m_Value.IsEqual(other)) return;
    CCCellManager * const manager = ctx->manager();
    if (CCWorkbook * workbook = manager ? manager->GetWorkbook() : nullptr)
        workbook->GetCalcCache().NoteStored(*manager, *GetRef());
    OnChange(ctx);
    OnValueChanged(ctx);
}

CCRefList * CCCell::GetPrecedents(cells::CTX * ctx) {
    CCFormula const * const tree = LoadFormula(ctx);
    if (!tree) return nullptr;
    CCRefList * list = tree->GetPrecedents(ctx);
    std::vector<CCFormula const *> stack{tree};
    while (!stack.empty()) {
        CCFormula const * const node = stack.back();
        stack.pop_back();
        if (node->GetType() < kOpFormula) continue;
        if (node->GetType() == kRemoteOpFormula) {
            CCRemoteRef const & link = static_cast<CCRemoteOpFormula const *>(node)->Remote();
            if (!link.IsEmpty()) RefListAddLastItem(list, &link);
        }
        for (auto const * args = static_cast<CCOpFormula const *>(node)->GetArgs(); args;
             args = args->next)
            stack.push_back(args->formula);
    }
    return list;
}

// Puts a new tree, which it takes over, in the place of the old one, which is still registered
// while the new one is computed.
int CCCell::ReplaceTree(cells::CTX * ctx, CCFormula * now) {
    std::unique_ptr<CCFormula> fresh(now);
    CCCellManager * const manager = ctx->manager();
    Placed const place(MakeCellRef3D(ctx, this));
    CCFormula const * const old = m_pFormula.get();
    MovedLinks const moved;
    CCCellValue result = m_Value;
    EvalFormula(ctx, result, fresh.get(), place.get());
    if (m_pFormula.get() == old) old->UnRegisterDependents(ctx, place.get());
    if (m_pFormula.get() != old) return 1; // another one came meanwhile
    StoreTree(fresh.release());
    m_bCircular = false;
    CCFormula const * const own = m_pFormula.get();
    if (!own->RegisterDependents(ctx, place.get())) {
        FailToRegister(ctx, *own, place.get());
        OnValueChanged(ctx);
        return 1;
    }
    if (m_pFormula.get() != own) return 1;
    SetValue(result);
    UpdateNumberFormat(ctx);
    OnChange(ctx);
    OnValueChanged(ctx);
    if (manager) manager->InitIdleRecalc(this, 0);
    return 1;
}

int CCCell::InvalidateRef(cells::CTX * ctx, CCRef const * ref) {
    TreesInUse const walk;
    SessionGuard const session(ctx->manager());
    CCFormula * const tree = LoadFormula(ctx);
    if (!tree) return 0;
    Placed const place(MakeCellRef3D(ctx, this));
    CCFormula * now = nullptr;
    if (tree->InvalidateRef(ctx, ref, now, place.get())) return ReplaceTree(ctx, now);
    delete now;
    return 0;
}

int CCCell::InvalidateItem(cells::CTX * ctx, CCItem const * item) {
    TreesInUse const walk;
    SessionGuard const session(ctx->manager());
    CCFormula * const tree = LoadFormula(ctx);
    if (!tree) return 0;
    Placed const place(MakeCellRef3D(ctx, this));
    CCFormula * now = nullptr;
    if (tree->InvalidateItem(ctx, item, now, place.get())) return ReplaceTree(ctx, now);
    delete now;
    return 0;
}

int CCCell::UpdateFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to, int mode) {
    TreesInUse const walk;
    {
        SessionGuard const session(ctx->manager());
        CCFormula * const tree = LoadFormula(ctx);
        if (!tree) return 0;
        Placed const place(MakeCellRef3D(ctx, this));
        CCFormula * updated = nullptr;
        int const changed = tree->UpdateRef(ctx, place.get(), from, to, mode, updated);
        std::unique_ptr<CCFormula> now(updated);
        if (!changed) return 0;
        if (tree->GetType() == kRefFormula && now->GetType() == kRefFormula) {
            SwapFormulaRefs(static_cast<CCRefFormula *>(tree),
                            static_cast<CCRefFormula *>(now.get()));
            m_pFormulaData.reset();
        } else {
            StoreTree(now.release());
        }
    }
    MarkDirty(ctx);
    return 1;
}

int CCCell::UpdateInPaste(cells::CTX * ctx, CCRef const * oldRef, CCRef const * newRef,
                          CCClipboardData const * clip) {
    TreesInUse const walk;
    if (!LoadFormula(ctx)) return 0;
    SessionGuard const session(ctx->manager());
    Placed const place(MakeCellRef3D(ctx, this));
    CCFormula * own = m_pFormula.get();
    if (!m_bCircular) own->UnRegisterDependents(ctx, place.get());
    if (m_pFormula.get() != own) return 1; // another one came meanwhile
    try {
        own->UpdateInPaste(ctx, oldRef, newRef, clip);
    } catch (int) {
        StoreTree(own = new CCConstFormula(errRef));
    }
    m_pFormulaData.reset();
    m_bCircular = false;
    if (!own->RegisterDependents(ctx, place.get())) {
        FailToRegister(ctx, *own, place.get());
        return 1;
    }
    Compute(ctx, *own, place.get());
    OnChange(ctx);
    return 1;
}

int CCCell::ValidateFormulaRef(cells::CTX * ctx, CCRef const * ref) {
    TreesInUse const walk;
    SessionGuard const session(ctx->manager());
    if (!IsValidFormula()) return 0;
    CCFormula * const tree = LoadFormula(ctx);
    if (!tree || !tree->ContainsLink(ctx, ref, GetRef())) return 0;
    Placed const place(MakeCellRef3D(ctx, this));
    if (!tree->RegisterDependents(ctx, place.get())) {
        FailToRegister(ctx, *tree, place.get());
        return 0;
    }
    if (CCCellManager * manager = ctx->manager()) manager->InitIdleRecalc(this, 1);
    return 1;
}

void CCCell::Move(cells::CTX * ctx, CCRef const * to, CCItem * from) {
    TreesInUse const walk;
    {
        SessionGuard const session(ctx->manager());
        CCItem::Move(ctx, to, from);
        if (LoadFormula(ctx) && !m_bCircular) {
            Placed const oldPlace(MakeCellRef3D(ctx, this));
            Placed const newPlace(cells::internal::MakeDependentRef(ctx, to));
            CCFormula * const own = m_pFormula.get();
            own->MoveFormula(ctx, oldPlace.get(), newPlace.get());
            if (m_pFormula.get() == own) own->RegisterDependents(ctx, newPlace.get());
        }
    }
    MarkDirty(ctx);
}

int CCCell::Delete(cells::CTX * ctx) {
    if (RefusesChange(ctx)) return 0;
    SessionGuard const session(ctx->manager());
    RemoveFormula(ctx);
    m_Value.Set();
    OnValueStored();
    m_nFormat = 0;
    return CCItem::Delete(ctx);
}

// Edit sources and links

CCRef const * CCCell::GetEditSourceRef(cells::CTX * ctx) {
    TreesInUse const walk;
    CCFormula const * const tree = IsEditSource(ctx) ? LoadFormula(ctx) : nullptr;
    return tree ? tree->GetEditSourceRef(ctx, GetRef()) : nullptr;
}

int CCCell::SetEditSource(cells::CTX * ctx, CCRef const * ref, uchar flags) {
    SessionGuard const session(ctx->manager());
    CCRefFormula const formula(ref, flags);
    if (!SetFormula(ctx, &formula, 0)) return 0;
    CCCellFormat source;
    source.SetEditSource(1);
    DoSetFormat(ctx, source);
    return 1;
}

int CCCell::IsHyperLink() { return m_pFormula ? m_pFormula->IsHyperLink() : 0; }

int CCCell::GetHyperLink(cells::CTX * ctx, CString & text) {
    TreesInUse const walk;
    CCFormula const * const tree = LoadFormula(ctx);
    if (!tree || !tree->IsHyperLink()) return 0;
    CCFormulaList const * const args = static_cast<CCOpFormula const *>(tree)->GetArgs();
    if (!args) return 0;
    Placed const place(MakeCellRef3D(ctx, this));
    CCCellValue value;
    EvalFormula(ctx, value, args->formula, place.get());
    if (!value.IsText()) return 0;
    text = value.GetTextString();
    return 1;
}

// Formats

void CCCell::DoSetFormat(cells::CTX * ctx, CCCellFormat const & format) {
    CCCellFormat merged = getCFmt();
    merged.Merge(format);
    putCFmt(merged);
    UpdateNumberFormat(ctx);
}

int CCCell::SetFormat(cells::CTX * ctx, CCCellFormat const & format) {
    if (RefusesChange(ctx)) return 0;
    CCCellManager * const manager = ctx->manager();
    SessionGuard const session(manager);
    bool const shown = m_Value.IsNumber() && format.IsNF();
    CCCellValue const before = shown ? m_Value : CCCellValue();
    DoSetFormat(ctx, format);
    OnChange(ctx);
    if (shown && manager && !m_Value.IsEqual(before)) manager->InitIdleRecalc(this, 0);
    return 1;
}

namespace {

// Chains of edit sources are cleared by recursion; a ring of them has no end.
class ClearedSource {
public:
    ClearedSource() { ++s_nDepth; }
    ClearedSource(ClearedSource const &) = delete;
    ClearedSource & operator=(ClearedSource const &) = delete;
    ~ClearedSource() { --s_nDepth; }
    bool IsTooDeep() const { return s_nDepth > kDeepest; }

private:
    static constexpr int kDeepest = 256;
    static inline int s_nDepth = 0;
};

} // namespace

// The source is cleared through its manager, and may be an edit source itself.
int CCCell::ClearEditSource(cells::CTX * ctx, int what) {
    ClearedSource const level;
    if (level.IsTooDeep()) return 1;
    std::unique_ptr<CCRef const> const source(GetEditSourceRef(ctx));
    if (CCCellManager * manager = ctx->manager(); manager && source) {
        if (source->GetType() == kRefRemote) {
            CCCellValue const empty;
            SetValue(ctx, empty);
        } else {
            manager->ClearCell(source.get(), what);
        }
    }
    if (!m_Value.IsEmpty()) OnChange(ctx);
    return 1;
}

int CCCell::Clear(cells::CTX * ctx, int what) {
    if (RefusesChange(ctx)) return 0;
    CCCellManager * const manager = ctx->manager();
    SessionGuard const session(manager);
    if (IsEditSource(ctx)) return ClearEditSource(ctx, what);
    bool changed = false, valueChanged = false, formulaRemoved = false;
    if (what & kClearFormula && IsFormulaLink()) {
        RemoveFormula(ctx);
        changed = formulaRemoved = true;
    }
    if (what & kClearValue && !IsFormulaLink() && !m_Value.IsEmpty()) {
        m_Value.Set();
        OnValueStored();
        changed = valueChanged = true;
    }
    unsigned short const mask = getCFmt().GetSetMask();
    if (what & kClearFormat) {
        if (m_Value.IsNumber()) {
            CCCellValue const before = m_Value;
            CCNumberFormat general;
            m_Value.Set(general);
            if (!m_Value.IsEqual(before)) changed = valueChanged = true;
        }
        bool const keepHidden = manager && manager->IsProtected() && IsHidden(ctx);
        m_nFormat = 0;
        if (keepHidden) {
            CCCellFormat hidden;
            hidden.SetHide(1);
            SetFormat(ctx, hidden);
        }
    }
    if (changed || mask != getCFmt().GetSetMask()) OnChange(ctx);
    if (valueChanged) {
        if (manager) manager->InitIdleRecalc(this, 0);
        OnValueChanged(ctx);
    } else if (formulaRemoved && manager) {
        manager->OnFormulaRemoved(this);
    }
    return 1;
}

int CompareCells(CCCell const * a, CCCell const * b, int caseSensitive) {
    if (!a) return b ? 1 : 0;
    if (!b) return -1;
    return CompareCellValues(a->GetValue(), b->GetValue(), caseSensitive);
}
