#include "Terminal/RectangleCommands.h"

#include "Terminal/Terminal.h"
#include "Unicode/UnicodeUtil.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace termcore::commands {
namespace {

template <typename Change>
void forEachCell(Terminal& terminal, const Rectangle& area, Change change) {
    Buffer& buffer = terminal.buffer();
    for (int row = area.top; row <= area.bottom; ++row) {
        BufferLine& line = buffer.screenLine(row);
        for (int col = area.left; col <= area.right; ++col)
            line.set(col, change(line[col]));
    }
    terminal.refresh(area.top, area.bottom);
}

/// The colours in force, without the styles.
std::uint32_t colorStyle(Terminal& terminal) {
    Attribute colors;
    colors.fg = terminal.curAttr().fg;
    colors.bg = terminal.curAttr().bg;
    return terminal.styles.idOf(colors);
}

}

std::optional<Rectangle> rectangleFromRequest(
    const Terminal& terminal, const ControlSequence& sequence, std::size_t first) {
    const Buffer& buffer = terminal.buffer();
    const int rows = buffer.rows();
    const int cols = buffer.cols();
    int top = std::max(sequence.number(first), 1);
    int left = std::max(sequence.number(first + 1), 1);
    int bottom = std::min(sequence.number(first + 2, rows), rows);
    int right = std::min(sequence.number(first + 3, cols), cols);
    if (terminal.modes.originMode) {
        top += buffer.scrollTop();
        bottom += buffer.scrollTop();
        left += buffer.leftLimit();
        right += buffer.leftLimit();
    }
    if (top > bottom || left > right)
        return std::nullopt;
    return Rectangle{
        std::min(top, rows) - 1, std::min(left, cols) - 1, std::min(bottom, rows) - 1, std::min(right, cols) - 1};
}

void copyRectangularArea(Terminal& terminal, const ControlSequence& sequence) {
    // Parameters: source rectangle, source page, destination top and left, destination page. There is one page.
    Buffer& buffer = terminal.buffer();
    const auto source = rectangleFromRequest(terminal, sequence, 0);
    if (!source)
        return;
    int toRow = std::max(sequence.number(5), 1) - 1;
    int toCol = std::max(sequence.number(6), 1) - 1;
    if (terminal.modes.originMode) {
        toRow += buffer.scrollTop();
        toCol += buffer.leftLimit();
    }
    if (toRow >= buffer.rows() || toCol >= buffer.cols())
        return;
    const int height = std::min(source->bottom - source->top + 1, buffer.rows() - toRow);
    const int width = std::min(source->right - source->left + 1, buffer.cols() - toCol);
    std::vector<Cell> copy;
    copy.reserve(static_cast<std::size_t>(height) * static_cast<std::size_t>(width));
    for (int row = 0; row < height; ++row) {
        const auto cells = buffer.screenLine(source->top + row).cells().subspan(static_cast<std::size_t>(source->left));
        copy.insert(copy.end(), cells.begin(), cells.begin() + width);
    }
    auto next = copy.begin();
    for (int row = 0; row < height; ++row) {
        BufferLine& line = buffer.screenLine(toRow + row);
        for (int col = 0; col < width; ++col)
            line.set(toCol + col, *next++);
    }
    terminal.refresh(toRow, toRow + height - 1);
}

void fillRectangularArea(Terminal& terminal, const ControlSequence& sequence) {
    const auto area = rectangleFromRequest(terminal, sequence, 1);
    if (!area)
        return;
    const int code = sequence.number(0);
    const bool isScalar = code >= 0 && UnicodeUtil::isScalar(static_cast<std::uint32_t>(code));
    const Cell fill{isScalar ? static_cast<std::uint32_t>(code) : U' ', colorStyle(terminal)};
    forEachCell(terminal, *area, [&](Cell) { return fill; });
}

void eraseRectangularArea(Terminal& terminal, const ControlSequence& sequence) {
    const auto area = rectangleFromRequest(terminal, sequence, 0);
    if (!area)
        return;
    const Cell fill = Buffer::getNullCell(colorStyle(terminal));
    forEachCell(terminal, *area, [&](Cell) { return fill; });
}

void selectiveEraseRectangularArea(Terminal& terminal, const ControlSequence& sequence) {
    const auto area = rectangleFromRequest(terminal, sequence, 0);
    if (area)
        forEachCell(terminal, *area, [](Cell cell) { return Buffer::getNullCell(cell.style); });
}

void requestChecksum(Terminal& terminal, const ControlSequence& sequence) {
    std::uint32_t sum = 0;
    const bool isAllowed = terminal.delegate() != nullptr && sequence.parameters.size() >= 3 &&
        terminal.delegate()->isProcessTrusted(terminal);
    const auto area = isAllowed ? rectangleFromRequest(terminal, sequence, 2) : std::nullopt;
    if (area) {
        for (int row = area->top; row <= area->bottom; ++row) {
            for (int col = area->left; col <= area->right; ++col) {
                const Cell cell = terminal.buffer().getChar(col, row);
                if (cell.code() == 0) {
                    sum += U' ';
                    continue;
                }
                for (const char32_t scalar : terminal.text(static_cast<std::int32_t>(cell.code())))
                    sum += scalar;
            }
        }
    }
    char digits[16];
    std::snprintf(digits, sizeof digits, "%04x", sum);
    terminal.sendResponse(std::string(terminal.cc.DCS()) + std::to_string(sequence.at(0)) + "!~" + digits +
        std::string(terminal.cc.ST()));
}

void enableLocatorReporting(Terminal& terminal, const ControlSequence&) {
    terminal.log("DECELR is not supported");
}

}
