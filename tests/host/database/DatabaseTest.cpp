// Databases that formulas read.
#include "host/database/Database.h"
#include "formula/CCRemoteRef.h"
#include "host/Links.h"
#include "host/database/internal/Item.h"
#include "platform/Arrays.h"
#include "values/CCCellValue.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

using cells::host::Database;
using cells::host::DatabaseItem;
using cells::host::DatabaseOptions;
using cells::host::Links;
using cells::host::ParseDatabaseItem;
using cells::host::Workbook;
namespace fs = std::filesystem;

namespace {

constexpr char kSchema[] = R"(
    CREATE TABLE articles (id INTEGER PRIMARY KEY, name TEXT, price REAL, note TEXT);
    INSERT INTO articles VALUES (1, 'bolt', 0.25, NULL), (2, 'nut', 0.1, 'small'),
                                (3, 'screw', 0.5, 'long!');
    CREATE TABLE "odd ""name" ("a b" INTEGER);
    INSERT INTO "odd ""name" VALUES (7);
    CREATE TABLE sales (id INTEGER, article INTEGER REFERENCES articles(id), blob BLOB);
    INSERT INTO sales VALUES (1, 3, x'00FF');
    CREATE TABLE empty (x INTEGER);
    CREATE VIEW cheap AS SELECT name FROM articles WHERE price < 0.4 ORDER BY name;
)";

class DatabaseFile {
public:
    DatabaseFile() {
        m_Folder = fs::temp_directory_path() / ("cvcells-db-" + std::to_string(getpid()));
        fs::create_directory(m_Folder);
        Run(kSchema);
    }
    ~DatabaseFile() { fs::remove_all(m_Folder); }
    fs::path File() const { return m_Folder / "stock.db"; }
    fs::path Folder() const { return m_Folder; }
    void Run(char const * text) const {
        sqlite3 * database;
        ASSERT_EQ(sqlite3_open(File().c_str(), &database), SQLITE_OK);
        char * error = nullptr;
        ASSERT_EQ(sqlite3_exec(database, text, nullptr, nullptr, &error), SQLITE_OK) << error;
        sqlite3_close(database);
    }

private:
    fs::path m_Folder;
};

struct Databases : testing::Test {
    explicit Databases(DatabaseOptions const & options = {}) : database(file.File(), options) {
        book.Add("Sheet1");
        links.Open("book", book, cells::host::ReadLinks::kYes);
        links.Add(database);
    }
    std::string Shows(std::string const & formula) {
        book.At(0).Enter("F9", formula);
        return book.At(0).Text("F9");
    }
    DatabaseFile file;
    Links links;
    Database database;
    Workbook book{"C"};
};

struct Row {
    char const *formula, *shown;
};
void PrintTo(Row const & row, std::ostream * out) { *out << row.formula; }

class Reading : public Databases, public testing::WithParamInterface<Row> {};
class Refused : public Databases, public testing::WithParamInterface<char const *> {};

} // namespace

