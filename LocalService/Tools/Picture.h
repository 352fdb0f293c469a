#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvi::service {

/// 8 bits per channel, rows from the top.
struct Picture {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<std::uint8_t> rgb;
};

std::string pngFrom(const Picture& picture);

/// A landscape that depends on the words alone: the same ones, the same picture.
Picture landscapeFor(std::string_view words, unsigned width, unsigned height);

}
