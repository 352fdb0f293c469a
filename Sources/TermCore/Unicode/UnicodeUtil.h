#pragma once

#include <cstdint>

namespace termcore {

/// What the printing path must know of a scalar value. The tables come from the Unicode data files at build time.
class UnicodeUtil {
public:
    static constexpr std::uint32_t lastScalar = 0x10FFFF;
    static constexpr std::uint32_t zeroWidthJoiner = 0x200D;
    static constexpr std::uint32_t emojiSelector = 0xFE0F;
    static constexpr std::uint32_t textSelector = 0xFE0E;

    /// One byte for each scalar value; see the masks.
    static std::uint8_t properties(std::uint32_t scalar) {
        return stage2[(static_cast<std::uint32_t>(stage1[scalar >> 8]) << 8) | (scalar & 0xFF)];
    }
    static constexpr std::uint8_t widthMask = 3; ///< columns + 1; 0 for controls
    static constexpr std::uint8_t joins = 4;
    static constexpr std::uint8_t regionalIndicator = 8;
    static constexpr std::uint8_t variationBase = 16;

    /// 0, 1 or 2 columns; -1 for a control.
    static int columnWidth(std::uint32_t scalar) {
        return scalar > lastScalar ? -1 : (properties(scalar) & widthMask) - 1;
    }
    /// True for zero-width and combining scalars, emoji modifiers, variation selectors and the joiner.
    static bool mayJoin(std::uint32_t scalar) { return (properties(scalar) & joins) != 0; }
    static bool isRegionalIndicator(std::uint32_t scalar) { return (properties(scalar) & regionalIndicator) != 0; }
    static bool acceptsVariationSelector(std::uint32_t scalar) { return (properties(scalar) & variationBase) != 0; }
    static constexpr bool isScalar(std::uint32_t code) {
        return code <= lastScalar && (code < 0xD800 || code > 0xDFFF);
    }

private:
    static const std::uint8_t stage1[];
    static const std::uint8_t stage2[];
};

}
