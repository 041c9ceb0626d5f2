// Cells as commands, byte for byte and back.
#include "persist/CCRWExchange.h"

#include "format/LTStrings.h"
#include "formula/CCConstFormula.h"
#include "formula/Parser.h"
#include "platform/CArchive.h"
#include "platform/Exceptions.h"
#include "support/BaseHost.h"

#include <gtest/gtest.h>

using cells::test::BaseHost;
using cells::test::MapCell;

namespace {

using Bytes = std::vector<uchar>;

// What `write` puts into a stream of a width.
template <typename Write>
Bytes BytesOf(FileVersion version, BaseHost & host, Write && write) {
    CMemFile file(16);
    CArchive ar(&file, CArchive::store);
    CCRWExchange exchange(version);
    exchange.Begin(ar);
    exchange.SetCellManager(&host);
    write(exchange);
    exchange.End();
    ar.Flush();
    return file.Bytes();
}

template <typename Write>
Bytes Wide(Write && write) {
    BaseHost host;
    return BytesOf(kFileVersionWide, host, write);
}
template <typename Write>
Bytes Narrow(Write && write) {
    BaseHost host;
    return BytesOf(kFileVersionNarrow, host, write);
}

void ReadInto(BaseHost & host, char const * cell, Bytes const & bytes,
              FileVersion version = kFileVersionWide) {
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    CCRWExchange exchange(version);
    exchange.Begin(ar);
    exchange.SetCellManager(&host);
    if (cell) exchange.SetCurCell(&host.Make(cell));
    EXPECT_THROW(exchange.Read(), CArchiveException); // a stream ends by its end
    exchange.End();
}

CCCellValue ValueOf(double number, uchar type = C_NF_GENERAL) {
    CCCellValue value;
    value.Set(number, type);
    return value;
}

CCCellValue TextOf(wchar_t const * text) {
    CCCellValue value;
    value.Set(text);
    return value;
}

// A stream of one cell of one host, read into the same cell of another.
void Copy(BaseHost & from, BaseHost & to, char const * cell,
          FileVersion version = kFileVersionWide) {
    ReadInto(to, cell, BytesOf(version, from, [&](CCRWExchange & exchange) {
                 exchange.WriteCell(&from.Make(cell));
             }));
}

} // namespace

TEST(ExchangeBytes, AnEmptyValueIsACommandWithoutPayload) {
    EXPECT_EQ(Wide([](CCRWExchange & x) { x.WriteValue(CCCellValue()); }), (Bytes{2, 0, 0, 0}));
    EXPECT_EQ(Wide([](CCRWExchange & x) { x.WriteValue(TextOf(nullptr)); }), (Bytes{2, 0, 0, 0}));
}

TEST(ExchangeBytes, AnErrorIsItsNumber) {
    EXPECT_EQ(Wide([](CCRWExchange & x) { x.WriteValue(CCCellValue(errNA)); }),
              (Bytes{3, 0, 1, 0, 9}));
}

TEST(ExchangeBytes, ATextIsWideOrNarrowWithATerminator) {
    EXPECT_EQ(Wide([](CCRWExchange & x) { x.WriteValue(TextOf(L"a\x20AC")); }),
              (Bytes{17, 0, 6, 0, 'a', 0, 0xAC, 0x20, 0, 0}));
    EXPECT_EQ(Narrow([](CCRWExchange & x) { x.WriteValue(TextOf(L"a\x20AC\x4E00")); }),
              (Bytes{4, 0, 4, 0, 'a', 0x80, '?', 0}));
    EXPECT_EQ(Wide([](CCRWExchange & x) { x.WriteValue(TextOf(L"")); }),
              (Bytes{17, 0, 2, 0, 0, 0}));
}

TEST(ExchangeBytes, ANumberIsItsBitsAndItsPackedFormat) {
    Bytes const bytes = Wide([](CCRWExchange & x) { x.WriteValue(ValueOf(1.0, C_NF_PERCENT)); });
    ASSERT_EQ(bytes.size(), 16u);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 12),
              (Bytes{5, 0, 12, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F}));
    EXPECT_EQ(bytes[15], C_NF_PERCENT); // the type is the highest byte
}

