#include "AuthenticationResponse.h"

namespace Korvi {

using namespace Qt::Literals;

AuthenticationResponse AuthenticationResponse::fromJson(const JsonReader& json) {
    QJsonObject withoutMembers = json.raw();
    withoutMembers.remove("organizationMembers"_L1);
    return {
        .user = User::fromJson(JsonReader(withoutMembers)),
        .isRegistration = json.optionalBoolean("isRegistration"_L1),
        .session = Session::fromJson(json.object("session"_L1)),
    };
}

}
