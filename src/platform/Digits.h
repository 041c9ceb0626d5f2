// Numbers as text and back, always with "." as the point and without any locale.
//
// The printers give the digits of the C formats named beside them; exponents have at least two
// digits. All of them write into a buffer of kDigitBuffer characters and cut what does not fit.
#pragma once

#include "platform/Types.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string_view>

namespace cells {

constexpr std::size_t kDigitBuffer = 512;

struct DigitText {
    char text[kDigitBuffer];
    std::size_t length = 0;
    operator std::string_view() const { return {text, length}; }
};

CVCELLS_API void PrintGeneralDigits(DigitText & out, double value);                  // "%.15G"
CVCELLS_API void PrintFixedDigits(DigitText & out, double value, int decimals);      // "%.*f"
CVCELLS_API void PrintScientificDigits(DigitText & out, double value, int decimals); // "%#.*E"
CVCELLS_API void PrintInteger(DigitText & out, std::int64_t value);

// Writes ASCII text to a wide stream without regard to the stream's locale.
CVCELLS_API void WriteAscii(std::wostream & stream, std::string_view text);
CVCELLS_API void WriteInteger(std::wostream & stream, std::int64_t value);
CVCELLS_API void WriteText(std::wostream & stream, wchar_t const * text);

// The correctly rounded double of decimal digits with an optional point and exponent ("12.5e-3").
// Too small a number is 0; false when the text is no number or too large.
CVCELLS_API bool ParseDouble(std::string_view digits, double & value);

// A double as a 32-bit integer: truncated; inside 64 bits the low 32 bits are kept, everything
// beyond, and what is no number, is -2147483648.
CVCELLS_API int ToInt32(double value);

} // namespace cells
