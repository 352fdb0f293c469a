#include "CodeColouring.h"

#include <algorithm>

namespace Korvi {

using Token = SyntaxHighlighter::Token;
using Range = SyntaxHighlighter::Range;

CodeColouring::CodeColouring(const QString& language) {
    for (const SyntaxHighlighter::CompiledRule& rule : SyntaxHighlighter::compiledRules(language))
        m_tracks.push_back({&rule, {}, {}, {}, 0});
}

qsizetype CodeColouring::advance(QStringView text, Extent extent) {
    qsizetype changed = m_everything;
    if (m_everything > m_wholeLines) {
        // The rest was taken for an end; what it made of the unfinished line is open again.
        for (Track& track : m_tracks) {
            if (track.matches.size() > track.lineMatches)
                changed = std::min(changed, track.matches[track.lineMatches].start);
            track.matches.resize(track.lineMatches);
            track.state = track.lineState;
        }
        changed = std::min(changed, m_wholeLines);
        m_everything = m_wholeLines;
    }
    const qsizetype lines = text.lastIndexOf(u'\n') + 1;
    if (lines > m_wholeLines) {
        changed = std::min(changed, advanceTracks(text.first(lines)));
        for (Track& track : m_tracks) {
            track.lineState = track.state;
            track.lineMatches = track.matches.size();
        }
        m_wholeLines = m_everything = lines;
    }
    if (extent == Extent::everything && text.size() > m_everything) {
        changed = std::min(changed, advanceTracks(text));
        m_everything = text.size();
    }
    return changed;
}

qsizetype CodeColouring::advanceTracks(QStringView text) {
    qsizetype changed = text.size();
    for (Track& track : m_tracks) {
        const std::size_t known = track.matches.size();
        track.rule->matcher.resume(text, track.state, track.matches);
        if (track.matches.size() > known)
            changed = std::min(changed, track.matches[known].start);
    }
    return changed;
}

std::vector<Range> CodeColouring::ranges(qsizetype from, qsizetype to) const {
    std::vector<Token> tokens(static_cast<std::size_t>(std::max<qsizetype>(0, to - from)), Token::plain);
    for (const Track& track : m_tracks) {
        auto match = std::ranges::upper_bound(track.matches, from, {}, &PatternMatcher::Match::end);
        for (; match != track.matches.end() && match->start < to; ++match) {
            const auto first = tokens.begin() + (std::max(match->start, from) - from);
            std::fill(first, tokens.begin() + (std::min(match->end, to) - from), track.rule->token);
        }
    }
    std::vector<Range> ranges;
    for (std::size_t i = 0; i < tokens.size();) {
        const std::size_t start = i;
        while (i < tokens.size() && tokens[i] == tokens[start])
            ++i;
        if (tokens[start] != Token::plain) {
            ranges.push_back({from + static_cast<qsizetype>(start), static_cast<qsizetype>(i - start), tokens[start]});
        }
    }
    return ranges;
}

}
