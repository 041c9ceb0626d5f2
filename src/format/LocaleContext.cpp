#include "format/LocaleContext.h"

#include "platform/Text.h"

namespace cells {

LCTX * invariant_LCTX() {
    static LCTX * const context =
        new LCTX(kbt::globals::global_environment().locales_cache().invariant());
    return context;
}

LCTX * user_LCTX() {
    static LCTX * const context = new LCTX(*invariant_LCTX());
    *context = LCTX(kbt::globals::global_environment().locales_cache().user());
    return context;
}

} // namespace cells

int StrColl(wchar_t const * a, wchar_t const * b, int caseSensitive) {
    if (!a) return b ? -1 : 0;
    if (!b) return 1;
    auto const & locale = kbt::globals::global_environment().locales_cache().user();
    return cells::Collate(locale, a, b, caseSensitive != 0);
}
