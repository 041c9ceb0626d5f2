// CCCellFormat: the format of a cell, protection and hiding flags plus the index of a number
// format.
//
// Like a number format it can be partial: the set mask tells which of nine items it holds, and the
// merge family works item by item. A second mask belongs to the lower-case flag accessors; the two
// words are independent.
#pragma once

#include "format/CCNumberFormat.h"
#include "platform/CInstanceCounter.h"

class CArchive;

// Bits of the set mask.
enum CellFormatMask : unsigned short {
    kCellFormatNumber = 0x0001, // the whole number format
    kCellFormatNumberType = 0x0002,
    kCellFormatPrecision = 0x0004,
    kCellFormatCommas = 0x0008,
    kCellFormatLock = 0x0010,
    kCellFormatHide = 0x0020,
    kCellFormatEditSource = 0x0040,
    kCellFormatHideError = 0x0080,
    kCellFormatHideZero = 0x0100,
    kCellFormatNumberItems = 0x000F,
    kCellFormatStyleItems = 0x01F0,
    kCellFormatAllItems = 0x01FF,
};

// Bits of the flags byte and of the flag set mask.
enum CellFormatFlag : uchar {
    kFlagLock = 1,
    kFlagHide = 2,
    kFlagEditSource = 4,
    kFlagErrorHidden = 8,
    kFlagZeroHidden = 16,
};

class CVCELLS_API CCCellFormat : public calvera::debug::CInstanceCounter<CCCellFormat> {
public:
    CCCellFormat() = default;
    void Set(CCCellFormat const & other) { *this = other; }

    bool getLock() const { return GetFlag(kFlagLock); }
    bool getHide() const { return GetFlag(kFlagHide); }
    bool getEditSource() const { return GetFlag(kFlagEditSource); }
    bool getErrorHidden() const { return GetFlag(kFlagErrorHidden); }
    bool getZeroHidden() const { return GetFlag(kFlagZeroHidden); }
    void setLock(bool on) { SetFlag(kFlagLock, on); }
    void setHide(bool on) { SetFlag(kFlagHide, on); }
    void setEditSource(bool on) { SetFlag(kFlagEditSource, on); }
    void setErrorHidden(bool on) { SetFlag(kFlagErrorHidden, on); }
    void setZeroHidden(bool on) { SetFlag(kFlagZeroHidden, on); }
    bool isLock() const { return HasFlag(kFlagLock); }
    bool isHide() const { return HasFlag(kFlagHide); }
    bool isEditSource() const { return HasFlag(kFlagEditSource); }
    bool isErrorHidden() const { return HasFlag(kFlagErrorHidden); }
    bool isZeroHidden() const { return HasFlag(kFlagZeroHidden); }
    void clearLock() { ClearFlag(kFlagLock); }
    void clearHide() { ClearFlag(kFlagHide); }
    void clearEditSource() { ClearFlag(kFlagEditSource); }
    void clearErrorHidden() { ClearFlag(kFlagErrorHidden); }
    void clearZeroHidden() { ClearFlag(kFlagZeroHidden); }

    unsigned short GetSetMask() const { return m_nSetMask; }
    int IsEmpty() const { return (m_nSetMask & kCellFormatAllItems) == 0; }
    int IsNF() const { return m_nSetMask & kCellFormatNumberItems; }
    void ClearNF() { m_nSetMask &= static_cast<unsigned short>(~kCellFormatNumberItems); }
    int IsStyle() const { return m_nSetMask & kCellFormatStyleItems; }
    int IsHidden() const { return IsOn(kCellFormatHide, kFlagHide); }
    int IsLocked() const { return IsOn(kCellFormatLock, kFlagLock); }
    int IsEditSource() const { return IsOn(kCellFormatEditSource, kFlagEditSource); }
    int IsErrorHidden() const { return IsOn(kCellFormatHideError, kFlagErrorHidden); }
    int IsZeroHidden() const { return IsOn(kCellFormatHideZero, kFlagZeroHidden); }
    int IsNFType() const { return (m_nSetMask & kCellFormatNumberType) != 0; }
    int IsNFPrecision() const { return (m_nSetMask & kCellFormatPrecision) != 0; }
    int IsNFCommas() const { return (m_nSetMask & kCellFormatCommas) != 0; }
    void ClearNFType() { ClearItem(kCellFormatNumberType); }
    void ClearNFPrecision() { ClearItem(kCellFormatPrecision); }
    void ClearNFCommas() { ClearItem(kCellFormatCommas); }
    uchar GetNFType() const { return GetNFmt().GetType(); }
    uchar GetNFPrecision() const { return GetNFmt().GetPrecision(); }
    uchar GetNFCommas() const { return GetNFmt().GetCommas(); }

