#include "host/NumberFormats.h"

#include "platform/Utf.h"

#include <charconv>
#include <stdexcept>

namespace cells::host {
namespace {

struct NamedFormat {
    std::string_view name;
    uchar type;
    int mostDecimals; // -1: takes none
};

constexpr NamedFormat kNamed[] = {
    {"general", C_NF_GENERAL, -1},   {"number", C_NF_NUMBER, 15},
    {"currency", C_NF_CURRENCY, 15}, {"percent", C_NF_PERCENT, 15},
    {"fraction", C_NF_FRACTION, 5},  {"scientific", C_NF_SCIENTIFIC, 15},
    {"time", C_NF_TIME, -1},         {"date", C_NF_DATE, -1},
    {"logical", C_NF_BOOL, -1},      {"hex", C_NF_HEX, -1},
    {"oct", C_NF_OCT, -1},           {"bin", C_NF_BIN, -1},
};

NamedFormat const * FindNamed(std::string_view name) {
    for (NamedFormat const & named : kNamed)
        if (named.name == name) return &named;
    return nullptr;
}

int DecimalsOf(NamedFormat const & named, std::string_view text, std::string_view digits) {
    int decimals = -1;
    auto const end = digits.data() + digits.size();
    auto const result = std::from_chars(digits.data(), end, decimals);
    if (result.ec != std::errc() || result.ptr != end || decimals < 0 ||
        decimals > named.mostDecimals)
        throw std::invalid_argument("no such number format: " + std::string(text));
    return decimals;
}

} // namespace

CCNumberFormat ParseNumberFormat(std::string_view text, LCTX & lctx) {
    CCNumberFormat format;
    std::size_t const colon = text.find(':');
    NamedFormat const * const named = FindNamed(text.substr(0, colon));
    if (!named) {
        format.setCustomFormat(FromUtf8(text));
        return format;
    }
    format.SetDefault(&lctx, named->type);
    format.SetType(named->type);
    if (colon != std::string_view::npos)
        format.SetPrecision(DecimalsOf(*named, text, text.substr(colon + 1)));
    if (named->type == C_NF_CURRENCY) format.SetCommas(1);
    return format;
}

std::string DescribeNumberFormat(CCNumberFormat const & format) {
    if (format.isCustomFormat()) return ToUtf8(format.getFormatString());
    for (NamedFormat const & named : kNamed) {
        if (named.type != format.GetType()) continue;
        std::string text(named.name);
        if (named.mostDecimals >= 0) text += ":" + std::to_string(format.GetPrecision());
        return text;
    }
    return {};
}

} // namespace cells::host
