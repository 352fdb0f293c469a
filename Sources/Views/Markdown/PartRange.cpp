#include "PartRange.h"

#include <algorithm>

namespace Korvi {

namespace {

// Where a piece of a long paragraph that begins there ends: after its last word, and before it has too many formulas.
qsizetype pieceEnd(const QString& text, qsizetype from) {
    int formulas = 0;
    const qsizetype furthest = std::min(text.size(), from + pieceLength);
    for (qsizetype at = from; at < furthest; ++at) {
        if (text.at(at) == QChar::ObjectReplacementCharacter && ++formulas > mostFormulas)
            return at;
    }
    if (furthest == text.size())
        return text.size();
    const qsizetype space = text.lastIndexOf(u' ', from + pieceLength - 1);
    if (space > from)
        return space + 1;
    return from + pieceLength - (text.at(from + pieceLength).isLowSurrogate() ? 1 : 0);
}

}

std::vector<PartRange> cutParagraph(int number, const QString& text, qsizetype from) {
    if (from == 0 && text.size() <= longestPart && text.count(QChar::ObjectReplacementCharacter) <= mostFormulas)
        return {{number, number, 0, text.size()}};
    std::vector<PartRange> parts;
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype to = pieceEnd(text, at);
        parts.push_back({number, number, from + at, from + to});
        at = to;
    }
    return parts;
}

std::vector<PartRange> cutText(int first, qsizetype from, int count, const std::function<qsizetype(int)>& lengthOf,
    const std::function<QString(int, qsizetype)>& shownText) {
    std::vector<PartRange> parts;
    qsizetype length = 0; // of the part that is open, which is the last one then
    for (int i = first; i < count; ++i) {
        const qsizetype begin = i == first ? from : 0;
        const qsizetype end = lengthOf(i);
        const qsizetype own = end - begin;
        if (length > 0 && begin == 0 && length + own <= longestPart) {
            parts.back().last = i;
            parts.back().to = end;
            length += own;
        } else if (end <= longestPart) {
            parts.push_back({i, i, begin, end});
            length = own;
        } else {
            const std::vector<PartRange> pieces = cutParagraph(i, shownText(i, begin), begin);
            parts.insert(parts.end(), pieces.begin(), pieces.end());
            length = parts.back().to - parts.back().from;
        }
        if (length >= partLength)
            length = 0;
    }
    return parts;
}

bool staysCut(const PartRange& part, qsizetype kept) {
    return part.first == part.last && kept > longestPart && part.from + pieceLength < kept;
}

}
