// The bytes of the older file version, against literal arrays.
#include "legacy/CCC4W15Exchange.h"
#include "platform/Exceptions.h"
#include "support/Bytes.h"

#include <gtest/gtest.h>
#include <string>

using cells::test::Bytes;
using cells::test::Join;
using cells::test::Reading;
using cells::test::U32;
using cells::test::Written;
using Legacy = CCC4W15Exchange;

namespace {

Bytes const kOne = {0, 0, 0, 0, 0, 0, 0xF0, 0x3F};  // 1.0
Bytes const kZero = {0, 0, 0, 0, 0, 0, 0, 0};       // 0.0
Bytes const kHalf = {0, 0, 0, 0, 0, 0, 0xE0, 0x3F}; // 0.5

// The value that stands in calls and references: type 3, 0.0, word 0.
Bytes const kNewValue = Join(3, kZero, U32(0));

Bytes Narrow(std::string const & text) {
    Bytes bytes = {uchar(text.size())};
    bytes.insert(bytes.end(), text.begin(), text.end());
    return bytes;
}

Bytes Text(Legacy::String16 const & text) {
    return Written([&](CArchive & ar) { Legacy::WriteString16(ar, text); });
}

// What is left after a record tells how many bytes it took.
template <typename Read>
std::size_t LeftBehind(Bytes const & bytes, Read && read) {
    std::size_t left = 0;
    Reading(bytes, [&](CArchive & ar) {
        read(ar);
        uchar byte;
        while (ar.Read(&byte, 1)) ++left;
    });
    return left;
}

template <typename Record>
Bytes BytesOf(Record const & record) {
    return Written([&](CArchive & ar) { record.Write(ar); });
}

// Reads a record that takes all the bytes.
template <typename Record>
void ReadInto(Record & record, Bytes const & bytes) {
    EXPECT_EQ(LeftBehind(bytes, [&](CArchive & ar) { record.Read(ar); }), 0u);
}

template <typename Record>
void ExpectSameAgain(Bytes const & bytes) {
    Record record;
    ReadInto(record, bytes);
    EXPECT_EQ(BytesOf(record), bytes);
}

using Coords = std::unique_ptr<Legacy::CCC4W15_Coords>;
using Formula = std::unique_ptr<Legacy::CCC4W15_Formula>;
using Ref = std::unique_ptr<Legacy::CCC4W15_Ref>;

Coords ReadCoords(Bytes const & bytes) {
    Coords coords;
    EXPECT_EQ(LeftBehind(bytes, [&](CArchive & ar) { coords.reset(Legacy::ReadCoords(ar)); }), 0u);
    return coords;
}
Formula ReadFormula(Bytes const & bytes) {
    Formula formula;
    EXPECT_EQ(LeftBehind(bytes, [&](CArchive & ar) { formula.reset(Legacy::ReadFormula(ar)); }),
              0u);
    return formula;
}

Formula Number(double number) {
    auto formula = std::make_unique<Legacy::CCC4W15_FormulaConst>();
    formula->value.number = number;
    return formula;
}

CArchiveException::Cause FailureOf(Bytes const & bytes) {
    try {
        Reading(bytes, [](CArchive & ar) { Legacy::CCC4W15_Cell().Read(ar); });
    } catch (CArchiveException const & failure) {
        return failure.m_cause;
    }
    return CArchiveException::none;
}

} // namespace

// Texts

TEST(LegacyText, ANullTextIsOneByte255) { EXPECT_EQ(Text({}), Bytes{255}); }

TEST(LegacyText, AnEmptyTextIsOneByte0) { EXPECT_EQ(Text(""), Bytes{0}); }

TEST(LegacyText, HasItsLengthInAByteAndNoEnd) { EXPECT_EQ(Text("AB"), (Bytes{2, 'A', 'B'})); }

