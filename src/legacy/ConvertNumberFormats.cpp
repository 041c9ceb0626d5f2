// Number formats between the older file version and today.
#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "format/CCNumberFormat.h"
#include "format/LTStrings.h"
#include "legacy/CCC4W15Convert.h"
#include "platform/CodePage.h"

namespace {

using Legacy = CCC4W15Exchange;

constexpr int kMostLTStrings = 256; // that a format can tell apart

constexpr wchar_t kSeparators[] = {L'-', L'/', L'.', L' '}; // by their codes
constexpr std::uint16_t kOtherSeparator = 1;

std::uint16_t SeparatorCode(wchar_t separator) {
    for (std::uint16_t code = 0; code < std::size(kSeparators); ++code)
        if (kSeparators[code] == separator) return code;
    return kOtherSeparator;
}

wchar_t SeparatorOfCode(std::uint16_t code) {
    return kSeparators[code < std::size(kSeparators) ? code : kOtherSeparator];
}

template <typename Fields>
Fields DecimalsOf(CCNumberFormat const & format) {
    Fields fields;
    fields.decimals = format.getPrecision();
    fields.commas = format.getCommas();
    fields.bracket = format.getNegBr();
    fields.red = format.getNegRed();
    return fields;
}

template <std::uint16_t Type>
void SetDecimals(CCNumberFormat & format, uchar formatClass,
                 Legacy::CCC4W15_NumberFormat const & legacy) {
    Legacy::Decimals<Type> fields;
    legacy.Get(fields);
    format.Set(formatClass);
    format.SetPrecision(fields.decimals);
    format.SetCommas(fields.commas);
    format.SetNegBr(fields.bracket);
    format.SetNegRed(fields.red);
}

// The place of a string in the list, where it is added if it is missing; -1 where the list holds as
// many as formats can name.
int LTStringIndex(CString const & text) {
    int const index = GetLTStringIndex(text.GetString());
    if (index >= 0) return index < kMostLTStrings ? index : -1;
    return GetNumberLTStrings() < kMostLTStrings ? AddLTString(text.GetString()) : -1;
}

} // namespace

// The character that a date shows.
wchar_t CCC4W15Convert::SeparatorOf(CCNumberFormat const & date) const {
    wchar_t const own = date.getDelimiter();
    return own ? own : Context()->lctx()->dateSeparator();
}

void CCC4W15Convert::ConvertTo15(Legacy::CCC4W15_NumberFormat & legacy,
                                 CCNumberFormat const & format) const {
    switch (format.isCustomFormat() ? uchar(C_NF_GENERAL) : format.getType()) {
    case C_NF_NUMBER: {
        auto fields = DecimalsOf<Legacy::SCC4W15_NF_Number>(format);
        fields.stringKind = std::uint16_t(format.GetLTStringMode());
        if (fields.stringKind) fields.text = cells::ToNarrow(GetLTStringAt(format.GetLTString()));
        return legacy.Set(fields);
    }
    case C_NF_CURRENCY:
        return legacy.Set(DecimalsOf<Legacy::SCC4W15_NF_Currency>(format));
    case C_NF_PERCENT:
        return legacy.Set(DecimalsOf<Legacy::SCC4W15_NF_Percent>(format));
    case C_NF_FRACTION:
        return legacy.Set(DecimalsOf<Legacy::SCC4W15_NF_Fraction>(format));
    case C_NF_SCIENTIFIC:
        return legacy.Set(DecimalsOf<Legacy::SCC4W15_NF_Scientific>(format));
    case C_NF_TIME: {
        Legacy::SCC4W15_NF_Time fields;
        fields.twelveHours = !format.getTimeRange();
        fields.seconds = format.getTimeSeconds();
        return legacy.Set(fields);
    }
    case C_NF_DATE: {
        Legacy::SCC4W15_NF_Date fields;
        fields.separator = SeparatorCode(SeparatorOf(format));
        fields.monthKind = format.getMonthType();
        fields.yearKind = format.getYearType();
        fields.order = format.getMDOrder();
        return legacy.Set(fields);
    }
    default: {
        Legacy::SCC4W15_NF_Number fields;
        fields.decimals = kPrecisionAsNeeded;
        return legacy.Set(fields);
    }
    }
}

void CCC4W15Convert::ConvertTo95(CCNumberFormat & format,
                                 Legacy::CCC4W15_NumberFormat const & legacy) const {
    format = CCNumberFormat();
    switch (legacy.GetType()) {
    case Legacy::SCC4W15_NF_Number::kType: {
        SetDecimals<Legacy::SCC4W15_NF_Number::kType>(format, C_NF_NUMBER, legacy);
        Legacy::SCC4W15_NF_Number fields;
        legacy.Get(fields);
        if (!fields.stringKind || fields.text.empty()) return;
        int const index = LTStringIndex(cells::FromNarrow(fields.text));
        if (index >= 0) format.SetLTString(fields.stringKind, index);
        return;
    }
    case Legacy::SCC4W15_NF_Currency::kType:
        return SetDecimals<Legacy::SCC4W15_NF_Currency::kType>(format, C_NF_CURRENCY, legacy);
    case Legacy::SCC4W15_NF_Percent::kType:
        return SetDecimals<Legacy::SCC4W15_NF_Percent::kType>(format, C_NF_PERCENT, legacy);
    case Legacy::SCC4W15_NF_Fraction::kType:
        return SetDecimals<Legacy::SCC4W15_NF_Fraction::kType>(format, C_NF_FRACTION, legacy);
    case Legacy::SCC4W15_NF_Scientific::kType:
        return SetDecimals<Legacy::SCC4W15_NF_Scientific::kType>(format, C_NF_SCIENTIFIC, legacy);
    case Legacy::SCC4W15_NF_Time::kType: {
        Legacy::SCC4W15_NF_Time fields;
        legacy.Get(fields);
        format.Set(uchar(C_NF_TIME));
        format.SetTimeRange(fields.twelveHours == 0);
        format.SetTimeSeconds(fields.seconds);
        return;
    }
    case Legacy::SCC4W15_NF_Date::kType: {
        Legacy::SCC4W15_NF_Date fields;
        legacy.Get(fields);
        format.Set(uchar(C_NF_DATE));
        format.SetDelimiter(SeparatorOfCode(fields.separator));
        format.SetMonthType(fields.monthKind);
        format.SetYearType(fields.yearKind);
        format.SetMDOrder(fields.order != 0);
        return;
    }
    default:
        return; // a type that nobody knows: the general format
    }
}
