// Formulas between the older file version and today.
#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/BuiltInIds.h"
#include "formula/CCConstFormula.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRefFormula.h"
#include "formula/FunctionRegistry.h"
#include "formula/OperatorObjects.h"
#include "legacy/CCC4W15Convert.h"
#include "platform/CodePage.h"

namespace {

using cells::internal::Operator;
using Legacy = CCC4W15Exchange;

// The functions that are operators by another name. An operator of fewer items than it joins would
// print as its bare argument, so that such calls stay calls.
struct NamedOperator {
    unsigned int function;
    Operator op;
    int fewestItems;
};
constexpr NamedOperator kNamedOperators[] = {
    {cells::kIdPlus, Operator::kAdd, 2},       {cells::kIdMinus, Operator::kSubtract, 2},
    {cells::kIdTimes, Operator::kMultiply, 2}, {cells::kIdDivide, Operator::kDivide, 2},
    {cells::kIdPower, Operator::kPower, 2},    {cells::kIdAnd, Operator::kAnd, 2},
    {cells::kIdOr, Operator::kOr, 2},          {cells::kIdNot, Operator::kNot, 1},
};

// The function of a call. A sign before an argument that is no single value here, such as a name
// that comes later, is still a sign: the infix operator of one item would print without it.
CCFunc * FindFunction(cells::CTX * ctx, std::string name, CCFormulaList * args) {
    CCFunc * const func = GetFunction(ctx, name.data(), args);
    if (!func || func->kind != cells::kInfix || FormulaList2Item(args)) return func;
    CCFunc * sign;
    return _EatFunction(ctx, func->LocalName(), sign, cells::kPrefix) ? sign : func;
}

CCFunc * PreferOperator(CCFunc * func, CCFormulaList const * args) {
    for (NamedOperator const & named : kNamedOperators)
        if (func->stringId == named.function && FormulaListHasItems(args, named.fewestItems))
            return OperatorObject(named.op);
    return func;
}

} // namespace

cells::CTX * CCC4W15Convert::Context() const { return m_pManager->ctx(); }

CCC4W15Exchange::CCC4W15_Formula * CCC4W15Convert::ConvertTo15(CCFormula const * formula,
                                                               CPoint const * origin) const {
    switch (formula ? formula->GetType() : 0) {
    case kConstFormula: {
        auto constant = std::make_unique<Legacy::CCC4W15_FormulaConst>();
        ConvertTo15(constant->value, static_cast<CCConstFormula const *>(formula)->GetValue());
        return constant.release();
    }
    case kRefFormula: {
        auto const * const node = static_cast<CCRefFormula const *>(formula);
        auto reference = std::make_unique<Legacy::CCC4W15_FormulaRef>();
        Legacy::CCC4W15_Ref * ref;
        ConvertTo15(ref, node->GetRef(), node->GetMode(), origin);
        reference->ref.reset(ref);
        return ref ? reference.release() : nullptr;
    }
    case kOpFormula:
    case kRemoteOpFormula:
    case kDocOpFormula:
        return CallTo15(*static_cast<CCOpFormula const *>(formula), origin).release();
    default:
        return nullptr;
    }
}

// A function whose name the code page lacks would not be found again.
std::unique_ptr<CCC4W15Exchange::CCC4W15_Formula>
CCC4W15Convert::CallTo15(CCOpFormula const & formula, CPoint const * origin) const {
    if (!formula.GetFunc()) return nullptr;
    auto call = std::make_unique<Legacy::CCC4W15_FormulaOp>();
    bool isCut;
    call->name = cells::ToNarrow(formula.GetFunc()->LocalName(), &isCut);
    if (isCut) return nullptr;
    for (CCFormulaList const * arg = formula.GetArgs(); arg; arg = arg->next) {
        Legacy::CCC4W15_Formula * const legacy = ConvertTo15(arg->formula, origin);
        if (!legacy) return nullptr;
        call->args.Add(legacy);
    }
    return call;
}

CCFormula * CCC4W15Convert::ConvertTo95(Legacy::CCC4W15_Formula const * legacy,
                                        CPoint const * origin) const {
    return FormulaTo95(legacy, origin, 1).release();
}

std::unique_ptr<CCFormula> CCC4W15Convert::FormulaTo95(Legacy::CCC4W15_Formula const * legacy,
                                                       CPoint const * origin, int depth) const {
    if (depth > cells::kMaxFormulaDepth) return nullptr;
    switch (legacy ? legacy->GetType() : 0) {
    case Legacy::kFormulaOp:
        return CallTo95(static_cast<Legacy::CCC4W15_FormulaOp const &>(*legacy), origin, depth);
    case Legacy::kFormulaConst: {
        CCCellValue value;
        ConvertTo95(value, static_cast<Legacy::CCC4W15_FormulaConst const *>(legacy)->value);
        return std::make_unique<CCConstFormula>(value);
    }
    case Legacy::kFormulaRef: {
        CCRef * ref;
        uchar flags;
        ConvertTo95(ref, flags, static_cast<Legacy::CCC4W15_FormulaRef const *>(legacy)->ref.get(),
                    origin);
        std::unique_ptr<CCRef> const owned(ref);
        return ref ? std::make_unique<CCRefFormula>(ref, flags) : nullptr;
    }
    default:
        return nullptr;
    }
}

std::unique_ptr<CCFormula> CCC4W15Convert::CallTo95(Legacy::CCC4W15_FormulaOp const & legacy,
                                                    CPoint const * origin, int depth) const {
    cells::internal::FormulaListBuilder args;
    for (auto const * arg = legacy.args.First(); arg; arg = arg->next) {
        std::unique_ptr<CCFormula> formula = FormulaTo95(arg->formula.get(), origin, depth + 1);
        if (!formula) return nullptr;
        args.Add(formula.release());
    }
    CCFunc * const func = FindFunction(Context(), legacy.name.value_or(""), args.First());
    if (!func) return nullptr;
    CCFunc * const preferred = PreferOperator(func, args.First());
    return std::unique_ptr<CCFormula>(ConstructOpFormula(preferred, args.Release()));
}
