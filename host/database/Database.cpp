#include "host/database/Database.h"

#include "formula/CCRemoteRef.h"
#include "host/database/internal/Item.h"
#include "host/database/internal/Statement.h"
#include "platform/Utf.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <vector>

namespace cells::host {
namespace {

constexpr std::size_t kMostWalks = 1000; // results that are open at a time
constexpr int kLongestValue = 16 << 20;  // bytes
constexpr int kLongestStatement = 1 << 20;

enum Catalogue : int { kTables = 1, kQueries = 2, kRelations = 4 };

bool IsSameName(std::string_view a, std::string_view b) {
    return FromUtf8(a).CompareNoCase(FromUtf8(b)) == 0;
}

// A result in memory.
struct Result {
    std::vector<CCCellValue> values; // row by row
    int width = 0, height = 0;
    std::size_t next = 0; // value that is handed out next
};

// The row that an item asks for: none, a number from 1, or 0 for the last.
std::optional<long long> RowOf(DatabaseItem const & item) {
    if (item.row.empty()) return std::nullopt;
    if (IsSameName(item.row, "first")) return 1;
    if (IsSameName(item.row, "last")) return 0;
    long long row = 0;
    char const * const end = item.row.data() + item.row.size();
    auto const read = std::from_chars(item.row.data(), end, row);
    if (read.ec != std::errc() || read.ptr != end || row < 1)
        throw DatabaseError("there is no row " + item.row);
    return row;
}

DatabaseItem ItemOf(CCRemoteRef const & ref) {
    auto const item = ParseDatabaseItem(ToUtf8(ref.item()));
    if (!item) throw DatabaseError("there is no table in the item");
    return *item;
}

} // namespace

struct Database::State {
    std::string path;
    DatabaseOptions options;
    sqlite3 * database = nullptr;
    std::string error;
    std::map<ushort, Result> walks;

    ~State() { sqlite3_close(database); }

    // Runs a request; what it throws is its failure.
    template <typename Work>
    int Try(Work && work) {
        try {
            error.clear();
            return work();
        } catch (std::exception const & failure) {
            error = failure.what();
            return 0;
        }
    }

    // The first column of a statement of our own.
    std::vector<std::string> Names(std::string const & text, std::string const & parameter = {}) {
        Statement statement(database, text, options.timeLimit, Statement::Rights::kAll);
        if (!parameter.empty()) {
            CCCellValue value;
            value.Set(FromUtf8(parameter));
            statement.Bind(1, value);
        }
        std::vector<std::string> names;
        while (statement.Step()) names.push_back(statement.Text(0));
        return names;
    }

    std::vector<std::string> Schema(std::string const & type) {
        return Names("SELECT name FROM sqlite_master WHERE type = '" + type +
                     "' AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name");
    }

    // "child.column -> parent.column", table by table.
    std::vector<std::string> Relations() {
        return Names("SELECT m.name || '.' || f.\"from\" || ' -> ' || f.\"table\" || "
                     "coalesce('.' || f.\"to\", '') FROM sqlite_master m, "
                     "pragma_foreign_key_list(m.name) f WHERE m.type = 'table' "
                     "ORDER BY m.name, f.id, f.seq");
    }

    // The table, view or statement as what a FROM may hold.
    std::string From(DatabaseItem const & item) {
        if (item.IsStatement())
            return "(" + item.table.substr(0, item.table.find_last_not_of(" \t\r\n;") + 1) + "\n)";
        auto const known =
            Names("SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND "
                  "name = ? COLLATE NOCASE",
                  item.table);
        if (known.empty()) throw DatabaseError("there is no table " + item.table);
        return Quoted(known[0]);
    }

    std::vector<std::string> Fields(std::string const & from) {
        Statement statement(database, "SELECT * FROM " + from + " LIMIT 0", options.timeLimit);
        std::vector<std::string> names;
        for (int i = 0; i < statement.Columns(); ++i) names.push_back(statement.ColumnName(i));
        return names;
    }

    std::string Field(DatabaseItem const & item, std::string const & from) {
        for (std::string const & name : Fields(from))
            if (IsSameName(name, item.field)) return name;
        throw DatabaseError("there is no field " + item.field);
    }

    // The conditions stand on lines of their own, so that a comment ends with them.
    static std::string Conditions(DatabaseItem const & item) {
        std::string text;
        if (!item.filter.empty()) text += " WHERE (" + item.filter + "\n)";
        if (!item.sort.empty()) text += " ORDER BY " + item.sort + "\n";
        return text;
    }

