// Values between the older file version and today.
#include "legacy/CCC4W15Convert.h"
#include "platform/CodePage.h"
#include "values/CCCellValue.h"

namespace {

using Legacy = CCC4W15Exchange;

enum LegacyError : std::uint16_t {
    kLegacyNone = 0,
    kLegacyRef = 2,
    kLegacyDiv0 = 6,
    kLegacyValue = 7,
    kLegacyCall = 8,
};

std::uint16_t LegacyErrorOf(int error) {
    switch (error) {
    case 0:
        return kLegacyNone;
    case errRef:
        return kLegacyRef;
    case errDiv0:
        return kLegacyDiv0;
    case errLegacy:
        return kLegacyCall;
    default:
        return kLegacyValue;
    }
}

int ErrorOf(std::uint16_t legacy) {
    switch (legacy) {
    case kLegacyNone:
    case kLegacyRef:
        return errRef;
    case kLegacyDiv0:
        return errDiv0;
    case kLegacyCall:
        return errLegacy;
    default:
        return errValue;
    }
}

// Numbers: the type in a file, the class of the format, and what the format word tells. A class is
// written as the first type that has it.
enum class Word { kUnused, kDecimals, kNoDecimals };
struct NumberRow {
    uchar type, formatClass;
    Word word;
};

constexpr NumberRow kNumbers[] = {
    {2, C_NF_NUMBER, Word::kDecimals},    {3, C_NF_NUMBER, Word::kNoDecimals},
    {4, C_NF_NUMBER, Word::kDecimals},    {5, C_NF_CURRENCY, Word::kDecimals},
    {6, C_NF_TIME, Word::kUnused},        {7, C_NF_DATE, Word::kUnused},
    {8, C_NF_PERCENT, Word::kDecimals},   {9, C_NF_SCIENTIFIC, Word::kDecimals},
    {10, C_NF_FRACTION, Word::kDecimals},
};

NumberRow RowOfClass(uchar formatClass) {
    for (NumberRow const & row : kNumbers)
        if (row.formatClass == formatClass) return row;
    return {2, formatClass, Word::kUnused};
}

CCNumberFormat FormatOf(uchar type, std::uint16_t word) {
    CCNumberFormat format;
    for (NumberRow const & row : kNumbers) {
        if (row.type != type) continue;
        format.SetType(row.formatClass);
        if (row.word != Word::kUnused) format.SetPrecision(row.word == Word::kDecimals ? word : 0);
    }
    return format;
}

} // namespace

void CCC4W15Convert::ConvertTo15(Legacy::CCC4W15_CellValue & legacy,
                                 CCCellValue const & value) const {
    legacy.Release();
    switch (value.GetType()) {
    case vtError:
        legacy.type = Legacy::CCC4W15_CellValue::kError;
        legacy.error = LegacyErrorOf(value.GetError());
        break;
    case vtRef:
        legacy.type = Legacy::CCC4W15_CellValue::kError;
        legacy.error = kLegacyRef;
        break;
    case vtNumber: {
        CCNumberFormat const & format = value.GetFormat();
        NumberRow const row = RowOfClass(format.getType());
        legacy.type = row.type;
        legacy.number = value.GetNumber();
        if (row.word == Word::kDecimals) legacy.format = format.getPrecision();
        break;
    }
    default: // an empty value is a null text, so that the cell stays blank
        legacy.type = Legacy::CCC4W15_CellValue::kText;
        if (value.GetText()) legacy.text = cells::ToNarrow(value.GetTextString());
    }
}

void CCC4W15Convert::ConvertTo95(CCCellValue & value,
                                 Legacy::CCC4W15_CellValue const & legacy) const {
    switch (legacy.type) {
    case Legacy::CCC4W15_CellValue::kError:
        return value.Set(ErrorOf(legacy.error));
    case Legacy::CCC4W15_CellValue::kText:
        if (legacy.text) return value.Set(cells::FromNarrow(*legacy.text));
        return value.Set(static_cast<wchar_t const *>(nullptr));
    default:
        CCNumberFormat format = FormatOf(legacy.type, legacy.format);
        value.Set(legacy.number, format);
    }
}
