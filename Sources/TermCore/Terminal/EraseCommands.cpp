#include "Terminal/EraseCommands.h"

#include "Terminal/CursorCommands.h"
#include "Terminal/Terminal.h"

#include <algorithm>
#include <cstdint>

namespace termcore::commands {
namespace {

void eraseInBufferLine(Terminal& terminal, int row, int start, int end) {
    terminal.buffer().screenLine(row).replaceCells(start, end, terminal.erasedCell());
}

void resetBufferLine(Terminal& terminal, int row, bool clearImages) {
    Buffer& buffer = terminal.buffer();
    BufferLine& line = buffer.screenLine(row);
    line.fill(terminal.erasedCell());
    line.isWrapped = false;
    if (clearImages)
        buffer.clearImagesFromLine(row);
}

void eraseScrollback(Buffer& buffer) {
    const int dropped = static_cast<int>(buffer.lines.count()) - buffer.rows();
    if (dropped > 0)
        buffer.lines.trimStart(static_cast<std::size_t>(dropped));
    buffer.linesTop = 0;
    buffer.yBase = std::max(buffer.yBase - std::max(dropped, 0), 0);
    buffer.yDisp = std::max(buffer.yDisp - std::max(dropped, 0), 0);
    buffer.recalculateLinesWithImagesCount();
}

bool isOutsideMargins(const Buffer& buffer) {
    return buffer.marginMode && (buffer.x() < buffer.marginLeft || buffer.x() > buffer.marginRight);
}

}

void eraseInDisplay(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    const int row = buffer.y();
    const int lastRow = buffer.rows() - 1;
    switch (sequence.number(0)) {
    case 0:
        terminal.updateRange(row);
        eraseInBufferLine(terminal, row, buffer.x(), buffer.cols());
        for (int below = row + 1; below <= lastRow; ++below)
            resetBufferLine(terminal, below, false);
        terminal.updateRange(lastRow);
        break;
    case 1:
        terminal.updateRange(row);
        eraseInBufferLine(terminal, row, 0, buffer.x() + 1);
        buffer.lines.setWrapped(buffer.screenIndex(row), false);
        if (buffer.x() + 1 >= buffer.cols() && row < lastRow)
            buffer.lines.setWrapped(buffer.screenIndex(row + 1), false);
        for (int above = row - 1; above >= 0; --above)
            resetBufferLine(terminal, above, false);
        terminal.updateRange(0);
        break;
    case 2:
        for (int each = lastRow; each >= 0; --each)
            resetBufferLine(terminal, each, true);
        terminal.clearAllKittyImages();
        terminal.refresh(0, lastRow);
        break;
    case 3: eraseScrollback(buffer); break;
    default: break;
    }
}

void eraseInLine(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    switch (sequence.number(0)) {
    case 0: eraseInBufferLine(terminal, buffer.y(), buffer.x(), buffer.cols()); break;
    case 1: eraseInBufferLine(terminal, buffer.y(), 0, buffer.x() + 1); break;
    case 2: resetBufferLine(terminal, buffer.y(), false); break;
    default: break;
    }
    terminal.updateRange(buffer.y());
}

void eraseChars(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    eraseInBufferLine(terminal, buffer.y(), buffer.x(), buffer.x() + sequence.count());
    terminal.updateRange(buffer.y());
}

void insertChars(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    restrictCursor(terminal);
    if (isOutsideMargins(buffer))
        return;
    buffer.screenLine(buffer.y()).insertCells(buffer.x(), sequence.count(), buffer.rightLimit(), terminal.erasedCell());
    terminal.updateRange(buffer.y());
}

void deleteChars(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    restrictCursor(terminal);
    if (isOutsideMargins(buffer))
        return;
    buffer.screenLine(buffer.y()).deleteCells(buffer.x(), sequence.count(), buffer.rightLimit(), terminal.erasedCell());
    terminal.updateRange(buffer.y());
}

void repeatPrecedingCharacter(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    const std::int64_t count =
        std::min<std::int64_t>(sequence.count(), std::int64_t{2} * buffer.cols() * buffer.rows());
    Cell cell;
    if (buffer.x() > 0) {
        const BufferLine& line = buffer.screenLine(buffer.y());
        cell = line[buffer.x() - 1];
        // After a wide glyph the cursor stands behind its second cell: the glyph is repeated, not the half.
        if (cell.text == Cell::continuation && buffer.x() > 1)
            cell = line[buffer.x() - 2];
    }
    for (std::int64_t n = 0; n < count; ++n)
        buffer.insertCharacter(cell.code(), cell.width(), cell.style);
    terminal.updateRange(buffer.y());
}

void screenAlignmentPattern(Terminal& terminal, const ControlSequence&) {
    Buffer& buffer = terminal.buffer();
    buffer.setScrollTop(0);
    buffer.setScrollBottom(buffer.rows() - 1);
    buffer.marginLeft = 0;
    buffer.marginRight = buffer.cols() - 1;
    setCursor(terminal, 0, 0);
    for (int row = 0; row < buffer.rows(); ++row) {
        BufferLine& line = buffer.screenLine(row);
        line.fill({'E', StyleTable::defaultStyle});
        line.isWrapped = false;
    }
    terminal.refresh(0, buffer.rows() - 1);
    setCursor(terminal, 0, 0);
}

}