TEST(LegacyText, ReadsBackAsItWas) {
    for (std::size_t length : {0, 1, 254}) {
        std::string const text(length, 'x');
        Reading(Text(text), [&](CArchive & ar) { EXPECT_EQ(Legacy::ReadString16(ar), text); });
    }
    Reading(Text({}), [](CArchive & ar) { EXPECT_EQ(Legacy::ReadString16(ar), std::nullopt); });
}

TEST(LegacyText, Of300BytesComesOutAsItsFirst44) {
    std::string text;
    for (int i = 0; i < 300; ++i) text += char('a' + i % 26);
    Bytes const bytes = Text(text);
    EXPECT_EQ(bytes, Narrow(text.substr(0, 44)));
    Reading(bytes, [&](CArchive & ar) { EXPECT_EQ(Legacy::ReadString16(ar), text.substr(0, 44)); });
}

TEST(LegacyText, Of256BytesComesOutEmpty) { EXPECT_EQ(Text(std::string(256, 'x')), Bytes{0}); }

TEST(LegacyText, Of255BytesReadsAsNullAndLeavesTheBytesToWhatFollows) {
    Bytes const bytes = Text(std::string(255, 'x'));
    EXPECT_EQ(bytes.size(), 256u);
    EXPECT_EQ(
        LeftBehind(bytes, [](CArchive & ar) { EXPECT_EQ(Legacy::ReadString16(ar), std::nullopt); }),
        255u);
}

TEST(LegacyText, ThatEndsTooEarlyThrows) {
    Bytes const bytes = {3, 'a', 'b'};
    EXPECT_THROW(Reading(bytes, [](CArchive & ar) { Legacy::ReadString16(ar); }),
                 CArchiveException);
}

// Values

TEST(LegacyValue, ANewOneIsTheNumber0) {
    Legacy::CCC4W15_CellValue const value;
    EXPECT_EQ(value.type, 3);
    EXPECT_EQ(value.number, 0.0);
    EXPECT_EQ(BytesOf(value), kNewValue);
}

TEST(LegacyValue, EachTypeReadsAndWritesTheSameBytes) {
    ExpectSameAgain<Legacy::CCC4W15_CellValue>(Join(0, 6, U32(0)));
    ExpectSameAgain<Legacy::CCC4W15_CellValue>(Join(1, Narrow("text"), U32(0)));
    ExpectSameAgain<Legacy::CCC4W15_CellValue>(Join(1, 255, U32(0)));
    for (int type = 2; type <= 255; ++type)
        ExpectSameAgain<Legacy::CCC4W15_CellValue>(Join(type, kHalf, U32(2)));
}

TEST(LegacyValue, ReadsItsFields) {
    Legacy::CCC4W15_CellValue value;
    ReadInto(value, Join(0, 0xFE, U32(7)));
    EXPECT_EQ(value.error, 0xFE);
    EXPECT_EQ(value.format, 7);
    ReadInto(value, Join(1, Narrow("ab"), U32(0)));
    EXPECT_EQ(value.text, "ab");
    EXPECT_EQ(value.error, 0); // Read frees what was there
    ReadInto(value, Join(5, kHalf, U32(2)));
    EXPECT_EQ(value.type, 5);
    EXPECT_EQ(value.number, 0.5);
    EXPECT_EQ(value.text, std::nullopt);
}

TEST(LegacyValue, TheFormatWordIsCutTo16Bits) {
    Legacy::CCC4W15_CellValue value;
    ReadInto(value, Join(2, kZero, U32(0x12340002)));
    EXPECT_EQ(value.format, 2);
    EXPECT_EQ(BytesOf(value), Join(2, kZero, U32(2)));
}

TEST(LegacyValue, AnErrorIsWrittenInOneByte) {
    Legacy::CCC4W15_CellValue value;
    value.type = 0;
    value.error = 0x0106;
    EXPECT_EQ(BytesOf(value), Join(0, 6, U32(0)));
}

// Coordinates

