#include "formula/CCOpFormula.h"
#include "values/CCCellValue.h"

using namespace cells;

int CCChooseOpFormula::Check(CTX * ctx, CCRef const * current) const {
    if (m_bChecked) return 0;
    if (!m_pFunc) return errLegacy;
    if (m_pFunc->check && !m_pFunc->check(ctx, m_pArgs, current)) return errLegacy;
    CCFormula * choice = nullptr;
    if (int const status = GetFuncChoice(m_pFunc, ctx, choice, m_pArgs, current)) return status;
    if (!choice) return errLegacy;
    if (int const status = choice->Check(ctx, current)) return status;
    m_bChecked = true;
    return 0;
}

CCFormula * CCChooseOpFormula::Choose(CTX * ctx, CCRef const * current) const {
    CCFormula * choice = nullptr;
    return GetFuncChoice(m_pFunc, ctx, choice, m_pArgs, current) == 0 ? choice : nullptr;
}

int CCChooseOpFormula::IsEditSourceRef(CTX * ctx, CCRef const * current) const {
    CCFormula * const choice = Choose(ctx, current);
    return choice ? choice->IsEditSourceRef(ctx, current) : 0;
}

CCRef const * CCChooseOpFormula::GetEditSourceRef(CTX * ctx, CCRef const * current) const {
    CCFormula * const choice = Choose(ctx, current);
    return choice ? choice->GetEditSourceRef(ctx, current) : nullptr;
}

int CCChooseOpFormula::IsSingleValue(CTX * ctx, CCRef const * current) {
    CCFormula * const choice = Choose(ctx, current);
    return choice ? choice->IsSingleValue(ctx, current) : 0;
}

ushort CCChooseOpFormula::OpenRef(CTX * ctx, CCRef const * current) {
    m_pChosen = Choose(ctx, current);
    if (m_pChosen && m_pChosen->Check(ctx, current)) m_pChosen = nullptr;
    ushort const handle = m_pChosen ? m_pChosen->OpenRef(ctx, current) : ushort(0);
    if (!handle) m_pChosen = nullptr;
    return handle;
}

int CCChooseOpFormula::NextValue(CTX * ctx, ushort handle, CCCellValue & value,
                                 CCRef const * current) {
    return m_pChosen ? m_pChosen->NextValue(ctx, handle, value, current) : 0;
}

int CCChooseOpFormula::RefSize(CTX * ctx, ushort handle, CSize & size, CCRef const * current) {
    return m_pChosen ? m_pChosen->RefSize(ctx, handle, size, current) : 0;
}

int CCChooseOpFormula::CloseRef(CTX * ctx, ushort handle, CCRef const * current) {
    return m_pChosen ? m_pChosen->CloseRef(ctx, handle, current) : 0;
}