TEST(ExchangeBytes, AReferenceIsNotWritten) {
    CCRCRef const place(1, 1);
    EXPECT_EQ(Wide([&](CCRWExchange & x) { x.WriteValue(CCCellValue(&place)); }), Bytes());
}

TEST(ExchangeBytes, FlagsGoOutAsTheirBits) {
    CCCellFormat format;
    format.SetLock(1);
    format.SetHide(1);
    format.SetEditSource(0);
    format.SetHideError(1);
    format.SetHideZero(1);
    EXPECT_EQ(
        Wide([&](CCRWExchange & x) { x.WriteFormat(format); }),
        (Bytes{10, 0, 1, 0, 1, 11, 0, 1, 0, 2, 12, 0, 1, 0, 0, 15, 0, 1, 0, 8, 16, 0, 1, 0, 16}));
}

TEST(ExchangeBytes, PartsOfANumberFormatHaveACommandEach) {
    CCCellFormat format;
    format.SetNFType(C_NF_PERCENT);
    format.SetNFPrecision(3);
    format.SetNFCommas(1);
    EXPECT_EQ(
        Wide([&](CCRWExchange & x) { x.WriteFormat(format); }),
        (Bytes{7, 0, 1, 0, C_NF_PERCENT, 8, 0, 1, 0, 3, 9, 0, 1, 0, 0x10})); // the bit of its byte
}

TEST(ExchangeBytes, ACustomFormatFollowsInTheWideFormOnly) {
    CCNumberFormat number;
    number.setCustomFormat(CString(L"0"));
    CCCellFormat format;
    format.SetNumberFormat(number);
    Bytes const wide = Wide([&](CCRWExchange & x) { x.WriteFormat(format); });
    Bytes const narrow = Narrow([&](CCRWExchange & x) { x.WriteFormat(format); });
    ASSERT_EQ(narrow.size(), 8u);
    EXPECT_EQ(narrow[0], 6);
    ASSERT_EQ(wide.size(), 16u);
    EXPECT_EQ(Bytes(wide.begin() + 8, wide.end()), (Bytes{24, 0, 4, 0, '0', 0, 0, 0}));
}

TEST(ExchangeBytes, AWideFormulaIsItsPrefixItsTextAndATerminator) {
    BaseHost host;
    host.Enter("A1", L"=sum(1)");
    EXPECT_EQ(BytesOf(kFileVersionWide, host,
                      [&](CCRWExchange & x) {
                          x.WriteFormulaW(host.Make("A1").LoadFormula(&host), 'F');
                          x.WriteFormulaW(nullptr, 'F');
                      }),
              (Bytes{18, 0,   18, 0,   'F', 0,   'S', 0,   'U', 0, 'M',
                     0,  ' ', 0,  '(', 0,   '1', 0,   ')', 0,   0, 0}));
}

TEST(ExchangeBytes, ANarrowFormulaHasItsPrefixInDigitsAndNoTerminator) {
    BaseHost host;
    host.Enter("A1", L"=sum(1)");
    EXPECT_EQ(BytesOf(kFileVersionNarrow, host,
                      [&](CCRWExchange & x) {
                          x.WriteFormulaA(host.Make("A1").LoadFormula(&host), 'F');
                      }),
              (Bytes{1, 0, 9, 0, '7', '0', 'S', 'U', 'M', ' ', '(', '1', ')'}));
}

