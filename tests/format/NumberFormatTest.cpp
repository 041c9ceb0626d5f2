#include "format/CCNumberFormat.h"

#include "format/FormatTables.h"

#include <gtest/gtest.h>

namespace {

CCNumberFormat Of(uchar type) {
    CCNumberFormat format;
    format.Set(type);
    return format;
}

} // namespace

TEST(NumberFormat, DefaultIsGeneralWithFiveFieldsMarked) {
    CCNumberFormat const format;
    EXPECT_EQ(format.GetSetMask(), 0x003D);
    EXPECT_EQ(format.getType(), C_NF_GENERAL);
    EXPECT_FALSE(format.isCustomFormat());
}

TEST(NumberFormat, RawLayerStoresMarksAndClears) {
    CCNumberFormat format;
    format.setPrecision(7);
    EXPECT_EQ(format.getPrecision(), 7);
    EXPECT_TRUE(format.isPrecision());
    format.clearPrecision();
    EXPECT_FALSE(format.isPrecision());
    EXPECT_EQ(format.getPrecision(), 7);
    format.setMonthType(2);
    format.setYearType(2);
    format.setMDOrder(1);
    EXPECT_EQ(format.getMonthType(), 2);
    EXPECT_EQ(format.getYearType(), 2);
    EXPECT_EQ(format.getMDOrder(), 1);
}

TEST(NumberFormat, OlderLayerGivesBitsInPlace) {
    CCNumberFormat format;
    format.SetCommas(7);
    format.SetNegBr(1);
    format.SetNegRed(1);
    format.SetTimeSeconds(1);
    format.SetTime(1);
    format.SetTimeRange(1);
    EXPECT_EQ(format.GetCommas(), 0x10);
    EXPECT_EQ(format.GetNegBr(), 0x20);
    EXPECT_EQ(format.GetNegRed(), 0x40);
    EXPECT_EQ(format.GetTimeSeconds(), 2);
    EXPECT_EQ(format.GetTime(), 4);
    EXPECT_EQ(format.GetTimeRange(), 1);
}

TEST(NumberFormat, TimeRangeAndOrderTakeOnlyOneAsOn) {
    CCNumberFormat format;
    format.SetTimeRange(2);
    format.SetMDOrder(2);
    format.SetTime(2);
    EXPECT_EQ(format.GetTimeRange(), 0);
    EXPECT_EQ(format.GetMDOrder(), 0);
    EXPECT_EQ(format.GetTime(), 4);
    EXPECT_TRUE(format.isTimeRange() && format.isMDOrder());
}

TEST(NumberFormat, StringIndexAndMode) {
    CCNumberFormat format;
    EXPECT_EQ(format.GetLTString(), -1);
    EXPECT_EQ(format.GetLTStringMode(), 0);
    format.SetLTString(3);
    EXPECT_EQ(format.GetLTString(), 3);
    EXPECT_EQ(format.GetLTStringMode(), 2);
    format.SetLTStringMode(1);
    EXPECT_EQ(format.GetLTStringMode(), 1);
    format.SetLTStringMode(3);
    EXPECT_EQ(format.GetLTString(), -1);
    EXPECT_EQ(format.getLTStringMode(), 1);
    format.clearLTString();
    format.SetLTStringMode(2);
    EXPECT_EQ(format.GetLTString(), 0);
    format.SetLTString(1, 255);
    EXPECT_EQ(format.GetLTString(), 255);
    format.SetLTString(0, 4);
    EXPECT_EQ(format.GetLTString(), -1);
}

TEST(NumberFormat, ClearedStringStaysInPlace) {
    CCNumberFormat format;
    format.SetLTString(2, 4);
    format.clearLTString();
    EXPECT_FALSE(format.isLTString());
    EXPECT_EQ(format.GetLTStringMode(), 2);
}

TEST(NumberFormat, SettingANumberKeepsOnlyTheBitsOfItsConstant) {
    CCNumberFormat format = Of(C_NF_DATE);
    EXPECT_EQ(format.GetSetMask() & 0x3B81, 0x3B81);
    EXPECT_EQ(format.getMonthType(), 2);
    format.SetDelimiter(L'-');
    format.setPrecision(3);
    format.Set(uchar(C_NF_NUMBER));
    EXPECT_EQ(format.GetSetMask(), 0x003D | 0x0400 | 0x0002);
    EXPECT_EQ(format.getPrecision(), 0);
    EXPECT_EQ(format.GetDelimiter(), 0);
}

