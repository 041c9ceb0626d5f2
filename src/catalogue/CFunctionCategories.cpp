#include "catalogue/CFunctionCategories.h"

#include "formula/FunctionRegistry.h"
#include "functions/internal/Families.h"
#include "platform/Resources.h"

#include <algorithm>

namespace cells {
namespace {

constexpr std::wstring_view kRepeated = L"...";

ArgumentKind KindOf(char letter) {
    switch (letter) {
    case 'n':
        return ArgumentKind::kNumber;
    case 't':
        return ArgumentKind::kText;
    case 'd':
        return ArgumentKind::kDate;
    case 'l':
        return ArgumentKind::kTruth;
    case 'r':
        return ArgumentKind::kValues;
    case 'f':
        return ArgumentKind::kReference;
    default:
        return ArgumentKind::kValue;
    }
}

// "find; text; start" with the kinds "tt[n]". A comma begins another form of the call.
std::vector<FunctionArgument> ReadArguments(CString const & names, char const * kinds) {
    std::vector<FunctionArgument> arguments;
    bool isOptional = false;
    for (std::wstring_view rest(names.GetString()); !rest.empty();) {
        std::size_t const end = std::min(rest.find(L"; "), rest.size());
        std::wstring_view name = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 2, rest.size()));
        if (std::size_t const comma = name.find(L", "); comma < name.size()) {
            name = name.substr(0, comma);
            rest = {};
        }
        if (*kinds == '[') isOptional = true, ++kinds;
        FunctionArgument argument;
        argument.isRepeated = name.ends_with(kRepeated);
        if (argument.isRepeated) name.remove_suffix(kRepeated.size());
        argument.name = CString(name);
        argument.isOptional = isOptional;
        argument.kind = KindOf(*kinds);
        if (*kinds) ++kinds;
        arguments.push_back(argument);
    }
    return arguments;
}

FunctionDescription Describe(CCFunc & func) {
    internal::CatalogueFacts const facts = internal::CatalogueFactsOf(func);
    CString const strings = LoadString(facts.strings);
    FunctionDescription description;
    description.name = CString(func.LocalName());
    description.englishName = CString(func.EnglishName());
    GetField(strings, 1, description.description);
    GetField(strings, 2, description.argumentNames);
    description.arguments = ReadArguments(description.argumentNames, facts.kinds);
    description.example = CString(facts.example);
    description.exampleResult = CString(facts.shows);
    description.func = &func;
    return description;
}

} // namespace

CString NameOfKind(ArgumentKind kind) {
    return LoadString(kStringFirstArgumentKind + unsigned(kind));
}

CString FunctionDescription::Call() const {
    if (func->kind != kFunction) return name;
    return name + L"(" + argumentNames + L")";
}

} // namespace cells

CFunctionCategories::CFunctionCategories() {
    for (int i = 0; i < GetBuiltInFuncSize(); ++i) {
        CCFunc & func = *GetBuiltInFunc()[i];
        auto category = std::find_if(m_Categories.begin(), m_Categories.end(),
                                     [&](auto const & c) { return c.number == func.category; });
        if (category == m_Categories.end()) {
            CString const name = cells::LoadString(cells::kStringFirstCategory + func.category);
            category = m_Categories.insert(category, {func.category, name, {}});
        }
        category->functions.push_back(cells::Describe(func));
    }
    std::sort(m_Categories.begin(), m_Categories.end(),
              [](auto const & a, auto const & b) { return a.number < b.number; });
    for (cells::FunctionCategory & category : m_Categories)
        std::sort(category.functions.begin(), category.functions.end(),
                  [](auto const & a, auto const & b) { return a.name.Compare(b.name) < 0; });
}

cells::FunctionDescription const * CFunctionCategories::Find(CString const & name) const {
    for (cells::FunctionCategory const & category : m_Categories)
        for (cells::FunctionDescription const & function : category.functions)
            if (category.number != 0 && function.name.CompareNoCase(name) == 0) return &function;
    return nullptr;
}

CFunctionCategories getCategories() { return {}; }
