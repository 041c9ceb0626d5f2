// The bytes of values, references, functions and formulas, written out by hand.
#include "formula/CCConstFormula.h"
#include "formula/CCDocumentRef.h"
#include "formula/CCNameRef.h"
#include "formula/CCOpFormula.h"
#include "formula/CCRefList.h"
#include "formula/CCRegionRef.h"
#include "formula/CCRemoteRef.h"
#include "formula/FunctionRegistry.h"
#include "formula/Parser.h"
#include "platform/Arrays.h"
#include "platform/Exceptions.h"
#include "support/BaseHost.h"
#include "support/Bytes.h"
#include "values/CCCellValue.h"
#include "values/CCDoubleArray.h"

#include <gtest/gtest.h>

using namespace cells::test;

namespace {

// What a number format without anything set writes: type, options, data, mask, flag, empty text.
// The mask says that type, commas, brackets, red and string mode are set.
Bytes FormatBytes(int type) { return Join(type, 0, 0, 0, 0, 0x3D, 0, 0, 0xFF, 0xFE, 0xFF, 0); }

Bytes ValueBytes(CCCellValue const & value) {
    return Written([&](CArchive & ar) { value.Write(nullptr, ar); });
}

Bytes RefBytes(CCRef const * ref) {
    return Written([&](CArchive & ar) { WriteRef(nullptr, ar, ref); });
}

Bytes FormulaBytes(BaseHost & host, wchar_t const * text) {
    std::unique_ptr<CCFormula> const tree(_ParseFormula(&host, text, 0, nullptr));
    return Written([&](CArchive & ar) { WriteFormula(&host, ar, tree.get()); });
}

std::string Printed(BaseHost & host, CCFormula const & tree) {
    std::wostringstream stream;
    tree.Print(&host, stream, 0);
    return Utf8(stream.str());
}

} // namespace

TEST(FunctionRecord, HoldsKindAndEnglishName) {
    CCFunc const * const sum = cells::internal::FindEnglishFunction(L"SUM", cells::kFunction);
    EXPECT_EQ(Written([&](CArchive & ar) { WriteFunc(nullptr, ar, sum); }), Join(8, U32(4), "SUM"));
    Bytes const none = Written([](CArchive & ar) { WriteFunc(nullptr, ar, nullptr); });
    EXPECT_EQ(none, Join(0, U32(0)));
    Reading(none, [](CArchive & ar) { EXPECT_EQ(ReadFunc(nullptr, ar), nullptr); });
}

TEST(ValueRecord, HoldsTypeAndPayload) {
    CCCellValue value;
    EXPECT_EQ(ValueBytes(value), Bytes{0});
    value.Set(errDiv0);
    EXPECT_EQ(ValueBytes(value), (Bytes{1, 2, 0, 0, 0}));
    value.Set(L"ab");
    EXPECT_EQ(ValueBytes(value), Join(2, U32(3), "ab"));
    value.Set(1.5, uchar(C_NF_GENERAL));
    EXPECT_EQ(ValueBytes(value), Join(3, Bytes{0, 0, 0, 0, 0, 0, 0xF8, 0x3F}, FormatBytes(0)));
    CCRCRef const a1(0, 0);
    value.Set(&a1);
    EXPECT_EQ(ValueBytes(value), Bytes{4});
}

TEST(ValueRecord, NullAndEmptyTextDiffer) {
    CCCellValue value;
    value.Set(L"");
    EXPECT_EQ(ValueBytes(value), Join(2, U32(1)));
    value.Set(static_cast<wchar_t const *>(nullptr));
    EXPECT_EQ(ValueBytes(value), Join(2, U32(0)));
}

TEST(ValueRecord, TextsAreCutAt4096Units) {
    CCCellValue value, read;
    value.Set(std::wstring(5000, L'x').c_str());
    Bytes const bytes = ValueBytes(value);
    EXPECT_EQ(bytes.size(), 1u + 4 + 2 * 4096);
    EXPECT_EQ(Bytes(bytes.begin() + 1, bytes.begin() + 5), U32(4097));
    Reading(bytes, [&](CArchive & ar) { read.Read(nullptr, ar); });
    EXPECT_EQ(std::wstring(read.GetText()), std::wstring(4096, L'x'));
}

