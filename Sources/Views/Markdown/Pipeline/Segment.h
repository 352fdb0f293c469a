#pragma once

#include "Block.h"
#include "Inline.h"

namespace Korvi::Markdown {

// A header, list item or plain paragraph, ready to become one paragraph of a text document.
struct TextBlock {
    enum class Kind { header, listItem, numberedListItem, paragraph };

    Kind kind = Kind::paragraph;
    int level = 0;                // of a header, 1 to 6
    qint64 number = 0;            // of a numberedListItem
    QString marker{};             // what stands before the runs: "  •  ", two spaces, or "12. "
    bool hasLeadingEmoji = false; // of a listItem: it has no bullet and other indents
    QString content{};            // the Markdown that the runs are made of, without the block's own marker
    std::vector<Run> runs{};

    bool operator==(const TextBlock&) const = default;

    QString source() const; // its Markdown, with the block's marker
};

struct TextSegment {
    std::vector<TextBlock> blocks; // never empty

    bool operator==(const TextSegment&) const = default;
};

// One block that needs a view of its own. A paragraph here has formulas in it (see parseInlineLatex).
struct SpecialSegment {
    Block block;

    bool operator==(const SpecialSegment&) const = default;
};

using Segment = std::variant<TextSegment, SpecialSegment>;

}
