// Texts as a user types them: each line goes into a cell, and every cell is shown, edited and
// compared with the invariants of a sheet.
#include "host/Sheet.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    constexpr int kCells = 32;
    std::string_view rest(reinterpret_cast<char const *>(data), size);
    cells::host::Sheet sheet("C");
    for (int at = 0; at < kCells && !rest.empty(); ++at) {
        std::string_view const line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
        sheet.Enter({at % 4, at / 4}, line);
    }
    sheet.Recalculate();
    for (int at = 0; at < kCells; ++at) {
        cells::host::Place const place{at % 4, at / 4};
        sheet.Text(place);
        std::string const edited = sheet.EditText(place);
        if (sheet.Formula(place)) sheet.Enter(place, edited);
    }
    sheet.Recalculate();
    if (!sheet.CheckInvariants().empty()) std::abort();
    return 0;
}
