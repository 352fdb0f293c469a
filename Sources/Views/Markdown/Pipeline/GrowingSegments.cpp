#include "GrowingSegments.h"

#include "Characters.h"
#include "TableText.h"

#include <algorithm>

namespace Korvi::Markdown {

using namespace Qt::Literals;
using Kind = BlockPlace::Kind;

namespace {

constexpr qsizetype bookmarkDistance = 512;

bool isTrimmed(Kind kind, QChar c) {
    return kind == Kind::code ? isLineTerminator(c.unicode()) : c.isSpace();
}

qsizetype trimmedEnd(QStringView text, const BlockPlace& place) {
    qsizetype end = place.inner.to;
    while (end > place.inner.from && isTrimmed(place.kind, text[end - 1]))
        --end;
    return end;
}

// Where the last row of a table begins, or would begin.
qsizetype lastRow(QStringView text, const BlockPlace& table) {
    if (table.inner.to >= table.lines.to)
        return table.inner.to + 1;
    return text.first(table.lines.to).lastIndexOf(u'\n') + 1;
}

// The text of a block that can be made longer in place.
QString* textOf(Block& block) {
    if (auto* code = block.as<Block::CodeBlock>())
        return &code->code;
    if (auto* diagram = block.as<Block::MermaidBlock>())
        return &diagram->code;
    if (auto* formula = block.as<Block::LatexBlock>())
        return &formula->formula;
    return nullptr;
}

bool hasMarkers(QStringView text) {
    return std::any_of(
        text.begin(), text.end(), [](QChar c) { return c == u'*' || c == u'`' || c == u'$' || c == u'\n'; });
}

}

GrowingSegments::GrowingSegments() {
    bookmarks.push_back({0, 0, LineParser(places, codeParts)});
}

Change GrowingSegments::update(const QString& text, qsizetype kept) {
    Change change;
    if (appendToParagraph(text, kept, change))
        return change;

    if (settled.to > kept)
        settled = {};
    const std::vector<BlockPlace> old = findBlocks(text, kept);
    const std::size_t base = bookmarkPlaces;
    std::size_t same = 0;
    while (same < old.size() && base + same < places.size() && old[same] == places[base + same] &&
        old[same].lines.to <= kept)
        ++same;
    const bool isUnchanged = same == old.size() && base + same == places.size();

    const auto oldCount = qsizetype(all().size());
    std::vector<Piece> gone = takePieces(base + same);
    const auto keptCount = qsizetype(all().size());
    const TextSegment* openText = segments.openText();
    const qsizetype keptBlocks = openText ? qsizetype(openText->blocks.size()) : 0;

    std::optional<Reused> reused;
    std::size_t next = base + same;
    if (same + 1 == old.size() && next < places.size() && gone.size() == 1)
        reused = lengthen(text, old[same], places[next], kept, gone.front());
    if (reused) {
        segments.append(std::move(gone.front()));
        pieceCounts.push_back(1);
        ++next;
    }
    const bool isEndKnown = isUnchanged || (reused && next == places.size());
    for (; next < places.size(); ++next) {
        std::vector<Block> blocks;
        appendBlocks(text, places[next], codeParts, blocks);
        pieceCounts.push_back(qsizetype(blocks.size()));
        for (Block& block : blocks)
            segments.append(std::move(block));
    }
    if (!isEndKnown)
        rememberEnd(text);
    textSize = text.size();
    isPlainParagraph = endsInPlainParagraph(text);
    return changeOf({oldCount, keptCount, keptBlocks, gone, reused}, all());
}

std::vector<BlockPlace> GrowingSegments::findBlocks(QStringView text, qsizetype kept) {
    while (bookmarks.back().from > kept)
        bookmarks.pop_back();
    bookmarkPlaces = bookmarks.back().places;
    const auto rest = places.begin() + qsizetype(bookmarkPlaces);
    std::vector<BlockPlace> old(rest, places.end());
    places.erase(rest, places.end());

    LineParser parser = bookmarks.back().parser;
    qsizetype from = bookmarks.back().from;
    for (qsizetype newLine = text.indexOf(u'\n', from); newLine >= 0; newLine = text.indexOf(u'\n', from)) {
        parser.read(text, {from, newLine});
        from = newLine + 1;
        addBookmark({from, places.size(), parser});
    }
    parser.read(text, {from, text.size()});
    isTailOpen = parser.isOpen();
    parser.finish();
    return old;
}

void GrowingSegments::addBookmark(const Bookmark& bookmark) {
    const std::size_t count = bookmarks.size();
    if (count >= 2 && bookmark.from - bookmarks[count - 2].from < bookmarkDistance)
        bookmarks.pop_back();
    bookmarks.push_back(bookmark);
}

std::vector<Piece> GrowingSegments::takePieces(std::size_t firstPlace) {
    std::vector<Piece> taken;
    for (; pieceCounts.size() > firstPlace; pieceCounts.pop_back()) {
        for (qsizetype i = 0; i < pieceCounts.back(); ++i)
            taken.push_back(segments.takeLast());
    }
    std::reverse(taken.begin(), taken.end());
    return taken;
}

bool GrowingSegments::endsInPlainParagraph(QStringView text) {
    const TextSegment* run = segments.openText();
    if (!run || places.back().kind != Kind::paragraph || places.back().lines.to != text.size() ||
        pieceCounts.back() != 1 || text.back().isSpace())
        return false;
    // A line that begins with a letter is nothing but a line of a paragraph, whatever follows.
    const QStringView line = trimmedBlanks(text.sliced(bookmarks.back().from));
    const QString& content = run->blocks.back().content;
    return !line.isEmpty() && line.front().isLetter() && !content.contains(u'$') && !content.contains(u"!["_s);
}

bool GrowingSegments::appendToParagraph(QStringView text, qsizetype kept, Change& change) {
    if (!isPlainParagraph || kept != textSize || text.size() == kept)
        return false;
    const QStringView piece = text.sliced(kept);
    if (piece.back().isSpace() || hasMarkers(piece) || text.sliced(kept - 1).contains(u"!["_s))
        return false;
    auto& blocks = segments.openText()->blocks;
    TextBlock& paragraph = blocks.back();
    change.firstChangedSegment = qsizetype(all().size()) - 1;
    change.continues = true;
    change.kept = qsizetype(blocks.size()) - 1;
    for (const Run& run : paragraph.runs)
        change.keptCharacters += run.text.size();
    if (paragraph.runs.empty() || paragraph.runs.back().style != Style::base)
        paragraph.runs.push_back({});
    paragraph.runs.back().text.append(piece);
    paragraph.content.append(piece);
    places.back().lines.to = textSize = text.size();
    return true;
}

std::optional<Reused> GrowingSegments::lengthen(
    QStringView text, const BlockPlace& old, const BlockPlace& now, qsizetype kept, Piece& piece) {
    if (auto* paragraph = std::get_if<TextBlock>(&piece)) {
        const bool isSame = old.kind == Kind::paragraph && now.kind == old.kind && now.lines.from == old.lines.from;
        return isSame ? lengthenParagraph(text, now, *paragraph) : std::nullopt;
    }
    auto* block = std::get_if<Block>(&piece);
    const bool isSameStart = old.kind == now.kind && old.lines.from == now.lines.from &&
        old.inner.from == now.inner.from && old.firstPart == now.firstPart && old.lastPart == now.lastPart;
    if (!block || !isSameStart || openEnd < 0 || now.inner.from > kept)
        return {};
    if (now.kind == Kind::code || (now.kind == Kind::formula && !now.isClosed && !old.isClosed))
        return lengthenText(text, now, kept, *textOf(*block));
    if (now.kind == Kind::table && old.inner == now.inner && now.inner.to < kept)
        return lengthenTable(text, now, kept, *block->as<Block::Table>());
    return {};
}

std::optional<Reused> GrowingSegments::lengthenText(
    QStringView text, const BlockPlace& now, qsizetype kept, QString& content) {
    const qsizetype end = trimmedEnd(text, now);
    qsizetype common = std::min({openEnd, kept, end});
    if (common > 0 && text[common - 1].isHighSurrogate())
        --common;
    // Blanks at the end of a formula's first line are not in its content once another line follows.
    if (now.kind == Kind::formula && common <= now.firstLineEnd && now.firstLineEnd < end)
        return {};
    // Up to here the content is a part of the text as it stands.
    const qsizetype start = now.firstPart == now.lastPart ? openEnd - content.size() : now.inner.from;
    if (common <= start)
        return {};
    const bool isSame = common == openEnd && common == end;
    content.chop(openEnd - common);
    const qsizetype keptLength = content.size();
    content.append(text.sliced(common, end - common));
    openEnd = end;
    return {{keptLength, isSame}};
}

std::optional<Reused> GrowingSegments::lengthenParagraph(
    QStringView text, const BlockPlace& now, TextBlock& paragraph) {
    if (settled.from != now.lines.from || settled.to > now.lines.to)
        settled = {.from = now.lines.from, .to = now.lines.from};
    const ParagraphRest rest = restOfParagraph(text, {settled.to, now.lines.to}, settled.content == 0);
    const bool hasImages = rest.content.contains(u"!["_s);
    if (hasImages || hasInlineLatex(rest.content) || settled.content + rest.content.size() == 0)
        return {};
    if (QStringView(paragraph.content).sliced(settled.content) == rest.content)
        return {{0, true}};

    SettledInline more;
    const std::vector<Run> runs = parseInlineMarkdown(rest.content, &more);
    // What was there instead. The last settled run is of the base style, and takes more of it in.
    auto& all = paragraph.runs;
    std::vector<Run> before;
    if (settled.runs > 0) {
        QString& last = all[std::size_t(settled.runs - 1)].text;
        if (last.size() > settled.lastRun)
            before.push_back({last.sliced(settled.lastRun), Style::base});
        last.truncate(settled.lastRun);
    }
    std::move(all.begin() + settled.runs, all.end(), std::back_inserter(before));
    all.resize(std::size_t(settled.runs));
    const Reused reused{settled.characters + equalCharacters(before, runs), false};

    const bool isJoined = settled.runs > 0 && !runs.empty() && runs.front().style == Style::base;
    if (isJoined)
        all.back().text.append(runs.front().text);
    all.insert(all.end(), runs.begin() + isJoined, runs.end());
    paragraph.content.truncate(settled.content);
    paragraph.content.append(rest.content);
    if (more.length > 0 && !QStringView(rest.content).first(more.length).contains(u'$')) {
        settled.to = rest.placeOf(more.length);
        settle(more, runs, isJoined);
    }
    return reused;
}

void GrowingSegments::settle(const SettledInline& more, const std::vector<Run>& runs, bool isJoined) {
    settled.content += more.length;
    settled.characters += more.inRun;
    for (qsizetype i = 0; i < more.runs; ++i)
        settled.characters += runs[std::size_t(i)].text.size();
    settled.lastRun = more.inRun + (isJoined && more.runs == 0 ? settled.lastRun : 0);
    settled.runs += more.runs + (isJoined ? 0 : 1);
}

std::optional<Reused> GrowingSegments::lengthenTable(
    QStringView text, const BlockPlace& now, qsizetype kept, Block::Table& table) {
    if (kept < openEnd)
        return {};
    auto& rows = table.rows;
    std::optional<QStringList> last;
    if (!rows.empty()) {
        last = std::move(rows.back());
        rows.pop_back();
    }
    std::size_t keptRows = rows.size();
    if (openEnd <= now.lines.to) {
        for (const QStringView row : text.sliced(openEnd, now.lines.to - openEnd).tokenize(u'\n'))
            rows.push_back(parseTableRow(row));
    }
    const bool isLastKept = last && rows.size() > keptRows && rows[keptRows] == *last;
    keptRows += isLastKept ? 1 : 0;
    openEnd = lastRow(text, now);
    return {{qsizetype(keptRows), keptRows == rows.size() && (isLastKept || !last)}};
}

void GrowingSegments::rememberEnd(QStringView text) {
    openEnd = -1;
    if (places.empty())
        return;
    const BlockPlace& last = places.back();
    if (last.kind == Kind::table) {
        openEnd = lastRow(text, last);
    } else if (last.kind == Kind::code || last.kind == Kind::formula) {
        const qsizetype end = trimmedEnd(text, last);
        openEnd = end > last.inner.from ? end : -1;
    }
}

}
