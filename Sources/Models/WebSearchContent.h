#pragma once

#include "WebSearchAnswerItem.h"

namespace Korvi {

struct WebSearchResult {
    QString title;
    QString url;
    QString content;
    std::optional<QString> favicon;

    QString domain() const { return domainOf(url); }

    static WebSearchResult fromJson(const JsonReader& json);
    QJsonObject toJson() const;
    bool operator==(const WebSearchResult&) const = default;
};

struct WebSearchImage {
    QString url;
    std::optional<QString> description;

    static WebSearchImage fromJson(const JsonReader& json);
    QJsonObject toJson() const;
    bool operator==(const WebSearchImage&) const = default;
};

// The payload of a finished web search.
struct WebSearchContent {
    std::optional<QString> type;
    std::optional<QString> query;
    std::optional<std::vector<WebSearchAnswerItem>> answer;
    std::optional<std::vector<WebSearchResult>> results;
    std::optional<std::vector<WebSearchImage>> images;
    std::optional<double> responseTime; // seconds

    // Tolerant: a member of an unexpected shape counts as absent, so that one bad search never loses a message.
    static WebSearchContent fromJson(const JsonReader& json);
    QJsonObject toJson() const;
    bool operator==(const WebSearchContent&) const = default;
};

}
