#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/BuiltInIds.h"
#include "formula/CCDocumentRef.h"
#include "formula/CCOpFormula.h"

using namespace cells;

// The arguments of ROW and COLUMN are only positions; their values do not matter.
bool CCDocOpFormula::ReadsPositions() const { return HasId(kIdRow) || HasId(kIdColumn); }

int CCDocOpFormula::ContainsLink(CTX * ctx, CCRef const * ref, CCRef const * current) const {
    CCDocumentRef document;
    if (ref && GetFuncDocumentRef(m_pFunc, ctx, document, m_pArgs, current) &&
        ref->IsEqual(&document))
        return 1;
    return CCOpFormula::ContainsLink(ctx, ref, current);
}

int CCDocOpFormula::RegisterDependents(CTX * ctx, CCRef const * dependent) const {
    int all = ReadsPositions() ? 1 : CCOpFormula::RegisterDependents(ctx, dependent);
    CCDocumentRef document;
    CCCellManager * const manager = ctx->manager();
    if (!manager || !GetFuncDocumentRef(m_pFunc, ctx, document, m_pArgs, dependent)) return 0;
    return manager->RegisterDocumentDependent(&document, dependent) ? all : 0;
}

// A position that is computed follows its place while it is: all arguments leave.
void CCDocOpFormula::UnRegisterDependents(CTX * ctx, CCRef const * dependent) const {
    CCOpFormula::UnRegisterDependents(ctx, dependent);
    CCDocumentRef document;
    CCCellManager * const manager = ctx->manager();
    if (manager && GetFuncDocumentRef(m_pFunc, ctx, document, m_pArgs, dependent))
        manager->UnRegisterDocumentDependent(&document, dependent);
}

void CCDocOpFormula::MoveFormula(CTX * ctx, CCRef const * from, CCRef const * to) {
    CCOpFormula::MoveFormula(ctx, from, to);
    CCDocumentRef document;
    CCCellManager * const manager = ctx->manager();
    if (manager && GetFuncDocumentRef(m_pFunc, ctx, document, m_pArgs, from))
        manager->MoveDocumentFormula(&document, from, to);
}
