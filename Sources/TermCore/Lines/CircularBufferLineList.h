#pragma once

#include "Lines/BufferLine.h"
#include "Lines/LineArena.h"
#include "Lines/PackedLine.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace termcore {

/// The ring of lines: the screen at its end and the history before it. A slot takes 16 bytes and holds nothing (a
/// blank line), a `BufferLine` that can be written, or a packed line. `edit` turns any line into one
/// that can be written, `freeze` packs it; readers need not know. Writable lines that leave the ring are kept and used
/// again, so that scrolling a full ring allocates nothing.
class CircularBufferLineList {
public:
    /// `cols` is the length of lines that `edit` creates.
    CircularBufferLineList(int cols, std::size_t maxLength);
    ~CircularBufferLineList();
    CircularBufferLineList(CircularBufferLineList&& other) noexcept;
    CircularBufferLineList& operator=(CircularBufferLineList&& other) noexcept;
    /// A deep copy of all lines.
    CircularBufferLineList clone() const;

    std::size_t count() const { return length; }
    std::size_t maxLength() const { return limit; }
    bool isFull() const { return length == limit; }

    // -- one line; an index at or beyond `count` is an error of the caller --------------------------------------------

    [[gnu::always_inline]] BufferLine& edit(std::size_t index) {
        Slot& slot = slotAt(index);
        return slot.kind == Kind::line ? *slot.line() : thaw(slot);
    }
    /// The cells; what lies beyond them is empty. Valid until the line changes or `scratch` does.
    std::span<const Cell> read(std::size_t index, std::vector<Cell>& scratch) const;
    /// One cell; what lies beyond the line's own cells is empty.
    Cell cellAt(std::size_t index, std::size_t col) const;
    bool isWrapped(std::size_t index) const;
    void setWrapped(std::size_t index, bool wrapped);
    BufferLine::RenderLineMode renderMode(std::size_t index) const;
    const LineImages* images(std::size_t index) const;
    int trimmedLength(std::size_t index) const;
    /// Packs the line unless it carries images.
    void freeze(std::size_t index);
    /// Brings the line to `newCols` cells; packed lines only lose what lies beyond.
    void resizeLine(std::size_t index, int newCols);
    /// Calls `mark(style)` for each style that a line uses.
    template <typename Mark>
    void forEachStyle(Mark mark) const;

    // -- the ring ---------------------------------------------------------------------------------------------------

    void push(std::unique_ptr<BufferLine> line);
    /// Pushes an empty line in the look of `fill`; a full ring loses its first line.
    void pushBlank(Cell fill = {}, bool wrapped = false);
    void pop();
    /// Only when full: the first line becomes the last, cleared in the look of `fill`.
    void recycle(Cell fill, bool wrapped);
    /// A scroll of the whole screen in one step: `freeze(top)`, then `recycle` when full or `pushBlank`. The cells of the
    /// line that leaves serve the one that comes.
    void scrollScreen(std::size_t top, Cell fill, bool wrapped);
    void setMaxLength(std::size_t newLimit);
    /// Raising it adds blank lines.
    void setCount(std::size_t newCount);
    void trimStart(std::size_t lines);
    void shiftElements(std::size_t start, std::size_t lines, std::ptrdiff_t offset);
    /// Removes `deleteCount` lines at `start` and puts `blankLines` lines in the look of `fill` there.
    void splice(
        std::size_t start, std::size_t deleteCount, std::size_t blankLines, Cell fill = {}, bool wrapped = false);
    /// Moves the lines `top` to `bottom` up or down by `by`; blank lines come in at the other end. A region that is moved
    /// again and again is not moved at all from the second time on: its slots become a ring of their own, which turns.
    void rotateUp(std::size_t top, std::size_t bottom, std::size_t by, Cell fill, bool wrapped = false);
    /// `rotateUp` by one in the common case, a region that turns already. False in any other.
    [[gnu::always_inline]] bool rotateUpOnce(std::size_t top, std::size_t bottom, Cell fill, bool wrapped) {
        if (ringSlot(top) != turn.first || bottom - top + 1 != turn.height)
            return false;
        Slot& slot = slots[turn.first + turn.by];
        if (++turn.by == turn.height)
            turn.by = 0;
        renew(slot, fill, wrapped);
        return true;
    }
    void rotateDown(std::size_t top, std::size_t bottom, std::size_t by, Cell fill);