TEST(NumberFormat, ConstructorOfATypeForgetsTheLocalesPrecision) {
    CCNumberFormat const format{int(C_NF_NUMBER)};
    EXPECT_EQ(format.getPrecision(), 0);
    CCNumberFormat const date{int(C_NF_DATE)};
    EXPECT_EQ(date.getMonthType(), 2);
    EXPECT_EQ(date.getMDOrder(), 0);
}

struct DefaultRow {
    uchar type;
    unsigned short mask;
    uchar precision;
};

TEST(NumberFormat, DefaultsByType) {
    DefaultRow const rows[] = {
        {C_NF_GENERAL, 0, 0}, {C_NF_NUMBER, 2, 2},    {C_NF_CURRENCY, 2, 2},
        {C_NF_PERCENT, 2, 2}, {C_NF_FRACTION, 2, 0},  {C_NF_SCIENTIFIC, 2, 2},
        {C_NF_TIME, 0x80, 0}, {C_NF_DATE, 0x3B80, 0}, {C_NF_BOOL, 0, 0}};
    for (DefaultRow const & row : rows) {
        CCNumberFormat format;
        format.SetDefault(cells::invariant_LCTX(), row.type);
        EXPECT_EQ(format.getType(), row.type);
        EXPECT_EQ(format.GetSetMask(), row.mask) << int(row.type);
        EXPECT_EQ(format.getPrecision(), row.precision) << int(row.type);
    }
}

TEST(NumberFormat, PacksIn32BitsWithoutTheHighByteOfItsData) {
    CCNumberFormat format = Of(C_NF_CURRENCY);
    format.SetPrecision(2);
    format.SetCommas(1);
    format.SetLTString(1, 4);
    unsigned long data = 0;
    format.GetData(data);
    EXPECT_EQ(data, 0x02920005ul);
    CCNumberFormat back;
    back.SetData(0xFFFFFFFF00000000ul | data);
    EXPECT_EQ(back.getType(), C_NF_CURRENCY);
    EXPECT_EQ(back.GetSetMask(), 0x3BBF);
    EXPECT_EQ(back.GetLTString(), 4);
    format.SetLTString(1, 255);
    format.GetData(data);
    back.SetData(data);
    EXPECT_EQ(back.GetLTString(), -1);
    format.SetDelimiter(0x1234);
    format.GetData(data);
    back.SetData(data);
    EXPECT_EQ(back.GetDelimiter(), 0x34);
}

TEST(NumberFormat, FiveByteFormHoldsTheWholeData) {
    CCNumberFormat format = Of(C_NF_DATE);
    format.SetDelimiter(0x1234);
    uchar bytes[5];
    format.FillBuff(bytes);
    EXPECT_EQ(bytes[0], 7);
    EXPECT_EQ(bytes[1], 0);
    EXPECT_EQ(bytes[2], 0x10);
    EXPECT_EQ(bytes[3], 0x34);
    EXPECT_EQ(bytes[4], 0x12);
    CCNumberFormat back;
    back.ReadBuff(bytes);
    EXPECT_EQ(back.GetDelimiter(), 0x1234);
}

TEST(NumberFormat, PlainPackingRoundTrips) {
    CCNumberFormat format = Of(C_NF_PERCENT);
    format.SetPrecision(3);
    std::uint32_t packed;
    ASSERT_TRUE(format.PackPlain(packed));
    CCNumberFormat back;
    back.UnpackPlain(packed);
    EXPECT_EQ(back.GetSetMask(), format.GetSetMask());
    EXPECT_TRUE(back.IsEqual(nullptr, format));
    EXPECT_FALSE(Of(C_NF_DATE).PackPlain(packed));
}

