#include "PartRange.h"

namespace Korvi {

namespace {

// Where a piece of a long paragraph that begins there ends: after its last word.
qsizetype pieceEnd(const QString& text, qsizetype from) {
    if (text.size() - from <= pieceLength)
        return text.size();
    const qsizetype space = text.lastIndexOf(u' ', from + pieceLength - 1);
    if (space > from)
        return space + 1;
    return from + pieceLength - (text.at(from + pieceLength).isLowSurrogate() ? 1 : 0);
}

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
            const QString text = shownText(i, begin);
            for (qsizetype at = 0; at < own;) {
                const qsizetype to = pieceEnd(text, at);
                parts.push_back({i, i, begin + at, begin + to});
                length = to - at;
                at = to;
            }
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