    /// The new order of lines after a reflow: the index of an old line, or -1 for the next of `added`. Old lines that are
    /// not named are dropped.
    void rearrange(std::span<const std::ptrdiff_t> order, std::vector<std::unique_ptr<BufferLine>> added);

    void setCols(int cols);
    std::size_t linesWithImages() const;
    /// Bytes of memory behind the lines, without spare ones.
    std::size_t memory() const;

private:
    enum class Kind : std::uint8_t { packedBytes, packedWords, packedCells, inlineBytes, blank, line };

    struct Slot {
        void* data = nullptr; // the line, its packed form, or up to eight codes
        std::uint16_t cellCount = 0;
        std::uint16_t packedCells = 0;
        std::uint16_t runCount = 0;
        Kind kind = Kind::blank;
        std::uint8_t flags = 0; // of packed and blank lines: wrapped, render mode

        BufferLine* line() const { return static_cast<BufferLine*>(data); }
        bool isPacked() const { return kind <= Kind::inlineBytes; }
        bool isInArena() const { return kind <= Kind::packedCells; }
        bool holdsBytes() const { return kind == Kind::packedBytes || kind == Kind::inlineBytes; }
        /// Valid while the slot stays where it is.
        PackedLine packed() const {
            if (kind == Kind::inlineBytes)
                return {reinterpret_cast<const std::byte*>(&data), cellCount, packedCells, 0, PackedLine::Form::bytes};
            return {static_cast<const std::byte*>(data), cellCount, packedCells, runCount,
                static_cast<PackedLine::Form>(kind)};
        }
    };
    static_assert(sizeof(Slot) == 16);
    static constexpr std::uint8_t wrappedFlag = 1;
    static constexpr unsigned renderModeShift = 1;
    static constexpr std::size_t spareLimit = 256;

    /// A stretch of slots that has turned: row `i` of it lies in the slot `i + by` of it, around its end.
    struct Turn {
        std::size_t first = 0;
        std::size_t height = 0; // 0 while nothing turns
        std::size_t by = 0;
    };

    std::size_t ringSlot(std::size_t index) const {
        const std::size_t at = startIndex + index;
        return at >= slotCount ? at - slotCount : at;
    }
    std::size_t physical(std::size_t index) const {
        const std::size_t at = ringSlot(index);
        const std::size_t row = at - turn.first;
        if (row >= turn.height)
            return at;
        return row + turn.by >= turn.height ? at + turn.by - turn.height : at + turn.by;
    }
    [[gnu::always_inline]] Slot& slotAt(std::size_t index) { return slots[physical(index)]; }
    [[gnu::always_inline]] const Slot& slotAt(std::size_t index) const { return slots[physical(index)]; }
    void advanceStart() {
        if (++startIndex == slotCount)
            startIndex = 0;
    }

