#include "formula/CCRemoteOpFormula.h"

#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/BuiltInIds.h"
#include "formula/CCConstFormula.h"
#include "formula/CCRefFormula.h"
#include "values/CCCellValue.h"

#include <memory>

using namespace cells;

int CCRemoteOpFormula::RefRemoteChanged = 0;

namespace {

constexpr wchar_t kInvalidLink[] = L"###INVALID####";

CCFormula * TextConstant(CString const & text) {
    CCCellValue value;
    value.Set(text);
    return new CCConstFormula(value);
}

} // namespace

bool CCRemoteOpFormula::YieldsOneValue() const {
    return m_pFunc && m_pFunc->stringId >= kIdFirstDataName && m_pFunc->stringId <= kIdLastDataName;
}

bool CCRemoteOpFormula::NamesLink(CTX * ctx, CCRemoteRef & remote, CCRef const * current) const {
    return GetFuncRemoteRef(m_pFunc, ctx, remote, m_pArgs, current) != 0;
}

CCOpFormula * CCRemoteOpFormula::Rebuild(CCFormulaList * args) const {
    auto * node = new CCRemoteOpFormula(m_pFunc, args);
    node->m_Remote.Set(m_Remote);
    return node;
}

int CCRemoteOpFormula::Check(CTX * ctx, CCRef const * current) const {
    if (m_bChecked) return 0;
    if (int const status = CCOpFormula::Check(ctx, current)) return status;
    CCRemoteRef remote;
    m_bChecked = NamesLink(ctx, remote, current);
    return m_bChecked ? 0 : int(errRef);
}

// Asking elsewhere may come back to this very formula, so it holds nothing of its own across it.
void CCRemoteOpFormula::Eval(CTX * ctx, CCCellValue & value, CCRef const * current) const {
    CCRemoteRef remote;
    if (!NamesLink(ctx, remote, current)) remote.Clear();
    if (!remote.IsEqual(m_Remote)) {
        CCRemoteRef const old(m_Remote);
        if (CCCellManager * manager = ctx->manager()) {
            if (!old.IsEmpty()) manager->DoRemoteUnRegisterDependent(&old, Follower(current));
            manager->DoRemoteRegisterDependent(&remote, Follower(current));
        }
        m_Remote.Set(remote);
        RefRemoteChanged = 1;
    }
    CCOpFormula::Eval(ctx, value, current);
}

int CCRemoteOpFormula::IsEditSourceRef(CTX * ctx, CCRef const * current) const {
    CCRemoteRef remote;
    return !YieldsOneValue() && NamesLink(ctx, remote, current) && remote.IsSingleValue(ctx);
}

CCRef const * CCRemoteOpFormula::GetEditSourceRef(CTX * ctx, CCRef const * current) const {
    CCRemoteRef remote;
    if (YieldsOneValue() || !NamesLink(ctx, remote, current) || !remote.IsSingleValue(ctx))
        return nullptr;
    return remote.Copy();
}

int CCRemoteOpFormula::ContainsLink(CTX * ctx, CCRef const * ref, CCRef const * current) const {
    if (ref && ref->GetType() == kRefRemote && ref->IsEqual(&m_Remote)) return 1;
    return CCOpFormula::ContainsLink(ctx, ref, current);
}

int CCRemoteOpFormula::IsSingleValue(CTX * ctx, CCRef const * current) {
    if (YieldsOneValue()) return 1;
    CCRemoteRef remote;
    CCCellManager * const manager = ctx->manager();
    return manager && NamesLink(ctx, remote, current) ? manager->DoRemoteIsSingleValue(&remote) : 0;
}

int CCRemoteOpFormula::RegisterDependents(CTX * ctx, CCRef const * dependent) const {
    int const all = CCOpFormula::RegisterDependents(ctx, dependent);
    CCRemoteRef remote;
    if (!NamesLink(ctx, remote, dependent)) {
        m_Remote = CCRemoteRef(kInvalidLink, kInvalidLink);
        return 0;
    }
    m_Remote.Set(remote);
    CCCellManager * const manager = ctx->manager();
    return manager && manager->DoRemoteRegisterDependent(&remote, dependent) ? all : 0;
}

void CCRemoteOpFormula::UnRegisterDependents(CTX * ctx, CCRef const * dependent) const {
    CCOpFormula::UnRegisterDependents(ctx, dependent);
    if (CCCellManager * manager = ctx->manager())
        manager->DoRemoteUnRegisterDependent(&m_Remote, dependent);
}

int CCRemoteOpFormula::InvalidateRef(CTX * ctx, CCRef const * ref, CCFormula *& out,
                                     CCRef const * self) {
    if (!ref || !ref->IsEqual(&m_Remote)) return CCOpFormula::InvalidateRef(ctx, ref, out, self);
    CCOpFormula::UnRegisterDependents(ctx, self);
    out = new CCConstFormula(errValue);
    return 1;
}

int CCRemoteOpFormula::InvalidateItem(CTX *, CCItem const *, CCFormula *&, CCRef const *) {
    return 0;
}

void CCRemoteOpFormula::MoveFormula(CTX * ctx, CCRef const * from, CCRef const * to) {
    CCOpFormula::MoveFormula(ctx, from, to);
    if (CCCellManager * manager = ctx->manager()) manager->DoRemoteMoveFormula(&m_Remote, from, to);
}

int CCRemoteOpFormula::UpdateRef(CTX * ctx, CCRef const * self, CCRef const * old,
                                 CCRef const * now, int unregister, CCFormula *& out) {
    if (!old || !old->IsEqual(&m_Remote))
        return CCOpFormula::UpdateRef(ctx, self, old, now, unregister, out);
    CCCellManager * const manager = ctx->manager();
    if (unregister && manager) manager->DoRemoteUnRegisterDependent(&m_Remote, self);
    CCOpFormula::UnRegisterDependents(ctx, self);
    if (now && now->GetType() == kRefRemote) {
        auto const & remote = *static_cast<CCRemoteRef const *>(now);
        out = ConstructOpFormula(m_pFunc, TextConstant(remote.document()),
                                 TextConstant(remote.item()));
    } else {
        out = new CCRefFormula(now, 0);
    }
    return 1;
}

ushort CCRemoteOpFormula::OpenRef(CTX * ctx, CCRef const * current) {
    if (YieldsOneValue()) return CCOpFormula::OpenRef(ctx, current);
    CCRemoteRef remote;
    return NamesLink(ctx, remote, current) ? remote.OpenRef(ctx) : ushort(0);
}

int CCRemoteOpFormula::NextValue(CTX * ctx, ushort handle, CCCellValue & value,
                                 CCRef const * current) {
    if (YieldsOneValue()) return CCOpFormula::NextValue(ctx, handle, value, current);
    CCRemoteRef remote;
    return NamesLink(ctx, remote, current) ? remote.NextValue(ctx, handle, value) : 0;
}

int CCRemoteOpFormula::RefSize(CTX * ctx, ushort handle, CSize & size, CCRef const * current) {
    if (YieldsOneValue()) return CCOpFormula::RefSize(ctx, handle, size, current);
    CCRemoteRef remote;
    return NamesLink(ctx, remote, current) ? remote.RefSize(ctx, handle, size) : 0;
}

int CCRemoteOpFormula::CloseRef(CTX * ctx, ushort handle, CCRef const * current) {
    if (YieldsOneValue()) return CCOpFormula::CloseRef(ctx, handle, current);
    CCRemoteRef remote;
    return NamesLink(ctx, remote, current) ? remote.CloseRef(ctx, handle) : 0;
}
