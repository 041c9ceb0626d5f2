#include "formula/CCRCRef.h"
#include "platform/Arrays.h"
#include "platform/Variant.h"
#include "support/BaseHost.h"
#include "values/CCCellValue.h"
#include "values/CCDoubleArray.h"
#include "values/ValueCompare.h"
#include "values/ValueLists.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

CCCellValue Number(double number, uchar type = C_NF_GENERAL) {
    CCCellValue value;
    value.Set(number, type);
    return value;
}

CCCellValue Text(wchar_t const * text) { return CCCellValue(text); }
CCCellValue Error(int number) { return CCCellValue(number); }
CCCellValue Ref() {
    CCRCRef const ref(1, 1);
    return CCCellValue(&ref);
}

std::string Printed(CCCellValue const & value, uchar mode = 0) {
    cells::test::BaseHost host;
    std::wostringstream stream;
    value.Print(host.ctx(), stream, mode);
    return cells::test::Utf8(stream.str());
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();

} // namespace

static_assert(!std::is_constructible_v<CCCellValue, double>);
static_assert(!std::is_constructible_v<CCCellValue, bool>);
static_assert(sizeof(CCCellValue) <= 32);

TEST(Value, StartsEmptyInTheDefaultFormat) {
    CCCellValue const value;
    EXPECT_TRUE(value.IsEmpty());
    EXPECT_EQ(value.GetFormat().GetSetMask(), 0x3D);
}

TEST(Value, SettingItselfAndItsOwnTextIsSafe) {
    CCCellValue value = Text(L"abc");
    value.Set(value);
    value.Set(value.GetText());
    value.Set(value.GetTextString());
    EXPECT_STREQ(value.GetText(), L"abc");
}

TEST(Value, PlainNumbersKeepTheFormat) {
    CCCellValue value = Number(46085, C_NF_DATE);
    value.Set(5.0);
    EXPECT_EQ(value.GetFormat().GetType(), C_NF_DATE);
    value.Set(L"x");
    value.Set();
    EXPECT_EQ(value.GetFormat().GetType(), C_NF_DATE);
}

TEST(Value, TakesTheClassOfACustomFormatFromItsText) {
    CCNumberFormat percent;
    percent.setCustomFormat(L"0%");
    percent.setType(C_NF_DATE);
    CCCellValue value, number;
    value.Set(percent);
    number.Set(0.5, percent);
    EXPECT_EQ(value.GetFormat().GetType(), C_NF_PERCENT);
    EXPECT_EQ(number.GetFormat().GetType(), C_NF_PERCENT);
}

TEST(Value, OwnsACopyOfItsReference) {
    CCRCRef ref(1, 2);
    CCCellValue value(&ref);
    ref.col = 9;
    EXPECT_EQ(static_cast<CCRCRef *>(value.GetRef())->col, 1);
    CCCellValue const copy = value;
    EXPECT_NE(copy.GetRef(), value.GetRef());
}

TEST(Value, TruthOfEveryKind) {
    EXPECT_FALSE(CCCellValue().IsTrue());
    EXPECT_FALSE(Error(1).IsTrue());
    EXPECT_TRUE(Number(-1).IsTrue());
    EXPECT_FALSE(Number(0).IsTrue());
    EXPECT_TRUE(Text(L"x").IsTrue());
    EXPECT_FALSE(Text(L"").IsTrue());
    EXPECT_FALSE(Text(nullptr).IsTrue());
    EXPECT_TRUE(Ref().IsTrue());
    EXPECT_FALSE(CCCellValue(static_cast<CCRef const *>(nullptr)).IsTrue());
}

