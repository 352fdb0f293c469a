#pragma once

#include <QStringList>

#include <vector>

namespace Korvi {

// A piece of a text, in UTF-16 units.
struct TextRange {
    qsizetype start = 0;
    qsizetype length = 0;
    bool operator==(const TextRange&) const = default;
};

// What a name is compared by when it is searched for: without case and diacritics, "Ёлка" as "елка". The letter й is
// not и with a mark and stays. With `sources`, the place in `text` that each character came from.
QString searchKey(QStringView text, std::vector<qsizetype>* sources = nullptr);

// The words of a query, as search keys.
QStringList searchWords(const QString& query);

// Whether every word occurs in the key, in any order.
bool containsWords(const QString& key, const QStringList& words);

// Where in `text` the words are, at the beginning of a word if there is such a place; sorted, without overlaps.
std::vector<TextRange> findWords(const QString& text, const QStringList& words);

// Positions in a key as ranges of the text that it was made of.
std::vector<TextRange> toRanges(
    std::vector<qsizetype> positions, const std::vector<qsizetype>& sources, qsizetype textLength);

bool isWordStart(QStringView key, qsizetype position);

}
