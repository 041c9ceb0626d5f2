#include "functions/internal/ReferenceArguments.h"

#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/CCNameRef.h"
#include "formula/CCRefFormula.h"

namespace cells::internal {

std::unique_ptr<CCRef> ReferenceOf(CTX * ctx, CCFormula const & formula, CCRef const * current) {
    CCCellValue value;
    CCRef const * ref;
    if (formula.GetType() == kRefFormula) {
        ref = static_cast<CCRefFormula const &>(formula).GetRef();
    } else {
        formula.Eval(ctx, value, current);
        ref = value.GetRef();
    }
    return std::unique_ptr<CCRef>(ref ? ref->Copy() : nullptr);
}

std::unique_ptr<CCRef> ResolveName(CTX * ctx, std::unique_ptr<CCRef> ref) {
    if (!ref || ref->GetType() != kRefName) return ref;
    CCCellManager * const manager = ctx->manager();
    return std::unique_ptr<CCRef>(
        manager ? manager->TranslateNameRef(static_cast<CCNameRef const *>(ref.get())) : nullptr);
}

} // namespace cells::internal