TEST(ValueRecord, AReferenceReadsBackAsANullOne) {
    CCCellValue value;
    value.Set(5.0);
    Reading({4}, [&](CArchive & ar) { value.Read(nullptr, ar); });
    EXPECT_TRUE(value.IsRef());
    EXPECT_EQ(value.GetRef(), nullptr);
}

TEST(ValueRecord, ReadsBackWithItsFormat) {
    CCCellValue value, read;
    value.Set(0.125, uchar(C_NF_PERCENT));
    value.GetFormat().SetPrecision(2);
    Reading(ValueBytes(value), [&](CArchive & ar) { read.Read(nullptr, ar); });
    EXPECT_EQ(read.GetNumber(), 0.125);
    EXPECT_EQ(read.GetFormat().GetType(), C_NF_PERCENT);
    EXPECT_EQ(ValueBytes(read), ValueBytes(value));
}

TEST(ValueRecord, EveryShorterPieceThrowsOrIsShort) {
    CCCellValue value;
    value.Set(1.5, uchar(C_NF_GENERAL));
    Bytes const bytes = ValueBytes(value);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        CCCellValue read;
        Bytes const piece(bytes.begin(), bytes.begin() + std::ptrdiff_t(length));
        EXPECT_THROW(Reading(piece, [&](CArchive & ar) { read.Read(nullptr, ar); }),
                     CArchiveException)
            << length;
    }
}

TEST(NumberFormatRecord, TheShortFormIsFourBytes) {
    CCNumberFormat date;
    date.Set(uchar(C_NF_DATE)); // month as a number
    date.SetDelimiter(L'-');
    EXPECT_EQ(Written([&](CArchive & ar) { date.WriteA(ar); }), (Bytes{7, 0, 0x10, '-'}));
    date.SetDelimiter(0x20AC); // one byte of the code page
    EXPECT_EQ(Written([&](CArchive & ar) { date.WriteA(ar); }), (Bytes{7, 0, 0x10, 0x80}));
    date.SetDelimiter(0x4E2D); // none
    EXPECT_EQ(Written([&](CArchive & ar) { date.WriteA(ar); }), (Bytes{7, 0, 0x10, '?'}));
    CCNumberFormat read;
    unsigned short const mask = read.GetSetMask();
    Reading({1, 0x92, 0, 3}, [&](CArchive & ar) { read.ReadA(ar); });
    EXPECT_EQ(read.getType(), C_NF_NUMBER);
    EXPECT_EQ(read.getPrecision(), 2);
    EXPECT_EQ(read.getCommas(), 1);
    EXPECT_EQ(read.GetLTString(), 2);
    EXPECT_EQ(read.GetLTStringMode(), 1);
    EXPECT_EQ(read.GetSetMask(), mask);
}

TEST(ValueArrayRecord, MarksNullElements) {
    CCCellValue value;
    value.Set(errNA);
    CPtrArray values;
    values.Add(nullptr);
    values.Add(&value);
    Bytes const bytes = Written([&](CArchive & ar) { WriteValueArray(nullptr, ar, values); });
    EXPECT_EQ(bytes, Join(U32(2), 0, 1, 1, U32(9)));
    CPtrArray read;
    Reading(bytes, [&](CArchive & ar) { ReadValueArray(nullptr, ar, read); });
    ASSERT_EQ(read.GetSize(), 2);
    EXPECT_EQ(read[0], nullptr);
    EXPECT_EQ(static_cast<CCCellValue *>(read[1])->GetError(), errNA);
    FreeValueArray(read);
}

TEST(ValueArrayRecord, AnAnnouncedCountTakesNoMemory) {
    CPtrArray read;
    EXPECT_THROW(
        Reading(U32(0xFFFFFFFF), [&](CArchive & ar) { ReadValueArray(nullptr, ar, read); }),
        CArchiveException);
    FreeValueArray(read);
}