TEST(NumberFormat, OverlayCopiesTheTypeAlwaysAndTheRestByMask) {
    CCNumberFormat base = Of(C_NF_NUMBER), other = Of(C_NF_PERCENT);
    base.SetPrecision(2);
    other.SetCommas(1);
    other.clearType();
    base.set(other);
    EXPECT_EQ(base.getType(), C_NF_PERCENT);
    EXPECT_EQ(base.getPrecision(), 2);
    EXPECT_EQ(base.getCommas(), 1);
}

TEST(NumberFormat, FlatteningLetsTheOwnFieldsWin) {
    CCNumberFormat own = Of(C_NF_NUMBER), base = Of(C_NF_CURRENCY), out;
    own.SetPrecision(1);
    base.SetPrecision(2);
    base.SetDelimiter(L'.');
    own.flattern(base, out);
    EXPECT_EQ(out.getType(), C_NF_NUMBER);
    EXPECT_EQ(out.getPrecision(), 1);
    EXPECT_TRUE(out.isDelimiter());
}

TEST(NumberFormat, CommonsAndDifferences) {
    CCNumberFormat a = Of(C_NF_NUMBER), b = Of(C_NF_NUMBER), out;
    a.SetPrecision(2);
    b.SetPrecision(3);
    a.SetCommas(1);
    b.SetCommas(1);
    a.extractCommons(b, out);
    EXPECT_FALSE(out.isPrecision());
    EXPECT_TRUE(out.isCommas());
    CCNumberFormat rest;
    a.substract(b, rest);
    EXPECT_TRUE(rest.isPrecision());
    EXPECT_EQ(rest.getPrecision(), 2);
    EXPECT_FALSE(rest.isCommas());
    CCNumberFormat onlyMine = Of(C_NF_NUMBER);
    onlyMine.SetTime(1);
    onlyMine.substract(b, rest);
    EXPECT_FALSE(rest.isTime()); // a field that only this record has does not reach the result
}

TEST(NumberFormat, EqualityLooksAtTheFieldsOfItsType) {
    CCNumberFormat a = Of(C_NF_TIME), b = Of(C_NF_TIME);
    a.SetPrecision(3);
    EXPECT_TRUE(a.IsEqual(nullptr, b));
    b.SetTimeSeconds(1);
    EXPECT_FALSE(a.IsEqual(nullptr, b));
    CCNumberFormat n = Of(C_NF_NUMBER), m = Of(C_NF_NUMBER);
    n.clearCommas();
    EXPECT_FALSE(n.IsEqual(nullptr, m)); // one has the mark, the other not
    EXPECT_FALSE(Of(C_NF_NUMBER).IsEqual(nullptr, Of(C_NF_GENERAL)));
    CCNumberFormat yes = Of(C_NF_BOOL), no = Of(C_NF_BOOL);
    no.SetPrecision(4);
    EXPECT_TRUE(yes.IsEqual(nullptr, no));
    for (uchar type : {uchar(C_NF_HEX), uchar(C_NF_OCT), uchar(C_NF_BIN)})
        EXPECT_FALSE(Of(type).IsEqual(nullptr, Of(type)));
}

TEST(NumberFormat, CustomTextIsComparedAndTravels) {
    CCNumberFormat a, b;
    a.setCustomFormat(L"0.00");
    b.setCustomFormat(L"0.00");
    EXPECT_TRUE(a.IsEqual(nullptr, b));
    CCNumberFormat copy;
    copy = a;
    EXPECT_TRUE(copy.isCustomFormat());
    copy = CCNumberFormat();
    EXPECT_FALSE(copy.isCustomFormat());
    EXPECT_EQ(copy.getFormatString(), L"0.00"); // the text is not emptied
}

TEST(NumberFormat, CopiesOfACustomFormatTakeTheTypeOfItsText) {
    CCNumberFormat percent;
    percent.setCustomFormat(L"0%");
    percent.setType(C_NF_DATE); // the raw layer leaves the text in force
    EXPECT_EQ(percent.GetType(), C_NF_DATE);
    CCNumberFormat const constructed(percent);
    CCNumberFormat assigned, set;
    assigned = percent;
    set.Set(percent);
    EXPECT_EQ(constructed.GetType(), C_NF_PERCENT);
    EXPECT_EQ(assigned.GetType(), C_NF_PERCENT);
    EXPECT_EQ(set.GetType(), C_NF_PERCENT);
    EXPECT_TRUE(set.isCustomFormat());
    CCNumberFormat plain;
    plain.setType(C_NF_DATE); // without a text the type is as it is
    EXPECT_EQ(CCNumberFormat(plain).GetType(), C_NF_DATE);
}

