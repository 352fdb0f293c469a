#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korvi::service {

/// 256 random bits in URL-safe base64 without padding.
std::string randomToken();

/// A random identifier in the form of a UUID.
std::string randomId();

/// `digits` random decimal digits, each equally likely.
std::string randomDigits(std::size_t digits);

/// What is stored in place of a token or a code: the database never holds one that works.
std::string sha256Hex(std::string_view secret);

/// Compares in a time that depends on the lengths only.
bool equalSecrets(std::string_view a, std::string_view b);

}
