// cells::host::Sheet: a spreadsheet in memory, in UTF-8.
//
//     cells::host::Sheet sheet;
//     sheet.Enter("A1", "1200");
//     sheet.Enter("A2", "=A1*1.05");
//     sheet.Recalculate();
//     std::cout << sheet.Text("A2") << '\n';   // 1260
//
// A sheet enters texts as a user types them, shows what its cells show, and keeps dependents up to
// date when it is told to recalculate, in one go or in slices. It is the engine hosted on a sparse
// grid; Manager() leads to the engine itself. Places off the grid throw std::out_of_range, and so
// do texts that name no place. One thread at a time.
#pragma once

#include "host/Place.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class CCCellManager;
class CCNumberFormat;
class CCCellFormat;

namespace cells::host {

class History;
class PlaceMap;
class Recording;
class SheetManager;

enum class Kind { kEmpty, kNumber, kText, kError };

enum class CellFlag { kLocked, kHidden, kHideErrors, kHideZeros };

struct FindOptions {
    enum class In { kValues, kFormulas, kBoth } in = In::kValues;
    bool caseSensitive = false;
    bool wholeWord = false;
    bool valuesOfFormulas = true; // a formula counts by what it shows, too
};

// What a cell holds.
struct Value {
    Kind kind = Kind::kEmpty;
    double number = 0; // of a number; TRUE and FALSE are 1 and 0 in format class 8
    std::string text;  // of a text
    int error = 0;     // of an error: 1 reference, 2 division, 3 value, 4 call, 5 circular, 9 N/A
    int formatClass =
        0; // of a number: 0 general, 1 fixed, 2 currency, 3 percent, 6 time, 7 date, 8 logical
};

class CVCELLS_API Sheet {
public:
    // The locale of a tag such as "de-DE"; without one, the user's. A language that nobody knows
    // throws std::invalid_argument.
    explicit Sheet(std::string_view locale = {});
    Sheet(Sheet const &) = delete;
    Sheet & operator=(Sheet const &) = delete;
    ~Sheet();

    // Enters a text as a user types it. A formula is computed at once, its dependents when the
    // sheet is recalculated.
    void Enter(Place place, std::string_view text);
    void Enter(std::string_view place, std::string_view text) { Enter(At(place), text); }
    // Empties a cell: its value and its formula.
    void Clear(Place place);

    // Rows and columns come and go: what lies behind them moves, and formulas on all sheets of the
    // workbook name the new places, or #REF! where a place is gone. `at` counts from 0. False, with
    // nothing changed, where cells would be pushed off the grid, or where protection refuses it.
    bool InsertRows(int at, int count = 1);
    bool InsertColumns(int at, int count = 1);
    bool DeleteRows(int at, int count = 1);
    bool DeleteColumns(int at, int count = 1);

    // Carries an area to another corner: formulas everywhere that name its cells follow. What stood
    // at the new place is overwritten.
    bool Move(Area const & area, Place to);
    // Copies values, formats and formulas. References of a copied formula to the area go with it,
    // others keep their distance unless they are absolute. A transposed copy turns rows to columns.
    bool Copy(Area const & area, Place to, bool transpose = false) {
        return CopyFrom(*this, area, to, transpose);
    }
    // The same from another sheet, whose protection may refuse to show the area.
    bool CopyFrom(Sheet const & source, Area const & area, Place to, bool transpose = false);

    // Remembers so many edits from now on, 0 for none, to take them back and to make them again. An
    // edit is one call of an operation that changes something; a bulk load is one, with what is
    // edited between its first entry and its commit. What the edits remember of cells takes 256 MiB
    // at most: beyond that the oldest are forgotten, the last edit excepted. Undo and Redo
    // give false where there is nothing to do. A sheet of a workbook has the workbook's history,
    // which Workbook::KeepHistory switches.
    void KeepHistory(int steps);
    bool Undo();
    bool Redo();

    // Formats stay with their places, occupied or not. A number format is a name (general,
    // number:2, currency, percent:1, fraction, scientific:3, time, date, logical, hex, oct, bin) or
    // a custom text such as "#,##0.00"; docs/number-formats.md tells all. A name with decimals out
    // of range throws std::invalid_argument. On a protected sheet an area with a locked cell stays
    // as it is: a message and false.
    bool SetNumberFormat(Area const & area, std::string_view format);
    bool SetNumberFormat(Area const & area, CCNumberFormat const & format);
    // The number format of what a cell shows, as such a text.
    std::string NumberFormat(Place place) const;
    bool SetFlag(Area const & area, CellFlag flag, bool on = true);
    bool ClearFormat(Area const & area); // number formats and flags