TEST(LegacyCoords, ANewCellIsRow1Column1AndRelative) {
    Legacy::CCC4W15_CoordsRC const coords;
    EXPECT_EQ(BytesOf(coords), Join(U32(1), U32(1), U32(0), U32(0)));
}

TEST(LegacyCoords, NullIsAByte0) {
    EXPECT_EQ(Written([](CArchive & ar) { Legacy::WriteCoords(ar, nullptr); }), Bytes{0});
    EXPECT_EQ(ReadCoords({0}), nullptr);
}

TEST(LegacyCoords, EachTypeReadsAndWritesTheSameBytes) {
    Bytes const corner = Join(U32(3), U32(2), U32(1), U32(0));
    Bytes const other = Join(U32(0xFFFF), U32(4), U32(0), U32(1));
    for (Bytes const & bytes :
         {Join(1, corner), Join(2, corner, other), Join(3, Narrow("rate")), Join(3, 255)}) {
        Coords const coords = ReadCoords(bytes);
        ASSERT_NE(coords, nullptr);
        EXPECT_EQ(coords->GetType(), bytes[0]);
        EXPECT_EQ(Written([&](CArchive & ar) { Legacy::WriteCoords(ar, coords.get()); }), bytes);
    }
}

TEST(LegacyCoords, TheRowComesBeforeTheColumn) {
    Legacy::CCC4W15_CoordsRC coords;
    ReadInto(coords, Join(U32(3), U32(2), U32(1), U32(0)));
    EXPECT_EQ(coords.row, 3);
    EXPECT_EQ(coords.column, 2);
    EXPECT_EQ(coords.rowAbsolute, 1);
    EXPECT_EQ(coords.columnAbsolute, 0);
}

TEST(LegacyCoords, NumbersAreCutTo16Bits) {
    Legacy::CCC4W15_CoordsRC coords;
    ReadInto(coords, Join(U32(0xABCD0003), U32(0xFFFFFFFF), U32(0x10000), U32(0)));
    EXPECT_EQ(coords.row, 3);
    EXPECT_EQ(coords.column, 0xFFFF);
    EXPECT_EQ(coords.rowAbsolute, 0);
}

TEST(LegacyCoords, AnUnknownTypeIsNullAndLeavesTheStreamBehindTheNumber) {
    Bytes const bytes = {9, 1, 2, 3};
    EXPECT_EQ(LeftBehind(bytes, [](CArchive & ar) { EXPECT_EQ(Legacy::ReadCoords(ar), nullptr); }),
              3u);
}

// Queries

namespace {

Bytes const kFile = Join(7, Narrow("dir"), Narrow("base"));
Bytes const kCondition =
    Join(Narrow("name"), 2, 2, 3, kOne, U32(0), U32(5), 1, Narrow("x"), U32(0));
Bytes const kQuery = Join(4, kFile, U32(2), Narrow("a"), Narrow("b"), U32(1), kCondition, U32(2), 1,
                          Narrow("a"), 0, Narrow("b"));

} // namespace

TEST(LegacyQuery, OfAnOldFileIsReadAsItIs) {
    Coords const coords = ReadCoords(kQuery);
    ASSERT_NE(coords, nullptr);
    auto const & query = static_cast<Legacy::CCC4W15_CoordsQuery const &>(*coords);
    EXPECT_EQ(query.file.kind, 7);
    EXPECT_EQ(query.file.firstName, "dir");
    EXPECT_EQ(query.file.secondName, "base");
    EXPECT_EQ(query.fields, (std::vector<Legacy::String16>{"a", "b"}));
    ASSERT_EQ(query.conditions.size(), 1u);
    EXPECT_EQ(query.conditions[0].field, "name");
    EXPECT_EQ(query.conditions[0].comparison, 2);
    ASSERT_NE(query.conditions[0].formula, nullptr);
    EXPECT_EQ(query.conditions[0].formula->GetType(), Legacy::kFormulaConst);
    EXPECT_EQ(query.conditions[0].flags, 5);
    EXPECT_EQ(query.conditions[0].value.text, "x");
    ASSERT_EQ(query.sortKeys.size(), 2u);
    EXPECT_EQ(query.sortKeys[0].order, 1);
    EXPECT_EQ(query.sortKeys[1].field, "b");
}

