#include "PartRange.h"

namespace Korvi {

namespace {

// Where a piece of a long paragraph that begins there ends: after its last word.
qsizetype pieceEnd(const QString& text, qsizetype from) {
    if (text.size() - from <= longestPart)
        return text.size();
    const qsizetype space = text.lastIndexOf(u' ', from + longestPart - 1);
    if (space > from)
        return space + 1;
    return from + longestPart - (text.at(from + longestPart).isLowSurrogate() ? 1 : 0);
}

}

std::vector<PartRange> cutText(
    int first, int count, const std::function<qsizetype(int)>& lengthOf, const std::function<QString(int)>& shownText) {
    std::vector<PartRange> parts;
    qsizetype length = 0; // of the part that is open, which is the last one then
    for (int i = first; i < count; ++i) {
        const qsizetype own = lengthOf(i);
        if (length > 0 && length + own <= longestPart) {
            parts.back().last = i;
            parts.back().to = own;
            length += own;
        } else if (own <= longestPart) {
            parts.push_back({i, i, 0, own});
            length = own;
        } else {
            const QString text = shownText(i);
            for (qsizetype from = 0; from < own;) {
                const qsizetype to = pieceEnd(text, from);
                parts.push_back({i, i, from, to});
                length = to - from;
                from = to;
            }
        }
        if (length >= partLength)
            length = 0;
    }
    return parts;
}

}
