// The process-wide legacy settings of the locale, and the tables of locale texts.
//
// InitInternationalSettings fills the settings from the user's locale. Printing and scanning do not
// read them: they go through a cells::LCTX. Hosts read and set them. The misspelled names are the
// system's own.
//
// Four pairs are odd, and meant so: the setters of the currency separators and of the signs do
// nothing, and their getters give the number separators, "-" and "+".
#pragma once

#include "platform/CString.h"

CVCELLS_API int InitInternationalSettings();

// The text of LOCALE_ item 1 to 89 of the user's locale, or, with 0, of the system's; any other
// number gives the empty string.
CVCELLS_API CString getLocaleInfo(unsigned int item, int userDefault);

CVCELLS_API void SetListSeparartor(wchar_t value);
CVCELLS_API wchar_t GetListSeparartor();
CVCELLS_API void SetListSeparartor2(wchar_t value);
CVCELLS_API wchar_t GetListSeparartor2();
CVCELLS_API void SetNumberDeciamalSeparartor(wchar_t value);
CVCELLS_API wchar_t GetNumberDeciamalSeparartor();
CVCELLS_API void SetNumberGroupSeparartor(wchar_t value);
CVCELLS_API wchar_t GetNumberGroupSeparartor();
CVCELLS_API void SetNumberGroupSize(int value);
CVCELLS_API int GetNumberGroupSize();
CVCELLS_API void SetNumberPrecision(int value);
CVCELLS_API int GetNumberPrecision();
CVCELLS_API void SetCurrencyString(wchar_t const * value);
CVCELLS_API wchar_t const * GetCurrencyString();
CVCELLS_API void SetCurrencyGroupSize(int value);
CVCELLS_API int GetCurrencyGroupSize();
CVCELLS_API void SetCurrencyPrecision(int value);
CVCELLS_API int GetCurrencyPrecision();
CVCELLS_API void SetCurrencyPositiveOrder(int value);
CVCELLS_API int GetCurrencyPositiveOrder();
CVCELLS_API void SetCurrencyNegativeOrder(int value);
CVCELLS_API int GetCurrencyNegativeOrder();
CVCELLS_API void SetCurrencyGroupSeparartor(wchar_t value);
CVCELLS_API wchar_t GetCurrencyGroupSeparartor();
CVCELLS_API void SetCurrencyDeciamalSeparartor(wchar_t value);
CVCELLS_API wchar_t GetCurrencyDeciamalSeparartor();
CVCELLS_API void SetNegativeSign(wchar_t const * value);
CVCELLS_API wchar_t const * GetNegativeSign();
CVCELLS_API void SetPositiveSign(wchar_t const * value);
CVCELLS_API wchar_t const * GetPositiveSign();
CVCELLS_API void SetDateSeparator(wchar_t value);
CVCELLS_API wchar_t GetDateSeparator();
CVCELLS_API void SetDateOrder(int value);
CVCELLS_API int GetDateOrder();
CVCELLS_API void SetDateYearSize(int value);
CVCELLS_API int GetDateYearSize();
CVCELLS_API uchar GetDateYearPosition();
// Months count from 1 to 12; outside, a setter does nothing and a getter gives null.
CVCELLS_API void SetDateLongMonths(int month, wchar_t const * value);
CVCELLS_API wchar_t const * GetDateLongMonths(int month);
CVCELLS_API void SetDateShortMonths(int month, wchar_t const * value);
CVCELLS_API wchar_t const * GetDateShortMonths(int month);
CVCELLS_API void SetTimeSeparator(wchar_t value);
CVCELLS_API wchar_t GetTimeSeparator();
CVCELLS_API void SetTimeRange(int value);
CVCELLS_API int GetTimeRange();
CVCELLS_API void SetTimeAMString(wchar_t const * value);
CVCELLS_API wchar_t const * GetTimeAMString();
CVCELLS_API void SetTimePMString(wchar_t const * value);
CVCELLS_API wchar_t const * GetTimePMString();
// Option byte B of a date format by default.
CVCELLS_API uchar GetDefaultDateFormat();

// The text of a built-in number format by index; the first entry for any index out of range.
CVCELLS_API CString getBuiltInNumberFormat(int index);
constexpr int kBuiltInNumberFormats = 50;
