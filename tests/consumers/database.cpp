#include <cvcells/host/Links.h>
#include <cvcells/host/database/Database.h>

#include <iostream>

int main() {
    cells::host::Links links;
    cells::host::Database database(":memory:");
    links.Add(database);
    cells::host::Workbook book("C");
    links.Open("book", book);
    book.Add("Sheet1").Enter("A1", "=DBSQL(\":memory:\",\"SELECT 1260\")");
    std::cout << book.At(0).Text("A1") << '\n';
    return book.At(0).Text("A1") == "1260" ? 0 : 1;
}