    BufferLine& thaw(Slot& slot);
    std::unique_ptr<BufferLine> takeLine();
    /// The slot's line is gone; what the slot holds is left to the caller.
    void release(Slot& slot) {
        if (slot.isInArena())
            arena->release(static_cast<const std::byte*>(slot.data));
        else if (slot.kind == Kind::line)
            keepSpare(slot.line());
    }
    void keepSpare(BufferLine* line) {
        if (spareLines.size() < spareLimit && line->count() == lineCols)
            spareLines.push_back(line);
        else
            delete line;
    }
    static void reuse(BufferLine& line, Cell fill, bool wrapped) {
        line.renew();
        line.isWrapped = wrapped;
        if ((fill.text | fill.style) != 0)
            line.fill(fill);
    }
    void dropSpareLines();
    void makeBlank(Slot& slot, Cell fill, bool wrapped) {
        slot = {};
        slot.flags = wrapped ? wrappedFlag : 0;
        if ((fill.text | fill.style) != 0)
            thaw(slot).fill(fill);
    }
    /// Leaves a blank line in the slot, in the cells of the one that was there.
    void renew(Slot& slot, Cell fill, bool wrapped) {
        if (slot.kind == Kind::line && slot.line()->count() == lineCols) {
            reuse(*slot.line(), fill, wrapped);
            return;
        }
        release(slot);
        makeBlank(slot, fill, wrapped);
    }
    /// True when the region turns, which it begins to when it is asked for twice in a row.
    bool turns(std::size_t top, std::size_t bottom);
    /// Puts what has turned in its order.
    void settle();
    /// Packs the line of the slot and gives the line back for reuse; null when it has to stay.
    BufferLine* pack(Slot& slot) {
        BufferLine* const line = slot.line();
        const auto used = static_cast<std::size_t>(line->usedCells());
        if (used <= PackedLine::shortLine && line->holdsBytesOnly() && !line->images && packShort(*line, used, slot))
            return line;
        return packIntoArena(slot);
    }
    BufferLine* packIntoArena(Slot& slot);
    static std::uint8_t flagsOf(const BufferLine& line) {
        return static_cast<std::uint8_t>(
            (line.isWrapped ? wrappedFlag : 0U) | (static_cast<unsigned>(line.renderMode) << renderModeShift));
    }
    /// A few bytes in the default look, what most lines of a fast scrolling program are, lie in the slot itself.
    static bool packShort(const BufferLine& line, std::size_t used, Slot& slot) {
        const Cell* cells = line.cells().data();
        std::uint64_t bytes = 0;
        std::uint32_t styles = 0;
        for (std::size_t i = used; i-- > 0;) {
            bytes = bytes << 8 | cells[i].text;
            styles |= cells[i].style;
        }
        if (styles != 0)
            return false;
        const auto count = static_cast<std::uint16_t>((71U - static_cast<unsigned>(std::countl_zero(bytes | 1))) / 8);
        slot = bytes == 0 ? Slot{nullptr, 0, 0, 0, Kind::blank, flagsOf(line)}
                          : Slot{std::bit_cast<void*>(bytes), count, count, 0, Kind::inlineBytes, flagsOf(line)};
        return true;
    }
    void rebuild(std::size_t capacity);
    void grow();
    void useSlots(std::unique_ptr<Slot[]> newSlots, std::size_t count);
    void moveSlots(std::size_t from, std::size_t to, std::size_t moved);

    std::unique_ptr<Slot[]> slots; // grows to `limit` as lines come
    std::size_t slotCount = 0;
    std::size_t startIndex = 0;
    Turn turn;
    Turn lastMoved; // the region that may turn next
    std::size_t length = 0;
    std::size_t limit = 0;
    int lineCols = 0;
    std::vector<BufferLine*> spareLines; // owned; room for spareLimit is there from the start
    std::unique_ptr<LineArena> arena;
    std::vector<PackedLine::Run> runScratch;
};

template <typename Mark>
void CircularBufferLineList::forEachStyle(Mark mark) const {
    for (std::size_t i = 0; i < length; ++i) {
        const Slot& slot = slotAt(i);
        if (slot.kind == Kind::line) {
            for (const Cell& cell : slot.line()->cells().first(static_cast<std::size_t>(slot.line()->usedCells())))
                mark(cell.style);
        } else if (slot.isPacked()) {
            for (const PackedLine::Run& run : slot.packed().runs())
                mark(run.style);
        }
    }
}

}
