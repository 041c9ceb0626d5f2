// CCNumberFormat: how a number is shown.
//
// A small record: a format type, packed options, one 16-bit field with two meanings, and optionally
// a custom format text. A mask tells which fields are set, so that a record can be partial; the
// merge family combines a cell's own partial format with an inherited one.
//
// The lower-case accessors are the raw layer: getX reads the field, setX stores it and sets its
// mask bit, isX tests the mask bit alone, clearX clears it and leaves the value. The capitalised
// ones are older; their results keep exact values that callers store (GetCommas is 0x10 or 0).
#pragma once

#include "format/CompiledFormat.h"
#include "format/FormatKey.h"
#include "format/LocaleContext.h"
#include "platform/CString.h"

#include <cstdint>
#include <iosfwd>

class CArchive;

enum NumberFormatType : uchar {
    C_NF_GENERAL = 0,
    C_NF_NUMBER = 1,
    C_NF_CURRENCY = 2,
    C_NF_PERCENT = 3,
    C_NF_FRACTION = 4,
    C_NF_SCIENTIFIC = 5,
    C_NF_TIME = 6,
    C_NF_DATE = 7,
    C_NF_BOOL = 8,
    C_NF_HEX = 9,
    C_NF_OCT = 10,
    C_NF_BIN = 11,
};

// One bit a field of the set mask.
enum NumberFormatMask : unsigned short {
    kNumberFormatType = 0x0001,
    kNumberFormatPrecision = 0x0002,
    kNumberFormatCommas = 0x0004,
    kNumberFormatNegBr = 0x0008,
    kNumberFormatNegRed = 0x0010,
    kNumberFormatLTStringMode = 0x0020,
    kNumberFormatLTString = 0x0040,
    kNumberFormatTimeRange = 0x0080,
    kNumberFormatTimeSeconds = 0x0100,
    kNumberFormatTime = 0x0200,
    kNumberFormatDelimiter = 0x0400,
    kNumberFormatMonthType = 0x0800,
    kNumberFormatYearType = 0x1000,
    kNumberFormatMDOrder = 0x2000,
};

constexpr int kPrecisionAsNeeded = 15; // as many decimals as the number has

class CVCELLS_API CCNumberFormat {
public:
    CCNumberFormat() noexcept {}
    // The defaults of a type; the locale's precision does not survive Set, which runs last.
    explicit CCNumberFormat(int type);
    // The custom text is copied only while it is in force, and the type is that which it shows;
    // otherwise the target's text stays.
    CCNumberFormat(CCNumberFormat const & other) noexcept { *this = other; }
    CCNumberFormat & operator=(CCNumberFormat const & other) noexcept {
        m_nSetMask = other.m_nSetMask;
        m_nData = other.m_nData;
        m_nType = other.m_nType;
        m_nOptionsA = other.m_nOptionsA;
        m_nOptionsB = other.m_nOptionsB;
        m_bCustom = other.m_bCustom;
        if (m_bCustom) TakeCustom(other);
        return *this;
    }
    ~CCNumberFormat() = default;

    void Set(uchar type);
    void Set(CCNumberFormat const & other) { *this = other; }
    void SetDefault(cells::LCTX * lctx, uchar type);

    // The raw layer.
    uchar getType() const { return m_nType; }
    uchar getPrecision() const { return m_nOptionsA & kPrecisionField; }
    uchar getCommas() const { return Bit(m_nOptionsA, 4); }
    uchar getNegBr() const { return Bit(m_nOptionsA, 5); }
    uchar getNegRed() const { return Bit(m_nOptionsA, 6); }
    uchar getLTStringMode() const { return Bit(m_nOptionsA, 7); }
    wchar_t getLTString() const { return m_nData; }
    uchar getTimeRange() const { return Bit(m_nOptionsB, 0); }
    uchar getTimeSeconds() const { return Bit(m_nOptionsB, 1); }
    uchar getTime() const { return Bit(m_nOptionsB, 2); }
    wchar_t getDelimiter() const { return m_nData; }
    uchar getMonthType() const { return m_nOptionsB >> 3 & 3; }
    uchar getYearType() const { return m_nOptionsB >> 5 & 3; }
    uchar getMDOrder() const { return Bit(m_nOptionsB, 7); }

