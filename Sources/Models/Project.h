#pragma once

#include "JsonReader.h"

namespace Korvi {

struct ProjectDocument {
    qint64 id = 0;
    QString name;
    qint64 projectId = 0;
    QString createdAt;
    QString url;
    std::optional<QString> mimetype;
    std::optional<qint64> size; // bytes
    qint64 tokens = 0;

    static ProjectDocument fromJson(const JsonReader& json);
    QJsonObject toJson() const;
    bool operator==(const ProjectDocument&) const = default;
};

struct ProjectNote {
    qint64 id = 0;
    QString name;
    qint64 projectId = 0;
    qint64 tokens = 0;
    QString createdAt;
    QString updatedAt;
    std::optional<QString> content;

    static ProjectNote fromJson(const JsonReader& json);
    QJsonObject toJson() const;
    bool operator==(const ProjectNote&) const = default;
};

struct ProjectIntegration {
    qint64 id = 0;
    QString type;
    qint64 projectId = 0;

    static ProjectIntegration fromJson(const JsonReader& json);
    QJsonObject toJson() const;
    bool operator==(const ProjectIntegration&) const = default;
};

// Chats grouped around a theme, with instructions and documents that hold in all of them.
struct Project {
    qint64 id = 0;
    QString name;
    std::optional<QString> description;
    std::optional<QString> instructions;
    std::optional<qint64> instructionsTokens;
    QString createdAt; // kept as text
    std::optional<QString> userId;
    std::optional<QString> organizationId;
    std::optional<std::vector<ProjectDocument>> documents;
    std::optional<std::vector<ProjectNote>> notes;
    std::optional<std::vector<ProjectIntegration>> integrations;

    static Project fromJson(const JsonReader& json);
    QJsonObject toJson() const;
    bool operator==(const Project&) const = default;
};

}