TEST(Value, EqualityCountsTheFormatAndToleratesTheLastBits) {
    EXPECT_TRUE(Number(0).IsEqual(Number(1e-17)));
    EXPECT_FALSE(Number(1).IsEqual(Number(1, C_NF_PERCENT)));
    EXPECT_TRUE(Text(nullptr).IsEqual(Text(nullptr)));
    EXPECT_FALSE(Text(nullptr).IsEqual(Text(L"")));
    EXPECT_FALSE(Text(L"a").IsEqual(Text(L"A")));
    EXPECT_FALSE(Text(L"a").IsEqual(Text(L"a\x1")));
    EXPECT_TRUE(Error(3).IsEqual(Error(3)));
    EXPECT_FALSE(Error(3).IsEqual(Error(4)));
    EXPECT_FALSE(Ref().IsEqual(Ref()));
    EXPECT_FALSE(Number(kInfinity).IsEqual(Number(kInfinity)));
    EXPECT_FALSE(Number(5, C_NF_HEX).IsEqual(Number(5, C_NF_HEX)));
}

TEST(Value, PrintsByKindAndMode) {
    EXPECT_EQ(Printed(Error(2)), "#DIV/0!");
    EXPECT_EQ(Printed(Number(kInfinity)), "#VALUE!");
    EXPECT_EQ(Printed(Text(L"a\"b^"), 2), "a^\"b^^");
    EXPECT_EQ(Printed(Text(nullptr)), "");
    EXPECT_EQ(Printed(Ref()), "");
    EXPECT_EQ(Printed(Number(0.126, C_NF_PERCENT)), "13%");
    EXPECT_EQ(Printed(Number(0.126, C_NF_PERCENT), 1), "12.6%");
}

TEST(Value, SwapExchangesEverything) {
    CCCellValue a = Text(L"a"), b = Number(5, C_NF_PERCENT);
    a.Swap(b);
    EXPECT_EQ(a.GetNumber(), 5);
    EXPECT_EQ(a.GetFormat().GetType(), C_NF_PERCENT);
    EXPECT_STREQ(b.GetText(), L"a");
}

// Rows: left; columns: right; kinds: empty, error, text, number, reference.
TEST(CompareValues, TableOfAllKinds) {
    CCCellValue const kinds[] = {CCCellValue(), Error(1), Text(L"m"), Number(5), Ref()};
    int const expected[5][5] = {{0, 1, 1, 1, 1},
                                {-1, 0, 1, 1, 1},
                                {-1, -1, 0, 1, -1},
                                {-1, -1, -1, 0, -1},
                                {0, 0, 0, 0, 0}};
    for (int a = 0; a < 5; ++a)
        for (int b = 0; b < 5; ++b)
            EXPECT_EQ(CompareCellValues(kinds[a], kinds[b], 1), expected[a][b]) << a << b;
    EXPECT_EQ(CompareCellValues(Error(1), Error(9), 1), 0);
    EXPECT_EQ(CompareCellValues(Number(1), Number(2), 1), -1);
    EXPECT_EQ(CompareCellValues(Text(L"A"), Text(L"a"), 0), 0);
}

struct OperatorCase {
    int code;
    CCCellValue left, right;
    char const * result;
};

