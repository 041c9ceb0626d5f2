#include "formula/CCOpFormula.h"

#include "cells/CCCellManager.h"
#include "cells/Guards.h"
#include "context/Context.h"
#include "formula/BuiltInIds.h"
#include "formula/CCConstFormula.h"
#include "formula/Dereference.h"
#include "formula/internal/RebuildArguments.h"
#include "platform/Digits.h"
#include "values/CCCellValue.h"

#include <algorithm>
#include <ostream>

using namespace cells;

CCOpFormula::CCOpFormula(EFormulaType kind, CCFunc * func, CCFormulaList * args)
    : CCFormula(kind), m_pFunc(func), m_pArgs(args) {
    NoteArguments();
}

void CCOpFormula::NoteArguments() {
    m_bHasChoice = Kind() == kChooseOpFormula;
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        m_bHasChoice = m_bHasChoice || (item->formula && item->formula->HasChoice());
    m_nDepth = ushort(std::min(internal::DepthOf(m_pArgs) + 1, 0xFFFF));
}

CCOpFormula::CCOpFormula(CCOpFormula const & other)
    : CCFormula(other), m_pFunc(other.m_pFunc), m_pArgs(CopyFormulaList(other.m_pArgs)) {}

CCOpFormula::~CCOpFormula() { FreeFormulaList(m_pArgs, 1); }

int CCOpFormula::Check(CTX * ctx, CCRef const * current) const {
    if (m_bChecked) return 0;
    if (!m_pFunc) return errLegacy;
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        if (int const status = item->formula->Check(ctx, current)) return status;
    if (m_pFunc->check && !m_pFunc->check(ctx, m_pArgs, current)) return errLegacy;
    m_bChecked = true;
    return 0;
}

// A branch that was not live when the tree was checked, and a tree from a file, may arrive here
// unchecked; eval functions rely on the shape that the check has seen.
void CCOpFormula::Eval(CTX * ctx, CCCellValue & value, CCRef const * current) const {
    if (!m_pFunc || !m_pFunc->eval) return value.Set();
    if (!m_bChecked)
        if (int const status = Check(ctx, current)) return value.Set(status);
    CCCellManager * const manager = ctx->manager();
    internal::SessionGuard const session(manager);
    internal::OpenRefsMark const mark(manager);
    try {
        m_pFunc->eval(ctx, value, m_pArgs, current);
    } catch (...) {
        value.Set(errValue);
        mark.CloseNewer();
        CloseArguments(ctx, current);
    }
}

void CCOpFormula::Detach() {
    m_bDetached = true;
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        if (item->formula->GetType() >= kOpFormula)
            static_cast<CCOpFormula *>(item->formula)->Detach();
}

void CCOpFormula::CloseArguments(CTX * ctx, CCRef const * current) const {
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        item->formula->CloseRef(ctx, 0, current);
}

int CCOpFormula::ContainsLink(CTX * ctx, CCRef const * ref, CCRef const * current) const {
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        if (item->formula->ContainsLink(ctx, ref, current)) return 1;
    return 0;
}

int CCOpFormula::ContainsRemoteLinks() {
    int any = 0;
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        any |= item->formula->ContainsRemoteLinks();
    return any;
}

int CCOpFormula::ContainsTodayLinks() {
    if (HasId(kIdToday) || HasId(kIdNow) || HasId(kIdCountry)) return 1;
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        if (item->formula->ContainsTodayLinks()) return 1;
    return 0;
}

int CCOpFormula::AlwaysRecalc() {
    if (HasId(kIdRand) || HasId(kIdRandBetween)) return 1;
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        if (item->formula->AlwaysRecalc()) return 1;
    return 0;
}

int CCOpFormula::ContainsSheetLinks() const {
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        if (item->formula->ContainsSheetLinks()) return 1;
    return 0;
}

int CCOpFormula::RegisterDependents(CTX * ctx, CCRef const * dependent) const {
    int all = 1;
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        if (!item->formula->RegisterDependents(ctx, dependent)) all = 0;
    return all;
}

void CCOpFormula::UnRegisterDependents(CTX * ctx, CCRef const * dependent) const {
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        item->formula->UnRegisterDependents(ctx, dependent);
}

int CCOpFormula::InvalidateRef(CTX * ctx, CCRef const * ref, CCFormula *& out, CCRef const * self) {
    return RebuildArguments(out, [&](CCFormula & argument, CCFormula *& changed) {
        return argument.InvalidateRef(ctx, ref, changed, self);
    });
}

int CCOpFormula::InvalidateItem(CTX * ctx, CCItem const * item, CCFormula *& out,
                                CCRef const * self) {
    return RebuildArguments(out, [&](CCFormula & argument, CCFormula *& changed) {
        return argument.InvalidateItem(ctx, item, changed, self);
    });
}

