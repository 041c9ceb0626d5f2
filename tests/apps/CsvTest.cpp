// Comma and tab separated texts as files bring them.
#include "cvcells/Csv.h"

#include <gtest/gtest.h>

using cells::app::InputError;
using cells::app::LoadText;
using cells::app::TextFormat;
using cells::host::Sheet;

namespace {

std::string Loaded(std::string const & content) {
    Sheet sheet("C");
    LoadText(sheet, "it", content, TextFormat::kCsv);
    std::string shown;
    sheet.ForEachOccupied([&](cells::host::Place place) {
        shown += cells::host::NameOf(place) + "=" + sheet.Text(place) + " ";
    });
    return shown;
}

std::string Refused(std::string const & content) {
    try {
        return Loaded(content);
    } catch (InputError const & failure) {
        return failure.what();
    }
}

} // namespace

TEST(Csv, EveryKindOfLineEndEndsOneRow) {
    std::string const twoRows = "A1=1 B1=2 A2=3 B2=4 ";
    struct Row {
        char const * content;
        std::string shown;
    } const rows[] = {
        {"1,2\n3,4\n", twoRows},
        {"1,2\r\n3,4\r\n", twoRows},
        {"1,2\r3,4\r", twoRows},
        {"1,2\n3,4", twoRows},
        {"1,2\r\n3,4", twoRows},
        {"1,2\r3,4", twoRows},
        {"\xEF\xBB\xBF"
         "1,2\r\n3,4\r\n",
         twoRows},
        {"\xEF\xBB\xBF", ""},
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

TEST(Csv, AFailureNamesItsLineForEveryKindOfLineEnd) {
    for (std::string const end : {"\n", "\r\n", "\r"}) {
        EXPECT_EQ(Refused("ok" + end + "ab\xFF" + end), "it:2:3: the text is not UTF-8");
        EXPECT_EQ(Refused("\xFF" + end), "it:1:1: the text is not UTF-8");
        EXPECT_EQ(Refused("1" + end + "2" + end + std::string(256, ',') + "x" + end),
                  "it:3:257: more than 256 columns");
        EXPECT_EQ(Refused("1" + end + "\"open" + end), "it:3:1: a quoted field does not end");
    }
}
