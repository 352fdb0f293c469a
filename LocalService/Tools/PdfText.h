#pragma once

#include "Core/Asio.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace korvi::service {

/// The text of PDFs, by poppler's pdftotext if it is installed.
class PdfText {
public:
    explicit PdfText(asio::io_context& io);

    bool isAvailable() const { return program_.has_value(); }
    /// `onEnd` gets the text, at most `limit` bytes, or nothing. Dropping the handle stops it.
    std::shared_ptr<void> read(
        const std::filesystem::path& pdf, std::size_t limit, std::function<void(std::string)> onEnd);

private:
    asio::io_context& io_;
    std::optional<std::filesystem::path> program_;
};

}
