// The writing primitives of Buffer: what every printed byte passes through.
#include "Lines/Buffer.h"
#include "Unicode/UnicodeUtil.h"
#include "Unicode/Utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace termcore {
namespace {

#if defined(__SSE2__)
/// Decodes two-byte sequences from the front of 16 bytes, as far as they are narrow glyphs that join nothing: Latin,
/// basic Cyrillic. Writes eight cells and returns how many of them count.
std::size_t decodePairs(const std::uint8_t* bytes, std::uint32_t style, Cell* out) {
    const __m128i pairs = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const auto all = [](int value) { return _mm_set1_epi16(static_cast<short>(value)); };
    const __m128i isPair = _mm_cmpeq_epi16(_mm_and_si128(pairs, all(0xC0E0)), all(0x80C0));
    const __m128i code = _mm_or_si128(
        _mm_slli_epi16(_mm_and_si128(pairs, all(0x1F)), 6), _mm_and_si128(_mm_srli_epi16(pairs, 8), all(0x3F)));
    const auto within = [&](int first, int last) {
        return _mm_and_si128(_mm_cmpgt_epi16(code, all(first - 1)), _mm_cmplt_epi16(code, all(last + 1)));
    };
    const __m128i isPlain = _mm_or_si128(within(0xC0, 0x2FF), within(0x400, 0x482));
    const int good = _mm_movemask_epi8(_mm_and_si128(isPair, isPlain));
    const __m128i styles = _mm_set1_epi32(static_cast<int>(style));
    const __m128i low = _mm_unpacklo_epi16(code, _mm_setzero_si128());
    const __m128i high = _mm_unpackhi_epi16(code, _mm_setzero_si128());
    auto* cells = reinterpret_cast<__m128i*>(out);
    _mm_storeu_si128(cells, _mm_unpacklo_epi32(low, styles));
    _mm_storeu_si128(cells + 1, _mm_unpackhi_epi32(low, styles));
    _mm_storeu_si128(cells + 2, _mm_unpacklo_epi32(high, styles));
    _mm_storeu_si128(cells + 3, _mm_unpackhi_epi32(high, styles));
    return static_cast<std::size_t>(__builtin_ctz(~static_cast<unsigned>(good))) / 2;
}
#endif

/// Han and Hangul: wide, and nothing that joins.
constexpr bool isPlainWide(std::uint32_t scalar) {
    return (scalar >= 0x4E00 && scalar <= 0x9FFF) || (scalar >= 0xAC00 && scalar <= 0xD7A3);
}

constexpr std::uint8_t glyphMask = UnicodeUtil::widthMask | UnicodeUtil::joins | UnicodeUtil::regionalIndicator;
constexpr std::uint8_t narrowGlyph = 2; // columns + 1, and nothing that joins
constexpr std::uint8_t wideGlyph = 3;

}

void Buffer::wrapToNextLine() {
    cursorX = leftLimit();
    if (cursorY >= regionBottom) {
        if (scroll)
            scroll(true);
    } else {
        ++cursorY;
        lines.setWrapped(screenIndex(cursorY), true);
    }
}

void Buffer::insertCharacter(std::uint32_t code, int width, std::uint32_t style) {
    const int limit = rightLimit();
    if (cursorX + width - 1 > limit) {
        if (wraparound) {
            wrapToNextLine();
        } else {
            if (width == 2)
                return;
            cursorX = limit;
        }
    }
    BufferLine& line = screenLine(cursorY);
    const Cell blank{0, style};
    if (insertMode) {
        line.insertCells(cursorX, width, limit, blank);
        if (line.getWidth(columnCount - 1) == 2)
            line.set(columnCount - 1, blank);
    }
    storeLast(cursorX);
    cursorX = std::min(cursorX, columnCount - 1);
    line.set(cursorX++, {Cell::textOf(code, static_cast<unsigned>(width)), style});
    for (int i = 1; i < width && cursorX < columnCount; ++i)
        line.set(cursorX++, {Cell::continuation, style});
}

std::size_t Buffer::insertAsciiRun(std::span<const std::uint8_t> run, std::uint32_t style) {
    if (insertMode || run.empty())
        return 0;
    const int limit = rightLimit();
    std::size_t written = 0;
    while (written < run.size()) {
        if (cursorX > limit) {
            if (!wraparound)
                break;
            wrapToNextLine();
        }
        const std::size_t room = cursorX > limit ? 1 : static_cast<std::size_t>(limit + 1 - cursorX);
        const std::size_t count = std::min(room, run.size() - written);
        const int end = cursorX + static_cast<int>(count);
        writeNarrow(screenLine(cursorY).write(end, true) + cursorX, run.data() + written, count, style);
        written += count;
        cursorX = end;
    }
    if (written > 0)
        storeLast(cursorX - 1);
    return written;
}

