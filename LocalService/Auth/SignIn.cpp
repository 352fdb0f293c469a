#include "Auth/SignIn.h"

#include "Core/Limits.h"
#include "Core/Secrets.h"
#include "Core/Text.h"

namespace korvi::service {

namespace {

/// A code is short: bound to its address, its hash is at least of no use for another one.
std::string codeHash(const std::string& email, const std::string& code) {
    return sha256Hex(email + ":" + code);
}

}

SignIn::SignIn(AccountStore& store, Deliver deliver, Clock clock)
    : store_(store)
    , deliver_(std::move(deliver))
    , clock_(std::move(clock))
    , limiter_(limits::codesPerEmail, limits::codesInAll, limits::codeWindow) {}

std::optional<std::string> SignIn::normalized(const std::string& email) {
    const std::string address = lowerCase(trimmed(email));
    const auto at = address.find('@');
    if (address.size() > 254 || at == std::string::npos || at == 0 || at + 1 == address.size() ||
        address.find('@', at + 1) != std::string::npos)
        return std::nullopt;
    for (const char c : address)
        if (static_cast<unsigned char>(c) <= ' ' || c == 0x7F)
            return std::nullopt;
    return address;
}

std::optional<std::chrono::seconds> SignIn::requestCode(const std::string& email) {
    if (const auto wait = limiter_.take(email))
        return wait;
    const std::string code = randomDigits(4);
    store_.saveCode(email, {codeHash(email, code), toMillis(clock_() + limits::codeLife), limits::codeTries});
    deliver_(email, code);
    return std::nullopt;
}

std::optional<SignedIn> SignIn::verify(const std::string& email, const std::string& code) {
    auto row = store_.code(email);
    if (!row)
        return std::nullopt;
    if (row->expiresAt <= toMillis(clock_())) {
        store_.removeCode(email);
        return std::nullopt;
    }
    if (!equalSecrets(row->hash, codeHash(email, code))) {
        if (--row->triesLeft > 0)
            store_.saveCode(email, *row);
        else
            store_.removeCode(email);
        return std::nullopt;
    }
    store_.removeCode(email);
    return signInAs(email);
}

SignedIn SignIn::signInAs(const std::string& email) {
    SignedIn result;
    if (auto user = store_.userByEmail(email)) {
        result.user = *user;
    } else {
        result.user = store_.addUser(email);
        result.isRegistration = true;
    }
    result.token = randomToken();
    result.session = store_.addSession(result.user.id, sha256Hex(result.token));
    return result;
}

std::optional<SessionRow> SignIn::sessionOf(const std::string& token) {
    return token.empty() ? std::nullopt : store_.sessionByTokenHash(sha256Hex(token));
}

}
