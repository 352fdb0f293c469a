#pragma once

#include "FileTypeCategory.h"
#include "FileValidationResult.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace Korvi {

// Which files a message can carry. Extensions are tested in lowercase.
namespace SupportedFileTypes {

constexpr qint64 maxFileSize = 10'000'000; // bytes
constexpr qint64 maxMediaSize = 20'000'000;

bool isExtensionSupported(const QString& extension, bool includeMedia);
FileTypeCategory getCategory(const QString& filename, const std::optional<QString>& mimeType);
FileValidationResult validateFile(
    const QString& filename, qint64 fileSize, const std::optional<QString>& mimeType, bool isAIPlusMode);
QString preferredMIMEType(const QString& extension);

// For a file dialog: "Изображения (*.png *.jpg ...)". All of them first, then each kind, then any file.
QStringList nameFilters(bool includeMedia);

// "512 байт", "10 МБ", "1,5 ГБ": decimal units.
QString byteCount(qint64 bytes);

}

}
