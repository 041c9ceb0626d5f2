// Text, counted in 16-bit units. Numbers take part as what their cell shows.
#include "context/Context.h"
#include "formula/Scanners.h"
#include "functions/Ranges.h"
#include "functions/Shapes.h"
#include "functions/internal/Families.h"
#include "functions/internal/TextMatch.h"
#include "platform/CodePage.h"
#include "platform/Text.h"
#include "values/ValueCompare.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>

namespace cells::internal {
namespace {

void SetText(CCCellValue & result, std::wstring_view text) {
    if (text.size() > std::size_t(kLongestText)) return result.Set(errValue);
    result.Set(CString(text));
}

// A count or position that is a number of at least `least`; else error 3.
bool GetCount(CTX * ctx, CCCellValue & result, double & count, double least,
              CCFormulaList const * args, CCRef const * current) {
    if (GetNumbers(ctx, result, &count, 1, args, current) && count >= least) {
        count = std::floor(count);
        return true;
    }
    result.Set(errValue);
    return false;
}

std::size_t Cut(double count, std::size_t length) {
    return count >= double(length) ? length : std::size_t(count);
}

// Functions of one text: `make` gives the new one.
template <std::wstring (*Make)(std::wstring_view)>
void OfText(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CString text;
    if (GetText(ctx, result, text, args, current)) SetText(result, Make(text.View()));
}

std::wstring Lower(std::wstring_view text) {
    std::wstring made(text);
    std::transform(made.begin(), made.end(), made.begin(), ToLower);
    return made;
}

std::wstring Upper(std::wstring_view text) {
    std::wstring made(text);
    std::transform(made.begin(), made.end(), made.begin(), [](wchar_t u) { return ToUpper(u); });
    return made;
}

std::wstring Proper(std::wstring_view text) {
    std::wstring made(text);
    bool inWord = false;
    for (wchar_t & unit : made) {
        bool const letter = IsAlpha(unit);
        if (letter) unit = inWord ? ToLower(unit) : ToUpper(unit);
        inWord = letter;
    }
    return made;
}

std::wstring Clean(std::wstring_view text) {
    std::wstring made(text);
    std::erase_if(made, IsControl);
    return made;
}

// An inner run of white space becomes its first character.
std::wstring Trim(std::wstring_view text) {
    std::wstring made;
    wchar_t space = 0;
    for (wchar_t unit : text) {
        if (IsSpace(unit)) {
            if (!space) space = unit;
            continue;
        }
        if (space && !made.empty()) made += space;
        space = 0;
        made += unit;
    }
    return made;
}

std::wstring AsText(std::wstring_view text) { return std::wstring(text); }

void EvalLen(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CString text;
    if (GetText(ctx, result, text, args, current)) SetNumber(result, double(text.GetLength()));
}

template <bool FromLeft>
void EvalEnd(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CString text;
    double count = 1;
    if (!GetText(ctx, result, text, args, current)) return;
    if (args->next && !GetCount(ctx, result, count, 0, args->next, current)) return;
    std::size_t const length = text.View().size(), taken = Cut(count, length);
    SetText(result, text.View().substr(FromLeft ? 0 : length - taken, taken));
}

void EvalMid(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CString text;
    double start, count;
    if (!GetText(ctx, result, text, args, current)) return;
    if (!GetCount(ctx, result, start, 1, args->next, current)) return;
    CCFormulaList const * const third = args->next->next;
    std::size_t const length = text.View().size(), first = Cut(start - 1, length);
    std::size_t taken = length;
    if (third) {
        if (!GetCount(ctx, result, count, 0, third, current)) return;
        taken = Cut(count, length);
    }
    SetText(result, text.View().substr(first, taken));
}

void EvalReplace(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                 CCRef const * current) {
    CString text, now;
    double start, count;
    if (!GetText(ctx, result, text, args, current)) return;
    if (!GetCount(ctx, result, start, 1, args->next, current)) return;
    if (!GetCount(ctx, result, count, 0, args->next->next, current)) return;
    if (!GetText(ctx, result, now, args->next->next->next, current)) return;
    std::wstring_view const all = text.View();
    std::size_t const first = Cut(start - 1, all.size());
    std::size_t const rest = Cut(start - 1 + count, all.size());
    SetText(result, std::wstring(all.substr(0, first)) + std::wstring(now.View()) +
                        std::wstring(all.substr(rest)));
}

void EvalRept(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CString text;
    double count;
    if (!GetText(ctx, result, text, args, current)) return;
    if (!GetCount(ctx, result, count, 0, args->next, current)) return;
    if (count * text.GetLength() > kLongestText) return result.Set(errValue);
    std::wstring made;
    if (!text.IsEmpty())
        for (double i = 0; i < count; ++i) made += text.View();
    SetText(result, made);
}

// The count tells how many occurrences are replaced, and not which one. An empty old text stands
// before every character: with a count the new text is written so often, without one never.
void EvalSubstitute(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                    CCRef const * current) {
    CString text, old, now;
    double count = HUGE_VAL;
    if (!GetText(ctx, result, text, args, current)) return;
    if (!GetText(ctx, result, old, args->next, current)) return;
    if (!GetText(ctx, result, now, args->next->next, current)) return;
    CCFormulaList const * const fourth = args->next->next->next;
    if (fourth && !GetCount(ctx, result, count, 1, fourth, current)) return;
    std::wstring made;
    if (old.IsEmpty()) {
        double const times = std::isfinite(count) ? count : 0;
        if (times * now.GetLength() > kLongestText) return result.Set(errValue);
        if (!now.IsEmpty())
            for (double i = 0; i < times; ++i) made += now.View();
        return SetText(result, made + std::wstring(text.View()));
    }
    TextFinder const finder(old.View());
    std::size_t from = 0;
    for (; count > 0; --count) {
        std::size_t const place = finder.Find(text.View(), from);
        if (place == std::wstring_view::npos) break;
        made += text.View().substr(from, place - from);
        made += now.View();
        if (made.size() > std::size_t(kLongestText)) return result.Set(errValue);
        from = place + old.View().size();
    }
    SetText(result, made + std::wstring(text.View().substr(from)));
}

// The texts of a search and the place where it starts, from 0; a place at the end or after it
// finds nothing, not even an empty text.
struct Search {
    CString find, within;
    double start = 1;

