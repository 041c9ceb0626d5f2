// CCFunc: one operator or built-in function.
//
// Every one is a single object for the life of the process; formula nodes point at it, and files
// name it by English name and kind. The check function tells whether a call's shape is acceptable,
// the eval function computes it. Subclasses add one function for calls that pick a branch, name
// another document or name a property of the document.
#pragma once

#include "platform/CString.h"
#include "platform/HeapText.h"

class CArchive;
class CCCellValue;
class CCDocumentRef;
class CCFormula;
struct CCFormulaList;
class CCRef;
class CCRemoteRef;

namespace cells {

class CTX;

// Kinds of a function: one bit each, so that lookups can mask.
enum FunctionKind : uchar { kPrefix = 1, kPostfix = 2, kInfix = 4, kFunction = 8 };

constexpr uchar kFunctionPriority = 100;

using CheckFn = int (*)(CTX * ctx, CCFormulaList const * args, CCRef const * current);
using EvalFn = void (*)(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                        CCRef const * current);
using ChoiceFn = int (*)(CTX * ctx, CCFormula *& choice, CCFormulaList const * args,
                         CCRef const * current);
using RemoteFn = int (*)(CTX * ctx, CCRemoteRef & remote, CCFormulaList const * args,
                         CCRef const * current);
using DocumentFn = int (*)(CTX * ctx, CCDocumentRef & document, CCFormulaList const * args,
                           CCRef const * current);

} // namespace cells

// What GetType of a function gives; the class of its formula nodes follows from it.
enum EFuncType : int {
    kPlainFunc = 1,
    kChooseFunc = 2,
    kRemoteFunc = 3,
    kDocumentFunc = 4,
    kRefFunc = 5
};

class CVCELLS_API CCFunc {
public:
    CCFunc() = default;
    CCFunc(CCFunc const &) = delete;
    CCFunc & operator=(CCFunc const &) = delete;
    virtual ~CCFunc() = default;
    virtual int GetType() const { return kPlainFunc; }

    // Takes the local name from string resource `id` and the English name from the built-in table.
    void Init(unsigned int id, uchar priority, uchar kind, uchar category, cells::CheckFn check,
              cells::EvalFn eval);
    // Operators: both names are the glyph.
    void Init(wchar_t const * name, uchar priority, uchar kind, uchar category,
              cells::CheckFn check, cells::EvalFn eval);
    // Field `field` of the function's string: name, description, argument names.
    bool GetFuncString(CString & out, int field) const;

    wchar_t const * LocalName() const { return localName ? localName.get() : L""; }
    wchar_t const * EnglishName() const { return englishName ? englishName.get() : L""; }

    cells::HeapText localName;
    unsigned int stringId = 0; // 0 for operators
    uchar priority = 0;        // binding strength: 10 to 100
    uchar category = 0;        // catalogue group; 0 for operators
    uchar kind = 0;
    cells::CheckFn check = nullptr;
    cells::EvalFn eval = nullptr;
    cells::HeapText englishName;
};

namespace cells::internal {

// What the classes with one more function have in common.
template <typename Extra>
class FuncWithExtra : public CCFunc {
public:
    explicit FuncWithExtra(Extra function) : extra(function) {}
    // As the forms without it.
    using CCFunc::Init;
    void Init(unsigned int id, uchar binding, uchar newKind, uchar group, CheckFn checkFn,
              EvalFn evalFn, Extra function) {
        Init(id, binding, newKind, group, checkFn, evalFn);
        extra = function;
    }
    void Init(wchar_t const * name, uchar binding, uchar newKind, uchar group, CheckFn checkFn,
              EvalFn evalFn, Extra function) {
        Init(name, binding, newKind, group, checkFn, evalFn);
        extra = function;
    }

    Extra extra;
};

} // namespace cells::internal

class CVCELLS_API CCChooseFunc : public cells::internal::FuncWithExtra<cells::ChoiceFn> {
public:
    explicit CCChooseFunc(cells::ChoiceFn choice = nullptr) : FuncWithExtra(choice) {}
    int GetType() const override { return kChooseFunc; }
    // The live argument of a call; gives an error number, 0 for success. A null choice with 0 means
    // that nothing is selected.
    virtual int GetChoice(cells::CTX * ctx, CCFormula *& choice, CCFormulaList const * args,
                          CCRef const * current);
};

class CVCELLS_API CCRemoteFunc : public cells::internal::FuncWithExtra<cells::RemoteFn> {
public:
    explicit CCRemoteFunc(cells::RemoteFn remote = nullptr) : FuncWithExtra(remote) {}
    int GetType() const override { return kRemoteFunc; }
    virtual int GetRemoteRef(cells::CTX * ctx, CCRemoteRef & remote, CCFormulaList const * args,
                             CCRef const * current);
};

class CVCELLS_API CCDocumentFunc : public cells::internal::FuncWithExtra<cells::DocumentFn> {
public:
    explicit CCDocumentFunc(cells::DocumentFn document = nullptr) : FuncWithExtra(document) {}
    int GetType() const override { return kDocumentFunc; }
    virtual int GetDocumentRef(cells::CTX * ctx, CCDocumentRef & document,
                               CCFormulaList const * args, CCRef const * current);
};

class CVCELLS_API CCRefFunc : public CCFunc {
public:
    int GetType() const override { return kRefFunc; }
};

// The same, after a test of the function's class; a wrong class or null gives 4, 0 and 0.
CVCELLS_API int GetFuncChoice(CCFunc * func, cells::CTX * ctx, CCFormula *& choice,
                              CCFormulaList const * args, CCRef const * current);
CVCELLS_API int GetFuncRemoteRef(CCFunc * func, cells::CTX * ctx, CCRemoteRef & remote,
                                 CCFormulaList const * args, CCRef const * current);
CVCELLS_API int GetFuncDocumentRef(CCFunc * func, cells::CTX * ctx, CCDocumentRef & document,
                                   CCFormulaList const * args, CCRef const * current);
