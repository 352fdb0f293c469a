// How AnswerParts are read: what is copied, told to a screen reader, and looked at one after the other.
#include "AnswerParts.h"

#include "Match.h"
#include "ParagraphsOf.h"
#include "Pipeline/TableText.h"

#include <algorithm>

namespace Korvi {

namespace {

constexpr qsizetype beginningLength = 200;

// Lines of a table, the header being number 0.
QString readRows(const Markdown::Block::Table& table, qsizetype from, qsizetype to) {
    Markdown::Block::Table part;
    from = std::max<qsizetype>(from, 0);
    to = std::min(to, static_cast<qsizetype>(table.rows.size()) + 1);
    if (from >= to)
        return {};
    part.headers = from == 0 ? table.headers : table.rows[static_cast<std::size_t>(from - 1)];
    part.rows.assign(table.rows.begin() + from, table.rows.begin() + to - 1);
    return Markdown::tableAsTsv(part);
}

QString readingOf(const Markdown::Block& block, qsizetype from, qsizetype to) {
    using Markdown::Block;
    return match(
        block.value, [&](const Block::CodeBlock& code) { return code.code.mid(from, to - from); },
        [&](const Block::Table& table) { return readRows(table, from, to); },
        [](const Block::MermaidBlock& diagram) { return QStringLiteral("```mermaid\n%1\n```").arg(diagram.code); },
        [](const Block::LatexBlock& formula) { return QStringLiteral("$$%1$$").arg(formula.formula); },
        [](const auto&) { return QString(); });
}

}

void AnswerParts::updateBeginning() {
    QString beginning;
    for (int row = 0; row < count() && beginning.isEmpty(); ++row)
        beginning =
            kind(row) == AnswerPartKind::image ? data(index(row), AltRole).toString() : read(row, 0, beginningLength);
    beginning.truncate(beginningLength);
    if (beginning == m_beginning)
        return;
    m_beginning = beginning;
    emit beginningChanged();
}

QString AnswerParts::read(int row, qsizetype from, qsizetype to) const {
    if (kind(row) != AnswerPartKind::text) {
        const Markdown::Block* block = special(row);
        if (from >= to)
            return {};
        if (kind(row) == AnswerPartKind::image) // in the text, or what a tool has made
            return QStringLiteral("![%1](%2)")
                .arg(data(index(row), AltRole).toString(), data(index(row), UrlRole).toString());
        return block ? readingOf(*block, from, to) : QString();
    }
    QString text;
    const std::vector<Paragraph> all = paragraphs(row);
    qsizetype begin = 0;
    for (std::size_t i = 0; i < all.size() && begin < to; ++i) {
        const qsizetype length = all[i].length();
        if (i > 0 && from < begin)
            text += separator(all[i - 1], all[i]);
        if (from < begin + length)
            text += all[i].read(from - begin, to - begin);
        begin += length + 1;
    }
    return text;
}

QString AnswerParts::separatorAbove(int row) const {
    if (kind(row) == AnswerPartKind::text && kind(row - 1) == AnswerPartKind::text)
        return separator(outline(row - 1, Edge::bottom), outline(row, Edge::top));
    return QStringLiteral("\n\n");
}

int AnswerParts::lengthOf(int row) const {
    if (row < 0 || row >= count())
        return 0;
    if (kind(row) != AnswerPartKind::text) {
        const Markdown::Block* block = special(row);
        if (!block)
            return kind(row) == AnswerPartKind::image ? 1 : 0;
        if (const auto* code = block->as<Markdown::Block::CodeBlock>())
            return static_cast<int>(code->code.size());
        const auto* table = block->as<Markdown::Block::Table>();
        return table ? static_cast<int>(table->rows.size()) + 1 : 1;
    }
    qsizetype length = -1;
    for (const Paragraph& paragraph : paragraphs(row))
        length += paragraph.length() + 1;
    return static_cast<int>(length);
}

QString AnswerParts::between(int firstPart, int from, int lastPart, int to) const {
    if (firstPart < 0 || lastPart >= count() || firstPart > lastPart)
        return {};
    QString text;
    bool any = false;
    for (int row = firstPart; row <= lastPart; ++row) {
        const qsizetype begin = row == firstPart ? from : 0;
        const qsizetype end = row == lastPart ? to : lengthOf(row);
        const QString piece = read(row, begin, end);
        if (piece.isEmpty())
            continue;
        if (any)
            text += separatorAbove(row);
        text += piece;
        any = true;
    }
    return text;
}

QString AnswerParts::plainText() const {
    return between(0, 0, count() - 1, lengthOf(count() - 1));
}

QString AnswerParts::markdown() const {
    QStringList texts;
    for (const Source& source : m_sources) {
        if (source.document)
            texts.append(source.document->text());
    }
    return texts.join(u'\n');
}

QVariantList AnswerParts::images() const {
    QVariantList images;
    for (int row = 0; row < count(); ++row) {
        if (kind(row) == AnswerPartKind::image)
            images.append(QVariantMap{{QStringLiteral("url"), data(index(row), UrlRole)},
                {QStringLiteral("alt"), data(index(row), AltRole)}});
    }
    return images;
}

}
