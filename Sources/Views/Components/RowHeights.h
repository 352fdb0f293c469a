#pragma once

#include <vector>

namespace Korvi {

// Heights of rows that stand one under the other, with the sums that a list asks for. A change of one row and every
// question cost O(log n); inserting and removing elsewhere than at the end costs O(n) additions. Heights are whole
// pixels, so that sums are exact.
class RowHeights {
public:
    int count() const { return static_cast<int>(m_heights.size()); }
    double at(int row) const { return m_heights[static_cast<std::size_t>(row)]; }
    double before(int row) const; // sum of the rows above it; `row` may be count()
    double total() const { return before(count()); }
    // The row that `y` falls into, the first or the last one when it is outside; -1 without rows.
    int rowAt(double y) const;

    void set(int row, double height);
    void reset(std::vector<double> heights);
    void insert(int row, const std::vector<double>& heights);
    void remove(int row, int count);

private:
    void append(double height);
    void rebuild();

    std::vector<double> m_heights;
    std::vector<double> m_tree; // Fenwick: entry i (from 1) holds the rows (i - lowest bit of i, i]
};

}
