#include "platform/LocaleSource.h"

namespace cells::internal {

std::unique_ptr<kbt::multilang::CLocaleInfo> LoadLocale(CString const &) {
    return std::make_unique<kbt::multilang::CLocaleInfo>();
}

std::unique_ptr<kbt::multilang::Collator> MakeRootCollator() { return nullptr; }

} // namespace cells::internal