    void setType(uchar type) { Store(m_nType, 0xFF, type, kNumberFormatType); }
    void setPrecision(uchar value) { Store(m_nOptionsA, 0x0F, value, kNumberFormatPrecision); }
    void setCommas(uchar value) {
        Store(m_nOptionsA, 0x10, uchar(value << 4), kNumberFormatCommas);
    }
    void setNegBr(uchar value) { Store(m_nOptionsA, 0x20, uchar(value << 5), kNumberFormatNegBr); }
    void setNegRed(uchar value) {
        Store(m_nOptionsA, 0x40, uchar(value << 6), kNumberFormatNegRed);
    }
    void setLTStringMode(uchar value) {
        Store(m_nOptionsA, 0x80, uchar(value << 7), kNumberFormatLTStringMode);
    }
    void setLTString(wchar_t value) { StoreData(value, kNumberFormatLTString); }
    void setTimeRange(uchar value) { Store(m_nOptionsB, 0x01, value, kNumberFormatTimeRange); }
    void setTimeSeconds(uchar value) {
        Store(m_nOptionsB, 0x02, uchar(value << 1), kNumberFormatTimeSeconds);
    }
    void setTime(uchar value) { Store(m_nOptionsB, 0x04, uchar(value << 2), kNumberFormatTime); }
    void setDelimiter(wchar_t value) { StoreData(value, kNumberFormatDelimiter); }
    void setMonthType(uchar value) {
        Store(m_nOptionsB, 0x18, uchar(value << 3), kNumberFormatMonthType);
    }
    void setYearType(uchar value) {
        Store(m_nOptionsB, 0x60, uchar(value << 5), kNumberFormatYearType);
    }
    void setMDOrder(uchar value) {
        Store(m_nOptionsB, 0x80, uchar(value << 7), kNumberFormatMDOrder);
    }

    bool isType() const { return Has(kNumberFormatType); }
    bool isPrecision() const { return Has(kNumberFormatPrecision); }
    bool isCommas() const { return Has(kNumberFormatCommas); }
    bool isNegBr() const { return Has(kNumberFormatNegBr); }
    bool isNegRed() const { return Has(kNumberFormatNegRed); }
    bool isLTStringMode() const { return Has(kNumberFormatLTStringMode); }
    bool isLTString() const { return Has(kNumberFormatLTString); }
    bool isTimeRange() const { return Has(kNumberFormatTimeRange); }
    bool isTimeSeconds() const { return Has(kNumberFormatTimeSeconds); }
    bool isTime() const { return Has(kNumberFormatTime); }
    bool isDelimiter() const { return Has(kNumberFormatDelimiter); }
    bool isMonthType() const { return Has(kNumberFormatMonthType); }
    bool isYearType() const { return Has(kNumberFormatYearType); }
    bool isMDOrder() const { return Has(kNumberFormatMDOrder); }

    void clearType() { Clear(kNumberFormatType); }
    void clearPrecision() { Clear(kNumberFormatPrecision); }
    void clearCommas() { Clear(kNumberFormatCommas); }
    void clearNegBr() { Clear(kNumberFormatNegBr); }
    void clearNegRed() { Clear(kNumberFormatNegRed); }
    void clearLTStringMode() { Clear(kNumberFormatLTStringMode); }
    void clearLTString() { Clear(kNumberFormatLTString); }
    void clearTimeRange() { Clear(kNumberFormatTimeRange); }
    void clearTimeSeconds() { Clear(kNumberFormatTimeSeconds); }
    void clearTime() { Clear(kNumberFormatTime); }
    void clearDelimiter() { Clear(kNumberFormatDelimiter); }
    void clearMonthType() { Clear(kNumberFormatMonthType); }
    void clearYearType() { Clear(kNumberFormatYearType); }
    void clearMDOrder() { Clear(kNumberFormatMDOrder); }

    unsigned short GetSetMask() const { return m_nSetMask; }
    unsigned short getCommonSetMask(CCNumberFormat const & other) const {
        return m_nSetMask & other.m_nSetMask;
    }
    bool isCustomFormat() const { return m_bCustom; }
    // The custom text; it stays when the format is custom no more.
    CString getFormatString() const;
    // Shows numbers by a custom text from now on; the type becomes that which the text shows.
    void setCustomFormat(CString const & text);
    // Stores the custom text that is equivalent to a plain record. Null is the invariant locale.
    void convertToFormatString(cells::LCTX * lctx);

