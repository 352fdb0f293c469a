#pragma once

#include <QString>

#include <array>
#include <optional>

namespace Korvi {

// Whose account one can sign in with.
enum class SocialProvider { google, yandex, vk, apple };

// In the order in which they are offered.
inline constexpr std::array socialProviders{
    SocialProvider::google, SocialProvider::yandex, SocialProvider::vk, SocialProvider::apple};

// As the user reads it.
inline QString nameOf(SocialProvider provider) {
    switch (provider) {
    case SocialProvider::google: return QStringLiteral("Google");
    case SocialProvider::yandex: return QStringLiteral("Яндекс");
    case SocialProvider::vk: return QStringLiteral("VK");
    case SocialProvider::apple: return QStringLiteral("Apple");
    }
    return {};
}

inline std::optional<SocialProvider> providerNamed(const QString& name) {
    for (const SocialProvider provider : socialProviders) {
        if (nameOf(provider) == name)
            return provider;
    }
    return std::nullopt;
}

}
