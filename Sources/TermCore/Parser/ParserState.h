#pragma once

#include <cstdint>

namespace termcore {

/// The states of the DEC VT500 parser, with one for APC strings. The transition table packs the values.
enum class ParserState : std::uint8_t {
    ground,
    escape,
    escapeIntermediate,
    csiEntry,
    csiParam,
    csiIntermediate,
    csiIgnore,
    sosPmApcString,
    oscString,
    apcString,
    dcsEntry,
    dcsParam,
    dcsIgnore,
    dcsIntermediate,
    dcsPassthrough,
};

inline constexpr int parserStateCount = 15;

}
