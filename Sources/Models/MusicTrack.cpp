#include "MusicTrack.h"

namespace Korvi {

using namespace Qt::Literals;

QString MusicTrack::formattedDuration() const {
    if (!duration)
        return {};
    const qint64 seconds = static_cast<qint64>(*duration);
    return u"%1:%2"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, QChar(u'0'));
}

MusicTrack MusicTrack::fromJson(const JsonReader& json) {
    return {
        .id = json.string("id"_L1),
        .audioUrl = json.string("audioUrl"_L1),
        .title = json.string("title"_L1),
        .coverImageUrl = json.optionalString("coverImageUrl"_L1),
        .duration = json.optionalNumber("duration"_L1),
        .style = json.optionalString("style"_L1),
    };
}

QJsonObject MusicTrack::toJson() const {
    QJsonObject object{{"id"_L1, id}, {"audioUrl"_L1, audioUrl}, {"title"_L1, title}};
    insertIfPresent(object, "coverImageUrl"_L1, coverImageUrl);
    insertIfPresent(object, "duration"_L1, duration);
    insertIfPresent(object, "style"_L1, style);
    return object;
}

}
