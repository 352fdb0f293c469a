#include "ChatMessage.h"

#include "Match.h"

#include <QStringList>

#include <array>

namespace Korvi {

using namespace Qt::Literals;

namespace {

// In the order of ChatMessage::Role.
constexpr std::array roleNames{"system"_L1, "user"_L1, "ai"_L1, "assistant"_L1, "tool"_L1};

ChatMessage::Role readRole(const JsonReader& json, QLatin1String key) {
    const QString raw = json.string(key);
    for (std::size_t i = 0; i < roleNames.size(); ++i) {
        if (raw == roleNames[i])
            return static_cast<ChatMessage::Role>(i);
    }
    throw DecodingError(json.pathOf(key), u"not a role"_s);
}

}

QLatin1String rawValue(ChatMessage::Role role) {
    return roleNames[static_cast<std::size_t>(role)];
}

QString ChatMessage::text() const {
    QStringList parts;
    for (const MessageContent& block : content.value_or(std::vector<MessageContent>())) {
        if (const auto* visible = block.as<MessageContent::Text>())
            parts.append(visible->text);
        else if (const auto* thinking = block.as<MessageContent::Thinking>())
            parts.append(thinking->text);
    }
    return parts.join(u'\n');
}

ChatMessage ChatMessage::fromJson(const JsonReader& json) {
    return {
        .id = json.integer("id"_L1),
        .createdAt = json.string("createdAt"_L1),
        .chatId = json.integer("chatId"_L1),
        .role = readRole(json, "role"_L1),
        .content = json.optionalArray<MessageContent>("content"_L1),
        .providerId = json.optionalString("providerId"_L1),
        .usageTokens = json.number("usageTokens"_L1),
    };
}

QJsonObject ChatMessage::toJson() const {
    QJsonObject object{
        {"id"_L1, id},
        {"createdAt"_L1, createdAt},
        {"chatId"_L1, chatId},
        {"role"_L1, rawValue(role)},
        {"usageTokens"_L1, usageTokens},
    };
    if (content)
        object.insert("content"_L1, toJsonArray(*content));
    insertIfPresent(object, "providerId"_L1, providerId);
    return object;
}

MessageListResponse MessageListResponse::fromJson(const JsonReader& json) {
    return {.data = json.array<ChatMessage>("data"_L1)};
}

}