    // Protection makes locked cells refuse every edit (a message each) and hidden cells show
    // nothing, nor to formulas that are entered from then on (message 13037). False for a wrong
    // password, which leaves the sheet protected.
    void Protect(std::string_view password = {});
    bool Unprotect(std::string_view password = {});
    bool IsProtected() const;

    // The occupied places whose shown text, or whose formula, holds the text; row by row.
    std::vector<Place> Find(std::string_view text, FindOptions const & options = {});
    // Replaces in all of them, as if the new text were typed; the number of cells that took it.
    int Replace(std::string_view text, std::string_view by, FindOptions const & options = {});

    std::string Text(Place place) const; // as the cell shows it
    std::string Text(std::string_view place) const { return Text(At(place)); }
    std::string EditText(Place place);               // as it is edited: a formula begins with "="
    std::optional<std::string> Formula(Place place); // the edit text of a formula
    // Where the HYPERLINK of a cell leads; nothing for a cell without one.
    std::optional<std::string> Hyperlink(Place place);
    Value Get(Place place) const;
    Value Get(std::string_view place) const { return Get(At(place)); }

    // Brings everything up to date. Recalculate does it all, Step one slice; both tell whether work
    // remains, Recalculate only when it was cancelled.
    bool Recalculate();
    bool Step();
    // Called now and then during long work; false cancels it at the next slice.
    void OnProgress(std::function<bool(int done, int total)> progress);

    // Called with each place whose value changed, and with each message (its string number).
    void OnChanged(std::function<void(Place)> changed);
    void OnMessage(std::function<void(unsigned int id, std::string const & text)> message);

    // Names for a cell or an area. A name is a letter or "_", then letters, digits and "_", and
    // neither a cell's address nor a function; false for any other.
    bool DefineName(std::string_view name, Area const & area);
    bool RemoveName(std::string_view name);

    // The smallest area that holds all occupied cells; nothing for an empty sheet.
    std::optional<Area> UsedArea() const;
    // Calls visit with every occupied place, row by row.
    void ForEachOccupied(std::function<void(Place)> const & visit) const;
    // What a formula reads, and who reads a cell, as reference texts: "A1", "Sheet2!A1" for a place
    // on another sheet.
    std::vector<std::string> Precedents(Place place);
    std::vector<std::string> Dependents(Place place);

    // For a sheet of its own; Workbook has the same over all sheets. Compares the stored dependents
    // with those that the formulas imply, and looks for walks left open; each difference is a line.
    // What a formula reads beyond need, because its place cannot be computed, is none. Empty for a
    // sound sheet. For debugging and tests.
    std::vector<std::string> CheckInvariants();

    CCCellManager & Manager();

    // Many entries at once, with one pass of ordering and computing at the end. The outcome is that
    // of entering them one by one and recalculating.
    class CVCELLS_API Bulk {
    public:
        explicit Bulk(Sheet & sheet);
        Bulk(Bulk const &) = delete;
        Bulk & operator=(Bulk const &) = delete;
        ~Bulk(); // without a commit, entries that wait are dropped
        void Enter(Place place, std::string_view text);
        void Commit();

    private:
        struct State;
        std::unique_ptr<State> m_State;
    };

private:
    friend class ExchangeReader;
    friend class LegacyReader;
    friend class LegacyWriter;
    friend class Workbook;

    explicit Sheet(std::unique_ptr<SheetManager> manager);
    static Place At(std::string_view place);
    static void Require(Place place);
    bool Refuses(Area const & area);
    void TouchEntry(Recording & recording, Place place);
    void TouchFormats(Recording & recording, Area const & area);
    bool ChangeLines(PlaceMap const & map, Area const & changed);
    bool Format(Area const & area, CCCellFormat const & format);

    std::unique_ptr<SheetManager> m_Manager;
    std::shared_ptr<History> m_History; // of a sheet of its own
    std::function<bool(int, int)> m_Progress;
    bool m_Cancelled = false;
};

} // namespace cells::host
