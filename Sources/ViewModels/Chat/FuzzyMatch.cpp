#include "Chat/FuzzyMatch.h"
#include "Chat/SearchText.h"

#include <algorithm>
#include <limits>

namespace Korvi {

namespace {

constexpr int wholeWord = 1000; // the word stands there as it was typed
constexpr int atNameStart = 300;
constexpr int atWordStart = 200;
constexpr int letterAtWordStart = 30;
constexpr int letterInRow = 15;
constexpr int gapCost = 5;
constexpr qsizetype largestGap = 3; // letters skipped inside a word
constexpr int latePlaceLimit = 50;
constexpr int impossible = std::numeric_limits<int>::min() / 2;

std::optional<FuzzyMatch> matchWhole(const QString& word, const QString& key) {
    qsizetype place = -1;
    bool starts = false;
    for (qsizetype at = key.indexOf(word); at >= 0 && !starts; at = key.indexOf(word, at + 1)) {
        starts = isWordStart(key, at);
        if (place < 0 || starts)
            place = at;
    }
    if (place < 0)
        return std::nullopt;
    FuzzyMatch match;
    match.score = wholeWord +
        (place == 0      ? atNameStart
                : starts ? atWordStart
                         : 0) -
        std::min(static_cast<int>(place), latePlaceLimit);
    for (qsizetype i = 0; i < word.size(); ++i)
        match.positions.push_back(place + i);
    return match;
}

bool isSubsequence(const QString& word, const QString& key) {
    qsizetype next = 0;
    for (const QChar character : key) {
        if (next < word.size() && character == word[next])
            ++next;
    }
    return next == word.size();
}

// The best way to find the letters of the word one after the other: for each letter and each place, the best score of
// a way that ends there, and where the letter before it was.
std::optional<FuzzyMatch> matchLetters(const QString& word, const QString& key) {
    if (!isSubsequence(word, key))
        return std::nullopt;
    const auto width = static_cast<std::size_t>(key.size());
    std::vector<int> before(width, 0);
    std::vector<int> best(width, impossible);
    std::vector<std::vector<qsizetype>> cameFrom;
    for (qsizetype letter = 0; letter < word.size(); ++letter) {
        std::vector<qsizetype> from(width, -1);
        std::fill(best.begin(), best.end(), impossible);
        qsizetype bestBefore = -1; // of all places to the left
        for (qsizetype at = 0; at < key.size(); ++at) {
            const auto scoreBefore = [&](qsizetype place) { return before[static_cast<std::size_t>(place)]; };
            if (key[at] == word[letter]) {
                const bool starts = isWordStart(key, at);
                int score = letter == 0 ? 0 : impossible;
                qsizetype source = -1;
                for (qsizetype gap = 0; letter > 0 && gap <= largestGap && at - gap > 0; ++gap) {
                    const int reached =
                        scoreBefore(at - gap - 1) + (gap == 0 ? letterInRow : -gapCost * static_cast<int>(gap));
                    if (reached > score) {
                        score = reached;
                        source = at - gap - 1;
                    }
                }
                if (letter > 0 && starts && bestBefore >= 0 && scoreBefore(bestBefore) > score) {
                    score = scoreBefore(bestBefore);
                    source = bestBefore;
                }
                if (score > impossible / 2) {
                    best[static_cast<std::size_t>(at)] = score + (starts ? letterAtWordStart : 0);
                    from[static_cast<std::size_t>(at)] = source;
                }
            }
            if (letter > 0 && (bestBefore < 0 || scoreBefore(at) > scoreBefore(bestBefore)))
                bestBefore = at;
        }
        cameFrom.push_back(std::move(from));
        before = best;
    }
    const auto end = std::max_element(best.begin(), best.end());
    if (end == best.end() || *end <= impossible / 2)
        return std::nullopt;
    FuzzyMatch match{*end, {}};
    qsizetype at = end - best.begin();
    for (auto from = cameFrom.rbegin(); from != cameFrom.rend(); ++from) {
        match.positions.push_back(at);
        at = (*from)[static_cast<std::size_t>(at)];
    }
    std::reverse(match.positions.begin(), match.positions.end());
    return match;
}

}

std::optional<FuzzyMatch> fuzzyMatch(const QStringList& words, const QString& key) {
    FuzzyMatch all;
    for (const QString& word : words) {
        auto match = matchWhole(word, key);
        if (!match)
            match = matchLetters(word, key);
        if (!match)
            return std::nullopt;
        all.score += match->score;
        all.positions.insert(all.positions.end(), match->positions.begin(), match->positions.end());
    }
    return all;
}

}
