// Data of other documents and of databases.
//
// These functions do no work themselves. A call names a link: a source and an item of it. Whoever
// answers for the source (CCTransportInterface) reads the item. An item of a database has five
// parts, table ! sort ! filter ! field ! row, of which the last may be missing; a statement stands
// in the place of the table.
#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "formula/CCConstFormula.h"
#include "formula/CCRemoteRef.h"
#include "functions/Arguments.h"
#include "functions/Shapes.h"
#include "functions/internal/Families.h"
#include "platform/Digits.h"
#include "platform/Resources.h"

#include <cmath>
#include <memory>
#include <string>

namespace cells::internal {
namespace {

// The first `count` arguments, which must be texts. `args` is what follows them then.
bool TakeTexts(CTX * ctx, CString * texts, int count, CCFormulaList const *& args,
               CCRef const * current) {
    for (; count > 0; --count, args = args->next) {
        CCCellValue value;
        if (!EvalArg(ctx, value, args, current) || !value.IsText()) return false;
        *texts++ = value.GetTextString();
    }
    return true;
}

// A source, and with two texts an item of it.
template <int Texts>
int PlainLink(CTX * ctx, CCRemoteRef & remote, CCFormulaList const * args, CCRef const * current) {
    CString texts[2];
    if (!TakeTexts(ctx, texts, Texts, args, current)) return 0;
    remote = CCRemoteRef(texts[0], texts[1]);
    return 1;
}

// Catalogues: lists of names

enum Catalogue : int { kItems = 0, kTables = 1, kQueries = 2, kRelations = 4 };

// Those of sources name a database, that of items a table too.
constexpr int TextsOf(Catalogue catalogue) { return catalogue == kItems ? 2 : 1; }

template <Catalogue Names>
bool ReadNames(CTX * ctx, CStringArray & names, CCFormulaList const * args, CCRef const * current) {
    CCRemoteRef remote;
    CCCellManager * const manager = ctx->manager();
    if (!manager || !PlainLink<TextsOf(Names)>(ctx, remote, args, current)) return false;
    return Names == kItems ? manager->DoRemoteGetItems(&remote, names)
                           : manager->DoRemoteGetDataSources(&remote, names, Names);
}

template <Catalogue Names>
void EvalNameCount(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                   CCRef const * current) {
    CStringArray names;
    if (!ReadNames<Names>(ctx, names, args, current)) return result.Set(errRef);
    SetNumber(result, names.GetSize());
}

template <Catalogue Names>
void EvalName(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CStringArray names;
    if (!ReadNames<Names>(ctx, names, args, current)) return result.Set(errRef);
    for (int i = 0; i < TextsOf(Names); ++i) args = args->next;
    double number;
    if (!GetNumbers(ctx, result, &number, 1, args, current)) return result.Set(errValue);
    double const place = std::trunc(number);
    if (!(place >= 1 && place <= names.GetSize())) return result.Set(errValue);
    result.Set(names[int(place) - 1]);
}

// Links

// A field by its number in the table or statement.
bool FieldName(CTX * ctx, CString const & database, CString const & table, double number,
               CString & name, CCRef const * current) {
    CCCellValue texts[2], place;
    texts[0].Set(database);
    texts[1].Set(table);
    SetNumber(place, number);
    CCFormulaList * args = FormulaListCreate3Item(
        new CCConstFormula(texts[0]), new CCConstFormula(texts[1]), new CCConstFormula(place));
    CCCellValue result;
    EvalName<kItems>(ctx, result, args, current);
    FreeFormulaList(args, 1);
    if (!result.IsText()) return false;
    name = result.GetTextString();
    return true;
}

// Adds the field, after a mark that ends the slots before it, and the row, as far as the call has
// them.
bool AddFieldAndRow(CTX * ctx, CString const & database, CString const & table, CString & item,
                    wchar_t const * mark, CCFormulaList const * args, CCRef const * current) {
    if (!args) return true;
    CCCellValue value;
    if (args->formula) {
        EvalArg(ctx, value, args, current);
        CString field = value.GetTextString();
        if (!value.IsText() && !(value.IsNumber() && FieldName(ctx, database, table,
                                                               value.GetNumber(), field, current)))
            return false;
        item += CString(mark) + field;
    }
    if (!args->next) return true;
    EvalArg(ctx, value, args->next, current);
    if (value.IsNumber())
        item += CString(L"!") + CString(std::to_wstring(ToInt32(value.GetNumber())).c_str());
    else if (value.IsText())
        item += CString(L"!") + value.GetTextString();
    else
        return false;
    return true;
}

// A dot after the last separator of folders, and not as the first character.
bool HasExtension(CString const & path) {
    int const slash = std::max(path.ReverseFind(L'/'), path.ReverseFind(L'\\'));
    return path.ReverseFind(L'.') > slash + 1;
}

constexpr wchar_t kSpreadsheetExtension[] = L".cvs";
constexpr wchar_t kTextExtension[] = L".cvw";

// A document that is refused under a name without extension is taken for one with its usual one.
template <auto & Extension>
int DocumentLink(CTX * ctx, CCRemoteRef & remote, CCFormulaList const * args,
                 CCRef const * current) {
    CCCellManager * const manager = ctx->manager();
    if (!manager || !PlainLink<2>(ctx, remote, args, current)) return 0;
    if (!HasExtension(remote.document()) && !manager->DoRemoteIsValidRef(&remote))
        remote.m_strDocument += Extension;
    return 1;
}

// Behind the table stands what sorts and what filters it.
enum class Slots { kNone, kSort, kFilter, kSortAndFilter };

template <Slots Given>
int TableLink(CTX * ctx, CCRemoteRef & remote, CCFormulaList const * args, CCRef const * current) {
    constexpr int kTexts = Given == Slots::kNone ? 2 : Given == Slots::kSortAndFilter ? 4 : 3;
    constexpr wchar_t const * kMark = Given == Slots::kNone   ? L"!!!"
                                      : Given == Slots::kSort ? L"!!"
                                                              : L"!";
    CString texts[kTexts];
    if (!TakeTexts(ctx, texts, kTexts, args, current)) return 0;
    CString item = texts[1];
    if constexpr (Given != Slots::kNone)
        item += CString(Given == Slots::kFilter ? L"!!" : L"!") + texts[2];
    if constexpr (Given == Slots::kSortAndFilter) item += CString(L"!") + texts[3];
    if (!AddFieldAndRow(ctx, texts[0], texts[1], item, kMark, args, current)) return 0;
    remote = CCRemoteRef(texts[0], item);
    return 1;
}

enum StatementWord : unsigned int {
    kWordSelect = 13024,
    kWordFrom = 13025,
    kWordFilter = 13026,
    kWordSort = 13027,
    kWordAllColumns = 13028,
};

CString Joined(std::initializer_list<CString> words) {
    CString text;
    for (CString const & word : words) text += text.IsEmpty() ? word : CString(L" ") + word;
    return text;
}

// A statement, as it is or composed of a table and what filters and sorts it.
template <bool Composed, bool Filter, bool Sort>
int StatementLink(CTX * ctx, CCRemoteRef & remote, CCFormulaList const * args,
                  CCRef const * current) {
    constexpr int kTexts = 2 + Filter + Sort;
    CString texts[kTexts];
    if (!TakeTexts(ctx, texts, kTexts, args, current)) return 0;
    CString statement = texts[1];
    if constexpr (Composed)
        statement = Joined({LoadString(kWordSelect), LoadString(kWordAllColumns),
                            LoadString(kWordFrom), texts[1]});
    if constexpr (Filter) statement = Joined({statement, LoadString(kWordFilter), texts[2]});
    if constexpr (Sort) statement = Joined({statement, LoadString(kWordSort), texts[kTexts - 1]});
    CString item = statement;
    if (!AddFieldAndRow(ctx, texts[0], statement, item, L"!!!", args, current)) return 0;
    remote = CCRemoteRef(texts[0], item);
    return 1;
}

template <RemoteFn Link>
void EvalLink(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CCRemoteRef remote;
    CCCellManager * const manager = ctx->manager();
    CCCellValue value;
    if (manager && Link(ctx, remote, args, current) && manager->DoRemoteGetValue(&remote, value, 0))
        result.Set(value);
    else
        result.Set(errRef);
}

void EvalHyperlink(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                   CCRef const * current) {
    EvalArg(ctx, result, args, current);
    if (!result.IsText()) return result.Set(errLegacy);
    if (args->next) EvalArg(ctx, result, args->next, current);
}

template <RemoteFn Link, int Least, int Most = Least + 2>
constexpr FunctionRow LinkRow(unsigned int id, wchar_t const * name, wchar_t const * arguments,
                              char const * kinds, wchar_t const * description) {
    return FunctionRow(id, name, arguments, kinds, description, SinglesBetween<Least, Most>,
                       EvalLink<Link>, Link);
}

template <Catalogue Names>
constexpr FunctionRow CountRow(unsigned int id, wchar_t const * name, wchar_t const * arguments,
                               char const * kinds, wchar_t const * description) {
    return FunctionRow(id, name, arguments, kinds, description, Singles<TextsOf(Names)>,
                       EvalNameCount<Names>, PlainLink<TextsOf(Names)>);
}

template <Catalogue Names>
constexpr FunctionRow NameRow(unsigned int id, wchar_t const * name, wchar_t const * arguments,
                              char const * kinds, wchar_t const * description) {
    return FunctionRow(id, name, arguments, kinds, description, Singles<TextsOf(Names) + 1>,
                       EvalName<Names>, PlainLink<TextsOf(Names)>);
}

constexpr FunctionRow kRows[] = {
    LinkRow<PlainLink<2>, 2, 2>(13245, L"REMOTE", L"source; item", "tt",
                                L"Value of an item of another source."),
    LinkRow<TableLink<Slots::kNone>, 2>(13264, L"DBGET", L"database; table; field; row", "tt[vv]",
                                        L"Data of a table."),
    LinkRow<StatementLink<false, false, false>, 2>(
        13265, L"DBSQL", L"database; statement; field; row", "tt[vv]", L"Data of a statement."),
    CountRow<kItems>(13266, L"DBFIELDCOUNT", L"database; table", "tt",
                     L"Number of fields of a table."),
    NameRow<kItems>(13267, L"DBFIELDNAME", L"database; table; number", "ttn",
                    L"Name of a field by number."),
    CountRow<kTables>(13268, L"DBTABLECOUNT", L"database", "t", L"Number of tables."),
    NameRow<kTables>(13269, L"DBTABLENAME", L"database; number", "tn",
                     L"Name of a table by number."),
    CountRow<kQueries>(13270, L"DBQUERYCOUNT", L"database", "t", L"Number of queries."),
    NameRow<kQueries>(13271, L"DBQUERYNAME", L"database; number", "tn",
                      L"Name of a query by number."),
    CountRow<kRelations>(13272, L"DBRELATIONCOUNT", L"database", "t", L"Number of relations."),
    NameRow<kRelations>(13273, L"DBRELATIONNAME", L"database; number", "tn",
                        L"Name of a relation by number."),
    LinkRow<TableLink<Slots::kFilter>, 3>(13277, L"DBFILTER",
                                          L"database; table; filter; field; row", "ttt[vv]",
                                          L"Data of a table under a filter."),
    LinkRow<TableLink<Slots::kSort>, 3>(13278, L"DBSORT", L"database; table; sort; field; row",
                                        "ttt[vv]", L"Data of a table in an order."),
    LinkRow<TableLink<Slots::kSortAndFilter>, 4>(
        13279, L"DBFILTERSORT", L"database; table; sort; filter; field; row", "tttt[vv]",
        L"Data of a table under a filter and in an order."),
    LinkRow<StatementLink<true, true, false>, 3>(13280, L"DBSQLFILTER",
                                                 L"database; table; filter; field; row", "ttt[vv]",
                                                 L"Data of a composed statement with a filter."),
    LinkRow<StatementLink<true, false, true>, 3>(13281, L"DBSQLSORT",
                                                 L"database; table; sort; field; row", "ttt[vv]",
                                                 L"Data of a composed statement with an order."),
    LinkRow<StatementLink<true, true, true>, 4>(
        13282, L"DBSQLFILTERSORT", L"database; table; filter; sort; field; row", "tttt[vv]",
        L"Data of a composed statement with a filter and an order."),
    LinkRow<DocumentLink<kSpreadsheetExtension>, 2, 2>(
        13283, L"SSGET", L"document; item", "tt", L"Value of an item of a spreadsheet document."),
    LinkRow<DocumentLink<kTextExtension>, 2, 2>(13284, L"WPGET", L"document; item", "tt",
                                                L"Value of an item of a word processor document."),
    {13288, L"HYPERLINK", L"target; label", "t[v]", L"Label of a link, or its target.",
     L"HYPERLINK(\"page.html\",\"Next\")", L"Next", SinglesBetween<1, 2>, EvalHyperlink},
};

} // namespace

FunctionFamily RemoteData() { return MakeFamily(10, kRows); }

} // namespace cells::internal
