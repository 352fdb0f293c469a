#pragma once

#include <QDateTime>

namespace Korvi {

// Records in the settings store hold moments as seconds since the beginning of 2001, UTC.
namespace StoredDate {

inline QDateTime reference() {
    return QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
}

inline double toSeconds(const QDateTime& moment) {
    return static_cast<double>(reference().msecsTo(moment)) / 1000;
}

inline QDateTime fromSeconds(double seconds) {
    return reference().addMSecs(qRound64(seconds * 1000));
}

}

}
