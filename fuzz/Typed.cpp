// Typed values in several locales: the first byte picks one, each line after it is typed. What a
// cell holds is finite and can be shown and edited; the edit text of a number is no formula.
#include "host/Engine.h"
#include "host/Sheet.h"
#include "platform/LocaleInfo.h"
#include "platform/Utf.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    constexpr char const * kLocales[] = {"C",     "en-US", "de-DE", "de-CH", "fr-FR",
                                         "sv-SE", "ja-JP", "hi-IN", "pt-BR"};
    if (size == 0) return 0;
    cells::host::StartEngine();
    auto & cache = kbt::globals::global_environment().locales_cache();
    char const * const tag = kLocales[data[0] % std::size(kLocales)];
    cells::host::Sheet sheet(cache.knows(cells::FromUtf8(tag)) ? tag : "C");
    std::string_view rest(reinterpret_cast<char const *>(data) + 1, size - 1);
    for (int row = 0; row < 32 && !rest.empty(); ++row) {
        std::string_view const line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
        cells::host::Place const place{0, row};
        sheet.Enter(place, line);
        cells::host::Value const value = sheet.Get(place);
        sheet.Text(place);
        if (value.kind != cells::host::Kind::kNumber || sheet.Formula(place)) continue;
        if (!std::isfinite(value.number)) std::abort();
        sheet.Enter(place, sheet.EditText(place));
        if (sheet.Formula(place)) std::abort();
    }
    return 0;
}
