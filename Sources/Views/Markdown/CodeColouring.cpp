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
    struct Look {
        Token token = Token::plain;
        bool isBold = false;

        bool operator==(const Look&) const = default;
    };
    std::vector<Look> looks(static_cast<std::size_t>(std::max<qsizetype>(0, to - from)));
    for (const Track& track : m_tracks) {
        auto match = std::ranges::upper_bound(track.matches, from, {}, &PatternMatcher::Match::end);
        for (; match != track.matches.end() && match->start < to; ++match) {
            const Token token = track.rule->token;
            for (qsizetype at = std::max(match->start, from); at < std::min(match->end, to); ++at) {
                Look& look = looks[static_cast<std::size_t>(at - from)];
                look = {token, look.isBold || token == Token::keyword};
            }
        }
    }
    std::vector<Range> ranges;
    for (std::size_t i = 0; i < looks.size();) {
        const std::size_t start = i;
        const Look look = looks[start];
        while (i < looks.size() && looks[i] == look)
            ++i;
        if (look.token != Token::plain)
            ranges.push_back(
                {from + static_cast<qsizetype>(start), static_cast<qsizetype>(i - start), look.token, look.isBold});
    }
    return ranges;
}

}
