// Between the model of the older file version and the engine.
#include "catalogue/Language.h"
#include "format/LTStrings.h"
#include "formula/CCConstFormula.h"
#include "formula/CCNameRef.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRefFormula.h"
#include "formula/CCRegionRef.h"
#include "formula/CCRemoteRef.h"
#include "formula/Parser.h"
#include "host/Engine.h"
#include "host/Sheet.h"
#include "legacy/CCC4W15Convert.h"
#include "support/BaseHost.h"
#include "support/Bytes.h"
#include "support/Paths.h"

#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

using cells::test::BaseHost;
using cells::test::Bytes;
using cells::test::Utf8;
using cells::test::Written;
using Legacy = CCC4W15Exchange;

namespace {

class LegacyConvert : public testing::Test {
protected:
    using Tree = std::unique_ptr<CCFormula>;
    using Old = std::unique_ptr<Legacy::CCC4W15_Formula>;

    // A cell's place as the origin of its formula.
    static CPoint OriginOf(std::string const & name) {
        CCRCRef const ref = BaseHost::RefOf(name);
        return {ref.col + 1, ref.row + 1};
    }

    Tree Parsed(std::wstring const & text) {
        return Tree(_ParseFormula(&host, text.c_str(), 0, nullptr));
    }
    std::string Printed(CCFormula const * formula) {
        if (!formula) return "nothing";
        std::wostringstream stream;
        formula->Print(&host, stream, 0);
        return Utf8(stream.str());
    }
    Old ToOld(std::wstring const & text, std::string const & at = "C3") {
        CPoint const origin = OriginOf(at);
        return Old(convert.ConvertTo15(Parsed(text).get(), &origin));
    }
    Tree ToTree(Legacy::CCC4W15_Formula const * old, std::string const & at = "C3") {
        CPoint const origin = OriginOf(at);
        return Tree(convert.ConvertTo95(old, &origin));
    }
    // A formula through the older version, as it prints.
    std::string Through(std::wstring const & text) {
        return Printed(ToTree(ToOld(text).get()).get());
    }

    // An old call of a function with arguments in today's notation.
    Old Call(std::string const & name, std::vector<std::wstring> const & args) {
        auto call = std::make_unique<Legacy::CCC4W15_FormulaOp>();
        call->name = name;
        for (std::wstring const & arg : args) call->args.Add(ToOld(arg).release());
        return call;
    }
    std::string PrintedCall(std::string const & name, std::vector<std::wstring> const & args) {
        return Printed(ToTree(Call(name, args).get()).get());
    }

    Legacy::CCC4W15_CellValue OldValue(CCCellValue const & value) {
        Legacy::CCC4W15_CellValue old;
        convert.ConvertTo15(old, value);
        return old;
    }
    CCCellValue Value(Legacy::CCC4W15_CellValue const & old) {
        CCCellValue value;
        convert.ConvertTo95(value, old);
        return value;
    }
    CCNumberFormat Format(Legacy::CCC4W15_NumberFormat const & old) {
        CCNumberFormat format;
        convert.ConvertTo95(format, old);
        return format;
    }
    Legacy::CCC4W15_NumberFormat OldFormat(CCNumberFormat const & format) {
        Legacy::CCC4W15_NumberFormat old;
        old.words.fill(0xEEEE);
        convert.ConvertTo15(old, format);
        return old;
    }
    CCNumberFormat Through(CCNumberFormat const & format) { return Format(OldFormat(format)); }

    BaseHost host;
    CCC4W15Convert convert{&host};
};

template <typename Record>
Bytes BytesOf(Record const & record) {
    return Written([&](CArchive & ar) { record.Write(ar); });
}

using Words = std::array<std::uint16_t, 10>;

} // namespace

// Coordinates

namespace {

struct Corner {
    int row, column, rowAbsolute, columnAbsolute;
    bool operator==(Corner const &) const = default;
};

Corner CornerOf(Legacy::CCC4W15_CoordsRC const & c) {
    return {c.row, c.column, c.rowAbsolute, c.columnAbsolute};
}

Legacy::CCC4W15_CoordsRC CoordsOf(Corner const & corner) {
    Legacy::CCC4W15_CoordsRC coords;
    coords.row = std::uint16_t(corner.row);
    coords.column = std::uint16_t(corner.column);
    coords.rowAbsolute = std::uint16_t(corner.rowAbsolute);
    coords.columnAbsolute = std::uint16_t(corner.columnAbsolute);
    return coords;
}

} // namespace

TEST_F(LegacyConvert, ACellIsADistanceFromTheOriginOrCountsFrom1) {
    struct Case {
        char const * ref;
        uchar flags;
        char const * origin; // null: none
        Corner corner;
    };
    constexpr int kMinusOne = 0xFFFF;
    Case const cases[] = {
        {"B2", 0, "C3", {kMinusOne, kMinusOne, 0, 0}},
        {"C3", 0, "B2", {1, 1, 0, 0}},
        {"C3", 0, "C3", {0, 0, 0, 0}},
        {"B2", 1, "C3", {kMinusOne, 2, 0, 1}},
        {"B2", 2, "C3", {2, kMinusOne, 1, 0}},
        {"B2", 3, "C3", {2, 2, 1, 1}},
        {"B2", 0, nullptr, {2, 2, 1, 1}},
        {"A65536", 3, "A1", {0, 1, 1, 1}}, // row 65,536 wraps
        {"A1", 0, "A65536", {1, 0, 0, 0}},
    };
    for (Case const & c : cases) {
        CCRCRef const ref = BaseHost::RefOf(c.ref);
        CPoint const origin = c.origin ? OriginOf(c.origin) : CPoint();
        Legacy::CCC4W15_Coords * made;
        convert.ConvertTo15(made, &ref, c.flags, c.origin ? &origin : nullptr);
        std::unique_ptr<Legacy::CCC4W15_Coords> const coords(made);
        ASSERT_EQ(coords->GetType(), Legacy::kCoordsRC);
        EXPECT_EQ(CornerOf(static_cast<Legacy::CCC4W15_CoordsRC const &>(*coords)), c.corner)
            << c.ref << " in " << (c.origin ? c.origin : "no cell");
    }
}

