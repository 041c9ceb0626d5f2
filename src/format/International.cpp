#include "format/International.h"

#include "format/BuiltInFormats.h"
#include "platform/Dialogs.h"
#include "platform/LocaleInfo.h"
#include "platform/Resources.h"

#include <algorithm>
#include <cwchar>
#include <locale.h>

namespace {

using namespace kbt::multilang;

constexpr int kTextLength = 32;

// A text setting of at most 32 units, and a terminator.
struct Text {
    wchar_t units[kTextLength + 1] = {};
    Text() = default;
    Text(wchar_t const * text) { Set(text); }
    void Set(wchar_t const * text) {
        if (!text) return;
        CString const cut = CString(text).Left(kTextLength);
        std::copy_n(cut.GetString(), cut.GetLength() + 1, units);
    }
};

struct Settings {
    wchar_t listSeparator = L',', listSeparator2 = L';';
    wchar_t numberDecimal = L'.', numberGroup = L',';
    wchar_t dateSeparator = L'/', timeSeparator = L':';
    int numberGroupSize = 3, numberPrecision = 2;
    int currencyGroupSize = 3, currencyPrecision = 2;
    int currencyPositiveOrder = 0, currencyNegativeOrder = 0;
    int dateOrder = 0, dateYearSize = 4, timeRange = 12;
    uchar dateYearPosition = 1, defaultDateFormat = 0x10;
    Text currency = L"$", am = L"AM", pm = L"PM";
    Text longMonths[12] = {L"January",   L"February", L"March",    L"April",
                           L"May",       L"June",     L"July",     L"August",
                           L"September", L"October",  L"November", L"December"};
    Text shortMonths[12] = {L"Jan", L"Feb", L"Mar", L"Apr", L"May", L"Jun",
                            L"Jul", L"Aug", L"Sep", L"Oct", L"Nov", L"Dec"};
};

Settings & Current() {
    static Settings settings;
    return settings;
}

LocaleItems & UserTable() {
    static LocaleItems * const table = new LocaleItems;
    return *table;
}

LocaleItems & SystemTable() {
    static LocaleItems * const table = new LocaleItems;
    return *table;
}

void FillTable(LocaleItems & table, CLocaleInfo const & locale) {
    for (unsigned int item = 1; item < kLocaleItems; ++item) table[item] = locale.Item(item);
}

void ReadNumbers(CLocaleInfo const & locale, Settings & settings) {
    CLocaleInfo::Facts const & facts = locale.Get();
    settings.numberDecimal = facts.numberDecimal;
    settings.numberGroup = facts.numberGroup;
    settings.numberGroupSize = facts.numberGroupSize;
    settings.numberPrecision = facts.numberPrecision;
    settings.currency.Set(locale.Item(LOCALE_SCURRENCY));
    settings.currencyGroupSize = facts.currencyGroupSize;
    settings.currencyPrecision = facts.currencyPrecision;
    settings.currencyPositiveOrder = facts.currencyPositiveOrder;
    settings.currencyNegativeOrder = facts.currencyNegativeOrder;
    settings.listSeparator = facts.list;
    settings.listSeparator2 = facts.list2;
}

void ReadDates(CLocaleInfo const & locale, Settings & settings) {
    CLocaleInfo::Facts const & facts = locale.Get();
    settings.dateSeparator = facts.dateSeparator;
    settings.dateOrder = facts.dateOrder == 0 ? 1 : 0;
    settings.dateYearSize = facts.dateYearSize == 4 ? 4 : 2;
    settings.dateYearPosition = facts.dateYearPosition;
    settings.defaultDateFormat = facts.defaultDateFormat;
    settings.timeSeparator = facts.timeSeparator;
    settings.timeRange = facts.timeRange;
    settings.am.Set(facts.am);
    settings.pm.Set(facts.pm);
    for (unsigned int month = 0; month < 12; ++month) {
        settings.longMonths[month].Set(locale.Item(LOCALE_SMONTHNAME1 + month));
        settings.shortMonths[month].Set(locale.Item(LOCALE_SABBREVMONTHNAME1 + month));
    }
}

// A C library locale object of the user's collation, character, money, number and time rules. It
// is kept beside the process's own locale, which is never changed; no result depends on it.
void OpenCLibraryLocale(CString const & name) {
    static locale_t object = nullptr;
    std::string narrow;
    for (wchar_t unit : name.View()) narrow += unit < 0x80 ? char(unit) : '?';
    int const masks =
        LC_COLLATE_MASK | LC_CTYPE_MASK | LC_MONETARY_MASK | LC_NUMERIC_MASK | LC_TIME_MASK;
    locale_t const opened = newlocale(masks, narrow.c_str(), nullptr);
    if (!opened) return;
    if (object) freelocale(object);
    object = opened;
}

// The text holds one "%s" for the separator that is used instead.
void WarnOfListSeparator(wchar_t separator) {
    CString const text = cells::LoadString(cells::kStringListSeparator);
    int const place = text.Find(L"%s");
    CString shown = text;
    if (place >= 0) shown = text.Left(place) + CString(separator) + text.Mid(place + 2);
    cells::ShowMessage(cells::kStringListSeparator, shown);
}

Text * MonthText(Text (&months)[12], int month) {
    return month >= 1 && month <= 12 ? &months[month - 1] : nullptr;
}

} // namespace

