// Statement: one SQLite statement within its limits.
#pragma once

#include "values/CCCellValue.h"

#include <chrono>
#include <sqlite3.h>
#include <stdexcept>
#include <string>

namespace cells::host {

// What a statement or a request fails with.
struct DatabaseError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Sets its deadline as the statement begins, so one runs at a time.
class Statement {
public:
    using Clock = std::chrono::steady_clock;

    // What a text may do: read tables, read whatever there is, or write.
    enum class Rights { kTables, kAll, kWrite };

    // `text` must be one statement.
    Statement(sqlite3 * database, std::string const & text, std::chrono::milliseconds timeLimit,
              Rights rights = Rights::kTables);
    Statement(Statement const &) = delete;
    Statement & operator=(Statement const &) = delete;
    ~Statement();

    void Bind(int number, CCCellValue const & value);
    bool Step(); // to the next row; false behind the last

    int Columns() const { return sqlite3_column_count(m_Statement); }
    std::string ColumnName(int column) const;
    std::string Text(int column) const;
    // A number, a text or an empty value; what is neither is error 3.
    void Read(int column, CCCellValue & value) const;

private:
    [[noreturn]] void Fail() const;

    sqlite3 * m_Database;
    sqlite3_stmt * m_Statement = nullptr;
    Clock::time_point m_Deadline;
};

} // namespace cells::host
