// What tests of workbooks share: a workbook to work on, places by name, all that a user can see,
// and the bytes of documents.
#pragma once

#include "host/Workbook.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace cells::test {

inline host::Area A(char const * text) { return *host::ParseArea(text); }
inline host::Place P(char const * text) { return *host::ParsePlace(text); }

inline std::string Shown(host::Sheet & sheet) {
    std::string shown = sheet.IsProtected() ? "protected\n" : "";
    sheet.ForEachOccupied([&](host::Place place) {
        shown += host::NameOf(place) + " " + sheet.Text(place) + " | " + sheet.EditText(place) +
                 " | " + sheet.NumberFormat(place) + "\n";
    });
    return shown;
}

inline std::string Shown(host::Workbook & book) {
    std::string shown;
    for (int i = 0; i < book.Count(); ++i) shown += book.NameOf(i) + "\n" + Shown(book.At(i));
    return shown;
}

inline std::string BytesOf(host::Workbook const & book) {
    std::string bytes;
    book.Write([&](std::string_view piece) { bytes += piece; });
    return bytes;
}

// A workbook of three empty sheets, which is found sound after each test.
class ThreeSheets : public testing::Test {
protected:
    ~ThreeSheets() override { EXPECT_EQ(book.CheckInvariants(), std::vector<std::string>()); }

    host::Workbook book{"C"};
    host::Sheet & one = book.Add("One");
    host::Sheet & two = book.Add("Two");
    host::Sheet & three = book.Add("Three");
};

} // namespace cells::test
