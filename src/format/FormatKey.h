// FormatKey: a format record as two words, to be found in a hash table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace cells::internal {

struct FormatKey {
    std::uint64_t fields, rest;
    bool operator==(FormatKey const & other) const = default;
};

struct FormatKeyHash {
    std::size_t operator()(FormatKey const & key) const {
        return std::hash<std::uint64_t>()(key.fields * 0x9E3779B97F4A7C15ull ^ key.rest);
    }
};

} // namespace cells::internal
