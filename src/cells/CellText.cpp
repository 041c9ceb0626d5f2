// Cells and text: entry, display, editing, search.
#include "cells/CCCell.h"
#include "cells/CCCellManager.h"
#include "cells/Guards.h"
#include "context/Context.h"
#include "format/TextSearch.h"
#include "formula/Parser.h"
#include "platform/Resources.h"

#include <algorithm>
#include <ostream>
#include <sstream>
#include <utility>

using cells::internal::SessionGuard;

namespace {

constexpr int kFindBuffer =
    1024; // units of the work buffer of Find and Replace, terminator included

template <typename Write>
CString TextOf(Write && write) {
    std::wostringstream stream;
    write(stream);
    return CString(std::wstring_view(stream.str()));
}

// Copies as much of the text as `bytes` hold, with a terminator.
void CopyTo(wchar_t * buffer, int bytes, CString const & text) {
    int const room = bytes / int(sizeof(wchar_t));
    if (!buffer || room < 1) return;
    int const length = std::min(text.GetLength(), room - 1);
    std::copy_n(text.GetString(), length, buffer);
    buffer[length] = 0;
}

} // namespace

void CCCell::SetText(cells::CTX * ctx, wchar_t const * text, int quiet) {
    CCCellManager * const manager = ctx->manager();
    if (!manager || RefusesChange(ctx)) return;
    SessionGuard const session(manager);
    CString const entered(text);
    TakeEntry(ctx, entered, cells::ReadEntry(ctx, entered), quiet);
}

void CCCell::Enter(cells::CTX * ctx, CString const & text, cells::Entry entry, int quiet) {
    CCCellManager * const manager = ctx->manager();
    if (!manager || RefusesChange(ctx)) return;
    SessionGuard const session(manager);
    TakeEntry(ctx, text, std::move(entry), quiet);
}

void CCCell::TakeEntry(cells::CTX * ctx, CString const & text, cells::Entry entry, int quiet) {
    if (entry.kind == kEntryValue) {
        TakeTypedValue(ctx, text, entry.value);
    } else if (entry.formula) {
        if (entry.kind == kEntryEditSource) {
            CCCellFormat source;
            source.SetEditSource(1);
            DoSetFormat(ctx, source);
        }
        SetFormula(ctx, entry.formula.get(), quiet != 0);
    } else {
        entry.value.Set(text);
        SetValue(ctx, entry.value);
        if (!quiet)
            ctx->manager()->ErrorMessage(MatchBrackets(text) ? cells::kStringFormulaError
                                                             : cells::kStringBrackets);
    }
}

// Money that was typed with decimals shows the locale's; text stays as it was entered, with its
// leading blanks and apostrophe.
void CCCell::TakeTypedValue(cells::CTX * ctx, wchar_t const * text, CCCellValue & value) {
    CCNumberFormat & format = value.GetFormat();
    if (value.IsNumber() && format.GetType() == C_NF_CURRENCY && format.isPrecision())
        format.SetPrecision(ctx->lctx()->currencyPrecision());
    if (value.IsText()) value.Set(text);
    if (value.IsNumber() && format.GetType() == C_NF_NUMBER &&
        m_Value.GetFormat().GetType() > C_NF_NUMBER)
        format.Set(m_Value.GetFormat());
    SetValue(ctx, value);
}

bool CCCell::IsShown(cells::CTX * ctx) const {
    CCCellManager const * const manager = ctx->manager();
    return !(manager && manager->IsProtected() && IsHidden(ctx));
}

bool CCCell::HasDisplayText(cells::CTX * ctx) const {
    if (!IsShown(ctx)) return false;
    if (GetValue().IsError() && IsErrorHidden(ctx)) return false;
    return !(GetValue().IsNumber() && GetValue().GetNumber() == 0 && IsZeroHidden(ctx));
}

void CCCell::GetValueText(cells::CTX * ctx, std::wostream & stream) const {
    if (HasDisplayText(ctx)) m_Value.Print(ctx, stream, 0);
}

void CCCell::GetFormulaText(cells::CTX * ctx, std::wostream & stream) {
    if (!IsShown(ctx)) return;
    CCFormula const * const tree = LoadFormula(ctx);
    if (!tree) return m_Value.Print(ctx, stream, kPrintForEdit);
    stream.put(IsEditSource(ctx) ? L'!' : L'=');
    tree->Print(ctx, stream, 0);
}

CString CCCell::ValueString(cells::CTX * ctx) const {
    return TextOf([&](std::wostream & stream) { GetValueText(ctx, stream); });
}

CString CCCell::FormulaString(cells::CTX * ctx) {
    return TextOf([&](std::wostream & stream) {
        stream.put(IsEditSource(ctx) ? L'!' : L'=');
        if (CCFormula const * tree = LoadFormula(ctx)) tree->Print(ctx, stream, 0);
    });
}

void CCCell::GetValueText(cells::CTX * ctx, wchar_t * buffer, int bytes) const {
    CopyTo(buffer, bytes, ValueString(ctx));
}

void CCCell::GetFormulaText(cells::CTX * ctx, wchar_t * buffer, int bytes) {
    CopyTo(buffer, bytes, TextOf([&](std::wostream & stream) { GetFormulaText(ctx, stream); }));
}

bool CCCell::MatchesValue(cells::CTX * ctx, CCFindData const & data) {
    if (IsFormulaLink() && !data.matchFormulaValues) return false;
    CString const text = ValueString(ctx).Left(kFindBuffer - 1);
    return StrStrW(text, data.findText, data.caseSensitive, data.wholeWord) != nullptr;
}

bool CCCell::MatchesFormula(cells::CTX * ctx, CCFindData const & data) {
    if (!IsFormulaLink()) return false;
    CString const text = FormulaString(ctx).Left(kFindBuffer - 1);
    return StrStrW(text, data.findText, data.caseSensitive, data.wholeWord) != nullptr;
}

int CCCell::Find(cells::CTX * ctx, CCFindData const & data) {
    if (!HasDisplayText(ctx)) return 0;
    if (data.lookIn != CCFindData::kFormulas && MatchesValue(ctx, data)) return 1;
    return data.lookIn != CCFindData::kValues && MatchesFormula(ctx, data);
}

int CCCell::Replace(cells::CTX * ctx, CCFindData const & data) {
    CCCellManager const * const manager = ctx->manager();
    if (!HasDisplayText(ctx) || (manager && manager->IsProtLock(this, 0))) return 0;
    bool const formula = IsFormulaLink() != 0;
    if (data.lookIn == CCFindData::kValues && formula) return 0;
    if (data.lookIn == CCFindData::kFormulas && !formula) return 0;
    CString const text = (formula ? FormulaString(ctx) : ValueString(ctx)).Left(kFindBuffer - 1);
    wchar_t buffer[kFindBuffer];
    wchar_t * target = buffer;
    wchar_t const * source = text;
    int remaining = kFindBuffer, replaced = 0;
    while (StrRep(target, source, remaining, data.findText, data.replaceText, data.caseSensitive,
                  data.wholeWord))
        replaced = 1;
    if (!replaced) return 0;
    buffer[kFindBuffer - 1] = 0;
    SetText(ctx, buffer, 0);
    return 1;
}