TEST_F(LegacyConvert, ACellComesFromADistanceOrANumberFrom1) {
    struct Case {
        Corner corner;
        char const * origin;
        char const * ref; // empty: null
        int flags;
    };
    Case const cases[] = {
        {{0xFFFF, 0xFFFF, 0, 0}, "C3", "B2", 0},
        {{1, 1, 0, 0}, "B2", "C3", 0},
        {{2, 2, 1, 1}, "C3", "B2", 3},
        {{2, 2, 7, 7}, "C3", "B2", 3}, // any number but 0 is a flag
        {{2, 0xFFFF, 1, 0}, "C3", "B2", 2},
        {{2, 2, 0, 0}, nullptr, "B2", 3}, // without an origin all is absolute
        {{0, 1, 1, 1}, "C3", "A65536", 3},
        {{1, 256, 1, 1}, "C3", "IV1", 3},
        {{1, 257, 1, 1}, "C3", "", 0},
        {{1, 300, 1, 1}, "C3", "", 0},
        {{1, 0, 1, 1}, "C3", "", 0},
        {{1, 0xFFFD, 0, 0}, "C3", "", 0},       // before column A
        {{0xFFFD, 0, 0, 0}, "C3", "C65536", 0}, // rows wrap
    };
    for (Case const & c : cases) {
        auto const coords = CoordsOf(c.corner);
        CPoint const origin = c.origin ? OriginOf(c.origin) : CPoint();
        CCRef * made;
        uchar flags = 0xAA;
        convert.ConvertTo95(made, flags, &coords, c.origin ? &origin : nullptr);
        std::unique_ptr<CCRef> const ref(made);
        std::string const what = std::string(c.ref) + " from row " + std::to_string(c.corner.row);
        EXPECT_EQ(flags, c.flags) << what;
        if (!*c.ref) {
            EXPECT_EQ(ref, nullptr) << what;
            continue;
        }
        ASSERT_NE(ref, nullptr) << what;
        EXPECT_EQ(ref->GetType(), kRefCell);
        EXPECT_EQ(BaseHost::NameOf(ref.get()), c.ref);
    }
}

TEST_F(LegacyConvert, ARegionHasTwoCornersWithFlagsOfTheirOwn) {
    CCRegionRef const region(1, 1, 3, 9); // B2:D10
    CPoint const origin = OriginOf("C3");
    Legacy::CCC4W15_Coords * made;
    convert.ConvertTo15(made, &region, cells::kAbsoluteRow | cells::kAbsoluteColumn2, &origin);
    std::unique_ptr<Legacy::CCC4W15_Coords> const coords(made);
    ASSERT_EQ(coords->GetType(), Legacy::kCoordsRegion);
    auto const & old = static_cast<Legacy::CCC4W15_CoordsRegion const &>(*coords);
    EXPECT_EQ(CornerOf(old.first), (Corner{2, 0xFFFF, 1, 0}));
    EXPECT_EQ(CornerOf(old.last), (Corner{7, 4, 0, 1}));
    CCRef * back;
    uchar flags;
    convert.ConvertTo95(back, flags, &old, &origin);
    std::unique_ptr<CCRef> const owned(back);
    EXPECT_TRUE(region.IsEqual(back));
    EXPECT_EQ(flags, cells::kAbsoluteRow | cells::kAbsoluteColumn2);
    convert.ConvertTo95(back, flags, &old, nullptr);
    EXPECT_EQ(back, nullptr); // column 65,535 as a number
}

TEST_F(LegacyConvert, ARegionWithACornerOffTheSheetIsNull) {
    Legacy::CCC4W15_CoordsRegion region;
    region.first = CoordsOf({1, 1, 1, 1});
    region.last = CoordsOf({1, 257, 1, 1});
    CCRef * ref;
    uchar flags;
    convert.ConvertTo95(ref, flags, &region, nullptr);
    EXPECT_EQ(ref, nullptr);
    region.last.column = 256;
    convert.ConvertTo95(ref, flags, &region, nullptr);
    std::unique_ptr<CCRef> const owned(ref);
    ASSERT_NE(ref, nullptr);
    EXPECT_EQ(flags, 15);
}

TEST_F(LegacyConvert, ANameIsNarrowedAndWidened) {
    CCNameRef const name(L"gr\u00F6\u00DFe\u4E2D");
    Legacy::CCC4W15_Coords * made;
    convert.ConvertTo15(made, &name, 0, nullptr);
    std::unique_ptr<Legacy::CCC4W15_Coords> const coords(made);
    ASSERT_EQ(coords->GetType(), Legacy::kCoordsName);
    EXPECT_EQ(static_cast<Legacy::CCC4W15_CoordsName const &>(*coords).name, "gr\xF6\xDF"
                                                                             "e?");
    CCRef * back;
    uchar flags = 0xAA;
    convert.ConvertTo95(back, flags, coords.get(), nullptr);
    std::unique_ptr<CCRef> const owned(back);
    ASSERT_EQ(back->GetType(), kRefName);
    EXPECT_EQ(Utf8(static_cast<CCNameRef const *>(back)->name()), "gr\u00F6\u00DFe?");
    EXPECT_EQ(flags, 0);
}

TEST_F(LegacyConvert, WhatIsNoCellRegionOrNameIsNull) {
    CCRemoteRef const remote(L"other", L"A1");
    CCRef const * const without[] = {nullptr, &remote};
    for (CCRef const * ref : without) {
        Legacy::CCC4W15_Coords * coords;
        convert.ConvertTo15(coords, ref, 0, nullptr);
        EXPECT_EQ(coords, nullptr);
        Legacy::CCC4W15_Ref * legacy;
        convert.ConvertTo15(legacy, ref, 0, nullptr);
        EXPECT_EQ(legacy, nullptr);
    }
    Legacy::CCC4W15_CoordsQuery const query;
    Legacy::CCC4W15_RemoteRef elsewhere;
    elsewhere.coords = std::make_unique<Legacy::CCC4W15_CoordsRC>();
    CCRef * ref;
    uchar flags;
    convert.ConvertTo95(ref, flags, &query, nullptr);
    EXPECT_EQ(ref, nullptr);
    convert.ConvertTo95(ref, flags, &elsewhere, nullptr);
    EXPECT_EQ(ref, nullptr);
    convert.ConvertTo95(ref, flags, static_cast<Legacy::CCC4W15_Ref const *>(nullptr), nullptr);
    EXPECT_EQ(ref, nullptr);
    convert.ConvertTo95(ref, flags, static_cast<Legacy::CCC4W15_Coords const *>(nullptr), nullptr);
    EXPECT_EQ(ref, nullptr);
}

RC_GTEST_FIXTURE_PROP(LegacyConvert, EveryReferenceKeepsItsPlaceAndItsFlags, ()) {
    auto const coordinate = [](int most) { return rc::gen::inRange(0, most + 1); };
    bool const isRegion = *rc::gen::arbitrary<bool>();
    uchar const flags = uchar(*rc::gen::inRange(0, isRegion ? 16 : 4));
    CPoint const origin(*coordinate(255) + 1, *coordinate(65535) + 1);
    std::unique_ptr<CCRef> ref;
    if (isRegion)
        ref = std::make_unique<CCRegionRef>(uchar(*coordinate(255)), ushort(*coordinate(65535)),
                                            uchar(*coordinate(255)), ushort(*coordinate(65535)));
    else
        ref = std::make_unique<CCRCRef>(uchar(*coordinate(255)), ushort(*coordinate(65535)));
    Legacy::CCC4W15_Ref * made;
    convert.ConvertTo15(made, ref.get(), flags, &origin);
    std::unique_ptr<Legacy::CCC4W15_Ref> const written(made);
    Bytes const bytes = BytesOf(*written);
    Legacy::CCC4W15_Ref read;
    cells::test::Reading(bytes, [&](CArchive & ar) { read.Read(ar); });
    CCRef * back;
    uchar flagsBack;
    convert.ConvertTo95(back, flagsBack, &read, &origin);
    std::unique_ptr<CCRef> const owned(back);
    RC_ASSERT(back);
    RC_ASSERT(ref->IsEqual(back));
    RC_ASSERT(flagsBack == flags);
}