INSTANTIATE_TEST_SUITE_P(
    Items, Reading,
    testing::Values(
        Row{"=DBGET(\"stock\",\"articles\",\"name\",2)", "nut"},
        Row{"=DBGET(\"stock.db\",\"ARTICLES\",\"NAME\",2)", "nut"},
        Row{"=DBGET(\"stock\",\"articles\",2,3)", "screw"},
        Row{"=DBGET(\"stock\",\"articles\",\"price\",3)*2", "1"},
        Row{"=DBGET(\"stock\",\"articles\",\"name\",\"last\")", "screw"},
        Row{"=DBGET(\"stock\",\"articles\",\"name\",\"First\")", "bolt"},
        Row{"=DBGET(\"stock\",\"articles\",\"name\")", "bolt"},
        Row{"=DBGET(\"stock\",\"articles\")", "1"},
        Row{"=DBGET(\"stock\",\"cheap\",\"name\",2)", "nut"},
        Row{"=ISBLANK(DBGET(\"stock\",\"articles\",\"note\",1))", "TRUE"},
        Row{"=DBGET(\"stock\",\"articles\",\"note\",3)", "long!"},
        Row{"=DBGET(\"stock\",\"sales\",\"blob\",1)", "#VALUE!"},
        Row{"=SUM(DBGET(\"stock\",\"articles\",\"price\"))", "0.85"},
        Row{"=COUNT(DBGET(\"stock\",\"articles\"))", "11"},
        Row{"=COUNT(DBGET(\"stock\",\"empty\"))", "0"},
        Row{"=DBSORT(\"stock\",\"articles\",\"price DESC\",\"name\",1)", "screw"},
        Row{"=DBFILTER(\"stock\",\"articles\",\"price > 0.2\",\"name\",2)", "screw"},
        Row{"=DBFILTER(\"stock\",\"articles\",\"name != 'bolt'\",\"name\",1)", "nut"},
        Row{"=DBFILTER(\"stock\",\"articles\",\"note = 'long!'\",\"id\",1)", "3"},
        Row{"=DBFILTERSORT(\"stock\",\"articles\",\"name DESC\",\"price > 0.2\",\"name\",2)",
            "bolt"},
        Row{"=DBSQL(\"stock\",\"SELECT count(*) FROM articles\")", "3"},
        Row{"=DBSQL(\"stock\",\"SELECT name FROM articles ORDER BY id;\",\"name\",2)", "nut"},
        Row{"=DBSQL(\"stock\",\"select max(price) AS m from articles -- the top\",\"m\",1)", "0.5"},
        Row{"=DBSQL(\"stock\",\"WITH t(x) AS (VALUES (4),(5)) SELECT x FROM t\",1,2)", "5"},
        Row{"=DBSQLFILTER(\"stock\",\"articles\",\"id>1\",\"name\",1)", "nut"},
        Row{"=DBSQLSORT(\"stock\",\"articles\",\"id DESC\",\"name\",1)", "screw"},
        Row{"=DBSQLFILTERSORT(\"stock\",\"articles\",\"id<3\",\"id DESC\",\"name\",1)", "nut"},
        Row{"=DBTABLECOUNT(\"stock\")", "4"}, Row{"=DBTABLENAME(\"stock\",1)", "articles"},
        Row{"=DBTABLENAME(\"stock\",4)", "sales"}, Row{"=DBQUERYCOUNT(\"stock\")", "1"},
        Row{"=DBQUERYNAME(\"stock\",1)", "cheap"}, Row{"=DBRELATIONCOUNT(\"stock\")", "1"},
        Row{"=DBRELATIONNAME(\"stock\",1)", "sales.article -> articles.id"},
        Row{"=DBFIELDCOUNT(\"stock\",\"articles\")", "4"},
        Row{"=DBFIELDNAME(\"stock\",\"articles\",3)", "price"},
        Row{"=DBFIELDNAME(\"stock\",\"SELECT id AS x FROM articles\",1)", "x"},
        Row{"=REMOTE(\"stock\",\"articles!!!name!1\")", "bolt"}));

TEST_P(Reading, Shows) {
    EXPECT_EQ(Shows(GetParam().formula), GetParam().shown) << database.LastError();
}

INSTANTIATE_TEST_SUITE_P(
    Items, Refused,
    testing::Values(
        "=DBGET(\"stock\",\"nothing\",\"name\",1)", "=DBGET(\"stock\",\"\",\"name\",1)",
        "=DBGET(\"stock\",\"articles\",\"colour\",1)", "=DBGET(\"stock\",\"articles\",\"name\",0)",
        "=DBGET(\"stock\",\"articles\",\"name\",-1)", "=DBGET(\"stock\",\"articles\",\"name\",4)",
        "=DBGET(\"stock\",\"articles\",\"name\",\"middle\")",
        "=DBGET(\"stock\",\"empty\",\"x\",\"last\")", "=DBSQL(\"stock\",\"SELECT\")",
        "=DBSQL(\"stock\",\"\")", "=DBSQL(\"stock\",\"DELETE FROM articles\")",
        "=DBSQL(\"stock\",\"SELECT 1; DELETE FROM articles\")",
        "=DBSQL(\"stock\",\"WITH x AS (SELECT 1) DELETE FROM articles\")",
        "=DBSQL(\"stock\",\"SELECT load_extension('x')\")",
        "=DBSQL(\"stock\",\"SELECT * FROM pragma_journal_mode('delete')\")",
        "=DBSQL(\"stock\",\"ATTACH 'other.db' AS o\")",
        "=DBSQL(\"stock\",\"SELECT 1) ; DELETE FROM articles; --\")",
        "=DBFILTER(\"stock\",\"articles\",\"id = \",\"name\",1)",
        "=DBFIELDCOUNT(\"stock\",\"nothing\")", "=DBGET(\"other\",\"articles\",\"name\",1)",
        "=REMOTE(\"stock\",\"a!b!c!d!e!f\")"));

TEST_P(Refused, IsAReferenceErrorAndChangesNothing) {
    EXPECT_EQ(Shows(GetParam()), "#REF!");
    EXPECT_EQ(Shows("=DBSQL(\"stock\",\"SELECT count(*) FROM articles\")"), "3");
}

TEST_F(Databases, WhatChangedIsReadWhenLinksAreRefreshed) {
    EXPECT_EQ(Shows("=DBGET(\"stock\",\"articles\",\"name\",1)"), "bolt");
    file.Run("UPDATE articles SET name = 'rivet' WHERE id = 1");
    links.Recalculate();
    links.Refresh(book);
    links.Recalculate();
    EXPECT_EQ(book.At(0).Text("F9"), "rivet");
}

