#pragma once

#include "JsonReader.h"

namespace Korvi {

// One conversation as the service keeps it.
struct Chat {
    qint64 id = 0;
    QString name;
    std::optional<QString> description;
    std::optional<QString> language;
    QString mode;      // identifier of the model that the chat was created with
    QString createdAt; // kept as text, never parsed
    QString updatedAt; // kept as text; sorts as text
    QString userId;
    std::optional<QString> organizationId;
    std::optional<qint64> projectId;
    std::optional<bool> isFavorite; // absent means false

    static Chat fromJson(const JsonReader& json);
    QJsonObject toJson() const;

    bool operator==(const Chat&) const = default;
};

// The form in which the service lists chats: {"data": [...]}.
struct ChatListResponse {
    std::vector<Chat> data;

    static ChatListResponse fromJson(const JsonReader& json);
};

}
