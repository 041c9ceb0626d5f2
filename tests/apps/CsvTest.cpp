// Comma and tab separated texts, as files bring them and take them.
#include "cvcells/Csv.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

using cells::app::FormatOf;
using cells::app::InputError;
using cells::app::LoadText;
using cells::app::QuoteField;
using cells::app::ReadFile;
using cells::app::TextFormat;
using cells::app::WriteFile;
using cells::host::Sheet;

namespace fs = std::filesystem;

namespace {

std::string const kMark = "\xEF\xBB\xBF"; // of the order of bytes

// "A1=1 B1=x ": what the occupied cells show.
std::string Shown(Sheet & sheet) {
    std::string shown;
    sheet.ForEachOccupied([&](cells::host::Place place) {
        shown += cells::host::NameOf(place) + "=" + sheet.Text(place) + " ";
    });
    return shown;
}

std::string Loaded(std::string const & content, TextFormat format = TextFormat::kCsv) {
    Sheet sheet("C");
    LoadText(sheet, "it", content, format);
    return Shown(sheet);
}

template <typename Work>
std::string Refusal(Work const & work) {
    try {
        work();
    } catch (InputError const & failure) {
        return failure.what();
    }
    return "no refusal";
}

std::string Refused(std::string const & content) {
    return Refusal([&] { Loaded(content); });
}

// A folder that is gone with the test.
struct Folder {
    fs::path path = fs::temp_directory_path() / ("cvcells-csv-" + std::to_string(getpid()));
    Folder() { fs::create_directories(path); }
    ~Folder() { fs::remove_all(path); }
    std::string File(std::string const & name) const { return (path / name).string(); }
};

} // namespace

TEST(Csv, EveryKindOfLineEndEndsOneRow) {
    std::string const twoRows = "A1=1 B1=2 A2=3 B2=4 ";
    struct Row {
        std::string content;
        std::string shown;
    } const rows[] = {
        {"1,2\n3,4\n", twoRows},
        {"1,2\r\n3,4\r\n", twoRows},
        {"1,2\r3,4\r", twoRows},
        {"1,2\n3,4", twoRows},
        {"1,2\r\n3,4", twoRows},
        {"1,2\r3,4", twoRows},
        {kMark + "1,2\r\n3,4\r\n", twoRows},
        {kMark, ""},
        {"", ""},
        {"1\n\n3\n", "A1=1 A3=3 "},
        {"1\r\n\r\n3\r\n", "A1=1 A3=3 "},
        {"1\r\r3", "A1=1 A3=3 "},
        {"1\n\r3", "A1=1 A3=3 "},
        {"\r\n1", "A2=1 "},
        {"1\r\n2\n3\r4", "A1=1 A2=2 A3=3 A4=4 "},
        {"1\r,\n3", "A1=1 A3=3 "},
        {"1,\r\n,2\r\n", "A1=1 B2=2 "},
        {"\"a\"\r\n\"b\"\r\n", "A1=a A2=b "},
        {"\"a\r\nb\"\r\nc", "A1=a\r\nb A2=c "},
        {"1\r\n=A1*2\r\n=A2*2\r\n", "A1=1 A2=2 A3=4 "},
    };
    for (Row const & row : rows) EXPECT_EQ(Loaded(row.content), row.shown) << row.content;
}

TEST(Csv, QuotesHoldSeparatorsLineEndsAndDoubledQuotes) {
    struct Row {
        std::string content;
        std::string shown;
    } const rows[] = {
        {"\"a,b\",c", "A1=a,b B1=c "},
        {"\"say \"\"hi\"\"\"", "A1=say \"hi\" "},
        {"\"\"\"\"", "A1=\" "},
        {"\"a\nb\",c\nd", "A1=a\nb B1=c A2=d "},
        {"\"\",x", "B1=x "},
        {"a\"b,c", "A1=a\"b B1=c "},
        {"\"12\",3", "A1=12 B1=3 "},
        {"\"=SUM(1,2)\"", "A1=3 "},
        {kMark + "\"a,b\",c", "A1=a,b B1=c "},
        {"a;b", "A1=a;b "},
    };
    for (Row const & row : rows) EXPECT_EQ(Loaded(row.content), row.shown) << row.content;
}

