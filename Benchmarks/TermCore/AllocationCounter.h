#pragma once

#include <cstddef>

namespace bench {

/// How many times this program has asked the C library for memory.
std::size_t allocationCount();

}
