#include "AnswerParts.h"

#include "ParagraphTable.h"
#include "ParagraphsOf.h"
#include "PartData.h"

#include <QSet>

#include <algorithm>
#include <limits>

namespace Korvi {

namespace {

constexpr double gapAround = 12; // what is not text

}

bool AnswerParts::Part::isOfSame(const Part& other) const {
    return kind == other.kind && source == other.source && segment == other.segment && range == other.range;
}

void AnswerParts::setContent(const QVariant& content) {
    m_content = content;
    if (content.canConvert<MessageHandle>()) {
        m_text = {};
        std::vector<const MessageContent*> blocks;
        const ChatMessage* message = content.value<MessageHandle>().message();
        if (message && message->content) {
            for (const MessageContent& block : *message->content) {
                const auto* text = block.as<MessageContent::Text>();
                if (partKind(block) && !(text && text->text.isEmpty()))
                    blocks.push_back(&block);
            }
        }
        take(blocks);
    } else {
        take(m_text.becoming(content));
    }
    updateOpenEnd();
    emit contentChanged();
}

void AnswerParts::take(const SharedText& text) {
    const SharedText before = std::exchange(m_text, text);
    if (!before.isEmpty() && text.continues(before)) {
        const Markdown::Change change = m_sources.front().document->append(text.view().sliced(before.size()));
        if (change.removed || change.added || change.continues)
            rebuild({0, change});
        if (change.citationsChanged)
            emit citationsChanged();
    } else if (text.isEmpty()) {
        take(std::vector<const MessageContent*>());
    } else {
        const MessageContent whole{MessageContent::Text{text.toString()}};
        take(std::vector{&whole});
    }
}

void AnswerParts::take(const std::vector<const MessageContent*>& blocks) {
    std::optional<Begin> begin;
    bool citationsChanged = false;
    const auto note = [&](std::size_t source, const Markdown::Change& change) {
        citationsChanged = citationsChanged || change.citationsChanged;
        if (!begin && (change.removed || change.added || change.continues))
            begin = Begin{static_cast<int>(source), change};
    };
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const auto* text = blocks[i]->as<MessageContent::Text>();
        const bool known = i < m_sources.size() && m_sources[i].document.has_value() == (text != nullptr);
        if (!known) {
            m_sources.resize(std::min(i, m_sources.size()));
            m_sources.emplace_back();
        }
        Source& source = m_sources[i];
        if (text) {
            if (!source.document)
                source.document.emplace();
            const QString& shown = source.document->text();
            // A text that only grew is not shared: that would make its next growth copy it.
            Markdown::Change change = !shown.isEmpty() && text->text.startsWith(shown)
                ? source.document->append(QStringView(text->text).sliced(shown.size()))
                : source.document->setText(text->text);
            if (!known)
                change.added = std::max<qsizetype>(change.added, 1);
            note(i, change);
        } else if (!known || source.block != *blocks[i]) {
            source.block = *blocks[i];
            note(i, {.added = 1});
        }
    }
    if (m_sources.size() > blocks.size()) {
        m_sources.resize(blocks.size());
        note(blocks.size(), {.removed = 1, .citationsChanged = true});
    }
    if (begin)
        rebuild(*begin);
    if (citationsChanged)
        emit this->citationsChanged();
}

