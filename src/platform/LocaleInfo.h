// The kbt locale family: facts of a locale, and where contexts read them.
//
// CLocaleInfo holds the texts of the LOCALE_ items 1 to 89 of one locale and the facts decoded from
// them. It is made once and never changes. CLocaleInfosCache owns one CLocaleInfo a locale for the
// life of the process. CLegacyLocaleContext is what scanners and printing read: one pointer and
// plain accessors. The misspelled names are the system's own.
#pragma once

#include "platform/CString.h"

#include <array>
#include <map>
#include <memory>

namespace kbt::multilang {

// LOCALE_ items by number.
enum LocaleItem : unsigned int {
    LOCALE_ILANGUAGE = 1,
    LOCALE_ICOUNTRY = 5,
    LOCALE_SLIST = 12,
    LOCALE_SDECIMAL = 14,
    LOCALE_STHOUSAND = 15,
    LOCALE_SGROUPING = 16,
    LOCALE_IDIGITS = 17,
    LOCALE_ILZERO = 18,
    LOCALE_SNATIVEDIGITS = 19,
    LOCALE_SCURRENCY = 20,
    LOCALE_SINTLSYMBOL = 21,
    LOCALE_SMONDECIMALSEP = 22,
    LOCALE_SMONTHOUSANDSEP = 23,
    LOCALE_SMONGROUPING = 24,
    LOCALE_ICURRDIGITS = 25,
    LOCALE_IINTLCURRDIGITS = 26,
    LOCALE_ICURRENCY = 27,
    LOCALE_INEGCURR = 28,
    LOCALE_SDATE = 29,
    LOCALE_STIME = 30,
    LOCALE_SSHORTDATE = 31,
    LOCALE_IDATE = 33,
    LOCALE_ITIME = 35,
    LOCALE_ICENTURY = 36,
    LOCALE_ITLZERO = 37,
    LOCALE_IDAYLZERO = 38,
    LOCALE_IMONLZERO = 39,
    LOCALE_S1159 = 40,
    LOCALE_S2359 = 41,
    LOCALE_SDAYNAME1 = 42,
    LOCALE_SABBREVDAYNAME1 = 49,
    LOCALE_SMONTHNAME1 = 56,
    LOCALE_SABBREVMONTHNAME1 = 68,
    LOCALE_SPOSITIVESIGN = 80,
    LOCALE_SNEGATIVESIGN = 81,
    LOCALE_SISO639LANGNAME = 89,
};

constexpr unsigned int kLocaleItems = 90; // item 0 is empty
using LocaleItems = std::array<CString, kLocaleItems>;

// The order of texts in a locale. Negative, 0 or positive.
class Collator {
public:
    virtual ~Collator() = default;
    virtual int Compare(wchar_t const * a, wchar_t const * b, bool caseSensitive) const = 0;
};

class CVCELLS_API CLocaleInfo {
public:
    // Decodes the items; a missing or empty one stands for the invariant locale's. A null collator
    // means the order without locale data.
    CLocaleInfo(CString name, LocaleItems items, std::unique_ptr<Collator> collator);
    // The invariant locale.
    CLocaleInfo();

    CString const & Name() const { return m_Name; }
    // The text of an item; empty outside 1 to 89.
    CString const & Item(unsigned int item) const {
        return m_Items[item < kLocaleItems ? item : 0];
    }
    multilang::Collator const * Collator() const { return m_Collator.get(); }

    // Facts decoded from the items, one for each accessor of CLegacyLocaleContext.
    struct Facts {
        wchar_t numberDecimal, numberGroup, currencyDecimal, currencyGroup;
        wchar_t dateSeparator, timeSeparator, list, list2;
        int numberGroupSize, numberPrecision, currencyGroupSize, currencyPrecision;
        int currencyPositiveOrder, currencyNegativeOrder;
        int dateOrder, dateYearSize, timeRange, days2, months2, countryCode;
        uchar dateYearPosition, defaultDateFormat;
        bool listReplaced; // the list separator of the locale was also its decimal separator
        CString am, pm;
    };
    Facts const & Get() const { return m_Facts; }

private:
    void DecodeNumbers();
    void DecodeDates();
    void DecodeLists();
    wchar_t Character(unsigned int item) const;
    int Number(unsigned int item) const;

