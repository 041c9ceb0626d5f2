#include "format/FormatTables.h"

#include <gtest/gtest.h>

TEST(CellFormat, FlagAndMaskAreTwoThings) {
    CCCellFormat format;
    format.setLock(true);
    EXPECT_TRUE(format.getLock());
    EXPECT_TRUE(format.isLock());
    EXPECT_EQ(format.GetSetMask(), 0);
    EXPECT_FALSE(format.IsLocked()); // the set mask does not have it
    format.SetLock(1);
    EXPECT_TRUE(format.IsLocked());
    format.clearLock();
    EXPECT_TRUE(format.IsLocked());
}

TEST(CellFormat, NumberItemsGoThroughTheTable) {
    CCCellFormat format;
    format.SetNFType(C_NF_PERCENT);
    format.SetNFPrecision(3);
    format.SetNFCommas(1);
    EXPECT_EQ(format.GetNFType(), C_NF_PERCENT);
    EXPECT_EQ(format.GetNFPrecision(), 3);
    EXPECT_EQ(format.GetNFCommas(), 0x10);
    EXPECT_EQ(format.GetSetMask(), 0x000E);
    EXPECT_TRUE(format.IsNF());
    EXPECT_FALSE(format.IsStyle());
    format.ClearNF();
    EXPECT_TRUE(format.IsEmpty());
}

TEST(CellFormat, MergeOverwritesItemByItem) {
    CCCellFormat a, b;
    a.SetLock(1);
    a.SetNFPrecision(2);
    b.SetNFPrecision(4);
    b.SetHide(1);
    a.Merge(b);
    EXPECT_EQ(a.GetNFPrecision(), 4);
    EXPECT_TRUE(a.IsLocked() && a.IsHidden());
    CCCellFormat empty;
    a.Merge(empty);
    EXPECT_EQ(a.GetNFPrecision(), 4);
    empty.Merge(a);
    EXPECT_TRUE(empty.IsSame(a));
}

TEST(CellFormat, MergeWithConflictsLeavesWhatDiffers) {
    CCCellFormat a, b;
    a.SetLock(1);
    b.SetLock(0);
    b.SetHide(1);
    unsigned short conflicts = 0;
    a.Merge(b, conflicts);
    EXPECT_EQ(conflicts, kCellFormatLock);
    EXPECT_TRUE(a.IsLocked());
    EXPECT_TRUE(a.IsHidden());
}

TEST(CellFormat, MergeAgainstABaseKeepsOnlyTheDifference) {
    CCCellFormat a, other, base;
    other.SetLock(1);
    other.SetHide(1);
    base.SetLock(1);
    a.SetLock(1);
    a.Merge(other, base);
    EXPECT_FALSE(a.GetSetMask() & kCellFormatLock);
    EXPECT_TRUE(a.IsHidden());
}

TEST(CellFormat, EqualityForgetsTheCommas) {
    CCCellFormat a, b;
    a.SetNFCommas(1);
    b.SetNFCommas(0);
    EXPECT_TRUE(a.IsEqual(b));
    b.SetHide(1);
    EXPECT_FALSE(a.IsEqual(b));
}

TEST(CellFormat, ClearingRemovesWhatIsAlike) {
    CCCellFormat a, b;
    a.SetLock(1);
    a.SetHide(1);
    b.SetLock(1);
    b.SetHide(0);
    a.Clear(b);
    EXPECT_FALSE(a.GetSetMask() & kCellFormatLock);
    EXPECT_TRUE(a.IsHidden());
    a.Clear(static_cast<unsigned short>(kCellFormatHide));
    EXPECT_TRUE(a.IsEmpty());
    EXPECT_FALSE(a.getHide());
}

TEST(CellFormat, InitDefaultHoldsANumberFormatAndAllStyles) {
    CCCellFormat format;
    format.SetLock(1);
    format.InitDefault();
    EXPECT_EQ(format.GetSetMask(), 0x01F1);
    EXPECT_FALSE(format.IsLocked());
}

TEST(CellFormat, MinusAndPlusChangeNothing) {
    CCCellFormat a, b;
    a.SetLock(1);
    b.SetHide(1);
    EXPECT_TRUE((a - b).IsSame(a));
    a += b;
    EXPECT_FALSE(a.IsHidden());
}

