#pragma once

#include <chrono>
#include <string>

namespace korvi::service {

using WallClock = std::chrono::system_clock;

/// Milliseconds since the Unix epoch: the form in which the database compares times.
long long toMillis(WallClock::time_point time);

/// ISO 8601 in UTC with milliseconds. Always the same width, so that text order is time order.
std::string toIso8601(WallClock::time_point time);

}
