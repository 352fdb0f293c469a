#pragma once

#include "Terminal/ReadingBuffer.h"
#include "Unicode/GraphemeTable.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

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
    bool hasPutback() const { return reading.hasPutback(); }

    GraphemeTable graphemes;

    /// A cluster takes no more scalars than this; further ones are dropped. UAX #15's stream-safe text has at most 30
    /// combining characters in a row.
    static constexpr std::size_t largestCluster = 32;

private:
    /// What becomes of a scalar behind a cell with a certain text. It hangs on the two alone and is remembered.
    struct Join {
        enum class Outcome : std::uint8_t { write, drop, join };

        std::uint64_t key = ~std::uint64_t{0};
        Outcome outcome = Outcome::write;
        std::uint32_t code = 0; ///< of the joined cluster
    };
    static constexpr std::size_t joinCacheSize = 1024;

    void printRuns(std::span<const std::uint8_t> slice, std::uint32_t style);
    void printGeneral(std::span<const std::uint8_t> slice);
    void printByte(std::uint8_t byte);
    void printScalar(std::uint32_t scalar);
    void write(std::uint32_t code, int width);
    const Join& joinOf(std::uint32_t previous, std::uint32_t scalar);
    Join decideJoin(std::uint32_t previous, std::uint32_t scalar);
    void join(std::uint32_t scalar, std::uint32_t code);
    bool hasLast() const;
    std::uint32_t lastCode() const;
    bool lastEndsInJoiner() const;

    Terminal& terminal;
    ReadingBuffer reading;
    std::vector<Join> joins = std::vector<Join>(joinCacheSize);
};

}