void AnswerParts::rebuild(const Begin& begin) {
    const auto segment = static_cast<int>(begin.change.firstChangedSegment);
    const auto first = std::partition_point(m_parts.begin(), m_parts.end(), [&](const Part& part) {
        return part.source < begin.source || (part.source == begin.source && part.segment < segment);
    });
    auto kept = static_cast<std::size_t>(first - m_parts.begin());
    int paragraph = 0;
    qsizetype from = 0;
    if (begin.change.continues) {
        // Where a part ends hangs on the paragraph after it, too.
        for (std::size_t i = kept; i < m_parts.size(); ++i) {
            const Part& part = m_parts[i];
            if (part.source != begin.source || part.segment != segment || part.range.first >= begin.change.kept)
                break;
            if (part.kind == AnswerPartKind::text && part.range.from == 0) {
                kept = i;
                paragraph = part.range.first;
            }
        }
        const qsizetype same = charactersKept(begin);
        for (std::size_t i = kept; i < m_parts.size(); ++i) {
            const Part& part = m_parts[i];
            if (part.source != begin.source || part.segment != segment || part.range.first > begin.change.kept)
                break;
            if (part.range.first == begin.change.kept && staysCut(part.range, same)) {
                kept = i + 1;
                paragraph = part.range.first;
                from = part.range.to;
            }
        }
    }
    const std::optional<LongParagraph> before = std::exchange(m_long, std::nullopt);
    std::vector<Part> parts;
    if (begin.source < static_cast<int>(m_sources.size())) {
        const Source& source = m_sources[static_cast<std::size_t>(begin.source)];
        if (source.document && segment < static_cast<int>(source.document->segments().size())) {
            appendSegment(parts, begin.source, segment, paragraph, from);
            appendSource(parts, begin.source, segment + 1);
        } else if (!source.document) {
            appendSource(parts, begin.source, 0);
        }
        for (int next = begin.source + 1; next < static_cast<int>(m_sources.size()); ++next)
            appendSource(parts, next, 0);
    }
    replaceParts(kept, std::move(parts), begin, before && m_long ? commonLength(*before, *m_long) : 0);
}

// Of the first text block that is not quite as it was, as drawn.
qsizetype AnswerParts::charactersKept(const Begin& begin) const {
    const auto& segments = m_sources[static_cast<std::size_t>(begin.source)].document->segments();
    const auto* text =
        std::get_if<Markdown::TextSegment>(&segments[static_cast<std::size_t>(begin.change.firstChangedSegment)]);
    if (!text || begin.change.kept >= static_cast<qsizetype>(text->blocks.size()) || begin.change.keptCharacters == 0)
        return 0;
    return text->blocks[static_cast<std::size_t>(begin.change.kept)].marker.size() + begin.change.keptCharacters;
}

void AnswerParts::appendSegment(std::vector<Part>& parts, int source, int segment, int firstParagraph, qsizetype from) {
    const Markdown::Segment& shown =
        m_sources[static_cast<std::size_t>(source)].document->segments()[static_cast<std::size_t>(segment)];
    if (!isText(shown)) {
        parts.push_back({partKind(shown), source, segment, {}, 0});
        return;
    }
    const auto append = [&](const std::vector<PartRange>& ranges) {
        for (const PartRange& range : ranges)
            parts.push_back({AnswerPartKind::text, source, segment, range, 0});
    };
    if (std::holds_alternative<Markdown::SpecialSegment>(shown)) {
        m_long.emplace(LongParagraph::Place{source, segment}, paragraphOf(shown, 0));
        append(cutParagraph(0, m_long->whole().shown()));
        return;
    }
    const auto lengthOf = [&](int number) { return paragraphLength(shown, number); };
    const auto textOf = [&](int number, qsizetype begin) {
        return paragraphOf(shown, number, begin, std::numeric_limits<qsizetype>::max()).shown();
    };
    append(cutText(firstParagraph, from, paragraphCount(shown), lengthOf, textOf));
}

void AnswerParts::appendSource(std::vector<Part>& parts, int source, int firstSegment) {
    const Source& from = m_sources[static_cast<std::size_t>(source)];
    if (!from.document) {
        parts.push_back({*partKind(from.block), source, 0, {}, 0});
        return;
    }
    const auto count = static_cast<int>(from.document->segments().size());
    for (int segment = firstSegment; segment < count; ++segment)
        appendSegment(parts, source, segment, 0, 0);
}

