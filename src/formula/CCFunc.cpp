#include "formula/CCFunc.h"

#include "platform/Resources.h"
#include "values/CCCellValue.h"

namespace {

cells::HeapText NameOf(CString const & strings) {
    CString name;
    cells::GetField(strings, 0, name);
    return cells::HeapText(cells::NewHeapText(name.GetString()));
}

} // namespace

void CCFunc::Init(unsigned int id, uchar binding, uchar newKind, uchar group,
                  cells::CheckFn checkFn, cells::EvalFn evalFn) {
    localName = NameOf(cells::LoadString(id));
    englishName = NameOf(cells::LoadEnglishString(id));
    stringId = id;
    priority = binding;
    kind = newKind;
    category = group;
    check = checkFn;
    eval = evalFn;
}

void CCFunc::Init(wchar_t const * name, uchar binding, uchar newKind, uchar group,
                  cells::CheckFn checkFn, cells::EvalFn evalFn) {
    localName.reset(cells::NewHeapText(name));
    englishName.reset(cells::NewHeapText(name));
    stringId = 0;
    priority = binding;
    kind = newKind;
    category = group;
    check = checkFn;
    eval = evalFn;
}

bool CCFunc::GetFuncString(CString & out, int field) const {
    return stringId != 0 && cells::GetField(cells::LoadString(stringId), field, out);
}

int CCChooseFunc::GetChoice(cells::CTX * ctx, CCFormula *& choice, CCFormulaList const * args,
                            CCRef const * current) {
    choice = nullptr;
    return extra ? extra(ctx, choice, args, current) : int(errLegacy);
}

int CCRemoteFunc::GetRemoteRef(cells::CTX * ctx, CCRemoteRef & remote, CCFormulaList const * args,
                               CCRef const * current) {
    return extra ? extra(ctx, remote, args, current) : 0;
}

int CCDocumentFunc::GetDocumentRef(cells::CTX * ctx, CCDocumentRef & document,
                                   CCFormulaList const * args, CCRef const * current) {
    return extra ? extra(ctx, document, args, current) : 0;
}

int GetFuncChoice(CCFunc * func, cells::CTX * ctx, CCFormula *& choice, CCFormulaList const * args,
                  CCRef const * current) {
    choice = nullptr;
    if (!func || func->GetType() != kChooseFunc) return errLegacy;
    return static_cast<CCChooseFunc *>(func)->GetChoice(ctx, choice, args, current);
}

int GetFuncRemoteRef(CCFunc * func, cells::CTX * ctx, CCRemoteRef & remote,
                     CCFormulaList const * args, CCRef const * current) {
    if (!func || func->GetType() != kRemoteFunc) return 0;
    return static_cast<CCRemoteFunc *>(func)->GetRemoteRef(ctx, remote, args, current);
}

int GetFuncDocumentRef(CCFunc * func, cells::CTX * ctx, CCDocumentRef & document,
                       CCFormulaList const * args, CCRef const * current) {
    if (!func || func->GetType() != kDocumentFunc) return 0;
    return static_cast<CCDocumentFunc *>(func)->GetDocumentRef(ctx, document, args, current);
}
