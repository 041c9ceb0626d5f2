// Reads a line of the session language word by word.
#pragma once

#include <charconv>
#include <stdexcept>
#include <string>

namespace cells::app {

// A command that cannot be carried out; what() tells the user why.
struct CommandError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Without the blanks at both ends.
std::string Trimmed(std::string const & text);

// Cuts the first word off, and the blanks after it; empty at the end of the text.
std::string TakeWord(std::string & text);

// Cuts off the first word, or the text between quotes that stands there.
std::string TakeText(std::string & text);

// The whole text as a number of the type, with a point as decimal separator; a CommandError for
// anything else.
template <typename Number>
Number RequireNumber(std::string const & text) {
    Number number{};
    auto const result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        throw CommandError("no number: " + (text.empty() ? "(nothing)" : text));
    return number;
}

} // namespace cells::app
