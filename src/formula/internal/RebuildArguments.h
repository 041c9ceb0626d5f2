// The body of CCOpFormula::RebuildArguments, for the node classes that use it.
#pragma once

#include "formula/CCOpFormula.h"

template <typename Change>
int CCOpFormula::RebuildArguments(CCFormula *& out, Change && change) const {
    out = nullptr;
    int any = 0;
    cells::internal::FormulaListBuilder args;
    for (CCFormulaList const * item = m_pArgs; item; item = item->next) {
        CCFormula * changed = nullptr;
        any |= change(*item->formula, changed) != 0;
        args.Add(changed ? changed : item->formula->Copy());
    }
    out = Rebuild(args.Release());
    return any;
}
