// Values to and from tagVARIANT. The currency pair is split by 4294967295 with the low part taken
// from the high part unscaled; the way back matches it, not the platform's own currency.
// Variants that hosts keep must read back as they were.
#include "format/DateSerial.h"
#include "platform/COleDateTime.h"
#include "platform/Digits.h"
#include "platform/Variant.h"
#include "values/CCCellValue.h"

#include <cmath>

namespace {

constexpr std::int32_t kFailure = std::int32_t(0x80004005);
constexpr double kTwo31 = 2147483648.0, kTwo32 = 4294967296.0, kTwo63 = 9223372036854775808.0;

void SetFailure(tagVARIANT & variant) {
    variant.vt = VT_ERROR;
    variant.scode = kFailure;
}

void SetDouble(tagVARIANT & variant, double number) {
    variant.vt = VT_R8;
    variant.dblVal = number;
}

void SetCurrency(tagVARIANT & variant, double v) {
    double const high = std::floor(v * 10000 / 4294967295.0 + 0.5);
    double const low = std::floor(v * 10000 - high + 0.5);
    if (!(high >= -kTwo31 && high < kTwo31 && std::fabs(low) < kTwo63)) return SetFailure(variant);
    variant.vt = VT_CY;
    variant.cyVal.Hi = std::int32_t(high);
    variant.cyVal.Lo = std::uint32_t(std::uint64_t(std::int64_t(low)));
}

// The date and time of the magnitude.
void SetDate(tagVARIANT & variant, double serial) {
    int day, month, year, hour, minute, second;
    DoubleToDate(serial, day, month, year);
    DoubleToTime(serial, hour, minute, second);
    if (!CheckDate(day, month, year, cells::kLastYear, cells::kFirstYear) ||
        !CheckTime(hour, minute, second, 1))
        return SetFailure(variant);
    ATL::COleDateTime const date = DoubleToOleDateTime(serial);
    if (date.GetStatus() != ATL::COleDateTime::valid) return SetFailure(variant);
    variant.vt = VT_DATE;
    variant.date = date.m_dt;
}

void SetNumber(tagVARIANT & variant, double number, CCNumberFormat const & format) {
    switch (format.GetType()) {
    case C_NF_NUMBER:
        if (format.GetPrecision() != 0 || !(number >= -kTwo31 && number <= kTwo31 - 1))
            return SetDouble(variant, number);
        variant.vt = VT_I4;
        variant.lVal = cells::ToInt32(std::ceil(number));
        return;
    case C_NF_CURRENCY:
        return SetCurrency(variant, number);
    case C_NF_TIME:
    case C_NF_DATE:
        return SetDate(variant, number);
    case C_NF_BOOL:
        variant.vt = VT_BOOL;
        variant.boolVal = number != 0 ? -1 : 0;
        return;
    default:
        return SetDouble(variant, number);
    }
}

void SetWholeNumber(CCCellValue & value, double number) {
    value.Set(number);
    value.GetFormat().SetPrecision(0);
}

double CurrencyOf(tagVARIANT const & variant) {
    double const low = std::int32_t(variant.cyVal.Lo);
    return variant.cyVal.Hi * 429496.7295 + (low + (low < 0 ? kTwo32 : 0)) / 10000;
}

void SetFromDate(CCCellValue & value, double days) {
    ATL::COleDateTime const date(days);
    if (!CheckDate(date.GetDay(), date.GetMonth(), date.GetYear(), cells::kLastYear,
                   cells::kFirstYear))
        return value.Set(errValue);
    value.Set(OleDateTimeToDouble(date), C_NF_DATE);
}

} // namespace

void CCCellValue::Get(tagVARIANT & variant) const {
    if (m_nType == vtRef) return;
    VariantClear(variant);
    switch (m_nType) {
    case vtError:
        return SetFailure(variant);
    case vtText:
        variant.vt = VT_BSTR;
        variant.bstrVal = m_strText;
        return;
    case vtNumber:
        return SetNumber(variant, m_dNumber, m_Format);
    default:
        return;
    }
}

void CCCellValue::Set(tagVARIANT const & variant) {
    switch (variant.vt) {
    case VT_EMPTY:
    case VT_NULL:
        return Release();
    case VT_I2:
        Set(double(variant.iVal), C_NF_NUMBER);
        return SetWholeNumber(*this, variant.iVal);
    case VT_I4:
        return SetWholeNumber(*this, variant.lVal);
    case VT_R4:
        return Set(double(variant.fltVal), C_NF_GENERAL);
    case VT_R8:
        return Set(variant.dblVal, C_NF_GENERAL);
    case VT_CY:
        return Set(CurrencyOf(variant), C_NF_CURRENCY);
    case VT_DATE:
        return SetFromDate(*this, variant.date);
    case VT_BSTR:
        return Set(variant.bstrVal);
    case VT_BOOL:
        return Set(variant.boolVal ? 1.0 : 0.0, C_NF_BOOL);
    case VT_UI1:
        return Set(CString(wchar_t(variant.bVal)));
    default:
        return Set(errValue);
    }
}
