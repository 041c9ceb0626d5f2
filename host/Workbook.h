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

#include "host/Sheet.h"
#include "platform/CString.h"
#include "platform/LocaleInfo.h"

namespace cells::host {

class Book;

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

    // Brings every sheet up to date.
    void Recalculate();

    // Sheet::CheckInvariants over all sheets.
    std::vector<std::string> CheckInvariants();

private:
    CString CheckedName(std::string_view name, int position) const;
    void Require(int position) const;

    kbt::multilang::CLocaleInfo const & m_Locale;
    std::unique_ptr<Book> m_Book; // outlives the sheets
    std::vector<std::unique_ptr<Sheet>> m_Sheets;
};

} // namespace cells::host