TEST(ExchangeBytes, AFormulaIsCutAt1024UnitsWithItsPrefix) {
    BaseHost host;
    CCConstFormula const text(TextOf(std::wstring(2000, L'x').c_str()));
    Bytes const wide =
        BytesOf(kFileVersionWide, host, [&](CCRWExchange & x) { x.WriteFormulaW(&text, 'F'); });
    ASSERT_EQ(wide.size(), 4u + 2050u);
    EXPECT_EQ(wide[2] | wide[3] << 8, 2050);
    EXPECT_EQ((Bytes{wide[4], wide[6], wide[8]}), (Bytes{'F', '"', 'x'}));
    Bytes const narrow =
        BytesOf(kFileVersionNarrow, host, [&](CCRWExchange & x) { x.WriteFormulaA(&text, 'F'); });
    EXPECT_EQ(narrow[2] | narrow[3] << 8, 1024);
}

TEST(ExchangeBytes, LongTextsAreCutToWhatAPayloadHolds) {
    std::wstring const text(40000, L'x');
    Bytes const wide = Wide([&](CCRWExchange & x) {
        x.WriteValue(TextOf(text.c_str()));
        x.WriteValue(CCCellValue());
    });
    ASSERT_EQ(wide.size(), 4u + 65534u + 4u);
    EXPECT_EQ((Bytes{wide[0], wide[2], wide[3]}), (Bytes{17, 0xFE, 0xFF}));
    EXPECT_EQ(wide[wide.size() - 4], 2);
    BaseHost host;
    ReadInto(host, "A1", wide);
    EXPECT_EQ(host.Text("A1"), ""); // the next command is in step
}

TEST(ExchangeBytes, ALeadingStringIsWrittenOnceBeforeItsFirstUse) {
    int const index = AddLTString(L"ct");
    CCNumberFormat format;
    format.SetType(C_NF_NUMBER);
    format.SetLTString(2, index);
    CCCellValue value;
    value.Set(1.0, format);
    Bytes const bytes = Wide([&](CCRWExchange & x) {
        x.WriteValue(value);
        x.WriteValue(value);
    });
    ASSERT_EQ(bytes.size(), 14u + 16u + 16u);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 14),
              (Bytes{19, 0, 10, 0, uchar(index), 0, 0, 0, 'c', 0, 't', 0, 0, 0}));
    EXPECT_EQ(bytes[14], 5);
    Bytes const narrow = Narrow([&](CCRWExchange & x) { x.WriteLTString(index); });
    EXPECT_EQ(narrow, (Bytes{14, 0, 7, 0, uchar(index), 0, 0, 0, 'c', 't', 0}));
    EXPECT_EQ(Wide([&](CCRWExchange & x) { x.WriteLTString(100000); }),
              (Bytes{19, 0, 6, 0, 0xA0, 0x86, 1, 0, 0, 0})); // beyond the list: an empty text
}

TEST(ExchangeBytes, ThePasswordOfAProtectedManager) {
    BaseHost host;
    host.Protect(L"abc");
    auto const write = [&](CCRWExchange & x) {
        x.WriteManager(&host);
        x.WriteProtection(nullptr);
    };
    EXPECT_EQ(BytesOf(kFileVersionWide, host, write),
              (Bytes{20, 0, 8, 0, 'a', 0, 'b', 0, 'c', 0, 0, 0}));
    EXPECT_EQ(BytesOf(kFileVersionNarrow, host, write), (Bytes{13, 0, 4, 0, 'a', 0, 'b', 0}));
    host.UnProtect();
    EXPECT_EQ(BytesOf(kFileVersionWide, host, write), Bytes());
}

TEST(ExchangeReading, ValuesOfEveryTypeComeBack) {
    for (wchar_t const * entry : {L"", L"5", L"12%", L"abc", L"2/1/1950", L"=1/0", L"TRUE"}) {
        BaseHost from, to;
        to.Enter("A1", L"before");
        from.Enter("A1", entry);
        Copy(from, to, "A1");
        EXPECT_EQ(to.Text("A1"), from.Text("A1"));
        EXPECT_TRUE(to.Make("A1").GetValue().IsEqual(from.Make("A1").GetValue()) ||
                    to.Make("A1").GetValue().GetType() == from.Make("A1").GetValue().GetType());
    }
}

