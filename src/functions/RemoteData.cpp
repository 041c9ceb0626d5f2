// Data of other documents and of databases.
#include "functions/Families.h"

namespace cells::internal {
namespace {

constexpr FunctionRow kRows[] = {
    {13245, L"REMOTE", L"source; item", "tt", L"Value of an item of another source.", nullptr,
     nullptr, kRemoteFunc},
    {13264, L"DBGET", L"database; table; field; row", "tt[tn]", L"Data of a table.", nullptr,
     nullptr, kRemoteFunc},
    {13265, L"DBSQL", L"database; statement; field; row", "tt[tn]", L"Data of a statement.",
     nullptr, nullptr, kRemoteFunc},
    {13266, L"DBFIELDCOUNT", L"database; table", "tt", L"Number of fields of a table.", nullptr,
     nullptr, kRemoteFunc},
    {13267, L"DBFIELDNAME", L"database; table; number", "ttn", L"Name of a field by number.",
     nullptr, nullptr, kRemoteFunc},
    {13268, L"DBTABLECOUNT", L"database", "t", L"Number of tables.", nullptr, nullptr, kRemoteFunc},
    {13269, L"DBTABLENAME", L"database; number", "tn", L"Name of a table by number.", nullptr,
     nullptr, kRemoteFunc},
    {13270, L"DBQUERYCOUNT", L"database", "t", L"Number of queries.", nullptr, nullptr,
     kRemoteFunc},
    {13271, L"DBQUERYNAME", L"database; number", "tn", L"Name of a query by number.", nullptr,
     nullptr, kRemoteFunc},
    {13272, L"DBRELATIONCOUNT", L"database", "t", L"Number of relations.", nullptr, nullptr,
     kRemoteFunc},
    {13273, L"DBRELATIONNAME", L"database; number", "tn", L"Name of a relation by number.", nullptr,
     nullptr, kRemoteFunc},
    {13277, L"DBFILTER", L"database; table; filter; field; row", "ttt[tn]",
     L"Data of a table under a filter.", nullptr, nullptr, kRemoteFunc},
    {13278, L"DBSORT", L"database; table; sort; field; row", "ttt[tn]",
     L"Data of a table in an order.", nullptr, nullptr, kRemoteFunc},
    {13279, L"DBFILTERSORT", L"database; table; sort slot; filter slot; field; row", "tttt[tn]",
     L"Data of a table under a filter and in an order.", nullptr, nullptr, kRemoteFunc},
    {13280, L"DBSQLFILTER", L"database; table; filter; field; row", "ttt[tn]",
     L"Data of a composed statement with a filter.", nullptr, nullptr, kRemoteFunc},
    {13281, L"DBSQLSORT", L"database; table; sort; field; row", "ttt[tn]",
     L"Data of a composed statement with an order.", nullptr, nullptr, kRemoteFunc},
    {13282, L"DBSQLFILTERSORT", L"database; table; filter; sort; field; row", "tttt[tn]",
     L"Data of a composed statement with a filter and an order.", nullptr, nullptr, kRemoteFunc},
    {13283, L"SSGET", L"document; item", "tt", L"Value of an item of a spreadsheet document.",
     nullptr, nullptr, kRemoteFunc},
    {13284, L"WPGET", L"document; item", "tt", L"Value of an item of a word processor document.",
     nullptr, nullptr, kRemoteFunc},
    {13288, L"HYPERLINK", L"target; label", "t[t]", L"Label of a link, or its target."},
};

} // namespace

FunctionFamily RemoteData() { return MakeFamily(10, kRows); }

} // namespace cells::internal
