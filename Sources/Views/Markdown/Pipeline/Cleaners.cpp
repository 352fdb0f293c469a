#include "Cleaners.h"

#include "Characters.h"
#include "CleaningMachines.h"
#include "TextCache.h"

namespace Korvi::Markdown {

namespace {

template <class Machine>
QString run(Machine machine, QStringView text) {
    QString output;
    output.reserve(text.size());
    machine.read(text, 0, text.size(), output);
    return output;
}

QString trimmed(const QString& text) {
    return run(Trimmer(), text);
}

}

QString stripEmojis(const QString& text) {
    static TextCache<QString, 100> cache;
    return cache.value(text, [&] {
        QString stripped;
        bool oddSpace = false;
        appendWithoutEmojis(text, stripped, oddSpace);
        return stripped;
    });
}

QString cleanVideoTags(const QString& text) {
    return run(VideoTagReplacer(), text);
}

Cleaned cleanCitations(const QString& text) {
    CitationList citations;
    const QString without = run(CitationRemover(citations), text);
    return {trimmed(run(GapCloser(), without)), citations.sorted()};
}

QString cleanFileDownloadLinks(const QString& text) {
    const QString without = run(FileLinkRemover(), text);
    return without.size() == text.size() ? text : trimmed(without);
}

QString cleanGenerationStatus(const QString& text) {
    return run(StatusDropper(), text);
}

Cleaned clean(const QString& text) {
    QString lines = run(ReturnDropper(), text);
    // Half of a pair at the end: the other half has not come yet.
    if (!lines.isEmpty() && lines.back().isHighSurrogate())
        lines.chop(1);
    Cleaned cleaned = cleanCitations(cleanVideoTags(stripEmojis(lines)));
    cleaned.text = run(ReturnDropper(), cleanGenerationStatus(cleanFileDownloadLinks(cleaned.text)));
    return cleaned;
}

}