void AnswerParts::replaceParts(std::size_t kept, std::vector<Part> parts, const Begin& begin, qsizetype alike) {
    const std::size_t before = m_parts.size();
    const std::size_t after = kept + parts.size();
    const std::size_t common = std::min(before, after);
    std::size_t firstChanged = common;
    if (before > after)
        beginRemoveRows({}, static_cast<int>(after), static_cast<int>(before) - 1);
    for (std::size_t i = kept; i < common; ++i) {
        const Part& part = parts[i - kept];
        const bool isKept = begin.change.continues && part.source == begin.source &&
            part.segment == begin.change.firstChangedSegment && part.range.last < begin.change.kept;
        const bool isAlike = alike > 0 && part.range.first == part.range.last && part.range.to <= alike &&
            LongParagraph::Place{part.source, part.segment} == m_long->place();
        if (part.kind == AnswerPartKind::text && (isKept || isAlike) && part.isOfSame(m_parts[i]))
            continue;
        m_parts[i] = part;
        m_parts[i].revision = ++m_revision;
        firstChanged = std::min(firstChanged, i);
    }
    if (before > after) {
        m_parts.resize(after);
        endRemoveRows();
    }
    if (firstChanged < common)
        emit dataChanged(index(static_cast<int>(firstChanged)), index(static_cast<int>(common) - 1));
    if (after > before) {
        beginInsertRows({}, static_cast<int>(before), static_cast<int>(after) - 1);
        for (std::size_t i = common; i < after; ++i) {
            m_parts.push_back(parts[i - kept]);
            m_parts.back().revision = ++m_revision;
        }
        endInsertRows();
    }
    if (before != after) {
        // What was open and is no longer the end, and the other way round.
        const QModelIndex end = index(static_cast<int>(common) - 1);
        if (m_isStreaming && end.isValid())
            emit dataChanged(end, end, {IsOpenRole});
        emit countChanged();
    }
    if (kept == 0)
        updateBeginning();
}

void AnswerParts::setStreaming(bool streaming) {
    if (streaming == m_isStreaming)
        return;
    m_isStreaming = streaming;
    if (!streaming) {
        for (Source& source : m_sources) {
            if (source.document)
                source.document->settle();
        }
    }
    updateOpenEnd();
    emit isStreamingChanged();
}

bool AnswerParts::isOpen(int row) const {
    if (!m_isStreaming || row != count() - 1)
        return false;
    const AnswerPartKind kind = this->kind(row);
    const bool isClosedByItself =
        kind == AnswerPartKind::code || kind == AnswerPartKind::mermaid || kind == AnswerPartKind::latex;
    const Part& part = m_parts.back();
    return !isClosedByItself || !segment(part) ||
        m_sources[static_cast<std::size_t>(part.source)].document->isTailOpen();
}

void AnswerParts::updateOpenEnd() {
    const int end = count() - 1;
    const bool isOpen = end >= 0 && this->isOpen(end);
    if (std::exchange(m_isEndOpen, isOpen) != isOpen && end >= 0)
        emit dataChanged(index(end), index(end), {IsOpenRole});
}

QVariantList AnswerParts::citations() const {
    std::vector<Markdown::CitationSource> all;
    QSet<QString> urls;
    for (const Source& source : m_sources) {
        if (!source.document)
            continue;
        for (const Markdown::CitationSource& citation : source.document->citations()) {
            if (urls.contains(citation.url))
                continue;
            urls.insert(citation.url);
            all.push_back(citation);
        }
    }
    std::stable_sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.index < b.index; });
    QVariantList list;
    for (const Markdown::CitationSource& citation : all)
        list.append(QVariantMap{{QStringLiteral("index"), citation.index}, {QStringLiteral("url"), citation.url},
            {QStringLiteral("domain"), citation.domain}});
    return list;
}

const Markdown::Segment* AnswerParts::segment(const Part& part) const {
    const auto source = static_cast<std::size_t>(part.source);
    const auto number = static_cast<std::size_t>(part.segment);
    if (source >= m_sources.size() || !m_sources[source].document)
        return nullptr;
    const std::vector<Markdown::Segment>& segments = m_sources[source].document->segments();
    if (number >= segments.size() || partKind(segments[number]) != part.kind)
        return nullptr;
    const bool fits = part.kind != AnswerPartKind::text || part.range.last < paragraphCount(segments[number]);
    return fits ? &segments[number] : nullptr;
}

