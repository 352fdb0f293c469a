#include "Store/AccountStore.h"

#include "Core/Secrets.h"
#include "Core/Time.h"

namespace korvi::service {

using soci::into;
using soci::use;

void AccountStore::saveCode(const std::string& email, const CodeRow& code) {
    db_.run([&](soci::session& sql) {
        sql << "INSERT OR REPLACE INTO codes(email, code_hash, expires_at, tries_left) VALUES(:e, :h, :x, :t)",
            use(email), use(code.hash), use(code.expiresAt), use(code.triesLeft);
    });
}

std::optional<CodeRow> AccountStore::code(const std::string& email) {
    return db_.run([&](soci::session& sql) -> std::optional<CodeRow> {
        CodeRow row;
        sql << "SELECT code_hash, expires_at, tries_left FROM codes WHERE email = :e", into(row.hash),
            into(row.expiresAt), into(row.triesLeft), use(email);
        return sql.got_data() ? std::optional(row) : std::nullopt;
    });
}

void AccountStore::removeCode(const std::string& email) {
    db_.run([&](soci::session& sql) { sql << "DELETE FROM codes WHERE email = :e", use(email); });
}

std::optional<UserRow> AccountStore::userByEmail(const std::string& email) {
    return db_.run([&](soci::session& sql) -> std::optional<UserRow> {
        UserRow row;
        sql << "SELECT id, email, created_at FROM users WHERE email = :e", into(row.id), into(row.email),
            into(row.createdAt), use(email);
        return sql.got_data() ? std::optional(row) : std::nullopt;
    });
}

std::optional<UserRow> AccountStore::user(const std::string& id) {
    return db_.run([&](soci::session& sql) -> std::optional<UserRow> {
        UserRow row;
        sql << "SELECT id, email, created_at FROM users WHERE id = :i", into(row.id), into(row.email),
            into(row.createdAt), use(id);
        return sql.got_data() ? std::optional(row) : std::nullopt;
    });
}

UserRow AccountStore::addUser(const std::string& email) {
    UserRow row{randomId(), email, toIso8601(WallClock::now())};
    db_.run([&](soci::session& sql) {
        sql << "INSERT INTO users(id, email, created_at) VALUES(:i, :e, :c)", use(row.id), use(row.email),
            use(row.createdAt);
    });
    return row;
}

void AccountStore::removeUser(const std::string& id) {
    db_.run([&](soci::session& sql) { sql << "DELETE FROM users WHERE id = :i", use(id); });
}

SessionRow AccountStore::addSession(const std::string& userId, const std::string& tokenHash) {
    SessionRow row{randomId(), userId, toIso8601(WallClock::now())};
    db_.run([&](soci::session& sql) {
        sql << "INSERT INTO sessions(id, user_id, token_hash, created_at) VALUES(:i, :u, :t, :c)", use(row.id),
            use(row.userId), use(tokenHash), use(row.createdAt);
    });
    return row;
}

std::optional<SessionRow> AccountStore::sessionByTokenHash(const std::string& tokenHash) {
    return db_.run([&](soci::session& sql) -> std::optional<SessionRow> {
        SessionRow row;
        sql << "SELECT id, user_id, created_at FROM sessions WHERE token_hash = :t", into(row.id), into(row.userId),
            into(row.createdAt), use(tokenHash);
        return sql.got_data() ? std::optional(row) : std::nullopt;
    });
}

void AccountStore::removeSession(const std::string& id) {
    db_.run([&](soci::session& sql) { sql << "DELETE FROM sessions WHERE id = :i", use(id); });
}

}
