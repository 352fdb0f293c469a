#include "Terminal/ScrollCommands.h"

#include "Terminal/CursorCommands.h"
#include "Terminal/Terminal.h"

#include <algorithm>
#include <cstddef>

namespace termcore {
namespace {

/// Moves the cells between the margins from the rows below `top` up by `by`, and erases what comes free.
[[gnu::noinline]] void moveCellsUp(Terminal& terminal, int top, int bottom, int by) {
    Buffer& buffer = terminal.buffer();
    const int left = buffer.marginLeft;
    const int width = buffer.marginRight - left + 1;
    by = std::min(by, bottom - top + 1);
    for (int row = top; row <= bottom; ++row) {
        BufferLine& line = buffer.screenLine(row);
        if (row + by <= bottom)
            line.copyFrom(buffer.screenLine(row + by), left, left, width);
        else
            line.replaceCells(left, left + width, terminal.erasedCell());
        buffer.clearImagesFromLine(row);
    }
}

void moveCellsDown(Terminal& terminal, int top, int bottom, int by) {
    Buffer& buffer = terminal.buffer();
    const int left = buffer.marginLeft;
    const int width = buffer.marginRight - left + 1;
    by = std::min(by, bottom - top + 1);
    for (int row = bottom; row >= top; --row) {
        BufferLine& line = buffer.screenLine(row);
        if (row - by >= top)
            line.copyFrom(buffer.screenLine(row - by), left, left, width);
        else
            line.replaceCells(left, left + width, terminal.erasedCell());
        buffer.clearImagesFromLine(row);
    }
}

/// Scrolls part of the screen up without touching the history, within the margins in margin mode.
void shiftUp(Terminal& terminal, int top, int bottom, int by) {
    Buffer& buffer = terminal.buffer();
    if (buffer.marginMode)
        moveCellsUp(terminal, top, bottom, by);
    else
        buffer.lines.rotateUp(
            buffer.screenIndex(top), buffer.screenIndex(bottom), static_cast<std::size_t>(by), terminal.erasedCell());
}

void shiftDown(Terminal& terminal, int top, int bottom, int by) {
    Buffer& buffer = terminal.buffer();
    if (buffer.marginMode)
        moveCellsDown(terminal, top, bottom, by);
    else
        buffer.lines.rotateDown(
            buffer.screenIndex(top), buffer.screenIndex(bottom), static_cast<std::size_t>(by), terminal.erasedCell());
}

/// A region that ends above the last line: lines come in below it.
[[gnu::noinline]] void scrollAboveFooter(Terminal& terminal, bool isWrapped) {
    Buffer& buffer = terminal.buffer();
    if (buffer.hasScrollback())
        buffer.lines.freeze(buffer.screenIndex(0));
    buffer.lines.splice(buffer.screenIndex(buffer.scrollBottom() + 1), 0, 1, terminal.erasedCell(), isWrapped);
}

/// A region that begins at the top: its first line becomes the last one of the history.
void scrollIntoHistory(Terminal& terminal, bool isWrapped) {
    Buffer& buffer = terminal.buffer();
    const bool wasFull = buffer.lines.isFull();
    if (wasFull && buffer.hasImagesAt(0))
        --buffer.linesWithImagesCount;
    if (buffer.screenIndex(buffer.scrollBottom() + 1) != buffer.lines.count())
        scrollAboveFooter(terminal, isWrapped);
    else if (buffer.scrollback().value_or(0) > 0)
        buffer.lines.scrollScreen(buffer.screenIndex(0), terminal.erasedCell(), isWrapped);
    else if (wasFull)
        buffer.lines.recycle(terminal.erasedCell(), isWrapped);
    else
        buffer.lines.pushBlank(terminal.erasedCell(), isWrapped);
    if (!wasFull) {
        ++buffer.yBase;
        if (!terminal.userScrolling)
            ++buffer.yDisp;
    } else if (buffer.hasScrollback()) {
        ++buffer.linesTop;
        if (terminal.userScrolling)
            buffer.yDisp = std::max(buffer.yDisp - 1, 0);
    }
}

/// A cursor behind the last column, where a glyph left it, still stands on that column.
bool isInsideMargins(const Buffer& buffer) {
    const int col = std::min(buffer.x(), buffer.cols() - 1);
    return !buffer.marginMode || (col >= buffer.marginLeft && col <= buffer.marginRight);
}

bool isInsideRegion(const Buffer& buffer) {
    return buffer.y() >= buffer.scrollTop() && buffer.y() <= buffer.scrollBottom();
}

void moveDownOrScroll(Terminal& terminal) {
    Buffer& buffer = terminal.buffer();
    if (buffer.y() == buffer.scrollBottom()) {
        if (isInsideMargins(buffer))
            terminal.scroll(false);
    } else if (buffer.y() != buffer.rows() - 1) {
        buffer.setY(buffer.y() + 1);
    }
    if (buffer.x() >= buffer.cols())
        buffer.setX(buffer.x() - 1);
}

/// Shifts the cells of the region right or left by `count` columns from `at` on.
void columnScroll(Terminal& terminal, bool back, int at, int count) {
    Buffer& buffer = terminal.buffer();
    for (int row = buffer.scrollTop(); row <= buffer.scrollBottom(); ++row) {
        BufferLine& line = buffer.screenLine(row);
        if (back)
            line.insertCells(at, count, buffer.rightLimit(), terminal.erasedCell());
        else
            line.deleteCells(at, count, buffer.rightLimit(), terminal.erasedCell());
        line.isWrapped = false;
    }
    terminal.refresh(buffer.scrollTop(), buffer.scrollBottom());
}

void changeColumnsAtCursor(Terminal& terminal, const ControlSequence& sequence, bool insert) {
    Buffer& buffer = terminal.buffer();
    if (isInsideMargins(buffer))
        columnScroll(terminal, insert, std::min(buffer.x(), buffer.cols() - 1), sequence.count());
}

void setMargins(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    const int left = std::max(sequence.number(0) - 1, 0);
    const int asked = sequence.number(1);
    const int right = std::min(asked < 1 ? buffer.cols() - 1 : asked - 1, buffer.cols() - 1);
    buffer.marginRight = right;
    buffer.marginLeft = std::min(left, right);
}

}

void Terminal::scroll(bool isWrapped) {
    Buffer& target = *activeBuffer;
    const int top = target.scrollTop();
    const int bottom = target.scrollBottom();
    if (target.marginMode && (target.marginLeft > 0 || target.marginRight < columnCount - 1)) {
        moveCellsUp(*this, top, bottom, 1);
    } else if (top == 0) {
        scrollIntoHistory(*this, isWrapped);
    } else {
        const std::size_t first = target.screenIndex(top);
        const std::size_t last = target.screenIndex(bottom);
        if (!target.lines.rotateUpOnce(first, last, erasedCell(), isWrapped))
            target.lines.rotateUp(first, last, 1, erasedCell(), isWrapped);
    }
    if (!userScrolling)
        target.yDisp = target.yBase;
    addScrollInvariant(top, bottom);
    if (!target.hasScrollback())
        changed.add(top, bottom);
    if (tdel != nullptr)
        tdel->scrolled(*this, target.yDisp);
}

namespace commands {

void lineFeed(Terminal& terminal, const ControlSequence&) {
    Buffer& buffer = terminal.buffer();
    moveDownOrScroll(terminal);
    if (terminal.delegate() != nullptr)
        terminal.delegate()->linefeed(terminal);
    if (terminal.modes.lineFeedMode)
        buffer.setX(terminal.modes.originMode && terminal.modes.marginMode ? buffer.marginLeft : 0);
}

void index(Terminal& terminal, const ControlSequence&) {
    restrictCursor(terminal);
    moveDownOrScroll(terminal);
}

void nextLine(Terminal& terminal, const ControlSequence& sequence) {
    carriageReturn(terminal, sequence);
    index(terminal, sequence);
}

void reverseIndex(Terminal& terminal, const ControlSequence&) {
    Buffer& buffer = terminal.buffer();
    restrictCursor(terminal);
    if (buffer.y() != buffer.scrollTop()) {
        if (buffer.y() > 0)
            buffer.setY(buffer.y() - 1);
    } else if (isInsideMargins(buffer)) {
        shiftDown(terminal, buffer.scrollTop(), buffer.scrollBottom(), 1);
        terminal.refresh(buffer.scrollTop(), buffer.scrollBottom());
    }
}

void backIndex(Terminal& terminal, const ControlSequence&) {
    Buffer& buffer = terminal.buffer();
    if (buffer.x() == buffer.leftLimit())
        columnScroll(terminal, true, buffer.x(), 1);
    else
        cursorBackward(terminal, {});
}

void forwardIndex(Terminal& terminal, const ControlSequence&) {
    Buffer& buffer = terminal.buffer();
    if (buffer.x() == buffer.rightLimit())
        columnScroll(terminal, false, buffer.leftLimit(), 1);
    else if (buffer.x() < buffer.cols())
        cursorForward(terminal, {});
}

void insertLines(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    if (!isInsideRegion(buffer) || !isInsideMargins(buffer))
        return;
    shiftDown(terminal, buffer.y(), buffer.scrollBottom(), sequence.count());
    terminal.refresh(buffer.y(), buffer.scrollBottom());
}

void deleteLines(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    restrictCursor(terminal);
    if (!isInsideRegion(buffer) || !isInsideMargins(buffer))
        return;
    shiftUp(terminal, buffer.y(), buffer.scrollBottom(), sequence.count());
    terminal.refresh(buffer.y(), buffer.scrollBottom());
}

void scrollUp(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    shiftUp(terminal, buffer.scrollTop(), buffer.scrollBottom(), sequence.count());
    terminal.refresh(buffer.scrollTop(), buffer.scrollBottom());
}

void scrollDown(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    shiftDown(terminal, buffer.scrollTop(), buffer.scrollBottom(), sequence.count());
    terminal.refresh(buffer.scrollTop(), buffer.scrollBottom());
}

void insertColumns(Terminal& terminal, const ControlSequence& sequence) {
    changeColumnsAtCursor(terminal, sequence, true);
}

void deleteColumns(Terminal& terminal, const ControlSequence& sequence) {
    changeColumnsAtCursor(terminal, sequence, false);
}

void setScrollRegion(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    const int top = std::max(sequence.number(0) - 1, 0);
    const int asked = sequence.number(1);
    const int bottom = (asked > 0 && asked <= buffer.rows() ? asked : buffer.rows()) - 1;
    if (top < bottom) {
        buffer.setScrollTop(top);
        buffer.setScrollBottom(bottom);
    }
    setCursor(terminal, 0, 0);
}

void setMarginsOrSaveCursor(Terminal& terminal, const ControlSequence& sequence) {
    if (terminal.modes.marginMode)
        setMargins(terminal, sequence);
    else
        saveCursor(terminal, sequence);
}

}

}
