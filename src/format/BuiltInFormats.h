// The texts of the 50 built-in number formats of a locale.
#pragma once

namespace kbt::multilang {
class CLocaleInfo;
}

namespace cells::internal {

void BuildBuiltInFormats(kbt::multilang::CLocaleInfo const & locale);

}