TEST(LegacyQuery, EachListIsWrittenOneEntryShortOfItsCount) {
    Coords const coords = ReadCoords(kQuery);
    EXPECT_EQ(BytesOf(*coords), Join(kFile, U32(2), Narrow("a"), U32(1), U32(2), 1, Narrow("a")));
}

TEST(LegacyQuery, OfTwoFieldNamesHoldsCount2AndOneName) {
    Legacy::CCC4W15_CoordsQuery query;
    query.fields = {"one", "two"};
    EXPECT_EQ(BytesOf(query), Join(0, 255, 255, U32(2), Narrow("one"), U32(0), U32(0)));
}

TEST(LegacyQuery, WithoutListsWritesCounts0AndReadsBack) {
    Bytes const bytes = Join(0, 255, 255, U32(0), U32(0), U32(0));
    EXPECT_EQ(BytesOf(Legacy::CCC4W15_CoordsQuery()), bytes);
    ExpectSameAgain<Legacy::CCC4W15_CoordsQuery>(bytes);
}

TEST(LegacyQuery, PartsReadAndWriteTheSameBytes) {
    ExpectSameAgain<Legacy::CCC4W15_FileRef>(kFile);
    ExpectSameAgain<Legacy::CCC4W15_QueryCondition>(kCondition);
    ExpectSameAgain<Legacy::CCC4W15_QuerySortKey>(Join(1, Narrow("a")));
}

// References

TEST(LegacyRef, EachTypeReadsAndWritesTheSameBytes) {
    Bytes const place = Join(1, U32(3), U32(2), U32(1), U32(1));
    for (Bytes const & bytes : {Join(1, place), Join(1, 0), Join(2, kFile, place)}) {
        Ref ref;
        Reading(bytes, [&](CArchive & ar) { ref.reset(Legacy::ReadRef(ar)); });
        ASSERT_NE(ref, nullptr);
        EXPECT_EQ(ref->GetType(), bytes[0]);
        EXPECT_EQ(Written([&](CArchive & ar) { Legacy::WriteRef(ar, ref.get()); }), bytes);
    }
}

TEST(LegacyRef, NullAndUnknownTypes) {
    EXPECT_EQ(Written([](CArchive & ar) { Legacy::WriteRef(ar, nullptr); }), Bytes{0});
    Reading({0, 3}, [](CArchive & ar) {
        EXPECT_EQ(Legacy::ReadRef(ar), nullptr);
        EXPECT_EQ(Legacy::ReadRef(ar), nullptr);
    });
}

TEST(LegacyRef, AListIsItsLengthAndItsReferences) {
    Bytes const place = Join(1, U32(3), U32(2), U32(1), U32(1));
    Bytes const bytes = Join(U32(3), 1, place, 0, 1, 0);
    Legacy::SCC4W15_RefList * list = nullptr;
    Reading(bytes, [&](CArchive & ar) { list = Legacy::ReadRefList(ar); });
    EXPECT_EQ(Legacy::GetRefListLen(list), 3u);
    EXPECT_EQ(Legacy::GetRefListLen(nullptr), 0u);
    EXPECT_NE(list->ref, nullptr);
    EXPECT_EQ(list->next->ref, nullptr);
    EXPECT_EQ(Written([&](CArchive & ar) { Legacy::WriteRefList(list, ar); }), bytes);
    Legacy::FreeRefList(list);
    EXPECT_EQ(Written([](CArchive & ar) { Legacy::WriteRefList(nullptr, ar); }), U32(0));
}

// Formulas

