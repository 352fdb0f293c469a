#pragma once

#include "Terminal/ReadingBuffer.h"
#include "Unicode/GraphemeTable.h"

#include <cstdint>
#include <span>
#include <string>

namespace termcore {

class Terminal;

/// From text bytes to cells: runs of ASCII and of plain UTF-8 go to the buffer whole, everything else (character sets,
/// combining characters, broken sequences, insert mode) scalar by scalar.
class PrintingPath {
public:
    explicit PrintingPath(Terminal& owner)
        : terminal(owner) {}

    void print(std::span<const std::uint8_t> slice);
    /// Gives up an unfinished character.
    void resetPutback() { reading.resetPutback(); }

    GraphemeTable graphemes;

    /// A cluster takes no more scalars than this; further ones are dropped. UAX #15's stream-safe text has at most 30
    /// combining characters in a row.
    static constexpr std::size_t largestCluster = 32;

private:
    void printGeneral(std::span<const std::uint8_t> slice);
    void printByte(std::uint8_t byte);
    void printScalar(std::uint32_t scalar);
    void write(std::uint32_t code, int width);
    bool wantsToJoin(std::uint32_t scalar, const std::u32string& previous) const;
    /// True when the scalar is done with: joined, or to be dropped.
    bool joinLast(std::uint32_t scalar, const std::u32string& previous);
    std::u32string lastText() const;
    bool hasLast() const;
    bool lastEndsInJoiner() const;

    Terminal& terminal;
    ReadingBuffer reading;
};

}