TEST(Csv, TabsSeparateTabSeparatedTexts) {
    struct Row {
        std::string content;
        std::string shown;
    } const rows[] = {
        {"a,b\tc", "A1=a,b B1=c "},
        {"\"a\tb\"\tc", "A1=a\tb B1=c "},
        {kMark + "1\t=A1+1\r\n\t5\r\n", "A1=1 B1=2 B2=5 "},
    };
    for (Row const & row : rows)
        EXPECT_EQ(Loaded(row.content, TextFormat::kTsv), row.shown) << row.content;
}

TEST(Csv, FieldsAreEnteredAsAUserTypesThem) {
    Sheet sheet("C");
    LoadText(sheet, "it", "=B1*2,12.5%,'=1,TRUE", TextFormat::kCsv);
    EXPECT_EQ(sheet.Formula({0, 0}), "=B1 * 2");
    EXPECT_EQ(sheet.Get("A1").number, 0.25);
    EXPECT_EQ(sheet.Get("B1").number, 0.125);
    EXPECT_EQ(sheet.Get("B1").formatClass, 3);
    EXPECT_EQ(sheet.Get("C1").kind, cells::host::Kind::kText);
    EXPECT_EQ(sheet.Get("D1").number, 1);
}

TEST(Csv, FieldsWithoutTextNeedNoRoomOnTheGrid) {
    EXPECT_EQ(Loaded(std::string(255, ',') + "x"), "IV1=x ");
    EXPECT_EQ(Loaded("x" + std::string(1000, ',')), "A1=x ");
    EXPECT_EQ(Loaded(std::string(65535, '\n') + "x"), "A65536=x ");
    EXPECT_EQ(Loaded("x" + std::string(70000, '\n')), "A1=x ");
}

TEST(Csv, AFailureNamesItsLineForEveryKindOfLineEnd) {
    for (std::string const end : {"\n", "\r\n", "\r"}) {
        EXPECT_EQ(Refused("ok" + end + "ab\xFF" + end), "it:2:3: the text is not UTF-8");
        EXPECT_EQ(Refused("\xFF" + end), "it:1:1: the text is not UTF-8");
        EXPECT_EQ(Refused("1" + end + "2" + end + std::string(256, ',') + "x" + end),
                  "it:3:257: more than 256 columns");
        EXPECT_EQ(Refused("1" + end + "\"open" + end), "it:3:1: a quoted field does not end");
    }
}

TEST(Csv, AFailureNamesLineAndColumn) {
    struct Row {
        std::string content;
        std::string refusal;
    } const rows[] = {
        {"a\xE2\x82", "it:1:2: the text is not UTF-8"},             // cut off
        {"\xC0\x80", "it:1:1: the text is not UTF-8"},              // longer than needed
        {"\xC3\xA9,\xED\xA0\x80", "it:1:4: the text is not UTF-8"}, // half of a pair
        {kMark + "ab\xFF", "it:1:3: the text is not UTF-8"},
        {kMark + "a\nb\xFF", "it:2:2: the text is not UTF-8"},
        {std::string(256, ',') + "x", "it:1:257: more than 256 columns"},
        {"a\n" + std::string(299, ',') + "\"x\"\n", "it:2:300: more than 256 columns"},
        {std::string(65536, '\n') + "x", "it:65537:1: more than 65536 rows"},
        {std::string(65536, '\n') + ",x\n", "it:65537:2: more than 65536 rows"},
        {"\"", "it:2:1: a quoted field does not end"},
        {"a,\"b\"\"\nc", "it:3:1: a quoted field does not end"},
    };
    for (Row const & row : rows)
        EXPECT_EQ(Refused(row.content), row.refusal) << row.content.substr(0, 20);
}