TEST(ExchangeReading, AValueIsStoredWithoutCalculation) {
    BaseHost host;
    host.Enter("B1", L"=A1");
    host.Idle();
    ReadInto(host, "A1", {3, 0, 1, 0, 2});
    EXPECT_EQ(host.Make("A1").GetValue().GetError(), 2);
    EXPECT_EQ(host.GetCurProcessCount(), 0);
}

TEST(ExchangeReading, FormatsComeBackAlsoOnAProtectedSheet) {
    BaseHost from, to;
    CCCellFormat format;
    format.SetLock(1);
    format.SetHide(1);
    format.SetHideZero(1);
    format.SetNFType(C_NF_PERCENT);
    format.SetNFPrecision(1);
    from.Enter("A1", L"1");
    from.Make("A1").SetFormat(&from, format);
    from.Protect(L"p");
    Bytes const bytes = BytesOf(kFileVersionWide, from, [&](CCRWExchange & x) {
        x.WriteManager(&from);
        x.WriteCell(&from.Make("A1"));
    });
    ReadInto(to, "A1", bytes);
    EXPECT_TRUE(to.IsProtected());
    CCCellFormat const & read = to.Make("A1").getCFmt();
    EXPECT_TRUE(read.IsLocked());
    EXPECT_TRUE(read.IsHidden());
    EXPECT_TRUE(read.IsZeroHidden());
    EXPECT_EQ(read.GetNFType(), C_NF_PERCENT);
    EXPECT_EQ(read.GetNFPrecision(), 1);
    EXPECT_EQ(to.messages, std::vector<unsigned>());
}

TEST(ExchangeReading, ACustomFormatComesBack) {
    BaseHost from, to;
    CCNumberFormat number;
    number.setCustomFormat(CString(L"0.0 \"kg\""));
    CCCellFormat format;
    format.SetNumberFormat(number);
    from.Enter("A1", L"2");
    from.Make("A1").SetFormat(&from, format);
    Copy(from, to, "A1");
    EXPECT_EQ(cells::ToUtf8(to.Make("A1").getCFmt().GetNFmt().getFormatString()), "0.0 \"kg\"");
}

TEST(ExchangeReading, AWideFormulaIsRegisteredAndNotComputed) {
    BaseHost from, to;
    from.Enter("A1", L"5");
    from.Enter("B1", L"=A1*2");
    Copy(from, to, "A1");
    Copy(from, to, "B1");
    EXPECT_EQ(to.EditText("B1"), "=A1 * 2");
    EXPECT_EQ(to.Text("B1"), "10"); // the stored value
    EXPECT_EQ(to.GetCurProcessCount(), 0);
    EXPECT_EQ(to.Make("A1").GetDependentCount(), 1);
    to.Enter("A1", L"6");
    to.Idle();
    EXPECT_EQ(to.Text("B1"), "12");
}

TEST(ExchangeReading, AVolatileFormulaIsQueued) {
    BaseHost from, to;
    from.Enter("B1", L"=NOW()");
    Copy(from, to, "B1");
    EXPECT_EQ(to.GetCurProcessCount(), 1);
}

TEST(ExchangeReading, ACircularFormulaKeepsItsMark) {
    BaseHost from, to;
    from.Enter("B1", L"=B1");
    Copy(from, to, "B1");
    EXPECT_EQ(to.Make("B1").GetFormulaType(), 'C');
    EXPECT_EQ(to.Make("B1").GetDependentCount(), 0);
}

// The prefix of a narrow formula is read as one byte of two digits.
TEST(ExchangeReading, ANarrowFormulaDoesNotComeBackAsARegisteredOne) {
    BaseHost from, to;
    from.Enter("B1", L"=A1*2");
    Copy(from, to, "B1", kFileVersionNarrow);
    EXPECT_NE(to.Make("B1").GetFormulaType(), 'F');
    EXPECT_EQ(to.Make("A1").GetDependentCount(), 0);
}

