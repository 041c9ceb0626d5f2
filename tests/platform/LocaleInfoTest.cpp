#include "platform/LocaleInfo.h"
#include "format/LocaleContext.h"
#include "platform/Utf.h"

#include <gtest/gtest.h>

using namespace kbt::multilang;

namespace {

cells::LCTX Context(wchar_t const * tag) {
    return cells::LCTX(kbt::globals::global_environment().locales_cache().find(tag));
}

} // namespace

TEST(InvariantLocale, HasTheDefaultOfEverySetting) {
    cells::LCTX const & l = *cells::invariant_LCTX();
    EXPECT_EQ(l.numberDeciamalSeparartor(), L'.');
    EXPECT_EQ(l.numberGroupSeparartor(), L',');
    EXPECT_EQ(l.numberGroupSize(), 3);
    EXPECT_EQ(l.numberPrecision(), 2);
    EXPECT_STREQ(l.currencyString(), L"$");
    EXPECT_EQ(l.currencyPrecision(), 2);
    EXPECT_EQ(l.currencyPositiveOrder(), 0);
    EXPECT_EQ(l.currencyNegativeOrder(), 0);
    EXPECT_EQ(l.dateSeparator(), L'/');
    EXPECT_EQ(l.dateOrder(), 1);
    EXPECT_EQ(l.dateYearSize(), 4);
    EXPECT_EQ(l.dateYearPosition(), 1);
    EXPECT_EQ(l.defaultDateFormat(), 0x10);
    EXPECT_EQ(l.days2(), 0);
    EXPECT_EQ(l.months2(), 0);
    EXPECT_EQ(l.timeSeparator(), L':');
    EXPECT_EQ(l.timeRange(), 12);
    EXPECT_STREQ(l.timeAMString(), L"AM");
    EXPECT_EQ(l.listSeparartor(), L',');
    EXPECT_EQ(l.listSeparartor2(), L';');
    EXPECT_EQ(l.countryCode(), 1);
    EXPECT_STREQ(l.info(1), L"007F");
    EXPECT_STREQ(l.dateLongMonths(12), L"December");
    EXPECT_STREQ(l.dateShortMonths(13), L"");
    EXPECT_STREQ(l.info(0), L"");
    EXPECT_STREQ(l.info(90), L"");
}

TEST(LocaleNames, OfTheProcessWithoutALocaleMeanTheInvariantOne) {
    for (wchar_t const * name : {L"", L"C", L"POSIX", L"C.UTF-8", L"en_US_POSIX"})
        EXPECT_TRUE(NormalizeLocaleName(name).IsEmpty());
    EXPECT_EQ(NormalizeLocaleName(L"de-DE"), L"de_DE");
    EXPECT_EQ(NormalizeLocaleName(L"fr_FR.UTF-8@euro"), L"fr_FR");
}

TEST(LocaleInfo, MissingItemsStandForTheInvariantOnes) {
    LocaleItems items;
    items[LOCALE_SDECIMAL] = L",";
    items[LOCALE_SLIST] = L",";
    CLocaleInfo const info(L"test", items, nullptr);
    EXPECT_TRUE(info.Get().listReplaced);
    EXPECT_EQ(info.Get().list, L';');
    EXPECT_EQ(info.Get().list2, L'\\');
    EXPECT_EQ(info.Get().am, L"AM");
}

#if CVCELLS_WITH_ICU
struct LocaleRow {
    wchar_t const * tag;
    wchar_t decimal, group, list, list2;
    int positive, negative;
    wchar_t const * date;
    int dateOrder, yearPosition, country;
};

TEST(IcuLocales, GiveTheirFacts) {
    LocaleRow const rows[] = {
        {L"en-US", '.', ',', ',', ';', 0, 0, L"M/d/yyyy", 1, 2, 1},
        {L"de-DE", ',', '.', ';', '\\', 3, 8, L"dd.MM.yyyy", 0, 2, 49},
        {L"fr-FR", ',', 0xA0, ';', '\\', 3, 8, L"dd/MM/yyyy", 0, 2, 33},
        {L"sv-SE", ',', 0xA0, ';', '\\', 3, 8, L"yyyy-MM-dd", 1, 0, 46},
        {L"ja-JP", '.', ',', ',', ';', 0, 1, L"yyyy/MM/dd", 1, 0, 81},
        {L"de-CH", '.', 0x2019, ',', ';', 2, 2, L"dd.MM.yyyy", 0, 2, 41},
        {L"en-GB", '.', ',', ',', ';', 0, 1, L"dd/MM/yyyy", 0, 2, 44},
        {L"pl-PL", ',', 0xA0, ';', '\\', 3, 8, L"d.MM.yyyy", 0, 2, 48},
        {L"cs-CZ", ',', 0xA0, ';', '\\', 3, 8, L"dd.MM.yyyy", 0, 2, 420},
        {L"hi-IN", '.', ',', ',', ';', 0, 1, L"d/M/yyyy", 0, 2, 91},
        {L"ar-EG", '.', ',', ',', ';', 3, 8, L"d/M/yyyy", 0, 2, 20},
        {L"pt-BR", ',', '.', ';', '\\', 2, 9, L"dd/MM/yyyy", 0, 2, 55},
        {L"bg-BG", ',', 0xA0, ';', '\\', 3, 8, L"d.MM.yyyy", 0, 2, 359},
        {L"invariant", '.', ',', ',', ';', 0, 0, L"M/d/yyyy", 1, 1, 1},
    };
    for (LocaleRow const & row : rows) {
        cells::LCTX const l = Context(row.tag);
        SCOPED_TRACE(cells::ToUtf8(CString(row.tag)));
        EXPECT_EQ(l.numberDeciamalSeparartor(), row.decimal);
        EXPECT_EQ(l.numberGroupSeparartor(), row.group);
        EXPECT_EQ(l.listSeparartor(), row.list);
        EXPECT_EQ(l.listSeparartor2(), row.list2);
        EXPECT_EQ(l.currencyPositiveOrder(), row.positive);
        EXPECT_EQ(l.currencyNegativeOrder(), row.negative);
        EXPECT_STREQ(l.info(LOCALE_SSHORTDATE), row.date);
        EXPECT_EQ(l.dateOrder(), row.dateOrder);
        EXPECT_EQ(l.dateYearPosition(), row.yearPosition);
        EXPECT_EQ(l.countryCode(), row.country);
        EXPECT_EQ(l.dateYearSize(), 4);
        EXPECT_STREQ(l.negativeSign(), L"-");
    }
}

TEST(IcuLocales, NameMonthsAndDaysByThemselves) {
    cells::LCTX const polish = Context(L"pl-PL");
    EXPECT_STREQ(polish.dateLongMonths(1), L"stycze\x144");
    EXPECT_STREQ(Context(L"de-DE").dateShortMonths(1), L"Jan");
    EXPECT_STREQ(Context(L"en-US").info(LOCALE_SDAYNAME1), L"Monday");
    EXPECT_STREQ(Context(L"en-US").info(LOCALE_SDAYNAME1 + 6), L"Sunday");
    EXPECT_EQ(Context(L"ja-JP").currencyPrecision(), 0);
    EXPECT_EQ(Context(L"da-DK").timeSeparator(), L'.');
    EXPECT_EQ(Context(L"de-DE").timeRange(), 24);
    EXPECT_STREQ(Context(L"de-DE").timeAMString(), L"AM");
    EXPECT_EQ(Context(L"hi-IN").numberGroupSize(), 3);
}
#endif
