#pragma once

#include "Cells/Cell.h"
#include "Lines/Buffer.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace termcore {

/// Rewraps the lines of a buffer when its column count changes. A group, a line and the wrapped ones after it, is laid
/// out again as a whole, but for the group that holds the cursor: the program behind it redraws that one itself.
class Reflow {
public:
    /// Lines to be inserted after a group.
    struct InsertionSet {
        std::vector<std::unique_ptr<BufferLine>> lines;
        std::ptrdiff_t start = 0; ///< the index at which they go, earlier insertions counted
        bool isNull = false;      ///< marks the end of the list
    };

    explicit Reflow(Buffer& target)
        : buffer(target) {}

    void run(int oldCols, int newCols, int newRows);

private:
    void reflowNarrower(int oldCols, int newCols, int newRows);
    void reflowWider(int oldCols, int newCols, int newRows);
    /// Index and number of lines that each group no longer needs, in pairs.
    std::vector<std::size_t> getLinesToRemove(int oldCols, int newCols, std::size_t cursorRow);
    int getWrappedLineTrimmedLength(std::size_t first, std::size_t index, std::size_t count, int cols);
    /// Appends the cells of a whole group.
    void gather(std::size_t first, std::size_t count, int cols);
    /// The lengths of the lines that the gathered cells take.
    std::vector<int> getNewLineLengths(int newCols) const;
    void rearrange(std::vector<InsertionSet> insertions, std::size_t insertedCount);
    std::size_t groupEnd(std::size_t first) const;

    Buffer& buffer;
    std::vector<Cell> group;
    std::vector<Cell> scratch;
};

}
