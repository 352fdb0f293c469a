#pragma once

#include "Segments.h"

namespace Korvi::Markdown {

// Either a text block, which joins the text segment before it, or a block that is a segment by itself.
using Piece = std::variant<TextBlock, Block>;

Piece pieceOf(Block block);

// Segments, put together and taken apart piece by piece at their end.
class SegmentList {
public:
    void append(Block block) { append(pieceOf(std::move(block))); }
    void append(Piece piece);
    Piece takeLast();

    const std::vector<Segment>& all() const { return segments; }
    // The last segment if it is text.
    TextSegment* openText();
    std::vector<Segment> take() { return std::move(segments); }

private:
    std::vector<Segment> segments;
};

}
