#include "ChangeCheck.h"

#include "Match.h"

namespace Korvi::Markdown {

namespace {

// The first characters of a text block in their styles.
QString styledStart(const TextBlock& block, qsizetype characters) {
    QString start = block.marker;
    for (const Run& run : block.runs) {
        const QString piece = run.text.left(characters);
        for (const QChar c : piece)
            start += QString(c) + QChar(u'0' + char16_t(run.style));
        characters -= piece.size();
    }
    return characters == 0 ? start : QString("too short");
}

QString textStart(const QString& text, qsizetype kept) {
    return kept <= text.size() ? text.first(kept) : QString("too short");
}

// What is kept of a special block, written down.
QString keptOf(const Block& block, qsizetype kept) {
    return match(
        block.value,
        [&](const Block::CodeBlock& b) { return b.language.value_or("-") + '\n' + textStart(b.code, kept); },
        [&](const Block::MermaidBlock& b) { return textStart(b.code, kept); },
        [&](const Block::LatexBlock& b) { return textStart(b.formula, kept); },
        [&](const Block::Paragraph& b) { return textStart(b.content, kept); },
        [&](const Block::Table& b) {
            QStringList lines{b.headers.join('|')};
            for (qsizetype i = 0; i < kept; ++i)
                lines += i < qsizetype(b.rows.size()) ? b.rows[std::size_t(i)].join('|') : QString("too few");
            return lines.join('\n') + QString::number(b.alignments.size());
        },
        [&](const auto&) { return QString("does not continue"); });
}

}

QString faultOf(const Change& change, const std::vector<Segment>& before, const std::vector<Segment>& after) {
    const qsizetype first = change.firstChangedSegment;
    const qsizetype counted = first + (change.continues ? 1 : 0);
    const auto beforeCount = qsizetype(before.size());
    const auto afterCount = qsizetype(after.size());
    if (first < 0 || counted + change.removed != beforeCount || counted + change.added != afterCount)
        return "the numbers do not add up";
    if (!std::equal(before.begin(), before.begin() + first, after.begin()))
        return "a segment in front of the change is another one";
    if (!change.continues)
        return {};
    const Segment& old = before[std::size_t(first)];
    const Segment& now = after[std::size_t(first)];
    if (old.index() != now.index())
        return "a segment of another kind continues";
    if (const auto* special = std::get_if<SpecialSegment>(&old)) {
        const Block& made = std::get<SpecialSegment>(now).block;
        const bool isSame = special->block.value.index() == made.value.index() &&
            keptOf(special->block, change.kept) == keptOf(made, change.kept);
        return isSame ? QString() : "a special block is not kept as told";
    }
    const auto& oldBlocks = std::get<TextSegment>(old).blocks;
    const auto& nowBlocks = std::get<TextSegment>(now).blocks;
    if (change.kept > qsizetype(std::min(oldBlocks.size(), nowBlocks.size())) ||
        !std::equal(oldBlocks.begin(), oldBlocks.begin() + change.kept, nowBlocks.begin()))
        return "a text block is not kept as told";
    if (change.keptCharacters == 0)
        return {};
    const auto open = std::size_t(change.kept);
    if (open >= oldBlocks.size() || open >= nowBlocks.size() ||
        styledStart(oldBlocks[open], change.keptCharacters) != styledStart(nowBlocks[open], change.keptCharacters))
        return "characters are not kept as told";
    return {};
}

}
