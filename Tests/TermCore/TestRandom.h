#pragma once

#include <cstdint>
#include <random>

namespace termcore::test {

/// The same numbers in every run.
class Random {
public:
    explicit Random(unsigned seed)
        : engine(seed) {}
    std::uint32_t operator()() { return static_cast<std::uint32_t>(engine()); }

private:
    std::mt19937 engine;
};

}
