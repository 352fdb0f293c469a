#include "Terminal/PrintingPath.h"

#include "Parser/ByteScan.h"
#include "Terminal/Terminal.h"
#include "Unicode/UnicodeUtil.h"

#include <algorithm>

namespace termcore {

void PrintingPath::print(std::span<const std::uint8_t> slice) {
    Buffer& buffer = *terminal.activeBuffer;
    terminal.updateRange(buffer.y());
    if (terminal.charsets.active == nullptr && !reading.hasPutback()) {
        const std::uint32_t style = terminal.currentStyle();
        const std::uint8_t* const end = slice.data() + slice.size();
        while (!slice.empty()) {
            const std::uint8_t* const asciiEnd = bytescan::findNonPrintable(slice.data(), end);
            std::size_t written = 0;
            if (asciiEnd != slice.data()) {
                written = buffer.insertAsciiRun({slice.data(), asciiEnd}, style);
            } else if (!lastEndsInJoiner()) {
                written = buffer.insertUtf8Run(slice, style);
            }
            slice = slice.subspan(written);
            if (slice.empty() || (written != 0 && slice.data() == asciiEnd))
                continue;
            // One awkward scalar, then on with the runs.
            const std::size_t length = std::max<std::size_t>(1, utf8::sequenceLength(slice[0]));
            if (length > slice.size()) {
                printGeneral(slice);
                break;
            }
            printGeneral(slice.first(length));
            slice = slice.subspan(length);
            if (reading.hasPutback()) {
                // A broken sequence left bytes that may begin another one.
                printGeneral(slice);
                break;
            }
        }
    } else {
        printGeneral(slice);
    }
    terminal.updateRange(buffer.y());
}

void PrintingPath::printGeneral(std::span<const std::uint8_t> slice) {
    reading.prepare(slice);
    while (reading.remaining() > 0) {
        const std::uint8_t first = reading.peek(0);
        const std::uint32_t length = utf8::sequenceLength(first);
        if (length <= 1) {
            printByte(first);
            reading.skip(1);
            continue;
        }
        if (reading.remaining() < length) {
            reading.putback();
            return;
        }
        const std::uint8_t bytes[4] = {first, reading.peek(1), length > 2 ? reading.peek(2) : std::uint8_t{0},
            length > 3 ? reading.peek(3) : std::uint8_t{0}};
        const Utf8Scalar decoded = utf8::decode({bytes, length});
        if (decoded.isValid) {
            printScalar(decoded.scalar);
            reading.skip(length);
        } else {
            printByte(first);
            reading.skip(1);
        }
    }
}

/// A byte that stands for itself: ASCII through the active character set, or a broken sequence's byte as Latin-1.
void PrintingPath::printByte(std::uint8_t byte) {
    const CharsetTable* charset = terminal.charsets.active;
    if (byte < 0x7F && charset != nullptr && charset->replacement[byte] != 0) {
        write(charset->replacement[byte], 1);
        return;
    }
    const int width = UnicodeUtil::columnWidth(byte);
    if (width > 0)
        write(byte, width);
}

void PrintingPath::printScalar(std::uint32_t scalar) {
    const int width = UnicodeUtil::columnWidth(scalar);
    if (width < 0)
        return;
    if (hasLast()) {
        const std::u32string previous = lastText();
        if (wantsToJoin(scalar, previous) && joinLast(scalar, previous))
            return;
    }
    if (width > 0)
        write(scalar, width);
}

void PrintingPath::write(std::uint32_t code, int width) {
    terminal.activeBuffer->insertCharacter(code, width, terminal.currentStyle());
}

bool PrintingPath::hasLast() const {
    const Buffer& buffer = *terminal.activeBuffer;
    const Buffer::LastCell& last = buffer.lastBufferStorage;
    return last.row >= 0 && last.cols == terminal.cols() && last.rows == terminal.rows() &&
        static_cast<std::size_t>(last.row) < buffer.lines.count();
}

std::u32string PrintingPath::lastText() const {
    const Buffer::LastCell& last = terminal.activeBuffer->lastBufferStorage;
    const Cell cell = terminal.activeBuffer->getCharAbsolute(last.col, last.row);
    return graphemes.text(static_cast<std::int32_t>(cell.code()));
}

bool PrintingPath::lastEndsInJoiner() const {
    if (graphemes.size() == 0 || !hasLast())
        return false;
    const Buffer::LastCell& last = terminal.activeBuffer->lastBufferStorage;
    const Cell cell = terminal.activeBuffer->getCharAbsolute(last.col, last.row);
    return cell.code() >= static_cast<std::uint32_t>(GraphemeTable::firstCode) &&
        graphemes.text(static_cast<std::int32_t>(cell.code())).back() == UnicodeUtil::zeroWidthJoiner;
}

bool PrintingPath::wantsToJoin(std::uint32_t scalar, const std::u32string& previous) const {
    if (UnicodeUtil::mayJoin(scalar) || previous.back() == UnicodeUtil::zeroWidthJoiner)
        return true;
    return UnicodeUtil::isRegionalIndicator(scalar) && previous.size() == 1 &&
        UnicodeUtil::isRegionalIndicator(previous[0]);
}

bool PrintingPath::joinLast(std::uint32_t scalar, const std::u32string& previous) {
    if (previous.size() >= largestCluster)
        return UnicodeUtil::columnWidth(scalar) == 0;
    std::u32string cluster = previous;
    cluster += static_cast<char32_t>(scalar);
    if (!GraphemeTable::isOneCluster(cluster))
        return UnicodeUtil::columnWidth(scalar) == 0;
    const bool isSelector = scalar == UnicodeUtil::emojiSelector || scalar == UnicodeUtil::textSelector;
    if (isSelector && !UnicodeUtil::acceptsVariationSelector(previous.back()))
        return true;
    const auto code = graphemes.code(cluster);
    if (!code)
        return true;
    Buffer& buffer = *terminal.activeBuffer;
    const Buffer::LastCell& last = buffer.lastBufferStorage;
    BufferLine& line = buffer.lines.edit(static_cast<std::size_t>(last.row));
    const int col = std::min(last.col, line.count() - 1);
    Cell cell = line[col];
    int width = cell.width();
    if (scalar == UnicodeUtil::emojiSelector && width == 1 && col + 1 < line.count()) {
        width = 2;
        line.set(col + 1, {Cell::continuation, cell.style});
        buffer.setX(std::min(buffer.x() + 1, buffer.cols()));
    } else if (scalar == UnicodeUtil::textSelector && width == 2) {
        width = 1;
        buffer.setX(buffer.x() - 1);
    }
    cell.text = Cell::textOf(static_cast<std::uint32_t>(*code), static_cast<unsigned>(width));
    line.set(col, cell);
    if (last.row >= buffer.yBase)
        terminal.updateRange(last.row - buffer.yBase);
    return true;
}

}
