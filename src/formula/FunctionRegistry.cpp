#include "formula/FunctionRegistry.h"

#include "platform/CodePage.h"
#include "platform/Text.h"

#include <algorithm>
#include <array>
#include <string>

namespace {

constexpr unsigned short kNoEntry = 0xFFFF;

using NameOf = wchar_t const * (CCFunc::*)() const;

// Order by units; a name stands after the longer names that it begins, and kinds decide a tie.
bool StandsBefore(CCFunc const * a, CCFunc const * b, NameOf name) {
    wchar_t const *x = (a->*name)(), *y = (b->*name)();
    while (*x && *x == *y) ++x, ++y;
    if (*x == *y) return a->kind < b->kind;
    if (!*x || !*y) return !*y;
    return *x < *y;
}

// One of the two sorted arrays with its index by the low byte of the first unit.
class SortedNames {
public:
    explicit SortedNames(NameOf name) : m_Name(name) { m_Index.fill(kNoEntry); }

    void Build(std::vector<CCFunc *> functions) {
        m_Functions = std::move(functions);
        std::stable_sort(m_Functions.begin(), m_Functions.end(),
                         [this](CCFunc * a, CCFunc * b) { return StandsBefore(a, b, m_Name); });
        m_Index.fill(kNoEntry);
        m_Names.clear();
        for (CCFunc const * func : m_Functions) m_Names.push_back((func->*m_Name)());
        for (std::size_t i = m_Functions.size(); i-- > 0;)
            if (wchar_t const first = *m_Names[i])
                m_Index[first & 0xFF] = static_cast<unsigned short>(i);
    }

    std::vector<CCFunc *> & Functions() { return m_Functions; }

    // Calls `test` with each function whose name begins with `first`, until it gives true.
    template <typename Test>
    CCFunc * FindFrom(wchar_t first, Test && test) const {
        if (first == 0 || first > cells::internal::kLastFirstUnit) return nullptr;
        std::size_t i = m_Index[first & 0xFF];
        for (; i < m_Functions.size(); ++i) {
            wchar_t const * const name = m_Names[i];
            if (name[0] != first && (name[0] & 0xFF) == (first & 0xFF)) continue;
            if (name[0] != first) return nullptr;
            if (test(m_Functions[i], name)) return m_Functions[i];
        }
        return nullptr;
    }

private:
    NameOf m_Name;
    std::vector<CCFunc *> m_Functions;
    std::vector<wchar_t const *> m_Names; // of the functions, in the same order
    std::array<unsigned short, 256> m_Index;
};

SortedNames & Names(cells::internal::NameTable table) {
    static SortedNames * const local = new SortedNames(&CCFunc::LocalName);
    static SortedNames * const english = new SortedNames(&CCFunc::EnglishName);
    return table == cells::internal::NameTable::kLocal ? *local : *english;
}

// Moves `text` after `name` when it begins with it, without regard to case.
bool TakeFolded(wchar_t const *& text, wchar_t const * name) {
    wchar_t const * at = text;
    for (; *name; ++name, ++at)
        if (cells::ToUpper(*at) != cells::ToUpper(*name)) return false;
    text = at;
    return true;
}

} // namespace

namespace cells::internal {

CCFunc * TakeFunctionName(NameTable table, wchar_t const *& text, uchar kind) {
    wchar_t const * const start = text;
    return Names(table).FindFrom(ToUpper(*start), [&](CCFunc * func, wchar_t const * name) {
        wchar_t const * rest = start + 1;
        if (func->kind != kind || !TakeFolded(rest, name + 1)) return false;
        text = rest;
        return true;
    });
}

CCFunc * FindEnglishFunction(wchar_t const * name, uchar kind) {
    if (!name || !*name) return nullptr;
    CCFunc * const func = TakeFunctionName(NameTable::kEnglish, name, kind);
    return *name ? nullptr : func;
}

void BuildRegistry(std::vector<CCFunc *> const & functions) {
    Names(NameTable::kLocal).Build(functions);
    Names(NameTable::kEnglish).Build(functions);
}

} // namespace cells::internal

using cells::internal::NameTable;

CCFunc ** GetBuiltInFunc() { return Names(NameTable::kLocal).Functions().data(); }

int GetBuiltInFuncSize() { return int(Names(NameTable::kLocal).Functions().size()); }

bool IsFunction(CString const & name, uchar kindMask) {
    return Names(NameTable::kLocal)
               .FindFrom(cells::ToUpper(name[0]), [&](CCFunc * func, wchar_t const * own) {
                   return (func->kind & kindMask) &&
                          cells::CompareFolded(name.GetString() + 1, own + 1) == 0;
               }) != nullptr;
}

bool _EatFunction(cells::CTX *, wchar_t const * text, CCFunc *& func, uchar kind) {
    func = text ? cells::internal::TakeFunctionName(NameTable::kLocal, text, kind) : nullptr;
    return func != nullptr;
}

CCFunc * GetFunction(cells::CTX * ctx, char * name, CCFormulaList * args) {
    CString const wide = cells::FromNarrow(name ? name : "");
    return Names(NameTable::kLocal)
        .FindFrom(cells::ToUpper(wide[0]), [&](CCFunc * func, wchar_t const * own) {
            return cells::CompareFolded(wide.GetString() + 1, own + 1) == 0 && func->check &&
                   func->check(ctx, args, nullptr);
        });
}
