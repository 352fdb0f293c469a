#include "StreamingDocument.h"

#include "Segments.h"

namespace Korvi::Markdown {

struct StreamingDocument::State {
    QString text;
    std::vector<Segment> segments;
    std::vector<CitationSource> citations;
};

StreamingDocument::StreamingDocument()
    : state(std::make_unique<State>()) {}
StreamingDocument::~StreamingDocument() = default;
StreamingDocument::StreamingDocument(StreamingDocument&&) noexcept = default;
StreamingDocument& StreamingDocument::operator=(StreamingDocument&&) noexcept = default;

Change StreamingDocument::setText(const QString& text) {
    Change change{.removed = qsizetype(state->segments.size())};
    state->text = text;
    Cleaned cleaned = clean(text);
    state->segments = groupBlocksIntoSegments(cleaned.text);
    change.citationsChanged = state->citations != cleaned.citations;
    state->citations = std::move(cleaned.citations);
    change.added = qsizetype(state->segments.size());
    return change;
}

Change StreamingDocument::append(QStringView piece) {
    return setText(state->text + piece.toString());
}
void StreamingDocument::settle() {}

const QString& StreamingDocument::text() const {
    return state->text;
}
const std::vector<Segment>& StreamingDocument::segments() const {
    return state->segments;
}
const std::vector<CitationSource>& StreamingDocument::citations() const {
    return state->citations;
}

}