std::size_t Buffer::insertUtf8Run(std::span<const std::uint8_t> run, std::uint32_t style) {
    if (insertMode || run.empty())
        return 0;
    const int limit = rightLimit();
    const std::uint64_t styleBits = std::uint64_t{style} << 32;
    const std::uint8_t* at = run.data();
    const std::uint8_t* const end = at + run.size();
    int lastCol = -1;
    BufferLine* line = nullptr;
    Cell* cells = nullptr;
    int col = cursorX;
    while (at < end) {
#if defined(__SSE2__)
        if (line != nullptr && *at >= 0xC3 && *at < 0xD3 && end - at >= 16 && col + 8 <= limit + 1) {
            Cell decoded[8];
            const std::size_t count = decodePairs(at, style, decoded);
            if (count > 0) {
                std::copy_n(decoded, count, cells + col);
                at += 2 * count;
                col += static_cast<int>(count);
                lastCol = col - 1;
                continue;
            }
        }
#endif
        if (line != nullptr && *at >= 0xE4 && *at <= 0xED) {
            const std::uint8_t* const start = at;
            while (end - at >= 3 && (at[0] & 0xF0) == 0xE0 && (at[1] & 0xC0) == 0x80 && (at[2] & 0xC0) == 0x80 &&
                col + 1 <= limit) {
                const std::uint32_t han = (at[0] & 0xFU) << 12 | (at[1] & 0x3FU) << 6 | (at[2] & 0x3FU);
                if (!isPlainWide(han))
                    break;
                const std::uint64_t pair[2] = {styleBits | han | Cell::wide, styleBits | Cell::continuation};
                std::memcpy(static_cast<void*>(cells + col), pair, sizeof pair);
                lastCol = col;
                col += 2;
                at += 3;
            }
            if (at != start)
                continue;
        }
        std::uint32_t scalar = *at;
        std::uint32_t length = 1;
        const auto isContinuation = [at](std::ptrdiff_t offset) { return (at[offset] & 0xC0) == 0x80; };
        const auto bits = [at](std::ptrdiff_t offset) { return at[offset] & 0x3FU; };
        if (scalar >= 0x80) {
            // RFC 3629; anything not in its short form, or broken, is left to the slow way.
            const std::ptrdiff_t left = end - at;
            if (scalar >= 0xE1 && scalar < 0xF0 && left >= 3 && isContinuation(1) && isContinuation(2)) {
                scalar = (scalar & 0xF) << 12 | bits(1) << 6 | bits(2);
                length = 3;
                if (scalar >= 0xD800 && scalar <= 0xDFFF)
                    break;
            } else if (scalar >= 0xC2 && scalar < 0xE0 && left >= 2 && isContinuation(1)) {
                scalar = (scalar & 0x1F) << 6 | bits(1);
                length = 2;
            } else if (scalar >= 0xF0 && scalar < 0xF4 && left >= 4 && isContinuation(1) && isContinuation(2) &&
                isContinuation(3) && (scalar != 0xF0 || at[1] >= 0x90)) {
                scalar = (scalar & 7) << 18 | bits(1) << 12 | bits(2) << 6 | bits(3);
                length = 4;
            } else {
                const Utf8Scalar next = utf8::decode({at, static_cast<std::size_t>(left)});
                if (!next.isValid)
                    break;
                scalar = next.scalar;
                length = next.length;
            }
        }
        const std::uint8_t glyph = UnicodeUtil::properties(scalar) & glyphMask;
        if (glyph != narrowGlyph && glyph != wideGlyph)
            break;
        const int width = glyph - 1;
        if (col + width - 1 > limit) {
            if (!wraparound || leftLimit() + width > columnCount)
                break;
            if (line != nullptr)
                line->write(col, false);
            cursorX = col;
            wrapToNextLine();
            col = cursorX;
            line = nullptr;
        }
        if (line == nullptr) {
            line = &screenLine(cursorY);
            cells = line->write(0, false);
        }
        lastCol = col;
        if (width == 1) {
            cells[col++] = {scalar, style};
        } else {
            cells[col] = {scalar | Cell::wide, style};
            cells[col + 1] = {Cell::continuation, style};
            col += 2;
        }
        at += length;
    }
    if (line != nullptr)
        line->write(col, false);
    cursorX = col;
    const auto written = static_cast<std::size_t>(at - run.data());
    if (written > 0 && lastCol >= 0)
        storeLast(lastCol);
    return written;
}

}
