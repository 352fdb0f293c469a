#pragma once

#include "FileTypeCategory.h"

#include <QString>

#include <variant>

namespace Korvi {

// Whether a file may be attached, or why not.
struct FileValidationResult {
    struct Valid {
        FileTypeCategory category;
        bool operator==(const Valid&) const = default;
    };
    struct UnsupportedFormat {
        QString extension;
        bool operator==(const UnsupportedFormat&) const = default;
    };
    struct FileTooLarge {
        qint64 maxSize = 0; // bytes
        qint64 actualSize = 0;
        bool operator==(const FileTooLarge&) const = default;
    };
    struct MediaRequiresAIPlus {
        bool operator==(const MediaRequiresAIPlus&) const = default;
    };
    using Value = std::variant<Valid, UnsupportedFormat, FileTooLarge, MediaRequiresAIPlus>;

    Value value;

    QString errorMessage() const; // Russian, for the user; empty when it is valid

    bool operator==(const FileValidationResult&) const = default;
};

}
