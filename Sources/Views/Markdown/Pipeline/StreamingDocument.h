#pragma once

#include "Cleaners.h"
#include "Segment.h"

#include <memory>

namespace Korvi::Markdown {

// What became of the segments by one update. Segments before `firstChangedSegment` are as they were; from there on
// `removed` old ones gave way to `added` new ones.
// If `continues`, the segment at `firstChangedSegment` is the same one as before, with another end, and is counted in
// neither number. `kept` says how much of it is as it was: text blocks of a text segment, rows of a table, UTF-16 units
// of a code block's or diagram's code, of a formula, or of a special paragraph's content. What lies behind is new.
// Of a text segment's block number `kept`, if it was there before, the first `keptCharacters` UTF-16 units of its runs
// are as they were, in their styles, and so is its marker; 0 if it is a new one or of another kind.
struct Change {
    qsizetype firstChangedSegment = 0;
    qsizetype removed = 0;
    qsizetype added = 0;
    bool continues = false;
    qsizetype kept = 0;
    qsizetype keptCharacters = 0;
    bool citationsChanged = false;

    bool isEmpty() const { return removed == 0 && added == 0 && !continues && !citationsChanged; }
    bool operator==(const Change&) const = default;
};

// The segments of an answer that still grows. At every moment they are groupBlocksIntoSegments(clean(whole text)),
// and the citations clean()'s; but a piece that is appended costs what is still open at the end, not what is finished.
// While a text is only set, or after settle(), nothing but the text and its segments is kept in memory.
class StreamingDocument {
public:
    StreamingDocument();
    ~StreamingDocument();
    StreamingDocument(StreamingDocument&&) noexcept;
    StreamingDocument& operator=(StreamingDocument&&) noexcept;

    // A text that begins with the old one counts as appended to it. Any other replaces it; what is equal at the
    // beginning of the segments is left out of the change all the same.
    Change setText(const QString& text);
    Change append(QStringView piece);
    // The answer is complete: gives back what only growth needs. append() may still follow; it costs one parse.
    void settle();

    const QString& text() const; // as it came, not cleaned
    // Do not keep copies of a segment that grows: they make each growth copy the whole of it.
    const std::vector<Segment>& segments() const;
    bool isTailOpen() const;                              // code or a formula at the end waits for what closes it
    const std::vector<CitationSource>& citations() const; // sorted by index

private:
    struct State;
    std::unique_ptr<State> state;
};

}
