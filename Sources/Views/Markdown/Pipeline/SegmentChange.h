#pragma once

#include "SegmentList.h"
#include "StreamingDocument.h"

namespace Korvi::Markdown {

// How many characters at the beginning are the same in the same style.
qsizetype equalCharacters(const std::vector<Run>& a, const std::vector<Run>& b);

// What the first new piece kept of the old one in its place, where that is known without comparing them.
struct Reused {
    qsizetype kept; // as Change counts it; of a text block, characters
    bool isSame;
};

// The pieces at the end of the segments gave way to others.
struct Exchange {
    qsizetype oldSegments;  // how many there were
    qsizetype keptSegments; // how many have a piece that was not taken away
    qsizetype keptBlocks;   // of the last of those, if it is text; otherwise 0
    const std::vector<Piece>& gone;
    std::optional<Reused> reused;
};

Change changeOf(const Exchange& exchange, const std::vector<Segment>& now);

// Between two lists of segments that have nothing to do with each other but, perhaps, an equal beginning.
Change changeBetween(const std::vector<Segment>& old, const std::vector<Segment>& now);

}