TEST(Operators, OverTwoValues) {
    using namespace cells;
    CCCellValue const empty;
    OperatorCase const cases[] = {{kAdd, Text(L"a"), Text(L"b"), "ab"},
                                  {kAdd, Text(L"a"), Number(1), "#VALUE!"},
                                  {kAdd, Text(L"a"), empty, "a"},
                                  {kAdd, empty, Number(2), "2"},
                                  {kAdd, empty, empty, ""},
                                  {kEqual, Text(L"a"), Number(1), "FALSE"},
                                  {kNotEqual, Number(1), Text(L"a"), "TRUE"},
                                  {kLess, Text(L"a"), Number(1), "FALSE"},
                                  {kGreater, Text(L"a"), Number(1), "FALSE"},
                                  {kAnd, Text(L"a"), Number(1), "TRUE"},
                                  {kOr, Text(L"a"), Number(0), "FALSE"},
                                  {kAnd, Text(L"a"), Text(L"b"), "#VALUE!"},
                                  {kMultiply, Text(L"a"), Text(L"b"), "#VALUE!"},
                                  {kEqual, Text(L"a"), Text(L"A"), "FALSE"},
                                  {kLess, Text(L"a"), Text(L"B"), "TRUE"},
                                  {kEqual, Text(nullptr), Text(nullptr), "TRUE"},
                                  {kLess, Text(nullptr), Text(L""), "TRUE"},
                                  {kDivide, Number(1), Number(0), "#DIV/0!"},
                                  {kDivide, Number(1), Number(4), "0.25"},
                                  {kPower, Number(2), Number(10), "1024"},
                                  {kSubtract, Number(5), Number(7), "-2"},
                                  {kAnd, Number(1), Number(0), "FALSE"},
                                  {kOr, Number(0), Number(0), "FALSE"},
                                  {kEqual, Number(0.1 + 0.2), Number(0.3), "TRUE"},
                                  {kGreaterOrEqual, Number(0.3), Number(0.1 + 0.2), "FALSE"},
                                  {kLessOrEqual, Number(0.3), Number(0.1 + 0.2), "TRUE"},
                                  {kLessOrEqual, Number(2), Number(1), "FALSE"},
                                  {kNotEqual, Text(L"a"), Text(L"b"), "TRUE"},
                                  {kGreaterOrEqual, Text(L"b"), Text(L"a"), "TRUE"},
                                  {99, Number(1), Number(2), "#VALUE!"},
                                  {99, Text(L"a"), Text(L"b"), "#VALUE!"},
                                  {kAdd, Error(9), Error(3), "#N/A"},
                                  {kAdd, Number(1), Error(3), "#VALUE!"},
                                  {kAdd, Number(46085, C_NF_DATE), Number(1), "46086"}};
    for (OperatorCase const & c : cases) {
        CCCellValue left = c.left;
        EvalCellValue(c.code, left, c.right);
        EXPECT_EQ(Printed(left), c.result) << "code " << c.code << " left " << Printed(c.left);
    }
}

TEST(Operators, TextResultsHaveALimit) {
    CCCellValue a;
    a.Set(CString(L'x', 16777216));
    EvalCellValue(cells::kAdd, a, Text(L"y"));
    EXPECT_EQ(a.GetError(), errValue);
}

TEST(Operators, OverOneValueMakeTextAndBlanksZero) {
    CCCellValue value = Text(L"x");
    EvalCellValue(cells::kPlusSign, value);
    EXPECT_STREQ(value.GetText(), L"x");
    EvalCellValue(cells::kMinusSign, value);
    EXPECT_EQ(value.GetNumber(), 0);
    EXPECT_EQ(value.GetFormat().GetType(), C_NF_GENERAL);
    value = Number(0, C_NF_DATE);
    EvalCellValue(cells::kNot, value);
    EXPECT_EQ(Printed(value), "TRUE");
    value = Number(50);
    EvalCellValue(cells::kPercent, value);
    EXPECT_EQ(value.GetNumber(), 0.5);
    value = Number(5, C_NF_DATE);
    EvalCellValue(cells::kPlusSign, value);
    EXPECT_EQ(value.GetNumber(), 5);
    EXPECT_EQ(value.GetFormat().GetType(), C_NF_GENERAL);
    EvalCellValue(99, value);
    EXPECT_EQ(value.GetNumber(), 5);
    value = Error(4);
    EvalCellValue(cells::kNot, value);
    EXPECT_EQ(value.GetError(), 4);
}

