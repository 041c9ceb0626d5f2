#include "functions/internal/Criteria.h"

#include "context/Context.h"
#include "formula/Scanners.h"
#include "functions/Ranges.h"

namespace cells::internal {
namespace {

struct Sign {
    wchar_t const * text;
    int comparison; // 0: none, so that nothing matches
};

// Longer ones first.
constexpr Sign kSigns[] = {
    {L"<=", kLessOrEqual},    {L"=<", kLessOrEqual},    {L"<>", kNotEqual}, {L"~=", kNotEqual},
    {L">=", kGreaterOrEqual}, {L"=>", kGreaterOrEqual}, {L"==", kEqual},    {L"<", kLess},
    {L">", kGreater},         {L"=", kEqual},           {L"~", 0}};

int TakeSign(CString & text) {
    for (Sign const & sign : kSigns) {
        CString const glyph(sign.text);
        if (!(text.Left(glyph.GetLength()) == glyph)) continue;
        text = text.Mid(glyph.GetLength());
        return sign.comparison;
    }
    return kEqual;
}

// Within the smallest difference, which is included.
bool AreClose(double a, double b) {
    constexpr double kSmallestDifference = 2.220446049250313e-16;
    return (a - b >= 0 && a - b <= kSmallestDifference) ||
           (b - a >= 0 && b - a <= kSmallestDifference);
}

// The sum of the numbers of one argument that match, with the numbers read in bulk.
struct MatchingSum final : NumberSink {
    explicit MatchingSum(Criterion const & c) : criterion(c) {}
    Criterion const & criterion;
    double sum = 0, count = 0;
    void Take(double const * numbers, std::size_t n) override {
        for (std::size_t i = 0; i < n; ++i) {
            if (!criterion.Matches(numbers[i])) continue;
            sum += numbers[i];
            ++count;
        }
    }
};

// Adds the values that stand beside those that match; the others are not read.
Status AddBeside(CTX * ctx, CCFormula * tested, CCFormula * added, CCRef const * current,
                 Criterion const & criterion, CCCellValue & total) {
    ValueWalk a(ctx, tested, current), b(ctx, added, current);
    CSize sizeA, sizeB;
    if (!a.IsOpen() || !b.IsOpen() || !a.Size(sizeA) || !b.Size(sizeB) || sizeA != sizeB)
        return Status::kBadReference;
    CCCellValue value;
    while (a.Next(value)) {
        if (!criterion.Matches(value)) {
            b.Skip();
            continue;
        }
        b.Next(value);
        EvalCellValue(kAdd, total, value);
    }
    return Status::kDone;
}

} // namespace

Criterion::Criterion(CTX * ctx, CCCellValue const & value) {
    if (value.IsNumber() || value.IsEmpty()) {
        m_Kind = Kind::kNumber;
        m_dNumber = value.IsNumber() ? value.GetNumber() : 0;
        return;
    }
    if (value.IsError()) {
        m_Kind = Kind::kError;
        m_nError = value.GetError();
    }
    if (!value.IsText()) return;
    CString text = value.GetTextString();
    m_nComparison = TakeSign(text);
    wchar_t const * at = text;
    CCCellValue number;
    if (_EatNumber(ctx->lctx(), at, number, 1) && _IsEmpty(ctx->lctx(), at)) {
        m_Kind = Kind::kNumber;
        m_dNumber = number.GetNumber();
    } else {
        m_Kind = Kind::kText;
        m_strText = text.MakeUpper();
    }
}

bool Criterion::Matches(double number) const {
    if (m_Kind != Kind::kNumber) return false;
    if (m_nComparison == kEqual) return AreClose(number, m_dNumber);
    if (m_nComparison == kNotEqual) return !AreClose(number, m_dNumber);
    switch (m_nComparison) {
    case kLess:
        return number < m_dNumber;
    case kLessOrEqual:
        return number <= m_dNumber;
    case kGreater:
        return number > m_dNumber;
    case kGreaterOrEqual:
        return number >= m_dNumber;
    default:
        return false;
    }
}

bool Criterion::Matches(CCCellValue const & cell) const {
    if (cell.IsNumber()) return Matches(cell.GetNumber());
    if (cell.IsEmpty()) return Matches(0.0);
    if (cell.IsError()) return m_Kind == Kind::kError && cell.GetError() == m_nError;
    if (!cell.IsText() || m_Kind != Kind::kText) return false;
    CString text = cell.GetTextString();
    return ComparisonHolds(m_nComparison, text.MakeUpper().Compare(m_strText));
}

// What is added are the values, by the rules of the + operator: matching texts are joined. A blank
// that matches adds nothing.
void EvalSumIf(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CCCellValue wanted;
    EvalArg(ctx, wanted, args->next, current);
    Criterion const criterion(ctx, wanted);
    CCFormulaList const * const sums = args->next->next;
    CCCellValue total;
    Status status;
    if (sums) {
        status = AddBeside(ctx, args->formula, sums->formula, current, criterion, total);
    } else if (criterion.IsNumeric()) {
        MatchingSum sink(criterion);
        status = ForEachNumberOf(ctx, args->formula, current, sink);
        SetNumber(total, sink.sum);
    } else {
        CCFormulaList const only{args->formula, nullptr};
        status = TryEachValue(ctx, &only, current, [&](CCCellValue const & value) {
            if (criterion.Matches(value)) EvalCellValue(kAdd, total, value);
            return Status::kDone;
        });
    }
    if (status != Status::kDone || total.IsEmpty())
        return SetStatusResult(ctx, status, result, 0, C_NF_GENERAL);
    result.Set(total);
}

// Blanks are never counted, also where 0 matches.
void EvalCountIf(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    CCFormulaList const * last = args;
    while (last->next) last = last->next;
    CCCellValue wanted;
    EvalArg(ctx, wanted, last, current);
    Criterion const criterion(ctx, wanted);
    double count = 0;
    for (; args != last; args = args->next) {
        Status status;
        if (criterion.IsNumeric()) {
            MatchingSum sink(criterion);
            status = ForEachNumberOf(ctx, args->formula, current, sink);
            count += sink.count;
        } else {
            CCFormulaList const only{args->formula, nullptr};
            status = TryEachValue(ctx, &only, current, [&](CCCellValue const & value) {
                count += !value.IsEmpty() && criterion.Matches(value);
                return Status::kDone;
            });
        }
        if (status != Status::kDone) return SetStatusResult(ctx, status, result, 0, C_NF_GENERAL);
    }
    SetNumber(result, count);
}

} // namespace cells::internal
