#include "Segments.h"

#include "BlockParser.h"
#include "Characters.h"
#include "Match.h"
#include "SegmentList.h"
#include "TextCache.h"

namespace Korvi::Markdown {

using namespace Qt::Literals;

QString TextBlock::source() const {
    switch (kind) {
    case Kind::header: return QString(level, u'#') + u' ' + content;
    case Kind::listItem: return hasLeadingEmoji ? content : u"- "_s + content;
    case Kind::numberedListItem: return marker + content;
    case Kind::paragraph: break;
    }
    return content;
}

std::optional<TextBlock> textBlockOf(const Block& block) {
    using Kind = TextBlock::Kind;
    const auto made = [](TextBlock text, const QString& content) {
        text.content = content;
        text.runs = parseInlineMarkdown(content);
        return text;
    };
    if (const auto* header = block.as<Block::Header>())
        return made({.kind = Kind::header, .level = header->level}, header->content);
    if (const auto* item = block.as<Block::ListItem>()) {
        const bool hasEmoji = startsWithEmoji(item->content);
        return made({.kind = Kind::listItem, .marker = hasEmoji ? u"  "_s : u"  •  "_s, .hasLeadingEmoji = hasEmoji},
            item->content);
    }
    if (const auto* item = block.as<Block::NumberedListItem>())
        return made(
            {.kind = Kind::numberedListItem, .number = item->number, .marker = QString::number(item->number) + u". "_s},
            item->content);
    if (const auto* paragraph = block.as<Block::Paragraph>()) {
        if (!hasInlineLatex(paragraph->content))
            return made({.kind = Kind::paragraph}, paragraph->content);
    }
    return {};
}

std::vector<Segment> groupBlocksIntoSegments(QStringView text, bool* isTailOpen) {
    SegmentList segments;
    for (Block& block : parseBlocks(text, isTailOpen))
        segments.append(std::move(block));
    return segments.take();
}

ResolvedSegments resolvedSegments(const QString& text) {
    static TextCache<ResolvedSegments, 50> cache;
    return cache.value(text, [&] {
        ResolvedSegments made;
        made.segments = groupBlocksIntoSegments(text, &made.isTailOpen);
        return made;
    });
}

}
