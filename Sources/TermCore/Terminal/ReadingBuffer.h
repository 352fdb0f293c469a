#pragma once

#include "Unicode/Utf8.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace termcore {

/// The bytes the printing path works through: first those of an unfinished UTF-8 sequence kept from the last feed, then
/// the present slice.
class ReadingBuffer {
public:
    bool hasPutback() const { return putbackCount > 0; }
    void resetPutback() { putbackCount = 0; }

    void prepare(std::span<const std::uint8_t> slice) {
        rest = slice;
        index = 0;
    }
    std::size_t remaining() const { return putbackCount - index + rest.size(); }
    std::uint8_t peek(std::size_t ahead) const {
        const std::size_t at = index + ahead;
        return at < putbackCount ? putbackBuffer[at] : rest[at - putbackCount];
    }
    /// Bytes of the slice alone, when all kept ones have been read.
    std::span<const std::uint8_t> unread() const { return index < putbackCount ? rest.first(0) : rest; }

    void skip(std::size_t bytes) {
        const std::size_t kept = bytes < putbackCount - index ? bytes : putbackCount - index;
        index += kept;
        rest = rest.subspan(bytes - kept);
        if (index == putbackCount)
            index = putbackCount = 0;
    }
    /// Keeps all that is left, at most three bytes, for the next slice.
    void putback() {
        std::array<std::uint8_t, 4> left{};
        const std::size_t count = remaining();
        for (std::size_t i = 0; i < count; ++i)
            left[i] = peek(i);
        putbackBuffer = left;
        putbackCount = count;
        index = 0;
        rest = {};
    }

private:
    std::array<std::uint8_t, 4> putbackBuffer{};
    std::size_t putbackCount = 0;
    std::size_t index = 0;
    std::span<const std::uint8_t> rest;
};

}
