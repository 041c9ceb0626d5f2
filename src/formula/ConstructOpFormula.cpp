#include "formula/CCOpFormula.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefOpFormula.h"
#include "formula/CCRemoteOpFormula.h"
#include "platform/CodePage.h"
#include "platform/HeapText.h"

namespace {

CCFormula * MakeNode(CCFunc * func, CCFormulaList * args) {
    switch (func ? func->GetType() : 0) {
    case kPlainFunc:
        return new CCOpFormula(func, args);
    case kChooseFunc:
        return new CCChooseOpFormula(func, args);
    case kRemoteFunc:
        return new CCRemoteOpFormula(func, args);
    case kDocumentFunc:
        return new CCDocOpFormula(func, args);
    case kRefFunc:
        return new CCRefOpFormula(func, args);
    default:
        return nullptr;
    }
}

CCFormula * NameFormula(wchar_t * name) {
    cells::HeapText const owned(name);
    return new CCRefFormula(name, 0);
}

CCFormula * NameFormula(char const * name) {
    return new CCRefFormula(cells::FromNarrow(name).GetString(), 0);
}

} // namespace

CCFormula * ConstructOpFormula(CCFunc * func, CCFormulaList * args) {
    CCFormula * node = MakeNode(func, args);
    if (!node) FreeFormulaList(args, 1);
    return node;
}

CCFormula * ConstructOpFormula(CCFunc * func) {
    return ConstructOpFormula(func, FormulaListCreateEmpty());
}

CCFormula * ConstructOpFormula(CCFunc * func, CCFormula * a) {
    return ConstructOpFormula(func, FormulaListCreate1Item(a));
}

CCFormula * ConstructOpFormula(CCFunc * func, CCFormula * a, CCFormula * b) {
    return ConstructOpFormula(func, FormulaListCreate2Item(a, b));
}

CCFormula * ConstructOpFormula(CCFunc * func, CCFormula * a, CCFormula * b, CCFormula * c) {
    return ConstructOpFormula(func, FormulaListCreate3Item(a, b, c));
}

CCFormula * ConstructOpFormula(CCFunc * func, wchar_t * name) {
    return ConstructOpFormula(func, NameFormula(name));
}

CCFormula * ConstructOpFormula(CCFunc * func, wchar_t * first, wchar_t * second) {
    CCFormula * const a = NameFormula(first);
    return ConstructOpFormula(func, a, NameFormula(second));
}

CCFormula * ConstructOpFormula(CCFunc * func, char const * name) {
    return ConstructOpFormula(func, NameFormula(name));
}

CCFormula * ConstructOpFormula(CCFunc * func, char const * first, char const * second) {
    CCFormula * const a = NameFormula(first);
    return ConstructOpFormula(func, a, NameFormula(second));
}
