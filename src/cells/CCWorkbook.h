// CCWorkbook: sheets that calculate together.
//
// It joins CCSheet managers under one protection and one CCCalcCache, so that formulas cross sheets
// and a change is followed through all of them in one order. The library holds no list of sheets: a
// host derives from both classes, answers GetSheet and its kin here, and GetWorkbook there.
//
// A sheet is asked for by number, from 0, or by the document text of a link within the workbook:
// "?" and the sheet's name.
#pragma once

#include "cells/CCCalcCache.h"
#include "platform/CString.h"

class CCCellManager;
class CFile;

namespace cells {
class CTX;
}

class CVCELLS_API CCWorkbook {
public:
    CCWorkbook(CCWorkbook const &) = delete;
    CCWorkbook & operator=(CCWorkbook const &) = delete;
    virtual ~CCWorkbook();

    virtual CCCellManager * GetSheet(wchar_t const *) { return nullptr; }
    virtual CCCellManager * GetDefaultSheet() { return nullptr; }
    virtual int IsValidSheetName(wchar_t const *) { return 0; }
    // Hands a request to the sheet that its reference names, which is then taken out of the
    // reference; without one, to the default sheet. 0 when there is none, or when the reference has
    // 80 units or more.
    virtual int TransportFile(cells::CTX * ctx, CFile & file);
    virtual uchar GetSheetCount() { return 0; }
    virtual CCCellManager * GetSheetByNumber(int) { return nullptr; }
    virtual void Protect(wchar_t const * password);
    virtual void UnProtect();
    virtual int HasManager(CCCellManager *) { return -1; }

    // Asks for the password; 1 when the protection changed.
    int DoProtectionDialog();
    CString GetPassword() const { return m_strPassword; }
    int IsProtected() const { return m_bProtected; }

    // A sheet got another name: links to it within the workbook follow, on every sheet.
    void UpdateAllOnRename(CString const & old, CString const & now);
    // Computes every formula that changes have reached, in order; 1.
    int DoCalc(CCCellManager * manager);
    CCCalcCache & GetCalcCache() { return m_CalcCache; }

protected:
    CCWorkbook();

private:
    CCCalcCache m_CalcCache;
    int m_bProtected = 0;
    CString m_strPassword;
};