TEST(ExchangeReading, ACommandOneWithItsPrefixIsQueuedAtOnce) {
    BaseHost host;
    host.Enter("A1", L"5");
    ReadInto(host, "B1", {1, 0, 5, 0, 'F', 'A', '1', '+', '1'});
    EXPECT_EQ(host.EditText("B1"), "=A1 + 1");
    EXPECT_EQ(host.GetCurProcessCount(), 1);
    host.Idle();
    EXPECT_EQ(host.Text("B1"), "6");
}

TEST(ExchangeReading, AFormulaThatDoesNotParseBecomesAText) {
    BaseHost host;
    ReadInto(host, "A1", {18, 0, 8, 0, 'F', 0, '(', 0, '1', 0, 0, 0});
    EXPECT_EQ(host.Text("A1"), "(1");
    EXPECT_FALSE(host.Make("A1").IsFormulaLink());
    ReadInto(host, "A1", {18, 0, 2, 0, 'F', 0});
    EXPECT_EQ(host.Text("A1"), "");
    EXPECT_TRUE(host.Make("A1").GetValue().IsText());
}

TEST(ExchangeReading, ALeadingStringGetsItsNumberInThisProcess) {
    AddLTString(L"first");
    int const here = AddLTString(L"stone");
    BaseHost host;
    // String 3 of the file is "stone"; the number uses it.
    Bytes bytes{19, 0, 16, 0, 3, 0, 0, 0, 's', 0, 't', 0, 'o', 0, 'n', 0, 'e', 0, 0, 0};
    Bytes const number{5, 0, 12, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 4, 0, 0, C_NF_NUMBER};
    bytes.insert(bytes.end(), number.begin(), number.end());
    ReadInto(host, "A1", bytes);
    CCNumberFormat const & format = host.Make("A1").GetValue().GetFormat();
    EXPECT_EQ(format.GetLTString(), here);
    EXPECT_TRUE(format.GetSetMask() & 0x40);
    // Without the string in the stream the number stays, and the mask too.
    ReadInto(host, "A2", number);
    EXPECT_EQ(host.Make("A2").GetValue().GetFormat().GetLTString(), 3);
    EXPECT_FALSE(host.Make("A2").GetValue().GetFormat().GetSetMask() & 0x40);
}

TEST(ExchangeReading, AnEnormousIndexOfAStringCostsNothing) {
    BaseHost host;
    ReadInto(host, "A1", {19, 0, 8, 0, 0xFF, 0xFF, 0xFF, 0xFF, 'z', 0, 0, 0});
    EXPECT_GE(GetLTStringIndex(L"z"), 0);
}

TEST(ExchangeReading, WithoutACellOrAManagerCommandsAreSkipped) {
    CMemFile file(16);
    Bytes const bytes{2, 0, 0, 0, 10, 0, 1, 0, 1, 20, 0, 2, 0, 0, 0, 21, 0, 1, 0, 7};
    file.Write(bytes.data(), bytes.size());
    file.SeekToBegin();
    CArchive ar(&file, CArchive::load);
    CCRWExchange exchange(kFileVersionWide);
    exchange.Begin(ar);
    EXPECT_THROW(exchange.Read(), CArchiveException);
    EXPECT_EQ(exchange.GetCurFormat(), nullptr);
    EXPECT_EQ(exchange.GetCurValue(), nullptr);
}

TEST(ExchangeReading, CommandsOfAnyLengthAreTakenWithoutHarm) {
    for (int code = 0; code < 30; ++code)
        for (int length = 0; length <= 12; ++length)
            for (uchar fill : {uchar(0), uchar('F'), uchar(0xFF)}) {
                BaseHost host;
                Bytes bytes{uchar(code), 0, uchar(length), 0};
                bytes.resize(bytes.size() + std::size_t(length), fill);
                bytes.insert(bytes.end(), {3, 0, 1, 0, 9});
                ReadInto(host, "A1", bytes);
                EXPECT_EQ(host.Make("A1").GetValue().GetError(), 9) << code << " " << length;
            }
}
