#pragma once

#include "SyntaxHighlighter.h"

namespace Korvi {

// The colours of a piece of code that may grow at its end. What comes costs what there is of it, and at every moment the
// colours are those of all that was taken in, also where a string or a comment reaches over many lines.
class CodeColouring {
public:
    enum class Extent {
        wholeLines, // the last line may go on
        everything,
    };

    explicit CodeColouring(const QString& language = {});

    // Takes in what is new of `text`, which begins with what it was before. Returns from where on colours are new.
    qsizetype advance(QStringView text, Extent extent);

    // Those between two positions, which are the most it costs.
    std::vector<SyntaxHighlighter::Range> ranges(qsizetype from, qsizetype to) const;

private:
    struct Track {
        const SyntaxHighlighter::CompiledRule* rule;
        PatternMatcher::State state;
        std::vector<PatternMatcher::Match> matches;
        // Where the last whole line left both, to go on from if the text grows after all.
        PatternMatcher::State lineState;
        std::size_t lineMatches = 0;
    };

    qsizetype advanceTracks(QStringView text);

    std::vector<Track> m_tracks; // in the order of the rules
    qsizetype m_wholeLines = 0;  // characters taken in as such
    qsizetype m_everything = 0;  // characters taken in, at least those
};

}
