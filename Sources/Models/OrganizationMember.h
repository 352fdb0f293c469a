#pragma once

#include "JsonReader.h"

namespace Korvi {

enum class OrganizationMemberRole { owner, admin, member, invited, deleted };

// Throws DecodingError for a role this client does not know.
OrganizationMemberRole organizationMemberRole(const JsonReader& json, QLatin1String key);
QString displayName(OrganizationMemberRole role);

struct OrganizationMember {
    QString id;
    QString email;
    std::optional<QString> userId;
    OrganizationMemberRole role = OrganizationMemberRole::member;
    QString organizationId;
    std::optional<QString> createdAt;
    std::optional<QString> updatedAt;

    static OrganizationMember fromJson(const JsonReader& json);
    bool operator==(const OrganizationMember&) const = default;
};

struct Organization {
    QString id;
    QString name;
    std::optional<std::vector<OrganizationMember>> members;
    std::optional<std::vector<QString>> settingsAvailableChatModes;
    std::optional<std::vector<QString>> settingsAvailableTools;
    std::optional<std::vector<QString>> settingsAvailableTaskModels;

    static Organization fromJson(const JsonReader& json);
    bool operator==(const Organization&) const = default;
};

// A membership of the signed-in user, with the organization it is in.
struct ExtendedOrganizationMember : OrganizationMember {
    Organization organization;

    static ExtendedOrganizationMember fromJson(const JsonReader& json);
    bool operator==(const ExtendedOrganizationMember&) const = default;
};

}
