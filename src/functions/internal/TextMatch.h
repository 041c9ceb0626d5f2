// The matchers of the text functions. They differ on purpose.
#pragma once

#include <string_view>
#include <vector>

namespace cells::internal {

// Finds one text in another, in time linear in both whatever they are. It borrows the text to find.
// Source: D. Knuth, J. Morris, V. Pratt, "Fast Pattern Matching in Strings".
class TextFinder {
public:
    explicit TextFinder(std::wstring_view find);
    // The first place at or behind `from`, or npos. An empty text stands at every place.
    std::size_t Find(std::wstring_view text, std::size_t from) const;

private:
    std::wstring_view m_Find;
    // How much of the text to find stands before a place where its unit behind does not fit.
    std::vector<int> m_Borders;
};

enum class Match { kNo, kYes, kTooLong };

// Whether the text begins with something that fits the pattern, without regard to case: "?" is one
// character, "*" any run, "~" escapes. At the end of the text nothing is left to match, so that
// even a "*" fails there. That is meant so. Takes its steps from the budget.
Match BeginsWithPattern(std::wstring_view text, std::wstring_view pattern, int & budget);

// Whether the whole text fits the pattern, case included: "?" is one character, "*" any run, also
// an empty one. There is no escape.
Match IsLike(std::wstring_view text, std::wstring_view pattern, int budget);

} // namespace cells::internal
