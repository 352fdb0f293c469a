#include "User.h"

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

QString User::displayName() const {
    if (firstName && lastName)
        return *firstName + u' ' + *lastName;
    if (firstName)
        return *firstName;
    return email.value_or(u"User"_s);
}

std::vector<ExtendedOrganizationMember> User::validOrganizations() const {
    std::vector<ExtendedOrganizationMember> valid;
    if (!organizationMembers)
        return valid;
    std::copy_if(organizationMembers->begin(), organizationMembers->end(), std::back_inserter(valid),
        [](const ExtendedOrganizationMember& member) {
            return member.role != OrganizationMemberRole::invited && member.role != OrganizationMemberRole::deleted;
        });
    return valid;
}

User User::fromJson(const JsonReader& json) {
    return {
        .id = json.string("id"_L1),
        .email = json.optionalString("email"_L1),
        .isBlocked = json.boolean("isBlocked"_L1),
        .firstName = json.optionalString("firstName"_L1),
        .lastName = json.optionalString("lastName"_L1),
        .phoneNumber = json.optionalString("phoneNumber"_L1),
        .organizationMembers = json.optionalArray<ExtendedOrganizationMember>("organizationMembers"_L1),
        .campaign = json.optionalString("campaign"_L1),
        .createdAt = json.string("createdAt"_L1),
        .settingsIncludeChatHistory = json.boolean("settings_includeChatHistory"_L1),
    };
}

}
