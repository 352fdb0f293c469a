#pragma once

#include "Store/Database.h"

#include <optional>
#include <string>

namespace korvi::service {

struct UserRow {
    std::string id;
    std::string email;
    std::string createdAt;
};

struct SessionRow {
    std::string id;
    std::string userId;
    std::string createdAt;
};

struct CodeRow {
    std::string hash;
    long long expiresAt = 0;
    int triesLeft = 0;
};

/// Users, their sessions and the sign-in codes under way.
class AccountStore {
public:
    explicit AccountStore(Database& database)
        : db_(database) {}

    void saveCode(const std::string& email, const CodeRow& code);
    std::optional<CodeRow> code(const std::string& email);
    void removeCode(const std::string& email);

    std::optional<UserRow> userByEmail(const std::string& email);
    std::optional<UserRow> user(const std::string& id);
    UserRow addUser(const std::string& email);
    /// Everything that belongs to the user goes with the row.
    void removeUser(const std::string& id);

    SessionRow addSession(const std::string& userId, const std::string& tokenHash);
    std::optional<SessionRow> sessionByTokenHash(const std::string& tokenHash);
    void removeSession(const std::string& id);

private:
    Database& db_;
};

}
