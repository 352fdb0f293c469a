#include "Project.h"

namespace Korvi {

using namespace Qt::Literals;

ProjectDocument ProjectDocument::fromJson(const JsonReader& json) {
    return {
        .id = json.integer("id"_L1),
        .name = json.string("name"_L1),
        .projectId = json.integer("projectId"_L1),
        .createdAt = json.string("createdAt"_L1),
        .url = json.string("url"_L1),
        .mimetype = json.optionalString("mimetype"_L1),
        .size = json.optionalInteger("size"_L1),
        .tokens = json.integer("tokens"_L1),
    };
}

QJsonObject ProjectDocument::toJson() const {
    QJsonObject object{{"id"_L1, id}, {"name"_L1, name}, {"projectId"_L1, projectId}, {"createdAt"_L1, createdAt},
        {"url"_L1, url}, {"tokens"_L1, tokens}};
    insertIfPresent(object, "mimetype"_L1, mimetype);
    insertIfPresent(object, "size"_L1, size);
    return object;
}

ProjectNote ProjectNote::fromJson(const JsonReader& json) {
    return {
        .id = json.integer("id"_L1),
        .name = json.string("name"_L1),
        .projectId = json.integer("projectId"_L1),
        .tokens = json.integer("tokens"_L1),
        .createdAt = json.string("createdAt"_L1),
        .updatedAt = json.string("updatedAt"_L1),
        .content = json.optionalString("content"_L1),
    };
}

QJsonObject ProjectNote::toJson() const {
    QJsonObject object{{"id"_L1, id}, {"name"_L1, name}, {"projectId"_L1, projectId}, {"tokens"_L1, tokens},
        {"createdAt"_L1, createdAt}, {"updatedAt"_L1, updatedAt}};
    insertIfPresent(object, "content"_L1, content);
    return object;
}

ProjectIntegration ProjectIntegration::fromJson(const JsonReader& json) {
    return {.id = json.integer("id"_L1), .type = json.string("type"_L1), .projectId = json.integer("projectId"_L1)};
}

QJsonObject ProjectIntegration::toJson() const {
    return {{"id"_L1, id}, {"type"_L1, type}, {"projectId"_L1, projectId}};
}

Project Project::fromJson(const JsonReader& json) {
    return {
        .id = json.integer("id"_L1),
        .name = json.string("name"_L1),
        .description = json.optionalString("description"_L1),
        .instructions = json.optionalString("instructions"_L1),
        .instructionsTokens = json.optionalInteger("instructionsTokens"_L1),
        .createdAt = json.string("createdAt"_L1),
        .userId = json.optionalString("userId"_L1),
        .organizationId = json.optionalString("organizationId"_L1),
        .documents = json.optionalArray<ProjectDocument>("documents"_L1),
        .notes = json.optionalArray<ProjectNote>("notes"_L1),
        .integrations = json.optionalArray<ProjectIntegration>("integrations"_L1),
    };
}

QJsonObject Project::toJson() const {
    QJsonObject object{{"id"_L1, id}, {"name"_L1, name}, {"createdAt"_L1, createdAt}};
    insertIfPresent(object, "description"_L1, description);
    insertIfPresent(object, "instructions"_L1, instructions);
    insertIfPresent(object, "instructionsTokens"_L1, instructionsTokens);
    insertIfPresent(object, "userId"_L1, userId);
    insertIfPresent(object, "organizationId"_L1, organizationId);
    if (documents)
        object.insert("documents"_L1, toJsonArray(*documents));
    if (notes)
        object.insert("notes"_L1, toJsonArray(*notes));
    if (integrations)
        object.insert("integrations"_L1, toJsonArray(*integrations));
    return object;
}

}
