#include <cvcells/host/Sheet.h>

#include <iostream>

int main() {
    cells::host::Sheet sheet("C");
    sheet.Enter("A1", "1200");
    sheet.Enter("A2", "=A1*1.05");
    sheet.Recalculate();
    std::cout << sheet.Text("A2") << '\n';
    return sheet.Text("A2") == "1260" ? 0 : 1;
}
