#include "Lines/BufferLine.h"

#include "Unicode/UnicodeUtil.h"

#include <algorithm>
#include <cstring>

namespace termcore {
namespace {

bool isByte(Cell cell) {
    return cell.text < 0x100;
}

}

BufferLine::BufferLine(int cols, Cell fillData, bool wrapped)
    : isWrapped(wrapped)
    , fillCharacter(fillData)
    , data(std::make_unique<Cell[]>(static_cast<std::size_t>(std::max(cols, 0))))
    , capacity(std::max(cols, 0))
    , cellCount(capacity) {
    if (fillData != Cell{})
        fill(fillData);
}

BufferLine::BufferLine(const BufferLine& from)
    : isWrapped(from.isWrapped)
    , renderMode(from.renderMode)
    , fillCharacter(from.fillCharacter)
    , images(from.images ? std::make_unique<LineImages>(*from.images) : nullptr)
    , data(std::make_unique<Cell[]>(static_cast<std::size_t>(from.cellCount)))
    , capacity(from.cellCount)
    , cellCount(from.cellCount)
    , used(from.used)
    , bytesOnly(from.bytesOnly) {
    std::copy_n(from.data.get(), used, data.get());
}

void BufferLine::set(int index, Cell cell) {
    const int at = adjusted(index);
    write(at + 1, isByte(cell))[at] = cell;
}

bool BufferLine::hasContent(int index) const {
    const Cell& cell = (*this)[index];
    return cell.code() != 0 || cell.style != 0;
}

bool BufferLine::hasAnyContent() const {
    return std::any_of(
        data.get(), data.get() + used, [](const Cell& cell) { return cell.code() != 0 || cell.style != 0; });
}

int BufferLine::getTrimmedLength() const {
    for (int i = used - 1; i >= 0; --i) {
        const Cell& cell = (*this)[i];
        if (cell.code() != 0)
            return i + cell.width();
    }
    return 0;
}

void BufferLine::fill(Cell cell) {
    fill(cell, 0, cellCount);
}

void BufferLine::fill(Cell cell, int atCol, int len) {
    replaceCells(atCol, atCol + len, cell);
}

void BufferLine::replaceCells(int start, int end, Cell fillData) {
    start = std::max(start, 0);
    end = std::min(end, cellCount);
    if (fillData == Cell{}) {
        const int touched = std::min(end, used);
        if (start < touched)
            std::fill(data.get() + start, data.get() + touched, fillData);
        if (end >= used && start < used)
            used = start;
        bytesOnly = bytesOnly || used == 0;
    } else if (start < end) {
        Cell* cells = write(end, isByte(fillData));
        std::fill(cells + start, cells + end, fillData);
    }
}

void BufferLine::copyFrom(const BufferLine& line) {
    if (line.cellCount > capacity) {
        data = std::make_unique<Cell[]>(static_cast<std::size_t>(line.cellCount));
        capacity = line.cellCount;
        used = 0;
    }
    std::copy_n(line.data.get(), line.used, data.get());
    if (line.used < used)
        std::fill(data.get() + line.used, data.get() + used, Cell{});
    cellCount = line.cellCount;
    used = line.used;
    bytesOnly = line.bytesOnly;
    isWrapped = line.isWrapped;
}

void BufferLine::copyFrom(const BufferLine& line, int srcCol, int dstCol, int len) {
    srcCol = std::max(srcCol, 0);
    dstCol = std::max(dstCol, 0);
    len = std::min({len, line.cellCount - srcCol, cellCount - dstCol});
    if (len <= 0)
        return;
    Cell* cells = write(dstCol + len, line.bytesOnly);
    std::memmove(cells + dstCol, line.data.get() + srcCol, static_cast<std::size_t>(len) * sizeof(Cell));
}

void BufferLine::shift(int from, int to, int len) {
    Cell* cells = write(to + len, true);
    std::memmove(cells + to, cells + from, static_cast<std::size_t>(len) * sizeof(Cell));
}

void BufferLine::insertCells(int pos, int n, int rightMargin, Cell fillData) {
    rightMargin = std::min(rightMargin, cellCount - 1);
    if (rightMargin < 0 || n <= 0)
        return;
    pos = std::max(pos, 0) % (rightMargin + 1);
    const int room = rightMargin + 1 - pos;
    if (n < room)
        shift(pos, pos + n, room - n);
    replaceCells(pos, pos + std::min(n, room), fillData);
}

void BufferLine::deleteCells(int pos, int n, int rightMargin, Cell fillData) {
    rightMargin = std::min(rightMargin, cellCount - 1);
    if (rightMargin < 0 || n <= 0)
        return;
    pos = std::max(pos, 0) % (rightMargin + 1);
    const int room = rightMargin + 1 - pos;
    if (n < room)
        shift(pos + n, pos, room - n);
    replaceCells(rightMargin + 1 - std::min(n, room), rightMargin + 1, fillData);
}

void BufferLine::resize(int cols, Cell fillData) {
    cols = std::max(cols, 0);
    const int before = cellCount;
    if (cols > capacity) {
        auto larger = std::make_unique<Cell[]>(static_cast<std::size_t>(cols));
        std::copy_n(data.get(), used, larger.get());
        data = std::move(larger);
        capacity = cols;
    } else if (used > cols) {
        std::fill(data.get() + cols, data.get() + used, Cell{});
        used = cols;
    }
    cellCount = cols;
    if (cols > before)
        replaceCells(before, cols, fillData);
}

void BufferLine::clear(Cell fill) {
    images.reset();
    std::fill(data.get(), data.get() + used, Cell{});
    used = 0;
    bytesOnly = true;
    if (fill != Cell{})
        replaceCells(0, cellCount, fill);
}

void BufferLine::translateToString(std::string& out, bool trimRight, int startCol, int endCol,
    bool skipNullCellsFollowingWide, const CharacterProvider& characterProvider) const {
    int end = endCol < 0 ? cellCount : std::min(endCol, cellCount);
    if (trimRight)
        end = std::min(end, getTrimmedLength());
    for (int i = std::max(startCol, 0); i < end; ++i) {
        const Cell& cell = (*this)[i];
        const bool isFiller = cell.code() == 0 && i > 0 && (*this)[i - 1].width() == 2;
        if (!(skipNullCellsFollowingWide && isFiller))
            characterProvider(out, cell.code());
    }
}

}
