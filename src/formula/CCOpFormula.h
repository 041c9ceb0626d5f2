// CCOpFormula: an operator or function with its arguments.
//
// ConstructOpFormula is the way to make one: the class of the node follows from the class of the
// function.
#pragma once

#include "formula/CCFormula.h"
#include "formula/CCFunc.h"
#include "formula/FormulaList.h"

class CVCELLS_API CCOpFormula : public CCFormula, public cells::internal::Pooled<CCOpFormula> {
public:
    CCOpFormula() : CCFormula(kOpFormula) {}
    // Takes the list over.
    CCOpFormula(CCFunc * func, CCFormulaList * args) : CCOpFormula(kOpFormula, func, args) {}
    CCOpFormula(CCOpFormula const & other);
    ~CCOpFormula() override;

    CCFunc * GetFunc() const { return m_pFunc; } // not owned; null after reading an unknown name
    CCFormulaList * GetArgs() const { return m_pArgs; } // borrowed
    bool HasId(unsigned int id) const { return m_pFunc && m_pFunc->stringId == id; }

    int GetType() const override { return kOpFormula; }
    CCFormula * Copy() const override { return new CCOpFormula(*this); }
    int Check(cells::CTX * ctx, CCRef const * current) const override;
    void Eval(cells::CTX * ctx, CCCellValue & value, CCRef const * current) const override;
    void Print2File(cells::CTX * ctx, std::wostream & stream, uchar priority) const override;
    void Print(cells::CTX * ctx, std::wostream & stream, uchar priority) const override;
    int IsEditSourceRef(cells::CTX *, CCRef const *) const override { return 0; }
    CCRef const * GetEditSourceRef(cells::CTX *, CCRef const *) const override { return nullptr; }
    int ContainsLink(cells::CTX * ctx, CCRef const * ref, CCRef const * current) const override;
    int ContainsRemoteLinks() override;
    int ContainsTodayLinks() override;
    int AlwaysRecalc() override;
    int IsSingleValue(cells::CTX *, CCRef const *) override { return 1; }
    int RegisterDependents(cells::CTX * ctx, CCRef const * dependent) const override;
    void UnRegisterDependents(cells::CTX * ctx, CCRef const * dependent) const override;
    int InvalidateRef(cells::CTX * ctx, CCRef const * ref, CCFormula *& out,
                      CCRef const * self) override;
    int InvalidateItem(cells::CTX * ctx, CCItem const * item, CCFormula *& out,
                       CCRef const * self) override;
    void MoveFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to) override;
    void UpdateInPaste(cells::CTX * ctx, CCRef const * oldRef, CCRef const * newRef,
                       CCClipboardData const * clip) override;
    int UpdateRef(cells::CTX * ctx, CCRef const * self, CCRef const * old, CCRef const * now,
                  int unregister, CCFormula *& out) override;
    ushort OpenRef(cells::CTX * ctx, CCRef const * current) override;
    int NextValue(cells::CTX * ctx, ushort handle, CCCellValue & value,
                  CCRef const * current) override;
    int RefSize(cells::CTX * ctx, ushort handle, CSize & size, CCRef const * current) override;
    int CloseRef(cells::CTX * ctx, ushort handle, CCRef const * current) override;
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) const override;
    void OnSheetRename(CString & old, CString & now) override;
    int ContainsSheetLinks() const override;
    void UpdateArgsOnSheetRename(cells::CTX * ctx, CCRemoteRef const * old,
                                 CCRemoteRef const * now) override;
    int IsHyperLink() const override;

    bool IsOpen() const { return m_nOpen != 0; }
    // Makes it a tree of no cell: evaluated for one, it registers nothing there. For trees that
    // live for one call.
    void Detach();

protected:
    CCOpFormula(EFormulaType kind, CCFunc * func, CCFormulaList * args);
    // A node of the same class over new arguments, which keeps what the class remembers.
    virtual CCOpFormula * Rebuild(CCFormulaList * args) const {
        return new CCOpFormula(m_pFunc, args);
    }
    // Runs `change` on every argument and rebuilds the node of what it hands out.
    template <typename Change>
    int RebuildArguments(CCFormula *& out, Change && change) const;

    // The cell that follows what the node finds; null in a detached tree.
    CCRef const * Follower(CCRef const * current) const { return m_bDetached ? nullptr : current; }

    CCFunc * m_pFunc = nullptr;
    CCFormulaList * m_pArgs = nullptr;
    bool m_bDetached = false;
    mutable ushort m_nOpen = 0;

