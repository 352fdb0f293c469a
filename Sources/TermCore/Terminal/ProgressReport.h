#pragma once

#include <cstdint>
#include <optional>

namespace termcore {

enum class ProgressReportState : std::uint8_t { remove, set, error, indeterminate, pause };

/// OSC 9;4: the progress of a long task.
struct ProgressReport {
    ProgressReportState state = ProgressReportState::remove;
    std::optional<int> progress; ///< 0 to 100

    bool operator==(const ProgressReport&) const = default;
};

}
