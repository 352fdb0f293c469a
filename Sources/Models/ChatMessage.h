#pragma once

#include "MessageContent.h"

namespace Korvi {

// One message of a chat: an ordered list of typed blocks.
struct ChatMessage {
    // Answers that this client begins are `ai`; `assistant` is accepted from the service and shown the same way.
    enum class Role { system, user, ai, assistant, tool };

    qint64 id = 0;
    QString createdAt;
    qint64 chatId = 0;
    Role role = Role::user;
    std::optional<std::vector<MessageContent>> content;
    std::optional<QString> providerId;
    double usageTokens = 0;

    // The strings of all text and thinking blocks, in order, with a line feed between them.
    QString text() const;

    static ChatMessage fromJson(const JsonReader& json);
    QJsonObject toJson() const;

    bool operator==(const ChatMessage&) const = default;
};

QLatin1String rawValue(ChatMessage::Role role);

// The form in which the service lists messages: {"data": [...]}.
struct MessageListResponse {
    std::vector<ChatMessage> data;

    static MessageListResponse fromJson(const JsonReader& json);
};

}
