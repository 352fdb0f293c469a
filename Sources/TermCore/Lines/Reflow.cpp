#include "Lines/Reflow.h"

#include <algorithm>

namespace termcore {

void Reflow::run(int oldCols, int newCols, int newRows) {
    if (newCols > oldCols)
        reflowWider(oldCols, newCols, newRows);
    else
        reflowNarrower(oldCols, newCols, newRows);
}

std::size_t Reflow::groupEnd(std::size_t first) const {
    std::size_t end = first + 1;
    while (end < buffer.lines.count() && buffer.lines.isWrapped(end))
        ++end;
    return end;
}

int Reflow::getWrappedLineTrimmedLength(std::size_t first, std::size_t index, std::size_t count, int cols) {
    if (index + 1 == count)
        return std::min(buffer.lines.trimmedLength(first + index), cols);
    // An empty last cell before a wide glyph is only the gap of a glyph that did not fit.
    const auto last = static_cast<std::size_t>(cols - 1);
    const auto cells = buffer.lines.read(first + index, scratch);
    if (last < cells.size() && cells[last] != Cell{})
        return cols;
    const auto next = buffer.lines.read(first + index + 1, scratch);
    return !next.empty() && next[0].width() == 2 ? cols - 1 : cols;
}

void Reflow::gather(std::size_t first, std::size_t count, int cols) {
    group.clear();
    for (std::size_t i = 0; i < count; ++i) {
        const auto length = static_cast<std::size_t>(getWrappedLineTrimmedLength(first, i, count, cols));
        const auto cells = buffer.lines.read(first + i, scratch);
        const std::size_t present = std::min(length, cells.size());
        group.insert(group.end(), cells.begin(), cells.begin() + static_cast<std::ptrdiff_t>(present));
        group.resize(group.size() + (length - present));
    }
}

std::vector<int> Reflow::getNewLineLengths(int newCols) const {
    std::vector<int> lengths;
    const auto full = static_cast<std::size_t>(newCols);
    std::size_t at = 0;
    while (at < group.size()) {
        const std::size_t remaining = group.size() - at;
        std::size_t length = std::min(remaining, full);
        if (remaining >= full && full > 1 && group[at + full - 1].width() == 2)
            --length;
        lengths.push_back(static_cast<int>(length));
        at += length;
    }
    return lengths;
}

// -- narrower -----------------------------------------------------------------------------------------------------------

void Reflow::reflowNarrower(int oldCols, int newCols, int newRows) {
    CircularBufferLineList& lines = buffer.lines;
    std::vector<InsertionSet> insertions;
    std::size_t insertedCount = 0;
    const auto cursorRow = static_cast<std::size_t>(buffer.yBase + buffer.y());
    const auto maxLength = static_cast<std::ptrdiff_t>(lines.maxLength());

    for (std::size_t row = lines.count(); row-- > 0;) {
        if (row >= lines.count())
            continue;
        if (!lines.isWrapped(row) && lines.trimmedLength(row) <= newCols)
            continue;
        std::size_t first = row;
        while (first > 0 && lines.isWrapped(first))
            --first;
        const std::size_t members = row + 1 - first;
        row = first;
        if (cursorRow >= first && cursorRow < first + members)
            continue;
        gather(first, members, oldCols);
        const std::vector<int> lengths = getNewLineLengths(newCols);
        if (lengths.empty())
            continue;
        const std::size_t toAdd = lengths.size() > members ? lengths.size() - members : 0;
        const bool hasRoomBelow = buffer.yBase == 0 && buffer.y() != static_cast<int>(lines.count()) - 1;
        const std::ptrdiff_t trimmed = std::max<std::ptrdiff_t>(0,
            (hasRoomBelow ? buffer.y() : static_cast<std::ptrdiff_t>(lines.count())) - maxLength +
                static_cast<std::ptrdiff_t>(toAdd));

        InsertionSet added;
        added.start = static_cast<std::ptrdiff_t>(first + members + insertedCount);
        const Cell* source = group.data();
        for (std::size_t i = 0; i < lengths.size(); ++i) {
            BufferLine* line = nullptr;
            if (i < members) {
                line = &lines.edit(first + i);
            } else {
                added.lines.push_back(Buffer::getBlankLine(oldCols, {}, true));
                line = added.lines.back().get();
            }
            const int length = lengths[i];
            std::copy_n(source, length, line->write(length, false));
            source += length;
            if (length < newCols)
                line->set(length, {});
            line->resize(newCols);
            if (i < members)
                lines.freeze(first + i);
        }
        insertedCount += toAdd;
        if (toAdd > 0)
            insertions.push_back(std::move(added));

        for (std::ptrdiff_t i = static_cast<std::ptrdiff_t>(toAdd) - trimmed; i > 0; --i) {
            if (buffer.yBase == 0) {
                if (buffer.y() < newRows - 1) {
                    buffer.setY(buffer.y() + 1);
                    lines.pop();
                } else {
                    buffer.yBase = 1;
                    ++buffer.yDisp;
                }
            } else if (buffer.yBase <
                std::min(maxLength, static_cast<std::ptrdiff_t>(lines.count() + insertedCount)) - newRows) {
                if (buffer.yBase == buffer.yDisp)
                    ++buffer.yDisp;
                ++buffer.yBase;
            }
        }
        buffer.savedY = std::min(buffer.savedY + static_cast<int>(toAdd), buffer.yBase + newRows - 1);
    }
    if (!insertions.empty())
        rearrange(std::move(insertions), insertedCount);
}

void Reflow::rearrange(std::vector<InsertionSet> insertions, std::size_t insertedCount) {
    CircularBufferLineList& lines = buffer.lines;
    const std::size_t total = std::min(lines.maxLength(), lines.count() + insertedCount);
    std::vector<std::ptrdiff_t> order(total);
    std::vector<std::unique_ptr<BufferLine>> added;
    std::ptrdiff_t original = static_cast<std::ptrdiff_t>(lines.count()) - 1;
    std::ptrdiff_t pending = static_cast<std::ptrdiff_t>(insertedCount); // lines of sets not yet placed
    std::size_t nextSet = 0;
    std::size_t at = total;
    // From the bottom up; what no longer fits falls off the top. Sets come in the same order, last group first.
    while (at > 0) {
        // A set's start counts the lines that groups below it added, which lie behind it.
        const std::ptrdiff_t placed = static_cast<std::ptrdiff_t>(insertedCount) - pending;
        const bool isSetDue = nextSet < insertions.size() && insertions[nextSet].start - placed > original;
        if (isSetDue) {
            auto& set = insertions[nextSet].lines;
            pending -= static_cast<std::ptrdiff_t>(set.size());
            for (std::size_t i = set.size(); i-- > 0 && at > 0;) {
                order[--at] = -1;
                added.push_back(std::move(set[i]));
            }
            ++nextSet;
        } else if (original >= 0) {
            order[--at] = original--;
        } else {
            break;
        }
    }
    order.erase(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(at));
    std::reverse(added.begin(), added.end());
    lines.rearrange(order, std::move(added));
}

// -- wider --------------------------------------------------------------------------------------------------------------

std::vector<std::size_t> Reflow::getLinesToRemove(int oldCols, int newCols, std::size_t cursorRow) {
    CircularBufferLineList& lines = buffer.lines;
    std::vector<std::size_t> toRemove;
    for (std::size_t first = 0; first < lines.count();) {
        const std::size_t end = groupEnd(first);
        const std::size_t members = end - first;
        const std::size_t groupStart = first;
        first = end;
        if (members == 1 || (cursorRow >= groupStart && cursorRow < end))
            continue;
        gather(groupStart, members, oldCols);
        const std::vector<int> lengths = getNewLineLengths(newCols);
        const Cell* source = group.data();
        const std::size_t kept = std::clamp<std::size_t>(lengths.size(), 1, members);
        for (std::size_t i = 0; i < kept; ++i) {
            BufferLine& line = lines.edit(groupStart + i);
            line.resize(newCols);
            const int length = i < lengths.size() ? lengths[i] : 0;
            std::copy_n(source, length, line.write(length, false));
            source += length;
            line.replaceCells(length, newCols, {});
            lines.freeze(groupStart + i);
        }
        std::size_t removable = members - kept;
        while (removable + 1 < members && lines.trimmedLength(end - removable - 1) == 0)
            ++removable;
        if (removable > 0) {
            toRemove.push_back(end - removable);
            toRemove.push_back(removable);
        }
    }
    return toRemove;
}

void Reflow::reflowWider(int oldCols, int newCols, int newRows) {
    CircularBufferLineList& lines = buffer.lines;
    const auto toRemove = getLinesToRemove(oldCols, newCols, static_cast<std::size_t>(buffer.yBase + buffer.y()));
    if (toRemove.empty())
        return;
    std::vector<std::ptrdiff_t> layout;
    layout.reserve(lines.count());
    std::size_t removedCount = 0;
    std::size_t next = 0;
    for (std::size_t i = 0; i < lines.count();) {
        if (next < toRemove.size() && toRemove[next] == i) {
            i += toRemove[next + 1];
            removedCount += toRemove[next + 1];
            next += 2;
        } else {
            layout.push_back(static_cast<std::ptrdiff_t>(i++));
        }
    }
    lines.rearrange(layout, {});
    for (std::size_t i = 0; i < removedCount; ++i) {
        if (buffer.yBase == 0) {
            if (buffer.y() > 0)
                buffer.setY(buffer.y() - 1);
            if (lines.count() < static_cast<std::size_t>(newRows))
                lines.pushBlank();
        } else {
            if (buffer.yDisp == buffer.yBase)
                --buffer.yDisp;
            --buffer.yBase;
        }
    }
    buffer.savedY = std::max(buffer.savedY - static_cast<int>(removedCount), 0);
}

}
