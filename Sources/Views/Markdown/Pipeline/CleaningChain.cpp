#include "CleaningChain.h"

#include "Characters.h"

namespace Korvi::Markdown {

using namespace Qt::Literals;

void CleaningChain::appendScalars(QStringView piece) {
    QString whole;
    if (!undecided.isEmpty()) {
        whole = std::exchange(undecided, {}).append(piece);
        piece = whole;
    }
    if (!piece.isEmpty() && (piece.back().isHighSurrogate() || piece.back() == u'\r')) {
        undecided = piece.last(1).toString();
        piece.chop(1);
    }
    if (!piece.contains(QStringView(u"\r\n"))) {
        appendWithoutEmojis(piece, withoutEmojis, oddSpace);
        return;
    }
    const QString unixLines = piece.toString().replace("\r\n"_L1, "\n"_L1);
    appendWithoutEmojis(unixLines, withoutEmojis, oddSpace);
}

qsizetype CleaningChain::append(QStringView piece) {
    qsizetype kept = withoutEmojis.size();
    appendScalars(piece);
    kept = withoutVideos.update(withoutEmojis, kept);
    kept = withoutCitations.update(withoutVideos.output(), kept);
    kept = withoutGaps.update(withoutCitations.output(), kept);
    kept = withoutFileLinks.update(withoutGaps.output(), kept);
    kept = trimmed.update(withoutFileLinks.output(), kept);
    return withoutStatus.update(trimmed.output(), kept);
}

}
