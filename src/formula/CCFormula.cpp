#include "formula/CCFormula.h"

#include "formula/CCOpFormula.h"
#include "formula/CCRef3D.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefList.h"
#include "formula/CCRefOpFormula.h"
#include "formula/Dereference.h"
#include "values/CCCellValue.h"

#include <cmath>
#include <vector>

void CCFormula::OnSheetRename(CString &, CString &) {}
void CCFormula::UpdateArgsOnSheetRename(cells::CTX *, CCRemoteRef const *, CCRemoteRef const *) {}

void CCFormula::ForgetChoices() {
    if (!m_bHasChoice) return;
    m_bChecked = false;
    auto const * args = static_cast<CCOpFormula *>(this)->GetArgs();
    for (; args; args = args->next) args->formula->ForgetChoices();
}

void EvalFormula(cells::CTX * ctx, CCCellValue & value, CCFormula const * formula,
                 CCRef const * current) {
    if (!formula) return value.Set(errLegacy);
    if (int const status = formula->Check(ctx, current)) return value.Set(status);
    formula->Eval(ctx, value, current);
    if (value.IsRef()) cells::internal::Dereference(ctx, value);
    if (value.IsNumber() && !std::isfinite(value.GetNumber())) value.Set(errValue);
}

namespace cells::internal {

int Dereference(CTX * ctx, CCCellValue & value) {
    CCRef * const ref = value.GetRef();
    CCCellValue content;
    content.Set(value.GetFormat());
    int const answer = ref ? ref->GetValue(ctx, content) : 0;
    if (!answer) content.Set(errRef);
    value.Set(content);
    return answer;
}

void DereferenceStep(CTX * ctx, CCCellValue & value) {
    if (value.IsRef() && Dereference(ctx, value) == -1) value.Set(errRef);
}

} // namespace cells::internal

namespace {

void AddFront(CCRefList *& list, CCRefList * node) {
    node->m_pNext = list;
    list = node;
}

// The place that a reference function yielded last; its arguments are not looked at.
void AddTarget(cells::CTX * ctx, CCRef * target, CCRefList *& list) {
    if (!target) return;
    if (target->GetType() != kRefSheets)
        return AddFront(list, cells::internal::NewRefNode(target->Copy(), true));
    CCRefList * sheets = static_cast<CCRef3D *>(target)->TranslateToRefList(ctx);
    while (sheets) {
        CCRefList * const next = sheets->m_pNext;
        AddFront(list, sheets);
        sheets = next;
    }
}

} // namespace

CCRefList * CCFormula::GetPrecedents(cells::CTX * ctx) const {
    CCRefList * list = nullptr;
    std::vector<CCFormula const *> stack{this};
    while (!stack.empty()) {
        CCFormula const * const node = stack.back();
        stack.pop_back();
        int const type = node->GetType();
        if (type == kRefFormula) {
            CCRef const * const ref = static_cast<CCRefFormula const *>(node)->GetRef();
            if (ref) AddFront(list, cells::internal::NewRefNode(ref->Copy(), true));
        } else if (type == kRefOpFormula &&
                   static_cast<CCRefOpFormula const *>(node)->GetTarget()) {
            AddTarget(ctx, static_cast<CCRefOpFormula const *>(node)->GetTarget(), list);
        } else if (type >= kOpFormula && type <= kDocOpFormula) {
            auto const * args = static_cast<CCOpFormula const *>(node)->GetArgs();
            for (; args; args = args->next) stack.push_back(args->formula);
        }
    }
    return list;
}
