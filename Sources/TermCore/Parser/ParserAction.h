#pragma once

#include <cstdint>

namespace termcore {

/// What the parser does on a byte. The transition table packs the values.
enum class ParserAction : std::uint8_t {
    ignore,
    error,
    print,
    execute,
    oscStart,
    oscPut,
    oscEnd,
    csiDispatch,
    param,
    collect,
    escDispatch,
    clear,
    dcsHook,
    dcsPut,
    dcsUnhook,
};

}
