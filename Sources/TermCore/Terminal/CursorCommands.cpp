#include "Terminal/CursorCommands.h"

#include "Terminal/Terminal.h"

#include <algorithm>
#include <utility>

namespace termcore::commands {
namespace {

int homeColumn(const Terminal& terminal) {
    return terminal.modes.originMode && terminal.modes.marginMode ? terminal.buffer().marginLeft : 0;
}

void moveForward(Terminal& terminal, int count) {
    Buffer& buffer = terminal.buffer();
    int limit = buffer.rightLimit();
    if (buffer.x() > limit)
        limit = buffer.cols() - 1;
    buffer.setX(std::min(buffer.x() + count, limit));
}

void moveBackward(Terminal& terminal, int count) {
    Buffer& buffer = terminal.buffer();
    int limit = buffer.leftLimit();
    if (buffer.x() < limit)
        limit = 0;
    buffer.setX(std::max(buffer.x() - count, limit));
}

void moveUp(Terminal& terminal, int count) {
    Buffer& buffer = terminal.buffer();
    const int limit = buffer.y() < buffer.scrollTop() ? 0 : buffer.scrollTop();
    buffer.setY(std::max(buffer.y() - count, limit));
}

void moveDown(Terminal& terminal, int count) {
    Buffer& buffer = terminal.buffer();
    const int limit = buffer.y() > buffer.scrollBottom() ? buffer.rows() - 1 : buffer.scrollBottom();
    buffer.setY(std::min(buffer.y() + count, limit));
    if (buffer.x() >= buffer.cols())
        buffer.setX(buffer.x() - 1);
}

int zeroBased(const ControlSequence& sequence, std::size_t index) {
    return std::max(sequence.number(index) - 1, 0);
}

}

void restrictCursor(Terminal& terminal, bool limitColumns) {
    Buffer& buffer = terminal.buffer();
    buffer.setX(std::min(buffer.x(), buffer.cols() - (limitColumns ? 1 : 0)));
    const int top = terminal.modes.originMode ? buffer.scrollTop() : 0;
    const int bottom = terminal.modes.originMode ? buffer.scrollBottom() : buffer.rows() - 1;
    buffer.setY(std::clamp(buffer.y(), top, std::max(top, bottom)));
    terminal.updateRange(buffer.y());
}

void setCursor(Terminal& terminal, int col, int row) {
    Buffer& buffer = terminal.buffer();
    terminal.updateRange(buffer.y());
    if (terminal.modes.originMode) {
        col += terminal.modes.marginMode ? buffer.marginLeft : 0;
        row += buffer.scrollTop();
    }
    buffer.setX(col);
    buffer.setY(row);
    restrictCursor(terminal);
}

void backspace(Terminal& terminal, const ControlSequence&) {
    Buffer& buffer = terminal.buffer();
    restrictCursor(terminal, !terminal.modes.reverseWraparound);
    if (buffer.x() > buffer.leftLimit()) {
        buffer.setX(buffer.x() - 1);
        return;
    }
    if (!terminal.modes.reverseWraparound)
        return;
    const int row = buffer.y();
    const bool isInRegion = row > buffer.scrollTop() && row <= buffer.scrollBottom();
    if (isInRegion && (terminal.modes.marginMode || buffer.lines.isWrapped(buffer.screenIndex(row)))) {
        if (!terminal.modes.marginMode)
            buffer.lines.setWrapped(buffer.screenIndex(row), false);
        buffer.setY(row - 1);
        buffer.setX(buffer.rightLimit());
    } else if (row == buffer.scrollTop()) {
        buffer.setX(buffer.rightLimit());
        buffer.setY(buffer.scrollBottom());
    } else if (row != 0) {
        buffer.setX(buffer.rightLimit());
        buffer.setY(row - 1);
    }
}

void horizontalTab(Terminal& terminal, const ControlSequence&) {
    terminal.buffer().setX(terminal.buffer().nextTabStop());
}

void carriageReturn(Terminal& terminal, const ControlSequence&) {
    terminal.buffer().setX(homeColumn(terminal));
}

void tabSet(Terminal& terminal, const ControlSequence&) {
    terminal.buffer().tabSet(terminal.buffer().x());
}

void tabClear(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    if (sequence.at(0) == 0)
        buffer.tabClear(buffer.x());
    else if (sequence.at(0) == 3)
        std::fill(buffer.tabStops.begin(), buffer.tabStops.end(), false);
}

void cursorForwardTab(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    for (int n = std::min(sequence.count(), buffer.cols() - 1); n > 0; --n)
        buffer.setX(buffer.nextTabStop());
}

void cursorBackwardTab(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    if (buffer.x() > buffer.cols())
        return;
    for (int n = std::min(sequence.count(), buffer.cols()); n > 0; --n)
        buffer.setX(buffer.previousTabStop());
}

void cursorUp(Terminal& terminal, const ControlSequence& sequence) {
    moveUp(terminal, sequence.count());
}

void cursorDown(Terminal& terminal, const ControlSequence& sequence) {
    moveDown(terminal, sequence.count());
}

void cursorForward(Terminal& terminal, const ControlSequence& sequence) {
    moveForward(terminal, sequence.count());
}

void cursorBackward(Terminal& terminal, const ControlSequence& sequence) {
    moveBackward(terminal, sequence.count());
}

void cursorNextLine(Terminal& terminal, const ControlSequence& sequence) {
    moveDown(terminal, sequence.count());
    terminal.buffer().setX(terminal.buffer().leftLimit());
}

void cursorPrecedingLine(Terminal& terminal, const ControlSequence& sequence) {
    moveUp(terminal, sequence.count());
    terminal.buffer().setX(terminal.buffer().leftLimit());
}

void cursorCharAbsolute(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    const int col = std::min(zeroBased(sequence, 0), buffer.cols() - 1) + homeColumn(terminal);
    buffer.setX(std::min(col, buffer.cols() - 1));
}

void cursorPosition(Terminal& terminal, const ControlSequence& sequence) {
    setCursor(terminal, zeroBased(sequence, 1), zeroBased(sequence, 0));
}

void charPosAbsolute(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    buffer.setX(std::min(sequence.count() - 1, buffer.cols() - 1));
}

void hPositionRelative(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    buffer.setX(std::min(buffer.x() + sequence.count(), buffer.cols() - 1));
}

void linePosAbsolute(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    buffer.setY(std::min(sequence.count() - 1, buffer.rows() - 1));
}

void vPositionRelative(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    buffer.setY(std::min(buffer.y() + sequence.count(), buffer.rows() - 1));
}

void hvPosition(Terminal& terminal, const ControlSequence& sequence) {
    Buffer& buffer = terminal.buffer();
    int row = sequence.count(0) - 1;
    int col = sequence.count(1) - 1;
    if (terminal.modes.originMode) {
        row += buffer.scrollTop();
        col += terminal.modes.marginMode ? buffer.marginLeft : 0;
    }
    buffer.setX(std::min(col, buffer.cols() - 1));
    buffer.setY(std::min(row, buffer.rows() - 1));
}

void saveCursor(Terminal& terminal, const ControlSequence&) {
    Buffer& buffer = terminal.buffer();
    buffer.savedX = buffer.x();
    buffer.savedY = buffer.y();
    buffer.savedAttr = terminal.curAttr();
    buffer.savedCharset = terminal.charsets.active;
    buffer.savedOriginMode = terminal.modes.originMode;
    buffer.savedMarginMode = terminal.modes.marginMode;
    buffer.savedWraparound = terminal.modes.wraparound;
    buffer.savedReverseWraparound = terminal.modes.reverseWraparound;
}

void restoreCursor(Terminal& terminal, const ControlSequence&) {
    Buffer& buffer = terminal.buffer();
    buffer.setX(std::min(buffer.savedX, buffer.cols() - 1));
    buffer.setY(std::min(buffer.savedY, buffer.rows() - 1));
    terminal.setCurAttr(buffer.savedAttr);
    terminal.charsets.active = buffer.savedCharset;
    terminal.modes.originMode = buffer.savedOriginMode;
    terminal.setMarginMode(buffer.savedMarginMode);
    terminal.setWraparound(buffer.savedWraparound);
    terminal.modes.reverseWraparound = buffer.savedReverseWraparound;
}

void setCursorStyle(Terminal& terminal, const ControlSequence& sequence) {
    const std::int64_t shape = std::max<std::int64_t>(sequence.at(0), 1);
    if (shape <= 6)
        terminal.setCursorStyle(static_cast<CursorStyle>(shape - 1));
}

}
