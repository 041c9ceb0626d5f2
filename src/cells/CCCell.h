// CCCell: what a host stores for an occupied cell, a value, a format and a formula.
//
//     cell.SetText(ctx, L"=A1*2", 0);   // as a user types it
//     cell.GetValueText(ctx, stream);   // as the cell shows it
//     cell.GetFormulaText(ctx, stream); // as it is edited
//
// A formula exists in two forms: a live tree, and a serialised block that is read into a tree when
// it is first needed. A formula that refers to its own cell is kept but marked circular; it stays
// out of the graph and the cell holds error 5.
//
// The class is abstract: the host supplies GetRef and IsEqual.
#pragma once

#include "cells/CCItem.h"
#include "cells/FindReplace.h"
#include "format/CCCellFormat.h"
#include "values/CCCellValue.h"

class CCFormula;

namespace cells {
struct Entry;
}

// Bits of what CCCell::Clear clears.
enum EClear : int { kClearValue = 1, kClearFormula = 2, kClearFormat = 4, kClearAll = 7 };

// The type byte of a formula's block.
enum EFormulaState : uchar { kFormulaNone = 0, kFormulaNormal = 'F', kFormulaCircular = 'C' };

class CVCELLS_API CCCell : public CCItem {
public:
    CCCell();
    CCCell(CCCell const & other);
    ~CCCell() override;

    int IsFormulaLink() const override { return m_pFormula || m_pFormulaData; }
    int IsEmpty() const override;
    void Recalc(cells::CTX * ctx) override;
    void Move(cells::CTX * ctx, CCRef const * to, CCItem * from) override;
    int IsHidden(cells::CTX * ctx) const override;
    void Read(cells::CTX * ctx, CArchive & ar) override;
    void Write(cells::CTX * ctx, CArchive & ar) override;
    // Format, value and formula: a cell's record without its dependents, for hosts whose documents
    // register formulas anew when they are read.
    void ReadContent(cells::CTX * ctx, CArchive & ar);
    void WriteContent(cells::CTX * ctx, CArchive & ar);
    int Delete(cells::CTX * ctx) override;
    CCRefList * GetPrecedents(cells::CTX * ctx) override;

    // User entry. Nothing is lost: what does not parse becomes text. `quiet` holds messages back.
    virtual void SetText(cells::CTX * ctx, wchar_t const * text, int quiet);
    // The same for a text that was read already.
    void Enter(cells::CTX * ctx, CString const & text, cells::Entry entry, int quiet);
    // The buffer forms take the size in bytes and always leave a terminator where one fits.
    virtual void GetValueText(cells::CTX * ctx, std::wostream & stream) const;
    virtual void GetValueText(cells::CTX * ctx, wchar_t * buffer, int bytes) const;
    virtual void GetFormulaText(cells::CTX * ctx, std::wostream & stream);
    virtual void GetFormulaText(cells::CTX * ctx, wchar_t * buffer, int bytes);
    virtual int Find(cells::CTX * ctx, CCFindData const & data);
    virtual int Replace(cells::CTX * ctx, CCFindData const & data);
    virtual int IsValueText(cells::CTX * ctx); // the value is not empty
    virtual int IsFormulaText(cells::CTX * ctx);
    virtual void GetValue(CCCellValue & value) const;
    virtual CCRef const * GetEditSourceRef(cells::CTX * ctx); // the caller's
    virtual int SetEditSource(cells::CTX * ctx, CCRef const * ref, uchar flags);
    virtual int SetValue(cells::CTX * ctx, CCCellValue const & value);
    // Stores a copy. 0 when the formula could not register with its precedents and became text.
    virtual int SetFormula(cells::CTX * ctx, CCFormula const * formula, int quiet);
    // For a mass fill: no cycle test and no queueing.
    virtual int SetFormula1(cells::CTX * ctx, CCFormula const * formula);
    virtual int SetFormat(cells::CTX * ctx, CCCellFormat const & format);
    virtual int Clear(cells::CTX * ctx, int what);
    virtual int InvalidateRef(cells::CTX * ctx, CCRef const * ref);
    virtual int InvalidateItem(cells::CTX * ctx, CCItem const * item);
    virtual int UpdateFormula(cells::CTX * ctx, CCRef const * from, CCRef const * to, int mode);
    virtual void OnChange(cells::CTX * ctx);
    virtual void UpdateNumberFormat(cells::CTX * ctx);
    virtual void OnValueChanged(cells::CTX *) {}
    // A value was stored, in whatever way, also silently or from a file: for hosts that keep an
    // index of values.
    virtual void OnValueStored() {}
    virtual int IsValidFormula() const;
    virtual int IsLocked(cells::CTX * ctx) const;
    virtual int IsEditSource(cells::CTX * ctx) const;
    virtual int IsErrorHidden(cells::CTX * ctx) const;
    virtual int IsZeroHidden(cells::CTX * ctx) const;

