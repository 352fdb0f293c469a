#include "StreamingDocument.h"

#include "CleaningChain.h"
#include "GrowingSegments.h"
#include "Segments.h"

namespace Korvi::Markdown {

namespace {

// What only growth needs.
struct Growth {
    CleaningChain cleaned;
    GrowingSegments segments;

    Change append(QStringView piece) {
        const qsizetype kept = cleaned.append(piece);
        return segments.update(cleaned.text(), kept);
    }
};

}

struct StreamingDocument::State {
    QString text;
    std::vector<Segment> segments; // unless it grows
    std::vector<CitationSource> citations;
    std::unique_ptr<Growth> growth;
    bool isTailOpen = false;

    Change append(QStringView piece);
    Change replace(const QString& newText);
    bool takeCitations(std::vector<CitationSource> now);
};

bool StreamingDocument::State::takeCitations(std::vector<CitationSource> now) {
    if (now == citations)
        return false;
    citations = std::move(now);
    return true;
}

Change StreamingDocument::State::append(QStringView piece) {
    if (!growth) {
        growth = std::make_unique<Growth>();
        growth->append(text);
        segments = {};
    }
    const quint64 before = growth->cleaned.citations().revision();
    Change change = growth->append(piece);
    isTailOpen = growth->segments.endsOpen();
    text.append(piece);
    const CitationList& found = growth->cleaned.citations();
    if (found.revision() != before)
        change.citationsChanged = takeCitations(found.sorted());
    return change;
}

Change StreamingDocument::State::replace(const QString& newText) {
    Cleaned cleaned = clean(newText);
    ResolvedSegments now = resolvedSegments(cleaned.text);
    Change change = changeBetween(growth ? growth->segments.all() : segments, now.segments);
    growth.reset();
    text = newText;
    segments = std::move(now.segments);
    isTailOpen = now.isTailOpen;
    change.citationsChanged = takeCitations(std::move(cleaned.citations));
    return change;
}

StreamingDocument::StreamingDocument()
    : state(std::make_unique<State>()) {}
StreamingDocument::~StreamingDocument() = default;
StreamingDocument::StreamingDocument(StreamingDocument&&) noexcept = default;
StreamingDocument& StreamingDocument::operator=(StreamingDocument&&) noexcept = default;

Change StreamingDocument::setText(const QString& text) {
    // The first text is more likely a finished one than the beginning of one.
    if (state->text.isEmpty() || !text.startsWith(state->text))
        return state->replace(text);
    return append(QStringView(text).sliced(state->text.size()));
}

Change StreamingDocument::append(QStringView piece) {
    if (piece.isEmpty())
        return {.firstChangedSegment = qsizetype(segments().size())};
    return state->append(piece);
}

void StreamingDocument::settle() {
    if (!state->growth)
        return;
    state->segments = state->growth->segments.take();
    state->growth.reset();
}

const QString& StreamingDocument::text() const {
    return state->text;
}

const std::vector<Segment>& StreamingDocument::segments() const {
    return state->growth ? state->growth->segments.all() : state->segments;
}

bool StreamingDocument::isTailOpen() const {
    return state->isTailOpen;
}

const std::vector<CitationSource>& StreamingDocument::citations() const {
    return state->citations;
}

}
