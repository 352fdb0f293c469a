#include "Lines/CircularBufferLineList.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>
#include <utility>

namespace termcore {

CircularBufferLineList::CircularBufferLineList(int cols, std::size_t maxLength)
    : limit(maxLength)
    , lineCols(cols)
    , arena(std::make_unique<LineArena>()) {
    spareLines.reserve(spareLimit);
}

CircularBufferLineList::~CircularBufferLineList() {
    for (std::size_t i = 0; i < length; ++i)
        release(slotAt(i));
    dropSpareLines();
}

void CircularBufferLineList::dropSpareLines() {
    for (BufferLine* line : spareLines)
        delete line;
    spareLines.clear();
}

CircularBufferLineList::CircularBufferLineList(CircularBufferLineList&& other) noexcept
    : slots(std::move(other.slots))
    , slotCount(std::exchange(other.slotCount, 0))
    , startIndex(std::exchange(other.startIndex, 0))
    , turn(std::exchange(other.turn, {}))
    , lastMoved(std::exchange(other.lastMoved, {}))
    , length(std::exchange(other.length, 0))
    , limit(other.limit)
    , lineCols(other.lineCols)
    , spareLines(std::exchange(other.spareLines, {}))
    , arena(std::move(other.arena)) {}

CircularBufferLineList& CircularBufferLineList::operator=(CircularBufferLineList&& other) noexcept {
    std::swap(slots, other.slots);
    std::swap(slotCount, other.slotCount);
    std::swap(startIndex, other.startIndex);
    std::swap(turn, other.turn);
    std::swap(lastMoved, other.lastMoved);
    std::swap(length, other.length);
    std::swap(limit, other.limit);
    std::swap(lineCols, other.lineCols);
    std::swap(spareLines, other.spareLines);
    std::swap(arena, other.arena);
    return *this;
}

CircularBufferLineList CircularBufferLineList::clone() const {
    CircularBufferLineList copy(lineCols, limit);
    std::vector<Cell> scratch;
    for (std::size_t i = 0; i < length; ++i) {
        const Slot& slot = slotAt(i);
        if (slot.kind == Kind::line) {
            copy.push(std::make_unique<BufferLine>(*slot.line()));
            continue;
        }
        copy.pushBlank();
        if (slot.isPacked()) {
            const auto cells = read(i, scratch);
            BufferLine& line = copy.edit(i);
            std::copy(cells.begin(), cells.end(), line.write(static_cast<int>(cells.size()), slot.holdsBytes()));
            copy.freeze(i);
        }
        copy.slotAt(i).flags = slot.flags;
    }
    return copy;
}

std::span<const Cell> CircularBufferLineList::read(std::size_t index, std::vector<Cell>& scratch) const {
    const Slot& slot = slotAt(index);
    if (slot.kind == Kind::line)
        return slot.line()->cells();
    if (!slot.isPacked())
        return {};
    scratch.resize(std::max<std::size_t>(scratch.size(), slot.cellCount));
    slot.packed().unpack(scratch.data());
    return std::span<const Cell>(scratch).first(slot.cellCount);
}

Cell CircularBufferLineList::cellAt(std::size_t index, std::size_t col) const {
    if (const Slot& slot = slotAt(index); slot.kind == Kind::line)
        return col < static_cast<std::size_t>(slot.line()->count()) ? slot.line()->cells()[col] : Cell{};
    std::vector<Cell> scratch;
    const auto cells = read(index, scratch);
    return col < cells.size() ? cells[col] : Cell{};
}

bool CircularBufferLineList::isWrapped(std::size_t index) const {
    const Slot& slot = slotAt(index);
    return slot.kind == Kind::line ? slot.line()->isWrapped : (slot.flags & wrappedFlag) != 0;
}

void CircularBufferLineList::setWrapped(std::size_t index, bool wrapped) {
    Slot& slot = slotAt(index);
    if (slot.kind == Kind::line)
        slot.line()->isWrapped = wrapped;
    else
        slot.flags = static_cast<std::uint8_t>((slot.flags & ~wrappedFlag) | (wrapped ? wrappedFlag : 0));
}

BufferLine::RenderLineMode CircularBufferLineList::renderMode(std::size_t index) const {
    const Slot& slot = slotAt(index);
    return slot.kind == Kind::line ? slot.line()->renderMode
                                   : static_cast<BufferLine::RenderLineMode>(slot.flags >> renderModeShift);
}

const LineImages* CircularBufferLineList::images(std::size_t index) const {
    const Slot& slot = slotAt(index);
    return slot.kind == Kind::line ? slot.line()->images.get() : nullptr;
}

int CircularBufferLineList::trimmedLength(std::size_t index) const {
    const Slot& slot = slotAt(index);
    if (slot.kind == Kind::line)
        return slot.line()->getTrimmedLength();
    return slot.isPacked() ? slot.packed().trimmedLength() : 0;
}

std::unique_ptr<BufferLine> CircularBufferLineList::takeLine() {
    if (spareLines.empty())
        return std::make_unique<BufferLine>(lineCols);
    std::unique_ptr<BufferLine> line(spareLines.back());
    spareLines.pop_back();
    line->renew();
    return line;
}

BufferLine& CircularBufferLineList::thaw(Slot& slot) {
    std::unique_ptr<BufferLine> line = takeLine();
    if (slot.isPacked()) {
        if (slot.cellCount > line->count())
            line->resize(slot.cellCount);
        slot.packed().unpack(line->write(slot.cellCount, slot.holdsBytes()));
        if (slot.isInArena())
            arena->release(static_cast<const std::byte*>(slot.data));
    }
    line->isWrapped = (slot.flags & wrappedFlag) != 0;
    line->renderMode = static_cast<BufferLine::RenderLineMode>(slot.flags >> renderModeShift);
    slot = {line.release(), 0, 0, 0, Kind::line, 0};
    return *slot.line();
}

BufferLine* CircularBufferLineList::packIntoArena(Slot& slot) {
    BufferLine* line = slot.line();
    const auto used = static_cast<std::size_t>(line->usedCells());
    if (line->images || PackedLine::largestSize(used) > LineArena::largestRequest)
        return nullptr;
    Slot result;
    result.flags = flagsOf(*line);
    if (used > 0) {
        PackedLine packed;
        std::byte* room = arena->reserve(PackedLine::largestSize(used));
        const std::size_t size =
            PackedLine::pack(line->cells().first(used), line->holdsBytesOnly(), room, runScratch, packed);
        if (packed.cellCount > 0) {
            arena->commit(size);
            result.data = room;
            result.cellCount = packed.cellCount;
            result.packedCells = packed.packedCells;
            result.runCount = packed.runCount;
            result.kind = static_cast<Kind>(packed.form);
        }
    }
    slot = result;
    return line;
}

void CircularBufferLineList::freeze(std::size_t index) {
    Slot& slot = slotAt(index);
    if (slot.kind != Kind::line)
        return;
    if (BufferLine* line = pack(slot))
        keepSpare(line);
}

void CircularBufferLineList::scrollScreen(std::size_t top, Cell fill, bool wrapped) {
    Slot& leaving = slotAt(top);
    BufferLine* const line = leaving.kind == Kind::line ? pack(leaving) : nullptr;
    Slot* coming = nullptr;
    if (length == limit) {
        coming = &slotAt(0);
        advanceStart();
        release(*coming);
    } else {
        if (length == slotCount)
            grow();
        coming = &slotAt(length++);
    }
    if (line != nullptr && line->count() == lineCols) {
        reuse(*line, fill, wrapped);
        *coming = {line, 0, 0, 0, Kind::line, 0};
        return;
    }
    if (line != nullptr)
        keepSpare(line);
    makeBlank(*coming, fill, wrapped);
}

void CircularBufferLineList::resizeLine(std::size_t index, int newCols) {
    Slot& slot = slotAt(index);
    if (slot.kind == Kind::line)
        slot.line()->resize(newCols);
    else
        slot.cellCount = static_cast<std::uint16_t>(std::min<int>(slot.cellCount, newCols));
}

void CircularBufferLineList::rebuild(std::size_t capacity) {
    auto larger = std::make_unique<Slot[]>(capacity);
    for (std::size_t i = 0; i < length; ++i)
        larger[i] = slotAt(i);
    useSlots(std::move(larger), capacity);
}

void CircularBufferLineList::grow() {
    rebuild(std::min(limit, std::max<std::size_t>(64, slotCount * 2)));
}

/// The lines begin with the first of these slots.
void CircularBufferLineList::useSlots(std::unique_ptr<Slot[]> newSlots, std::size_t count) {
    slots = std::move(newSlots);
    slotCount = count;
    startIndex = 0;
    turn = lastMoved = {};
}

void CircularBufferLineList::push(std::unique_ptr<BufferLine> line) {
    pushBlank();
    if (length > 0)
        slotAt(length - 1) = {line.release(), 0, 0, 0, Kind::line, 0};
}

void CircularBufferLineList::pushBlank(Cell fill, bool wrapped) {
    if (limit == 0)
        return;
    if (length == limit) {
        recycle(fill, wrapped);
        return;
    }
    if (length == slotCount)
        grow();
    ++length;
    makeBlank(slotAt(length - 1), fill, wrapped); // slots behind the end hold nothing of their own
}

void CircularBufferLineList::pop() {
    if (length > 0) {
        --length;
        release(slotAt(length));
    }
}

void CircularBufferLineList::recycle(Cell fill, bool wrapped) {
    assert(isFull() && "can only recycle when the buffer is full");
    Slot& first = slotAt(0);
    advanceStart();
    renew(first, fill, wrapped);
}

void CircularBufferLineList::setMaxLength(std::size_t newLimit) {
    setCount(std::min(length, newLimit));
    limit = newLimit;
    rebuild(std::min(newLimit, std::max<std::size_t>(length, slotCount)));
}

void CircularBufferLineList::setCount(std::size_t newCount) {
    newCount = std::min(newCount, limit);
    while (length > newCount)
        pop();
    while (length < newCount)
        pushBlank();
}

void CircularBufferLineList::trimStart(std::size_t lines) {
    for (std::size_t i = std::min(lines, length); i > 0; --i) {
        release(slotAt(0));
        advanceStart();
        --length;
    }
}

void CircularBufferLineList::shiftElements(std::size_t start, std::size_t lines, std::ptrdiff_t offset) {
    const auto target = static_cast<std::ptrdiff_t>(start) + offset;
    if (start >= length || target < 0 || lines == 0 || offset == 0)
        return;
    lines = std::min(lines, length - start);
    // What is moved over goes, what is moved away from is left blank.
    if (offset < 0) {
        for (std::size_t i = 0; i < lines; ++i) {
            Slot& to = slotAt(static_cast<std::size_t>(target) + i);
            release(to);
            to = std::exchange(slotAt(start + i), Slot{});
        }
        return;
    }
    const std::size_t newEnd = static_cast<std::size_t>(target) + lines;
    while (length < std::min(newEnd, limit))
        pushBlank();
    for (std::size_t i = lines; i-- > 0;) {
        const std::size_t to = static_cast<std::size_t>(target) + i;
        if (to >= length)
            continue;
        release(slotAt(to));
        slotAt(to) = std::exchange(slotAt(start + i), Slot{});
    }
}

void CircularBufferLineList::splice(
    std::size_t start, std::size_t deleteCount, std::size_t blankLines, Cell fill, bool wrapped) {
    start = std::min(start, length);
    deleteCount = std::min(deleteCount, length - start);
    if (deleteCount > 0) {
        for (std::size_t i = start; i + deleteCount < length; ++i)
            std::swap(slotAt(i), slotAt(i + deleteCount));
        for (std::size_t i = 0; i < deleteCount; ++i)
            pop();
    }
    for (std::size_t n = 0; n < blankLines; ++n) {
        if (isFull()) {
            // The excess is lost from the front.
            if (start == 0)
                return;
            trimStart(1);
            --start;
        }
        pushBlank(fill, wrapped);
        for (std::size_t i = length - 1; i > start; --i)
            std::swap(slotAt(i), slotAt(i - 1));
        ++start;
    }
}

bool CircularBufferLineList::turns(std::size_t top, std::size_t bottom) {
    const Turn asked{ringSlot(top), bottom - top + 1, 0};
    const auto isSame = [&](const Turn& other) { return other.first == asked.first && other.height == asked.height; };
    if (isSame(turn))
        return true;
    settle();
    if (!isSame(lastMoved)) {
        lastMoved = asked;
        return false;
    }
    if (asked.first + asked.height > slotCount) {
        // The ring's seam runs through the region: it has to lie elsewhere.
        std::rotate(slots.get(), slots.get() + startIndex, slots.get() + slotCount);
        startIndex = 0;
    }
    turn = {ringSlot(top), asked.height, 0};
    return true;
}

void CircularBufferLineList::settle() {
    Slot* const region = slots.get() + turn.first;
    std::rotate(region, region + turn.by, region + turn.height);
    turn = {};
}

void CircularBufferLineList::rotateUp(std::size_t top, std::size_t bottom, std::size_t by, Cell fill, bool wrapped) {
    by = std::min(by, bottom - top + 1);
    if (turns(top, bottom)) {
        for (; by > 0; --by)
            rotateUpOnce(top, bottom, fill, wrapped);
        return;
    }
    for (std::size_t i = top; i < top + by; ++i)
        release(slotAt(i));
    moveSlots(top + by, top, bottom - top + 1 - by);
    for (std::size_t i = bottom + 1 - by; i <= bottom; ++i)
        makeBlank(slotAt(i), fill, wrapped);
}

void CircularBufferLineList::rotateDown(std::size_t top, std::size_t bottom, std::size_t by, Cell fill) {
    by = std::min(by, bottom - top + 1);
    if (turns(top, bottom)) {
        for (; by > 0; --by) {
            turn.by = (turn.by == 0 ? turn.height : turn.by) - 1;
            renew(slots[turn.first + turn.by], fill, false);
        }
        return;
    }
    for (std::size_t i = bottom + 1 - by; i <= bottom; ++i)
        release(slotAt(i));
    moveSlots(top, top + by, bottom - top + 1 - by);
    for (std::size_t i = top; i < top + by; ++i)
        makeBlank(slotAt(i), fill, false);
}

/// Moves slots within the ring, where nothing turns; what they held before where they are moved from is left behind.
void CircularBufferLineList::moveSlots(std::size_t from, std::size_t to, std::size_t moved) {
    if (moved == 0)
        return;
    const std::size_t low = ringSlot(std::min(from, to));
    if (low + (std::max(from, to) - std::min(from, to)) + moved <= slotCount) {
        Slot* base = slots.get();
        std::memmove(static_cast<void*>(base + ringSlot(to)), base + ringSlot(from), moved * sizeof(Slot));
    } else if (from > to) {
        for (std::size_t i = 0; i < moved; ++i)
            slotAt(to + i) = slotAt(from + i);
    } else {
        for (std::size_t i = moved; i-- > 0;)
            slotAt(to + i) = slotAt(from + i);
    }
}

void CircularBufferLineList::rearrange(
    std::span<const std::ptrdiff_t> order, std::vector<std::unique_ptr<BufferLine>> added) {
    const std::size_t capacity = std::max(order.size(), std::min(limit, slotCount));
    auto newSlots = std::make_unique<Slot[]>(capacity);
    std::size_t at = 0;
    std::size_t nextAdded = 0;
    for (const std::ptrdiff_t index : order) {
        Slot& slot = newSlots[at++];
        if (index < 0)
            slot = {added[nextAdded++].release(), 0, 0, 0, Kind::line, 0};
        else
            slot = std::exchange(slotAt(static_cast<std::size_t>(index)), Slot{});
    }
    for (std::size_t i = 0; i < length; ++i)
        release(slotAt(i));
    useSlots(std::move(newSlots), capacity);
    length = order.size();
    for (std::size_t i = 0; i < length; ++i) {
        if (slots[i].kind == Kind::line && nextAdded > 0)
            slots[i].line()->resize(lineCols);
    }
}

void CircularBufferLineList::setCols(int cols) {
    lineCols = cols;
    dropSpareLines();
}

std::size_t CircularBufferLineList::linesWithImages() const {
    std::size_t result = 0;
    for (std::size_t i = 0; i < length; ++i)
        result += images(i) != nullptr;
    return result;
}

std::size_t CircularBufferLineList::memory() const {
    std::size_t bytes = slotCount * sizeof(Slot) + arena->allocatedBytes();
    for (std::size_t i = 0; i < length; ++i) {
        const Slot& slot = slotAt(i);
        if (slot.kind == Kind::line)
            bytes += sizeof(BufferLine) + static_cast<std::size_t>(slot.line()->dataSize()) * sizeof(Cell);
    }
    return bytes;
}

}
