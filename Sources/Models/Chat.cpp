#include "Chat.h"

namespace Korvi {

using namespace Qt::Literals;

Chat Chat::fromJson(const JsonReader& json) {
    return {
        .id = json.integer("id"_L1),
        .name = json.string("name"_L1),
        .description = json.optionalString("description"_L1),
        .language = json.optionalString("language"_L1),
        .mode = json.string("mode"_L1),
        .createdAt = json.string("createdAt"_L1),
        .updatedAt = json.string("updatedAt"_L1),
        .userId = json.string("userId"_L1),
        .organizationId = json.optionalString("organizationId"_L1),
        .projectId = json.optionalInteger("projectId"_L1),
        .isFavorite = json.optionalBoolean("isFavorite"_L1),
    };
}

QJsonObject Chat::toJson() const {
    QJsonObject object{
        {"id"_L1, id},
        {"name"_L1, name},
        {"mode"_L1, mode},
        {"createdAt"_L1, createdAt},
        {"updatedAt"_L1, updatedAt},
        {"userId"_L1, userId},
    };
    insertIfPresent(object, "description"_L1, description);
    insertIfPresent(object, "language"_L1, language);
    insertIfPresent(object, "organizationId"_L1, organizationId);
    insertIfPresent(object, "projectId"_L1, projectId);
    insertIfPresent(object, "isFavorite"_L1, isFavorite);
    return object;
}

ChatListResponse ChatListResponse::fromJson(const JsonReader& json) {
    return {.data = json.array<Chat>("data"_L1)};
}

}
