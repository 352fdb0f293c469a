#pragma once

#include "Files/FileStore.h"
#include "Http/Message.h"
#include "Http/MultipartParser.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace korvi::service {

/// A multipart body on its way into a file. Dropped before its end, it leaves nothing behind.
class Upload {
public:
    Upload(FileStore& files, std::string userId, const std::string& boundary);

    /// Why no more is wanted, or absent.
    std::optional<Response> take(std::string_view bytes);
    /// The body is complete: keeps the file and answers with its address.
    Response finish();

private:
    bool takeContent(std::string_view bytes);

    FileStore& files_;
    std::string userId_;
    std::unique_ptr<FileDraft> draft_;
    MultipartParser parser_;
    std::string name_;
    FileType type_;
    std::string beginning_;
    // Why the content was not taken.
    std::optional<Response> refusal_;
};

Response tooLarge(bool isMedia);

}
