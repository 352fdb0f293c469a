#include "ParagraphsOf.h"

#include <algorithm>
#include <limits>

namespace Korvi {

namespace {

using Markdown::SpecialSegment;
using Markdown::TextBlock;
using Markdown::TextSegment;

constexpr Paragraph::Style styleOf(Markdown::Style style) {
    switch (style) {
    case Markdown::Style::bold: return Paragraph::Style::bold;
    case Markdown::Style::italic: return Paragraph::Style::italic;
    case Markdown::Style::code: return Paragraph::Style::code;
    case Markdown::Style::base: break;
    }
    return Paragraph::Style::base;
}

Paragraph::Kind kindOf(const TextBlock& block) {
    switch (block.kind) {
    case TextBlock::Kind::header:
        return block.level <= 1 ? Paragraph::Kind::header1
            : block.level == 2  ? Paragraph::Kind::header2
            : block.level == 3  ? Paragraph::Kind::header3
                                : Paragraph::Kind::header4;
    case TextBlock::Kind::listItem:
        return block.hasLeadingEmoji ? Paragraph::Kind::emojiItem : Paragraph::Kind::listItem;
    case TextBlock::Kind::numberedListItem: return Paragraph::Kind::numberedItem;
    case TextBlock::Kind::paragraph: break;
    }
    return Paragraph::Kind::body;
}

// What a text document would take for the end of a paragraph or for an object of its own.
bool isReserved(QChar character) {
    const char16_t code = character.unicode();
    return code == u'\n' || code == u'\r' || code == 0 || code == QChar::ParagraphSeparator ||
        code == QChar::LineSeparator || code == QChar::ObjectReplacementCharacter || code == 0xfdd0 || code == 0xfdd1;
}

void append(std::vector<Paragraph::Piece>& pieces, QString text, Paragraph::Style style) {
    if (style != Paragraph::Style::formula && std::any_of(text.cbegin(), text.cend(), isReserved))
        std::replace_if(text.begin(), text.end(), isReserved, u' ');
    if (!pieces.empty() && pieces.back().style == style && style != Paragraph::Style::formula)
        pieces.back().text += text;
    else
        pieces.push_back({std::move(text), style});
}

const TextBlock& blockOf(const Markdown::Segment& segment, int number) {
    return std::get<TextSegment>(segment).blocks[static_cast<std::size_t>(number)];
}

Paragraph withFormulas(const QString& content) {
    Paragraph paragraph;
    for (const Markdown::TextPart& part : Markdown::parseInlineLatex(content)) {
        if (part.isLatex) {
            append(paragraph.pieces, part.content, Paragraph::Style::formula);
            continue;
        }
        if (!part.content.contains(u'*') && !part.content.contains(u'`')) {
            append(paragraph.pieces, part.content, Paragraph::Style::base);
            continue;
        }
        for (const Markdown::Run& run : Markdown::parseInlineMarkdown(part.content))
            append(paragraph.pieces, run.text, styleOf(run.style));
    }
    return paragraph;
}

}

bool isText(const Markdown::Segment& segment) {
    const auto* special = std::get_if<SpecialSegment>(&segment);
    return !special || special->block.as<Markdown::Block::Paragraph>();
}

int paragraphCount(const Markdown::Segment& segment) {
    const auto* text = std::get_if<TextSegment>(&segment);
    return text ? static_cast<int>(text->blocks.size()) : 1;
}

Paragraph paragraphOf(const Markdown::Segment& segment, int number) {
    if (const auto* special = std::get_if<SpecialSegment>(&segment))
        return withFormulas(special->block.as<Markdown::Block::Paragraph>()->content);
    return paragraphOf(segment, number, 0, std::numeric_limits<qsizetype>::max());
}

Paragraph paragraphOf(const Markdown::Segment& segment, int number, qsizetype from, qsizetype to) {
    const TextBlock& block = blockOf(segment, number);
    Paragraph paragraph{kindOf(block), from > 0, {}};
    qsizetype begin = 0;
    const auto add = [&](const QString& text, Paragraph::Style style) {
        const qsizetype first = std::max<qsizetype>(from - begin, 0);
        const qsizetype last = std::min(to - begin, text.size());
        if (first < last)
            append(paragraph.pieces, text.sliced(first, last - first), style);
        begin += text.size();
    };
    add(block.marker, Paragraph::Style::marker);
    for (auto run = block.runs.begin(); run != block.runs.end() && begin < to; ++run)
        add(run->text, styleOf(run->style));
    return paragraph;
}

Paragraph::Kind paragraphKindOf(const Markdown::Segment& segment, int number) {
    return std::holds_alternative<SpecialSegment>(segment) ? Paragraph::Kind::body : kindOf(blockOf(segment, number));
}

qsizetype paragraphLength(const Markdown::Segment& segment, int number) {
    const TextBlock& block = blockOf(segment, number);
    qsizetype length = block.marker.size();
    for (const Markdown::Run& run : block.runs)
        length += run.text.size();
    return length;
}

}