// Values

TEST_F(LegacyConvert, ErrorsHaveCodesOfTheirOwn) {
    int const codes[] = {0, 2, 6, 7, 8, 7, 7, 7, 7, 7}; // of errors 0 to 9
    for (int error = 0; error <= 9; ++error) {
        auto const old = OldValue(CCCellValue(error));
        EXPECT_EQ(old.type, 0) << error;
        EXPECT_EQ(old.error, codes[error]) << error;
        EXPECT_EQ(old.format, 0) << error;
    }
}

TEST_F(LegacyConvert, ErrorsComeFromTheirCodes) {
    for (int code = 0; code <= 255; ++code) {
        Legacy::CCC4W15_CellValue old;
        old.type = 0;
        old.error = std::uint16_t(code);
        int const error = code == 0 || code == 2 ? 1 : code == 6 ? 2 : code == 8 ? 4 : 3;
        EXPECT_EQ(Value(old).GetError(), error) << code;
    }
}

TEST_F(LegacyConvert, Errors5And9ComeBackAs3) {
    for (int error : {5, 9}) EXPECT_EQ(Value(OldValue(CCCellValue(error))).GetError(), 3);
    for (int error : {1, 2, 3, 4}) EXPECT_EQ(Value(OldValue(CCCellValue(error))).GetError(), error);
}

TEST_F(LegacyConvert, TextsAreNarrowedAndWidened) {
    auto const old = OldValue(CCCellValue(L"5 \u20AC \u4E2D"));
    EXPECT_EQ(old.type, 1);
    EXPECT_EQ(old.text, "5 \x80 ?");
    EXPECT_EQ(Utf8(Value(old).GetText()), "5 \u20AC ?");
}

TEST_F(LegacyConvert, ATextKeepsItsLengthUntilItIsWritten) {
    auto const old = OldValue(CCCellValue(std::wstring(300, L'x').c_str()));
    EXPECT_EQ(old.text, std::string(300, 'x'));
}

TEST_F(LegacyConvert, ANullTextIsNull) {
    auto const old = OldValue(CCCellValue(static_cast<wchar_t const *>(nullptr)));
    EXPECT_EQ(old.type, 1);
    EXPECT_EQ(old.text, std::nullopt);
    CCCellValue const value = Value(old);
    EXPECT_TRUE(value.IsText());
    EXPECT_EQ(value.GetText(), nullptr);
}

TEST_F(LegacyConvert, AnEmptyValueIsANullTextSoThatItStaysBlank) {
    EXPECT_EQ(BytesOf(OldValue(CCCellValue())), (Bytes{1, 255, 0, 0, 0, 0}));
}

TEST_F(LegacyConvert, AReferenceValueIsError2) {
    CCRCRef const ref(1, 1);
    auto const old = OldValue(CCCellValue(&ref));
    EXPECT_EQ(old.type, 0);
    EXPECT_EQ(old.error, 2);
}

TEST_F(LegacyConvert, NumbersHaveATypeByTheirClass) {
    struct Row {
        int formatClass, type, word;
    };
    Row const rows[] = {{0, 2, 0}, {1, 2, 3}, {2, 5, 3}, {3, 8, 3}, {4, 10, 3}, {5, 9, 3},
                        {6, 6, 0}, {7, 7, 0}, {8, 2, 0}, {9, 2, 0}, {10, 2, 0}, {11, 2, 0}};
    for (Row const & row : rows) {
        CCNumberFormat format;
        format.SetType(uchar(row.formatClass));
        format.SetPrecision(3);
        format.SetCommas(1);
        CCCellValue value;
        value.Set(12.5, format);
        auto const old = OldValue(value);
        EXPECT_EQ(old.type, row.type) << row.formatClass;
        EXPECT_EQ(old.number, 12.5) << row.formatClass;
        EXPECT_EQ(old.format, row.word) << row.formatClass;
    }
}

TEST_F(LegacyConvert, NumbersGetAClassByTheirType) {
    struct Row {
        int type, formatClass, decimals, mask;
    };
    Row const rows[] = {{2, 1, 5, 0x3F},  {3, 1, 0, 0x3F},  {4, 1, 5, 0x3F},  {5, 2, 5, 0x3F},
                        {6, 6, 0, 0x3D},  {7, 7, 0, 0x3D},  {8, 3, 5, 0x3F},  {9, 5, 5, 0x3F},
                        {10, 4, 5, 0x3F}, {11, 0, 0, 0x3D}, {255, 0, 0, 0x3D}};
    for (Row const & row : rows) {
        Legacy::CCC4W15_CellValue old;
        old.type = uchar(row.type);
        old.number = -0.25;
        old.format = 0x1235; // only its low four bits count
        CCCellValue const value = Value(old);
        CCNumberFormat const & format = value.GetFormat();
        EXPECT_EQ(value.GetNumber(), -0.25) << row.type;
        EXPECT_EQ(format.GetType(), row.formatClass) << row.type;
        EXPECT_EQ(format.GetPrecision(), row.decimals) << row.type;
        EXPECT_EQ(format.GetSetMask(), row.mask) << row.type;
        EXPECT_EQ(format.GetCommas(), 0) << row.type;
    }
}

TEST_F(LegacyConvert, TwelveFiftyWithTwoDecimalsComesBackEqual) {
    CCNumberFormat format;
    format.SetType(C_NF_NUMBER);
    format.SetPrecision(2);
    CCCellValue value;
    value.Set(12.5, format);
    auto const old = OldValue(value);
    EXPECT_EQ(old.type, 2);
    EXPECT_EQ(old.format, 2);
    EXPECT_TRUE(Value(old).IsEqual(value));
}

TEST_F(LegacyConvert, ALogicalNumberComesBackAsAPlainOne) {
    CCCellValue value;
    value.Set(1, uchar(C_NF_BOOL));
    CCCellValue const back = Value(OldValue(value));
    EXPECT_EQ(back.GetNumber(), 1);
    EXPECT_EQ(back.GetFormat().GetType(), C_NF_NUMBER);
}

RC_GTEST_FIXTURE_PROP(LegacyConvert, NumbersKeepTheirBits, (double number)) {
    int const formatClass = *rc::gen::inRange(0, 12);
    CCCellValue value;
    value.Set(number, uchar(formatClass));
    CCCellValue const back = Value(OldValue(value));
    RC_ASSERT(std::bit_cast<std::uint64_t>(back.GetNumber()) ==
              std::bit_cast<std::uint64_t>(number));
    bool const keepsClass = formatClass >= C_NF_NUMBER && formatClass <= C_NF_DATE;
    RC_ASSERT(back.GetFormat().GetType() == (keepsClass ? formatClass : C_NF_NUMBER));
}

// Formulas

