// The matchers of the text functions. They differ on purpose.
#pragma once

#include <string_view>

namespace cells::internal {

// Whether the text begins with something that fits the pattern, without regard to case: "?" is one
// character, "*" any run, "~" escapes. At the end of the text nothing is left to match, so that
// even a "*" fails there. That is meant so.
bool BeginsWithPattern(std::wstring_view text, std::wstring_view pattern);

// Whether the whole text fits the pattern, case included: "?" is one character, "*" any run, also
// an empty one. There is no escape.
bool IsLike(std::wstring_view text, std::wstring_view pattern);

} // namespace cells::internal