TEST(NumberFormatTable, HasEntryZeroAndFindsEquals) {
    CCNumberFormatTable table;
    EXPECT_EQ(table.GetSize(), 1);
    EXPECT_EQ(table.Add(CCNumberFormat()), 0);
    int const number = table.Add(Of(C_NF_NUMBER));
    EXPECT_EQ(table.Add(Of(C_NF_NUMBER)), number);
    EXPECT_EQ(table.GetAt(99), table.GetAt(0));
    EXPECT_EQ(table.GetAt(-1), table.GetAt(0));
    EXPECT_EQ(table.RemoveAt(99), nullptr);
    EXPECT_EQ(table.DeleteAt(99), 0);
    EXPECT_EQ(table.DeleteAt(number), 1);
}

TEST(NumberFormatTable, FindsWhatARecordIsAfterItWasChanged) {
    CCNumberFormatTable table;
    CCNumberFormat const percent = Of(C_NF_PERCENT), currency = Of(C_NF_CURRENCY);
    int const first = table.Add(percent), second = table.Add(currency);
    CCNumberFormat * const record = table.GetAt(first);
    EXPECT_EQ(table.Find(percent), first);
    EXPECT_EQ(table.Find(currency), second);
    *record = currency; // through the pointer, some time after it was given
    EXPECT_EQ(table.Find(percent), -1);
    EXPECT_EQ(table.Find(currency), first);
    record->setCustomFormat(L"0.0");
    EXPECT_EQ(table.Find(currency), second);
    CCNumberFormat custom;
    custom.setCustomFormat(L"0.00");
    *record = custom; // only its text differs
    EXPECT_EQ(table.Find(custom), first);
    delete table.RemoveAt(first);
    EXPECT_EQ(table.Find(custom), -1);
    EXPECT_EQ(table.Find(currency), first);
}

TEST(NumberFormatTable, InsertsBeyondItsEndAtTheEnd) {
    for (int index : {1, 2, 99, -1}) {
        CCNumberFormatTable table;
        table.InsertAt(index, Of(C_NF_DATE));
        ASSERT_EQ(table.GetSize(), 2) << index;
        EXPECT_EQ(table.GetAt(1)->GetType(), C_NF_DATE) << index;
    }
}

TEST(NumberFormatTable, WithoutAnyRecordGivesNullAndTakesAFirstOne) {
    CCNumberFormatTable table;
    std::unique_ptr<CCNumberFormat> const taken(table.RemoveAt(0));
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(table.GetAt(0), nullptr);
    EXPECT_EQ(table.At(0).GetType(), C_NF_GENERAL);
    EXPECT_EQ(table.Find(*taken), -1);
    EXPECT_EQ(table.Add(Of(C_NF_DATE)), 0);
    EXPECT_EQ(table.GetAt(0)->GetType(), C_NF_DATE);
}

// Not even to a custom format without a text, as a lossy stream may leave one.
TEST(NumberFormat, ARadixFormatEqualsNoCustomOne) {
    for (wchar_t const * text : {L"", L"General", L"0"})
        for (uchar type : {C_NF_HEX, C_NF_OCT, C_NF_BIN}) {
            CCNumberFormat custom;
            custom.setCustomFormat(CString(text));
            EXPECT_FALSE(custom.IsEqual(nullptr, Of(type)));
            EXPECT_FALSE(Of(type).IsEqual(nullptr, custom));
        }
}

TEST(NumberFormatTable, AppendsEveryHexFormatAnew) {
    CCNumberFormatTable table;
    EXPECT_NE(table.Add(Of(C_NF_HEX)), table.Add(Of(C_NF_HEX)));
}

TEST(NumberFormatTable, AppendsACopyOfItself) {
    CCNumberFormatTable table;
    table.Add(Of(C_NF_NUMBER));
    table.Append(table);
    EXPECT_EQ(table.GetSize(), 4);
}
