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

// Cuts the paragraphs from `first` on, before which a part has ended, into parts that are laid out one by one: whole
// paragraphs, together about `partLength` characters. Drawing and changing a text item costs time in proportion to all of
// its text. A longer paragraph is cut between two words. Where a part ends depends on nothing behind the paragraph that
// follows it.
constexpr qsizetype partLength = 4000;
constexpr qsizetype longestPart = 2 * partLength;
constexpr int mostFormulas = 200; // of one part: each is an item of its own

// One paragraph by itself, of which `text` is what is shown.
std::vector<PartRange> cutParagraph(int number, const QString& text);

std::vector<PartRange> cutText(
    int first, int count, const std::function<qsizetype(int)>& lengthOf, const std::function<QString(int)>& shownText);

}
