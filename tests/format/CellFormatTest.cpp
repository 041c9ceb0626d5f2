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

TEST(CellFormatTable, StoresEqualFormatsOnce) {
    CCCellFormatTable table;
    CCCellFormat format;
    format.SetLock(1);
    int const index = table.Add(format);
    EXPECT_EQ(table.Add(format), index);
    EXPECT_EQ(table.GetAt(1000), table.GetAt(0));
    EXPECT_TRUE(table.GetAt(0)->IsEmpty());
}
