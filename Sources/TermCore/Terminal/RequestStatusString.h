#pragma once

#include "Parser/DcsHandler.h"

#include <cstdint>
#include <span>
#include <string>

namespace termcore {

class Terminal;

/// DECRQSS: DCS $ q asks for a setting, the answer is DCS 1 $ r and the control function that would restore it.
class RequestStatusString final : public DcsHandler {
public:
    explicit RequestStatusString(Terminal& owner)
        : terminal(owner) {}

    void hook(
        std::span<const std::uint8_t> collect, std::span<const std::int64_t> parameters, std::uint8_t flag) override;
    void put(std::span<const std::uint8_t> data) override;
    void unhook() override;

private:
    static constexpr std::size_t longestRequest = 16;

    Terminal& terminal;
    std::string request;
};

}