TEST_F(Databases, ANameMayHoldAnything) {
    CCRemoteRef const table(L"stock", L"odd \"name"), value(L"stock", L"odd \"name");
    CStringArray fields;
    CCCellValue first;
    EXPECT_EQ(database.OnRemoteGetItems(&table, fields), 1);
    ASSERT_EQ(fields.GetSize(), 1);
    EXPECT_TRUE(fields[0] == CString(L"a b"));
    EXPECT_EQ(database.OnRemoteGetValue(&value, first, 0), 1);
    EXPECT_EQ(first.GetNumber(), 7);
}

TEST_F(Databases, ArgumentsAreFollowed) {
    book.At(0).Enter("A1", "1");
    EXPECT_EQ(Shows("=DBGET(\"stock\",\"articles\",\"name\",A1)"), "bolt");
    book.At(0).Enter("A1", "3");
    book.Recalculate();
    EXPECT_EQ(book.At(0).Text("F9"), "screw");
}

TEST_F(Databases, AStatementThatTakesTooLongIsStopped) {
    EXPECT_EQ(Shows("=DBSQL(\"stock\",\"WITH RECURSIVE t(x) AS (SELECT 1 UNION ALL SELECT x+1 FROM "
                    "t) SELECT count(*) FROM t\")"),
              "#REF!");
    EXPECT_EQ(database.LastError(), "the statement takes too long");
}

namespace {

struct Narrow : Databases {
    Narrow() : Databases(DatabaseOptions{std::chrono::milliseconds(2000), 2, 5, false}) {}
};
struct Writable : Databases {
    Writable() : Databases(DatabaseOptions{std::chrono::milliseconds(2000), 100, 100, true}) {}
};

} // namespace

TEST_F(Narrow, AResultOfTooManyRowsOrValuesFailsAsAWhole) {
    EXPECT_EQ(Shows("=COUNT(DBGET(\"stock\",\"articles\",\"id\"))"), "#REF!");
    EXPECT_EQ(database.LastError(), "there are too many rows");
    EXPECT_EQ(Shows("=COUNT(DBFILTER(\"stock\",\"articles\",\"id<3\"))"), "#REF!");
    EXPECT_EQ(database.LastError(), "there are too many values");
    EXPECT_EQ(Shows("=COUNT(DBFILTER(\"stock\",\"articles\",\"id<3\",\"id\"))"), "2");
}

TEST_F(Databases, AnEditSourceWritesOnlyWhereItMay) {
    CCRemoteRef const place(L"stock", L"articles!!!name!2");
    CCCellValue value;
    value.Set(L"washer");
    EXPECT_EQ(database.OnRemoteSetSourceValue(&place, value), 0);
    EXPECT_EQ(Shows("=DBGET(\"stock\",\"articles\",\"name\",2)"), "nut");
}

TEST_F(Writable, AnEditSourceWritesOneField) {
    CCCellValue value;
    auto const write = [&](wchar_t const * item) {
        CCRemoteRef const place(L"stock", item);
        return database.OnRemoteSetSourceValue(&place, value);
    };
    value.Set(L"washer");
    EXPECT_EQ(write(L"articles!!!name!2"), 1);
    EXPECT_EQ(Shows("=DBGET(\"stock\",\"articles\",\"name\",2)"), "washer");
    value.Set(0.75);
    EXPECT_EQ(write(L"articles!id DESC!id < 3!price!1"), 1);
    EXPECT_EQ(Shows("=DBGET(\"stock\",\"articles\",\"price\",2)"), "0.75");
    value.Set();
    EXPECT_EQ(write(L"articles!!!note!2"), 1);
    EXPECT_EQ(Shows("=ISBLANK(DBGET(\"stock\",\"articles\",\"note\",2))"), "TRUE");
    for (wchar_t const * item :
         {L"articles!!!name!9", L"articles!!!name", L"articles!!!name!last", L"cheap!!!name!1",
          L"SELECT name FROM articles!!!name!1", L"articles!!1); DELETE FROM articles; --!name!1"})
        EXPECT_EQ(write(item), 0);
    value.Set(errNA);
    EXPECT_EQ(write(L"articles!!!name!2"), 0);
    EXPECT_EQ(Shows("=DBSQL(\"stock\",\"SELECT count(*) FROM articles\")"), "3");
}

