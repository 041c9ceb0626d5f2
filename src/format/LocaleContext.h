// cells::LCTX: the locale context of scanners and number printing, which need no document.
#pragma once

#include "platform/LocaleInfo.h"

namespace cells {

class CVCELLS_API LCTX : public kbt::multilang::CLegacyLocaleContext {
public:
    explicit LCTX(kbt::multilang::CLocaleInfo const & locale) : CLegacyLocaleContext(locale) {}
};

// The one context of the invariant locale; it lives until the process ends. Comparison that must
// not depend on the user's locale uses it.
CVCELLS_API LCTX * invariant_LCTX();

// A context of the user's locale, for text comparison that is given no context of its own.
CVCELLS_API LCTX * user_LCTX();

} // namespace cells

// Order of two texts in the user's locale. A null text stands before every other and equals a null
// text. -1, 0 or 1 for nulls, else negative, 0 or positive.
CVCELLS_API int StrColl(wchar_t const * a, wchar_t const * b, int caseSensitive);
