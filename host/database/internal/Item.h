// Item: what a link asks of a database, as the functions spell it.
//
// An item has up to five parts, "table!sort!filter!field!row". A statement may stand in the place
// of the table. A "!" within quotes or before a "=" separates nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cells::host {

struct DatabaseItem {
    std::string table, sort, filter, field, row; // empty where nothing is said

    bool IsStatement() const; // rather than the name of a table
};

// Nothing for a text with more parts, or without a table.
std::optional<DatabaseItem> ParseDatabaseItem(std::string_view text);

// A name as a statement spells it: in double quotes.
std::string Quoted(std::string_view name);

} // namespace cells::host
