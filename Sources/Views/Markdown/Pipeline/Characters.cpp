#include "Characters.h"

#include <QString>

#include <algorithm>

namespace Korvi::Markdown {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// Emoji_Presentation of emoji-data.txt, Unicode 15. All of them have Emoji too.
constexpr Range emojis[] = {{0x231A, 0x231B}, {0x23E9, 0x23EC}, {0x23F0, 0x23F0}, {0x23F3, 0x23F3}, {0x25FD, 0x25FE},
    {0x2614, 0x2615}, {0x2648, 0x2653}, {0x267F, 0x267F}, {0x2693, 0x2693}, {0x26A1, 0x26A1}, {0x26AA, 0x26AB},
    {0x26BD, 0x26BE}, {0x26C4, 0x26C5}, {0x26CE, 0x26CE}, {0x26D4, 0x26D4}, {0x26EA, 0x26EA}, {0x26F2, 0x26F3},
    {0x26F5, 0x26F5}, {0x26FA, 0x26FA}, {0x26FD, 0x26FD}, {0x2705, 0x2705}, {0x270A, 0x270B}, {0x2728, 0x2728},
    {0x274C, 0x274C}, {0x274E, 0x274E}, {0x2753, 0x2755}, {0x2757, 0x2757}, {0x2795, 0x2797}, {0x27B0, 0x27B0},
    {0x27BF, 0x27BF}, {0x2B1B, 0x2B1C}, {0x2B50, 0x2B50}, {0x2B55, 0x2B55}, {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF},
    {0x1F18E, 0x1F18E}, {0x1F191, 0x1F19A}, {0x1F1E6, 0x1F1FF}, {0x1F201, 0x1F201}, {0x1F21A, 0x1F21A},
    {0x1F22F, 0x1F22F}, {0x1F232, 0x1F236}, {0x1F238, 0x1F23A}, {0x1F250, 0x1F251}, {0x1F300, 0x1F320},
    {0x1F32D, 0x1F335}, {0x1F337, 0x1F37C}, {0x1F37E, 0x1F393}, {0x1F3A0, 0x1F3CA}, {0x1F3CF, 0x1F3D3},
    {0x1F3E0, 0x1F3F0}, {0x1F3F4, 0x1F3F4}, {0x1F3F8, 0x1F43E}, {0x1F440, 0x1F440}, {0x1F442, 0x1F4FC},
    {0x1F4FF, 0x1F53D}, {0x1F54B, 0x1F54E}, {0x1F550, 0x1F567}, {0x1F57A, 0x1F57A}, {0x1F595, 0x1F596},
    {0x1F5A4, 0x1F5A4}, {0x1F5FB, 0x1F64F}, {0x1F680, 0x1F6C5}, {0x1F6CC, 0x1F6CC}, {0x1F6D0, 0x1F6D2},
    {0x1F6D5, 0x1F6D7}, {0x1F6DC, 0x1F6DF}, {0x1F6EB, 0x1F6EC}, {0x1F6F4, 0x1F6FC}, {0x1F7E0, 0x1F7EB},
    {0x1F7F0, 0x1F7F0}, {0x1F90C, 0x1F93A}, {0x1F93C, 0x1F945}, {0x1F947, 0x1F9FF}, {0x1FA70, 0x1FA7C},
    {0x1FA80, 0x1FA88}, {0x1FA90, 0x1FABD}, {0x1FABF, 0x1FAC5}, {0x1FACE, 0x1FADB}, {0x1FAE0, 0x1FAE8},
    {0x1FAF0, 0x1FAF8}};

// Kept whatever else they are: arrows, operators, technical and drawn signs, dingbats, Chinese and Japanese.
constexpr Range kept[] = {{0x0, 0x2139}, {0x2190, 0x23cf}, {0x2500, 0x2600}, {0x2700, 0x27bf}, {0x3000, 0x9fff}};
// Tags, variation selectors, and the planes of pictures.
constexpr Range dropped[] = {{0xfe00, 0xfe0f}, {0x1f000, 0x1ffff}, {0xe0000, 0xe007f}};

template <std::size_t size>
bool contains(const Range (&ranges)[size], char32_t scalar) {
    const Range* after = std::upper_bound(std::begin(ranges), std::end(ranges), scalar,
        [](char32_t value, const Range& range) { return value < range.first; });
    return after != std::begin(ranges) && scalar <= (after - 1)->last;
}

bool isDropped(char32_t scalar) {
    return !contains(kept, scalar) && (contains(dropped, scalar) || isEmoji(scalar));
}

template <class Trimmed>
QStringView trim(QStringView text, Trimmed trimmed) {
    while (!text.isEmpty() && trimmed(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && trimmed(text.back()))
        text.chop(1);
    return text;
}

char32_t scalarAt(QStringView text, qsizetype index) {
    const char16_t unit = text[index].unicode();
    if (!QChar::isHighSurrogate(unit) || index + 1 == text.size() || !text[index + 1].isLowSurrogate())
        return unit;
    return QChar::surrogateToUcs4(unit, text[index + 1].unicode());
}

}

QStringView trimmedBlanks(QStringView text) {
    return trim(text, isBlank);
}

QStringView trimmedNewLines(QStringView text) {
    return trim(text, [](QChar c) { return isLineTerminator(c.unicode()); });
}

bool isEmoji(char32_t scalar) {
    return scalar >= emojis[0].first && contains(emojis, scalar);
}

bool startsWithEmoji(QStringView text) {
    return !text.isEmpty() && isEmoji(scalarAt(text, 0));
}

void appendWithoutEmojis(QStringView piece, QString& output, bool& oddSpace) {
    qsizetype copied = 0;
    const auto skip = [&](qsizetype from, qsizetype count) {
        output.append(piece.sliced(copied, from - copied));
        copied = from + count;
    };
    for (qsizetype i = 0; i < piece.size(); ++i) {
        const char16_t unit = piece[i].unicode();
        if (unit == u' ') {
            if (oddSpace)
                skip(i, 1);
            oddSpace = !oddSpace;
            continue;
        }
        if (unit > kept[0].last) {
            const char32_t scalar = scalarAt(piece, i);
            const qsizetype length = QChar::requiresSurrogates(scalar) ? 2 : 1;
            if (isDropped(scalar)) {
                skip(i, length);
                i += length - 1;
                continue;
            }
            i += length - 1;
        }
        oddSpace = false;
    }
    output.append(piece.sliced(copied));
}

}
