// SheetManager: the engine's manager over a grid, as any host would write one.
#pragma once

#include "cells/CCSheet.h"
#include "cells/RegionIndex.h"
#include "formula/CCFormula.h"
#include "formula/CCRemoteRef.h"
#include "host/Place.h"
#include "host/internal/sheets/AreaFormats.h"
#include "host/internal/sheets/Grid.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace cells::host {

class Book;
class History;

class SheetManager final : public CCSheet, public CTX {
public:
    explicit SheetManager(kbt::multilang::CLocaleInfo const & locale) : m_Locale(locale) {}

    // cells::CTX and its provider.
    LCTX * lctx() override { return &m_Locale; }
    CCCellManager * manager() override { return this; }
    CTX * ctx() override { return this; }
    CTX * ctx() const override { return const_cast<SheetManager *>(this); }

    // Makes it a sheet of a workbook, under a name; of none, a sheet of its own.
    void Join(Book * book, CString const & name);
    // The sheets of its workbook, or itself.
    std::vector<SheetManager *> Family();

    // The grid.
    Grid & Cells() { return m_Grid; }
    Grid const & Cells() const { return m_Grid; }
    // The cell object at a place; one made for an empty place has the format of its area.
    GridCell & MakeCell(Place place);
    AreaFormats & Formats() { return m_Formats; }
    // Calls visit(cell) for every occupied place of the area, with a cell object each.
    template <typename Visit>
    void ForEachMadeCell(Area const & area, Visit && visit) {
        std::vector<Place> places;
        m_Grid.ForEach(area, [&](Place place) { places.push_back(place); });
        for (Place place : places) visit(MakeCell(place));
    }
    bool IsWatched(Place place) const {
        return m_Regions.Holds(uchar(place.column), ushort(place.row));
    }
    RegionIndex const & Regions() const { return m_Regions; }
    // Stores a plain number where that is all there is to it: no cell object, nobody watching.
    bool TryPutNumber(Place place, CCCellValue const & value);
    // Makes the plain numbers of an area general ones.
    void ClearNumberFormats(Area const & area);
    // Whether a plain number stands there that is edited as this text: entered again, it stays.
    bool IsEditTextOfNumber(Place place, CString const & text);

    // Names stand for a cell or a region; formulas that use one follow its redefinition.
    bool DefineName(CString const & name, CCRef const & target);
    bool RemoveName(CString const & name);
    CCRef const * FindName(CString const & name) const;
    std::vector<CString> Names() const;

    // After values were stored silently: queues what depends on the places, and their formulas.
    void TellChanged(std::vector<Place> places);
    // Enters the formula of a cell anew, so that it finds its precedents where they are now.
    void EnterAgain(GridCell & cell);
    // After a formula was registered as it was read: what it names only when it is computed is
    // found out, so that the formula follows it. Its value stays.
    void FindTargets(GridCell & cell);
    void FinishRecalc() { DoRecalc(-1); }
    void OnCellChanged(Place place) {
        if (onChanged) onChanged(place);
    }

    // How often a dependent was taken out of any sheet: a formula that is computed meanwhile may
    // have turned to another place.
    static unsigned Departures() { return s_nDepartures; }

    // Whether protection hides a cell of the area.
    bool Conceals(Area const & area) const;

    // What other documents read here. The remote dependents of all places, with those places.
    struct RemoteReader {
        std::unique_ptr<CCRef> place;
        std::unique_ptr<CCRemoteRef> reader;
    };
    std::vector<RemoteReader> RemoteReaders();
    // Tells a reader that its place went elsewhere, to null: nowhere.
    void TellMoved(RemoteReader const & reader, CCRef const * to);

    std::function<void(Place)> onChanged; // a value changed
    std::function<void()> onTick;         // now and then during long work
    std::function<void(unsigned int)> onMessage;
    bool dirty = false;
    History * history = nullptr; // of the workbook or the sheet; null: edits are not remembered

