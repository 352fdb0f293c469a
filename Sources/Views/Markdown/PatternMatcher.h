#pragma once

#include <QStringView>

#include <vector>

namespace Korvi {

// Finds what one pattern of the highlighter matches, from left to right, as a regular expression engine would find it,
// but never by trying again: the time it takes grows with the text alone, whatever the text is, and a text that grows
// is gone on with where the matcher stood. A pattern has one of few shapes, and says in its own words what it is about.
class PatternMatcher {
public:
    enum class Shape {
        lineComment, // `//.*|#.*`: from one of the beginnings to the end of the line
        quoted,      // `"[^"\\]*(\\.[^"\\]*)*"`: between two of its first character, over lines, with escapes
        enclosed,    // `<!--[\s\S]*?-->`: from the beginning to the nearest end, over lines
        words,       // `\b(if|else)\b`
        number,      // `\b\d+(\.\d+)?\b`
        tag,         // `</?[a-zA-Z0-9]+`
    };
    struct Match {
        qsizetype start; // in UTF-16 units, like everything here
        qsizetype end;

        bool operator==(const Match&) const = default;
    };
    // How far a text has been gone through.
    struct State {
        qsizetype at = 0;
        qsizetype open = -1; // where a match begins whose end has not come yet
    };

    // The pattern must outlive the matcher: it is a literal.
    PatternMatcher(Shape shape, QStringView pattern);

    // Goes on to the end of `text`, whose part before `state.at` is as it was, and appends what matches. A text that
    // will grow must stop at the end of a line.
    void resume(QStringView text, State& state, std::vector<Match>& matches) const;

private:
    void resumeLineComment(QStringView text, State& state, std::vector<Match>& matches) const;
    void resumeQuoted(QStringView text, State& state, std::vector<Match>& matches) const;
    void resumeEnclosed(QStringView text, State& state, std::vector<Match>& matches) const;

    Shape m_shape;
    std::vector<QStringView> m_words; // beginnings, both ends, or the words in order
};

}