    // The older layer.
    uchar GetType() const { return m_nType; }
    uchar GetPrecision() const { return getPrecision(); }
    uchar GetCommas() const { return m_nOptionsA & 0x10; }
    uchar GetNegBr() const { return m_nOptionsA & 0x20; }
    uchar GetNegRed() const { return m_nOptionsA & 0x40; }
    uchar GetTimeRange() const { return m_nOptionsB & 0x01; }
    uchar GetTimeSeconds() const { return m_nOptionsB & 0x02; }
    uchar GetTime() const { return m_nOptionsB & 0x04; }
    uchar GetMonthType() const { return getMonthType(); }
    uchar GetYearType() const { return getYearType(); }
    uchar GetMDOrder() const { return getMDOrder(); }
    wchar_t GetDelimiter() const { return m_nData; }
    int GetLTString() const { return int(m_nData) - 1; }
    int GetLTStringMode() const { return m_nData == 0 ? 0 : getLTStringMode() ? 1 : 2; }
    int IsLTString() const { return m_nType == C_NF_NUMBER && m_nData != 0; }
    void SetType(uchar type);
    void SetPrecision(int value) { setPrecision(uchar(value & 0x0F)); }
    void SetCommas(int value) { setCommas(value != 0); }
    void SetNegBr(int value) { setNegBr(value != 0); }
    void SetNegRed(int value) { setNegRed(value != 0); }
    void SetTimeSeconds(int value) { setTimeSeconds(value != 0); }
    void SetTime(int value) { setTime(value != 0); }
    // Unlike their neighbours these two take only the value 1 as on. That is meant so.
    void SetTimeRange(int value) { setTimeRange(value == 1); }
    void SetMDOrder(int value) { setMDOrder(value == 1); }
    void SetMonthType(int value) { setMonthType(uchar(value & 3)); }
    void SetYearType(int value) { setYearType(uchar(value & 3)); }
    void SetDelimiter(wchar_t value) { setDelimiter(value); }
    void SetLTString(int index);
    void SetLTStringMode(int mode);
    void SetLTString(int mode, int index);

    // The packed forms: 32 bits, and five bytes. Neither holds the mask or the custom text.
    void GetData(unsigned long & data) const;
    void SetData(unsigned long data);
    void FillBuff(uchar * buffer) const;
    void ReadBuff(uchar const * buffer);

    // Four bytes that hold a format without date and time options, strings and custom text; false
    // for any other. For hosts that keep many plain numbers.
    bool PackPlain(std::uint32_t & packed) const;
    void UnpackPlain(std::uint32_t packed) {
        m_nSetMask = static_cast<unsigned short>(packed >> 16);
        m_nOptionsA = uchar(packed >> 8);
        m_nType = uchar(packed);
        m_nOptionsB = 0;
        m_nData = 0;
        m_bCustom = false;
    }

    // The set algebra. set overlays this record with the fields that `other` has; the type always
    // counts as had.
    void set(CCNumberFormat const & other);
    void copy(CCNumberFormat const & other);
    void flattern(CCNumberFormat const & base, CCNumberFormat & out) const;
    void mergeCommons(CCNumberFormat const & other);
    void extractCommons(CCNumberFormat const & other, CCNumberFormat & out) const;
    void extract(CCNumberFormat & out, unsigned short mask) const;
    void merge(CCNumberFormat const & other, unsigned short mask);
    // Keeps in `out` the common fields in which this record differs from `other`.
    void substract(CCNumberFormat const & other, CCNumberFormat & out) const;

    // All that the record holds, whether its mask shows it or not.
    cells::internal::FormatKey Key() const;

    // Whether both show numbers alike. Types above C_NF_BOOL are unequal even to themselves.
    bool IsEqual(cells::LCTX * lctx, CCNumberFormat const & other) const;

