#include "Core/Secrets.h"

#include <array>
#include <cstdint>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <span>
#include <stdexcept>

namespace korvi::service {

namespace {

void fillRandom(std::span<unsigned char> bytes) {
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1)
        throw std::runtime_error("Системный источник случайных чисел недоступен");
}

std::string hex(std::span<const unsigned char> bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const unsigned char byte : bytes) {
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

}

std::string randomToken() {
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    std::array<unsigned char, 43> bytes{};
    fillRandom(bytes);
    std::string token;
    for (const unsigned char byte : bytes)
        token += alphabet[byte & 63U];
    return token;
}

std::string randomId() {
    std::array<unsigned char, 16> bytes{};
    fillRandom(bytes);
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0FU) | 0x40U);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3FU) | 0x80U);
    std::string text = hex(bytes);
    for (const std::size_t at : {std::size_t{20}, std::size_t{16}, std::size_t{12}, std::size_t{8}})
        text.insert(at, 1, '-');
    return text;
}

std::string randomDigits(std::size_t digits) {
    std::string text;
    while (text.size() < digits) {
        std::array<unsigned char, 16> bytes{};
        fillRandom(bytes);
        // 250 is the largest multiple of ten that fits: bytes above it would favour the low digits.
        for (const unsigned char byte : bytes)
            if (byte < 250 && text.size() < digits)
                text += static_cast<char>('0' + byte % 10);
    }
    return text;
}

std::string sha256Hex(std::string_view secret) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    if (EVP_Digest(secret.data(), secret.size(), digest.data(), &length, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("SHA-256 недоступен");
    return hex(std::span(digest).first(length));
}

bool equalSecrets(std::string_view a, std::string_view b) {
    return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

}
