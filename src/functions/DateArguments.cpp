#include "functions/internal/DateArguments.h"

#include "context/Context.h"
#include "format/DateSerial.h"
#include "formula/Scanners.h"
#include "platform/Digits.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace cells::internal {
namespace {

using Scanner = int (*)(LCTX *, wchar_t const *&, CCCellValue &);

bool ScanWhole(CTX * ctx, CCCellValue const & text, Scanner scan, double & number) {
    CString const units = text.GetTextString();
    wchar_t const * at = units;
    CCCellValue value;
    if (!scan(ctx->lctx(), at, value) || !_IsEmpty(ctx->lctx(), at)) return false;
    number = value.GetNumber();
    return true;
}

struct Parts {
    int day, month, year;
};

Parts PartsOf(double date) {
    Parts parts;
    DoubleToDate(date, parts.day, parts.month, parts.year);
    return parts;
}

} // namespace

bool ToDateArg(CTX * ctx, CCCellValue const & value, double & date) {
    if (value.IsNumber())
        date = value.GetNumber();
    else if (!value.IsText() || !ScanWhole(ctx, value, &_EatDNumber, date))
        return false;
    return CheckDate(date);
}

bool GetDate(CTX * ctx, CCCellValue & result, double & date, CCFormulaList const * args,
             CCRef const * current) {
    EvalArg(ctx, result, args, current);
    if (ToDateArg(ctx, result, date)) return true;
    result.Set(errValue);
    return false;
}

bool ToTimeArg(CTX * ctx, CCCellValue const & value, double & time) {
    if (!value.IsNumber()) return value.IsText() && ScanWhole(ctx, value, &_EatTNumber, time);
    time = value.GetNumber();
    return true;
}

bool AddMonths(double date, double months, double & out) {
    Parts const from = PartsOf(date);
    std::int64_t const total =
        std::int64_t(from.year) * 12 + from.month - 1 + std::int64_t(ToInt32(std::floor(months)));
    std::int64_t const year = total >= 0 ? total / 12 : -((11 - total) / 12);
    if (year < kFirstYear || year > kLastYear) return false;
    int const month = int(total - year * 12) + 1;
    int const day = std::min(from.day, GetMonthDays(month, int(year)));
    out = DateToDouble(day, month, int(year));
    return CheckDate(day, month, int(year), kLastYear, kFirstYear);
}

double DayCount(int basis, double from, double to) {
    if (basis >= 1 && basis <= 3) return to - from;
    Parts a = PartsOf(from), b = PartsOf(to);
    if (b.day == 31) {
        if (basis == 0 && a.day < 30)
            b = {1, b.month % 12 + 1, b.year + b.month / 12}; // the day after it
        else
            b.day = 30;
    }
    if (a.day == 31) a.day = 30;
    auto const days = [](Parts const & p) { return 360.0 * p.year + 30.0 * p.month + p.day; };
    return days(b) - days(a);
}

double YearDays(int basis, double date) {
    if (basis == 3) return 365;
    if (basis != 1) return 360;
    return PartsOf(date).year % 4 == 0 ? 366 : 365;
}

bool GetBasis(CTX * ctx, CCCellValue & result, int & basis, CCFormulaList const * args,
              CCRef const * current) {
    double number = 0;
    if (args && !GetNumbers(ctx, result, &number, 1, args, current)) return false;
    if (!(number >= 0 && number < 5)) return false;
    basis = int(number);
    return true;
}

} // namespace cells::internal
