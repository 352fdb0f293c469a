#include "CleaningChain.h"

#include "Characters.h"

namespace Korvi::Markdown {

void CleaningChain::appendScalars(QStringView piece) {
    QString lines = std::exchange(half, {});
    returns.read(piece, 0, piece.size(), lines);
    if (!lines.isEmpty() && lines.back().isHighSurrogate()) {
        half = lines.last(1);
        lines.chop(1);
    }
    appendWithoutEmojis(lines, withoutEmojis, oddSpace);
}

qsizetype CleaningChain::append(QStringView piece) {
    qsizetype kept = withoutEmojis.size();
    appendScalars(piece);
    kept = withoutVideos.update(withoutEmojis, kept);
    kept = withoutCitations.update(withoutVideos.output(), kept);
    kept = withoutGaps.update(withoutCitations.output(), kept);
    kept = withoutFileLinks.update(withoutGaps.output(), kept);
    kept = trimmed.update(withoutFileLinks.output(), kept);
    kept = withoutStatus.update(trimmed.output(), kept);
    return unixLines.update(withoutStatus.output(), kept);
}

}
