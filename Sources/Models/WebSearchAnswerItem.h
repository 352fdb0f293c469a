#pragma once

#include "JsonReader.h"

namespace Korvi {

// The host of a URL without "www."; the URL itself when it has no host.
QString domainOf(const QString& url);

// One paragraph of a search answer. The text may hold citations such as "[[1]](https://...)"; they are lifted
// out into `citationSources` when the item is made, and `cleanedText` is the text without them.
struct WebSearchAnswerItem {
    struct WebSearchSource {
        QString url;
        qint64 index = 0;

        static WebSearchSource fromJson(const JsonReader& json);
        QJsonObject toJson() const;
        bool operator==(const WebSearchSource&) const = default;
    };
    struct CitationSource {
        int index = 0;
        QString url;
        QString domain;

        bool operator==(const CitationSource&) const = default;
    };

    WebSearchAnswerItem() = default;
    explicit WebSearchAnswerItem(QString text, std::optional<std::vector<WebSearchSource>> sources = {});

    QString text;
    std::optional<std::vector<WebSearchSource>> sources;
    QString cleanedText;
    std::vector<CitationSource> citationSources; // sorted by index, one for each URL

    static WebSearchAnswerItem fromJson(const JsonReader& json);
    QJsonObject toJson() const;

    bool operator==(const WebSearchAnswerItem&) const = default;
};

}
