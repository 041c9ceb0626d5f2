#include "host/database/internal/Statement.h"

#include "platform/Utf.h"

#include <string_view>

namespace cells::host {
namespace {

constexpr int kStepsBetweenLooks = 1000; // of SQLite's machine, at the clock

int StopLate(void * deadline) {
    return Statement::Clock::now() > *static_cast<Statement::Clock::time_point *>(deadline);
}

// What a statement that reads tables may do.
int AllowReading(void *, int action, char const *, char const * second, char const *,
                 char const *) {
    switch (action) {
    case SQLITE_SELECT:
    case SQLITE_READ:
    case SQLITE_RECURSIVE:
        return SQLITE_OK;
    case SQLITE_FUNCTION:
        return second && std::string_view(second) == "load_extension" ? SQLITE_DENY : SQLITE_OK;
    default:
        return SQLITE_DENY;
    }
}

bool IsBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n;") == std::string_view::npos;
}

} // namespace

Statement::Statement(sqlite3 * database, std::string const & text,
                     std::chrono::milliseconds timeLimit, Rights rights)
    : m_Database(database), m_Deadline(Clock::now() + timeLimit) {
    sqlite3_progress_handler(database, kStepsBetweenLooks, &StopLate, &m_Deadline);
    sqlite3_set_authorizer(database, rights == Rights::kTables ? &AllowReading : nullptr, nullptr);
    char const * rest = nullptr;
    int const status =
        sqlite3_prepare_v2(database, text.c_str(), int(text.size()) + 1, &m_Statement, &rest);
    sqlite3_set_authorizer(database, nullptr, nullptr);
    try {
        if (status != SQLITE_OK) Fail();
        if (!m_Statement) throw DatabaseError("there is no statement");
        if (!IsBlank(rest)) throw DatabaseError("there is more than one statement");
        if (rights != Rights::kWrite && !sqlite3_stmt_readonly(m_Statement))
            throw DatabaseError("the statement would write");
    } catch (...) {
        sqlite3_progress_handler(database, 0, nullptr, nullptr);
        sqlite3_finalize(m_Statement);
        throw;
    }
}

Statement::~Statement() {
    sqlite3_finalize(m_Statement);
    sqlite3_progress_handler(m_Database, 0, nullptr, nullptr);
}

void Statement::Fail() const { throw DatabaseError(sqlite3_errmsg(m_Database)); }

void Statement::Bind(int number, CCCellValue const & value) {
    int status = SQLITE_MISUSE;
    if (value.IsNumber()) status = sqlite3_bind_double(m_Statement, number, value.GetNumber());
    if (value.IsEmpty()) status = sqlite3_bind_null(m_Statement, number);
    if (value.IsText()) {
        std::string const text = ToUtf8(value.GetTextString());
        status =
            sqlite3_bind_text(m_Statement, number, text.data(), int(text.size()), SQLITE_TRANSIENT);
    }
    if (status != SQLITE_OK) throw DatabaseError("the value cannot be stored");
}

bool Statement::Step() {
    switch (sqlite3_step(m_Statement)) {
    case SQLITE_ROW:
        return true;
    case SQLITE_DONE:
        return false;
    case SQLITE_INTERRUPT:
        throw DatabaseError("the statement takes too long");
    default:
        Fail();
    }
}

std::string Statement::ColumnName(int column) const {
    char const * const name = sqlite3_column_name(m_Statement, column);
    return name ? name : "";
}

std::string Statement::Text(int column) const {
    auto const * const text =
        reinterpret_cast<char const *>(sqlite3_column_text(m_Statement, column));
    return text ? std::string(text, std::size_t(sqlite3_column_bytes(m_Statement, column))) : "";
}

void Statement::Read(int column, CCCellValue & value) const {
    switch (sqlite3_column_type(m_Statement, column)) {
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
        return value.Set(sqlite3_column_double(m_Statement, column), uchar(C_NF_GENERAL));
    case SQLITE_TEXT:
        return value.Set(FromUtf8(Text(column)));
    case SQLITE_NULL:
        return value.Set();
    default:
        return value.Set(errValue);
    }
}

} // namespace cells::host