    Result Read(DatabaseItem const & item) {
        // Each text is a whole of its own: none closes the brackets of another.
        std::string const from = From(item);
        if (item.IsStatement()) Statement(database, item.table, options.timeLimit);
        std::string const columns = item.field.empty() ? "*" : Quoted(Field(item, from));
        std::string text = "SELECT " + columns + " FROM " + from + Conditions(item);
        std::optional<long long> const row = RowOf(item);
        if (row && *row > 0) text += " LIMIT 1 OFFSET " + std::to_string(*row - 1);
        Statement statement(database, text, options.timeLimit);
        Result result;
        result.width = statement.Columns();
        while (statement.Step()) {
            bool const isLast = row && *row == 0;
            if (isLast) result.values.clear();
            result.height = isLast ? 1 : result.height + 1;
            if (result.height > options.rowLimit) throw DatabaseError("there are too many rows");
            if (result.values.size() + std::size_t(result.width) > std::size_t(options.valueLimit))
                throw DatabaseError("there are too many values");
            for (int i = 0; i < result.width; ++i) statement.Read(i, result.values.emplace_back());
        }
        if (row && result.height == 0) throw DatabaseError("there is no row " + item.row);
        return result;
    }

    Result * Walk(ushort handle) {
        auto const walk = walks.find(handle);
        if (walk == walks.end()) throw DatabaseError("no such walk");
        return &walk->second;
    }

