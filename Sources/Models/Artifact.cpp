#include "Artifact.h"

namespace Korvi {

using namespace Qt::Literals;

Artifact Artifact::fromJson(const JsonReader& json) {
    return {
        .id = json.string("id"_L1),
        .title = json.string("title"_L1),
        .kind = json.string("kind"_L1),
        .text = json.string("text"_L1),
        .version = json.optionalInteger("version"_L1),
    };
}

QJsonObject Artifact::toJson() const {
    QJsonObject object{{"id"_L1, id}, {"title"_L1, title}, {"kind"_L1, kind}, {"text"_L1, text.toString()}};
    insertIfPresent(object, "version"_L1, version);
    return object;
}

}
