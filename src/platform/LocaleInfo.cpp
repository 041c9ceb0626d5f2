#include "platform/LocaleInfo.h"

#include "platform/LocaleSource.h"
#include "platform/Services.h"
#include "platform/Text.h"
#include "platform/Utf.h"

#include <cstdlib>
#include <initializer_list>

namespace kbt::multilang {
namespace {

void Fill(LocaleItems & items, unsigned int first, std::initializer_list<wchar_t const *> texts) {
    for (wchar_t const * text : texts) items[first++] = text;
}

LocaleItems MakeInvariantItems() {
    LocaleItems items;
    Fill(items, LOCALE_ILANGUAGE, {L"007F"});
    Fill(items, LOCALE_ICOUNTRY, {L"1"});
    Fill(items, LOCALE_SLIST, {L","});
    Fill(items, LOCALE_SDECIMAL, {L".", L",", L"3;0", L"2", L"1", L"0123456789", L"$", L"USD "});
    Fill(items, LOCALE_SMONDECIMALSEP, {L".", L",", L"3;0", L"2", L"2", L"0", L"0", L"/", L":"});
    Fill(items, LOCALE_SSHORTDATE, {L"M/d/yyyy"});
    Fill(items, LOCALE_IDATE, {L"0"});
    Fill(items, LOCALE_ITIME, {L"0", L"1", L"1", L"0", L"0", L"AM", L"PM"});
    Fill(items, LOCALE_SDAYNAME1,
         {L"Monday", L"Tuesday", L"Wednesday", L"Thursday", L"Friday", L"Saturday", L"Sunday"});
    Fill(items, LOCALE_SABBREVDAYNAME1, {L"Mon", L"Tue", L"Wed", L"Thu", L"Fri", L"Sat", L"Sun"});
    Fill(items, LOCALE_SMONTHNAME1,
         {L"January", L"February", L"March", L"April", L"May", L"June", L"July", L"August",
          L"September", L"October", L"November", L"December"});
    Fill(items, LOCALE_SABBREVMONTHNAME1,
         {L"Jan", L"Feb", L"Mar", L"Apr", L"May", L"Jun", L"Jul", L"Aug", L"Sep", L"Oct", L"Nov",
          L"Dec"});
    Fill(items, LOCALE_SNEGATIVESIGN, {L"-"});
    Fill(items, LOCALE_SISO639LANGNAME, {L"iv"});
    return items;
}

LocaleItems const & InvariantItems() {
    static LocaleItems const * const items = new LocaleItems(MakeInvariantItems());
    return *items;
}

CString FromEnvironment(std::initializer_list<char const *> names) {
    for (char const * name : names)
        if (char const * value = std::getenv(name); value && *value) return cells::FromUtf8(value);
    return {};
}

// The place of the year among the parts of a short date pattern, and how many letters it has.
struct YearPart {
    int position = -1, letters = 0;
};

YearPart FindYear(CString const & pattern, wchar_t separator) {
    YearPart year;
    int part = 0;
    bool fresh = true;
    for (wchar_t unit : pattern.View()) {
        if (unit == separator) {
            ++part;
            fresh = true;
        } else if (CString(L"DdMmYy").Find(unit) >= 0) {
            bool const isYear = unit == L'y' || unit == L'Y';
            if (fresh && isYear && year.position < 0) year.position = part;
            if (isYear && year.position == part) ++year.letters;
            fresh = false;
        }
    }
    return year;
}

} // namespace

CLocaleInfo::CLocaleInfo()
    : CLocaleInfo(CString(), InvariantItems(), cells::internal::MakeRootCollator()) {
    m_Facts.dateYearPosition = 1;
}

CLocaleInfo::CLocaleInfo(CString name, LocaleItems items,
                         std::unique_ptr<multilang::Collator> collator)
    : m_Name(std::move(name)), m_Items(std::move(items)), m_Collator(std::move(collator)) {
    for (unsigned int item = 1; item < kLocaleItems; ++item)
        if (m_Items[item].IsEmpty()) m_Items[item] = InvariantItems()[item];
    DecodeNumbers();
    DecodeDates();
    DecodeLists();
}

wchar_t CLocaleInfo::Character(unsigned int item) const { return m_Items[item].GetAt(0); }

int CLocaleInfo::Number(unsigned int item) const {
    int number = 0;
    for (wchar_t unit : m_Items[item].View()) {
        if (!cells::IsDigit(unit) || number > 99999) break;
        number = number * 10 + int(unit - L'0');
    }
    return number;
}

void CLocaleInfo::DecodeNumbers() {
    m_Facts.numberDecimal = Character(LOCALE_SDECIMAL);
    m_Facts.numberGroup = Character(LOCALE_STHOUSAND);
    m_Facts.numberGroupSize = Number(LOCALE_SGROUPING);
    m_Facts.numberPrecision = Number(LOCALE_IDIGITS);
    m_Facts.currencyDecimal = Character(LOCALE_SMONDECIMALSEP);
    m_Facts.currencyGroup = Character(LOCALE_SMONTHOUSANDSEP);
    m_Facts.currencyGroupSize = Number(LOCALE_SMONGROUPING);
    m_Facts.currencyPrecision = Number(LOCALE_ICURRDIGITS);
    m_Facts.currencyPositiveOrder = Number(LOCALE_ICURRENCY) & 3;
    m_Facts.currencyNegativeOrder = Number(LOCALE_INEGCURR) & 15;
    m_Facts.countryCode = Number(LOCALE_ICOUNTRY);
}

void CLocaleInfo::DecodeDates() {
    m_Facts.dateSeparator = Character(LOCALE_SDATE);
    m_Facts.timeSeparator = Character(LOCALE_STIME);
    bool const dayFirst = Number(LOCALE_IDATE) % 2 == 1;
    m_Facts.dateOrder = dayFirst ? 0 : 1;
    YearPart const year = FindYear(m_Items[LOCALE_SSHORTDATE], m_Facts.dateSeparator);
    m_Facts.dateYearPosition = year.position < 0 ? 1 : uchar(year.position);
    m_Facts.dateYearSize = year.letters >= 3 ? 4 : year.letters >= 1 ? 2 : 0;
    int const yearType = m_Facts.dateYearSize == 4 ? 0 : m_Facts.dateYearSize == 2 ? 2 : 1;
    m_Facts.defaultDateFormat = uchar((dayFirst ? 0x90 : 0x10) | yearType << 5);
    m_Facts.timeRange = Number(LOCALE_ITIME) == 0 ? 12 : 24;
    m_Facts.days2 = Number(LOCALE_IDAYLZERO) != 0;
    m_Facts.months2 = Number(LOCALE_IMONLZERO) != 0;
    m_Facts.am = m_Items[LOCALE_S1159];
    m_Facts.pm = m_Items[LOCALE_S2359];
}

// The separators of a list never equal the decimal separator, so that the grammar can tell them.
void CLocaleInfo::DecodeLists() {
    wchar_t list = Character(LOCALE_SLIST);
    m_Facts.listReplaced = list == m_Facts.numberDecimal;
    if (m_Facts.listReplaced) list = m_Facts.numberDecimal == L',' ? L';' : L',';
    bool const semicolon = list == L';' || m_Facts.numberDecimal == L';';
    bool const comma = list == L',' || m_Facts.numberDecimal == L',';
    m_Facts.list = list;
    m_Facts.list2 = !semicolon ? L';' : comma ? L'\\' : L',';
}

CString NormalizeLocaleName(CString const & name) {
    CString tag;
    for (wchar_t unit : name.View()) {
        if (unit == L'.' || unit == L'@') break;
        tag += unit == L'-' ? L'_' : unit;
    }
    bool const invariant = tag.CompareNoCase(L"C") == 0 || tag.CompareNoCase(L"POSIX") == 0 ||
                           tag.CompareNoCase(L"en_US_POSIX") == 0 ||
                           tag.CompareNoCase(L"invariant") == 0;
    return invariant ? CString() : tag;
}

CLocaleInfo const & CLocaleInfosCache::invariant() { return find(CString()); }

CLocaleInfo const & CLocaleInfosCache::user() {
    auto const & hook = cells::PlatformServices().localeName;
    if (!m_User) m_User = hook ? &find(hook()) : &system();
    return *m_User;
}

CLocaleInfo const & CLocaleInfosCache::system() {
    return find(FromEnvironment({"LC_ALL", "LANG"}));
}

bool CLocaleInfosCache::knows(CString const & name) const {
    CString const tag = NormalizeLocaleName(name);
    return tag.IsEmpty() || cells::internal::HasLocale(tag);
}

CLocaleInfo const & CLocaleInfosCache::find(CString const & name) {
    CString const tag = NormalizeLocaleName(name);
    std::unique_ptr<CLocaleInfo> & info = m_Infos[tag];
    if (!info)
        info = tag.IsEmpty() ? std::make_unique<CLocaleInfo>() : cells::internal::LoadLocale(tag);
    return *info;
}

} // namespace kbt::multilang

namespace kbt::globals {

Environment & global_environment() {
    static Environment * const environment = new Environment;
    return *environment;
}

} // namespace kbt::globals