    bool Read(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
        CCFormulaList const * const third = args->next->next;
        return GetText(ctx, result, find, args, current) &&
               GetText(ctx, result, within, args->next, current) &&
               (!third || GetCount(ctx, result, start, 1, third, current));
    }
    std::size_t First() const { return Cut(start - 1, within.View().size()); }
};

void EvalFindText(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                  CCRef const * current) {
    Search search;
    if (!search.Read(ctx, result, args, current)) return;
    std::wstring_view const text = search.within.View();
    std::size_t const place = TextFinder(search.find.View()).Find(text, search.First());
    if (place >= text.size()) return result.Set(errValue);
    SetNumber(result, double(place + 1));
}

void EvalSearchText(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                    CCRef const * current) {
    Search search;
    if (!search.Read(ctx, result, args, current)) return;
    std::wstring_view const text = search.within.View();
    int budget = kStepBudget;
    for (std::size_t at = search.First(); at < text.size(); ++at)
        switch (BeginsWithPattern(text.substr(at), search.find.View(), budget)) {
        case Match::kYes:
            return SetNumber(result, double(at + 1));
        case Match::kTooLong:
            return result.Set(errValue);
        case Match::kNo:
            break;
        }
    result.Set(errValue);
}

void EvalLike(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CString text, pattern;
    if (!GetText(ctx, result, text, args, current)) return;
    if (!GetText(ctx, result, pattern, args->next, current)) return;
    Match const match = IsLike(text.View(), pattern.View(), kStepBudget);
    if (match == Match::kTooLong) return result.Set(errValue);
    SetTruth(result, match == Match::kYes);
}

void EvalExact(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CString a, b;
    if (!GetText(ctx, result, a, args, current)) return;
    if (!GetText(ctx, result, b, args->next, current)) return;
    SetTruth(result, a == b);
}

// A value that is an error ends the walk and is the result.
void EvalConcat(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    std::wstring made;
    CCCellValue error;
    Status const status = TryEachValue(ctx, args, current, [&](CCCellValue const & value) {
        CString text;
        if (!ToTextArg(ctx, value, text)) {
            error.Set(value);
            return Status::kBadValue;
        }
        made += text.View();
        return made.size() > std::size_t(kLongestText) ? Status::kBadValue : Status::kDone;
    });
    if (status == Status::kDone) return SetText(result, made);
    if (error.IsError()) return result.Set(error);
    SetStatusResult(ctx, status, result, 0, C_NF_GENERAL);
}

void EvalChar(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    double n;
    if (!GetNumbers(ctx, result, &n, 1, args, current) || !(n >= 0 && n < 256))
        return result.Set(errValue);
    wchar_t const unit = UnitOfByte(uchar(n));
    SetText(result, std::wstring_view(&unit, unit ? 1 : 0));
}

void EvalCode(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CString text;
    if (!GetText(ctx, result, text, args, current)) return;
    int const byte = text.IsEmpty() ? -1 : ByteOfUnit(text[0], -1);
    if (byte < 0) return result.Set(errValue);
    SetNumber(result, double(byte));
}

// Numbers as text

// Rounds left of the point: `digits` times a tenth, floor, and back. Zero and infinity stay.
double CutLeftOfPoint(double x, double digits, double added) {
    for (double i = 0; i < digits && x != 0 && std::isfinite(x); ++i) x /= 10;
    x = std::floor(x + added);
    for (double i = 0; i < digits && x != 0 && std::isfinite(x); ++i) x *= 10;
    return x;
}

void SetPrinted(CTX * ctx, CCCellValue & result, CCNumberFormat const & format, double x) {
    if (!std::isfinite(x)) return result.Set(errValue);
    std::wostringstream stream;
    format.Print(ctx->lctx(), stream, x, 0);
    SetText(result, stream.str());
}

// The number and its decimals; `half` is added before digits left of the point are cut.
bool GetDecimals(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current,
                 double half, double & x, CCNumberFormat & format) {
    if (!GetNumbers(ctx, result, &x, 1, args, current)) return false;
    double decimals = format.GetPrecision();
    if (args->next) {
        if (!GetNumbers(ctx, result, &decimals, 1, args->next, current)) return false;
        decimals = std::floor(decimals);
    }
    if (!(decimals == decimals)) return false;
    format.SetPrecision(int(std::clamp(decimals, 0.0, double(kPrecisionAsNeeded))));
    if (decimals < 0) x = CutLeftOfPoint(x, -decimals, half);
    return true;
}

void EvalFixed(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    CCNumberFormat format;
    format.SetDefault(ctx->lctx(), C_NF_NUMBER);
    double x, commas = 0;
    if (!GetDecimals(ctx, result, args, current, 0.5, x, format)) return result.Set(errValue);
    CCFormulaList const * const third = args->next ? args->next->next : nullptr;
    if (third && !GetNumbers(ctx, result, &commas, 1, third, current)) return result.Set(errValue);
    format.SetCommas(commas != 0);
    SetPrinted(ctx, result, format, x);
}

// Digits left of the point are cut downward where FIXED rounds them: saved sheets keep their
// results by it.
void EvalDollar(CTX * ctx, CCCellValue & result, CCFormulaList const * args,
                CCRef const * current) {
    CCNumberFormat format;
    format.SetDefault(ctx->lctx(), C_NF_CURRENCY);
    double x;
    if (!GetDecimals(ctx, result, args, current, 0, x, format)) return result.Set(errValue);
    format.SetCommas(1);
    SetPrinted(ctx, result, format, x);
}

// A text is read as a user types a value, and keeps the class of its spelling.
void EvalValue(CTX * ctx, CCCellValue & result, CCFormulaList const * args, CCRef const * current) {
    EvalArg(ctx, result, args, current);
    if (result.IsNumber() || result.IsError()) return;
    if (result.IsEmpty()) return SetNumber(result, 0.0);
    CString const text = result.GetTextString();
    wchar_t const * at = text;
    CCCellValue number;
    if (!_EatNumber(ctx->lctx(), at, number, 1) || !_IsEmpty(ctx->lctx(), at))
        return result.Set(errValue);
    result.Set(number);
}

constexpr FunctionRow kRows[] = {
    {13153, L"CHAR", L"number", "n",
     L"Character of a number from 0 to 255 in the system code page.", L"CHAR(65)", L"A", Singles<1>,
     EvalChar},
    {13154, L"CLEAN", L"text", "t", L"Text without control characters.",
     L"CLEAN(\"a\"+CHAR(7)+\"b\")", L"ab", Singles<1>, OfText<Clean>},
    {13155, L"CODE", L"text", "t", L"Number of the first character in the system code page.",
     L"CODE(\"A\")", L"65", Singles<1>, EvalCode},
    {13156, L"CONCATENATE", L"value...", "[r]", L"Joined text of all values.",
     L"CONCATENATE(\"a\",1,\"b\")", L"a1b", AtLeast<0>, EvalConcat},
    {13157, L"DOLLAR", L"number; decimals", "n[n]", L"Number as currency text.", L"DOLLAR(1299,-2)",
     L"$1,200", SinglesBetween<1, 2>, EvalDollar},
    {13158, L"EXACT", L"text 1; text 2", "tt", L"TRUE when two texts are the same, case included.",
     L"EXACT(\"a\",\"A\")", L"FALSE", Singles<2>, EvalExact},
    {13159, L"FINDTEXT", L"find; text; start", "tt[n]",
     L"Position of a text in another, case included.", L"FINDTEXT(\"b\",\"abcb\",3)", L"4",
     SinglesBetween<2, 3>, EvalFindText},
    {13160, L"FIXED", L"number; decimals; separators", "n[nl]",
     L"Number as text with fixed decimals.", L"FIXED(1234.567,2,1)", L"1,234.57",
     SinglesBetween<1, 3>, EvalFixed},
    {13161, L"LEFT", L"text; count", "t[n]", L"First characters of a text.", L"LEFT(\"abc\",2)",
     L"ab", SinglesBetween<1, 2>, EvalEnd<true>},
    {13162, L"LEN", L"text", "t", L"Number of characters of a text.", L"LEN(12.5)", L"4",
     Singles<1>, EvalLen},
    {13163, L"LOWER", L"text", "t", L"Text in lower case.", L"LOWER(\"ABC\")", L"abc", Singles<1>,
     OfText<Lower>},
    {13164, L"MID", L"text; start; count", "tn[n]", L"Characters from the middle of a text.",
     L"MID(\"abcd\",2,2)", L"bc", SinglesBetween<2, 3>, EvalMid},
    {13165, L"PROPER", L"text", "t", L"Text with a capital at the head of each word.",
     L"PROPER(\"john o'neil\")", L"John O'Neil", Singles<1>, OfText<Proper>},
    {13166, L"REPLACE", L"text; start; count; new text", "tnnt",
     L"Text with a part replaced by position.", L"REPLACE(\"abcd\",2,2,\"x\")", L"axd", Singles<4>,
     EvalReplace},
    {13167, L"REPT", L"text; count", "tn", L"Text repeated.", L"REPT(\"ab\",2)", L"abab",
     Singles<2>, EvalRept},
    {13168, L"RIGHT", L"text; count", "t[n]", L"Last characters of a text.", L"RIGHT(\"abc\",2)",
     L"bc", SinglesBetween<1, 2>, EvalEnd<false>},
    {13169, L"SEARCHTEXT", L"pattern; text; start", "tt[n]",
     L"Position of a pattern with ?, * and ~, without regard to case.",
     L"SEARCHTEXT(\"B?d\",\"abcd\")", L"2", SinglesBetween<2, 3>, EvalSearchText},
    {13170, L"SUBSTITUTE", L"text; old text; new text; count", "ttt[n]",
     L"Text with occurrences of a part replaced, counted from the left.",
     L"SUBSTITUTE(\"aaa\",\"a\",\"b\",2)", L"bba", SinglesBetween<3, 4>, EvalSubstitute},
    {13171, L"T", L"value", "v", L"Value as text.", L"T(5)", L"5", Singles<1>, OfText<AsText>},
    {13172, L"TRIM", L"text", "t", L"Text without outer blanks and with single inner blanks.",
     L"TRIM(\"  a   b \")", L"a b", Singles<1>, OfText<Trim>},
    {13173, L"UPPER", L"text", "t", L"Text in capitals.", L"UPPER(\"abc\")", L"ABC", Singles<1>,
     OfText<Upper>},
    {13174, L"VALUE", L"text", "t", L"Number that a text stands for.", L"VALUE(\"12%\")", L"12%",
     Singles<1>, EvalValue},
    {13287, L"CONCAT", L"value...", "[r]", L"Joined text of all values, the same as CONCATENATE.",
     L"CONCAT(\"a\",\"b\")", L"ab", AtLeast<0>, EvalConcat},
    {13295, L"LIKE", L"text; pattern", "tt", L"TRUE when a whole text fits a pattern with ? and *.",
     L"LIKE(\"abc\",\"a*\")", L"TRUE", FirstTwoSingle<2>, EvalLike},
};

} // namespace

FunctionFamily Texts() { return MakeFamily(6, kRows); }

} // namespace cells::internal