TEST(Variant, OfEveryValue) {
    tagVARIANT v;
    CCCellValue().Get(v);
    EXPECT_EQ(v.vt, VT_EMPTY);
    Error(2).Get(v);
    EXPECT_EQ(v.vt, VT_ERROR);
    EXPECT_EQ(v.scode, std::int32_t(0x80004005));
    Text(L"ab").Get(v);
    EXPECT_EQ(v.vt, VT_BSTR);
    EXPECT_EQ(v.bstrVal, L"ab");
    Text(nullptr).Get(v);
    EXPECT_EQ(v.vt, VT_BSTR);
    Number(2.1, C_NF_NUMBER).Get(v);
    EXPECT_EQ(v.vt, VT_I4);
    EXPECT_EQ(v.lVal, 3);
    Number(3e9, C_NF_NUMBER).Get(v);
    EXPECT_EQ(v.vt, VT_R8);
    for (uchar type : {uchar(C_NF_GENERAL), uchar(C_NF_PERCENT), uchar(C_NF_FRACTION),
                       uchar(C_NF_SCIENTIFIC), uchar(C_NF_HEX)}) {
        Number(0.5, type).Get(v);
        EXPECT_EQ(v.vt, VT_R8);
    }
    Number(1, C_NF_BOOL).Get(v);
    EXPECT_EQ(v.vt, VT_BOOL);
    EXPECT_EQ(v.boolVal, -1);
    Number(60.5, C_NF_DATE).Get(v);
    EXPECT_EQ(v.vt, VT_DATE);
    EXPECT_EQ(v.date, 61.5);
    Number(59, C_NF_DATE).Get(v); // 29 February 1900 is no day of the real calendar
    EXPECT_EQ(v.vt, VT_ERROR);
    v.vt = VT_I2;
    Ref().Get(v);
    EXPECT_EQ(v.vt, VT_I2);
}

// A number of a date or a time is that of its magnitude.
TEST(Variant, DatesAndTimesOfNegativeNumbers) {
    struct Case {
        double number;
        uchar type;
        double date; // negative: refused
    };
    for (Case const & test :
         {Case{-60.5, C_NF_DATE, 61.5}, Case{-0.5, C_NF_TIME, 2.5}, Case{-62822, C_NF_DATE, 62823},
          Case{-62823, C_NF_DATE, -1}, Case{62823, C_NF_DATE, -1}, Case{-59, C_NF_DATE, -1},
          Case{-1e300, C_NF_TIME, -1}}) {
        tagVARIANT v;
        Number(test.number, test.type).Get(v);
        ASSERT_EQ(v.vt, test.date < 0 ? VT_ERROR : VT_DATE) << test.number;
        EXPECT_EQ(v.vt == VT_DATE ? v.date : -1, test.date) << test.number;
    }
}

TEST(Variant, CurrencyIsSplitByItsOwnRule) {
    tagVARIANT v;
    Number(1000000, C_NF_CURRENCY).Get(v);
    EXPECT_EQ(v.vt, VT_CY);
    EXPECT_EQ(v.cyVal.Hi, 2);
    EXPECT_EQ(v.cyVal.Lo, 1410065406u);
    EXPECT_DOUBLE_EQ(CCCellValue(v).GetNumber(), 999999.9996);
    Number(300000, C_NF_CURRENCY).Get(v);
    EXPECT_EQ(v.cyVal.Hi, 1);
    EXPECT_EQ(v.cyVal.Lo, 2999999999u);
    EXPECT_DOUBLE_EQ(CCCellValue(v).GetNumber(), 729496.7294);
    Number(1e30, C_NF_CURRENCY).Get(v);
    EXPECT_EQ(v.vt, VT_ERROR);
}

TEST(Variant, IntoEveryValue) {
    tagVARIANT v;
    CCCellValue value = Number(5, C_NF_DATE);
    v.vt = VT_NULL;
    value.Set(v);
    EXPECT_TRUE(value.IsEmpty());
    v.vt = VT_I2;
    v.iVal = -7;
    value.Set(v);
    EXPECT_EQ(value.GetNumber(), -7);
    EXPECT_EQ(value.GetFormat().GetType(), C_NF_NUMBER);
    EXPECT_TRUE(value.GetFormat().isPrecision());
    value = Number(5, C_NF_PERCENT);
    v.vt = VT_I4;
    v.lVal = 9;
    value.Set(v);
    EXPECT_EQ(value.GetFormat().GetType(), C_NF_PERCENT);
    v.vt = VT_R4;
    v.fltVal = 0.5f;
    value.Set(v);
    EXPECT_EQ(value.GetNumber(), 0.5);
    v.vt = VT_DATE;
    v.date = 61.5;
    value.Set(v);
    EXPECT_EQ(value.GetNumber(), 60.5);
    v.date = 1; // 31 December 1899
    value.Set(v);
    EXPECT_EQ(value.GetError(), errValue);
    v.vt = VT_BOOL;
    v.boolVal = -1;
    value.Set(v);
    EXPECT_EQ(Printed(value), "TRUE");
    v.vt = VT_UI1;
    v.bVal = 0xE9;
    value.Set(v);
    EXPECT_STREQ(value.GetText(), L"\xE9");
    v.vt = 99;
    value.Set(v);
    EXPECT_EQ(value.GetError(), errValue);
}

