#include "platform/Digits.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sstream>

using cells::DigitText;

namespace {

std::string Cut(char const * text) { return std::string(text).substr(0, cells::kDigitBuffer - 1); }

} // namespace

TEST(Digits, AreThoseOfTheCFormats) {
    std::mt19937_64 random(7);
    char expected[1200];
    for (int i = 0; i < 20000; ++i) {
        double const value = i % 2 ? std::bit_cast<double>(random())
                                   : std::ldexp(double(random() % 100000), int(random() % 40) - 25);
        if (!std::isfinite(value)) continue;
        int const decimals = int(random() % 16);
        DigitText text;
        cells::PrintGeneralDigits(text, value);
        std::snprintf(expected, sizeof expected, "%.15G", value);
        ASSERT_EQ(std::string(text), Cut(expected));
        cells::PrintFixedDigits(text, value, decimals);
        std::snprintf(expected, sizeof expected, "%.*f", decimals, value);
        ASSERT_EQ(std::string(text), Cut(expected));
        cells::PrintScientificDigits(text, value, decimals);
        std::snprintf(expected, sizeof expected, "%#.*E", decimals, value);
        ASSERT_EQ(std::string(text), Cut(expected));
    }
}

TEST(Digits, IntegersIgnoreTheGroupingOfAStream) {
    struct Grouping : std::numpunct<wchar_t> {
        wchar_t do_thousands_sep() const override { return L'.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::wostringstream stream;
    stream.imbue(std::locale(std::locale::classic(), new Grouping));
    cells::WriteInteger(stream, 65536);
    EXPECT_EQ(stream.str(), L"65536");
}

TEST(Digits, ParsedNumbersAreRoundedOnce) {
    double value = 0;
    EXPECT_TRUE(cells::ParseDouble("1.1e-7", value));
    EXPECT_EQ(value, 0.00000011);
    EXPECT_TRUE(cells::ParseDouble("123456789012345678", value));
    EXPECT_EQ(value, 123456789012345678.0);
}

TEST(Digits, TooLargeIsNoNumberAndTooSmallIsZero) {
    double value = 1;
    EXPECT_FALSE(cells::ParseDouble("1e400", value));
    EXPECT_FALSE(cells::ParseDouble(std::string(400, '9'), value));
    EXPECT_TRUE(cells::ParseDouble("1e-400", value));
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(cells::ParseDouble("0." + std::string(400, '0') + "1", value));
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(cells::ParseDouble("0e99999", value));
    EXPECT_EQ(value, 0);
}

TEST(Digits, ConversionTo32BitsKeepsTheLowBitsInside64) {
    EXPECT_EQ(cells::ToInt32(1.9), 1);
    EXPECT_EQ(cells::ToInt32(-1.9), -1);
    EXPECT_EQ(cells::ToInt32(4294967297.0), 1);
    EXPECT_EQ(cells::ToInt32(1e300), INT32_MIN);
    EXPECT_EQ(cells::ToInt32(-1e300), INT32_MIN);
    EXPECT_EQ(cells::ToInt32(std::numeric_limits<double>::quiet_NaN()), INT32_MIN);
}
