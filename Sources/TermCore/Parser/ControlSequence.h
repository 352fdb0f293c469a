#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace termcore {

/// A complete control sequence (ECMA-48 5.4), valid during its dispatch.
struct ControlSequence {
    std::span<const std::int64_t> parameters; ///< at least one; an omitted parameter is 0
    std::string_view separators;              ///< ';' and ':' in the order they came
    std::string_view collect;                 ///< private marker and intermediate bytes
    std::uint8_t final = 0;

    /// The parameter at `index`, or `fallback` when it is not there.
    std::int64_t at(std::size_t index, std::int64_t fallback = 0) const {
        return index < parameters.size() ? parameters[index] : fallback;
    }
    /// The parameter at `index` as a count: absent and 0 mean 1; capped so that it stays an int.
    int count(std::size_t index = 0) const {
        constexpr std::int64_t largest = 0x3FFFFFFF;
        const std::int64_t value = at(index);
        return static_cast<int>(value < 1 ? 1 : value > largest ? largest : value);
    }
    /// The parameter at `index` as a small number; larger ones become `0x3FFFFFFF`.
    int number(std::size_t index, int fallback = 0) const {
        constexpr std::int64_t largest = 0x3FFFFFFF;
        const std::int64_t value = at(index, fallback);
        return static_cast<int>(value > largest ? largest : value);
    }
};

}