    // Hands out the row at a position and stands after it.
    int Record(ushort handle, CPtrArray & values, long long first) {
        return Try([&] {
            FreeValueArray(values);
            Result & walk = *Walk(handle);
            walk.next = std::size_t(std::max(first, 0LL));
            if (walk.next >= walk.values.size()) return 0;
            for (int i = 0; i < walk.width; ++i)
                values.Add(new CCCellValue(walk.values[walk.next++]));
            return 1;
        });
    }
};

Database::Database(std::filesystem::path const & file, DatabaseOptions const & options)
    : m_State(std::make_unique<State>()) {
    m_State->path = file.string();
    m_State->options = options;
    int const flags = options.mayWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY;
    int const status = sqlite3_open_v2(m_State->path.c_str(), &m_State->database, flags, nullptr);
    if (status != SQLITE_OK)
        throw std::runtime_error(m_State->path + ": " + sqlite3_errstr(status));
    sqlite3_limit(m_State->database, SQLITE_LIMIT_LENGTH, kLongestValue);
    sqlite3_limit(m_State->database, SQLITE_LIMIT_SQL_LENGTH, kLongestStatement);
    sqlite3_limit(m_State->database, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_busy_timeout(m_State->database, int(options.timeLimit.count()));
    try {
        m_State->Schema("table");
    } catch (DatabaseError const & error) {
        throw std::runtime_error(m_State->path + ": " + error.what());
    }
}

Database::~Database() = default;

std::string const & Database::LastError() const { return m_State->error; }

bool Database::Serves(std::string_view document) {
    return IsDocumentCalled(m_State->path, document);
}

int Database::OnRemoteIsValidRef(CCRemoteRef const * ref) {
    return m_State->Try([&] {
        DatabaseItem const item = ItemOf(*ref);
        std::string const from = m_State->From(item);
        if (!item.field.empty()) m_State->Field(item, from);
        RowOf(item);
        return 1;
    });
}

// Without a row the first one, without a field the first one.
int Database::OnRemoteGetValue(CCRemoteRef const * ref, CCCellValue & value, int index) {
    return m_State->Try([&] {
        DatabaseItem item = ItemOf(*ref);
        if (item.row.empty() && index == 0) item.row = "1";
        Result const result = m_State->Read(item);
        if (index < 0 || std::size_t(index) >= result.values.size())
            throw DatabaseError("there is no such value");
        value = result.values[std::size_t(index)];
        return 1;
    });
}

int Database::OnRemoteGetDataSources(CCRemoteRef const *, CStringArray & sources, int flag) {
    return m_State->Try([&] {
        auto const add = [&](std::vector<std::string> const & names) {
            for (std::string const & name : names) sources.Add(FromUtf8(name));
        };
        if (flag & kTables) add(m_State->Schema("table"));
        if (flag & kQueries) add(m_State->Schema("view"));
        if (flag & kRelations) add(m_State->Relations());
        return (flag & (kTables | kQueries | kRelations)) != 0;
    });
}

int Database::OnRemoteGetItems(CCRemoteRef const * ref, CStringArray & items) {
    return m_State->Try([&] {
        DatabaseItem const item = ItemOf(*ref);
        for (std::string const & name : m_State->Fields(m_State->From(item)))
            items.Add(FromUtf8(name));
        return 1;
    });
}

ushort Database::OnRemoteOpenRef(CCRemoteRef const * ref) {
    return ushort(m_State->Try([&] {
        if (m_State->walks.size() >= kMostWalks) throw DatabaseError("too many results are open");
        Result result = m_State->Read(ItemOf(*ref));
        ushort handle = 1;
        while (m_State->walks.count(handle)) ++handle;
        m_State->walks.emplace(handle, std::move(result));
        return int(handle);
    }));
}

int Database::OnRemoteGetFirstRecord(CCRemoteRef const *, ushort handle, CPtrArray & values) {
    return m_State->Record(handle, values, 0);
}

int Database::OnRemoteGetNextRecord(CCRemoteRef const *, ushort handle, CPtrArray & values) {
    auto const walk = m_State->walks.find(handle);
    bool const isOpen = walk != m_State->walks.end();
    return m_State->Record(handle, values, isOpen ? (long long)walk->second.next : 0);
}

int Database::OnRemoteGetPreviousRecord(CCRemoteRef const *, ushort handle, CPtrArray & values) {
    auto const walk = m_State->walks.find(handle);
    if (walk == m_State->walks.end()) return m_State->Record(handle, values, 0);
    Result const & result = walk->second;
    return m_State->Record(handle, values, (long long)result.next - 2LL * result.width);
}

int Database::OnRemoteGetLastRecord(CCRemoteRef const *, ushort handle, CPtrArray & values) {
    auto const walk = m_State->walks.find(handle);
    if (walk == m_State->walks.end()) return m_State->Record(handle, values, 0);
    Result const & result = walk->second;
    return m_State->Record(handle, values, (result.height - 1LL) * result.width);
}

int Database::OnRemoteGetRecord(CCRemoteRef const *, ushort handle, int number,
                                CPtrArray & values) {
    auto const walk = m_State->walks.find(handle);
    if (walk == m_State->walks.end()) return m_State->Record(handle, values, 0);
    Result const & result = walk->second;
    if (number < 1 || number > result.height) return 0;
    return m_State->Record(handle, values, (number - 1LL) * result.width);
}

int Database::OnRemoteRefSize(CCRemoteRef const *, ushort handle, CSize & size) {
    return m_State->Try([&] {
        Result const & walk = *m_State->Walk(handle);
        size = CSize(walk.width, walk.height);
        return 1;
    });
}

int Database::OnRemoteNextValue(CCRemoteRef const *, ushort handle, CCCellValue & value) {
    return m_State->Try([&] {
        Result & walk = *m_State->Walk(handle);
        if (walk.next >= walk.values.size()) return 0;
        value = walk.values[walk.next++];
        return 1;
    });
}

int Database::OnRemoteCloseRef(CCRemoteRef const *, ushort handle) {
    return m_State->walks.erase(handle) != 0;
}

int Database::OnRemoteIsSingleValue(CCRemoteRef const * ref) {
    return m_State->Try([&] {
        DatabaseItem const item = ItemOf(*ref);
        if (!item.field.empty() && !item.row.empty()) return 1;
        Result const result = m_State->Read(item);
        return int(result.width == 1 && result.height == 1);
    });
}

int Database::OnRemoteSetSourceValue(CCRemoteRef const * ref, CCCellValue const & value) {
    return m_State->Try([&] {
        if (!m_State->options.mayWrite) throw DatabaseError("the database is only read");
        DatabaseItem const item = ItemOf(*ref);
        std::optional<long long> const row = RowOf(item);
        if (item.IsStatement() || item.field.empty() || !row || *row == 0)
            throw DatabaseError("only a field in a row of a table can be written");
        std::string const table = m_State->From(item);
        std::string const choice = "SELECT rowid FROM " + table + State::Conditions(item) +
                                   " LIMIT 1 OFFSET " + std::to_string(*row - 1);
        Statement(m_State->database, choice, m_State->options.timeLimit); // by itself, it reads
        Statement statement(m_State->database,
                            "UPDATE " + table + " SET " + Quoted(m_State->Field(item, table)) +
                                " = ?1 WHERE rowid = (" + choice + ")",
                            m_State->options.timeLimit, Statement::Rights::kWrite);
        statement.Bind(1, value);
        statement.Step();
        if (sqlite3_changes(m_State->database) == 0)
            throw DatabaseError("there is no row " + item.row);
        return 1;
    });
}

} // namespace cells::host
