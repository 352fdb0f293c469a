#include "WebSearchContent.h"

#include <QLoggingCategory>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcWebSearch, "korvi.models.search")

WebSearchResult WebSearchResult::fromJson(const JsonReader& json) {
    return {
        .title = json.string("title"_L1),
        .url = json.string("url"_L1),
        .content = json.string("content"_L1),
        .favicon = json.optionalString("favicon"_L1),
    };
}

QJsonObject WebSearchResult::toJson() const {
    QJsonObject object{{"title"_L1, title}, {"url"_L1, url}, {"content"_L1, content}};
    insertIfPresent(object, "favicon"_L1, favicon);
    return object;
}

WebSearchImage WebSearchImage::fromJson(const JsonReader& json) {
    return {.url = json.string("url"_L1), .description = json.optionalString("description"_L1)};
}

QJsonObject WebSearchImage::toJson() const {
    QJsonObject object{{"url"_L1, url}};
    insertIfPresent(object, "description"_L1, description);
    return object;
}

namespace {

template <class Read>
auto tolerant(Read read) -> decltype(read()) {
    try {
        return read();
    } catch (const DecodingError& error) {
        qCWarning(lcWebSearch).noquote() << "❌ [WebSearchContent] Ignored" << error.keyPath << error.reason;
        return std::nullopt;
    }
}

}

WebSearchContent WebSearchContent::fromJson(const JsonReader& json) {
    WebSearchContent content;
    content.type = tolerant([&] { return json.optionalString("type"_L1); });
    content.query = tolerant([&] { return json.optionalString("query"_L1); });
    content.answer = tolerant([&] { return json.optionalArray<WebSearchAnswerItem>("answer"_L1); });
    content.results = tolerant([&] { return json.optionalArray<WebSearchResult>("results"_L1); });
    content.images = tolerant([&] { return json.optionalArray<WebSearchImage>("images"_L1); });
    content.responseTime = tolerant([&] { return json.optionalNumber("responseTime"_L1); });
    return content;
}

QJsonObject WebSearchContent::toJson() const {
    QJsonObject object;
    insertIfPresent(object, "type"_L1, type);
    insertIfPresent(object, "query"_L1, query);
    if (answer)
        object.insert("answer"_L1, toJsonArray(*answer));
    if (results)
        object.insert("results"_L1, toJsonArray(*results));
    if (images)
        object.insert("images"_L1, toJsonArray(*images));
    insertIfPresent(object, "responseTime"_L1, responseTime);
    return object;
}

}
