#include "PartHeights.h"

#include "AnswerParts.h"
#include "MarkdownHeights.h"
#include "ParagraphTable.h"

#include <algorithm>
#include <cmath>

namespace Korvi {

namespace {

double textHeight(const std::vector<Paragraph>& paragraphs, double characters) {
    double height = 0;
    for (std::size_t i = 0; i < paragraphs.size(); ++i) {
        const ParagraphLook& look = lookOf(paragraphs[i].kind);
        const double inLine = MarkdownHeights::inLine(characters, look.fontSize, look.indent);
        height += MarkdownHeights::lines(static_cast<double>(paragraphs[i].length()), inLine) *
            MarkdownHeights::lineHeight(look);
        if (i > 0)
            height += spaceBetween(paragraphs[i - 1], paragraphs[i]);
    }
    return height;
}

}

double PartHeights::heightOf(const QAbstractItemModel& model, int row) const {
    const auto* parts = qobject_cast<const AnswerParts*>(&model);
    if (!parts)
        return 0;
    const double characters = m_width / std::max(1.0, m_characterWidth);
    const auto lineFeeds = [&](int role) {
        return static_cast<double>(parts->data(parts->index(row), role).toString().count(u'\n') + 1);
    };
    double height = 0; // for text of 13 pixels
    switch (parts->kind(row)) {
    case AnswerPartKind::text: height = textHeight(parts->paragraphs(row), characters); break;
    case AnswerPartKind::code:
        height = MarkdownHeights::aroundCode + MarkdownHeights::codeLine * lineFeeds(AnswerParts::CodeRole);
        break;
    case AnswerPartKind::latex: height = MarkdownHeights::formula; break;
    case AnswerPartKind::mermaid: height = MarkdownHeights::diagram; break;
    case AnswerPartKind::table: {
        const Markdown::Block* block = parts->special(row);
        const auto* table = block ? block->as<Markdown::Block::Table>() : nullptr;
        height = MarkdownHeights::tableRow * (table ? static_cast<double>(table->rows.size()) + 1 : 1);
        break;
    }
    case AnswerPartKind::image:
    case AnswerPartKind::video:
    case AnswerPartKind::generating: height = MarkdownHeights::picture; break;
    case AnswerPartKind::music:
    case AnswerPartKind::file:
    case AnswerPartKind::artifact:
    case AnswerPartKind::search:
    case AnswerPartKind::searching: height = MarkdownHeights::card; break;
    }
    return height * m_textSize / 13;
}

}
