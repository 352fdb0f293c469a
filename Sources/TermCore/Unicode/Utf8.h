#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace termcore {

/// One decoded sequence. `length` 0: the bytes end inside a sequence that could still become valid in length;
/// `isValid` false: overlong, a surrogate, out of range or a wrong continuation byte.
struct Utf8Scalar {
    std::uint32_t scalar = 0;
    std::uint32_t length = 0;
    bool isValid = false;
};

/// UTF-8 as of RFC 3629.
namespace utf8 {

/// The length that the first byte announces: 1 to 4, or 0 for a byte that begins nothing.
constexpr std::uint32_t sequenceLength(std::uint8_t first) {
    if (first < 0x80)
        return 1;
    if (first < 0xC2 || first > 0xF4)
        return 0;
    return first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

inline Utf8Scalar decode(std::span<const std::uint8_t> bytes) {
    if (bytes.empty())
        return {};
    const std::uint8_t first = bytes[0];
    const std::uint32_t length = sequenceLength(first);
    if (length <= 1)
        return {first, 1, length == 1};
    if (bytes.size() < length)
        return {first, 0, false};
    std::uint32_t scalar = first & (0xFFU >> (length + 1));
    for (std::uint32_t i = 1; i < length; ++i) {
        if ((bytes[i] & 0xC0) != 0x80)
            return {first, 1, false};
        scalar = scalar << 6 | (bytes[i] & 0x3FU);
    }
    constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (scalar < smallest[length] || scalar > 0x10FFFF || (scalar >= 0xD800 && scalar <= 0xDFFF))
        return {first, 1, false};
    return {scalar, length, true};
}

void append(std::string& out, std::uint32_t scalar);
std::u32string scalars(std::string_view text);
/// True when the whole text is well formed.
bool isValid(std::string_view text);

}

}