int InitInternationalSettings() {
    CLocaleInfosCache & cache = kbt::globals::global_environment().locales_cache();
    cache.forgetUser();
    CLocaleInfo const & user = cache.user();
    FillTable(UserTable(), user);
    FillTable(SystemTable(), cache.system());
    cells::internal::BuildBuiltInFormats(user);
    ReadNumbers(user, Current());
    ReadDates(user, Current());
    OpenCLibraryLocale(user.Name());
    if (user.Get().listReplaced) WarnOfListSeparator(Current().listSeparator);
    return 1;
}

CString getLocaleInfo(unsigned int item, int userDefault) {
    if (item >= kLocaleItems) return {};
    return (userDefault ? UserTable() : SystemTable())[item];
}

void SetListSeparartor(wchar_t value) { Current().listSeparator = value; }
wchar_t GetListSeparartor() { return Current().listSeparator; }
void SetListSeparartor2(wchar_t value) { Current().listSeparator2 = value; }
wchar_t GetListSeparartor2() { return Current().listSeparator2; }
void SetNumberDeciamalSeparartor(wchar_t value) { Current().numberDecimal = value; }
wchar_t GetNumberDeciamalSeparartor() { return Current().numberDecimal; }
void SetNumberGroupSeparartor(wchar_t value) { Current().numberGroup = value; }
wchar_t GetNumberGroupSeparartor() { return Current().numberGroup; }
void SetNumberGroupSize(int value) { Current().numberGroupSize = value; }
int GetNumberGroupSize() { return Current().numberGroupSize; }
void SetNumberPrecision(int value) { Current().numberPrecision = value; }
int GetNumberPrecision() { return Current().numberPrecision; }
void SetCurrencyString(wchar_t const * value) { Current().currency.Set(value); }
wchar_t const * GetCurrencyString() { return Current().currency.units; }
void SetCurrencyGroupSize(int value) { Current().currencyGroupSize = value; }
int GetCurrencyGroupSize() { return Current().currencyGroupSize; }
void SetCurrencyPrecision(int value) { Current().currencyPrecision = value; }
int GetCurrencyPrecision() { return Current().currencyPrecision; }
void SetCurrencyPositiveOrder(int value) { Current().currencyPositiveOrder = value; }
int GetCurrencyPositiveOrder() { return Current().currencyPositiveOrder; }
void SetCurrencyNegativeOrder(int value) { Current().currencyNegativeOrder = value; }
int GetCurrencyNegativeOrder() { return Current().currencyNegativeOrder; }
void SetCurrencyGroupSeparartor(wchar_t) {}
wchar_t GetCurrencyGroupSeparartor() { return Current().numberGroup; }
void SetCurrencyDeciamalSeparartor(wchar_t) {}
wchar_t GetCurrencyDeciamalSeparartor() { return Current().numberDecimal; }
void SetNegativeSign(wchar_t const *) {}
wchar_t const * GetNegativeSign() { return L"-"; }
void SetPositiveSign(wchar_t const *) {}
wchar_t const * GetPositiveSign() { return L"+"; }
void SetDateSeparator(wchar_t value) { Current().dateSeparator = value; }
wchar_t GetDateSeparator() { return Current().dateSeparator; }
void SetDateOrder(int value) { Current().dateOrder = value; }
int GetDateOrder() { return Current().dateOrder; }
void SetDateYearSize(int value) { Current().dateYearSize = value; }
int GetDateYearSize() { return Current().dateYearSize; }
uchar GetDateYearPosition() { return Current().dateYearPosition; }

void SetDateLongMonths(int month, wchar_t const * value) {
    if (Text * text = MonthText(Current().longMonths, month)) text->Set(value);
}
wchar_t const * GetDateLongMonths(int month) {
    Text const * text = MonthText(Current().longMonths, month);
    return text ? text->units : nullptr;
}
void SetDateShortMonths(int month, wchar_t const * value) {
    if (Text * text = MonthText(Current().shortMonths, month)) text->Set(value);
}
wchar_t const * GetDateShortMonths(int month) {
    Text const * text = MonthText(Current().shortMonths, month);
    return text ? text->units : nullptr;
}

void SetTimeSeparator(wchar_t value) { Current().timeSeparator = value; }
wchar_t GetTimeSeparator() { return Current().timeSeparator; }
void SetTimeRange(int value) { Current().timeRange = value; }
int GetTimeRange() { return Current().timeRange; }
void SetTimeAMString(wchar_t const * value) { Current().am.Set(value); }
wchar_t const * GetTimeAMString() { return Current().am.units; }
void SetTimePMString(wchar_t const * value) { Current().pm.Set(value); }
wchar_t const * GetTimePMString() { return Current().pm.units; }
uchar GetDefaultDateFormat() { return Current().defaultDateFormat; }