int CCOpFormula::UpdateRef(CTX * ctx, CCRef const * self, CCRef const * old, CCRef const * now,
                           int unregister, CCFormula *& out) {
    return RebuildArguments(out, [&](CCFormula & argument, CCFormula *& changed) {
        return argument.UpdateRef(ctx, self, old, now, unregister, changed);
    });
}

void CCOpFormula::MoveFormula(CTX * ctx, CCRef const * from, CCRef const * to) {
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        item->formula->MoveFormula(ctx, from, to);
}

// A reference that falls off the sheet becomes an error constant, and the others go on.
void CCOpFormula::UpdateInPaste(CTX * ctx, CCRef const * oldRef, CCRef const * newRef,
                                CCClipboardData const * clip) {
    m_bChecked = false;
    for (CCFormulaList * item = m_pArgs; item; item = item->next) {
        try {
            item->formula->UpdateInPaste(ctx, oldRef, newRef, clip);
        } catch (int) {
            delete item->formula;
            item->formula = new CCConstFormula(errRef);
        }
    }
}

ushort CCOpFormula::OpenRef(CTX *, CCRef const *) {
    if (m_nOpen) return 0;
    return m_nOpen = 1;
}

int CCOpFormula::NextValue(CTX * ctx, ushort, CCCellValue & value, CCRef const * current) {
    if (!m_nOpen) return 0;
    Eval(ctx, value, current);
    internal::DereferenceStep(ctx, value);
    m_nOpen = 0;
    return 1;
}

int CCOpFormula::RefSize(CTX *, ushort, CSize & size, CCRef const *) {
    if (!m_nOpen) return 0;
    size = CSize(1, 1);
    return 1;
}

int CCOpFormula::CloseRef(CTX *, ushort, CCRef const *) {
    m_nOpen = 0;
    return 1;
}

void CCOpFormula::OnSheetRename(CString & old, CString & now) {
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        item->formula->OnSheetRename(old, now);
}

void CCOpFormula::UpdateArgsOnSheetRename(CTX * ctx, CCRemoteRef const * old,
                                          CCRemoteRef const * now) {
    for (CCFormulaList const * item = m_pArgs; item; item = item->next)
        item->formula->UpdateArgsOnSheetRename(ctx, old, now);
}

int CCOpFormula::IsHyperLink() const { return HasId(kIdHyperlink); }

void CCOpFormula::Print(CTX * ctx, std::wostream & stream, uchar priority) const {
    PrintWith(ctx, stream, priority, m_pFunc ? m_pFunc->LocalName() : L"", &CCFormula::Print,
              &PrintFormulaList);
}

void CCOpFormula::Print2File(CTX * ctx, std::wostream & stream, uchar priority) const {
    PrintWith(ctx, stream, priority, m_pFunc ? m_pFunc->EnglishName() : L"", &CCFormula::Print2File,
              &PrintFormulaList2File);
}

void CCOpFormula::PrintWith(CTX * ctx, std::wostream & stream, uchar priority, wchar_t const * name,
                            PrintNode node, PrintList list) const {
    uchar const own = m_pFunc ? m_pFunc->priority : kFunctionPriority;
    bool const brackets = own < priority;
    if (brackets) stream.put(L'(');
    switch (m_pFunc ? m_pFunc->kind : uchar(kFunction)) {
    case kPrefix:
        WriteText(stream, name);
        list(ctx, stream, m_pArgs, own, 0);
        break;
    case kPostfix:
        list(ctx, stream, m_pArgs, own, 0);
        WriteText(stream, name);
        break;
    case kInfix:
        PrintInfix(ctx, stream, name, node);
        break;
    default:
        WriteText(stream, name);
        list(ctx, stream, m_pArgs, 0, 1);
    }
    if (brackets) stream.put(L')');
}

// Operators of one strength group from the left, so that one on the right keeps its brackets.
void CCOpFormula::PrintInfix(CTX * ctx, std::wostream & stream, wchar_t const * name,
                             PrintNode node) const {
    uchar const own = m_pFunc->priority;
    for (CCFormulaList const * item = m_pArgs; item; item = item->next) {
        if (item == m_pArgs) {
            (item->formula->*node)(ctx, stream, own);
            continue;
        }
        stream.put(L' ');
        WriteText(stream, name);
        stream.put(L' ');
        auto const * op = item->formula->GetType() == kOpFormula
                              ? static_cast<CCOpFormula const *>(item->formula)
                              : nullptr;
        bool const brackets = op && op->GetFunc() && op->GetFunc()->priority == own;
        if (brackets) stream.put(L'(');
        (item->formula->*node)(ctx, stream, own);
        if (brackets) stream.put(L')');
    }
}
