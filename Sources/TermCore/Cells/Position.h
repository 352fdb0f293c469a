#pragma once

namespace termcore {

/// A place in a buffer: a column and an absolute row, ordered by row, then column.
struct Position {
    enum class Order { before, equal, after };

    int col = 0;
    int row = 0;

    constexpr Order compare(const Position& other) const {
        if (*this == other)
            return Order::equal;
        const bool isBefore = row != other.row ? row < other.row : col < other.col;
        return isBefore ? Order::before : Order::after;
    }
    constexpr bool operator==(const Position&) const = default;
};

}