std::vector<Paragraph> AnswerParts::paragraphs(int row) const {
    std::vector<Paragraph> all;
    if (row < 0 || row >= count() || kind(row) != AnswerPartKind::text)
        return all;
    const Part& part = m_parts[static_cast<std::size_t>(row)];
    const PartRange& range = part.range;
    const Markdown::Segment* from = segment(part);
    if (!from)
        return all;
    if (std::holds_alternative<Markdown::SpecialSegment>(*from)) {
        const LongParagraph::Place place{part.source, part.segment};
        if (!m_long || m_long->place() != place)
            m_long.emplace(place, paragraphOf(*from, 0));
        all.push_back(m_long->sliced(range.from, range.to));
        return all;
    }
    for (int number = range.first; number <= range.last; ++number) {
        const qsizetype begin = number == range.first ? range.from : 0;
        const qsizetype end = number == range.last ? range.to : std::numeric_limits<qsizetype>::max();
        all.push_back(paragraphOf(*from, number, begin, end));
    }
    return all;
}

const Markdown::Block* AnswerParts::special(int row) const {
    if (row < 0 || row >= count() || kind(row) == AnswerPartKind::text)
        return nullptr;
    const Part& part = m_parts[static_cast<std::size_t>(row)];
    const Markdown::Segment* from = segment(part);
    return from ? &std::get<Markdown::SpecialSegment>(*from).block : nullptr;
}

// The kind, and whether it continues, but nothing in it.
Paragraph AnswerParts::outline(int row, Edge edge) const {
    const Part& part = m_parts[static_cast<std::size_t>(row)];
    const Markdown::Segment* from = segment(part);
    if (!from)
        return {};
    const bool first = edge == Edge::top;
    return {paragraphKindOf(*from, first ? part.range.first : part.range.last), first && part.range.from > 0, {}};
}

double AnswerParts::gap(int row) const {
    if (row == 0)
        return 0;
    const bool isText = kind(row) == AnswerPartKind::text;
    if (isText && kind(row - 1) == AnswerPartKind::text)
        return spaceBetween(outline(row - 1, Edge::bottom), outline(row, Edge::top));
    // A formula of its own has room around it already.
    const bool isRoomy = kind(row) == AnswerPartKind::latex || kind(row - 1) == AnswerPartKind::latex;
    return (isRoomy ? 0 : gapAround) + (isText ? lookOf(outline(row, Edge::top).kind).before : 0);
}

int AnswerParts::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant AnswerParts::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count())
        return {};
    const int row = index.row();
    const Part& part = m_parts[static_cast<std::size_t>(row)];
    switch (role) {
    case KindRole: return QString(answerPartNames[static_cast<std::size_t>(part.kind)]);
    case GapRole: return gap(row);
    case IsOpenRole: return isOpen(row);
    case RevisionRole: return part.revision;
    default: break;
    }
    if (const Markdown::Block* block = special(row))
        return partData(*block, role);
    const auto source = static_cast<std::size_t>(part.source);
    if (part.kind != AnswerPartKind::text && source < m_sources.size() && !m_sources[source].document)
        return partData(m_sources[source].block, role);
    return {};
}

QHash<int, QByteArray> AnswerParts::roleNames() const {
    return {
        {KindRole, "kind"},
        {GapRole, "gap"},
        {IsOpenRole, "isOpen"},
        {RevisionRole, "revision"},
        {LanguageRole, "language"},
        {CodeRole, "code"},
        {FormulaRole, "formula"},
        {TableRole, "table"},
        {UrlRole, "url"},
        {AltRole, "alt"},
        {FilenameRole, "filename"},
        {MimetypeRole, "mimetype"},
        {QueryRole, "query"},
        {WhatRole, "what"},
        {BlockRole, "block"},
    };
}

}
