// CCRWExchange: cells as commands of a spreadsheet file, formulas as text.
//
// The archive encoding stores a formula as a tree; this stream stores it as text with English
// names, so that a file outlives the layout of trees. Whatever is read applies to the current cell:
//
//     exchange.Begin(archive);                     exchange.Begin(archive);
//     for each cell: {own record of its place}     exchange.SetCellManager(&sheet);
//         exchange.WriteCell(cell);                exchange.Read();  // OnCommand sets the cell
//     exchange.End();                              exchange.End();
//
// A host derives from it, handles its own codes in OnCommand, moves the current cell there, and
// passes the rest on. docs/file-formats.md lists the commands.
#pragma once

#include "cells/CCCell.h"
#include "persist/CCRWBase.h"

#include <map>
#include <set>

class CCCellManager;

class CVCELLS_API CCRWExchange : public CCRWBase {
public:
    explicit CCRWExchange(enum FileVersion version) : CCRWBase(version) {}

    void Begin(CArchive & ar) override;
    void Read() override;
    void End() override;
    void OnCommand(unsigned short code, void * data, unsigned short length) override;

    virtual CCCell * GetCurCell() { return m_pCell; }
    virtual CCCellManager * GetCellManager() { return m_pManager; }
    virtual CCCellFormat const * GetCurFormat(); // of the current cell, or null
    virtual CCCellValue const * GetCurValue();
    // Both are borrowed.
    void SetCurCell(CCCell * cell) { m_pCell = cell; }
    void SetCellManager(CCCellManager * manager) { m_pManager = manager; }

    // Value, format and formula of a cell. Nothing for null, here and below.
    void WriteCell(CCCell * cell);
    void WriteValue(CCCellValue const & value);
    void WriteFormat(CCCellFormat const & format);
    void WriteFormulaA(CCFormula const * formula, uchar prefix); // the narrow form
    void WriteFormulaW(CCFormula const * formula, uchar prefix);
    // The leading or trailing string of an index, once a stream, before what uses it.
    void WriteLTString(int index);
    // The protection of a manager that is protected.
    void WriteManager(CCCellManager * manager) { WriteProtection(manager); }
    void WriteProtection(CCCellManager * manager);

    // For hosts that switch the locale for the time of a file.
    void InitInternationalSettings() {}
    void RestoreInternationalSettings() {}

protected:
    // The context in which formulas are printed and read. The base is that of the manager, so that
    // separators are those of its locale; a host that wants files to pass between locales gives one
    // with the invariant locale.
    virtual cells::CTX * GetFileContext();

private:
    class Payload;

    void SetCellValue(CCCellValue const & value);
    void WriteByte(unsigned short code, int value);
    void WritePacked(unsigned short code, CCNumberFormat const & format);
    void WriteText(unsigned short narrowCode, unsigned short wideCode, CString const & text);
    void ReadNumber(Payload & payload);
    CCNumberFormat ReadNumberFormat(unsigned long packed) const;
    void ReadFormat(unsigned short code, Payload & payload);
    void ReadFormula(CString const & text, uchar prefix, bool isWide);
    void ReadLTString(std::uint32_t index, CString const & text);
    void ReadProtection(CString const & password);

    CCCell * m_pCell = nullptr;
    CCCellManager * m_pManager = nullptr;
    // Leading and trailing strings: the indices that were written; and for reading, the index here
    // of each index of the file, its own where the file says nothing.
    std::set<int> m_Written;
    std::map<std::uint32_t, int> m_LTMap;
    std::uint64_t m_nLTMapSize = 0;
};