TEST(LegacyFormula, NullIsAByte0) {
    EXPECT_EQ(Written([](CArchive & ar) { Legacy::WriteFormula(ar, nullptr); }), Bytes{0});
    EXPECT_EQ(ReadFormula({0}), nullptr);
}

TEST(LegacyFormula, AnUnknownTypeIsNull) { EXPECT_EQ(ReadFormula({4}), nullptr); }

TEST(LegacyFormula, EachTypeReadsAndWritesTheSameBytes) {
    Bytes const place = Join(1, 1, U32(3), U32(2), U32(1), U32(1));
    Bytes const constant = Join(2, 2, kOne, U32(2));
    Bytes const reference = Join(3, kNewValue, place);
    Bytes const call = Join(1, kNewValue, Narrow("SUM"), U32(2), constant, reference);
    Bytes const nested = Join(1, kNewValue, Narrow("-"), U32(2), call, 0);
    for (Bytes const & bytes : {constant, reference, call, nested}) {
        Formula const formula = ReadFormula(bytes);
        ASSERT_NE(formula, nullptr);
        EXPECT_EQ(Written([&](CArchive & ar) { Legacy::WriteFormula(ar, formula.get()); }), bytes);
    }
}

TEST(LegacyFormula, DropsTheValueOfACallAndOfAReference) {
    Bytes const old = Join(1, Narrow("old"), U32(9));
    Formula const call = ReadFormula(Join(1, old, Narrow("PI"), U32(0)));
    EXPECT_EQ(BytesOf(*call), Join(kNewValue, Narrow("PI"), U32(0)));
    Formula const reference = ReadFormula(Join(3, old, 0));
    EXPECT_EQ(BytesOf(*reference), Join(kNewValue, 0));
}

TEST(LegacyFormula, CountsItsArguments) {
    Legacy::CCC4W15_FormulaOp call;
    EXPECT_EQ(call.GetNumArgs(), 0u);
    call.args.Add(Number(1).release());
    call.args.Add(Number(2).release());
    EXPECT_EQ(call.GetNumArgs(), 2u);
    call.Release();
    EXPECT_EQ(call.GetNumArgs(), 0u);
}

namespace {

// Calls of one argument each, around a number.
Bytes NestedCalls(int levels) {
    Bytes bytes;
    Bytes const call = Join(1, kNewValue, Narrow("+"), U32(1));
    for (int i = 1; i < levels; ++i) bytes.insert(bytes.end(), call.begin(), call.end());
    return Join(bytes, 2, kNewValue);
}

// References to queries whose conditions hold the next one.
Bytes NestedQueries(int levels) {
    Bytes bytes, end;
    Bytes const before = Join(3, kNewValue, 1, 4, 0, 255, 255, U32(0), U32(1), 255, 0);
    Bytes const behind = Join(U32(0), kNewValue, U32(0));
    for (int i = 1; i < levels; ++i) {
        bytes.insert(bytes.end(), before.begin(), before.end());
        end.insert(end.end(), behind.begin(), behind.end());
    }
    return Join(bytes, 2, kNewValue, end);
}

// A cell around a formula.
Bytes CellWith(Bytes const & formula) { return Join(0, kNewValue, formula, U32(0), U32(0)); }

} // namespace

TEST(LegacyFormula, NestsAsDeepAsFormulasMay) {
    EXPECT_EQ(FailureOf(CellWith(NestedCalls(2048))), CArchiveException::none);
    EXPECT_EQ(FailureOf(CellWith(NestedCalls(2049))), CArchiveException::badSchema);
    EXPECT_EQ(FailureOf(CellWith(NestedCalls(100000))), CArchiveException::badSchema);
}

TEST(LegacyFormula, NestsAsDeepThroughTheConditionsOfQueries) {
    EXPECT_EQ(FailureOf(CellWith(NestedQueries(2048))), CArchiveException::none);
    EXPECT_EQ(FailureOf(CellWith(NestedQueries(2049))), CArchiveException::badSchema);
    EXPECT_EQ(FailureOf(CellWith(NestedQueries(100000))), CArchiveException::badSchema);
}