TEST_F(Databases, RecordsAreWholeRows) {
    CCRemoteRef const place(L"stock", L"articles");
    ushort const walk = database.OnRemoteOpenRef(&place);
    ASSERT_NE(walk, 0);
    CPtrArray row;
    auto const first = [&](int result) {
        if (!result) return std::string("none");
        std::string const id =
            std::to_string(int(static_cast<CCCellValue *>(row[0])->GetNumber())) + "/" +
            std::to_string(row.GetSize());
        FreeValueArray(row);
        return id;
    };
    CSize size;
    EXPECT_EQ(database.OnRemoteRefSize(&place, walk, size), 1);
    EXPECT_EQ(size, CSize(4, 3));
    EXPECT_EQ(first(database.OnRemoteGetFirstRecord(&place, walk, row)), "1/4");
    EXPECT_EQ(first(database.OnRemoteGetNextRecord(&place, walk, row)), "2/4");
    EXPECT_EQ(first(database.OnRemoteGetPreviousRecord(&place, walk, row)), "1/4");
    EXPECT_EQ(first(database.OnRemoteGetPreviousRecord(&place, walk, row)), "1/4");
    EXPECT_EQ(first(database.OnRemoteGetLastRecord(&place, walk, row)), "3/4");
    EXPECT_EQ(first(database.OnRemoteGetNextRecord(&place, walk, row)), "none");
    EXPECT_EQ(first(database.OnRemoteGetRecord(&place, walk, 2, row)), "2/4");
    EXPECT_EQ(first(database.OnRemoteGetRecord(&place, walk, 0, row)), "none");
    EXPECT_EQ(first(database.OnRemoteGetRecord(&place, walk, 4, row)), "none");
    EXPECT_EQ(first(database.OnRemoteGetNextRecord(&place, 999, row)), "none");
    EXPECT_EQ(database.OnRemoteCloseRef(&place, walk), 1);
    EXPECT_EQ(database.OnRemoteCloseRef(&place, walk), 0);
    EXPECT_EQ(database.OnRemoteRefSize(&place, walk, size), 0);
}

TEST_F(Databases, ResultsThatAreNeverClosedAreBounded) {
    CCRemoteRef const place(L"stock", L"empty");
    int opened = 0;
    while (opened < 5000 && database.OnRemoteOpenRef(&place)) ++opened;
    EXPECT_EQ(opened, 1000);
}

TEST_F(Databases, ASingleValueIsOneByOne) {
    auto const single = [&](wchar_t const * item) {
        CCRemoteRef const place(L"stock", item);
        return database.OnRemoteIsSingleValue(&place);
    };
    EXPECT_EQ(single(L"articles!!!name!1"), 1);
    EXPECT_EQ(single(L"articles!!!name"), 0);
    EXPECT_EQ(single(L"articles"), 0);
    EXPECT_EQ(single(L"SELECT 1"), 1);
    EXPECT_EQ(single(L"nothing"), 0);
}

TEST(DatabaseOpening, AFileThatIsNoneIsToldByName) {
    DatabaseFile const file;
    fs::path const text = file.Folder() / "notes.db";
    std::ofstream(text) << "These are notes and not a database, long enough to have a header.";
    for (fs::path const & path : {text, file.Folder() / "missing.db", file.Folder()}) try {
            Database const database(path);
            FAIL() << path;
        } catch (std::runtime_error const & error) {
            EXPECT_EQ(std::string(error.what()).find(path.string() + ": "), 0u) << error.what();
        }
}

TEST(DatabaseItems, AreCutAtTheirMarks) {
    auto const parts = [](char const * text) {
        auto const item = ParseDatabaseItem(text);
        return item ? item->table + "|" + item->sort + "|" + item->filter + "|" + item->field +
                          "|" + item->row
                    : std::string("none");
    };
    EXPECT_EQ(parts("t"), "t||||");
    EXPECT_EQ(parts("t!s!f!x!3"), "t|s|f|x|3");
    EXPECT_EQ(parts(" t ! s "), "t|s|||");
    EXPECT_EQ(parts("t!!a != 'b!c'!x"), "t||a != 'b!c'|x|");
    EXPECT_EQ(parts("\"a!b\"![c!d]!`e!f`"), "\"a!b\"|[c!d]|`e!f`||");
    EXPECT_EQ(parts("'open!t"), "'open!t||||");
    EXPECT_EQ(parts(""), "none");
    EXPECT_EQ(parts("!s"), "none");
    EXPECT_EQ(parts("t!!!!!"), "none");
    EXPECT_TRUE(ParseDatabaseItem("select 1")->IsStatement());
    EXPECT_TRUE(ParseDatabaseItem("WITH x AS (SELECT 1) SELECT 1")->IsStatement());
    EXPECT_FALSE(ParseDatabaseItem("selection")->IsStatement());
    EXPECT_FALSE(ParseDatabaseItem("select")->IsStatement());
}
