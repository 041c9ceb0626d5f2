// Where the facts of a locale come from: ICU, or, in a build without it, the invariant facts alone.
#pragma once

#include "platform/LocaleInfo.h"

namespace cells::internal {

// A new CLocaleInfo for a normalized tag; never null. Unknown tags give what ICU falls back to.
std::unique_ptr<kbt::multilang::CLocaleInfo> LoadLocale(CString const & tag);

// Whether there are facts of the language of a normalized tag.
bool HasLocale(CString const & tag);

// The order of texts that belongs to no locale; null in a build without ICU.
std::unique_ptr<kbt::multilang::Collator> MakeRootCollator();

// The telephone country code of an ISO 3166 region ("DE" gives 49), or 1.
int TelephoneCode(char const * region);

} // namespace cells::internal