TEST(DoubleArrayRecord, IsACountAndTheDoubles) {
    CCDoubleArray array, read;
    array.Add(1.5);
    array.Add(-2);
    Bytes const bytes = Written([&](CArchive & ar) { array.Serialize(ar); });
    EXPECT_EQ(bytes, (Bytes{2, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0xC0}));
    Reading(bytes, [&](CArchive & ar) { read.Serialize(ar); });
    ASSERT_EQ(read.GetSize(), 2);
    EXPECT_EQ(read[1], -2);
    EXPECT_THROW(
        Reading({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, [&](CArchive & ar) { read.Serialize(ar); }),
        CArchiveException);
}

TEST(DoubleArrayRecord, TakesTheCapacityOfItsSizeAndKeepsALargerOne) {
    CCDoubleArray array;
    array.SetSize(100);
    Bytes const bytes = Written([&](CArchive & ar) { array.Serialize(ar); });
    CCDoubleArray read, larger;
    Reading(bytes, [&](CArchive & ar) { read.Serialize(ar); });
    EXPECT_EQ(read.GetCapacity(), 100);
    larger.SetSize(300);
    Reading(bytes, [&](CArchive & ar) { larger.Serialize(ar); });
    EXPECT_EQ(larger.GetSize(), 100);
    EXPECT_EQ(larger.GetCapacity(), 300);
}

TEST(DoubleArrayRecord, AShortBlockIsNotDetected) {
    Bytes const one{0, 0, 0, 0, 0, 0, 0xF8, 0x3F}; // 1.5
    CCDoubleArray read;
    Reading(Join(3, 0, one, 0, 0, 0), [&](CArchive & ar) { read.Serialize(ar); });
    ASSERT_EQ(read.GetSize(), 3);
    EXPECT_EQ(read[0], 1.5);
    EXPECT_EQ(read[1], 0);
    EXPECT_EQ(read[2], 0);
    // More than could be meant is a damaged count, and leaves the array as it was.
    Bytes const largest = Join(0xFF, 0xFF, U32(65536)), damaged = Join(0xFF, 0xFF, U32(65537));
    EXPECT_THROW(Reading(damaged, [&](CArchive & ar) { read.Serialize(ar); }), CArchiveException);
    EXPECT_EQ(read.GetSize(), 3);
    Reading(largest, [&](CArchive & ar) { read.Serialize(ar); });
    EXPECT_EQ(read.GetSize(), 65536);
    EXPECT_EQ(read[65535], 0);
}

TEST(ReferenceRecord, HoldsTypeAndPayload) {
    CCRCRef const cell(2, 0x1234);
    CCRegionRef const region(1, 2, 3, 0xFFFF);
    CCNameRef const name(L"ab"), none(static_cast<wchar_t const *>(nullptr));
    CCRemoteRef const remote(L"d", L"A1");
    CCDocumentRef const document(CCDocumentRef::ECDocRefType(7));
    CCRCRef const inner(0, 1);
    CCRef3D const sheets(1, 2, inner.Copy()), empty(1, 2);
    EXPECT_EQ(RefBytes(nullptr), Bytes{0});
    EXPECT_EQ(RefBytes(&cell), (Bytes{1, 2, 0x34, 0x12}));
    EXPECT_EQ(RefBytes(&region), (Bytes{2, 1, 2, 0, 3, 0xFF, 0xFF}));
    EXPECT_EQ(RefBytes(&name), Join(3, U32(3), "ab"));
    EXPECT_EQ(RefBytes(&none), Join(3, U32(0)));
    EXPECT_EQ(RefBytes(&remote), Join(4, 0xFF, 0xFE, 0xFF, 1, "d", 0xFF, 0xFE, 0xFF, 2, "A1"));
    EXPECT_EQ(RefBytes(&document), (Bytes{5, 7}));
    EXPECT_EQ(RefBytes(&sheets), Join(6, U32(1), 1, 0, 2, 0, 1, 0, 1, 0));
    EXPECT_EQ(RefBytes(&empty), Join(6, U32(0))); // four bytes after the type
}

TEST(ReferenceRecord, ReadsBackEqual) {
    CCRCRef const cell(255, 65535);
    CCRegionRef const region(0, 0, 255, 65535);
    CCNameRef const name(L"Total");
    CCRemoteRef const remote(L"other", L"B2:C3");
    CCDocumentRef const document(CCDocumentRef::ECDocRefType(3));
    CCRef3D const sheets(1, 9, region.Copy());
    for (CCRef const * ref :
         std::initializer_list<CCRef const *>{&cell, &region, &name, &remote, &document, &sheets}) {
        std::unique_ptr<CCRef> read;
        Reading(RefBytes(ref), [&](CArchive & ar) { read.reset(ReadRef(nullptr, ar)); });
        ASSERT_TRUE(read);
        EXPECT_TRUE(read->IsEqual(ref)) << ref->GetType();
    }
}

TEST(ReferenceRecord, UnknownTypesAreNull) {
    for (int type : {0, 7, 100, 255})
        Reading({uchar(type), 1, 2, 3},
                [&](CArchive & ar) { EXPECT_EQ(ReadRef(nullptr, ar), nullptr); });
}

TEST(ReferenceRecord, SheetsAroundSheetsWithoutEndAreRefused) {
    Bytes bytes;
    for (int i = 0; i < 100000; ++i) Append(bytes, Join(6, U32(1), 1, 0, 1, 0));
    EXPECT_THROW(Reading(bytes, [&](CArchive & ar) { delete ReadRef(nullptr, ar); }),
                 CArchiveException);
}

TEST(ReferenceListRecord, EndsAtTheFirstNull) {
    Bytes const bytes{1, 0, 0, 0, 1, 1, 0, 0, 0, 1, 2, 0, 0, 0};
    Reading(bytes, [&](CArchive & ar) {
        CCRefList * const list = RefListRead(nullptr, ar);
        ASSERT_TRUE(list && list->m_pNext);
        EXPECT_EQ(list->m_pNext->m_pNext, nullptr);
        EXPECT_EQ(Written([&](CArchive & out) { RefListWrite(nullptr, list, out); }),
                  Bytes(bytes.begin(), bytes.begin() + 9));
        RefListFree(list, 1);
    });
    Reading({0}, [&](CArchive & ar) { EXPECT_EQ(RefListRead(nullptr, ar), nullptr); });
}

TEST(FormulaRecord, Constant) {
    BaseHost host;
    EXPECT_EQ(FormulaBytes(host, L"\"ab\""), Join(1, 2, U32(3), "ab"));
}

TEST(FormulaRecord, CallOfAFunction) {
    BaseHost host;
    Bytes const region{3, 2, 0, 0, 0, 0, 1, 0, 0}; // a reference, of a region, relative
    EXPECT_EQ(FormulaBytes(host, L"SUM(A1:A2)"), Join(4, 8, U32(4), "SUM", region, 0));
}

TEST(FormulaRecord, ChoiceAndOperators) {
    BaseHost host;
    EXPECT_EQ(FormulaBytes(host, L"-$B$2%"),
              Join(4, 2, U32(2), "%", 4, 1, U32(2), "-", Bytes{3, 1, 1, 1, 0, 3}, 0, 0));
    Bytes const choice = FormulaBytes(host, L"IF(A1,A2)");
    EXPECT_EQ(choice, Join(5, 8, U32(3), "IF", Bytes{3, 1, 0, 0, 0, 0, 3, 1, 0, 1, 0, 0, 0}));
}

TEST(FormulaRecord, ArrayOfConstants) {
    BaseHost host;
    Bytes const bytes = FormulaBytes(host, L"{\"a\",\"b\"}");
    EXPECT_EQ(bytes, Join(2, U32(2), U32(1), 2, U32(2), "a", 2, U32(2), "b"));
}

TEST(FormulaRecord, NullIsOneByte) {
    BaseHost host;
    EXPECT_EQ(Written([&](CArchive & ar) { WriteFormula(&host, ar, nullptr); }), Bytes{0});
    for (int type : {0, 9, 255})
        Reading({uchar(type)}, [&](CArchive & ar) { EXPECT_EQ(ReadFormula(&host, ar), nullptr); });
}

TEST(FormulaRecord, ReadsBackAsItPrints) {
    BaseHost host;
    for (wchar_t const * text :
         {L"A1 + B2 * 3", L"IF(A1 > 2, \"x\", SUM($A$1:B$7, sums))", L"(1 - 2) ^ -3%", L"{1,2;3,4}",
          L"~(A1 & B1 | C1)", L"SUM()", L"12.50"}) {
        std::unique_ptr<CCFormula> const tree(_ParseFormula(&host, text, 0, nullptr));
        ASSERT_TRUE(tree) << Utf8(text);
        Reading(FormulaBytes(host, text), [&](CArchive & ar) {
            std::unique_ptr<CCFormula> const read(ReadFormula(&host, ar));
            ASSERT_TRUE(read);
            EXPECT_EQ(Printed(host, *read), Printed(host, *tree));
        });
    }
}

TEST(FormulaRecord, AnUnknownFunctionReadsAsNull) {
    BaseHost host;
    Bytes const bytes = Join(4, 8, U32(8), "NOTHING", 1, 0, 0);
    Reading(bytes, [&](CArchive & ar) {
        std::unique_ptr<CCFormula> const tree(ReadFormula(&host, ar));
        ASSERT_TRUE(tree);
        EXPECT_EQ(static_cast<CCOpFormula *>(tree.get())->GetFunc(), nullptr);
        CCCellValue value;
        value.Set(1.0);
        tree->Eval(&host, value, nullptr);
        EXPECT_TRUE(value.IsEmpty());
    });
    Reading(Join(4, 4, U32(4), "SUM", 0), [&](CArchive & ar) { // the kind must be the same
        std::unique_ptr<CCFormula> const tree(ReadFormula(&host, ar));
        EXPECT_EQ(static_cast<CCOpFormula *>(tree.get())->GetFunc(), nullptr);
    });
}

TEST(FormulaRecord, DepthIsBounded) {
    BaseHost host;
    auto const nested = [](int levels) {
        Bytes bytes;
        for (int i = 0; i < levels; ++i) Append(bytes, Join(4, 1, U32(2), "-"));
        Append(bytes, Bytes{1, 0}); // an empty constant
        bytes.insert(bytes.end(), std::size_t(levels), uchar(0));
        return bytes;
    };
    Reading(nested(2000), [&](CArchive & ar) {
        std::unique_ptr<CCFormula> const tree(ReadFormula(&host, ar));
        CCCellValue value;
        tree->Eval(&host, value, nullptr);
        EXPECT_TRUE(value.IsEmpty());
    });
    EXPECT_THROW(Reading(nested(5000), [&](CArchive & ar) { delete ReadFormula(&host, ar); }),
                 CArchiveException);
}

TEST(FormulaRecord, DamagedBytesEndInATreeOrAnException) {
    BaseHost host;
    host.Make("A1");
    Bytes const sound = FormulaBytes(host, L"IF(A1>2,{1,2;3,4},SUM($A$1:B$7,sums)+-\"xyz\"%)");
    int whole = 0;
    auto const read = [&](Bytes const & bytes) {
        try {
            Reading(bytes, [&](CArchive & ar) {
                std::unique_ptr<CCFormula> const tree(ReadFormula(&host, ar));
                if (!tree) return;
                ++whole;
                CCCellValue value;
                CCRCRef const self(5, 5);
                Printed(host, *tree);
                tree->Check(&host, &self);
                tree->Eval(&host, value, &self);
            });
        } catch (CArchiveException const &) {
        }
    };
    for (std::size_t length = 0; length <= sound.size(); ++length)
        read(Bytes(sound.begin(), sound.begin() + std::ptrdiff_t(length)));
    EXPECT_GE(whole, 1); // the last was whole
    for (std::size_t at = 0; at < sound.size(); ++at)
        for (int bit = 0; bit < 8; ++bit) {
            Bytes damaged = sound;
            damaged[at] ^= uchar(1 << bit);
            read(damaged);
        }
}
