#include "platform/Text.h"

#include "platform/LocaleInfo.h"
#include "platform/Services.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace cells {
namespace {

struct UnitRun {
    unsigned short first, last;
};

// Every step-th unit from first to last maps to itself plus distance.
struct CaseRun {
    unsigned short first, last, step;
    int distance;
};

#include "platform/CharacterTable.inc"

constexpr unsigned char kLetterFact = 1, kDigitFact = 2, kSpaceFact = 4;

// The runs unfolded, so that a question is one array read.
struct CharacterFacts {
    unsigned char facts[0x10000] = {};
    unsigned short upper[0x10000], lower[0x10000], folded[0x10000];

    CharacterFacts() {
        for (unsigned i = 0; i < 0x10000; ++i) upper[i] = lower[i] = static_cast<unsigned short>(i);
        Mark(kLetters, kLetterFact);
        Mark(kDigits, kDigitFact);
        constexpr UnitRun spaces[] = {{0x9, 0xD},       {0x20, 0x20},     {0x85, 0x85},
                                      {0xA0, 0xA0},     {0x1680, 0x1680}, {0x2000, 0x200A},
                                      {0x2028, 0x2029}, {0x202F, 0x202F}, {0x205F, 0x205F},
                                      {0x3000, 0x3000}};
        Mark(spaces, kSpaceFact);
        Map(kUpper, upper);
        Map(kLower, lower);
        for (unsigned i = 0; i < 0x10000; ++i) folded[i] = lower[upper[i]];
    }

    template <typename Runs>
    void Mark(Runs const & runs, unsigned char fact) {
        for (UnitRun const & run : runs)
            for (unsigned unit = run.first; unit <= run.last; ++unit) facts[unit] |= fact;
    }

    template <typename Runs>
    static void Map(Runs const & runs, unsigned short * target) {
        for (CaseRun const & run : runs)
            for (unsigned unit = run.first; unit <= run.last; unit += run.step)
                target[unit] = static_cast<unsigned short>(int(unit) + run.distance);
    }
};

CharacterFacts const & Facts() {
    static CharacterFacts const * const facts = new CharacterFacts; // outlives static destructors
    return *facts;
}

bool HasFact(wchar_t unit, unsigned char fact) {
    return static_cast<unsigned long>(unit) <= 0xFFFF && (Facts().facts[unit] & fact) != 0;
}

wchar_t Mapped(wchar_t unit, unsigned short const * table) {
    return static_cast<unsigned long>(unit) <= 0xFFFF ? wchar_t(table[unit]) : unit;
}

int Sign(long difference) { return difference < 0 ? -1 : difference > 0; }

// Order of kinds where no collation data is at hand: punctuation, digits, letters.
int UnitKind(wchar_t unit) { return IsAlpha(unit) ? 2 : IsAlnum(unit) ? 1 : 0; }

int CompareByKind(wchar_t const * a, wchar_t const * b) {
    for (; *a && *b; ++a, ++b) {
        wchar_t const x = FoldCase(*a), y = FoldCase(*b);
        if (x == y) continue;
        int const kinds = UnitKind(x) - UnitKind(y);
        return kinds ? Sign(kinds) : Sign(long(x) - long(y));
    }
    return Sign((*a != 0) - (*b != 0));
}

// Among texts equal but for case the lower-case letter stands first.
int CompareCaseLast(wchar_t const * a, wchar_t const * b) {
    for (; *a && *b; ++a, ++b)
        if (*a != *b)
            return Sign(long(*b == ToLower(*b) ? 1 : 0) - long(*a == ToLower(*a) ? 1 : 0));
    return 0;
}

int CompareWithoutData(wchar_t const * a, wchar_t const * b, bool caseSensitive) {
    int const order = CompareByKind(a, b);
    return order || !caseSensitive ? order : CompareCaseLast(a, b);
}

int OrderInLocale(kbt::multilang::CLocaleInfo const & locale, wchar_t const * a, wchar_t const * b,
                  bool caseSensitive) {
    if (PlatformServices().collate) return PlatformServices().collate(a, b, caseSensitive);
    if (auto const * collator = locale.Collator()) return collator->Compare(a, b, caseSensitive);
    return CompareWithoutData(a, b, caseSensitive);
}

} // namespace

namespace internal {

bool IsSpaceBeyondAscii(wchar_t unit) { return HasFact(unit, kSpaceFact); }
bool IsAlphaBeyondAscii(wchar_t unit) { return HasFact(unit, kLetterFact); }
bool IsAlnumBeyondAscii(wchar_t unit) { return HasFact(unit, kLetterFact | kDigitFact); }
wchar_t ToUpperBeyondAscii(wchar_t unit) { return Mapped(unit, Facts().upper); }

} // namespace internal

bool IsControl(wchar_t unit) {
    return (unit >= 0 && unit < 0x20) || (unit >= 0x7F && unit <= 0x9F);
}
wchar_t ToLower(wchar_t unit) { return Mapped(unit, Facts().lower); }
wchar_t FoldCase(wchar_t unit) { return Mapped(unit, Facts().folded); }

int CompareUnits(wchar_t const * a, wchar_t const * b) {
    while (*a && *a == *b) ++a, ++b;
    return Sign(long(*a) - long(*b));
}

int CompareFolded(wchar_t const * a, wchar_t const * b) {
    while (*a && FoldCase(*a) == FoldCase(*b)) ++a, ++b;
    return Sign(long(FoldCase(*a)) - long(FoldCase(*b)));
}

int Collate(kbt::multilang::CLocaleInfo const & locale, wchar_t const * a, wchar_t const * b,
            bool caseSensitive) {
    int const units = caseSensitive ? CompareUnits(a, b) : CompareFolded(a, b);
    if (units == 0) return 0;
    int const order = OrderInLocale(locale, a, b, caseSensitive);
    return order ? order : units;
}

} // namespace cells
