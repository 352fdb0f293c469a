#pragma once

#include "Parser/ControlSequence.h"
#include "Parser/DcsHandler.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace termcore {

/// What the parser tells of: the terminal.
class ParserTarget {
public:
    virtual ~ParserTarget() = default;
    /// Text: bytes above 0x1F, not yet decoded.
    virtual void handlePrint(std::span<const std::uint8_t> data) = 0;
    /// The same of printable ASCII alone.
    virtual void handleAscii(std::span<const std::uint8_t> data) { handlePrint(data); }
    /// CR and LF, as most lines end.
    virtual void handleLineEnd() {
        dispatchExecute('\r');
        dispatchExecute('\n');
    }
    /// The sequence state was cleared: an unfinished character is given up. Only called when there is one.
    virtual void printStateReset() = 0;
    bool hasUnfinishedCharacter = false;
    virtual void dispatchExecute(std::uint8_t code) = 0;
    virtual void dispatchEsc(std::string_view collect, std::uint8_t final) = 0;
    virtual void dispatchCsi(const ControlSequence& sequence) = 0;
    virtual void dispatchOsc(std::int64_t code, std::span<const std::uint8_t> data) = 0;
    virtual void dispatchApc(std::uint8_t code, std::span<const std::uint8_t> data) = 0;
    /// The handler for a device control string, or none: then its data is dropped.
    virtual std::unique_ptr<DcsHandler> dcsHandler(std::string_view collect, std::uint8_t final) = 0;
};

}