TEST_F(LegacyConvert, FormulasComeBackAsTheyPrint) {
    for (wchar_t const * text :
         {L"SUM(A1:A2)", L"-A1", L"+A1", L"A1-B1", L"A1%", L"~A1", L"A1 & B1 | C1", L"$A1+A$1*$A$1",
          L"(A1+B1)*2", L"rate*2", L"\"text\"+A1", L"A1^2^3", L"A1>=B1", L"A1<>B1",
          L"ROUND(A1/3,2)", L"PI()", L"IV65536+A1", L"REMOTE(\"a\",\"A1\")", L"TITLE()"}) {
        std::string const printed = Printed(Parsed(text).get());
        EXPECT_NE(printed, "nothing");
        EXPECT_EQ(Through(text), printed);
    }
}

TEST_F(LegacyConvert, ACallIsItsNameAndItsArguments) {
    Old const old = ToOld(L"SUM(A1:A2)", "A3");
    ASSERT_NE(old, nullptr);
    auto const & call = static_cast<Legacy::CCC4W15_FormulaOp const &>(*old);
    EXPECT_EQ(call.name, "SUM");
    ASSERT_EQ(call.GetNumArgs(), 1u);
    EXPECT_EQ(call.args.First()->formula->GetType(), Legacy::kFormulaRef);
}

TEST_F(LegacyConvert, AReferenceKeepsTheFlagsOfItsNode) {
    CPoint const origin = OriginOf("C3");
    for (uchar flags = 0; flags < 4; ++flags) {
        CCRefFormula const node(1, 1, flags);
        Old const old(convert.ConvertTo15(&node, &origin));
        Tree const back = ToTree(old.get());
        ASSERT_EQ(back->GetType(), kRefFormula);
        auto const & reference = static_cast<CCRefFormula const &>(*back);
        EXPECT_EQ(reference.GetMode(), flags);
        EXPECT_TRUE(node.GetRef()->IsEqual(reference.GetRef()));
    }
}

TEST_F(LegacyConvert, WithoutAnOriginAllReferencesAreAbsolute) {
    Old const old(convert.ConvertTo15(Parsed(L"A1+A1:B2").get(), nullptr));
    EXPECT_EQ(Printed(Tree(convert.ConvertTo95(old.get(), nullptr)).get()), "$A$1 + $A$1:$B$2");
}

TEST_F(LegacyConvert, AReferenceMovesWithTheCellThatHoldsIt) {
    Old const old = ToOld(L"B2", "C3");
    EXPECT_EQ(Printed(ToTree(old.get(), "D9").get()), "C8");
    EXPECT_EQ(Printed(ToTree(old.get(), "A9").get()), "nothing"); // left of column A
}

TEST_F(LegacyConvert, ChoicesArraysAndReferenceOperatorsDoNotPass) {
    for (wchar_t const * text : {L"IF(A1,1,2)", L"CHOOSE(1,2,3)", L"SUM({1,2})", L"SUM(IF(A1,1,2))",
                                 L"1+(2*IF(A1,1,2))", L"Two!A1"}) {
        ASSERT_NE(Parsed(text), nullptr) << Utf8(text);
        EXPECT_EQ(ToOld(text), nullptr) << Utf8(text);
    }
    CPoint const origin(1, 1);
    EXPECT_EQ(convert.ConvertTo15(static_cast<CCFormula const *>(nullptr), &origin), nullptr);
}

TEST_F(LegacyConvert, AReferenceWithoutAPlaceDoesNotPass) {
    CCRemoteRef const remote(L"other", L"A1");
    CCRefFormula const node(&remote, 0);
    EXPECT_EQ(convert.ConvertTo15(&node, nullptr), nullptr);
    Legacy::CCC4W15_FormulaRef const none;
    EXPECT_EQ(ToTree(&none), nullptr);
}

TEST_F(LegacyConvert, ACallOfAFunctionThatIsUnknownHereDoesNotPass) {
    CCOpFormula const unknown;
    EXPECT_EQ(convert.ConvertTo15(&unknown, nullptr), nullptr);
}

TEST_F(LegacyConvert, NamedOperatorsBecomeOperatorsWherePrintingKeepsThem) {
    struct Case {
        char const * name;
        std::vector<std::wstring> args;
        char const * printed;
    };
    Case const cases[] = {
        {"PLUS", {L"A1", L"B1"}, "A1 + B1"},
        {"plus", {L"A1", L"B1", L"2"}, "A1 + B1 + 2"},
        {"MINUS", {L"A1", L"B1"}, "A1 - B1"},
        {"TIMES", {L"A1", L"B1"}, "A1 * B1"},
        {"DIVIDE", {L"A1", L"B1"}, "A1 / B1"},
        {"POWER", {L"A1", L"B1"}, "A1 ^ B1"},
        {"AND", {L"A1", L"B1"}, "A1 & B1"},
        {"OR", {L"A1", L"B1"}, "A1 | B1"},
        {"NOT", {L"A1"}, "~A1"},
        {"PLUS", {L"A1"}, "PLUS (A1)"},
        {"MINUS", {L"A1"}, "MINUS (A1)"},
        {"TIMES", {L"A1:A3"}, "TIMES (A1:A3)"},
        {"DIVIDE", {L"A1"}, "DIVIDE (A1)"},
        {"AND", {L"A1:A3"}, "AND (A1:A3)"},
        {"OR", {L"A1:A3"}, "OR (A1:A3)"},
    };
    for (Case const & c : cases) EXPECT_EQ(PrintedCall(c.name, c.args), c.printed) << c.name;
}

TEST_F(LegacyConvert, OneGlyphIsPrefixOrInfixByItsArguments) {
    EXPECT_EQ(PrintedCall("-", {L"A1"}), "-A1");
    EXPECT_EQ(PrintedCall("-", {L"A1", L"B1"}), "A1 - B1");
    EXPECT_EQ(PrintedCall("+", {L"A1"}), "+A1");
    EXPECT_EQ(PrintedCall("%", {L"A1"}), "A1%");
    host.Enter("A1", L"5");
    Tree const tree = ToTree(ToOld(L"-A1").get());
    CCCellValue value;
    EvalFormula(&host, value, tree.get(), nullptr);
    EXPECT_EQ(value.GetNumber(), -5);
}

TEST_F(LegacyConvert, ASignStaysASignBeforeWhatIsNoSingleValueHere) {
    EXPECT_EQ(PrintedCall("-", {L"rate"}), "-rate"); // a name that nobody has defined
    EXPECT_EQ(PrintedCall("-", {L"A1:A3"}), "-A1:A3");
    EXPECT_EQ(PrintedCall("+", {L"rate"}), "+rate");
    EXPECT_EQ(PrintedCall("*", {L"A1"}), "A1"); // has no other form
}

TEST_F(LegacyConvert, UnknownNamesAndWrongListsGiveNothing) {
    EXPECT_EQ(PrintedCall("NOSUCH", {L"A1"}), "nothing");
    EXPECT_EQ(PrintedCall("", {L"A1"}), "nothing");
    EXPECT_EQ(PrintedCall("PI", {L"A1"}), "nothing");
    EXPECT_EQ(PrintedCall("NOT", {L"A1", L"B1"}), "nothing");
    Legacy::CCC4W15_FormulaOp nameless;
    EXPECT_EQ(ToTree(&nameless), nullptr);
}