TEST(LegacyFormula, CountsBeyondTheStreamEndWithIt) {
    Bytes const huge = U32(0xFFFFFFFF);
    EXPECT_EQ(FailureOf(Join(0, kNewValue, 1, kNewValue, Narrow("SUM"), huge, 0, 0)),
              CArchiveException::endOfFile);
    EXPECT_EQ(FailureOf(Join(0, kNewValue, 0, huge, 0, 0)), CArchiveException::endOfFile);
    EXPECT_EQ(FailureOf(Join(4, kFile, huge, 0, 0)), CArchiveException::endOfFile);
    EXPECT_EQ(FailureOf(Join(4, kFile, U32(0), huge, kCondition)), CArchiveException::endOfFile);
    EXPECT_EQ(FailureOf(Join(4, kFile, U32(0), U32(0), huge, 1, 0)), CArchiveException::endOfFile);
}

// Cells

namespace {

Bytes const kAt = Join(1, U32(3), U32(2), U32(1), U32(1));
Bytes const kCell = Join(kAt, 2, kHalf, U32(1), 1, kNewValue, Narrow("+"), U32(1), 2, 3, kOne,
                         U32(0), U32(1), 1, kAt, U32(1), 1, 3, Narrow("n"));

} // namespace

TEST(LegacyCell, ReadsAndWritesTheSameBytes) { ExpectSameAgain<Legacy::CCC4W15_Cell>(kCell); }

TEST(LegacyCell, HoldsItsFieldsInTheOrderOfTheStream) {
    Legacy::CCC4W15_Cell cell;
    ReadInto(cell, kCell);
    ASSERT_NE(cell.coords, nullptr);
    EXPECT_EQ(cell.coords->GetType(), Legacy::kCoordsRC);
    EXPECT_EQ(cell.value.number, 0.5);
    ASSERT_NE(cell.formula, nullptr);
    EXPECT_EQ(static_cast<Legacy::CCC4W15_FormulaOp const &>(*cell.formula).name, "+");
    EXPECT_EQ(Legacy::GetRefListLen(cell.dependents.First()), 1u);
    ASSERT_NE(cell.editSources.First(), nullptr);
    EXPECT_EQ(cell.editSources.First()->ref->coords->GetType(), Legacy::kCoordsName);
}

TEST(LegacyCell, WithoutFormulaHasAByte0InItsPlace) {
    EXPECT_EQ(BytesOf(Legacy::CCC4W15_Cell()), Join(0, kNewValue, 0, U32(0), U32(0)));
}

TEST(LegacyCell, ReadReplacesWhatWasThere) {
    Legacy::CCC4W15_Cell cell;
    ReadInto(cell, kCell);
    Bytes const empty = Join(0, kNewValue, 0, U32(0), U32(0));
    ReadInto(cell, empty);
    EXPECT_EQ(BytesOf(cell), empty);
    ReadInto(cell, kCell);
    cell.Release();
    EXPECT_EQ(BytesOf(cell), empty);
}

TEST(LegacyCell, EveryPrefixEndsTooEarly) {
    for (std::size_t length = 0; length < kCell.size(); ++length)
        EXPECT_EQ(FailureOf(Bytes(kCell.begin(), kCell.begin() + long(length))),
                  CArchiveException::endOfFile)
            << length;
}

// Release and Read on objects that hold something

namespace {

// What Release leaves is a new object; a second Read leaves nothing of the first.
template <typename Record>
void ExpectFreed(Bytes const & bytes) {
    Record record, once;
    ReadInto(once, bytes);
    for (int i = 0; i < 2; ++i) ReadInto(record, bytes);
    EXPECT_EQ(BytesOf(record), BytesOf(once));
    record.Release();
    EXPECT_EQ(BytesOf(record), BytesOf(Record()));
}

} // namespace

