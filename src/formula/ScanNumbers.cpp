#include "format/LocaleContext.h"
#include "formula/Scanners.h"
#include "platform/Digits.h"
#include "platform/Resources.h"
#include "platform/Text.h"

#include <algorithm>
#include <cmath>
#include <string>

using cells::IsDigit;

namespace {

constexpr int kMostDecimals = 15;
constexpr long kLargestExponent = 99999; // beyond it a number is infinite or 0
constexpr std::size_t kExactDigits = 15; // a decimal of so many digits is a double without rounding

// The digits of a number as they are found, without separators.
class NumberDigits {
public:
    void Take(wchar_t const *& text) {
        for (; IsDigit(*text); ++text) {
            m_Digits += char(*text);
            if (m_AfterPoint) ++m_Decimals;
        }
    }
    void Point() {
        m_WholeDigits = m_Digits.size();
        m_AfterPoint = true;
    }
    bool IsEmpty() const { return m_Digits.empty(); }
    std::size_t Count() const { return m_Digits.size(); }
    int Decimals() const { return m_Decimals; }
    // Decimals of the mantissa that has one digit other than 0 before its point.
    int MantissaDecimals() const {
        std::size_t const first = m_Digits.find_first_not_of('0');
        return first == std::string::npos ? 0 : int(m_Digits.size() - first - 1);
    }