    // Printing. `raw` asks for text fit for editing: no custom format, all decimals, no leading or
    // trailing string.
    void Print(cells::LCTX * lctx, std::wostream & stream, double value, int raw) const;
    void Print(cells::LCTX * lctx, std::wostream & stream, double value, CString & ltString,
               int raw) const;
    void PrintGeneral(cells::LCTX * lctx, std::wostream & stream, double value, int raw) const;
    void PrintNumber(cells::LCTX * lctx, std::wostream & stream, double value, int raw) const;
    void PrintNumber(cells::LCTX * lctx, std::wostream & stream, double value, CString & ltString,
                     int raw) const;
    void PrintCurrency(cells::LCTX * lctx, std::wostream & stream, double value, int raw) const;
    void PrintPercent(cells::LCTX * lctx, std::wostream & stream, double value, int raw) const;
    void PrintFraction(cells::LCTX * lctx, std::wostream & stream, double value, int raw) const;
    void PrintScientific(cells::LCTX * lctx, std::wostream & stream, double value, int raw) const;
    void PrintTime(cells::LCTX * lctx, std::wostream & stream, double value) const;
    void PrintTime(cells::LCTX * lctx, std::wostream & stream, int hour, int minute,
                   int second) const;
    void PrintDate(cells::LCTX * lctx, std::wostream & stream, double value) const;
    void PrintDate(cells::LCTX * lctx, std::wostream & stream, int day, int month, int year) const;
    void PrintBool(cells::LCTX * lctx, std::wostream & stream, double value) const;
    void PrintHex(cells::LCTX * lctx, std::wostream & stream, double value) const;
    void PrintOct(cells::LCTX * lctx, std::wostream & stream, double value) const;
    void PrintBin(cells::LCTX * lctx, std::wostream & stream, double value) const;

    // The encoding of files, and its short form without mask and custom text.
    void Read(CArchive & ar);
    void Write(CArchive & ar) const;
    void ReadA(CArchive & ar);
    void WriteA(CArchive & ar) const;

protected:
    // Prints the magnitude; signs are the caller's business.
    void PrintGeneralNumber(cells::LCTX * lctx, std::wostream & stream, double value,
                            int raw) const;
    void PrintFormatNumber(cells::LCTX * lctx, std::wostream & stream, double value,
                           wchar_t const * pattern, int raw) const;
    void PrintMonth(cells::LCTX * lctx, std::wostream & stream, int month) const;
    void PrintYear(cells::LCTX * lctx, std::wostream & stream, int year) const;

private:
    static constexpr uchar kPrecisionField = 0x0F;
    struct Field;
    static Field const kFields[];

    static uchar Bit(uchar options, int bit) { return options >> bit & 1; }
    bool Has(unsigned short bit) const { return (m_nSetMask & bit) != 0; }
    void Clear(unsigned short bit) { m_nSetMask = static_cast<unsigned short>(m_nSetMask & ~bit); }
    void Store(uchar & field, uchar bits, uchar value, unsigned short mask) {
        field = uchar((field & ~bits) | (value & bits));
        m_nSetMask |= mask;
    }
    void StoreData(wchar_t value, unsigned short mask) {
        m_nData = static_cast<unsigned short>(value);
        m_nSetMask |= mask;
    }
    bool SameField(Field const & field, CCNumberFormat const & other) const;
    void CopyField(Field const & field, CCNumberFormat const & source);
    bool Agrees(CCNumberFormat const & other, unsigned short fields) const;
    void TakeCustom(CCNumberFormat const & source) noexcept;
    CString EquivalentText(cells::LCTX * lctx) const;

    // Printing a fraction holds the precision at 0 for a moment and leaves it marked as set.
    mutable unsigned short m_nSetMask = kNumberFormatType | kNumberFormatCommas |
                                        kNumberFormatNegBr | kNumberFormatNegRed |
                                        kNumberFormatLTStringMode;
    unsigned short m_nData = 0; // LTString index plus 1, or the delimiter of a date
    uchar m_nType = C_NF_GENERAL;
    mutable uchar m_nOptionsA = 0; // precision, commas, negBr, negRed, ltStringMode
    uchar m_nOptionsB = 0;         // timeRange, timeSeconds, time, monthType, yearType, mdOrder
    bool m_bCustom = false;
    cells::internal::CompiledFormat m_Compiled; // of the custom text
};