TEST_F(LegacyConvert, OneArgumentThatIsNothingAbandonsTheCall) {
    Old call = Call("SUM", {L"A1"});
    static_cast<Legacy::CCC4W15_FormulaOp &>(*call).args.Add(
        static_cast<Legacy::CCC4W15_Formula *>(nullptr));
    EXPECT_EQ(ToTree(call.get()), nullptr);
    Old outer = Call("SUM", {L"A1"});
    static_cast<Legacy::CCC4W15_FormulaOp &>(*outer).args.Add(Call("NOSUCH", {}).release());
    EXPECT_EQ(ToTree(outer.get()), nullptr);
    EXPECT_EQ(ToTree(nullptr), nullptr);
}

TEST_F(LegacyConvert, AnOldChoiceIsAChoiceHere) {
    EXPECT_EQ(PrintedCall("IF", {L"A1", L"1", L"2"}), "IF (A1, 1, 2)");
    EXPECT_EQ(ToTree(Call("IF", {L"A1", L"1", L"2"}).get())->GetType(), kChooseOpFormula);
}

TEST_F(LegacyConvert, TreesThatAreTooDeepGiveNothing) {
    Old deep = ToOld(L"1");
    for (int level = 1; level < cells::kMaxFormulaDepth; ++level) {
        auto call = std::make_unique<Legacy::CCC4W15_FormulaOp>();
        call->name = "+";
        call->args.Add(deep.release());
        deep = std::move(call);
    }
    EXPECT_NE(ToTree(deep.get()), nullptr);
    auto call = std::make_unique<Legacy::CCC4W15_FormulaOp>();
    call->name = "+";
    call->args.Add(deep.release());
    EXPECT_EQ(ToTree(call.get()), nullptr);
}

TEST_F(LegacyConvert, FunctionsGoByTheirLocalNames) {
    cells::host::UseLanguageFile(CVCELLS_RESOURCES "/de.txt");
    Old const old = ToOld(L"SUMME(A1:A2)");
    EXPECT_EQ(static_cast<Legacy::CCC4W15_FormulaOp const &>(*old).name, "SUMME");
    EXPECT_EQ(Printed(ToTree(old.get()).get()), "SUMME (A1:A2)");
    cells::UseEnglish();
    EXPECT_EQ(ToTree(old.get()), nullptr);
}

TEST_F(LegacyConvert, AFunctionWhoseNameHasNoBytesDoesNotPass) {
    CCFunc func;
    CCOpFormula const call(&func, FormulaListCreate1Item(new CCConstFormula(errRef)));
    func.localName.reset(cells::NewHeapText(L"\u0421\u0423\u041C"));
    EXPECT_EQ(convert.ConvertTo15(&call, nullptr), nullptr);
    func.localName.reset(cells::NewHeapText(L"sum"));
    EXPECT_NE(Old(convert.ConvertTo15(&call, nullptr)), nullptr);
}

namespace {

// A formula, and whether it holds what the older version does not have.
struct Expression {
    std::wstring text;
    bool isLost = false;
};

Expression Leaf() {
    switch (*rc::gen::inRange(0, 8)) {
    case 0:
        return {std::to_wstring(*rc::gen::inRange(0, 100000))};
    case 1:
        return {L"0." + std::to_wstring(*rc::gen::inRange(1, 100000))};
    case 2:
        return {L"\"text\""};
    case 3:
        return {L"rate"};
    case 4:
        return {L"SUM(B$2:$D9)"};
    case 5:
        return *rc::gen::inRange(0, 4) ? Expression{L"PI()"} : Expression{L"IF(A1,1,2)", true};
    case 6:
        return *rc::gen::inRange(0, 4) ? Expression{L"50%"} : Expression{L"SUM({1,2})", true};
    default:
        return {std::wstring(*rc::gen::arbitrary<bool>() ? L"$" : L"") +
                wchar_t(L'A' + *rc::gen::inRange(0, 26)) +
                (*rc::gen::arbitrary<bool>() ? L"$" : L"") +
                std::to_wstring(*rc::gen::inRange(1, 65537))};
    }
}

Expression AnyExpression(int depth) {
    if (depth == 0) return Leaf();
    Expression const a = AnyExpression(depth - 1);
    switch (*rc::gen::inRange(0, 4)) {
    case 0:
        return {L"-(" + a.text + L")", a.isLost};
    case 1:
        return {L"ROUND(" + a.text + L",2)", a.isLost};
    case 2:
        return {L"(" + a.text + L")%", a.isLost};
    default: {
        Expression const b = AnyExpression(depth - 1);
        wchar_t const op = L"+-*/^&|<>="[*rc::gen::inRange(0, 10)];
        return {L"(" + a.text + L")" + op + L"(" + b.text + L")", a.isLost || b.isLost};
    }
    }
}

} // namespace

RC_GTEST_FIXTURE_PROP(LegacyConvert, EveryFormulaComesBackUnlessItHoldsWhatIsLost, ()) {
    cells::host::Sheet sheet("C");
    sheet.DefineName("rate", {{0, 0}, {0, 0}});
    CCC4W15Convert const convertSheet(&sheet.Manager());
    Expression const expression = AnyExpression(*rc::gen::inRange(0, 5));
    Tree const tree(_ParseFormula(sheet.Manager().ctx(), expression.text.c_str(), 0, nullptr));
    RC_ASSERT(tree);
    CPoint const origin(*rc::gen::inRange(1, 257), *rc::gen::inRange(1, 65537));
    Old const old(convertSheet.ConvertTo15(tree.get(), &origin));
    RC_ASSERT((old == nullptr) == expression.isLost);
    if (!old) return;
    Bytes const bytes = Written([&](CArchive & ar) { Legacy::WriteFormula(ar, old.get()); });
    Old read;
    cells::test::Reading(bytes, [&](CArchive & ar) { read.reset(Legacy::ReadFormula(ar)); });
    RC_ASSERT(Written([&](CArchive & ar) { Legacy::WriteFormula(ar, read.get()); }) == bytes);
    Tree const back(convertSheet.ConvertTo95(read.get(), &origin));
    RC_ASSERT(Printed(back.get()) == Printed(tree.get()));
}

// Cells

namespace {

Legacy::CCC4W15_Cell & Fill(Legacy::CCC4W15_Cell & old, CCC4W15Convert const & convert,
                            CCCell & cell) {
    convert.ConvertTo15(&old, &cell);
    return old;
}

std::string NameOfPlace(Legacy::CCC4W15_Coords const & coords) {
    auto const & at = static_cast<Legacy::CCC4W15_CoordsRC const &>(coords);
    return std::string(1, char('A' + at.column - 1)) + std::to_string(at.row);
}

} // namespace

