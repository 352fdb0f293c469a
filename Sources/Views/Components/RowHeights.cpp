#include "RowHeights.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Korvi {

namespace {

std::size_t lowestBit(std::size_t i) {
    return i & (~i + 1);
}

}

double RowHeights::before(int row) const {
    double sum = 0;
    for (auto i = static_cast<std::size_t>(row); i > 0; i -= lowestBit(i))
        sum += m_tree[i];
    return sum;
}

int RowHeights::rowAt(double y) const {
    if (m_heights.empty())
        return -1;
    std::size_t found = 0;
    for (std::size_t step = std::bit_floor(m_heights.size()); step > 0; step /= 2) {
        if (found + step <= m_heights.size() && m_tree[found + step] <= y) {
            found += step;
            y -= m_tree[found];
        }
    }
    return static_cast<int>(std::min(found, m_heights.size() - 1));
}

void RowHeights::set(int row, double height) {
    const double change = height - std::exchange(m_heights[static_cast<std::size_t>(row)], height);
    for (auto i = static_cast<std::size_t>(row) + 1; i < m_tree.size(); i += lowestBit(i))
        m_tree[i] += change;
}

void RowHeights::reset(std::vector<double> heights) {
    m_heights = std::move(heights);
    rebuild();
}

void RowHeights::insert(int row, const std::vector<double>& heights) {
    if (row == count()) {
        for (const double height : heights)
            append(height);
        return;
    }
    m_heights.insert(m_heights.begin() + row, heights.begin(), heights.end());
    rebuild();
}

void RowHeights::remove(int row, int count) {
    m_heights.erase(m_heights.begin() + row, m_heights.begin() + row + count);
    if (row == this->count())
        m_tree.resize(m_heights.size() + 1);
    else
        rebuild();
}

void RowHeights::append(double height) {
    if (m_tree.empty())
        m_tree.push_back(0);
    m_heights.push_back(height);
    const std::size_t i = m_heights.size();
    double sum = height;
    for (std::size_t child = i - 1; child > i - lowestBit(i); child -= lowestBit(child))
        sum += m_tree[child];
    m_tree.push_back(sum);
}

void RowHeights::rebuild() {
    m_tree.assign(m_heights.size() + 1, 0);
    for (std::size_t i = 1; i < m_tree.size(); ++i) {
        m_tree[i] += m_heights[i - 1];
        if (const std::size_t parent = i + lowestBit(i); parent < m_tree.size())
            m_tree[parent] += m_tree[i];
    }
}

}
