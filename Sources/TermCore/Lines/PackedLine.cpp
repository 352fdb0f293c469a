#include "Lines/PackedLine.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace termcore {
namespace {

using Run = PackedLine::Run;

/// Ends of style runs, found four cells at a time.
void findRuns(std::span<const Cell> cells, std::vector<Run>& runs) {
    runs.clear();
    std::size_t i = 0;
    std::uint32_t style = cells[0].style;
#if defined(__SSE2__)
    while (i + 4 <= cells.size()) {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(&cells[i]));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(&cells[i + 2]));
        const __m128i styles =
            _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(low), _mm_castsi128_ps(high), _MM_SHUFFLE(3, 1, 3, 1)));
        const int differing =
            ~_mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(styles, _mm_set1_epi32(static_cast<int>(style))))) & 0xF;
        if (differing == 0) {
            i += 4;
            continue;
        }
        i += static_cast<std::size_t>(__builtin_ctz(static_cast<unsigned>(differing)));
        runs.push_back({style, static_cast<std::uint32_t>(i)});
        style = cells[i].style;
    }
#endif
    for (; i < cells.size(); ++i) {
        if (cells[i].style != style) {
            runs.push_back({style, static_cast<std::uint32_t>(i)});
            style = cells[i].style;
        }
    }
    if (!runs.empty() || style != 0)
        runs.push_back({style, static_cast<std::uint32_t>(cells.size())});
}

void narrowToBytes(std::span<const Cell> cells, std::byte* out) {
    std::size_t i = 0;
#if defined(__SSE2__)
    const auto texts = [&](std::size_t at) {
        const __m128 low = _mm_loadu_ps(reinterpret_cast<const float*>(&cells[at]));
        const __m128 high = _mm_loadu_ps(reinterpret_cast<const float*>(&cells[at + 2]));
        return _mm_castps_si128(_mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0)));
    };
    for (; i + 16 <= cells.size(); i += 16) {
        const __m128i low = _mm_packs_epi32(texts(i), texts(i + 4));
        const __m128i high = _mm_packs_epi32(texts(i + 8), texts(i + 12));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(low, high));
    }
#endif
    for (; i < cells.size(); ++i)
        out[i] = static_cast<std::byte>(cells[i].text);
}

/// False when a cell needs more than two bytes or a wide glyph has lost its half.
bool narrowToWords(std::span<const Cell> cells, std::byte* out) {
    std::size_t i = 0;
    while (i < cells.size()) {
        const std::uint32_t text = cells[i].text;
        const std::uint32_t code = text & Cell::codeMask;
        if (code >= 0x10000 || (code >= 0xD800 && code <= 0xDFFF))
            return false;
        const auto word = static_cast<std::uint16_t>(code);
        std::memcpy(out + 2 * i, &word, 2);
        ++i;
        if (text == code)
            continue;
        if (text != (code | Cell::wide) || i == cells.size() || cells[i].text != Cell::continuation)
            return false;
        constexpr std::uint16_t filler = PackedLine::fillerMark;
        std::memcpy(out + 2 * i, &filler, 2);
        ++i;
    }
    return true;
}

void widenBytes(const std::byte* in, std::size_t count, Cell* out) {
    for (std::size_t i = 0; i < count; ++i)
        out[i] = {static_cast<std::uint32_t>(in[i]), 0};
}

void widenWords(const std::byte* in, std::size_t count, Cell* out) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint16_t word = 0;
        std::memcpy(&word, in + 2 * i, 2);
        if (word == PackedLine::fillerMark && i > 0) {
            out[i - 1].text |= Cell::wide;
            out[i] = {Cell::continuation, 0};
        } else {
            out[i] = {word, 0};
        }
    }
}

}

std::size_t PackedLine::pack(
    std::span<const Cell> cells, bool bytesOnly, std::byte* out, std::vector<Run>& runs, PackedLine& result) {
    while (!cells.empty() && (cells.back().text | cells.back().style) == 0)
        cells = cells.first(cells.size() - 1);
    result = {out, static_cast<std::uint16_t>(cells.size()), static_cast<std::uint16_t>(cells.size()), 0, Form::bytes};
    if (cells.empty())
        return 0;
    if (bytesOnly) {
        narrowToBytes(cells, out);
    } else if (narrowToWords(cells, out)) {
        result.form = Form::words;
    } else {
        result.form = Form::cells;
        for (std::size_t i = 0; i < cells.size(); ++i)
            std::memcpy(out + 4 * i, &cells[i].text, 4);
    }
    findRuns(cells, runs);
    result.runCount = static_cast<std::uint16_t>(runs.size());
    const std::size_t size = aligned(result.codeBytes());
    if (runs.empty())
        return size;
    std::memcpy(out + size, runs.data(), runs.size() * sizeof(Run));
    return size + runs.size() * sizeof(Run);
}

std::span<const PackedLine::Run> PackedLine::runs() const {
    return {reinterpret_cast<const Run*>(data + aligned(codeBytes())), runCount};
}

void PackedLine::unpack(Cell* out) const {
    switch (form) {
    case Form::bytes: widenBytes(data, cellCount, out); break;
    case Form::words:
        widenWords(data, cellCount, out);
        // A line cut in the middle of a wide glyph keeps the first half, as a cut of cells would.
        if (cellCount > 0 && cellCount < packedCells && codeAt(cellCount) == fillerMark)
            out[cellCount - 1].text |= Cell::wide;
        break;
    case Form::cells:
        for (std::size_t i = 0; i < cellCount; ++i) {
            std::memcpy(&out[i].text, data + 4 * i, 4);
            out[i].style = 0;
        }
        break;
    }
    std::size_t at = 0;
    for (const Run& run : runs()) {
        const std::size_t end = std::min<std::size_t>(run.end, cellCount);
        for (; at < end; ++at)
            out[at].style = run.style;
    }
}

std::uint32_t PackedLine::codeAt(std::size_t index) const {
    switch (form) {
    case Form::bytes: return static_cast<std::uint32_t>(data[index]);
    case Form::words: {
        std::uint16_t word = 0;
        std::memcpy(&word, data + 2 * index, 2);
        return word;
    }
    case Form::cells: break;
    }
    std::uint32_t text = 0;
    std::memcpy(&text, data + 4 * index, 4);
    return text & Cell::codeMask;
}

int PackedLine::trimmedLength() const {
    int length = cellCount;
    while (length > 0) {
        const std::uint32_t code = codeAt(static_cast<std::size_t>(length - 1));
        if (code != 0 && !(form == Form::words && code == fillerMark))
            break;
        --length;
    }
    if (length == 0)
        return 0;
    std::uint32_t width = 1;
    const auto last = static_cast<std::size_t>(length - 1);
    if (form == Form::words) {
        width = static_cast<std::size_t>(length) < packedCells && codeAt(last + 1) == fillerMark ? 2 : 1;
    } else if (form == Form::cells) {
        Cell cell;
        std::memcpy(&cell.text, data + 4 * last, 4);
        width = static_cast<std::uint32_t>(cell.width());
    }
    return length - 1 + static_cast<int>(width);
}

}