TEST_F(LegacyConvert, ACellHasItsPlaceItsValueItsFormulaAndItsDependents) {
    host.Enter("B2", L"=A1*2");
    host.Enter("C1", L"=B2+1");
    host.Enter("A3", L"=B2+2");
    host.Enter("A1", L"4");
    host.Idle();
    Legacy::CCC4W15_Cell old;
    Fill(old, convert, host.Make("B2"));
    EXPECT_EQ(NameOfPlace(*old.coords), "B2");
    EXPECT_EQ(CornerOf(static_cast<Legacy::CCC4W15_CoordsRC const &>(*old.coords)),
              (Corner{2, 2, 1, 1}));
    EXPECT_EQ(old.value.number, 8);
    EXPECT_EQ(Printed(ToTree(old.formula.get(), "B2").get()), "A1 * 2");
    EXPECT_EQ(old.editSources.First(), nullptr);
    std::vector<std::string> dependents;
    for (auto const * node = old.dependents.First(); node; node = node->next) {
        auto const & at = static_cast<Legacy::CCC4W15_CoordsRC const &>(*node->ref->coords);
        EXPECT_TRUE(at.rowAbsolute && at.columnAbsolute);
        dependents.push_back(NameOfPlace(at));
    }
    std::sort(dependents.begin(), dependents.end());
    EXPECT_EQ(dependents, (std::vector<std::string>{"A3", "C1"}));
}

TEST_F(LegacyConvert, ACellsBytes) {
    host.Enter("A1", L"text");
    host.Enter("B1", L"=A1");
    Legacy::CCC4W15_Cell old;
    Fill(old, convert, host.Make("A1"));
    EXPECT_EQ(BytesOf(old), (Bytes{1, 1, 0,   0,   0,   1,   0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, // A1
                                   1, 4, 't', 'e', 'x', 't', 0, 0, 0, 0, // value
                                   0,                                    // no formula
                                   1, 0, 0,   0,                         // B1
                                   1, 1, 1,   0,   0,   0,   2, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, //
                                   0, 0, 0,   0}));
    Fill(old, convert, host.Make("B1"));
    EXPECT_EQ(BytesOf(old),
              (Bytes{1, 1, 0,   0,   0,   2,   0,    0,    0, 1, 0, 0, 0, 1, 0, 0, 0, // B1
                     1, 4, 't', 'e', 'x', 't', 0,    0,    0, 0,                      // value
                     3, 3, 0,   0,   0,   0,   0,    0,    0, 0, 0, 0, 0, 0,          // reference
                     1, 1, 0,   0,   0,   0,   0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, //
                     0, 0, 0,   0,   0,   0,   0,    0}));
}

TEST_F(LegacyConvert, AnEditSourceGoesToTheSecondListWithoutAFormula) {
    host.Enter("A1", L"7");
    host.Enter("C3", L"!$A1");
    host.Idle();
    ASSERT_TRUE(host.Make("C3").IsEditSource(&host));
    Legacy::CCC4W15_Cell old;
    Fill(old, convert, host.Make("C3"));
    EXPECT_EQ(old.formula, nullptr);
    ASSERT_EQ(Legacy::GetRefListLen(old.editSources.First()), 1u);
    auto const & source =
        static_cast<Legacy::CCC4W15_CoordsRC const &>(*old.editSources.First()->ref->coords);
    EXPECT_EQ(CornerOf(source), (Corner{0xFFFE, 1, 0, 1}));

    BaseHost other;
    other.Enter("A1", L"7");
    CCRef * ref;
    CCC4W15Convert(&other).ConvertTo95(&other.Make("C3"), ref, &old);
    delete ref;
    EXPECT_EQ(other.EditText("C3"), "!$A1");
    other.Enter("C3", L"9");
    EXPECT_EQ(other.Text("A1"), "9");
}

TEST_F(LegacyConvert, ACellComesBackWithItsPlaceAndComputes) {
    host.Enter("A1", L"4");
    host.Enter("C3", L"=A1*$A$1");
    host.Idle();
    Legacy::CCC4W15_Cell old;
    Fill(old, convert, host.Make("C3"));
    old.value.number = 99; // stale

    BaseHost other;
    other.Enter("A1", L"5");
    CCRef * made;
    CCC4W15Convert(&other).ConvertTo95(&other.Make("C3"), made, &old);
    std::unique_ptr<CCRef> const ref(made);
    EXPECT_EQ(BaseHost::NameOf(ref.get()), "C3");
    EXPECT_EQ(other.EditText("C3"), "=A1 * $A$1");
    EXPECT_EQ(other.Make("C3").CCCell::GetValue().GetNumber(), 25);
    other.Enter("A1", L"6");
    other.Idle();
    EXPECT_EQ(other.Make("C3").CCCell::GetValue().GetNumber(), 36);
    EXPECT_TRUE(other.messages.empty());
}

TEST_F(LegacyConvert, AFormulaThatDoesNotPassLeavesItsValue) {
    host.Enter("A1", L"1");
    host.Enter("B1", L"=IF(A1,42,2)");
    Legacy::CCC4W15_Cell old;
    Fill(old, convert, host.Make("B1"));
    EXPECT_EQ(old.formula, nullptr);
    old.formula = Call("NOSUCH", {L"A1"});

    BaseHost other;
    CCRef * ref;
    CCC4W15Convert(&other).ConvertTo95(&other.Make("B1"), ref, &old);
    delete ref;
    EXPECT_FALSE(other.Make("B1").IsFormulaLink());
    EXPECT_EQ(other.Make("B1").CCCell::GetValue().GetNumber(), 42);
}

TEST_F(LegacyConvert, ACircularFormulaIsTakenWithoutAMessage) {
    Legacy::CCC4W15_Cell old;
    old.coords = std::make_unique<Legacy::CCC4W15_CoordsRC>(CoordsOf({1, 1, 1, 1}));
    old.formula = ToOld(L"A1+1", "A1");
    CCRef * ref;
    convert.ConvertTo95(&host.Make("A1"), ref, &old);
    delete ref;
    EXPECT_EQ(host.EditText("A1"), "=A1 + 1");
    EXPECT_EQ(host.Make("A1").CCCell::GetValue().GetError(), errCirc);
    EXPECT_TRUE(host.messages.empty());
}

TEST_F(LegacyConvert, CirclesAreTakenWithoutAMessage) {
    auto const take = [&](char const * name, bool asSource, Old formula) {
        CCRCRef const place = BaseHost::RefOf(name);
        Legacy::CCC4W15_Cell old;
        old.coords = std::make_unique<Legacy::CCC4W15_CoordsRC>(
            CoordsOf({place.row + 1, place.col + 1, 1, 1}));
        if (asSource)
            old.editSources.Add(static_cast<Legacy::CCC4W15_FormulaRef &>(*formula).ref.release());
        else
            old.formula = std::move(formula);
        CCRef * ref;
        convert.ConvertTo95(&host.Make(name), ref, &old);
        delete ref;
    };
    take("A1", true, ToOld(L"A1", "A1")); // a source of its own
    take("B1", false, ToOld(L"B2", "B1"));
    take("B2", false, ToOld(L"B1", "B2")); // a circle of two
    EXPECT_EQ(host.EditText("A1"), "!A1");
    EXPECT_EQ(host.EditText("B2"), "=B1");
    EXPECT_TRUE(host.messages.empty());
    EXPECT_TRUE(host.GetNotifyEnable());
}

