#pragma once

#include "Cells/Cell.h"
#include "Lines/LineImage.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace termcore {

/// A line of cells that can be written. Cells at and beyond `usedCells()` are known to be empty in the default look, so
/// that clearing, trimming and packing cost what was written, not what the line could hold.
class BufferLine {
public:
    enum class RenderLineMode : std::uint8_t { single, doubleWidth, doubledTop, doubledDown };
    using CharacterProvider = std::function<void(std::string& out, std::uint32_t code)>;

    explicit BufferLine(int cols, Cell fillData = {}, bool wrapped = false);
    BufferLine(const BufferLine& from);
    BufferLine(BufferLine&&) noexcept = default;
    BufferLine& operator=(const BufferLine&) = delete;

    bool isWrapped = false; ///< continues the line above, which ran out of columns
    RenderLineMode renderMode = RenderLineMode::single;
    Cell fillCharacter;
    std::unique_ptr<LineImages> images;

    int count() const { return cellCount; }
    int dataSize() const { return capacity; }
    std::span<const Cell> cells() const { return {data.get(), static_cast<std::size_t>(cellCount)}; }
    std::vector<Cell> getData() const { return {data.get(), data.get() + cellCount}; }

    /// An index at or beyond the cell count means the last cell. A line without cells can't be indexed.
    const Cell& operator[](int index) const { return data[static_cast<std::size_t>(adjusted(index))]; }
    void set(int index, Cell cell);
    int getWidth(int index) const { return (*this)[index].width(); }
    bool hasContent(int index) const;
    bool hasAnyContent() const;
    /// Columns up to the end of the last cell that holds a code; a coloured background alone does not count.
    int getTrimmedLength() const;

    void fill(Cell fill);
    void fill(Cell fill, int atCol, int len);
    void replaceCells(int start, int end, Cell fillData);
    void copyFrom(const BufferLine& line);
    void copyFrom(const BufferLine& line, int srcCol, int dstCol, int len);
    void insertCells(int pos, int n, int rightMargin, Cell fillData);
    void deleteCells(int pos, int n, int rightMargin, Cell fillData);
    void resize(int cols, Cell fillData = {});
    /// Empties every cell, in the look of `fill`, and drops the images.
    void clear(Cell fill = {});

    /// Appends the text of the cells from `startCol` up to `endCol` (-1: to the end).
    void translateToString(std::string& out, bool trimRight, int startCol, int endCol, bool skipNullCellsFollowingWide,
        const CharacterProvider& characterProvider) const;

    // -- the printing path ------------------------------------------------------------------------------------------

    /// Cells for direct writing up to `end`. `narrowBytes` promises codes below 0x100 of width 1.
    Cell* write(int end, bool narrowBytes) {
        if (end > used)
            used = end;
        bytesOnly = bytesOnly && narrowBytes;
        return data.get();
    }
    /// As `clear` in the default look, for a line that begins a new life.
    void renew() {
        if (images)
            images.reset();
        for (Cell *cell = data.get(), *end = cell + used; cell != end; ++cell)
            *cell = {};
        used = 0;
        bytesOnly = true;
        isWrapped = false;
        renderMode = RenderLineMode::single;
    }
    int usedCells() const { return used; }
    bool holdsBytesOnly() const { return bytesOnly; }

private:
    int adjusted(int index) const { return index >= cellCount ? cellCount - 1 : index < 0 ? 0 : index; }
    void shift(int from, int to, int len);

    std::unique_ptr<Cell[]> data;
    int capacity = 0;
    int cellCount = 0;
    int used = 0;
    bool bytesOnly = true;
};

}