    // CCCellManager.
    int GetType() const override { return 1; }
    int ReadsErrorTexts() const override { return 1; }
    void ErrorMessage(unsigned int id) override;
    CSize GetRefSize(CCRef const * ref) override;
    void SetDirty() override { dirty = true; }
    CCWorkbook * GetWorkbook() const override;
    CString GetSheetName() const override { return m_SheetName; }
    CCCellManager * GetManForNameIndex(ushort index) override;
    ushort GetNameIndex(CCNameRef const * name) override;
    ushort GetNameIndex(wchar_t const * name) override;
    using CCSheet::GetItem;
    CCItem * GetItem(CCRef const * ref) override;
    void OnUpdateIdleRecalc() override {
        if (onTick) onTick();
    }
    int IsValidRef(CCRef const * ref) override;
    int IsSingleValue(CCRef const * ref) override;
    int GetValue(CCRef const * ref, CCCellValue & value, int index) override;
    using CCSheet::RegisterDependent;
    int RegisterDependent(CCRef const * ref, CCRef const * dependent) override;
    using CCSheet::UnRegisterDependent;
    int UnRegisterDependent(CCRef const * ref, CCRef const * dependent) override;
    int MoveFormula(CCRef const * ref, CCRef const * from, CCRef const * to) override;
    CCRef * TranslateNameRef(CCNameRef const * name) override;
    CCRefList * LoadDependencies(CCRef const * ref) override;
    int IsConcealed(CCRef const * ref) override;
    // Links: names of the document are those of its workbook; a name of the sheet is an item too.
    CString GetDocumentName() const override;
    int IsRemoteDocumentOpen(wchar_t const * name) override;
    int DoTransport(CCRemoteRef const * ref, CFile & file) override;
    int IsValidReference(wchar_t const * text) const override;
    CCRef * TranslateToInternalRef(CCRemoteRef const * ref) const override;
    int OnRemoteGetValue(CCRemoteRef const * ref, CCCellValue & value, int index) override;
    ushort OnRemoteOpenRef(CCRemoteRef const * ref) override;
    int OnRemoteInitRecalc(CCRemoteRef const * ref, int flag) override;
    int OnRemoteSetSourceValue(CCRemoteRef const * ref, CCCellValue const & value) override;
    // Properties of the document.
    int GetDocumentCreateDate(ATL::COleDateTime & date) override;
    int GetDocumentEditTime(ATL::COleDateTime & date) override;
    int GetDocumentPrintDate(ATL::COleDateTime & date) override;
    int GetDocumentSaveDate(ATL::COleDateTime & date) override;
    int GetDocumentAuthor(CString & text) override;
    int GetDocumentComments(CString & text) override;
    int GetDocumentFileName(CString & text) override;
    int GetDocumentFileSize(double & size) override;
    int GetDocumentKeywords(CString & text) override;
    int GetDocumentNumChars(unsigned int & count) override;
    int GetDocumentNumPages(unsigned int & count) override;
    int GetDocumentNumWords(unsigned int & count) override;
    int GetDocumentSubject(CString & text) override;
    int GetDocumentTitle(CString & text) override;
    int GetDocumentRevNum(unsigned int & count) override;
    int GetDocumentMergeRec(unsigned int & count) override;
    int GetDocumentMergeCount(unsigned int & count) override;
    int RegistersPlacesOfMissingSheets() const override { return 0; }
    int FormulasImplyDependents() const override { return 1; }
    // Of a place on another sheet.
    int GetDocumentColumn(CCRef const * ref, unsigned int & column) override;
    int GetDocumentRow(CCRef const * ref, unsigned int & row) override;
    int ReadsCellsDirectly() const override { return 1; }
    int ReadNumbers(CCRef const * ref, NumberSink & sink) override;
    int FindNumber(CCRef const * ref, double number, CCCellValue & value) override;
    int FindKey(CCRef const * ref, CCCellValue const & key, int & position) override;
    void OnPlaceMissing(CCRef const * cell) override;
    int CountOccupied(CCRef const * ref, double & count) override;

private:
    struct Name {
        std::unique_ptr<CCRef> target;             // null while only used, not defined
        std::vector<std::unique_ptr<CCRef>> users; // the cells whose formulas use it
    };

    CCRef const * Target(CCRef const * ref) const; // by the engine's own reference classes
    std::optional<Place> CornerElsewhere(CCRef const * ref) const;
    bool Settle(CCRef const & place);
    void Redefine(CString const & name, std::unique_ptr<CCRef> target);
    static CString Folded(CString name);
    // The formulas that a name which comes or goes may concern without being its users: those that
    // computed a place that there is none, and those that are circular.
    std::vector<GridCell *> CellsWithoutTarget();

    static unsigned s_nDepartures;

    LCTX m_Locale;
    Book * m_Book = nullptr;
    CString m_SheetName;
    Grid m_Grid;
    RegionIndex m_Regions;
    AreaFormats m_Formats;
    std::map<CString, Name> m_Names; // by folded name
    std::set<Place> m_Missing; // cells that computed a place that there is none, maybe long ago
};

// Whether a text can name something in a formula: a word that is neither a cell's address nor a
// function.
bool IsPlainName(CString const & text, CTX & reader);

// Whether a part of the formula is of a type: of kRefOpFormula, which yields its place only when it
// is computed, or of kDocOpFormula, of whose arguments only the places matter.
bool HasPart(CCFormula const & formula, EFormulaType type);
// The documents that a formula reads, as it names them.
std::vector<std::string> LinksOf(CCFormula const & formula);
// Whether a part of the formula is a name.
bool HasName(CCFormula const & formula);
// Whether what a formula reads may change although its text does not: it names places while it is
// computed, or by a name.
bool MayMove(CCFormula const & formula);

} // namespace cells::host
