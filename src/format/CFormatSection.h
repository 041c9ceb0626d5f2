// The sections of a compiled custom number format.
//
// A format text such as "#,##0.00;(0)" is compiled into lists of small objects, one for each run of
// equal placeholders, each literal and each date part. Printing a number fills a CFormatState and
// lets the sections of one list append to its output, from left to right.
#pragma once

#include "format/LocaleContext.h"
#include "platform/CString.h"

#include <list>
#include <memory>
#include <string>

// What the sections of a list share while one number is printed.
struct CFormatState {
    cells::LCTX * lctx = nullptr;
    double value = 0; // a percentage already multiplied by 100
    int day = 0, month = 0, year = 0, hour = 0, minute = 0, second = 0;
    std::wstring fractionDigits, integerDigits;
    std::size_t fractionUsed = 0, integerUsed = 0; // digits that sections have taken
    bool atFirstDigit = true;                      // no integer section has printed yet
    bool seenSignificant = false;                  // leading zeros are behind
    CString output;
    int integerPlaceholders = 0, fractionPlaceholders = 0;
    bool grouping = false;
    int numeratorLimit = 0, denominatorLimit = 0;
    int fixedDenominator = 0; // 0: none
    int denominator = 0;      // of the fraction that was printed
};

class CVCELLS_API CFormatSection {
public:
    // The numbers of the section types. Digits come first, and from kText on a section is no part
    // of a date or time.
    enum Type : int {
        kLSignificantDigit = 0,
        kLInSignificantDigit = 1,
        kLInSignificantSpaceDigit = 2,
        kRSignificantDigit = 10,
        kRInSignificantDigit = 11,
        kRInSignificantSpaceDigit = 12,
        kYear = 20,
        kDay = 21,
        kMonth = 22,
        kHour = 23,
        kMinutes = 24,
        kSeconds = 25,
        kAMPM = 26,
        kText = 36,
        kColor = 37,
        kSpace = 38,
        kComma = 39,
        kDigitGrouping = 40,
        kFraction = 41,
        kLFraction = 42,
        kRFraction = 43,
        kHardRFraction = 44,
        kGeneral = 45,
    };

    CFormatSection() = default;
    CFormatSection(CFormatSection const &) = delete;
    CFormatSection & operator=(CFormatSection const &) = delete;
    virtual void Print(CFormatState & state) = 0;
    virtual int GetType() const = 0;
    // Takes in the next section, which has the same type; true when that one is to be dropped.
    virtual bool Merge(CFormatSection *) { return false; }
    virtual ~CFormatSection() = default;

    bool IsDigit() const { return GetType() < kYear; }
    bool IsIntegerDigit() const { return GetType() < kRSignificantDigit; }
};

// A run of equal placeholder characters.
class CVCELLS_API CCountSection : public CFormatSection {
public:
    explicit CCountSection(int count) : m_nCount(count) {}
    bool Merge(CFormatSection * next) override {
        m_nCount += static_cast<CCountSection *>(next)->m_nCount;
        return true;
    }
    int Count() const { return m_nCount; }

protected:
    // The digits that belong to a section: the first one also takes those for which the format has
    // no placeholder.
    std::wstring_view TakeInteger(CFormatState & state) const;
    std::wstring_view TakeFraction(CFormatState & state) const;
    void PrintSignificant(CFormatState & state, bool blanks) const;
    void PrintFraction(CFormatState & state, wchar_t filler) const; // 0: none

    int m_nCount;
};

class CVCELLS_API CLSignificantDigitSection : public CCountSection { // "#"
public:
    using CCountSection::CCountSection;
    void Print(CFormatState & state) override { PrintSignificant(state, false); }
    int GetType() const override { return kLSignificantDigit; }
};

class CVCELLS_API CLInSignificantDigitSection : public CCountSection { // "0"
public:
    using CCountSection::CCountSection;
    void Print(CFormatState & state) override;
    int GetType() const override { return kLInSignificantDigit; }
};

class CVCELLS_API CLInSignificantSpaceDigitSection : public CCountSection { // "?"
public:
    using CCountSection::CCountSection;
    void Print(CFormatState & state) override { PrintSignificant(state, true); }
    int GetType() const override { return kLInSignificantSpaceDigit; }
};

class CVCELLS_API CRSignificantDigitSection : public CCountSection { // "#" behind the point
public:
    using CCountSection::CCountSection;
    void Print(CFormatState & state) override { PrintFraction(state, 0); }
    int GetType() const override { return kRSignificantDigit; }
};

class CVCELLS_API CRInSignificantDigitSection : public CCountSection { // "0" behind the point
public:
    using CCountSection::CCountSection;
    void Print(CFormatState & state) override { PrintFraction(state, L'0'); }
    int GetType() const override { return kRInSignificantDigit; }
};

class CVCELLS_API CRInSignificantSpaceDigitSection : public CCountSection { // "?" behind the point
public:
    using CCountSection::CCountSection;
    void Print(CFormatState & state) override { PrintFraction(state, L' '); }
    int GetType() const override { return kRInSignificantSpaceDigit; }
};

class CVCELLS_API CYearSection : public CCountSection { // "y"
public:
    using CCountSection::CCountSection;
    void Print(CFormatState & state) override;
    int GetType() const override { return kYear; }
};

