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

Utf8Scalar decode(std::span<const std::uint8_t> bytes);
void append(std::string& out, std::uint32_t scalar);
std::u32string scalars(std::string_view text);
/// True when the whole text is well formed.
bool isValid(std::string_view text);

}

}
