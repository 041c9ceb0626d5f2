// The custom format text that is equivalent to a plain number format record. It serves comparison
// and storage; a text that shows "#.00" has no digit before the point where a record prints one.
#include "format/CCNumberFormat.h"
#include "format/CExcelNumberFormat.h"
#include "format/LTStrings.h"

namespace {

CString Quoted(CString const & text) { return CString(L"\"") + text + CString(L"\""); }

CString TimeText(CCNumberFormat const & format) {
    CString text = L"hh:mm";
    if (format.getTimeSeconds()) text += L":ss";
    if (!format.getTimeRange()) text += L" AM/PM";
    return text;
}

CString MonthText(uchar monthType) {
    constexpr wchar_t const * kTexts[] = {L"mmmm", L"mmm", L"mm", L""};
    return kTexts[monthType];
}

CString YearText(uchar yearType) { return yearType == 0 ? L"yyyy" : yearType == 2 ? L"yy" : L""; }

CString DateText(CCNumberFormat const & format, cells::LCTX & lctx) {
    wchar_t const delimiter = format.getDelimiter() ? format.getDelimiter() : lctx.dateSeparator();
    CString text;
    auto const append = [&](CString const & part) {
        if (part.IsEmpty()) return;
        if (!text.IsEmpty()) text += delimiter;
        text += part;
    };
    bool const yearFirst = lctx.dateYearPosition() == 0;
    if (yearFirst) append(YearText(format.getYearType()));
    if (format.getMDOrder()) append(L"dd");
    append(MonthText(format.getMonthType()));
    if (!format.getMDOrder()) append(L"dd");
    if (!yearFirst) append(YearText(format.getYearType()));
    if (format.getTime()) text += CString(L" ") + TimeText(format);
    return text;
}

CString NumberText(CCNumberFormat const & format, cells::LCTX & lctx) {
    uchar const type = format.getType();
    CString const ltString = type == C_NF_NUMBER && format.getLTString()
                                 ? GetLTStringAt(format.GetLTString())
                                 : CString();
    bool const leading = format.getLTStringMode() != 0;
    CString text;
    if (!ltString.IsEmpty() && leading) text += Quoted(ltString + CString(L" "));
    if (type == C_NF_CURRENCY) text += lctx.currencyString();
    if (type == C_NF_FRACTION) text += L"#/";
    text += format.getCommas() ? L"#,0" : L"#";
    if (format.getPrecision() > 0) text += CString(L".") + CString(L'0', format.getPrecision());
    if (!ltString.IsEmpty() && !leading) text += Quoted(CString(L" ") + ltString);
    if (type == C_NF_PERCENT) text += L"%";
    if (type == C_NF_SCIENTIFIC) text += L"E+000";
    // One mark of negative numbers is written as both.
    if (format.getNegBr() || format.getNegRed())
        text = text + CString(L";[RED](") + text + CString(L")");
    return text == L"#" ? CString(L"General") : text;
}

} // namespace

CString CCNumberFormat::EquivalentText(cells::LCTX * lctx) const {
    cells::LCTX & context = lctx ? *lctx : *cells::invariant_LCTX();
    switch (m_nType) {
    case C_NF_GENERAL:
    case C_NF_BOOL:
        return L"General";
    case C_NF_NUMBER:
    case C_NF_CURRENCY:
    case C_NF_PERCENT:
    case C_NF_FRACTION:
    case C_NF_SCIENTIFIC:
        return NumberText(*this, context);
    case C_NF_TIME:
        return TimeText(*this);
    case C_NF_DATE:
        return DateText(*this, context);
    default:
        return {};
    }
}

void CCNumberFormat::convertToFormatString(cells::LCTX * lctx) {
    m_Compiled = cells::internal::CompiledFormat::Of(EquivalentText(lctx));
}
