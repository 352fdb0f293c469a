#include "Auth/StandIns.h"

#include "Core/Json.h"
#include "Core/Text.h"

#include <algorithm>

namespace korvi::service::standins {

namespace {

constexpr std::string_view prefix = "dev-";
constexpr std::string_view domain = ".example";

bool isName(std::string_view text) {
    const auto isPlain = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '_' || c == '-';
    };
    return !text.empty() && text.size() <= 64 && std::all_of(text.begin(), text.end(), isPlain);
}

std::string ending(std::string_view provider) {
    return "@" + std::string(provider) + std::string(domain);
}

}

std::optional<std::string> emailOf(std::string_view provider, std::string_view token) {
    if (!token.starts_with(prefix) || !isName(token.substr(prefix.size())))
        return std::nullopt;
    return std::string(token.substr(prefix.size())) + ending(provider);
}

std::optional<std::string> accountOf(std::string_view provider, std::string_view email) {
    const std::string tail = ending(provider);
    if (!email.ends_with(tail))
        return std::nullopt;
    return std::string(email.substr(0, email.size() - tail.size()));
}

std::optional<Claims> claimsOf(std::string_view identityToken) {
    const auto first = identityToken.find('.');
    const auto second = first == std::string_view::npos ? first : identityToken.find('.', first + 1);
    if (second == std::string_view::npos)
        return std::nullopt;
    const auto payload = fromBase64Url(identityToken.substr(first + 1, second - first - 1));
    const auto claims = payload ? parseJson(*payload) : std::nullopt;
    const auto subject = claims ? stringAt(*claims, "sub") : std::nullopt;
    if (!subject)
        return std::nullopt;
    return Claims{*subject, stringAt(*claims, "nonce").value_or("")};
}

}