TEST(ValueLists, CarryRectangles) {
    SCCellValueList * list = CellValueListCreate(new CCCellValue(Number(1)));
    CellValueListAddLast(list, new CCCellValue(Number(2)));
    CellValueListAddRow(list, CellValueListCreate(new CCCellValue(Number(3))));
    EXPECT_EQ(CalcCellValueArraySize(list), CSize(2, 2));
    EXPECT_EQ(CalcCellValueArraySize(nullptr), CSize(0, 0));
    CellValueListFree(list, 1);
}

TEST(DoubleArray, GrowsByItsRule) {
    CCDoubleArray array;
    std::vector<int> capacities;
    for (int size : {1, 2, 40, 41}) {
        array.SetSize(size, 0);
        capacities.push_back(array.GetCapacity());
    }
    EXPECT_EQ(capacities, (std::vector<int>{1, 5, 40, 45}));
    array.SetSize(100, 64);
    EXPECT_EQ(array.GetCapacity(), 109);
    array.SetSize(-3);
    EXPECT_EQ(array.GetSize() + array.GetCapacity(), 0);
}

TEST(DoubleArray, InsertsTheElementsOfAnother) {
    CCDoubleArray array, other, none;
    for (double value : {1.0, 4.0}) array.Add(value);
    for (double value : {2.0, 3.0}) other.Add(value);
    array.InsertAt(1, &other);
    array.InsertAt(0, &none);
    array.InsertAt(4, &array); // itself, at its end
    array.InsertAt(10, &other);
    array.InsertAt(0, static_cast<CCDoubleArray *>(nullptr));
    array.InsertAt(0, 0); // a value
    std::vector<double> const expected{0, 1, 2, 3, 4, 1, 2, 3, 4, 0, 0, 2, 3};
    EXPECT_EQ(std::vector<double>(array.GetData(), array.GetData() + array.GetSize()), expected);
}

TEST(DoubleArray, WithoutElementsFreesItsBlock) {
    CCDoubleArray array;
    array.Add(1);
    array.Add(2);
    array.RemoveAt(0, 2);
    EXPECT_GT(array.GetCapacity(), 0);
    array.FreeExtra();
    EXPECT_EQ(array.GetCapacity(), 0);
    EXPECT_EQ(array.GetData(), nullptr);
    array.SetSize(2);
    EXPECT_EQ(array.GetCapacity(), 2); // exactly, as with no block
}

TEST(DoubleArray, IsAnArray) {
    CCDoubleArray array;
    array.Add(1);
    array.Add(3);
    array.InsertAt(1, 2);
    array.SetAtGrow(5, 9);
    EXPECT_EQ(array.GetSize(), 6);
    EXPECT_EQ(array[1], 2);
    EXPECT_EQ(array[4], 0);
    array.RemoveAt(0, 2);
    EXPECT_EQ(array.GetAt(0), 3);
    CCDoubleArray copy;
    copy.Copy(array);
    EXPECT_EQ(copy.Append(array), 4);
    EXPECT_EQ(copy.GetUpperBound(), 7);
    copy.SetSize(2);
    copy.SetSize(4);
    EXPECT_EQ(copy[3], 0); // a tail that comes back is zeroed
}