TEST(CellFormat, SevenByteForm) {
    CCCellFormat a;
    a.SetLock(1);
    a.SetHideZero(1);
    uchar bytes[7];
    a.FillBuff(bytes);
    EXPECT_EQ(bytes[0], 0x10);
    EXPECT_EQ(bytes[1], 0x01);
    EXPECT_EQ(bytes[6], 0x11);
    CCCellFormat b;
    b.ReadBuff(bytes);
    EXPECT_TRUE(b.IsSame(a));
}

TEST(CellFormat, FlagAlgebraWorksOnItsOwnMask) {
    CCCellFormat a, b, out;
    a.setLock(true);
    a.setHide(true);
    b.setLock(true);
    b.setHide(false);
    a.extractCommons(b, out);
    EXPECT_TRUE(out.isLock() && out.getLock());
    EXPECT_FALSE(out.isHide());
    a.substract(b, out);
    EXPECT_TRUE(out.isHide());
    EXPECT_FALSE(out.isLock());
}

namespace {

// A format of a type with so many decimals, which are its only field.
CCCellFormat Decimals(uchar type, int decimals) {
    CCNumberFormat number;
    number.SetDefault(nullptr, C_NF_BOOL); // no field at all
    number.SetType(type);
    number.SetPrecision(decimals);
    CCCellFormat format;
    format.PutNFmt(number);
    return format;
}

CCCellFormat Commas(uchar type, int commas) {
    CCNumberFormat number;
    number.SetDefault(nullptr, C_NF_BOOL);
    number.SetType(type);
    number.SetCommas(commas);
    CCCellFormat format;
    format.PutNFmt(number);
    return format;
}

} // namespace

TEST(CellFormatAlgebra, SetLaysTheNumberFormatOfTheOtherOver) {
    CCCellFormat a = Decimals(C_NF_NUMBER, 2), b = Commas(C_NF_PERCENT, 1);
    a.setHide(true);
    b.setLock(true);
    b.setHide(false);
    a.set(b);
    EXPECT_EQ(a.GetNFType(), C_NF_PERCENT);
    EXPECT_EQ(a.GetNFPrecision(), 2);
    EXPECT_EQ(a.GetNFCommas(), 0x10);
    EXPECT_EQ(a.GetSetMask(), 0);
    EXPECT_FALSE(a.isLock() || a.getLock()); // flags stay
    EXPECT_TRUE(a.isHide() && a.getHide());
}

TEST(CellFormatAlgebra, SetNoNumFLaysTheFlagsOfTheOtherOver) {
    CCCellFormat a = Decimals(C_NF_NUMBER, 2), b = Decimals(C_NF_PERCENT, 5);
    a.setHide(true);
    b.setLock(true);
    b.setHide(false);
    b.clearHide(); // the flag is there, its bit is not
    a.setNoNumF(b);
    EXPECT_EQ(a.GetNFType(), C_NF_NUMBER);
    EXPECT_EQ(a.GetNFPrecision(), 2);
    EXPECT_TRUE(a.isLock() && a.getLock());
    EXPECT_TRUE(a.isHide() && a.getHide());
}

TEST(CellFormatAlgebra, MergeTakesWhatTheMasksLetThrough) {
    CCNumberFormat both = Decimals(C_NF_PERCENT, 4).GetNFmt();
    both.SetCommas(1);
    CCCellFormat other;
    other.PutNFmt(both);
    other.setLock(true);
    other.setHide(true);
    CCCellFormat a = Decimals(C_NF_NUMBER, 2);
    a.merge(other, kFlagHide, kNumberFormatCommas);
    EXPECT_EQ(a.GetNFPrecision(), 2);
    EXPECT_EQ(a.GetNFCommas(), 0x10);
    EXPECT_TRUE(a.isHide() && a.getHide());
    EXPECT_FALSE(a.isLock());
}

TEST(CellFormatAlgebra, ExtractKeepsWhatTheMasksName) {
    CCNumberFormat both = Decimals(C_NF_NUMBER, 3).GetNFmt();
    both.SetCommas(1);
    CCCellFormat a, out;
    a.PutNFmt(both);
    a.setLock(true);
    a.setZeroHidden(true);
    a.extract(out, kFlagLock, kNumberFormatType | kNumberFormatPrecision);
    EXPECT_EQ(out.GetNFmt().GetSetMask(), kNumberFormatType | kNumberFormatPrecision);
    EXPECT_EQ(out.GetNFPrecision(), 3);
    EXPECT_TRUE(out.isLock() && out.getLock());
    EXPECT_FALSE(out.isZeroHidden());
}

