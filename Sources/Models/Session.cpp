#include "Session.h"

namespace Korvi {

using namespace Qt::Literals;

SessionLocation SessionLocation::fromJson(const JsonReader& json) {
    return {
        .ip = json.optionalString("ip"_L1),
        .id = json.optionalString("id"_L1),
        .country = json.optionalString("country"_L1),
        .city = json.optionalString("city"_L1),
    };
}

SessionDevice SessionDevice::fromJson(const JsonReader& json) {
    return {.name = json.optionalString("name"_L1)};
}

Session Session::fromJson(const JsonReader& json) {
    Session session{
        .id = json.string("id"_L1),
        .deviceId = json.optionalString("deviceId"_L1),
        .isTrusted = json.boolean("isTrusted"_L1),
        .opaqueToken = json.string("opaqueToken"_L1),
        .locationId = json.optionalString("locationId"_L1),
        .location = std::nullopt,
        .device = std::nullopt,
        .createdAt = json.string("createdAt"_L1),
    };
    if (const auto location = json.optionalObject("location"_L1))
        session.location = SessionLocation::fromJson(*location);
    if (const auto device = json.optionalObject("device"_L1))
        session.device = SessionDevice::fromJson(*device);
    return session;
}

}
