#pragma once

#include "OrganizationMember.h"

namespace Korvi {

// The signed-in user.
struct User {
    QString id;
    std::optional<QString> email;
    bool isBlocked = false;
    std::optional<QString> firstName;
    std::optional<QString> lastName;
    std::optional<QString> phoneNumber;
    std::optional<std::vector<ExtendedOrganizationMember>> organizationMembers;
    std::optional<QString> campaign;
    QString createdAt;
    bool settingsIncludeChatHistory = false; // JSON key "settings_includeChatHistory"

    // First and last name, or the first name, or the e-mail address, or "User".
    QString displayName() const;
    // Memberships that count: not the invited and the deleted ones.
    std::vector<ExtendedOrganizationMember> validOrganizations() const;

    static User fromJson(const JsonReader& json);
    bool operator==(const User&) const = default;
};

}
