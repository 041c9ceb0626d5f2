// Custom format texts over doubles of any bits: the first line is the format, the bytes after it
// are numbers. What is printed grows with the format and by the digits of a double, and no further.
#include "format/CExcelNumberFormat.h"
#include "host/Engine.h"
#include "platform/Utf.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    cells::host::StartEngine();
    std::string_view const bytes(reinterpret_cast<char const *>(data), size);
    std::string_view const line = bytes.substr(0, bytes.find('\n'));
    CExcelNumberFormat const format(cells::FromUtf8(line));
    auto const check = [&](double value) {
        constexpr int kLongestWord = 20, kDigits = 450;
        int const longest = kLongestWord * format.GetText().GetLength() + kDigits;
        if (format.Print(cells::invariant_LCTX(), value).GetLength() > longest) std::abort();
    };
    for (double value : {0.0, 1.5, -1.5, 46085.75, 1e300, -1e-300}) check(value);
    for (std::size_t at = line.size() + 1; at + sizeof(double) <= size; at += sizeof(double)) {
        double value;
        std::memcpy(&value, data + at, sizeof value);
        check(value);
    }
    return 0;
}
