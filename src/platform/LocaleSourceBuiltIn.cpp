#include "platform/LocaleSource.h"

namespace cells::internal {

bool HasLocale(CString const & tag) { return tag.CompareNoCase(L"en_US") == 0; }

std::unique_ptr<kbt::multilang::CLocaleInfo> LoadLocale(CString const &) {
    return std::make_unique<kbt::multilang::CLocaleInfo>();
}

std::unique_ptr<kbt::multilang::Collator> MakeRootCollator() { return nullptr; }

} // namespace cells::internal
