#include "Terminal/PrintingPath.h"

#include "Parser/ByteScan.h"
#include "Terminal/Terminal.h"
#include "Unicode/UnicodeUtil.h"

#include <algorithm>
#include <string>

namespace termcore {

void PrintingPath::print(std::span<const std::uint8_t> slice) {
    Buffer& buffer = *terminal.activeBuffer;
    const int firstRow = buffer.y();
    terminal.updateRange(firstRow);
    if (terminal.charsets.active == nullptr && !reading.hasPutback()) {
        printRuns(slice, terminal.currentStyle());
    } else {
        printGeneral(slice);
    }
    if (buffer.y() != firstRow)
        terminal.updateRange(buffer.y());
}

void PrintingPath::printRuns(std::span<const std::uint8_t> slice, std::uint32_t style) {
    Buffer& buffer = *terminal.activeBuffer;
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
        if (const Utf8Scalar next = utf8::decode(slice); next.isValid && next.length > 1) {
            printScalar(next.scalar);
            slice = slice.subspan(next.length);
            continue;
        }
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
        const Join& decided = joinOf(lastCode(), scalar);
        if (decided.outcome == Join::Outcome::join)
            join(scalar, decided.code);
        if (decided.outcome != Join::Outcome::write)
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

std::uint32_t PrintingPath::lastCode() const {
    const Buffer::LastCell& last = terminal.activeBuffer->lastBufferStorage;
    return terminal.activeBuffer->getCharAbsolute(last.col, last.row).code();
}

bool PrintingPath::lastEndsInJoiner() const {
    return graphemes.size() != 0 && hasLast() &&
        graphemes.lastScalar(static_cast<std::int32_t>(lastCode())) == UnicodeUtil::zeroWidthJoiner;
}

const PrintingPath::Join& PrintingPath::joinOf(std::uint32_t previous, std::uint32_t scalar) {
    const std::uint64_t key = std::uint64_t{previous} << 32 | scalar;
    Join& entry = joins[(previous * 0x9E3779B1U ^ scalar * 0x85EBCA6BU) >> 22 & (joinCacheSize - 1)];
    if (entry.key != key) {
        entry = decideJoin(previous, scalar);
        entry.key = key;
    }
    return entry;
}

PrintingPath::Join PrintingPath::decideJoin(std::uint32_t previous, std::uint32_t scalar) {
    using Outcome = Join::Outcome;
    std::u32string cluster = graphemes.text(static_cast<std::int32_t>(previous));
    const char32_t last = cluster.back();
    const bool isFlag =
        UnicodeUtil::isRegionalIndicator(scalar) && cluster.size() == 1 && UnicodeUtil::isRegionalIndicator(last);
    if (!UnicodeUtil::mayJoin(scalar) && last != UnicodeUtil::zeroWidthJoiner && !isFlag)
        return {0, Outcome::write, 0};
    const Outcome otherwise = UnicodeUtil::columnWidth(scalar) == 0 ? Outcome::drop : Outcome::write;
    if (cluster.size() >= largestCluster)
        return {0, otherwise, 0};
    cluster += static_cast<char32_t>(scalar);
    if (!GraphemeTable::isOneCluster(cluster))
        return {0, otherwise, 0};
    const bool isSelector = scalar == UnicodeUtil::emojiSelector || scalar == UnicodeUtil::textSelector;
    if (isSelector && !UnicodeUtil::acceptsVariationSelector(last))
        return {0, Outcome::drop, 0};
    const auto code = graphemes.code(cluster);
    return code ? Join{0, Outcome::join, static_cast<std::uint32_t>(*code)} : Join{0, Outcome::drop, 0};
}

void PrintingPath::join(std::uint32_t scalar, std::uint32_t code) {
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
    cell.text = Cell::textOf(code, static_cast<unsigned>(width));
    line.set(col, cell);
    if (last.row >= buffer.yBase)
        terminal.updateRange(last.row - buffer.yBase);
}

}
