#pragma once

#include <cstdint>

namespace termcore {

/// One grid cell as it lies in memory: eight bytes, all zero for an empty cell in the default look. `text` holds the
/// code (24 bits: a scalar value, or above 0x400000 an index of the grapheme table) and the width; `style` is an id of
/// the terminal's `StyleTable`. `CharData` is the unfolded form for readers.
struct Cell {
    std::uint32_t text = 0;
    std::uint32_t style = 0;

    static constexpr std::uint32_t codeMask = 0xFFFFFF;
    static constexpr unsigned widthShift = 24;

    /// The width is stored xor 1, so that a narrow cell's text is just its code.
    static constexpr std::uint32_t textOf(std::uint32_t code, unsigned width) {
        return code | ((width ^ 1U) << widthShift);
    }
    /// The second cell of a wide glyph: code 0, width 0.
    static constexpr std::uint32_t continuation = 1U << widthShift;
    /// To be added to the code of a wide glyph.
    static constexpr std::uint32_t wide = 3U << widthShift;

    constexpr std::uint32_t code() const { return text & codeMask; }
    constexpr int width() const { return static_cast<int>(((text >> widthShift) & 3U) ^ 1U); }
    constexpr bool operator==(const Cell&) const = default;
};

static_assert(sizeof(Cell) == 8);

}
