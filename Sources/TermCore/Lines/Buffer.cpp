#include "Lines/Buffer.h"

#include "Lines/Reflow.h"

#include <algorithm>
#include <cassert>

namespace termcore {

Buffer::Buffer(int cols, int rows, int tabStopWidth, std::optional<int> scrollback)
    : lines(cols, 0)
    , marginRight(cols - 1)
    , regionBottom(rows - 1)
    , columnCount(cols)
    , rowCount(rows)
    , keepsHistory(scrollback.has_value())
    , history(scrollback) {
    lines.setMaxLength(getCorrectBufferLength(rows));
    setupTabStops(-1, tabStopWidth);
}

std::size_t Buffer::getCorrectBufferLength(int forRows) const {
    constexpr std::int64_t largest = 0x7FFFFFFF;
    const std::int64_t wanted = std::int64_t{forRows} + std::max(history.value_or(0), 0);
    return static_cast<std::size_t>(std::min(wanted, largest));
}

Cell Buffer::getCharAbsolute(int col, int row) const {
    if (row < 0 || static_cast<std::size_t>(row) >= lines.count() || col < 0)
        return {};
    return lines.cellAt(static_cast<std::size_t>(row), static_cast<std::size_t>(std::min(col, columnCount - 1)));
}

void Buffer::fillViewportRows(Cell fill) {
    if (lines.count() > 0)
        return;
    for (int row = 0; row < rowCount; ++row)
        lines.pushBlank(fill);
}

void Buffer::clear() {
    yDisp = yBase = 0;
    cursorX = cursorY = 0;
    linesTop = 0;
    linesWithImagesCount = 0;
    lines = CircularBufferLineList(columnCount, getCorrectBufferLength(rowCount));
    regionTop = 0;
    regionBottom = rowCount - 1;
}

void Buffer::softReset() {
    savedAttr = Attribute::empty;
    savedX = savedY = 0;
    savedCharset = nullptr;
    marginLeft = 0;
    marginRight = columnCount - 1;
    savedOriginMode = savedMarginMode = savedWraparound = savedReverseWraparound = false;
}

void Buffer::changeHistorySize(std::optional<int> newSize) {
    history = newSize;
    const std::size_t length = getCorrectBufferLength(rowCount);
    if (length < lines.maxLength() && lines.count() > length) {
        const auto dropped = static_cast<int>(lines.count() - length);
        lines.trimStart(static_cast<std::size_t>(dropped));
        yBase = std::max(yBase - dropped, 0);
        yDisp = std::max(yDisp - dropped, 0);
        savedY = std::max(savedY - dropped, 0);
    }
    lines.setMaxLength(length);
}

void Buffer::resize(int newCols, int newRows) {
    marginRight = std::min(marginRight, newCols - 1);
    marginLeft = std::min(marginLeft, marginRight);
    const std::size_t newLength = getCorrectBufferLength(newRows);
    if (newLength > lines.maxLength())
        lines.setMaxLength(newLength);

    if (lines.count() > 0) {
        lines.setCols(std::max(columnCount, newCols));
        if (columnCount < newCols) {
            for (std::size_t i = 0; i < lines.count(); ++i)
                lines.resizeLine(i, newCols);
        }
        resizeRows(newCols, newRows);
    } else {
        regionBottom = newRows - 1;
    }
    lines.setCols(newCols);
    if (newLength < lines.maxLength())
        lines.setMaxLength(newLength);
    tabStops.resize(static_cast<std::size_t>(newCols), false);

    if (columnCount != newCols) {
        if (isReflowEnabled() && lines.count() > 0)
            Reflow(*this).run(columnCount, newCols, newRows);
        for (std::size_t i = 0; i < lines.count(); ++i)
            lines.resizeLine(i, newCols);
        recalculateLinesWithImagesCount();
    }
    columnCount = newCols;
    rowCount = newRows;
    if (lines.count() > 0)
        fitScreenToLines();
}

/// The screen is the last `rows` lines. Reflow in a ring without room for what it adds may leave it elsewhere.
void Buffer::fitScreenToLines() {
    while (static_cast<int>(lines.count()) < yBase + rowCount && !lines.isFull())
        lines.pushBlank();
    const int wanted = std::max(static_cast<int>(lines.count()) - rowCount, 0);
    const int moved = wanted - yBase;
    if (moved == 0)
        return;
    yBase = wanted;
    yDisp = std::clamp(yDisp + moved, 0, yBase);
    cursorY = std::clamp(cursorY - moved, 0, rowCount - 1);
}

void Buffer::resizeRows(int newCols, int newRows) {
    const auto lineCount = [&] { return static_cast<int>(lines.count()); };
    int addToY = 0;
    for (int row = rowCount; row > newRows; --row) {
        if (lineCount() <= newRows + yBase)
            continue;
        if (yBase + cursorY + 1 >= lineCount()) {
            ++yBase;
            ++yDisp;
        } else {
            lines.pop();
        }
    }
    for (int row = rowCount; row < newRows; ++row) {
        if (lineCount() >= newRows + yBase)
            continue;
        if (yBase > 0 && lineCount() <= yBase + row + addToY + 1) {
            --yBase;
            ++addToY;
            yDisp = std::max(yDisp - 1, 0);
        } else {
            lines.pushBlank();
        }
    }
    const std::size_t newLength = getCorrectBufferLength(newRows);
    if (newLength < lines.maxLength() && lines.count() > newLength) {
        const auto dropped = static_cast<int>(lines.count() - newLength);
        lines.trimStart(static_cast<std::size_t>(dropped));
        yBase = std::max(yBase - dropped, 0);
        yDisp = std::max(yDisp - dropped, 0);
        savedY = std::max(savedY - dropped, 0);
    }
    cursorX = std::min(cursorX, newCols - 1);
    cursorY = std::min(cursorY, newRows - 1) + addToY;
    savedX = std::min(savedX, newCols - 1);
    regionTop = 0;
    regionBottom = newRows - 1;
}

void Buffer::setupTabStops(int index, int tabStopWidth) {
    tabStopWidth = std::max(tabStopWidth, 1);
    if (index < 0) {
        tabStops.assign(static_cast<std::size_t>(columnCount), false);
        index = 0;
    } else {
        tabStops.resize(static_cast<std::size_t>(columnCount), false);
        index = std::min(index, columnCount - 1);
        while (index > 0 && !tabStops[static_cast<std::size_t>(index)])
            --index;
    }
    for (int col = index; col < columnCount; col += tabStopWidth)
        tabStops[static_cast<std::size_t>(col)] = true;
}

void Buffer::tabSet(int pos) {
    if (pos >= 0 && static_cast<std::size_t>(pos) < tabStops.size())
        tabStops[static_cast<std::size_t>(pos)] = true;
}

void Buffer::tabClear(int pos) {
    if (pos >= 0 && static_cast<std::size_t>(pos) < tabStops.size())
        tabStops[static_cast<std::size_t>(pos)] = false;
}

int Buffer::nextTabStop(int index) const {
    const int limit = rightLimit();
    int col = index < 0 ? cursorX : index;
    do {
        ++col;
    } while (
        col < limit && !(static_cast<std::size_t>(col) < tabStops.size() && tabStops[static_cast<std::size_t>(col)]));
    return std::min(col, limit);
}

int Buffer::previousTabStop(int index) const {
    int col = std::min(index < 0 ? cursorX : index, columnCount) - 1;
    while (col > 0 && !(static_cast<std::size_t>(col) < tabStops.size() && tabStops[static_cast<std::size_t>(col)]))
        --col;
    return std::clamp(col, 0, columnCount - 1);
}

void Buffer::clearImagesFromLine(int row) {
    if (linesWithImagesCount == 0 || lines.images(screenIndex(row)) == nullptr)
        return;
    screenLine(row).images.reset();
    --linesWithImagesCount;
}

void Buffer::recalculateLinesWithImagesCount() {
    linesWithImagesCount = linesWithImagesCount == 0 ? 0 : static_cast<int>(lines.linesWithImages());
}

Buffer Buffer::snapshot() const {
    Buffer copy(columnCount, rowCount, 8, history);
    copy.keepsHistory = keepsHistory;
    copy.lines = lines.clone();
    copy.xDisp = xDisp;
    copy.xBase = xBase;
    copy.yDisp = yDisp;
    copy.yBase = yBase;
    copy.linesWithImagesCount = linesWithImagesCount;
    copy.linesTop = linesTop;
    copy.marginLeft = marginLeft;
    copy.marginRight = marginRight;
    copy.tabStops = tabStops;
    copy.savedX = savedX;
    copy.savedY = savedY;
    copy.savedAttr = savedAttr;
    copy.savedCharset = savedCharset;
    copy.savedOriginMode = savedOriginMode;
    copy.savedMarginMode = savedMarginMode;
    copy.savedWraparound = savedWraparound;
    copy.savedReverseWraparound = savedReverseWraparound;
    copy.insertMode = insertMode;
    copy.marginMode = marginMode;
    copy.wraparound = wraparound;
    copy.lastBufferStorage = lastBufferStorage;
    copy.cursorX = cursorX;
    copy.cursorY = cursorY;
    copy.regionTop = regionTop;
    copy.regionBottom = regionBottom;
    return copy;
}

}