private:
    using PrintNode = void (CCFormula::*)(cells::CTX *, std::wostream &, uchar) const;
    using PrintList = void (*)(cells::CTX *, std::wostream &, CCFormulaList const *, uchar, int);
    void PrintWith(cells::CTX * ctx, std::wostream & stream, uchar priority, wchar_t const * name,
                   PrintNode node, PrintList list) const;
    void PrintInfix(cells::CTX * ctx, std::wostream & stream, wchar_t const * name,
                    PrintNode node) const;
    void CloseArguments(cells::CTX * ctx, CCRef const * current) const;
    void NoteArguments(); // what the node knows of the arguments that it has now
};

// IF and CHOOSE: only the live argument is checked and walked.
class CVCELLS_API CCChooseOpFormula : public CCOpFormula {
public:
    CCChooseOpFormula() : CCChooseOpFormula(nullptr, nullptr) {}
    CCChooseOpFormula(CCFunc * func, CCFormulaList * args)
        : CCOpFormula(kChooseOpFormula, func, args) {}
    CCChooseOpFormula(CCChooseOpFormula const & other) : CCOpFormula(other) {}

    int GetType() const override { return kChooseOpFormula; }
    CCFormula * Copy() const override { return new CCChooseOpFormula(*this); }
    int Check(cells::CTX * ctx, CCRef const * current) const override;
    int IsEditSourceRef(cells::CTX * ctx, CCRef const * current) const override;
    CCRef const * GetEditSourceRef(cells::CTX * ctx, CCRef const * current) const override;
    int IsSingleValue(cells::CTX * ctx, CCRef const * current) override;
    ushort OpenRef(cells::CTX * ctx, CCRef const * current) override;
    int NextValue(cells::CTX * ctx, ushort handle, CCCellValue & value,
                  CCRef const * current) override;
    int RefSize(cells::CTX * ctx, ushort handle, CSize & size, CCRef const * current) override;
    int CloseRef(cells::CTX * ctx, ushort handle, CCRef const * current) override;

protected:
    CCOpFormula * Rebuild(CCFormulaList * args) const override {
        return new CCChooseOpFormula(m_pFunc, args);
    }

private:
    CCFormula * Choose(cells::CTX * ctx, CCRef const * current) const; // null when it fails

    CCFormula * m_pChosen = nullptr; // an argument; set by OpenRef
};

// Functions of document properties.
class CVCELLS_API CCDocOpFormula : public CCOpFormula {
public:
    CCDocOpFormula() : CCDocOpFormula(nullptr, nullptr) {}
    CCDocOpFormula(CCFunc * func, CCFormulaList * args) : CCOpFormula(kDocOpFormula, func, args) {}
    CCDocOpFormula(CCDocOpFormula const & other) : CCOpFormula(other) {}

    int GetType() const override { return kDocOpFormula; }
    CCFormula * Copy() const override { return new CCDocOpFormula(*this); }
    int ContainsLink(cells::CTX * ctx, CCRef const * ref, CCRef const * current) const override;
    int RegisterDependents(cells::CTX * ctx, CCRef const * dependent) const override;
    void UnRegisterDependents(cells::CTX * ctx, CCRef const * dependent) const override;
    void MoveFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to) override;

protected:
    CCOpFormula * Rebuild(CCFormulaList * args) const override {
        return new CCDocOpFormula(m_pFunc, args);
    }

private:
    bool ReadsPositions() const;
};

// Makes the node for a call and takes the arguments over; null, and the arguments deleted, for a
// function class that does not exist. Names become references to names and are freed with free.
CVCELLS_API CCFormula * ConstructOpFormula(CCFunc * func, CCFormulaList * args);
CVCELLS_API CCFormula * ConstructOpFormula(CCFunc * func);
CVCELLS_API CCFormula * ConstructOpFormula(CCFunc * func, CCFormula * a);
CVCELLS_API CCFormula * ConstructOpFormula(CCFunc * func, CCFormula * a, CCFormula * b);
CVCELLS_API CCFormula * ConstructOpFormula(CCFunc * func, CCFormula * a, CCFormula * b,
                                           CCFormula * c);
CVCELLS_API CCFormula * ConstructOpFormula(CCFunc * func, wchar_t * name);
CVCELLS_API CCFormula * ConstructOpFormula(CCFunc * func, wchar_t * first, wchar_t * second);
CVCELLS_API CCFormula * ConstructOpFormula(CCFunc * func, char const * name);
CVCELLS_API CCFormula * ConstructOpFormula(CCFunc * func, char const * first, char const * second);
