#pragma once

#include "SocketEvent.h"

#include <QStringList>

namespace Korvi {

// The JSON frames of the chat socket: {"event": name, "data": object}.
namespace SocketFrame {

// A file that goes with a message.
struct File {
    QString url;
    QString filename;
    QString mimetype;

    bool operator==(const File&) const = default;
};

// The events of one received frame, in order: none for a frame that is malformed or unknown, two for the start of
// an image tool.
std::vector<SocketEvent> parse(const QByteArray& frame);

QString create(const QString& model, const QString& text, const QStringList& imageUrls, const std::vector<File>& files,
    std::optional<qint64> projectId);
QString send(qint64 chatId, const QString& text, const QStringList& imageUrls, const std::vector<File>& files);
QString abort(qint64 chatId);

}

}
