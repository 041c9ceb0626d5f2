// Properties of the document, as the host knows them.
#include "cells/CCCellManager.h"
#include "context/Context.h"
#include "format/DateSerial.h"
#include "functions/Arguments.h"
#include "functions/Shapes.h"
#include "functions/internal/Families.h"

#include <cmath>

namespace cells::internal {
namespace {

using ATL::COleDateTime;

// Asks the manager for a property into `fact`; false without a manager, or where it has none.
template <auto Get, typename Fact>
bool Ask(CTX * ctx, Fact & fact) {
    CCCellManager * const manager = ctx->manager();
    return manager && (manager->*Get)(fact);
}

template <auto Get>
void EvalText(CTX * ctx, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    CString text;
    if (!Ask<Get>(ctx, text)) return result.Set(errValue);
    result.Set(text);
}

template <auto Get>
void EvalCount(CTX * ctx, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    unsigned int count = 0;
    if (!Ask<Get>(ctx, count)) return result.Set(errValue);
    SetNumber(result, count);
}

void EvalFileSize(CTX * ctx, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    double size = 0;
    if (!Ask<&CCCellManager::GetDocumentFileSize>(ctx, size)) return result.Set(errValue);
    SetNumber(result, size);
}

void EvalPage(CTX * ctx, CCCellValue & result, CCFormulaList const *, CCRef const * current) {
    unsigned int page = 0;
    CCCellManager * const manager = ctx->manager();
    if (!manager || !manager->GetDocumentPage(current, page)) return result.Set(errValue);
    SetNumber(result, page);
}

template <auto Get>
bool AskDate(CTX * ctx, COleDateTime & date) {
    return Ask<Get>(ctx, date) && date.GetStatus() == COleDateTime::valid;
}

// As the locale writes a date, with the time after it.
void ShowDateAndTime(LCTX & locale, CCCellValue & result) {
    CCNumberFormat & format = result.GetFormat();
    int const yearSize = locale.dateYearSize();
    format.SetMonthType(locale.defaultDateFormat() >> 3 & 3);
    format.SetYearType(yearSize == 0 ? 1 : yearSize == 2 ? 2 : 0);
    format.SetMDOrder(locale.dateOrder() == 0);
    format.SetDelimiter(locale.dateSeparator());
    format.SetTime(1);
    format.SetTimeSeconds(0);
    format.SetTimeRange(locale.timeRange() != 12);
}

template <auto Get>
void EvalDate(CTX * ctx, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    COleDateTime date;
    if (!AskDate<Get>(ctx, date)) return result.Set(errValue);
    result.Set(OleDateTimeToDouble(date), uchar(C_NF_DATE));
    ShowDateAndTime(*ctx->lctx(), result);
}

// The host's value is a moment that lies as far after the begin of 1900.
void EvalEditTime(CTX * ctx, CCCellValue & result, CCFormulaList const *, CCRef const *) {
    COleDateTime spent;
    if (!AskDate<&CCCellManager::GetDocumentEditTime>(ctx, spent)) return result.Set(errValue);
    double const seconds = std::round((spent.m_dt - COleDateTime::kBeginOf1900) * 86400);
    double const days = std::floor(seconds / 86400);
    result.Set(days + (seconds - days * 86400) * kSecond, uchar(C_NF_TIME));
    result.GetFormat().SetTimeRange(ctx->lctx()->timeRange() != 12);
}

template <int Number>
constexpr FunctionRow Row(unsigned int id, wchar_t const * name, wchar_t const * description,
                          EvalFn eval) {
    return FunctionRow(id, name, L"", "", description, nullptr, nullptr, Exactly<0>, eval,
                       DocumentProperty<Number>);
}

using Manager = CCCellManager;

constexpr FunctionRow kRows[] = {
    Row<0>(13246, L"CREATEDATE", L"Date the document was created.",
           EvalDate<&Manager::GetDocumentCreateDate>),
    Row<1>(13247, L"EDITTIME", L"Time spent on the document.", EvalEditTime),
    Row<2>(13248, L"PRINTDATE", L"Date the document was last printed.",
           EvalDate<&Manager::GetDocumentPrintDate>),
    Row<3>(13249, L"SAVEDATE", L"Date the document was last saved.",
           EvalDate<&Manager::GetDocumentSaveDate>),
    Row<4>(13250, L"AUTHOR", L"Author of the document.", EvalText<&Manager::GetDocumentAuthor>),
    Row<5>(13251, L"COMMENTS", L"Comments of the document.",
           EvalText<&Manager::GetDocumentComments>),
    Row<6>(13252, L"FILENAME", L"File name of the document.",
           EvalText<&Manager::GetDocumentFileName>),
    Row<7>(13253, L"FILESIZE", L"Size of the document's file.", EvalFileSize),
    Row<8>(13254, L"KEYWORDS", L"Keywords of the document.",
           EvalText<&Manager::GetDocumentKeywords>),
    Row<9>(13255, L"NUMCHARS", L"Number of characters of the document.",
           EvalCount<&Manager::GetDocumentNumChars>),
    Row<10>(13256, L"NUMPAGES", L"Number of pages of the document.",
            EvalCount<&Manager::GetDocumentNumPages>),
    Row<11>(13257, L"NUMWORDS", L"Number of words of the document.",
            EvalCount<&Manager::GetDocumentNumWords>),
    Row<12>(13258, L"SUBJECT", L"Subject of the document.", EvalText<&Manager::GetDocumentSubject>),
    Row<13>(13259, L"TITLE", L"Title of the document.", EvalText<&Manager::GetDocumentTitle>),
    Row<14>(13260, L"REVNUM", L"Revision number of the document.",
            EvalCount<&Manager::GetDocumentRevNum>),
    Row<15>(13261, L"PAGE", L"Page on which the cell stands.", EvalPage),
    Row<16>(13262, L"MERGEREC", L"Number of the present merge record.",
            EvalCount<&Manager::GetDocumentMergeRec>),
    Row<17>(13263, L"MERGECOUNT", L"Number of merge records.",
            EvalCount<&Manager::GetDocumentMergeCount>),
};

} // namespace

FunctionFamily DocumentFacts() { return MakeFamily(11, kRows); }

} // namespace cells::internal
