// The built-in number formats of a locale.
#include "cvcells/Commands.h"
#include "format/CCNumberFormat.h"
#include "format/International.h"
#include "host/Sheet.h"
#include "platform/Services.h"
#include "platform/Utf.h"

#include <iomanip>
#include <iostream>
#include <sstream>

namespace cells::app {
namespace {

constexpr double kAmount = 1234.567, kShare = 0.1234, kMoment = 46085.573125; // 5 March 2026

double ExampleFor(CCNumberFormat const & format) {
    switch (format.getType()) {
    case C_NF_PERCENT:
        return kShare;
    case C_NF_TIME:
    case C_NF_DATE:
        return kMoment;
    default:
        return kAmount;
    }
}

std::string Printed(CCNumberFormat const & format, LCTX & lctx, double value) {
    std::wostringstream stream;
    format.Print(&lctx, stream, value, 0);
    return ToUtf8(std::wstring_view(stream.str()));
}

} // namespace

int Formats(std::string const & locale) {
    // The built-in formats are those of the user's locale.
    if (!locale.empty()) PlatformServices().localeName = [locale] { return FromUtf8(locale); };
    try {
        host::Sheet const sheet(locale);
    } catch (std::exception const & failure) {
        std::cerr << "cvcells: " << failure.what() << '\n';
        return 1;
    }
    for (int index = 0; index < kBuiltInNumberFormats; ++index) {
        CString const text = getBuiltInNumberFormat(index);
        if (text == L"Unknown") continue;
        CCNumberFormat format;
        format.setCustomFormat(text);
        std::cout << std::setw(2) << index << "  " << ToUtf8(text) << "\t"
                  << Printed(format, *user_LCTX(), ExampleFor(format)) << '\n';
    }
    return 0;
}

} // namespace cells::app
