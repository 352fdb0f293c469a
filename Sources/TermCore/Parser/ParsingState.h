#pragma once

#include "Parser/ParserState.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace termcore {

/// What an error handler of the parser gets to see; `abort` ends the current call of `parse`.
struct ParsingState {
    std::size_t position = 0;
    std::uint8_t code = 0;
    ParserState currentState = ParserState::ground;
    bool print = false; ///< a print run is open
    bool dcs = false;   ///< a run of DCS data is open
    std::string osc;
    std::string apc;
    std::string collect;
    std::vector<std::int64_t> parameters;
    bool abort = false;
};

}
