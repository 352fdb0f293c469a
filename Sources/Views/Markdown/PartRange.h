#pragma once

#include "Paragraph.h"

#include <functional>

namespace Korvi {

// Some of the paragraphs of a segment, the first and the last one possibly not as a whole; in characters as drawn.
struct PartRange {
    int first = 0; // paragraphs
    int last = 0;
    qsizetype from = 0; // in the first
    qsizetype to = 0;   // in the last; behind its end

    bool operator==(const PartRange&) const = default;
};

constexpr qsizetype partLength = 4000;
constexpr qsizetype longestPart = 2 * partLength;
constexpr qsizetype pieceLength = partLength / 2; // of a longer paragraph, which is likely to grow
constexpr int mostFormulas = 200;                 // of one part: each is an item of its own

// One paragraph by itself from some character on; `text` is what is shown of it from there. It is cut between two words.
std::vector<PartRange> cutParagraph(int number, const QString& text, qsizetype from = 0);

// Cuts the paragraphs from the character `from` of the paragraph `first` on, before which a part has ended, into parts
// that are laid out one by one: whole paragraphs, together about `partLength` characters, or pieces of a longer one.
// Drawing and changing a text item costs time in proportion to all of its text. Where a part ends depends on nothing
// behind the paragraph that follows it. `shownText` is that of a paragraph from some character on.
std::vector<PartRange> cutText(int first, qsizetype from, int count, const std::function<qsizetype(int)>& lengthOf,
    const std::function<QString(int, qsizetype)>& shownText);

// Whether a part is the same while its paragraph is as it was in its first `kept` characters.
bool staysCut(const PartRange& part, qsizetype kept);

}
