#pragma once

#include <algorithm>
#include <limits>
#include <optional>

namespace termcore {

/// The rows that changed since the last drawing, first and last.
class UpdateRange {
public:
    struct Rows {
        int start = 0;
        int end = 0;
        bool operator==(const Rows&) const = default;
    };

    void add(int row) {
        if (row < start || row > end)
            add(row, row);
    }
    void add(int firstRow, int lastRow) {
        start = std::min(start, firstRow);
        end = std::max(end, lastRow);
    }
    void clear() {
        start = std::numeric_limits<int>::max();
        end = -1;
    }
    std::optional<Rows> rows() const { return end < start ? std::nullopt : std::optional(Rows{start, end}); }

private:
    int start = std::numeric_limits<int>::max();
    int end = -1;
};

}
