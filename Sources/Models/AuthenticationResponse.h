#pragma once

#include "Session.h"
#include "User.h"

namespace Korvi {

// The answer of every way to sign in. The user's own fields are decoded for completeness: the user that the
// client shows comes from "/user".
struct AuthenticationResponse {
    User user; // without organizationMembers
    std::optional<bool> isRegistration;
    Session session;

    static AuthenticationResponse fromJson(const JsonReader& json);
    bool operator==(const AuthenticationResponse&) const = default;
};

}
