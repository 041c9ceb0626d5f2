#include "formula/CCOpFormula.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRefOpFormula.h"
#include "formula/CCRemoteOpFormula.h"
#include "platform/CodePage.h"
#include "platform/HeapText.h"

#include <memory>
#include <new>

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

std::unique_ptr<CCFormula> NameFormula(wchar_t * name) {
    cells::HeapText const owned(name);
    return std::make_unique<CCRefFormula>(name, uchar(0));
}

std::unique_ptr<CCFormula> NameFormula(char const * name) {
    return std::make_unique<CCRefFormula>(cells::FromNarrow(name).GetString(), uchar(0));
}

} // namespace

CCFormula * ConstructOpFormula(CCFunc * func, CCFormulaList * args) {
    try {
        if (CCFormula * node = MakeNode(func, args)) return node;
    } catch (std::bad_alloc const &) {
        FreeFormulaList(args, 1);
        throw;
    }
    FreeFormulaList(args, 1);
    return nullptr;
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
    return ConstructOpFormula(func, NameFormula(name).release());
}

CCFormula * ConstructOpFormula(CCFunc * func, wchar_t * first, wchar_t * second) {
    cells::HeapText last(second);
    std::unique_ptr<CCFormula> a = NameFormula(first);
    std::unique_ptr<CCFormula> b = NameFormula(last.release());
    return ConstructOpFormula(func, a.release(), b.release());
}

CCFormula * ConstructOpFormula(CCFunc * func, char const * name) {
    return ConstructOpFormula(func, NameFormula(name).release());
}

CCFormula * ConstructOpFormula(CCFunc * func, char const * first, char const * second) {
    std::unique_ptr<CCFormula> a = NameFormula(first), b = NameFormula(second);
    return ConstructOpFormula(func, a.release(), b.release());
}
