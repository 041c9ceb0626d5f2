// cells::host::Database: an SQLite database that formulas read.
//
//     cells::host::Database stock("stock.db");
//     links.Add(stock);                        // =DBGET("stock","articles","price",3)
//
// It serves the database functions: DBGET and its kin for tables and views, DBSQL and its kin for
// statements, the catalogue functions for tables, queries (views), relations (foreign keys) and
// fields. A link with a field and a row is one value; one without a row gives all of them, one
// without a field all columns, for functions that take many values. A row is its number from 1, or
// "first" or "last".
//
// Statements only read: one that would write, attach another file, set a pragma or load code is
// refused, and so is a second one behind it. Each has a limit of time and of values; what exceeds
// it fails as a whole. A failure is #REF! in the formula; LastError tells why.
#pragma once

#include "host/Carrier.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

namespace cells::host {

struct DatabaseOptions {
    std::chrono::milliseconds timeLimit{2000}; // of one statement
    int rowLimit = 100'000;                    // of one result
    int valueLimit = 1'000'000;                // the same, over all columns
    // Whether an edit source cell may write to the value that it shows, a field and row of a table.
    bool mayWrite = false;
};

class CVCELLS_API Database final : public Source {
public:
    // A file that cannot be opened, or is no database, throws std::runtime_error.
    explicit Database(std::filesystem::path const & file, DatabaseOptions const & options = {});
    Database(Database const &) = delete;
    Database & operator=(Database const &) = delete;
    ~Database() override;

    // Why the last request failed; empty after one that did not.
    std::string const & LastError() const;

    bool Serves(std::string_view document) override;
    int OnRemoteIsValidRef(CCRemoteRef const * ref) override;
    int OnRemoteGetValue(CCRemoteRef const * ref, CCCellValue & value, int index) override;
    int OnRemoteGetDataSources(CCRemoteRef const * ref, CStringArray & sources, int flag) override;
    int OnRemoteGetItems(CCRemoteRef const * ref, CStringArray & items) override;
    ushort OnRemoteOpenRef(CCRemoteRef const * ref) override;
    int OnRemoteGetFirstRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values) override;
    int OnRemoteGetNextRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values) override;
    int OnRemoteGetPreviousRecord(CCRemoteRef const * ref, ushort handle,
                                  CPtrArray & values) override;
    int OnRemoteGetLastRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values) override;
    int OnRemoteGetRecord(CCRemoteRef const * ref, ushort handle, int number,
                          CPtrArray & values) override;
    int OnRemoteRefSize(CCRemoteRef const * ref, ushort handle, CSize & size) override;
    int OnRemoteNextValue(CCRemoteRef const * ref, ushort handle, CCCellValue & value) override;
    int OnRemoteCloseRef(CCRemoteRef const * ref, ushort handle) override;
    int OnRemoteIsSingleValue(CCRemoteRef const * ref) override;
    int OnRemoteSetSourceValue(CCRemoteRef const * ref, CCCellValue const & value) override;

private:
    struct State;
    std::unique_ptr<State> m_State;
};

} // namespace cells::host
