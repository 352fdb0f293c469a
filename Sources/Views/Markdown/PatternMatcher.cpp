#include "PatternMatcher.h"

#include <QList>

#include <algorithm>

namespace Korvi {

namespace {

using Match = PatternMatcher::Match;
using State = PatternMatcher::State;

struct Point {
    char32_t value;
    qsizetype length; // in UTF-16 units
};

Point pointAt(QStringView text, qsizetype at) {
    const QChar unit = text[at];
    if (unit.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate())
        return {QChar::surrogateToUcs4(unit, text[at + 1]), 2};
    return {unit.unicode(), 1};
}

// What \w and \d mean in a text of any language.
bool isWord(char32_t point) {
    return point == U'_' || QChar::isLetterOrNumber(point);
}

bool isAsciiLetterOrDigit(QChar unit) {
    const char16_t c = unit.unicode();
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
}

struct Run {
    qsizetype end;
    bool digits; // nothing else in it
};

// The characters of words from here on; empty where there is none.
Run wordRun(QStringView text, qsizetype from) {
    Run run{from, true};
    while (run.end < text.size()) {
        const Point point = pointAt(text, run.end);
        if (!isWord(point.value))
            break;
        run.digits = run.digits && QChar::isDigit(point.value);
        run.end += point.length;
    }
    run.digits = run.digits && run.end > from;
    return run;
}

template <class Take>
void eachRun(QStringView text, State& state, Take take) {
    while (state.at < text.size()) {
        const Run run = wordRun(text, state.at);
        state.at = run.end > state.at ? take(state.at, run) : state.at + pointAt(text, state.at).length;
    }
}

void resumeWords(QStringView text, State& state, std::vector<Match>& matches, const std::vector<QStringView>& words) {
    eachRun(text, state, [&](qsizetype start, const Run& run) {
        if (std::ranges::binary_search(words, text.sliced(start, run.end - start)))
            matches.push_back({start, run.end});
        return run.end;
    });
}

void resumeNumber(QStringView text, State& state, std::vector<Match>& matches) {
    eachRun(text, state, [&](qsizetype start, const Run& run) {
        if (!run.digits)
            return run.end;
        qsizetype end = run.end;
        if (end < text.size() && text[end] == u'.') {
            const Run fraction = wordRun(text, end + 1);
            if (fraction.digits)
                end = fraction.end;
        }
        matches.push_back({start, end});
        return end;
    });
}

void resumeTag(QStringView text, State& state, std::vector<Match>& matches) {
    while (state.at < text.size()) {
        const qsizetype start = text.indexOf(u'<', state.at);
        if (start < 0) {
            state.at = text.size();
            return;
        }
        const qsizetype name = start + (text.sliced(start + 1).startsWith(u'/') ? 2 : 1);
        qsizetype end = name;
        while (end < text.size() && isAsciiLetterOrDigit(text[end]))
            ++end;
        if (end > name)
            matches.push_back({start, end});
        state.at = end;
    }
}

std::vector<QStringView> split(QStringView alternatives) {
    const auto parts = alternatives.split(u'|');
    return {parts.begin(), parts.end()};
}

std::vector<QStringView> wordsOf(PatternMatcher::Shape shape, QStringView pattern) {
    using Shape = PatternMatcher::Shape;
    switch (shape) {
    case Shape::lineComment: {
        std::vector<QStringView> beginnings = split(pattern);
        for (QStringView& beginning : beginnings)
            beginning.chop(2); // ".*"
        return beginnings;
    }
    case Shape::quoted: return {pattern.first(1)};
    case Shape::enclosed: {
        constexpr QStringView between = u"[\\s\\S]*?";
        const qsizetype at = pattern.indexOf(between);
        return {pattern.first(at), pattern.sliced(at + between.size())};
    }
    case Shape::words: {
        const qsizetype open = pattern.indexOf(u'(');
        std::vector<QStringView> words = split(pattern.sliced(open + 1, pattern.lastIndexOf(u')') - open - 1));
        std::ranges::sort(words);
        return words;
    }
    case Shape::number:
    case Shape::tag: break;
    }
    return {};
}

}

PatternMatcher::PatternMatcher(Shape shape, QStringView pattern)
    : m_shape(shape)
    , m_words(wordsOf(shape, pattern)) {}

void PatternMatcher::resume(QStringView text, State& state, std::vector<Match>& matches) const {
    switch (m_shape) {
    case Shape::lineComment: resumeLineComment(text, state, matches); break;
    case Shape::quoted: resumeQuoted(text, state, matches); break;
    case Shape::enclosed: resumeEnclosed(text, state, matches); break;
    case Shape::words: resumeWords(text, state, matches, m_words); break;
    case Shape::number: resumeNumber(text, state, matches); break;
    case Shape::tag: resumeTag(text, state, matches); break;
    }
}

void PatternMatcher::resumeLineComment(QStringView text, State& state, std::vector<Match>& matches) const {
    // Line by line, so that a beginning that never comes is not looked for again and again.
    while (state.at < text.size()) {
        qsizetype end = text.indexOf(u'\n', state.at);
        if (end < 0)
            end = text.size();
        const QStringView line = text.sliced(state.at, end - state.at);
        qsizetype start = -1;
        for (const QStringView beginning : m_words) {
            const qsizetype found = line.indexOf(beginning);
            if (found >= 0 && (start < 0 || found < start))
                start = found;
        }
        if (start >= 0)
            matches.push_back({state.at + start, end});
        state.at = std::min(end + 1, text.size());
    }
}

// A quotation fails where a line ends after a backslash, and then so does every one that begins inside it: those begin
// at escaped quotes only, and read on exactly as this one did.
void PatternMatcher::resumeQuoted(QStringView text, State& state, std::vector<Match>& matches) const {
    const QChar quote = m_words.front().front();
    while (state.at < text.size()) {
        const QChar unit = text[state.at];
        if (state.open < 0) {
            if (unit == quote)
                state.open = state.at;
            ++state.at;
        } else if (unit == quote) {
            matches.push_back({state.open, ++state.at});
            state.open = -1;
        } else if (unit != u'\\') {
            ++state.at;
        } else if (state.at + 1 == text.size()) {
            return;
        } else {
            if (text[state.at + 1] == u'\n')
                state.open = -1;
            state.at += 2;
        }
    }
}

void PatternMatcher::resumeEnclosed(QStringView text, State& state, std::vector<Match>& matches) const {
    const QStringView beginning = m_words.front();
    const QStringView end = m_words.back();
    for (;;) {
        const QStringView wanted = state.open < 0 ? beginning : end;
        const qsizetype found = text.indexOf(wanted, state.at);
        if (found < 0) {
            state.at = std::max(state.at, text.size() - wanted.size() + 1);
            return;
        }
        state.at = found + wanted.size();
        if (state.open < 0) {
            state.open = found;
        } else {
            matches.push_back({state.open, state.at});
            state.open = -1;
        }
    }
}

}
