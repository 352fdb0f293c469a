#pragma once

#include <cstdint>
#include <span>

namespace termcore {

/// Takes the data of one device control string (ECMA-48 8.3.27), in any number of pieces.
class DcsHandler {
public:
    virtual ~DcsHandler() = default;
    virtual void hook(
        std::span<const std::uint8_t> collect, std::span<const std::int64_t> parameters, std::uint8_t flag) = 0;
    virtual void put(std::span<const std::uint8_t> data) = 0;
    virtual void unhook() = 0;
};

}
