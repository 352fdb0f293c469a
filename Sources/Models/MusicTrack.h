#pragma once

#include "JsonReader.h"

namespace Korvi {

// A piece of music that the user has generated.
struct MusicTrack {
    QString id;
    QString audioUrl;
    QString title;
    std::optional<QString> coverImageUrl;
    std::optional<double> duration; // seconds
    std::optional<QString> style;

    // Minutes and whole seconds, "3:07"; empty without a duration.
    QString formattedDuration() const;

    static MusicTrack fromJson(const JsonReader& json);
    QJsonObject toJson() const;

    bool operator==(const MusicTrack&) const = default;
};

}
