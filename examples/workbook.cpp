// A workbook of two sheets: references between them, rows that come, an edit taken back, a
// document.
#include "host/Workbook.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace {

void Require(bool isSo, char const * what) {
    if (isSo) return;
    std::cerr << "not so: " << what << '\n';
    std::exit(1);
}

} // namespace

int main() {
    cells::host::Workbook book("C");
    cells::host::Sheet & prices = book.Add("Prices");
    cells::host::Sheet & orders = book.Add("Orders");
    prices.Enter("A1", "12.50");
    orders.Enter("B1", "=Prices!A1*3");
    book.Recalculate();
    std::cout << orders.Text("B1") << '\n';
    Require(orders.Text("B1") == "37.5", "three at 12.50 are 37.5");

    book.KeepHistory(100); // from here on edits can be taken back
    prices.InsertRows(0, 2);
    Require(orders.Formula({1, 0}) == "=Prices ! A3 * 3", "the formula follows the cell");
    book.Undo();
    Require(orders.Formula({1, 0}) == "=Prices ! A1 * 3", "and goes back with it");

    auto const file = std::filesystem::temp_directory_path() / "cvcells-example.cvs";
    book.Save(file); // as a whole, or not at all
    auto const same = cells::host::Workbook::Open(file, "C");
    std::filesystem::remove(file);
    (*same)["Prices"].Enter("A1", "20");
    same->Recalculate();
    Require((*same)["Orders"].Text("B1") == "60", "the document is alive");
}
