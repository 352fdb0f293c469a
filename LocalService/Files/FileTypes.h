#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace korvi::service {

/// What is done with a file by its kind: `media` may be larger, `text` can be read by any model.
enum class FileKind { image, media, text, document, other };

struct FileType {
    std::string mime;
    FileKind kind = FileKind::other;
};

/// By the name's extension, and by what was declared where the extension says nothing.
FileType fileTypeOf(std::string_view filename, std::string_view declared);

/// Whether a file begins like a video or audio file, whatever it is called.
bool beginsLikeMedia(std::string_view firstBytes);

/// The MIME type of a picture by its first bytes, or empty.
std::string pictureType(std::string_view firstBytes);

}
