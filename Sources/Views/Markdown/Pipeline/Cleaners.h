#pragma once

#include "WebSearchAnswerItem.h"

namespace Korvi::Markdown {

using CitationSource = WebSearchAnswerItem::CitationSource;

struct Cleaned {
    QString text;
    std::vector<CitationSource> citations; // one for each URL, sorted by index

    bool operator==(const Cleaned&) const = default;
};

// What an answer's text passes before it is parsed. Pure functions, linear in the text's length, whatever is in it.

// Drops what is drawn as a coloured picture, then halves runs of spaces. The last 100 results are remembered.
QString stripEmojis(const QString& text);
// A <video> element becomes "[Видео](its source)" between blank lines.
QString cleanVideoTags(const QString& text);
// Takes citations such as "[[1]](https://...)" out, and the gaps that they leave.
Cleaned cleanCitations(const QString& text);
// Takes links to the service's own files out: these are shown as cards.
QString cleanFileDownloadLinks(const QString& text);
// Takes lines such as "Генерирую видео..." out.
QString cleanGenerationStatus(const QString& text);

// All of them, in the order above.
Cleaned clean(const QString& text);

}