TEST_F(LegacyConvert, ANullNameStaysNull) {
    CCNameRef const none;
    Legacy::CCC4W15_Coords * made;
    convert.ConvertTo15(made, &none, 0, nullptr);
    std::unique_ptr<Legacy::CCC4W15_Coords> const coords(made);
    EXPECT_EQ(static_cast<Legacy::CCC4W15_CoordsName const &>(*coords).name, std::nullopt);
    CCRef * back;
    uchar flags;
    convert.ConvertTo95(back, flags, coords.get(), nullptr);
    std::unique_ptr<CCRef> const owned(back);
    EXPECT_EQ(static_cast<CCNameRef const &>(*back).name(), nullptr);
}

TEST_F(LegacyConvert, ACellWithoutAPlaceTakesItsValueAndAbsoluteReferences) {
    Legacy::CCC4W15_Cell old;
    old.value.number = 3;
    CCRef * ref;
    convert.ConvertTo95(&host.Make("B2"), ref, &old);
    EXPECT_EQ(ref, nullptr);
    EXPECT_EQ(host.Make("B2").CCCell::GetValue().GetNumber(), 3);
}

TEST_F(LegacyConvert, TheListOfDependentsIsNotRead) {
    host.Enter("A1", L"4");
    host.Enter("B1", L"=A1");
    Legacy::CCC4W15_Cell old;
    Fill(old, convert, host.Make("A1"));
    ASSERT_NE(old.dependents.First(), nullptr);
    BaseHost other;
    CCRef * ref;
    CCC4W15Convert(&other).ConvertTo95(&other.Make("A1"), ref, &old);
    delete ref;
    EXPECT_FALSE(other.Make("A1").HasDependents());
}

TEST_F(LegacyConvert, OfSeveralEditSourcesTheFirstCounts) {
    Legacy::CCC4W15_Cell old;
    old.coords = std::make_unique<Legacy::CCC4W15_CoordsRC>(CoordsOf({9, 2, 1, 1}));
    for (int row : {3, 5}) {
        auto * const ref = new Legacy::CCC4W15_Ref;
        ref->coords = std::make_unique<Legacy::CCC4W15_CoordsRC>(CoordsOf({row, 1, 1, 1}));
        old.editSources.Add(ref);
    }
    CCRef * ref;
    convert.ConvertTo95(&host.Make("B9"), ref, &old);
    delete ref;
    EXPECT_EQ(host.EditText("B9"), "!$A$3");
}

TEST_F(LegacyConvert, ACellWithAnotherKindOfPlaceHasAbsoluteReferences) {
    struct NamedCell : CCCell {
        CCRef const * GetRef() const override { return &name; }
        bool IsEqual(CCItem const * item) const override { return item == this; }
        CCNameRef name{L"total"};
    } cell;
    cell.SetFormula(&host, Parsed(L"A1+1").get(), 1);
    Legacy::CCC4W15_Cell old;
    Fill(old, convert, cell);
    ASSERT_EQ(old.coords->GetType(), Legacy::kCoordsName);
    EXPECT_EQ(Printed(Tree(convert.ConvertTo95(old.formula.get(), nullptr)).get()), "$A$1 + 1");
    CCRef * ref;
    convert.ConvertTo95(&host.Make("C3"), ref, &old);
    std::unique_ptr<CCRef> const owned(ref);
    EXPECT_EQ(ref->GetType(), kRefName);
    EXPECT_EQ(host.EditText("C3"), "=$A$1 + 1");
}

TEST_F(LegacyConvert, DependentsReadFromAStreamAreKept) {
    host.Enter("B2", L"4");
    host.Enter("C1", L"=B2");
    cells::test::MapCell & cell = host.Make("B2");
    cells::test::Bytes const bytes =
        cells::test::Written([&](CArchive & ar) { cell.CCItem::Write(&host, ar); });
    cells::test::Reading(bytes, [&](CArchive & ar) { cell.CCItem::Read(&host, ar); });
    CCRCRef const place(0, 0);
    CCRef3D const elsewhere(2, 2, place.Copy()), run(1, 2, place.Copy()),
        nowhere(0, 0, place.Copy());
    for (CCRef const * ref : {&elsewhere, &run, &nowhere})
        ASSERT_TRUE(cell.RegisterDependent(&host, ref)); // which are no places of this sheet
    Legacy::CCC4W15_Cell old;
    Fill(old, convert, cell);
    ASSERT_EQ(Legacy::GetRefListLen(old.dependents.First()), 1u);
    EXPECT_EQ(NameOfPlace(*old.dependents.First()->ref->coords), "C1");
}

TEST_F(LegacyConvert, DependentsOnOtherSheetsAreLeftOut) {
    BaseHost other;
    CCRCRef const place(0, 0);
    CCRef3D const here(&host, &place), there(&other, &place);
    CCRemoteRef const remote(L"doc", L"A1");
    cells::test::MapCell & cell = host.Make("B2");
    for (CCRef const * ref : {static_cast<CCRef const *>(&here), static_cast<CCRef const *>(&there),
                              static_cast<CCRef const *>(&remote)})
        ASSERT_TRUE(cell.RegisterDependent(&host, ref));
    Legacy::CCC4W15_Cell old;
    Fill(old, convert, cell);
    ASSERT_EQ(Legacy::GetRefListLen(old.dependents.First()), 1u);
    EXPECT_EQ(NameOfPlace(*old.dependents.First()->ref->coords), "A1");
}

// Number formats

TEST_F(LegacyConvert, NumberFormatsHaveTheirWords) {
    auto const format = [](int type, auto... set) {
        CCNumberFormat made;
        made.Set(uchar(type));
        (set(made), ...);
        return made;
    };
    auto const decimals = [](int count) {
        return [count](CCNumberFormat & f) { f.SetPrecision(count); };
    };
    auto const flags = [](int commas, int bracket, int red) {
        return [=](CCNumberFormat & f) {
            f.SetCommas(commas);
            f.SetNegBr(bracket);
            f.SetNegRed(red);
        };
    };
    auto const time = [](int range, int seconds) {
        return [=](CCNumberFormat & f) {
            f.SetTimeRange(range);
            f.SetTimeSeconds(seconds);
        };
    };
    auto const date = [](wchar_t separator, int month, int year, int order) {
        return [=](CCNumberFormat & f) {
            f.SetDelimiter(separator);
            f.SetMonthType(month);
            f.SetYearType(year);
            f.SetMDOrder(order);
        };
    };
    struct Case {
        CCNumberFormat format;
        Words words;
    };
    Case const cases[] = {
        {format(C_NF_NUMBER, decimals(2), flags(1, 0, 1)), {0, 2, 1, 0, 1}},
        {format(C_NF_CURRENCY, decimals(3), flags(0, 1, 0)), {1, 3, 0, 1, 0}},
        {format(C_NF_TIME, time(1, 0)), {2, 0, 0}},
        {format(C_NF_TIME, time(0, 1)), {2, 1, 1}},
        {format(C_NF_DATE, date(L'-', 0, 1, 0)), {3, 0, 0, 1, 0}},
        {format(C_NF_DATE, date(L'/', 1, 0, 1)), {3, 1, 1, 0, 1}},
        {format(C_NF_DATE, date(L'.', 2, 2, 1)), {3, 2, 2, 2, 1}},
        {format(C_NF_DATE, date(L' ', 3, 2, 0)), {3, 3, 3, 2, 0}},
        {format(C_NF_PERCENT, decimals(1), flags(1, 1, 1)), {4, 1, 1, 1, 1}},
        {format(C_NF_FRACTION, decimals(5), flags(0, 1, 1)), {5, 5, 0, 1, 1}},
        {format(C_NF_SCIENTIFIC, decimals(4), flags(1, 0, 0)), {6, 4, 1, 0, 0}},
    };
    for (Case const & c : cases) {
        EXPECT_EQ(OldFormat(c.format).words, c.words) << "type " << c.words[0];
        EXPECT_TRUE(Through(c.format).IsEqual(host.lctx(), c.format)) << "type " << c.words[0];
    }
}

