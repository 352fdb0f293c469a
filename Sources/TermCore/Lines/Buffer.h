#pragma once

#include "Cells/Attribute.h"
#include "Cells/Cell.h"
#include "Lines/CircularBufferLineList.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace termcore {

class CharsetTable;

/// One screen of a terminal with its history, cursor, margins and tab stops. Rows are relative to `yBase`, absolute
/// rows count from the start of `lines`. The buffer knows nothing of escape sequences.
class Buffer {
public:
    /// Without `scrollback` the buffer has no history and never reflows.
    Buffer(int cols, int rows, int tabStopWidth, std::optional<int> scrollback);
    Buffer(Buffer&&) noexcept = default;
    Buffer& operator=(Buffer&&) noexcept = default;

    static constexpr int largestSide = 32767; ///< of cols and of rows

    CircularBufferLineList lines;
    int xDisp = 0;
    int xBase = 0;
    int yDisp = 0; ///< the absolute row at the top of the viewport
    int yBase = 0; ///< the absolute row of screen row 0
    int linesWithImagesCount = 0;
    int linesTop = 0;
    int marginLeft = 0;
    int marginRight = 0;
    std::vector<bool> tabStops;
    int savedX = 0;
    int savedY = 0;
    Attribute savedAttr;
    const CharsetTable* savedCharset = nullptr;
    bool savedOriginMode = false;
    bool savedMarginMode = false;
    bool savedWraparound = true; ///< DECRC without DECSC leaves autowrap on
    bool savedReverseWraparound = false;
    bool insertMode = false;
    bool marginMode = false;
    bool wraparound = true;
    /// Scrolls the region by one line; the argument becomes the new line's `isWrapped`.
    std::function<void(bool isWrapped)> scroll;

    /// The last printed cell, which a combining character joins.
    struct LastCell {
        int row = -1; ///< absolute
        int col = 0;
        int cols = 0;
        int rows = 0;
    };
    LastCell lastBufferStorage;

    // Negative values are not taken.
    int x() const { return cursorX; }
    int y() const { return cursorY; }
    int scrollTop() const { return regionTop; }
    int scrollBottom() const { return regionBottom; }
    void setX(int value) { assign(cursorX, value); }
    void setY(int value) { assign(cursorY, value); }
    void setScrollTop(int value) { assign(regionTop, value); }
    void setScrollBottom(int value) { assign(regionBottom, value); }

    int cols() const { return columnCount; }
    int rows() const { return rowCount; }
    /// True when it was made with a history, whatever its size is now.
    bool hasScrollback() const { return keepsHistory; }
    std::optional<int> scrollback() const { return history; }
    bool isReflowEnabled() const { return hasScrollback(); }
    bool hasAnyImages() const { return linesWithImagesCount > 0; }
    int leftLimit() const { return marginMode ? marginLeft : 0; }
    int rightLimit() const { return marginMode ? marginRight : columnCount - 1; }

    static Cell getNullCell(std::uint32_t style = 0) { return {Cell::textOf(0x20, 1), style}; }
    static std::unique_ptr<BufferLine> getBlankLine(int cols, Cell fill = {}, bool isWrapped = false) {
        return std::make_unique<BufferLine>(cols, fill, isWrapped);
    }
    /// A cell in screen or in absolute coordinates; outside the buffer an empty one.
    Cell getChar(int col, int row) const { return getCharAbsolute(col, row + yBase); }
    Cell getCharAbsolute(int col, int row) const;
    /// The line of a screen row, for writing.
    [[gnu::always_inline]] BufferLine& screenLine(int row) {
        return lines.edit(static_cast<std::size_t>(yBase) + static_cast<std::size_t>(row));
    }
    std::size_t screenIndex(int row) const { return static_cast<std::size_t>(yBase) + static_cast<std::size_t>(row); }

    void fillViewportRows(Cell fill = {});
    void clear();
    void softReset();
    void changeHistorySize(std::optional<int> newSize);
    void resize(int newCols, int newRows);
    std::size_t getCorrectBufferLength(int forRows) const;

    void setupTabStops(int index, int tabStopWidth);
    void tabSet(int pos);
    void tabClear(int pos);
    int nextTabStop(int index = -1) const;
    int previousTabStop(int index = -1) const;

    // -- the printing path ------------------------------------------------------------------------------------------

    /// Writes one glyph at the cursor; `code` as in a cell, `width` 0 to 2.
    void insertCharacter(std::uint32_t code, int width, std::uint32_t style);
    /// The commonest case of `insertAsciiRun`: the run fits into the line. False when it does not, or in insert mode.
    bool insertWithinLine(std::span<const std::uint8_t> run, std::uint32_t style) {
        const int end = cursorX + static_cast<int>(run.size());
        if (insertMode || end > rightLimit() + 1)
            return false;
        writeNarrow(screenLine(cursorY).write(end, true) + cursorX, run.data(), run.size(), style);
        cursorX = end;
        storeLast(end - 1);
        return true;
    }
    /// Writes bytes of width 1 until they are used up, or a line is full and autowrap off. Returns how many were written;
    /// none in insert mode.
    std::size_t insertAsciiRun(std::span<const std::uint8_t> run, std::uint32_t style);
    /// Writes UTF-8 text for as long as it is well formed, whole, and made of glyphs that take one or two columns and
    /// join nothing. Returns how many bytes were written; none in insert mode.
    std::size_t insertUtf8Run(std::span<const std::uint8_t> run, std::uint32_t style);

    bool hasImagesAt(std::size_t index) const {
        return linesWithImagesCount > 0 && index < lines.count() && lines.images(index) != nullptr;
    }
    void clearImagesFromLine(int row);
    void recalculateLinesWithImagesCount();
    /// A copy with its lines, for a frozen display.
    Buffer snapshot() const;

private:
    static void assign(int& field, int value) {
        if (value >= 0)
            field = value;
    }
    static void writeNarrow(Cell* out, const std::uint8_t* bytes, std::size_t count, std::uint32_t style) {
        // One eight-byte store for each cell, which the compiler turns into vector code; two halves would stall who
        // reads the cell as a whole soon after.
        static_assert(std::endian::native == std::endian::little);
        const std::uint64_t high = std::uint64_t{style} << 32;
        if (count == 1) {
            const std::uint64_t cell = high | bytes[0];
            std::memcpy(static_cast<void*>(out), &cell, sizeof cell);
            return;
        }
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint64_t cell = high | bytes[i];
            std::memcpy(static_cast<void*>(out + i), &cell, sizeof cell);
        }
    }
    void wrapToNextLine();
    void resizeRows(int newCols, int newRows);
    void fitScreenToLines();
    void storeLast(int col) { lastBufferStorage = {yBase + cursorY, col, columnCount, rowCount}; }

    int cursorX = 0;
    int cursorY = 0;
    int regionTop = 0;
    int regionBottom = 0;
    int columnCount = 0;
    int rowCount = 0;
    bool keepsHistory = false;
    std::optional<int> history;
};

}
