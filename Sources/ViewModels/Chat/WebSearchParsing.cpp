#include "Chat/WebSearchParsing.h"

namespace Korvi::WebSearchParsing {

using namespace Qt::Literals;

namespace {

using Keys = std::initializer_list<QLatin1String>;

std::optional<QString> firstString(const QJsonObject& object, Keys keys) {
    for (const QLatin1String key : keys) {
        if (const QJsonValue value = object.value(key); value.isString())
            return value.toString();
    }
    return std::nullopt;
}

std::optional<double> firstNumber(const QJsonObject& object, Keys keys) {
    for (const QLatin1String key : keys) {
        if (const QJsonValue value = object.value(key); value.isDouble())
            return value.toDouble();
    }
    return std::nullopt;
}

// The entries of an array of objects; absent when it is something else.
template <class T, class Read>
std::optional<std::vector<T>> readArray(const QJsonObject& body, QLatin1String key, Read read) {
    const QJsonValue value = body.value(key);
    if (!value.isArray())
        return std::nullopt;
    const QJsonArray array = value.toArray();
    std::vector<T> entries;
    for (const QJsonValue each : array) {
        if (!each.isObject())
            return std::nullopt;
        if (std::optional<T> entry = read(each.toObject()))
            entries.push_back(std::move(*entry));
    }
    return entries;
}

std::optional<WebSearchResult> readResult(const QJsonObject& object) {
    const auto title = firstString(object, {"title"_L1});
    const auto url = firstString(object, {"url"_L1});
    if (!title || !url)
        return std::nullopt;
    return WebSearchResult{.title = *title,
        .url = *url,
        .content = firstString(object, {"content"_L1, "snippet"_L1}).value_or(QString()),
        .favicon = firstString(object, {"favicon"_L1})};
}

std::optional<WebSearchImage> readImage(const QJsonObject& object) {
    const auto url = firstString(object, {"url"_L1, "image_url"_L1});
    if (!url)
        return std::nullopt;
    return WebSearchImage{.url = *url, .description = firstString(object, {"description"_L1})};
}

std::optional<WebSearchAnswerItem::WebSearchSource> readSource(const QJsonObject& object) {
    const auto url = firstString(object, {"url"_L1});
    const QJsonValue index = object.value("index"_L1);
    constexpr qint64 none = std::numeric_limits<qint64>::min();
    if (!url || index.toInteger(none) == none)
        return std::nullopt;
    return WebSearchAnswerItem::WebSearchSource{.url = *url, .index = index.toInteger()};
}

std::optional<WebSearchAnswerItem> readAnswerItem(const QJsonObject& object) {
    const auto text = firstString(object, {"text"_L1});
    if (!text)
        return std::nullopt;
    return WebSearchAnswerItem(
        *text, readArray<WebSearchAnswerItem::WebSearchSource>(object, "sources"_L1, readSource));
}

}

std::optional<std::vector<WebSearchResult>> parseSearchResults(const QJsonObject& body) {
    return readArray<WebSearchResult>(body, "results"_L1, readResult);
}

std::optional<std::vector<WebSearchImage>> parseSearchImages(const QJsonObject& body) {
    return readArray<WebSearchImage>(body, "images"_L1, readImage);
}

std::optional<std::vector<WebSearchAnswerItem>> parseSearchAnswer(const QJsonObject& body) {
    return readArray<WebSearchAnswerItem>(body, "answer"_L1, readAnswerItem);
}

WebSearchContent parseSearch(const QJsonObject& body, const QString& knownQuery) {
    return {
        .type = u"search"_s,
        .query = firstString(body, {"query"_L1}).value_or(knownQuery),
        .answer = parseSearchAnswer(body),
        .results = parseSearchResults(body),
        .images = parseSearchImages(body),
        .responseTime = firstNumber(body, {"responseTime"_L1, "response_time"_L1}),
    };
}

}