TEST_F(LegacyConvert, FormatsWithoutACounterpartShowAllDecimals) {
    CCNumberFormat custom;
    custom.setCustomFormat(CString(L"0.000"));
    std::vector<CCNumberFormat> formats = {custom};
    for (int type : {C_NF_GENERAL, C_NF_BOOL, C_NF_HEX, C_NF_OCT, C_NF_BIN})
        formats.emplace_back(type);
    for (CCNumberFormat const & format : formats) {
        EXPECT_EQ(OldFormat(format).words, (Words{0, 15})) << int(format.getType());
        CCNumberFormat const back = Through(format);
        EXPECT_EQ(back.GetType(), C_NF_NUMBER);
        EXPECT_EQ(back.GetPrecision(), kPrecisionAsNeeded);
        EXPECT_FALSE(back.isCustomFormat());
    }
}

TEST_F(LegacyConvert, OtherSeparatorsBecomeTheSlash) {
    CCNumberFormat date;
    date.Set(uchar(C_NF_DATE));
    date.SetDelimiter(L'x');
    EXPECT_EQ(OldFormat(date).words[1], 1);
    EXPECT_EQ(Through(date).GetDelimiter(), L'/');
    date.SetDelimiter(0); // the locale's, which is the slash here
    EXPECT_EQ(OldFormat(date).words[1], 1);
}

#if CVCELLS_WITH_ICU
TEST_F(LegacyConvert, TheSeparatorOfTheLocaleIsWrittenOut) {
    cells::host::Sheet german("de-DE");
    CCC4W15Convert const convertGerman(&german.Manager());
    CCNumberFormat date;
    date.Set(uchar(C_NF_DATE));
    Legacy::CCC4W15_NumberFormat old;
    convertGerman.ConvertTo15(old, date);
    EXPECT_EQ(old.words[1], 2);
}
#endif

TEST_F(LegacyConvert, WordsBeyondTheirFieldsAreCut) {
    Legacy::CCC4W15_NumberFormat old;
    old.words = {0, 0x12F3, 9, 0, 0xFFFF};
    CCNumberFormat const number = Format(old);
    EXPECT_EQ(number.GetPrecision(), 3);
    EXPECT_TRUE(number.getCommas() && !number.getNegBr() && number.getNegRed());
    old.words = {3, 99, 0xFFFE, 0xFFFD, 2};
    CCNumberFormat const date = Format(old);
    EXPECT_EQ(date.GetDelimiter(), L'/');
    EXPECT_EQ(date.GetMonthType(), 2);
    EXPECT_EQ(date.GetYearType(), 1);
    EXPECT_EQ(date.GetMDOrder(), 1);
    old.words = {7, 1, 1, 1, 1};
    EXPECT_EQ(Format(old).GetType(), C_NF_GENERAL);
}

TEST_F(LegacyConvert, LeadingAndTrailingStringsGoAsTexts) {
    int const index = AddLTString(L"kg\u20AC");
    for (int mode : {1, 2}) {
        CCNumberFormat format;
        format.Set(uchar(C_NF_NUMBER));
        format.SetPrecision(2);
        format.SetLTString(mode, index);
        auto const old = OldFormat(format);
        EXPECT_EQ(BytesOf(old), (Bytes{0,           0, 2,   0,   0,    0, 0, 0, 0, 0,
                                       uchar(mode), 0, 'k', 'g', 0x80, 0, 0, 0, 0, 0}));
        EXPECT_TRUE(Format(old).IsEqual(host.lctx(), format));
        EXPECT_EQ(Format(old).GetLTStringMode(), mode);
    }
}

TEST_F(LegacyConvert, AStringOfMoreThanEightBytesIsCut) {
    CCNumberFormat format;
    format.Set(uchar(C_NF_NUMBER));
    format.SetLTString(1, AddLTString(L"kilograms"));
    CCNumberFormat const back = Through(format);
    EXPECT_EQ(Utf8(GetLTStringAt(back.GetLTString()).GetString()), "kilogram");
}

TEST_F(LegacyConvert, ANewStringJoinsTheListUntilItIsFull) {
    InitLTStrings();
    Legacy::CCC4W15_NumberFormat old;
    Legacy::SCC4W15_NF_Number fields;
    fields.stringKind = 2;
    for (int i = 0; i < 300; ++i) {
        fields.text = "s" + std::to_string(i);
        old.Set(fields);
        EXPECT_EQ(Format(old).GetLTString(), i < 256 ? i : -1) << i;
    }
    EXPECT_EQ(GetNumberLTStrings(), 256);
    fields.text = "s7";
    old.Set(fields);
    EXPECT_EQ(Format(old).GetLTString(), 7);
    fields.text.clear();
    old.Set(fields);
    EXPECT_EQ(Format(old).GetLTStringMode(), 0); // a kind without a text is none
    InitLTStrings();
}

RC_GTEST_FIXTURE_PROP(LegacyConvert, EveryFormatThatFitsComesBackEqual, ()) {
    int const type = *rc::gen::inRange(int(C_NF_NUMBER), int(C_NF_DATE) + 1);
    CCNumberFormat format;
    format.Set(uchar(type));
    if (type == C_NF_DATE) {
        format.SetDelimiter(*rc::gen::elementOf(std::vector<wchar_t>{L'-', L'/', L'.', L' '}));
        format.SetMonthType(*rc::gen::inRange(0, 4));
        format.SetYearType(*rc::gen::inRange(0, 4));
        format.SetMDOrder(*rc::gen::inRange(0, 2));
    } else if (type == C_NF_TIME) {
        format.SetTimeRange(*rc::gen::inRange(0, 2));
        format.SetTimeSeconds(*rc::gen::inRange(0, 2));
    } else {
        format.SetPrecision(*rc::gen::inRange(0, 16));
        format.SetCommas(*rc::gen::inRange(0, 2));
        format.SetNegBr(*rc::gen::inRange(0, 2));
        format.SetNegRed(*rc::gen::inRange(0, 2));
    }
    RC_ASSERT(Through(format).IsEqual(host.lctx(), format));
}
