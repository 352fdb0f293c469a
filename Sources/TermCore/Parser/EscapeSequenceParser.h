#pragma once

#include "Parser/DcsHandler.h"
#include "Parser/ParserState.h"
#include "Parser/ParserTarget.h"
#include "Parser/ParsingState.h"
#include "Parser/TransitionTable.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace termcore {

/// The DEC VT500 state machine, on raw bytes. State is kept between calls, so a sequence may be cut anywhere; an open
/// print run is handed on at the end of each call. Not reentrant.
class EscapeSequenceParser {
public:
    explicit EscapeSequenceParser(ParserTarget& receiver)
        : target(receiver) {}

    void parse(std::span<const std::uint8_t> data);
    void reset();

    ParserState state() const { return currentState; }

    /// Sees bytes that have no place where they came; may abort the call. By default they end the sequence in silence.
    std::function<ParsingState(ParsingState)> errorHandler;

    /// A guard for memory, far above what any string is used for: further bytes of a string, and further parameters, are
    /// dropped.
    static constexpr std::size_t largestString = std::size_t{1} << 28;
    static constexpr std::size_t largestParameterCount = std::size_t{1} << 20;
    /// A parameter that reaches this becomes 0.
    static constexpr std::int64_t parameterLimit = 0xCCCCCCCCCCCCCC3;
    /// The decimal number at the front; 0 when it is not one or reaches the limit.
    static std::int64_t parseInt(std::span<const std::uint8_t> digits);

private:
    using Bytes = const std::uint8_t*;

    static constexpr std::size_t initialParameterRoom = 32;

    void resetParameters() {
        parameterCount = 1;
        parameters[0] = 0;
    }
    bool addParameter(std::uint8_t separator);
    Bytes tryControlSequence(Bytes escape, Bytes end);
    Bytes perform(ParserAction action, Bytes at, Bytes begin, Bytes end);
    bool isInsideCharacter() const;
    Bytes putString(Bytes at, Bytes end);
    void clearSequence();
    void param(std::uint8_t code);
    void endString(std::uint8_t code);
    bool handleError(Bytes at, Bytes begin);
    void dispatchCsi(std::uint8_t final);
    void hookDcs(std::uint8_t final);
    void unhookDcs(Bytes at, std::uint8_t code);
    void flushDcs(Bytes at);

    ParserTarget& target;
    static constexpr ParserState initialState = ParserState::ground;
    ParserState currentState = initialState;
    ParserState nextState = initialState;
    std::string osc;
    std::string apc;
    std::vector<std::int64_t> parameters = std::vector<std::int64_t>(initialParameterRoom); // the first parameterCount
    std::vector<char> separators = std::vector<char>(initialParameterRoom);                 // one fewer
    std::size_t parameterCount = 1;
    std::string collect;
    std::unique_ptr<DcsHandler> activeDcsHandler;
    Bytes dcsRun = nullptr; // start of an open run of DCS data
};

}
