#pragma once

#include "JsonReader.h"

namespace Korvi {

// Which outside accounts are linked to the user.
struct AuthenticationRecord {
    QString userId;
    std::optional<QString> googleId;
    std::optional<QString> vkId;
    std::optional<QString> yandexId;
    std::optional<QString> mailRuId;

    static AuthenticationRecord fromJson(const JsonReader& json);
    bool operator==(const AuthenticationRecord&) const = default;
};

}