    // The number format at the index; an index out of range means the first of the table.
    CCNumberFormat const & GetNFmt() const;
    CCNumberFormat const & GetNumberFormatW() const { return GetNFmt(); }
    // Finds an equal format in the table or appends a copy, and stores its index.
    void PutNFmt(CCNumberFormat const & format);

    void SetHide(int on) { SetStyle(kCellFormatHide, kFlagHide, on); }
    void SetLock(int on) { SetStyle(kCellFormatLock, kFlagLock, on); }
    void SetEditSource(int on) { SetStyle(kCellFormatEditSource, kFlagEditSource, on); }
    void SetHideError(int on) { SetStyle(kCellFormatHideError, kFlagErrorHidden, on); }
    void SetHideZero(int on) { SetStyle(kCellFormatHideZero, kFlagZeroHidden, on); }
    void SetNFType(uchar type);
    void SetNFPrecision(int decimals);
    void SetNFCommas(int on);
    // Gives the cell format a whole number format of its own.
    void SetNumberFormat(CCNumberFormat const & format);

    void Clear(unsigned short bits);
    // Clears what both formats hold alike.
    void Clear(CCCellFormat const & other);
    // Lays `other` over this format; the forms tell conflicts, or keep what differs from `base`.
    void Merge(CCCellFormat const & other);
    void Merge(CCCellFormat const & other, unsigned short & conflicts);
    void Merge(CCCellFormat const & other, CCCellFormat const & base);
    // The comparison reads the precision twice and the commas never. That is meant so.
    int IsEqual(CCCellFormat const & other) const;
    int IsSame(CCCellFormat const & other) const;
    void InitDefault();
    // A copy of this format; `other` is not read. Its twin leaves this format as it is.
    CCCellFormat operator-(CCCellFormat const & other) const;
    CCCellFormat & operator+=(CCCellFormat const & other);

    void set(CCCellFormat const & other);
    void setNoNumF(CCCellFormat const & other);
    void merge(CCCellFormat const & other, unsigned short mask, unsigned short numberMask);
    void extract(CCCellFormat & out, unsigned short mask, unsigned short numberMask) const;
    void mergeCommons(CCCellFormat const & other);
    void extractCommons(CCCellFormat const & other, CCCellFormat & out) const;
    void substract(CCCellFormat const & other, CCCellFormat & out) const;
    void flattern(CCCellFormat const & other, CCCellFormat & out) const;

    // What IsSame compares.
    cells::internal::FormatKey Key() const;

    // The seven-byte form: set mask, number format index, flags.
    void FillBuff(uchar * buffer) const;
    void ReadBuff(uchar const * buffer);
    void Read(CArchive & ar);
    void Write(CArchive & ar) const;

private:
    bool GetFlag(uchar flag) const { return (m_nFlags & flag) != 0; }
    bool HasFlag(uchar flag) const { return (m_nFlagSetMask & flag) != 0; }
    void ClearFlag(uchar flag) { m_nFlagSetMask &= static_cast<unsigned short>(~flag); }
    void PutFlag(uchar flag, bool on) { m_nFlags = uchar(on ? m_nFlags | flag : m_nFlags & ~flag); }
    void SetFlag(uchar flag, bool on) {
        PutFlag(flag, on);
        m_nFlagSetMask |= flag;
    }
    int IsOn(unsigned short item, uchar flag) const {
        return (m_nSetMask & item) && (m_nFlags & flag);
    }
    void SetStyle(unsigned short item, uchar flag, int on) {
        PutFlag(flag, on != 0);
        m_nSetMask |= item;
    }
    void ClearItem(unsigned short item) { m_nSetMask &= static_cast<unsigned short>(~item); }
    bool HasItem(unsigned short item) const { return (m_nSetMask & item) != 0; }
    bool SameItem(unsigned short item, CCCellFormat const & other) const;
    void TakeItem(unsigned short item, CCCellFormat const & other);

    unsigned short m_nFlagSetMask = 0;
    unsigned short m_nSetMask = 0;
    int m_nNumberFormat = 0;
    uchar m_nFlags = 0;
};
