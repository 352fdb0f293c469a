#include "WebSearchAnswerItem.h"

#include <QRegularExpression>
#include <QSet>
#include <QUrl>

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

QString domainOf(const QString& url) {
    QString host = QUrl(url).host();
    return host.isEmpty() ? url : host.remove("www."_L1);
}

WebSearchAnswerItem::WebSearchSource WebSearchAnswerItem::WebSearchSource::fromJson(const JsonReader& json) {
    return {.url = json.string("url"_L1), .index = json.integer("index"_L1)};
}

QJsonObject WebSearchAnswerItem::WebSearchSource::toJson() const {
    return {{"url"_L1, url}, {"index"_L1, index}};
}

WebSearchAnswerItem::WebSearchAnswerItem(QString itemText, std::optional<std::vector<WebSearchSource>> itemSources)
    : text(std::move(itemText))
    , sources(std::move(itemSources)) {
    static const QRegularExpression citation(uR"(\[?\[(\d{1,2})\]\]?\((https?://[^)]+)\))"_s);
    static const QRegularExpression gap(uR"(\n{3,})"_s);

    // Every citation ends with a bracket: behind the last one there is none, and looking for it would be slow.
    const qsizetype end = text.lastIndexOf(u')') + 1;
    QString cited = text.first(end);
    QSet<QString> urls;
    for (auto it = citation.globalMatch(cited); it.hasNext();) {
        const QRegularExpressionMatch found = it.next();
        const QString url = found.captured(2);
        if (urls.contains(url))
            continue;
        urls.insert(url);
        citationSources.push_back({.index = found.captured(1).toInt(), .url = url, .domain = domainOf(url)});
    }
    std::stable_sort(citationSources.begin(), citationSources.end(),
        [](const CitationSource& a, const CitationSource& b) { return a.index < b.index; });

    cleanedText = cited.remove(citation);
    cleanedText += QStringView(text).sliced(end);
    cleanedText.replace(gap, u"\n\n"_s);
    cleanedText = cleanedText.trimmed();
}

WebSearchAnswerItem WebSearchAnswerItem::fromJson(const JsonReader& json) {
    return WebSearchAnswerItem(json.string("text"_L1), json.optionalArray<WebSearchSource>("sources"_L1));
}

QJsonObject WebSearchAnswerItem::toJson() const {
    QJsonObject object{{"text"_L1, text}};
    if (sources)
        object.insert("sources"_L1, toJsonArray(*sources));
    return object;
}

}
