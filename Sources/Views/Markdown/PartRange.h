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

// Cuts the paragraphs from `first` on, of that one what stands from `from` on, before which a part has ended, into parts that are laid out one by one: whole
// paragraphs, together about `partLength` characters. Drawing and changing a text item costs time in proportion to all of
// its text. A longer paragraph is cut between two words. Where a part ends depends on nothing behind the paragraph that
// follows it.
constexpr qsizetype partLength = 4000;
constexpr qsizetype longestPart = 2 * partLength;
constexpr qsizetype pieceLength = partLength / 2; // of such a paragraph, which is likely to grow

// `shownText` is that of a paragraph from some character on.
std::vector<PartRange> cutText(int first, qsizetype from, int count, const std::function<qsizetype(int)>& lengthOf,
    const std::function<QString(int, qsizetype)>& shownText);

// Whether a part is the same while its paragraph is as it was in its first `kept` characters.
bool staysCut(const PartRange& part, qsizetype kept);

}