    // 1, or 0 with no tree.
    int RegisterFormula(cells::CTX * ctx);
    int UnregisterFormula(cells::CTX * ctx);
    int GetHyperLink(cells::CTX * ctx, CString & text);
    int IsHyperLink();
    int ValidateFormulaRef(cells::CTX * ctx, CCRef const * ref);
    // Rewrites the references for a paste; a reference that falls off the sheet becomes error 1.
    int UpdateInPaste(cells::CTX * ctx, CCRef const * oldRef, CCRef const * newRef,
                      CCClipboardData const * clip);
    void SaveFormula(cells::CTX * ctx, CCFormula const * formula, uchar type);
    CCFormula * LoadFormula(cells::CTX * ctx);                             // borrowed
    int LoadFormula(cells::CTX * ctx, CCFormula *& formula, uchar & type); // the caller's
    uchar GetFormulaType() const;
    bool HasTree() const { return m_pFormula != nullptr; }
    int GetFormat() const { return m_nFormat; }
    CCCellFormat const & getCFmt() const;
    void putCFmt(CCCellFormat const & format);
    CCCellValue const & GetValue() const { return m_Value; }
    // Gives a cell that nobody depends on yet its number, without any of the effects of an edit.
    void SetPlainNumber(double number, CCNumberFormat & format) {
        m_Value.Set(number, format);
        OnValueStored();
    }
    // Takes the formula out of the graph as one that reads itself, with the message for it.
    void RefuseCircle(cells::CTX * ctx);
    int IsValueNumber() const { return m_Value.IsNumber(); }
    int IsValueText() const { return m_Value.IsText(); }
    int IsValueError() const { return m_Value.IsError(); }
    int IsValueEmpty() const { return m_Value.IsEmpty(); }

protected:
    void SerializeFormula(cells::CTX * ctx, uchar type);
    void RemoveFormula(cells::CTX * ctx);
    void DoSetFormat(cells::CTX * ctx, CCCellFormat const & format);
    void SetValue(CCCellValue const & value) {
        m_Value.Set(value);
        OnValueStored();
    }
    void SetFormulaCirc(int circular) { m_bCircular = circular != 0; }
    // A cell's place together with its sheet; the caller's.
    static CCRef * MakeCellRef3D(cells::CTX * ctx, CCCell const * cell);
    // Stores the formula, which it takes over, and registers it without computing it: for a bulk
    // load, which computes in order afterwards. 0 when it became text.
    int StoreFormula(cells::CTX * ctx, std::unique_ptr<CCFormula> formula);

private:
    friend class CCRWExchange; // stores values and formats without the effects of an edit

    bool IsOn(int item) const;
    bool IsShown(cells::CTX * ctx) const;
    bool HasDisplayText(cells::CTX * ctx) const;
    int RefusesChange(cells::CTX * ctx) const;
    void TakeEntry(cells::CTX * ctx, CString const & text, cells::Entry entry, int quiet);
    void TakeTypedValue(cells::CTX * ctx, wchar_t const * text, CCCellValue & value);
    void TurnIntoText(cells::CTX * ctx);
    void FailToRegister(cells::CTX * ctx, CCFormula const & tree, CCRef const * place);
    void Compute(cells::CTX * ctx, CCFormula const & formula, CCRef const * place);
    void MarkCircular(cells::CTX * ctx, CCFormula const & tree, CCRef const * place, int quiet);
    void StoreTree(CCFormula * formula);
    int ReplaceTree(cells::CTX * ctx, CCFormula * now);
    void WarnOfNoEditSource(cells::CTX * ctx, CCRef const * place);
    int ClearEditSource(cells::CTX * ctx, int what);
    CString ValueString(cells::CTX * ctx) const;
    CString FormulaString(cells::CTX * ctx);
    bool MatchesValue(cells::CTX * ctx, CCFindData const & data);
    bool MatchesFormula(cells::CTX * ctx, CCFindData const & data);
    CCFormula * ReadBlock(cells::CTX * ctx) const;
    std::unique_ptr<uchar[]> CopyFormulaBlock() const;

    int m_nFormat = 0; // index into CCCellFormatTable
    bool m_bCircular = false;
    CCCellValue m_Value;
    std::unique_ptr<uchar[]> m_pFormulaData; // a 32-bit length N, a type byte, N bytes
    std::unique_ptr<CCFormula> m_pFormula;
};
