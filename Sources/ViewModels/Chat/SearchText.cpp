#include "Chat/SearchText.h"

#include <algorithm>

namespace Korvi {

namespace {

constexpr QChar combiningBreve(0x0306);

QChar baseOf(QChar character) {
    QChar base = character.toCaseFolded();
    while (base != u'й' && base.decompositionTag() == QChar::Canonical)
        base = base.decomposition().at(0);
    return base;
}

qsizetype findWord(const QString& key, const QString& word) {
    const qsizetype first = key.indexOf(word);
    for (qsizetype at = first; at >= 0; at = key.indexOf(word, at + 1)) {
        if (isWordStart(key, at))
            return at;
    }
    return first;
}

}

QString searchKey(QStringView text, std::vector<qsizetype>* sources) {
    QString key;
    key.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text[i];
        if (character.category() == QChar::Mark_NonSpacing) {
            if (character == combiningBreve && key.endsWith(u'и'))
                key.back() = u'й';
            continue;
        }
        key.append(character.isSpace() ? QChar(u' ') : baseOf(character));
        if (sources)
            sources->push_back(i);
    }
    return key;
}

QStringList searchWords(const QString& query) {
    return searchKey(query).split(u' ', Qt::SkipEmptyParts);
}

bool containsWords(const QString& key, const QStringList& words) {
    return std::all_of(words.begin(), words.end(), [&](const QString& word) { return key.contains(word); });
}

std::vector<TextRange> findWords(const QString& text, const QStringList& words) {
    std::vector<qsizetype> sources;
    const QString key = searchKey(text, &sources);
    std::vector<qsizetype> positions;
    for (const QString& word : words) {
        const qsizetype at = findWord(key, word);
        for (qsizetype i = 0; at >= 0 && i < word.size(); ++i)
            positions.push_back(at + i);
    }
    return toRanges(std::move(positions), sources, text.size());
}

std::vector<TextRange> toRanges(
    std::vector<qsizetype> positions, const std::vector<qsizetype>& sources, qsizetype textLength) {
    std::sort(positions.begin(), positions.end());
    positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
    std::vector<TextRange> ranges;
    for (const qsizetype position : positions) {
        const auto next = static_cast<std::size_t>(position) + 1;
        const qsizetype start = sources[next - 1];
        const qsizetype end = next < sources.size() ? sources[next] : textLength; // with the marks that follow
        if (!ranges.empty() && ranges.back().start + ranges.back().length == start)
            ranges.back().length += end - start;
        else
            ranges.push_back({start, end - start});
    }
    return ranges;
}

bool isWordStart(QStringView key, qsizetype position) {
    return position == 0 || (key[position].isLetterOrNumber() && !key[position - 1].isLetterOrNumber());
}

}
