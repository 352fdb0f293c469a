#include "Pattern.h"

#include "Characters.h"

namespace Korvi::Markdown {

namespace {

bool contains(Pattern::Set set, char16_t character, char16_t c) {
    switch (set) {
    case Pattern::Set::character: return c == character;
    case Pattern::Set::notCharacter: return c != character;
    case Pattern::Set::inLine: return !isLineTerminator(c);
    case Pattern::Set::space: return QChar::isSpace(c);
    case Pattern::Set::digit: return c >= u'0' && c <= u'9';
    }
    Q_UNREACHABLE();
}

}

Pattern::Pattern(QStringView startCharacters)
    : starts{startCharacters.front().unicode(), startCharacters.back().unicode()} {}

Pattern& Pattern::add(Step step) {
    Q_ASSERT(size() < maxSteps);
    steps.push_back(step);
    return *this;
}

Pattern& Pattern::one(Set set, char16_t character) {
    return add({Kind::consume, set, character, size() + 1});
}

Pattern& Pattern::text(QStringView literal) {
    for (const QChar c : literal)
        one(Set::character, c.unicode());
    return *this;
}

Pattern& Pattern::maybe(Set set, char16_t character) {
    return maybe([&](Pattern& group) { group.one(set, character); });
}

Pattern& Pattern::maybe(const std::function<void(Pattern&)>& group) {
    const int split = size();
    add({.kind = Kind::split, .next = split + 1});
    group(*this);
    steps[std::size_t(split)].other = size();
    return *this;
}

Pattern& Pattern::any(Set set, char16_t character, Loop loop) {
    const int split = size();
    const int after = split + 2;
    if (loop == Loop::greedy)
        add({.kind = Kind::split, .next = split + 1, .other = after});
    else
        add({.kind = Kind::split, .next = after, .other = split + 1});
    return add({Kind::consume, set, character, split});
}

Pattern& Pattern::some(Set set, char16_t character) {
    return one(set, character).any(set, character);
}

Pattern& Pattern::place(int number) {
    return add({.kind = Kind::place, .next = size() + 1, .other = number});
}

Pattern& Pattern::end() {
    return add({.kind = Kind::match});
}

qsizetype PatternMatcher::nextStart(QStringView text, qsizetype from, qsizetype to) const {
    while (from < to && !pattern->canStart(text[from].unicode()))
        ++from;
    return from;
}

// Whether a match ends here. An attempt with the right of way over it never is open then: in our patterns an open
// attempt waits for a character that the other one has read since.
bool PatternMatcher::enter(std::vector<Attempt>& list, int number, Attempt attempt, qsizetype at) {
    const Pattern::Step& step = pattern->steps[std::size_t(number)];
    if (entered.test(std::size_t(number)))
        return false;
    entered.set(std::size_t(number));
    switch (step.kind) {
    case Pattern::Kind::consume:
        attempt.step = number;
        list.push_back(attempt);
        return false;
    case Pattern::Kind::split: return enter(list, step.next, attempt, at) || enter(list, step.other, attempt, at);
    case Pattern::Kind::place: attempt.places[std::size_t(step.other)] = at; return enter(list, step.next, attempt, at);
    case Pattern::Kind::match: found = {attempt.from, at, attempt.places}; return true;
    }
    Q_UNREACHABLE();
}

bool PatternMatcher::step(char16_t c, qsizetype at) {
    if (pattern->canStart(c)) {
        entered.reset();
        enter(attempts, 0, {.step = 0, .from = at, .places = {}}, at);
    }
    entered.reset();
    next.clear();
    for (const Attempt& attempt : attempts) {
        const Pattern::Step& step = pattern->steps[std::size_t(attempt.step)];
        if (contains(step.set, step.character, c) && enter(next, step.next, attempt, at + 1)) {
            attempts.clear();
            next.clear();
            return true;
        }
    }
    attempts.swap(next);
    return false;
}

}
