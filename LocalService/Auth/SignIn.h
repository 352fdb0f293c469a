#pragma once

#include "Auth/RateLimiter.h"
#include "Core/Time.h"
#include "Store/AccountStore.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace korvi::service {

struct SignedIn {
    UserRow user;
    SessionRow session;
    /// Only here in the clear: the database keeps its hash.
    std::string token;
    bool isRegistration = false;
};

/// Sign-in by a code that is sent to an e-mail address.
class SignIn {
public:
    using Deliver = std::function<void(const std::string& email, const std::string& code)>;
    using Clock = std::function<WallClock::time_point()>;

    SignIn(AccountStore& store, Deliver deliver, Clock clock = WallClock::now);

    /// The address in the form in which it identifies a user; absent if it is not an address.
    static std::optional<std::string> normalized(const std::string& email);

    /// Sends a new code, which replaces an older one. If too many were asked for: how long to wait.
    std::optional<std::chrono::seconds> requestCode(const std::string& email);
    /// Absent for a code that is wrong, expired, used or guessed at too often.
    std::optional<SignedIn> verify(const std::string& email, const std::string& code);
    /// For whoever has proved otherwise that the address is theirs.
    SignedIn signInAs(const std::string& email);
    std::optional<SessionRow> sessionOf(const std::string& token);

private:
    AccountStore& store_;
    Deliver deliver_;
    Clock clock_;
    RateLimiter limiter_;
};

}
