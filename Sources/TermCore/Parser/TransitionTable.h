#pragma once

#include "Parser/ParserAction.h"
#include "Parser/ParserState.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace termcore {

/// From a state and a byte to an action and the next state, one byte each: the action in the high four bits. All bytes
/// from 0xA0 up share one column.
class TransitionTable {
public:
    static constexpr std::uint8_t lastColumn = 0xA0;

    constexpr void add(std::uint8_t code, ParserState state, ParserAction action, ParserState next) {
        table[index(state, code)] =
            static_cast<std::uint8_t>(static_cast<unsigned>(action) << 4 | static_cast<unsigned>(next));
    }
    /// For all bytes from `first` to `last`.
    constexpr void add(int first, int last, ParserState state, ParserAction action, ParserState next) {
        for (int code = first; code <= last; ++code)
            add(static_cast<std::uint8_t>(code), state, action, next);
    }
    constexpr ParserAction action(ParserState state, std::uint8_t code) const {
        return static_cast<ParserAction>(table[index(state, code)] >> 4);
    }
    constexpr ParserState next(ParserState state, std::uint8_t code) const {
        return static_cast<ParserState>(table[index(state, code)] & 0xF);
    }

private:
    static constexpr std::size_t index(ParserState state, std::uint8_t code) {
        return static_cast<std::size_t>(state) << 8 | (code > lastColumn ? lastColumn : code);
    }
    std::array<std::uint8_t, 4095> table{};
};

/// The VT500 transitions.
extern const TransitionTable vt500Transitions;

}
