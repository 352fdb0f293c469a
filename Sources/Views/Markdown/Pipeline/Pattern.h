#pragma once

#include <QStringView>

#include <array>
#include <bitset>
#include <functional>
#include <vector>

namespace Korvi::Markdown {

// A regular expression as a small program for PatternMatcher, put together by hand. Why not QRegularExpression: it
// goes back over the text (some of ours take quadratic time on hostile input, or give up), and it cannot be fed in pieces.
class Pattern {
public:
    enum class Set : quint8 { character, notCharacter, inLine, space, digit };
    enum class Loop : quint8 { greedy, lazy };
    static constexpr int maxSteps = 96;
    static constexpr int maxPlaces = 4;

    // `starts`: the characters that a match can begin with.
    explicit Pattern(QStringView starts);

    Pattern& text(QStringView literal);
    Pattern& one(Set set, char16_t character = 0);
    Pattern& maybe(Set set, char16_t character = 0);
    Pattern& any(Set set, char16_t character = 0, Loop loop = Loop::greedy); // no time or more
    Pattern& some(Set set, char16_t character = 0);                          // one time or more
    Pattern& maybe(const std::function<void(Pattern&)>& group);
    Pattern& place(int number); // remembers where it is, 0 to maxPlaces - 1
    Pattern& end();

private:
    friend class PatternMatcher;

    enum class Kind : quint8 { consume, split, place, match };
    struct Step {
        Kind kind;
        Set set = Set::character;
        char16_t character = 0;
        int next = 0;
        int other = 0; // of a split: the one to try second
    };
    bool canStart(char16_t c) const { return c == starts[0] || c == starts[1]; }
    Pattern& add(Step step);
    int size() const { return int(steps.size()); }

    std::array<char16_t, 2> starts;
    std::vector<Step> steps;
};

// Looks for all matches of a pattern in a text that comes in pieces, leftmost first as usual, in linear time: all
// attempts go forward together. The ones that are still open are its whole state, so that a copy is a bookmark.
class PatternMatcher {
public:
    struct Found {
        qsizetype from = 0;
        qsizetype to = 0;
        std::array<qsizetype, Pattern::maxPlaces> places{};
    };

    explicit PatternMatcher(const Pattern& wanted)
        : pattern(&wanted) {}

    // Reads text[from, to), where `from` is the last call's `to`, and tells of each match as it ends.
    template <class OnFound>
    void read(QStringView text, qsizetype from, qsizetype to, OnFound onFound) {
        for (qsizetype i = from; i < to; ++i) {
            if (attempts.empty())
                i = nextStart(text, i, to);
            if (i < to && step(text[i].unicode(), i))
                onFound(found);
        }
    }

private:
    struct Attempt {
        int step;
        qsizetype from;
        std::array<qsizetype, Pattern::maxPlaces> places;
    };
    qsizetype nextStart(QStringView text, qsizetype from, qsizetype to) const;
    bool step(char16_t c, qsizetype at);
    bool enter(std::vector<Attempt>& list, int step, Attempt attempt, qsizetype at);

    const Pattern* pattern;
    std::vector<Attempt> attempts; // the first has the right of way
    std::vector<Attempt> next;
    std::bitset<Pattern::maxSteps> entered;
    Found found;
};

}
