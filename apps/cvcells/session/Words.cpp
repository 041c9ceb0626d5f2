#include "cvcells/session/Words.h"

#include <algorithm>

namespace cells::app {

std::string Trimmed(std::string const & text) {
    std::size_t const first = text.find_first_not_of(" \t\r");
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string TakeWord(std::string & text) {
    std::size_t const end = std::min(text.find_first_of(" \t"), text.size());
    std::string const word = text.substr(0, end);
    text = Trimmed(text.substr(end));
    return word;
}

std::string TakeText(std::string & text) {
    std::size_t const end = text.empty() || text[0] != '"' ? std::string::npos : text.find('"', 1);
    if (end == std::string::npos) return TakeWord(text);
    std::string const quoted = text.substr(1, end - 1);
    text = Trimmed(text.substr(end + 1));
    return quoted;
}

} // namespace cells::app
