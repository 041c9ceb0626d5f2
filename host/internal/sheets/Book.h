// Book: the engine's workbook over sheets of the ready host, as any host would write one.
//
// A sheet's number in a reference is its position from 1. Formulas that name sheets are taken out
// of the graph before sheets change their positions or names, and are put back behind the change.
#pragma once

#include "cells/CCCellManager.h"
#include "cells/CCWorkbook.h"
#include "host/Place.h"
#include "host/Properties.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

class CCRemoteRef;

namespace cells::host {

class GridCell;
class LinkTable;
class SheetManager;

class Book final : public CCWorkbook {
public:
    int Count() const { return int(m_Sheets.size()); }
    SheetManager & At(int position) const { return *m_Sheets[std::size_t(position)]; }
    // The position of a sheet by its name, without regard to case, or of the sheet itself; -1.
    int PositionOf(CString const & name) const;
    int PositionOf(CCCellManager const * sheet) const;

    // The sheets are the caller's and must be taken out before they die.
    void Insert(int position, SheetManager & sheet, CString const & name);
    void Remove(int position);
    void Move(int from, int to);
    void Rename(int position, CString const & name);
    // Calls visit(sheet, cell) for the cells whose formulas name a sheet, of the workbook or not.
    void ForEachNaming(CString const & name,
                       std::function<void(SheetManager &, GridCell &)> const & visit) const;

    // Links to other documents.
    void Link(LinkTable * links, CString const & document);
    LinkTable * Links() const { return m_pLinks; }
    CString const & Document() const { return m_Document; } // its name; empty while not open
    bool WantsLinks() const;                                // whether the user wants links read
    // Whether the user wants links read when they can be; asked once.
    bool ReadsLinks();
    void SetReadsLinks(ECRecalcRemote answer);
    // Visits the formulas that read other documents.
    void ForEachLink(std::function<void(SheetManager &, GridCell &)> const & visit) const;
    void BringUpToDate();
    // The formulas that wait to be computed, in order: the positions of their sheets, and places.
    std::vector<std::pair<int, Place>> Pending();
    // Takes a request of a sheet to whoever answers it.
    int Transport(CCRemoteRef const & ref, CFile & request);

    Properties properties;

    // CCWorkbook.
    CCCellManager * GetSheet(wchar_t const * link) override;
    CCCellManager * GetDefaultSheet() override { return GetSheetByNumber(0); }
    int IsValidSheetName(wchar_t const * link) override { return GetSheet(link) != nullptr; }
    uchar GetSheetCount() override { return uchar(Count()); }
    CCCellManager * GetSheetByNumber(int number) override;
    int HasManager(CCCellManager * manager) override { return PositionOf(manager); }

private:
    void TellReaders(SheetManager & sheet);
    static std::vector<GridCell *> LinkedCells(SheetManager & sheet);
    void Restructure(std::function<void()> const & change);

    std::vector<SheetManager *> m_Sheets;
    LinkTable * m_pLinks = nullptr;
    CString m_Document;
};

} // namespace cells::host
