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

    const QString& text() const { return unixLines.output(); }
    const CitationList& citations() const { return found; }

private:
    void appendScalars(QStringView piece);

    // The first two never take anything back.
    ReturnDropper returns;
    QString half; // of a surrogate pair: the other half has not come yet
    QString withoutEmojis;
    bool oddSpace = false;

    CitationList found;
    Stage<VideoTagReplacer> withoutVideos{VideoTagReplacer()};
    Stage<CitationRemover> withoutCitations{CitationRemover(found)};
    Stage<GapCloser> withoutGaps{GapCloser()};
    Stage<FileLinkRemover> withoutFileLinks{FileLinkRemover()};
    Stage<Trimmer> trimmed{Trimmer()}; // once for the two cleaners that trim: what they take out is never at an end
    Stage<StatusDropper> withoutStatus{StatusDropper()};
    Stage<ReturnDropper> unixLines{ReturnDropper()}; // what was taken out may have stood in front of a new line
};

}