TEST(Csv, ATextThatIsRefusedLeavesTheSheetAsItWas) {
    for (std::string const flaw : {"\xFF", "\"open"}) {
        Sheet sheet("C");
        sheet.Enter("A1", "kept");
        EXPECT_THROW(LoadText(sheet, "it", "1,2\n" + flaw, TextFormat::kCsv), InputError);
        EXPECT_EQ(Shown(sheet), "A1=kept ");
    }
}

TEST(Csv, AFieldIsQuotedOnlyWhereItMustBe) {
    struct Row {
        char const * field;
        char const * ofCsv;
        char const * ofTsv;
    } const rows[] = {
        {"", "", ""},
        {"plain", "plain", "plain"},
        {" a ", " a ", " a "},
        {"a;b", "a;b", "a;b"},
        {"a,b", "\"a,b\"", "a,b"},
        {"a\tb", "a\tb", "\"a\tb\""},
        {"say \"hi\"", "\"say \"\"hi\"\"\"", "\"say \"\"hi\"\"\""},
        {"\"", "\"\"\"\"", "\"\"\"\""},
        {"a\nb", "\"a\nb\"", "\"a\nb\""},
        {"a\rb", "\"a\rb\"", "\"a\rb\""},
    };
    for (Row const & row : rows) {
        EXPECT_EQ(QuoteField(row.field, ','), row.ofCsv) << row.field;
        EXPECT_EQ(QuoteField(row.field, '\t'), row.ofTsv) << row.field;
    }
}

TEST(Csv, AQuotedFieldIsReadAsItWas) {
    for (std::string const field : {"a,b", "a\tb", "a \"b\" c", "\"", "\"\"", ",\"", "a\nb",
                                    "a\r\nb", "\na", "caf\xC3\xA9"}) {
        std::string const shown = "A1=" + field + " B1=next ";
        EXPECT_EQ(Loaded(QuoteField(field, ',') + ",next"), shown) << field;
        EXPECT_EQ(Loaded(QuoteField(field, '\t') + "\tnext", TextFormat::kTsv), shown) << field;
    }
}

TEST(Csv, TheExtensionTellsTheFormat) {
    struct Row {
        char const * path;
        TextFormat format;
    } const rows[] = {
        {"a.tsv", TextFormat::kTsv},     {"folder/a.b.tab", TextFormat::kTsv},
        {"a.csv", TextFormat::kCsv},     {"a.txt", TextFormat::kCsv},
        {"a.tsv.csv", TextFormat::kCsv}, {"folder.tsv/a", TextFormat::kCsv},
        {"-", TextFormat::kCsv},         {"", TextFormat::kCsv},
    };
    for (Row const & row : rows) EXPECT_EQ(FormatOf(row.path), row.format) << row.path;
}

TEST(Csv, AFileIsWrittenAndReadByteForByte) {
    Folder const folder;
    std::string const content("a\r\nb\0c\xFF\n", 9);
    WriteFile(folder.File("it"), content);
    EXPECT_EQ(ReadFile(folder.File("it")), content);
    WriteFile(folder.File("it"), "");
    EXPECT_EQ(ReadFile(folder.File("it")), "");
}

TEST(Csv, AFileThatCannotBeReadOrWrittenIsNamed) {
    Folder const folder;
    std::string const missing = folder.File("missing"), inMissing = folder.File("no/it");
    EXPECT_EQ(Refusal([&] { ReadFile(missing); }), missing + ": No such file or directory");
    EXPECT_EQ(Refusal([&] { ReadFile(folder.path.string()); }),
              folder.path.string() + ": is a folder");
    std::string const refusal = Refusal([&] { WriteFile(inMissing, "x"); });
    EXPECT_NE(refusal.find(inMissing), std::string::npos) << refusal;
    EXPECT_FALSE(fs::exists(inMissing));
}
