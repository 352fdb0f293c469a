#pragma once

#include "FileTypeCategory.h"

#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>

namespace Korvi {

// A file that a message is to carry.
struct ChatFileAttachment {
    QUuid id;
    QString filename;
    qint64 fileSize = 0; // bytes
    std::optional<QString> mimeType;
    FileTypeCategory category = FileTypeCategory::unsupported;
    std::optional<QUrl> localURL;
    std::optional<QString> remoteURL;
    bool isUploading = false;
    double uploadProgress = 0; // from 0 to 1
    std::optional<QString> uploadError;

    bool operator==(const ChatFileAttachment&) const = default;
};

}
