#pragma once

#include "Cells/Cell.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace termcore {

/// How the lines of history lie in memory: codes of one, two or four bytes and, unless the whole line is in the default
/// look, runs of styles. Trailing empty cells take nothing.
///
/// Two-byte codes write the second cell of a wide glyph as `fillerMark`, a value that is no scalar; the cell before it
/// is the wide one.
struct PackedLine {
    enum class Form : std::uint8_t { bytes, words, cells };

    const std::byte* data = nullptr;
    std::uint16_t cellCount = 0;   ///< cells to read; may be lowered to cut the line
    std::uint16_t packedCells = 0; ///< cells stored
    std::uint16_t runCount = 0;
    Form form = Form::bytes;

    static constexpr std::uint16_t fillerMark = 0xDC00;
    static constexpr std::size_t shortLine = 8; ///< codes that a slot of the ring can hold itself

    struct Run {
        std::uint32_t style;
        std::uint32_t end; ///< one past the last cell
    };

    /// The most bytes that a line of so many cells can take.
    static constexpr std::size_t largestSize(std::size_t cells) { return cells * (4 + sizeof(Run)) + alignof(Run); }

    /// Packs into `out`, which has room for `largestSize`; `runs` is scratch space. Returns the bytes used.
    static std::size_t pack(
        std::span<const Cell> cells, bool bytesOnly, std::byte* out, std::vector<Run>& runs, PackedLine& result);
    /// Writes `cellCount` cells.
    void unpack(Cell* out) const;
    std::uint32_t codeAt(std::size_t index) const;
    /// As `BufferLine::getTrimmedLength`.
    int trimmedLength() const;
    std::span<const Run> runs() const;

private:
    std::size_t codeBytes() const { return std::size_t{packedCells} << static_cast<unsigned>(form); }
    static constexpr std::size_t aligned(std::size_t size) { return (size + 3) & ~std::size_t{3}; }
};

}