    // The value rounded once; false when it is too large.
    bool Value(long exponent, double & value) const {
        if (exponent == 0 && m_Digits.size() <= kExactDigits) return value = Exact(), true;
        std::string text = m_Digits;
        if (m_AfterPoint) text.insert(m_WholeDigits, ".");
        if (exponent != 0) text += "e" + std::to_string(exponent);
        return cells::ParseDouble(text, value);
    }

private:
    // Both the digits and the power of ten are exact, so that the quotient is rounded once.
    double Exact() const {
        static constexpr double kPowers[] = {1,   1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                             1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
        long long number = 0;
        for (char digit : m_Digits) number = number * 10 + (digit - '0');
        return double(number) / kPowers[m_Decimals];
    }

    std::string m_Digits;
    std::size_t m_WholeDigits = 0;
    int m_Decimals = 0;
    bool m_AfterPoint = false;
};

// Digits in groups after a separator, each of the full size; false at a group of another size.
bool TakeGroups(wchar_t const *& text, NumberDigits & digits, wchar_t separator, int groupSize,
                bool & seen) {
    digits.Take(text);
    if (digits.IsEmpty() || groupSize <= 0) return true;
    while (*text == separator) {
        std::size_t const before = digits.Count();
        digits.Take(++text);
        if (digits.Count() - before != std::size_t(groupSize)) return false;
        seen = true;
    }
    return true;
}

int TakeInteger(wchar_t const *& text, double & out) {
    NumberDigits digits;
    digits.Take(text);
    if (!digits.IsEmpty() && !digits.Value(0, out)) out = HUGE_VAL;
    return int(digits.Count());
}

// "E", a sign and digits, each after optional blanks.
bool TakeExponent(cells::LCTX * lctx, wchar_t const *& text, long & exponent) {
    wchar_t const * at = text;
    _EatWhite(lctx, at);
    if (*at != L'E' && *at != L'e') return false;
    ++at;
    _EatWhite(lctx, at);
    bool const negative = _StrIIComp(lctx, at, lctx->negativeSign()) != 0;
    if (!negative) _StrIIComp(lctx, at, lctx->positiveSign());
    _EatWhite(lctx, at);
    if (!IsDigit(*at)) return false;
    long number = 0;
    for (; IsDigit(*at); ++at) number = std::min(number * 10 + long(*at - L'0'), kLargestExponent);
    exponent = negative ? -number : number;
    text = at;
    return true;
}

// "/" and a denominator other than 0.
bool TakeDenominator(wchar_t const *& text, double & denominator) {
    wchar_t const * at = text;
    if (*at != L'/') return false;
    ++at;
    if (!TakeInteger(at, denominator) || denominator == 0) return false;
    text = at;
    return true;
}

// Behind a whole number: blanks, a numerator and a denominator. The whole number itself may be the
// numerator, unless it was written in groups.
bool TakeFraction(cells::LCTX * lctx, wchar_t const *& text, bool grouped, double & value) {
    double numerator, denominator;
    wchar_t const * at = text;
    if (_EatWhite(lctx, at) && TakeInteger(at, numerator) && TakeDenominator(at, denominator)) {
        value += numerator / denominator;
        text = at;
        return true;
    }
    if (grouped || !TakeDenominator(text, denominator)) return false;
    value /= denominator;
    return true;
}

void Store(CCCellValue & value, double number, uchar type, int decimals) {
    CCNumberFormat format;
    format.Set(type);
    format.SetPrecision(std::min(decimals, kMostDecimals));
    format.clearPrecision();
    value.Set(number, format);
}

struct LogicalWords {
    CString yes = cells::LoadString(cells::kStringTrue);
    CString no = cells::LoadString(cells::kStringFalse);
};

LogicalWords & Words() {
    static LogicalWords * const words = new LogicalWords;
    return *words;
}

bool TakeSign(cells::LCTX * lctx, wchar_t const *& text, bool & negative) {
    negative = _StrIIComp(lctx, text, lctx->negativeSign()) != 0;
    return negative || _StrIIComp(lctx, text, lctx->positiveSign());
}

bool TakeExactly(wchar_t const *& text, wchar_t const * word) {
    wchar_t const * at = text;
    for (; *word; ++word, ++at)
        if (*at != *word) return false;
    text = at;
    return true;
}

// Sign, currency and number in any order, each once; currency and number are needed.
bool TakeMoney(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value, int signs) {
    wchar_t const * const currency = lctx->currencyString();
    if (!*currency) return false;
    wchar_t const * at = text;
    bool sign = !signs, negative = false, money = false, number = false;
    CCCellValue found;
    for (;;) {
        wchar_t const * next = at;
        _EatWhite(lctx, next);
        if (!sign && TakeSign(lctx, next, negative)) {
            sign = true;
        } else if (!money && TakeExactly(next, currency)) {
            money = true;
        } else if (!number && _EatNumberValue(lctx, next, found, 1)) {
            number = true;
        } else {
            break;
        }
        at = next;
    }
    if (!money || !number) return false;
    found.Set(negative ? -found.GetNumber() : found.GetNumber(), uchar(C_NF_CURRENCY));
    value.Set(found);
    text = at;
    return true;
}

} // namespace

namespace cells::internal {

void ReloadLogicalWords() { Words() = LogicalWords(); }

} // namespace cells::internal

int _EatWhite(cells::LCTX *, wchar_t const *& text) {
    wchar_t const * const start = text;
    while (*text && cells::IsSpace(*text)) ++text;
    return text != start;
}

int _IsEmpty(cells::LCTX * lctx, wchar_t const * text) {
    _EatWhite(lctx, text);
    return *text == 0;
}

int _StrIComp(cells::LCTX *, wchar_t const *& text, wchar_t const * upperWord) {
    wchar_t const * at = text;
    if (!upperWord || !*upperWord) return 0;
    for (; *upperWord; ++upperWord, ++at)
        if (cells::ToUpper(*at) != *upperWord) return 0;
    text = at;
    return 1;
}

int _StrIIComp(cells::LCTX *, wchar_t const *& text, wchar_t const * word) {
    wchar_t const * at = text;
    if (!word || !*word) return 0;
    for (; *word; ++word, ++at)
        if (cells::ToUpper(*at) != cells::ToUpper(*word)) return 0;
    text = at;
    return 1;
}

int _EatDigits(cells::LCTX *, wchar_t const *& text, double & out) {
    return TakeInteger(text, out);
}

int _EatNDigits(cells::LCTX *, wchar_t const *& text, int & out, int max) {
    std::int64_t number = 0;
    int count = 0;
    for (; count < max && IsDigit(*text); ++count)
        number = std::min<std::int64_t>(number * 10 + (*text++ - L'0'), INT32_MAX);
    if (count) out = int(number);
    return count;
}

int _EatDigitsAndComma(cells::LCTX *, wchar_t const *& text, double & out, int & seen,
                       wchar_t separator, int groupSize) {
    wchar_t const * at = text;
    NumberDigits digits;
    bool grouped = false;
    if (!TakeGroups(at, digits, separator, groupSize, grouped) || digits.IsEmpty()) return 0;
    if (!digits.Value(0, out)) return 0;
    seen = grouped;
    text = at;
    return int(digits.Count());
}

int _EatNumberValue(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value, int strict) {
    wchar_t const * at = text;
    _EatWhite(lctx, at);
    NumberDigits digits;
    bool grouped = false;
    if (strict) {
        if (!TakeGroups(at, digits, lctx->numberGroupSeparartor(), lctx->numberGroupSize(),
                        grouped))
            return 0;
    } else {
        digits.Take(at);
    }
    bool const point = *at == lctx->numberDeciamalSeparartor();
    if (point) {
        digits.Point();
        digits.Take(++at);
    }
    double number;
    if (digits.IsEmpty() || !digits.Value(0, number)) return 0;
    long exponent;
    if (strict && !point && TakeFraction(lctx, at, grouped, number)) {
        if (!std::isfinite(number)) return 0;
        Store(value, number, C_NF_FRACTION, 0);
    } else if (TakeExponent(lctx, at, exponent)) {
        if (!digits.Value(exponent, number)) return 0;
        Store(value, number, C_NF_SCIENTIFIC, digits.MantissaDecimals());
    } else {
        Store(value, number, C_NF_NUMBER, digits.Decimals());
    }
    CCNumberFormat & format = value.GetFormat();
    if (strict && grouped) format.SetCommas(1);
    if (strict && point) format.SetPrecision(format.GetPrecision()); // marks that a point was seen
    text = at;
    return 1;
}

int _EatNPFSNumber(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value, int signs) {
    wchar_t const * at = text;
    _EatWhite(lctx, at);
    bool negative = false;
    if (signs && TakeSign(lctx, at, negative)) _EatWhite(lctx, at);
    CCCellValue found;
    if (!_EatNumberValue(lctx, at, found, 1)) return 0;
    double const number = negative ? -found.GetNumber() : found.GetNumber();
    found.Set(number);
    if (found.GetFormat().GetType() == C_NF_NUMBER) {
        wchar_t const * percent = at;
        _EatWhite(lctx, percent);
        if (*percent == L'%') {
            found.Set(number / 100, uchar(C_NF_PERCENT));
            at = percent + 1;
        } else {
            found.GetFormat().setType(C_NF_GENERAL);
        }
    }
    value.Set(found);
    text = at;
    return 1;
}

int _EatNumber(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value, int signs) {
    wchar_t const * plainEnd = text;
    CCCellValue plain;
    bool const isPlain = _EatNPFSNumber(lctx, plainEnd, plain, signs) != 0;
    if (!isPlain || !_IsEmpty(lctx, plainEnd)) {
        if (_EatDNumber(lctx, text, value) || _EatTNumber(lctx, text, value)) return 1;
        if (TakeMoney(lctx, text, value, signs) || _EatBOOLValue(lctx, text, value)) return 1;
        if (!isPlain) return 0;
    }
    value.Set(plain);
    text = plainEnd;
    return 1;
}

int _EatConstant(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value) {
    return _EatNumberValue(lctx, text, value, 0) || _EatBOOLValue(lctx, text, value) ||
           _EatTextValue(lctx, text, value);
}

int _EatBOOLValue(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value) {
    wchar_t const * at = text;
    _EatWhite(lctx, at);
    bool const yes = _StrIComp(lctx, at, Words().yes) != 0;
    if (!yes && !_StrIComp(lctx, at, Words().no)) return 0;
    value.Set(yes ? 1.0 : 0.0, uchar(C_NF_BOOL));
    text = at;
    return 1;
}

int _EatTextValue(cells::LCTX * lctx, wchar_t const *& text, CCCellValue & value) {
    wchar_t const * at = text;
    _EatWhite(lctx, at);
    if (*at != L'"') return 0;
    std::wstring units;
    for (++at; *at != L'"'; ++at) {
        if (*at == CCCellValue::m_chSpecial) ++at;
        if (!*at) return 0;
        units += *at;
    }
    value.Set(CString(std::wstring_view(units)));
    text = at + 1;
    return 1;
}
