#include "MessageContent.h"

#include "Match.h"

#include <QLoggingCategory>

#include <array>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcMessageContent, "korvi.models.content")

namespace {

using Content = MessageContent;

// Media addresses come under three names; one that is missing or not a string passes on to the next.
std::optional<QString> firstString(const QJsonObject& object, std::initializer_list<QLatin1String> keys) {
    for (const QLatin1String key : keys) {
        const QJsonValue value = object.value(key);
        if (value.isString())
            return value.toString();
    }
    return std::nullopt;
}

Content::Value withoutUrl(QLatin1String kind) {
    qCWarning(lcMessageContent).noquote() << "❌ [MessageContent] Could not find URL for" << kind << "type";
    return Content::Unknown{};
}

Content::Value readText(const JsonReader& json) {
    return Content::Text{json.string("text"_L1)};
}

Content::Value readThinking(const JsonReader& json) {
    return Content::Thinking{json.string("text"_L1)};
}

Content::Value readGenerating(const JsonReader& json) {
    return Content::Generating{json.string("text"_L1)};
}

Content::Value readImage(const JsonReader& json) {
    const auto url = firstString(json.raw(), {"imageUrl"_L1, "image_url"_L1, "url"_L1});
    return url ? Content::Value(Content::Image{*url}) : withoutUrl("image"_L1);
}

Content::Value readVideo(const JsonReader& json) {
    const auto url = firstString(json.raw(), {"videoUrl"_L1, "video_url"_L1, "url"_L1});
    return url ? Content::Value(Content::Video{*url}) : withoutUrl("video"_L1);
}

Content::Value readMusic(const JsonReader& json) {
    const auto url = firstString(json.raw(), {"musicUrl"_L1, "music_url"_L1, "url"_L1});
    return url ? Content::Value(Content::Music{*url}) : withoutUrl("music"_L1);
}

Content::Value readFile(const JsonReader& json) {
    const auto url = firstString(json.raw(), {"fileUrl"_L1, "file_url"_L1, "url"_L1});
    if (!url)
        return withoutUrl("file"_L1);
    return Content::File{
        .url = *url,
        .filename = firstString(json.raw(), {"filename"_L1}).value_or(u"file"_s),
        .mimetype = firstString(json.raw(), {"mimetype"_L1}).value_or(u"application/octet-stream"_s),
    };
}

Content::Value readArtifact(const JsonReader& json) {
    return Artifact::fromJson(json);
}

Content::Value readSearch(const JsonReader& json) {
    return WebSearchContent::fromJson(json);
}

Content::Value readSearchInProgress(const JsonReader& json) {
    return Content::SearchInProgress{firstString(json.raw(), {"query"_L1, "text"_L1}).value_or(QString())};
}

struct Row {
    QLatin1String type;
    Content::Value (*read)(const JsonReader&);
};

constexpr std::array rows{
    Row{"text"_L1, readText},
    Row{"image_url"_L1, readImage},
    Row{"image"_L1, readImage},
    Row{"video_url"_L1, readVideo},
    Row{"video"_L1, readVideo},
    Row{"music_url"_L1, readMusic},
    Row{"music"_L1, readMusic},
    Row{"audio_url"_L1, readMusic},
    Row{"audio"_L1, readMusic},
    Row{"file_url"_L1, readFile},
    Row{"file"_L1, readFile},
    Row{"artifact"_L1, readArtifact},
    Row{"thinking"_L1, readThinking},
    Row{"generating"_L1, readGenerating},
    Row{"search"_L1, readSearch},
    Row{"web_search"_L1, readSearch},
    Row{"search_in_progress"_L1, readSearchInProgress},
    Row{"searching"_L1, readSearchInProgress},
};

QJsonObject typed(QLatin1String type, QJsonObject object = {}) {
    object.insert("type"_L1, type);
    return object;
}

}

MessageContent MessageContent::fromJson(const JsonReader& json) {
    const QString type = json.string("type"_L1);
    for (const Row& row : rows) {
        if (type == row.type)
            return {row.read(json)};
    }
    return {Unknown{}};
}

QJsonObject MessageContent::toJson() const {
    return match(
        value,
        [](const Text& block) {
            return typed("text"_L1, {{"text"_L1, block.text}});
        },
        [](const Image& block) {
            return typed("image_url"_L1, {{"image_url"_L1, block.url}});
        },
        [](const Video& block) {
            return typed("video_url"_L1, {{"video_url"_L1, block.url}});
        },
        [](const Music& block) {
            return typed("music_url"_L1, {{"music_url"_L1, block.url}});
        },
        [](const File& block) {
            return typed("file_url"_L1,
                {{"fileUrl"_L1, block.url}, {"filename"_L1, block.filename}, {"mimetype"_L1, block.mimetype}});
        },
        [](const Artifact& block) { return typed("artifact"_L1, block.toJson()); },
        [](const Thinking& block) {
            return typed("thinking"_L1, {{"text"_L1, block.text}});
        },
        [](const Generating& block) {
            return typed("generating"_L1, {{"text"_L1, block.kind}});
        },
        // The type string of the payload is "search" or "web_search"; both read back, and are kept.
        [](const WebSearchContent& block) {
            QJsonObject object = block.toJson();
            if (object.value("type"_L1).toString() != "web_search"_L1)
                object.insert("type"_L1, "search"_L1);
            return object;
        },
        [](const SearchInProgress& block) {
            return typed("search_in_progress"_L1, {{"query"_L1, block.query}});
        },
        [](const Unknown&) { return typed("unknown"_L1); });
}

}
