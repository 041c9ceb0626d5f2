#include "platform/Digits.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cwchar>
#include <ostream>

namespace cells {
namespace {

constexpr int kGeneralDigits = 15;

// The longest text is that of DBL_MAX with all its decimals.
constexpr std::size_t kLongest = 1100;

void Keep(DigitText & out, char const * text, std::size_t length) {
    out.length = std::min(length, kDigitBuffer - 1);
    std::copy_n(text, out.length, out.text);
}

void UpperExponent(DigitText & out) { std::replace(out.text, out.text + out.length, 'e', 'E'); }

void PrintDigits(DigitText & out, double value, std::chars_format format, int precision) {
    char buffer[kLongest];
    auto const result = std::to_chars(buffer, buffer + kLongest, value, format, precision);
    Keep(out, buffer, std::size_t(result.ptr - buffer));
}

} // namespace

void PrintGeneralDigits(DigitText & out, double value) {
    PrintDigits(out, value, std::chars_format::general, kGeneralDigits);
    UpperExponent(out);
}

void PrintFixedDigits(DigitText & out, double value, int decimals) {
    PrintDigits(out, value, std::chars_format::fixed, decimals);
}

void PrintScientificDigits(DigitText & out, double value, int decimals) {
    PrintDigits(out, value, std::chars_format::scientific, decimals);
    UpperExponent(out);
    if (decimals != 0 || out.length + 1 >= kDigitBuffer) return;
    char * exponent = std::find(out.text, out.text + out.length, 'E');
    std::copy_backward(exponent, out.text + out.length, out.text + out.length + 1);
    *exponent = '.';
    ++out.length;
}

void PrintInteger(DigitText & out, std::int64_t value) {
    auto const result = std::to_chars(out.text, out.text + kDigitBuffer, value);
    out.length = std::size_t(result.ptr - out.text);
}

void WriteAscii(std::wostream & stream, std::string_view text) {
    wchar_t wide[kDigitBuffer];
    std::size_t const length = std::min(text.size(), kDigitBuffer);
    std::copy_n(text.data(), length, wide);
    stream.write(wide, std::streamsize(length));
}

void WriteInteger(std::wostream & stream, std::int64_t value) {
    DigitText digits;
    PrintInteger(digits, value);
    WriteAscii(stream, digits);
}

void WriteText(std::wostream & stream, wchar_t const * text) {
    if (text) stream.write(text, std::streamsize(std::wcslen(text)));
}

bool ParseDouble(std::string_view digits, double & value) {
    double parsed = 0;
    auto const result = std::from_chars(digits.data(), digits.data() + digits.size(), parsed);
    if (result.ec == std::errc::invalid_argument) return false;
    if (result.ec == std::errc::result_out_of_range) {
        // The conversion does not tell overflow from underflow: a number below 1 has a negative
        // exponent once its mantissa is written with one digit before the point.
        std::size_t const e = std::min(digits.find_first_of("eE"), digits.size());
        long exponent = 0;
        if (e < digits.size()) {
            std::size_t const sign = digits[e + 1] == '+' ? e + 2 : e + 1;
            std::from_chars(digits.data() + sign, digits.data() + digits.size(), exponent);
        }
        std::string_view const mantissa = digits.substr(0, e);
        std::size_t const point = std::min(mantissa.find('.'), mantissa.size());
        std::size_t const first = mantissa.find_first_of("123456789");
        if (first == std::string_view::npos) return value = 0, true;
        long const lead = first < point ? long(point - first) - 1 : long(point) - long(first);
        if (exponent + lead > 0) return false;
        parsed = 0;
    }
    value = parsed;
    return true;
}

int ToInt32(double value) {
    constexpr double kTwo63 = 9223372036854775808.0;
    if (!(value > -kTwo63 && value < kTwo63)) return INT32_MIN;
    return std::int32_t(std::uint32_t(std::uint64_t(std::int64_t(value))));
}

} // namespace cells
