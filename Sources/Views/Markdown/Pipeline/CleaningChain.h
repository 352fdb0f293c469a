#pragma once

#include "CleaningMachines.h"

namespace Korvi::Markdown {

// The cleaners, one behind the other, over a text that is only appended to. Each reads what is new in the text before
// it, and what has changed at that text's end since.
class CleaningChain {
public:
    CleaningChain() = default;
    CleaningChain(const CleaningChain&) = delete;
    CleaningChain& operator=(const CleaningChain&) = delete;

    // How many units of text() are as they were.
    qsizetype append(QStringView piece);

    const QString& text() const { return withoutStatus.output(); }
    const CitationList& citations() const { return found; }

private:
    void appendScalars(QStringView piece);

    // The first cleaner never takes anything back: it keeps what it cannot decide yet, which is a half of a pair, or of
    // a line's end.
    QString withoutEmojis;
    QString undecided;
    bool oddSpace = false;

    CitationList found;
    Stage<VideoTagReplacer> withoutVideos{VideoTagReplacer()};
    Stage<CitationRemover> withoutCitations{CitationRemover(found)};
    Stage<GapCloser> withoutGaps{GapCloser()};
    Stage<FileLinkRemover> withoutFileLinks{FileLinkRemover()};
    Stage<Trimmer> trimmed{Trimmer()}; // once for the two cleaners that trim: what they take out is never at an end
    Stage<StatusDropper> withoutStatus{StatusDropper()};
};

}
