#pragma once

#include "JsonReader.h"

namespace Korvi {

struct SessionLocation {
    std::optional<QString> ip;
    std::optional<QString> id;
    std::optional<QString> country;
    std::optional<QString> city;

    static SessionLocation fromJson(const JsonReader& json);
    bool operator==(const SessionLocation&) const = default;
};

struct SessionDevice {
    std::optional<QString> name;

    static SessionDevice fromJson(const JsonReader& json);
    bool operator==(const SessionDevice&) const = default;
};

// A session at the service. `opaqueToken` is the bearer token: it is a secret and goes to the token store only.
struct Session {
    QString id;
    std::optional<QString> deviceId;
    bool isTrusted = false;
    QString opaqueToken;
    std::optional<QString> locationId;
    std::optional<SessionLocation> location;
    std::optional<SessionDevice> device;
    QString createdAt;

    static Session fromJson(const JsonReader& json);
    bool operator==(const Session&) const = default;
};

}
