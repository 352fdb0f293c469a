#include "Segments.h"

#include "BlockParser.h"

namespace Korvi::Markdown {

QString TextBlock::source() const {
    return content;
}

std::optional<TextBlock> textBlockOf(const Block& block) {
    if (const auto* paragraph = block.as<Block::Paragraph>())
        return TextBlock{.content = paragraph->content, .runs = parseInlineMarkdown(paragraph->content)};
    return {};
}

std::vector<Segment> groupBlocksIntoSegments(QStringView text) {
    std::vector<Segment> segments;
    for (const Block& block : parseBlocks(text)) {
        if (auto made = textBlockOf(block))
            segments.emplace_back(TextSegment{{*made}});
        else
            segments.emplace_back(SpecialSegment{block});
    }
    return segments;
}

std::vector<Segment> resolvedSegments(const QString& text) {
    return groupBlocksIntoSegments(text);
}

}
