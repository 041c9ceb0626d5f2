#include "host/database/internal/Item.h"

#include <array>
#include <cctype>
#include <cstddef>

namespace cells::host {
namespace {

std::string_view Trimmed(std::string_view text) {
    std::size_t const first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// Where a quoted piece that begins at `at` ends; the end of the text where it does not.
std::size_t EndOfQuoted(std::string_view text, std::size_t at) {
    char const close = text[at] == '[' ? ']' : text[at];
    std::size_t const end = text.find(close, at + 1);
    return end == std::string_view::npos ? text.size() : end + 1;
}

std::size_t FindSeparator(std::string_view text, std::size_t at) {
    while (at < text.size()) {
        char const unit = text[at];
        if (unit == '\'' || unit == '"' || unit == '`' || unit == '[')
            at = EndOfQuoted(text, at);
        else if (unit == '!' && (at + 1 == text.size() || text[at + 1] != '='))
            return at;
        else
            at += unit == '!' ? 2 : 1;
    }
    return std::string_view::npos;
}

} // namespace

bool DatabaseItem::IsStatement() const {
    std::size_t const end = table.find_first_of(" \t\r\n(*");
    if (end == std::string::npos) return false;
    std::string word;
    for (char unit : table.substr(0, end))
        word += char(std::toupper(static_cast<unsigned char>(unit)));
    return word == "SELECT" || word == "WITH" || word == "VALUES";
}

std::optional<DatabaseItem> ParseDatabaseItem(std::string_view text) {
    DatabaseItem item;
    std::array<std::string *, 5> const parts = {&item.table, &item.sort, &item.filter, &item.field,
                                                &item.row};
    for (std::string * part : parts) {
        std::size_t const end = FindSeparator(text, 0);
        *part = Trimmed(text.substr(0, end));
        if (end == std::string_view::npos) {
            if (item.table.empty()) return std::nullopt;
            return item;
        }
        text.remove_prefix(end + 1);
    }
    return std::nullopt;
}

std::string Quoted(std::string_view name) {
    std::string text = "\"";
    for (char unit : name) text += unit == '"' ? std::string("\"\"") : std::string(1, unit);
    return text + '"';
}

} // namespace cells::host
