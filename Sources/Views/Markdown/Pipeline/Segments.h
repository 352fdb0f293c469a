#pragma once

#include "Segment.h"

namespace Korvi::Markdown {

// A header, list item or paragraph as a text block. Anything else has none.
std::optional<TextBlock> textBlockOf(const Block& block);

// Blocks that can be shown as text together, and those between that cannot, of a cleaned text.
// `isTailOpen`: whether code or a formula is open at its end.
std::vector<Segment> groupBlocksIntoSegments(QStringView text, bool* isTailOpen = nullptr);

struct ResolvedSegments {
    std::vector<Segment> segments;
    bool isTailOpen = false;
};

// The same, remembered for the last texts (50 at most). For the main thread.
ResolvedSegments resolvedSegments(const QString& text);

}
