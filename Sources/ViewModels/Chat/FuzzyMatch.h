#pragma once

#include <QStringList>

#include <optional>
#include <vector>

namespace Korvi {

struct FuzzyMatch {
    int score = 0;                    // higher is better; only to be compared under the same query
    std::vector<qsizetype> positions; // in the key, of every character of the query
};

// How well the words of a query fit a name; both are search keys (SearchText.h). A word fits where it stands as it is,
// best at the beginning of the name or of a word, or where its letters follow each other with small gaps or at the
// beginnings of words ("сс" fits "сортировка слиянием"). Absent when a word does not fit.
std::optional<FuzzyMatch> fuzzyMatch(const QStringList& words, const QString& key);

}
