#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace termcore {

/// Searches many bytes at a time: SSE2 where the compiler's baseline has it, one byte at a time elsewhere.
namespace bytescan {

/// The first byte at or below 0x1F, or `end`.
inline const std::uint8_t* findControl(const std::uint8_t* at, const std::uint8_t* end) {
#if defined(__SSE2__)
    const __m128i limit = _mm_set1_epi8(0x1F);
    while (end - at >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const int mask = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(bytes, limit), limit));
        if (mask != 0)
            return at + __builtin_ctz(static_cast<unsigned>(mask));
        at += 16;
    }
#endif
    while (at<end&& * at> 0x1F)
        ++at;
    return at;
}

struct TextRun {
    const std::uint8_t* end;
    bool isAscii; ///< nothing but 0x20 to 0x7E
};

/// The bytes up to the first one at or below 0x1F, or to `end`.
inline TextRun findText(const std::uint8_t* at, const std::uint8_t* end) {
    unsigned odd = 0;
#if defined(__SSE2__)
    const __m128i limit = _mm_set1_epi8(0x1F);
    const __m128i del = _mm_set1_epi8(0x7F);
    while (end - at >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const int controls = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(bytes, limit), limit));
        const auto other = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(bytes, _mm_cmpeq_epi8(bytes, del))));
        if (controls != 0) {
            const int count = __builtin_ctz(static_cast<unsigned>(controls));
            return {at + count, (odd | (other & ((1U << count) - 1))) == 0};
        }
        odd |= other;
        at += 16;
    }
#endif
    for (; at<end&& * at> 0x1F; ++at)
        odd |= *at >= 0x7F;
    return {at, odd == 0};
}

/// The first byte outside 0x20 to 0x7E, or `end`.
inline const std::uint8_t* findNonPrintable(const std::uint8_t* at, const std::uint8_t* end) {
#if defined(__SSE2__)
    // Signed comparison: bytes from 0x80 up are negative, so one test covers both ends but DEL.
    const __m128i low = _mm_set1_epi8(0x20);
    const __m128i del = _mm_set1_epi8(0x7F);
    while (end - at >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const int mask = _mm_movemask_epi8(_mm_or_si128(_mm_cmplt_epi8(bytes, low), _mm_cmpeq_epi8(bytes, del)));
        if (mask != 0)
            return at + __builtin_ctz(static_cast<unsigned>(mask));
        at += 16;
    }
#endif
    while (at < end && *at >= 0x20 && *at < 0x7F)
        ++at;
    return at;
}

}

}