TEST(LegacyRelease, FreesWhatAnObjectOwnsAndReadDoesSoFirst) {
    Bytes const place = Join(1, U32(3), U32(2), U32(1), U32(1));
    ExpectFreed<Legacy::CCC4W15_CellValue>(Join(1, Narrow("text"), U32(2)));
    ExpectFreed<Legacy::CCC4W15_CoordsName>(Narrow("rate"));
    ExpectFreed<Legacy::CCC4W15_CoordsQuery>(Bytes(kQuery.begin() + 1, kQuery.end()));
    ExpectFreed<Legacy::CCC4W15_FileRef>(kFile);
    ExpectFreed<Legacy::CCC4W15_QueryCondition>(kCondition);
    ExpectFreed<Legacy::CCC4W15_QuerySortKey>(Join(1, Narrow("a")));
    ExpectFreed<Legacy::CCC4W15_Ref>(place);
    ExpectFreed<Legacy::CCC4W15_RemoteRef>(Join(kFile, place));
    ExpectFreed<Legacy::CCC4W15_FormulaOp>(
        Join(kNewValue, Narrow("+"), U32(2), 2, kNewValue, 2, kNewValue));
    ExpectFreed<Legacy::CCC4W15_FormulaConst>(Join(1, Narrow("text"), U32(0)));
    ExpectFreed<Legacy::CCC4W15_FormulaRef>(Join(kNewValue, 1, place));
    ExpectFreed<Legacy::CCC4W15_Cell>(kCell);
    ExpectFreed<Legacy::CCC4W15_NumberFormat>(Bytes(20, 7));
}

// Number formats

TEST(LegacyNumberFormat, IsABlockOf20BytesThatIsKeptAsItIs) {
    Bytes bytes;
    for (int i = 0; i < 20; ++i) bytes.push_back(uchar(0xF0 + i));
    ExpectSameAgain<Legacy::CCC4W15_NumberFormat>(bytes);
    bytes.pop_back();
    Legacy::CCC4W15_NumberFormat format;
    EXPECT_THROW(Reading(bytes, [&](CArchive & ar) { format.Read(ar); }), CArchiveException);
}

TEST(LegacyNumberFormat, ANumberFillsTheBlockWithItsText) {
    Legacy::SCC4W15_NF_Number number;
    number.decimals = 2;
    number.commas = number.red = 1;
    number.stringKind = 2;
    number.text = "pieces";
    Legacy::CCC4W15_NumberFormat format;
    format.Set(number);
    EXPECT_EQ(BytesOf(format),
              (Bytes{0, 0, 2, 0, 1, 0, 0, 0, 1, 0, 2, 0, 'p', 'i', 'e', 'c', 'e', 's', 0, 0}));
    Legacy::SCC4W15_NF_Number back;
    format.Get(back);
    EXPECT_EQ(back.text, "pieces");
    EXPECT_EQ(back.stringKind, 2);
}

TEST(LegacyNumberFormat, ATextOfEightBytesHasNoEnd) {
    Legacy::SCC4W15_NF_Number number, back;
    number.text = "12345678 and more";
    Legacy::CCC4W15_NumberFormat format;
    format.Set(number);
    format.Get(back);
    EXPECT_EQ(back.text, "12345678");
}

TEST(LegacyNumberFormat, WordsWithoutAMeaningAre0) {
    Legacy::CCC4W15_NumberFormat format;
    format.words.fill(0xFFFF);
    format.Set(Legacy::SCC4W15_NF_Date{3, 2, 1, 1});
    EXPECT_EQ(BytesOf(format), (Bytes{3, 0, 3, 0, 2, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    format.Set(Legacy::SCC4W15_NF_Time{1, 0});
    EXPECT_EQ(BytesOf(format), (Bytes{2, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}
