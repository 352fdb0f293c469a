#include "AuthenticationRecord.h"

namespace Korvi {

using namespace Qt::Literals;

AuthenticationRecord AuthenticationRecord::fromJson(const JsonReader& json) {
    return {
        .userId = json.string("userId"_L1),
        .googleId = json.optionalString("googleId"_L1),
        .vkId = json.optionalString("vkId"_L1),
        .yandexId = json.optionalString("yandexId"_L1),
        .mailRuId = json.optionalString("mailRuId"_L1),
    };
}

}