TEST(CellFormatAlgebra, MergeCommonsTakesNumberFieldsOfBothAndEveryFlag) {
    CCCellFormat a = Decimals(C_NF_NUMBER, 2);
    CCNumberFormat both = Decimals(C_NF_PERCENT, 5).GetNFmt();
    both.SetCommas(1);
    CCCellFormat other;
    other.PutNFmt(both);
    other.setErrorHidden(true);
    a.mergeCommons(other);
    EXPECT_EQ(a.GetNFType(), C_NF_PERCENT);
    EXPECT_EQ(a.GetNFPrecision(), 5);
    EXPECT_EQ(a.GetNFCommas(), 0); // not a field of both
    EXPECT_TRUE(a.isErrorHidden() && a.getErrorHidden());
}

TEST(CellFormatAlgebra, FlatternLetsThisOneWin) {
    CCCellFormat a = Decimals(C_NF_NUMBER, 2), base = Decimals(C_NF_PERCENT, 4), out;
    a.setLock(false);
    base.setLock(true);
    base.setHide(true);
    a.flattern(base, out);
    EXPECT_EQ(out.GetNFType(), C_NF_NUMBER);
    EXPECT_EQ(out.GetNFPrecision(), 2);
    EXPECT_FALSE(out.isLock() || out.isHide()); // flags are no part of it
}

TEST(CellFormat, MergesCopyIntoAnEmptyFormat) {
    CCCellFormat b;
    b.SetLock(1);
    b.SetNFPrecision(4);
    CCCellFormat empty, fresh, base;
    unsigned short conflicts = 0;
    empty.Merge(b, conflicts);
    EXPECT_TRUE(empty.IsSame(b));
    EXPECT_EQ(conflicts, 0);
    fresh.Merge(b, base);
    EXPECT_TRUE(fresh.IsSame(b));
    fresh.Merge(CCCellFormat(), base);
    fresh.Merge(CCCellFormat(), conflicts);
    EXPECT_TRUE(fresh.IsSame(b));
}

TEST(CellFormat, EveryItemMayConflict) {
    CCCellFormat a, b;
    CCNumberFormat one(C_NF_NUMBER), two(C_NF_DATE);
    a.SetNumberFormat(one);
    b.SetNumberFormat(two);
    unsigned short conflicts = 0;
    a.Merge(b, conflicts);
    EXPECT_EQ(conflicts, kCellFormatNumber);
    EXPECT_EQ(a.GetNFType(), C_NF_NUMBER);
    CCCellFormat c, d;
    for (int i : {0, 1}) {
        CCCellFormat & format = i ? d : c;
        format.SetNFType(uchar(i ? C_NF_PERCENT : C_NF_NUMBER));
        format.SetNFPrecision(i + 1);
        format.SetNFCommas(i);
    }
    conflicts = 0;
    c.Merge(d, conflicts);
    EXPECT_EQ(conflicts, kCellFormatNumberType | kCellFormatPrecision | kCellFormatCommas);
    EXPECT_EQ(c.GetNFPrecision(), 1);
}

TEST(CellFormatTable, FindsWhatARecordIsAfterItWasChanged) {
    CCCellFormatTable table;
    CCCellFormat locked, hidden;
    locked.SetLock(1);
    hidden.SetHide(1);
    int const index = table.Add(locked);
    EXPECT_EQ(table.Find(locked), index);
    *table.GetAt(index) = hidden;
    EXPECT_EQ(table.Find(locked), -1);
    EXPECT_EQ(table.Find(hidden), index);
}

TEST(CellFormatTable, StoresEqualFormatsOnce) {
    CCCellFormatTable table;
    CCCellFormat format;
    format.SetLock(1);
    int const index = table.Add(format);
    EXPECT_EQ(table.Add(format), index);
    EXPECT_EQ(table.GetAt(1000), table.GetAt(0));
    EXPECT_TRUE(table.GetAt(0)->IsEmpty());
}
