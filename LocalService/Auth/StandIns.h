#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Accounts at other providers, played for development and tests: "dev-anna" is what the account "anna" brings along from
/// any provider. The real ones are asked over the network, which this service does not do.
namespace korvi::service::standins {

/// Of an identity token in the form of a JWT, signed by nobody.
struct Claims {
    std::string subject;
    std::string nonce;
};

/// The e-mail address by which the account behind a token is a user here; absent for any other token.
std::optional<std::string> emailOf(std::string_view provider, std::string_view token);

/// The name of the account behind such an address.
std::optional<std::string> accountOf(std::string_view provider, std::string_view email);

std::optional<Claims> claimsOf(std::string_view identityToken);

}
