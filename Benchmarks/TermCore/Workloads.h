#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// A named input for a terminal of 200 x 50.
struct Workload {
    std::string name;
    std::string bytes;
    double goal; ///< times libvterm's bare state parser
};

inline constexpr int cols = 200;
inline constexpr int rows = 50;

/// Each about `size` bytes long, the same in every run; all, or the one called `only`.
std::vector<Workload> workloads(std::size_t size, std::string_view only);

std::string lines(std::size_t count, int length);

}
