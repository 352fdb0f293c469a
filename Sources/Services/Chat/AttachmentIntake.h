#pragma once

#include "TaskScope.h"

#include <QImage>
#include <QString>
#include <QUrl>

#include <optional>

namespace Korvi {

class Random;
class Workers;

// Keeps what is to be attached where it stays readable until it is sent: in a folder of the client's own, which only
// the user can read. Copies are made off the main thread.
class AttachmentIntake {
public:
    struct Taken {
        QString filename; // as the user knows it
        qint64 size = 0;  // bytes
        QString mimeType;
        QUrl localURL; // the copy, or the original when it could not be copied
    };

    // What is left in `folder` of an earlier run is removed.
    AttachmentIntake(QString folder, Workers& workers, Random& random);

    // Absent when it is no file that can be read. What is too large for any message is not copied.
    Task<std::optional<Taken>> takeFile(QUrl file);
    // An image that is not a file; `type` is its MIME type.
    Task<std::optional<Taken>> takeImageData(QByteArray data, QString type);
    // A pasted one. Its file; absent when it cannot be written.
    Task<std::optional<QUrl>> takeImage(QImage image);
    // Whether it is a file in the folder.
    bool owns(const QUrl& localURL) const;
    // Removes a copy that is not needed any more. Other files stay.
    void discard(const QUrl& localURL);

private:
    QString newPath(const QString& prefix, const QString& suffix);

    QString m_folder;
    Workers& m_workers;
    Random& m_random;
};

}
