#pragma once

#include <QByteArray>
#include <QString>

namespace Korvi {

class Random;

// The alphabet of a nonce. There is no capital W in it.
inline constexpr auto nonceAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVXYZabcdefghijklmnopqrstuvwxyz-._";

// 32 random characters that tie an identity token to one request: the request carries their hash, the service gets
// them raw.
QString makeNonce(Random& random);

// SHA-256 in lowercase hexadecimal.
QString sha256Hex(const QString& text);

}
