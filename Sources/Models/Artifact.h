#pragma once

#include "JsonReader.h"
#include "SharedText.h"

namespace Korvi {

// A document that an answer generated.
struct Artifact {
    QString id;
    QString title;
    QString kind;
    SharedText text;
    std::optional<qint64> version;

    static Artifact fromJson(const JsonReader& json);
    QJsonObject toJson() const;

    bool operator==(const Artifact&) const = default;
};

}