    CString m_Name;
    LocaleItems m_Items;
    std::unique_ptr<multilang::Collator> m_Collator;
    Facts m_Facts{};
};

class CVCELLS_API CLocaleInfosCache {
public:
    CLocaleInfo const & invariant();
    // The locale of the host's hook, else of the environment; and that of the environment alone.
    CLocaleInfo const & user();
    CLocaleInfo const & system();
    // The locale of a tag such as "de-DE" or "de_DE.UTF-8". An empty name, "C" and "POSIX" mean
    // the invariant facts; so does every tag in a build without ICU.
    CLocaleInfo const & find(CString const & name);
    // Whether the language of a tag is known, so that its facts are not those of a fallback.
    bool knows(CString const & name) const;
    // Makes the next user() ask for the locale's name again.
    void forgetUser() { m_User = nullptr; }

private:
    std::map<CString, std::unique_ptr<CLocaleInfo>> m_Infos;
    CLocaleInfo const * m_User = nullptr;
};

// A tag in the form that names a locale in the cache: "de_DE"; empty for the invariant locale.
CVCELLS_API CString NormalizeLocaleName(CString const & name);

// The locale context of the engine's older layers.
class CVCELLS_API CLegacyLocaleContext {
public:
    explicit CLegacyLocaleContext(CLocaleInfo const & locale) : m_Locale(&locale) {}

    wchar_t numberDeciamalSeparartor() const { return Facts().numberDecimal; }
    wchar_t numberGroupSeparartor() const { return Facts().numberGroup; }
    int numberGroupSize() const { return Facts().numberGroupSize; }
    int numberPrecision() const { return Facts().numberPrecision; }
    wchar_t currencyDeciamalSeparartor() const { return Facts().currencyDecimal; }
    wchar_t currencyGroupSeparartor() const { return Facts().currencyGroup; }
    int currencyGroupSize() const { return Facts().currencyGroupSize; }
    int currencyPrecision() const { return Facts().currencyPrecision; }
    wchar_t const * currencyString() const { return m_Locale->Item(LOCALE_SCURRENCY); }
    int currencyPositiveOrder() const { return Facts().currencyPositiveOrder; } // 0 to 3
    int currencyNegativeOrder() const { return Facts().currencyNegativeOrder; } // 0 to 15
    // The signs are these two everywhere, so that what is printed can be read.
    wchar_t const * negativeSign() const { return L"-"; }
    wchar_t const * positiveSign() const { return L"+"; }
    wchar_t dateSeparator() const { return Facts().dateSeparator; }
    int dateOrder() const { return Facts().dateOrder; }       // 0: the day before the month
    int dateYearSize() const { return Facts().dateYearSize; } // 4, 2 or 0
    uchar dateYearPosition() const { return Facts().dateYearPosition; } // 0: the year first
    wchar_t const * dateLongMonths(int month) const { return Month(LOCALE_SMONTHNAME1, month); }
    wchar_t const * dateShortMonths(int month) const {
        return Month(LOCALE_SABBREVMONTHNAME1, month);
    }
    uchar defaultDateFormat() const { return Facts().defaultDateFormat; } // option byte B
    int days2() const { return Facts().days2; }                           // 1: days in two digits
    int months2() const { return Facts().months2; }                       // 1: months in two digits
    wchar_t timeSeparator() const { return Facts().timeSeparator; }
    int timeRange() const { return Facts().timeRange; } // 12 or 24
    wchar_t const * timeAMString() const { return Facts().am; }
    wchar_t const * timePMString() const { return Facts().pm; }
    wchar_t listSeparartor() const { return Facts().list; }
    wchar_t listSeparartor2() const { return Facts().list2; }
    int countryCode() const { return Facts().countryCode; } // that of the telephone
    wchar_t const * info(unsigned int item) const { return m_Locale->Item(item); }

    CLocaleInfo const & locale() const { return *m_Locale; }

private:
    CLocaleInfo::Facts const & Facts() const { return m_Locale->Get(); }
    wchar_t const * Month(unsigned int first, int month) const {
        return month >= 1 && month <= 12 ? m_Locale->Item(first + unsigned(month) - 1).GetString()
                                         : L"";
    }

    CLocaleInfo const * m_Locale;
};

} // namespace kbt::multilang

namespace kbt::globals {

class CVCELLS_API Environment {
public:
    multilang::CLocaleInfosCache & locales_cache() { return m_Locales; }

private:
    multilang::CLocaleInfosCache m_Locales;
};

// The one environment of the process; it is never destroyed.
CVCELLS_API Environment & global_environment();

} // namespace kbt::globals
