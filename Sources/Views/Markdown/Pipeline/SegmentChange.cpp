#include "SegmentChange.h"

#include <algorithm>

namespace Korvi::Markdown {

namespace {

template <class List>
qsizetype equalAtStart(const List& a, const List& b) {
    return std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
}

qsizetype equalText(QStringView a, QStringView b) {
    const qsizetype equal = equalAtStart(a, b);
    return equal > 0 && a[equal - 1].isHighSurrogate() ? equal - 1 : equal;
}

qsizetype equalCharacters(const TextBlock& a, const TextBlock& b) {
    const bool isSame =
        a.kind == b.kind && a.level == b.level && a.marker == b.marker && a.hasLeadingEmoji == b.hasLeadingEmoji;
    return isSame ? equalCharacters(a.runs, b.runs) : 0;
}

// How much of a special block stays, as Change counts it; nothing if they are not the same one.
std::optional<qsizetype> equalPart(const Block& a, const Block& b) {
    if (a.value.index() != b.value.index())
        return {};
    if (const auto* code = a.as<Block::CodeBlock>()) {
        const auto& other = *b.as<Block::CodeBlock>();
        return code->language == other.language ? std::optional(equalText(code->code, other.code)) : std::nullopt;
    }
    if (const auto* table = a.as<Block::Table>()) {
        const auto& other = *b.as<Block::Table>();
        const bool isSame = table->headers == other.headers && table->alignments == other.alignments;
        return isSame ? std::optional(equalAtStart(table->rows, other.rows)) : std::nullopt;
    }
    if (const auto* diagram = a.as<Block::MermaidBlock>())
        return equalText(diagram->code, b.as<Block::MermaidBlock>()->code);
    if (const auto* formula = a.as<Block::LatexBlock>())
        return equalText(formula->formula, b.as<Block::LatexBlock>()->formula);
    if (const auto* paragraph = a.as<Block::Paragraph>())
        return equalText(paragraph->content, b.as<Block::Paragraph>()->content);
    return {};
}

// Walks over pieces, the same way through the old and the new segments while these are equal.
struct Cursor {
    qsizetype segment; // the one we are in, or before
    qsizetype block;   // of a text segment: how many we have passed. 0: we are before `segment`

    void pass(bool isText) {
        if (isText) {
            ++block;
            return;
        }
        segment += block > 0 ? 2 : 1;
        block = 0;
    }
};

struct PiecePointer {
    const TextBlock* text = nullptr;
    const Block* special = nullptr;
};

PiecePointer pieceAt(const std::vector<Segment>& segments, Cursor cursor) {
    const auto textAt = [&](qsizetype segment) {
        return segment < qsizetype(segments.size()) ? std::get_if<TextSegment>(&segments[std::size_t(segment)])
                                                    : nullptr;
    };
    if (cursor.block > 0) {
        const TextSegment* run = textAt(cursor.segment);
        if (cursor.block < qsizetype(run->blocks.size()))
            return {.text = &run->blocks[std::size_t(cursor.block)]};
        ++cursor.segment;
    }
    if (cursor.segment >= qsizetype(segments.size()))
        return {};
    if (const TextSegment* run = textAt(cursor.segment))
        return {.text = &run->blocks.front()};
    return {.special = &std::get<SpecialSegment>(segments[std::size_t(cursor.segment)]).block};
}

PiecePointer pointerTo(const Piece& piece) {
    return {.text = std::get_if<TextBlock>(&piece), .special = std::get_if<Block>(&piece)};
}

bool isEqual(PiecePointer a, PiecePointer b) {
    return (a.text && b.text && *a.text == *b.text) || (a.special && b.special && *a.special == *b.special);
}

}

qsizetype equalCharacters(const std::vector<Run>& a, const std::vector<Run>& b) {
    const auto run = std::size_t(equalAtStart(a, b));
    qsizetype characters = 0;
    for (std::size_t i = 0; i < run; ++i)
        characters += a[i].text.size();
    if (run < a.size() && run < b.size() && a[run].style == b[run].style)
        characters += equalText(a[run].text, b[run].text);
    return characters;
}

Change changeOf(const Exchange& exchange, const std::vector<Segment>& now) {
    Cursor cursor{exchange.keptSegments - (exchange.keptBlocks > 0 ? 1 : 0), exchange.keptBlocks};
    std::size_t passed = 0;
    std::optional<Reused> reused = exchange.reused;
    if (reused && reused->isSame) {
        cursor.pass(std::holds_alternative<TextBlock>(exchange.gone[passed]));
        ++passed;
        reused.reset();
    }
    while (!reused && passed < exchange.gone.size() && isEqual(pointerTo(exchange.gone[passed]), pieceAt(now, cursor)))
        cursor.pass(std::holds_alternative<TextBlock>(exchange.gone[passed++]));

    const PiecePointer old = passed < exchange.gone.size() ? pointerTo(exchange.gone[passed]) : PiecePointer();
    const PiecePointer made = pieceAt(now, cursor);
    Change change;
    const auto nowCount = qsizetype(now.size());
    if (!old.text && !old.special && !made.text && !made.special) {
        change.firstChangedSegment = nowCount;
        return change;
    }
    change.firstChangedSegment = cursor.segment;
    if (cursor.block > 0 && !old.text && !made.text) {
        // The text goes on as it was; what follows it does not.
        ++change.firstChangedSegment;
        cursor.block = 0;
    }
    if (cursor.block > 0) {
        change.continues = true;
        change.kept = cursor.block;
    } else if (old.text && made.text) {
        change.continues = true;
    } else if (old.special && made.special) {
        const auto kept = reused ? std::optional(reused->kept) : equalPart(*old.special, *made.special);
        change.continues = kept.has_value();
        change.kept = kept.value_or(0);
    }
    if (old.text && made.text)
        change.keptCharacters = reused ? reused->kept : equalCharacters(*old.text, *made.text);
    const qsizetype counted = change.firstChangedSegment + (change.continues ? 1 : 0);
    change.removed = exchange.oldSegments - counted;
    change.added = nowCount - counted;
    return change;
}

Change changeBetween(const std::vector<Segment>& old, const std::vector<Segment>& now) {
    const qsizetype equal = equalAtStart(old, now);
    return {
        .firstChangedSegment = equal, .removed = qsizetype(old.size()) - equal, .added = qsizetype(now.size()) - equal};
}

}
