#include "SocketFrame.h"

#include <QJsonDocument>
#include <QLoggingCategory>

#include <array>

namespace Korvi::SocketFrame {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcSocketFrame, "korvi.chat.frame")

namespace {

using Events = std::vector<SocketEvent>;

std::optional<QString> stringAt(const QJsonObject& data, QLatin1String key) {
    const QJsonValue value = data.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QString> addressIn(const QJsonObject& data) {
    for (const QLatin1String key : {"image_url"_L1, "imageUrl"_L1, "url"_L1}) {
        if (auto url = stringAt(data, key))
            return url;
    }
    return std::nullopt;
}

// Tools report their results in several shapes; the first that applies counts.
std::optional<QJsonObject> toolContent(const QJsonObject& data) {
    if (data.value("loading"_L1).isBool())
        return QJsonObject{{"loading"_L1, data.value("loading"_L1)}};
    if (data.value("content"_L1).isObject())
        return data.value("content"_L1).toObject();
    if (const auto url = addressIn(data))
        return QJsonObject{{"imageUrl"_L1, *url}};
    if (data.value("result"_L1).isObject()) {
        const QJsonObject result = data.value("result"_L1).toObject();
        const auto url = addressIn(result);
        return url ? QJsonObject{{"imageUrl"_L1, *url}} : result;
    }
    if (data.value("output"_L1).isObject())
        return data.value("output"_L1).toObject();
    return std::nullopt;
}

Events readChunk(const QJsonObject& data) {
    const auto content = stringAt(data, "content"_L1);
    return content ? Events{{SocketEvent::TextChunk{*content}}} : Events{};
}

Events readThinking(const QJsonObject& data) {
    const auto content = stringAt(data, "content"_L1);
    return content ? Events{{SocketEvent::ThinkingChunk{*content}}} : Events{};
}

Events readCreation(const QJsonObject& data) {
    try {
        return {{SocketEvent::Creation{Chat::fromJson(JsonReader(data, u"data"_s))}}};
    } catch (const DecodingError& error) {
        qCWarning(lcSocketFrame).noquote() << "⚠️ [ChatService] Dropped a create frame:" << error.what();
        return {};
    }
}

Events readToolStart(const QJsonObject& data) {
    const auto tool = stringAt(data, "tool"_L1);
    if (!tool)
        return {};
    Events events{{SocketEvent::ToolStart{*tool}}};
    const QString name = tool->toLower();
    if (name == "generateimage"_L1 || name.contains("dalle"_L1) || name.contains("image"_L1))
        events.push_back({SocketEvent::ArtifactChunk{*tool, {}}});
    return events;
}

Events readToolArgs(const QJsonObject& data) {
    const auto tool = stringAt(data, "tool"_L1);
    if (!tool || !data.value("args"_L1).isObject())
        return {};
    return {{SocketEvent::ArtifactChunk{*tool, data.value("args"_L1).toObject()}}};
}

Events readToolEnd(const QJsonObject& data) {
    const auto tool = stringAt(data, "tool"_L1);
    return tool ? Events{{SocketEvent::ToolEnd{*tool, toolContent(data)}}} : Events{};
}

Events readEnd(const QJsonObject&) {
    return {{SocketEvent::StreamEnd{}}};
}

Events readError(const QJsonObject& data) {
    auto message = stringAt(data, "message"_L1);
    if (!message)
        message = stringAt(data, "error"_L1);
    std::optional<qint64> chatId;
    try {
        chatId = JsonReader(data).optionalInteger("chatId"_L1);
    } catch (const DecodingError&) {
        // An error without a chat is still worth showing.
    }
    return {{SocketEvent::Error{chatId, message.value_or(u"Unknown error"_s)}}};
}

struct Row {
    QLatin1String event;
    Events (*read)(const QJsonObject& data);
};

constexpr std::array rows{
    Row{"chunk"_L1, readChunk},
    Row{"thinking"_L1, readThinking},
    Row{"create"_L1, readCreation},
    Row{"tool_call"_L1, readToolStart},
    Row{"tool_start"_L1, readToolStart},
    Row{"tool_call_args"_L1, readToolArgs},
    Row{"tool_end"_L1, readToolEnd},
    Row{"end"_L1, readEnd},
    Row{"error"_L1, readError},
};

QString frame(QLatin1String event, const QJsonObject& data) {
    const QJsonObject object{{"event"_L1, event}, {"data"_L1, data}};
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

void addContent(QJsonObject& data, const QString& text, const QStringList& imageUrls, const std::vector<File>& files) {
    QJsonArray parts;
    bool needsVision = !imageUrls.isEmpty();
    for (const QString& url : imageUrls)
        parts.append(QJsonObject{{"type"_L1, "image_url"_L1}, {"imageUrl"_L1, url}});
    for (const File& file : files) {
        needsVision = needsVision || file.mimetype.startsWith("video/"_L1);
        parts.append(QJsonObject{{"type"_L1, "file_url"_L1}, {"fileUrl"_L1, file.url}, {"filename"_L1, file.filename},
            {"mimetype"_L1, file.mimetype}});
    }
    if (!text.isEmpty())
        parts.append(QJsonObject{{"type"_L1, "text"_L1}, {"text"_L1, text}});
    data.insert("content"_L1, parts);
    if (needsVision)
        data.insert("flags"_L1, QJsonObject{{"vision"_L1, true}});
}

}

std::vector<SocketEvent> parse(const QByteArray& bytes) {
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    const QJsonValue event = object.value("event"_L1);
    const QJsonValue data = object.value("data"_L1);
    if (!event.isString() || !data.isObject())
        return {};
    const QString name = event.toString();
    for (const Row& row : rows) {
        if (name == row.event)
            return row.read(data.toObject());
    }
    qCWarning(lcSocketFrame).noquote().nospace() << "⚠️ [ChatService] Unknown event: '" << name.left(100) << "'";
    return {};
}

QString create(const QString& model, const QString& text, const QStringList& imageUrls, const std::vector<File>& files,
    std::optional<qint64> projectId) {
    QJsonObject data{{"mode"_L1, model}};
    addContent(data, text, imageUrls, files);
    insertIfPresent(data, "projectId"_L1, projectId);
    return frame("create"_L1, data);
}

QString send(qint64 chatId, const QString& text, const QStringList& imageUrls, const std::vector<File>& files) {
    QJsonObject data{{"chatId"_L1, chatId}};
    addContent(data, text, imageUrls, files);
    return frame("send"_L1, data);
}

QString abort(qint64 chatId) {
    return frame("abort"_L1, {{"chatId"_L1, chatId}});
}

}
