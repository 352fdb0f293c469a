#include "OrganizationMember.h"

#include <array>

namespace Korvi {

using namespace Qt::Literals;

namespace {

struct RoleRow {
    OrganizationMemberRole role;
    QLatin1String raw;
    QStringView displayName;
};

constexpr std::array roles{
    RoleRow{OrganizationMemberRole::owner, "OWNER"_L1, u"Владелец"},
    RoleRow{OrganizationMemberRole::admin, "ADMIN"_L1, u"Администратор"},
    RoleRow{OrganizationMemberRole::member, "MEMBER"_L1, u"Участник"},
    RoleRow{OrganizationMemberRole::invited, "INVITED"_L1, u"Приглашён"},
    RoleRow{OrganizationMemberRole::deleted, "DELETED"_L1, u"Удалён"},
};

std::optional<std::vector<QString>> optionalStrings(const JsonReader& json, QLatin1String key) {
    const QJsonValue value = json.raw().value(key);
    if (value.isUndefined() || value.isNull())
        return std::nullopt;
    if (!value.isArray())
        throw DecodingError(json.pathOf(key), u"an array is required"_s);
    std::vector<QString> strings;
    for (const auto element : value.toArray()) {
        if (!element.isString())
            throw DecodingError(json.pathOf(key), u"an array of strings is required"_s);
        strings.push_back(element.toString());
    }
    return strings;
}

}

OrganizationMemberRole organizationMemberRole(const JsonReader& json, QLatin1String key) {
    const QString raw = json.string(key);
    for (const RoleRow& row : roles) {
        if (raw == row.raw)
            return row.role;
    }
    throw DecodingError(json.pathOf(key), u"not a role"_s);
}

QString displayName(OrganizationMemberRole role) {
    for (const RoleRow& row : roles) {
        if (row.role == role)
            return row.displayName.toString();
    }
    return {};
}

OrganizationMember OrganizationMember::fromJson(const JsonReader& json) {
    return {
        .id = json.string("id"_L1),
        .email = json.string("email"_L1),
        .userId = json.optionalString("userId"_L1),
        .role = organizationMemberRole(json, "role"_L1),
        .organizationId = json.string("organizationId"_L1),
        .createdAt = json.optionalString("createdAt"_L1),
        .updatedAt = json.optionalString("updatedAt"_L1),
    };
}

Organization Organization::fromJson(const JsonReader& json) {
    return {
        .id = json.string("id"_L1),
        .name = json.string("name"_L1),
        .members = json.optionalArray<OrganizationMember>("members"_L1),
        .settingsAvailableChatModes = optionalStrings(json, "settings_availableChatModes"_L1),
        .settingsAvailableTools = optionalStrings(json, "settings_availableTools"_L1),
        .settingsAvailableTaskModels = optionalStrings(json, "settings_availableTaskModels"_L1),
    };
}

ExtendedOrganizationMember ExtendedOrganizationMember::fromJson(const JsonReader& json) {
    ExtendedOrganizationMember member;
    static_cast<OrganizationMember&>(member) = OrganizationMember::fromJson(json);
    member.organization = Organization::fromJson(json.object("organization"_L1));
    return member;
}

}