class CVCELLS_API CDaySection : public CCountSection { // "d"
public:
    using CCountSection::CCountSection;
    void Print(CFormatState & state) override;
    int GetType() const override { return kDay; }
};

class CVCELLS_API CMonthSection : public CCountSection { // "m"
public:
    using CCountSection::CCountSection;
    void Print(CFormatState & state) override;
    int GetType() const override { return kMonth; }
};

// A part of a time; in brackets it is elapsed time, which does not stop at a day.
class CVCELLS_API CTimeSection : public CCountSection {
public:
    CTimeSection(int count, bool elapsed) : CCountSection(count), m_bElapsed(elapsed) {}

protected:
    void PrintNumber(CFormatState & state, long long number) const;

    bool m_bElapsed;
};

class CVCELLS_API CHourSection : public CTimeSection { // "h"
public:
    using CTimeSection::CTimeSection;
    void Print(CFormatState & state) override;
    int GetType() const override { return kHour; }
    void SetTwelveHour() { m_bTwelveHour = true; }

private:
    bool m_bTwelveHour = false;
};

class CVCELLS_API CMinutesSection : public CTimeSection { // "m" among hours or seconds
public:
    using CTimeSection::CTimeSection;
    void Print(CFormatState & state) override;
    int GetType() const override { return kMinutes; }
};

class CVCELLS_API CSecondsSection : public CTimeSection { // "s"
public:
    using CTimeSection::CTimeSection;
    void Print(CFormatState & state) override;
    int GetType() const override { return kSeconds; }
};

class CVCELLS_API CAMPMSection : public CFormatSection { // "AM/PM", never the locale's words
public:
    void Print(CFormatState & state) override;
    int GetType() const override { return kAMPM; }
};

class CVCELLS_API CFormatTextSection : public CFormatSection { // literal text
public:
    explicit CFormatTextSection(CString text) : m_strText(std::move(text)) {}
    void Print(CFormatState & state) override { state.output += m_strText; }
    int GetType() const override { return kText; }
    bool Merge(CFormatSection * next) override {
        m_strText += static_cast<CFormatTextSection *>(next)->m_strText;
        return true;
    }

private:
    CString m_strText;
};

class CVCELLS_API CFormatColorSection : public CFormatSection { // "[Red]", which prints nothing
public:
    explicit CFormatColorSection(CString text) : m_strText(std::move(text)) {}
    void Print(CFormatState &) override {}
    int GetType() const override { return kColor; }
    bool Merge(CFormatSection * next) override {
        m_strText = static_cast<CFormatColorSection *>(next)->m_strText;
        return true;
    }
    CString const & Color() const { return m_strText; } // in capitals

private:
    CString m_strText;
};

class CVCELLS_API CSpaceSection : public CFormatSection { // "_x": a blank, whatever stands behind
public:
    explicit CSpaceSection(wchar_t unit) : m_nUnit(unit) {}
    void Print(CFormatState & state) override { state.output += L' '; }
    int GetType() const override { return kSpace; }
    wchar_t Unit() const { return m_nUnit; }

private:
    wchar_t m_nUnit;
};

class CVCELLS_API CCommaSection : public CFormatSection { // ".", the decimal separator
public:
    void Print(CFormatState & state) override;
    int GetType() const override { return kComma; }
};

class CVCELLS_API CDigitGroupingSection : public CFormatSection { // ",", which prints nothing
public:
    void Print(CFormatState & state) override { state.grouping = true; }
    int GetType() const override { return kDigitGrouping; }
    bool Merge(CFormatSection *) override { return true; }
};

class CVCELLS_API CFormatFractionSection : public CFormatSection { // "/"
public:
    void Print(CFormatState & state) override { state.output += L'/'; }
    int GetType() const override { return kFraction; }
    bool Merge(CFormatSection *) override { return true; }
};

class CVCELLS_API CLFractionSection : public CCountSection { // the numerator
public:
    using CCountSection::CCountSection;
    void Print(CFormatState & state) override;
    int GetType() const override { return kLFraction; }
};

class CVCELLS_API CRFractionSection : public CCountSection { // the denominator
public:
    using CCountSection::CCountSection;
    void Print(CFormatState & state) override;
    int GetType() const override { return kRFraction; }
};

class CVCELLS_API CHardRFraction : public CFormatSection { // a denominator given in the format
public:
    explicit CHardRFraction(int denominator) : m_nDenominator(denominator) {}
    void Print(CFormatState & state) override;
    int GetType() const override { return kHardRFraction; }
    int Denominator() const { return m_nDenominator; }

private:
    int m_nDenominator;
};

class CVCELLS_API CGeneralSection : public CFormatSection { // "General": the magnitude as it comes
public:
    void Print(CFormatState & state) override;
    int GetType() const override { return kGeneral; }
};

// One part of a format: its sections, and the type of number that they show (a NumberFormatType; 0
// where nothing tells).
struct CVCELLS_API CFormatSectionList {
    std::list<std::unique_ptr<CFormatSection>> sections;
    uchar type = 0;
    int integerPlaceholders = 0, fractionPlaceholders = 0;
};

namespace cells::internal {

// Compiles one part of a format text. Nothing is rejected: what is no code is text.
CVCELLS_API std::unique_ptr<CFormatSectionList> CompileFormatSection(std::wstring_view text);

} // namespace cells::internal
