#pragma once

#include <cstdint>

namespace termcore {

/// A width or height as an inline image (OSC 1337) asks for it.
struct ImageSizeRequest {
    enum class Unit : std::uint8_t { automatic, cells, pixels, percent };

    Unit unit = Unit::automatic;
    int amount = 0;

    bool operator==(const ImageSizeRequest&) const = default;
};

}
