// cells::host::Workbook: sheets that calculate together, in UTF-8.
//
//     cells::host::Workbook book;
//     cells::host::Sheet & prices = book.Add("Prices");
//     cells::host::Sheet & orders = book.Add("Orders");
//     prices.Enter("A1", "12.50");
//     orders.Enter("B1", "=Prices!A1*3");
//     book.Recalculate();
//
// Sheets have a position, from 0, and a name: a letter or "_", then letters, digits and "_", which
// is neither a cell's address nor a function; case does not tell names apart. Formulas follow a
// renamed sheet, and show #REF! when the sheet they name is gone; a run such as A:C!B2 holds the
// sheets that stand between the two at that time. There are at most 255 sheets. Positions and names
// that do not exist throw std::out_of_range, names that cannot be given std::invalid_argument.
#pragma once

#include "host/Container.h"
#include "host/Properties.h"
#include "host/Sheet.h"
#include "platform/CString.h"
#include "platform/LocaleInfo.h"

#include <filesystem>
#include <stdexcept>

namespace cells::host {

class Book;

// A document that cannot be read as it is: the first damage, with its place.
struct DocumentError : std::runtime_error {
    explicit DocumentError(Damage const & damage)
        : std::runtime_error("at byte " + std::to_string(damage.offset) + ": " + damage.what),
          offset(damage.offset) {}
    std::uint64_t offset;
};

class CVCELLS_API Workbook {
public:
    static constexpr int kMostSheets = 255;

    // All sheets have one locale: that of a tag such as "de-DE", without one the user's.
    explicit Workbook(std::string_view locale = {});
    Workbook(Workbook const &) = delete;
    Workbook & operator=(Workbook const &) = delete;
    ~Workbook();

    int Count() const;
    // The sheets are the workbook's. A reference stays good until its sheet is removed.
    Sheet & At(int position) const;
    Sheet & operator[](std::string_view name) const;
    Sheet * Find(std::string_view name) const; // null for none
    std::string NameOf(int position) const;
    int PositionOf(Sheet const & sheet) const;

    // Puts a new sheet at a position, without one at the end.
    Sheet & Add(std::string_view name, std::optional<int> position = {});
    void Remove(int position);
    void Move(int from, int to);
    void Rename(int position, std::string_view name);

    // As for a sheet; edits of the sheets themselves (Add, Remove, Move, Rename) are remembered
    // too.
    void KeepHistory(int steps);
    bool Undo();
    bool Redo();

    // Brings every sheet up to date, and with it the documents that are linked to it (Links).
    void Recalculate();

    // What the document says of itself, such as its title; formulas that show it follow at the next
    // recalculation. A text that cannot be the property's throws std::invalid_argument.
    void SetProperty(Property property, std::string_view text);
    std::string GetProperty(Property property) const; // empty for none

    // Documents: everything of all sheets, but for what is not entered (who reads what, the queue
    // of calculation). Formulas are kept as trees and functions by their English names, so a
    // document reads the same in every locale and language; values are kept as they are.
    //
    // Save replaces the file as a whole, or leaves it as it was and throws std::runtime_error. Open
    // throws DocumentError for a document with any damage, and std::runtime_error for a file that
    // cannot be read.
    // Saving sets the properties that it knows: the moment, the revision, characters and words of
    // what is shown, name and size of the file.
    void Save(std::filesystem::path const & file);
    static std::unique_ptr<Workbook> Open(std::filesystem::path const & file,
                                          std::string_view locale = {});
    // The same in memory.
    void Write(std::function<void(std::string_view)> const & sink) const;
    static std::unique_ptr<Workbook> Read(std::string_view document, std::string_view locale = {});

    // What can be saved of a damaged document: the sheets that are whole, everything computed anew,
    // and what is not as it should be.
    struct Recovered {
        std::unique_ptr<Workbook> book;
        std::vector<Damage> damages;
    };
    static Recovered Recover(std::string_view document, std::string_view locale = {});

    // Sheet::CheckInvariants over all sheets.
    std::vector<std::string> CheckInvariants();

private:
    friend class DocumentReader;
    friend class DocumentWriter;
    friend class ExchangeWriter;
    friend class Links;

    void NoteSaving();
    void NoteFile(std::filesystem::path const & file, std::uint64_t size);
    void TellProperty(Property property);
    struct Stash;
    void Insert(std::unique_ptr<Sheet> sheet, int position, CString const & name);
    std::unique_ptr<Sheet> TakeOut(int position);
    void Shift(int from, int to);
    void Remember(std::function<void()> undo, std::function<void()> redo);

    CString CheckedName(std::string_view name, int position) const;
    void Require(int position) const;

    kbt::multilang::CLocaleInfo const & m_Locale;
    std::unique_ptr<Book> m_Book; // outlives the sheets
    std::vector<std::unique_ptr<Sheet>> m_Sheets;
    std::shared_ptr<History> m_History;
};

} // namespace cells::host
