#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace korvi::service {

/// The boundary that a "multipart/form-data" content type names; absent if it is another type or names none.
std::optional<std::string> multipartBoundary(std::string_view contentType);

/// Reads a multipart body (RFC 7578) as it comes, split anywhere, and hands on the bytes of the first part with a given
/// name. Needs memory for one delimiter or one part's header, never for a part.
class MultipartParser {
public:
    static constexpr std::size_t maximumHeader = std::size_t{8} * 1024;
    static constexpr int maximumParts = 64;

    struct Part {
        std::string filename;
        std::string type;
    };
    struct Handlers {
        std::function<void(const Part&)> onPart;
        /// False: nobody wants more; the parser stops.
        std::function<bool(std::string_view)> onBytes;
    };

    MultipartParser(const std::string& boundary, std::string wanted, Handlers handlers);

    /// False if the body is malformed or nobody wants more of it.
    bool feed(std::string_view bytes);
    /// The closing delimiter has come.
    bool isComplete() const { return state_ == State::epilogue; }
    bool hasFailed() const { return state_ == State::failed; }
    bool hasPart() const { return hasPart_; }

private:
    enum class State { preamble, delimiter, header, skipped, taken, epilogue, failed };

    bool step();
    bool passContent();
    bool passDelimiter();
    bool passHeader();
    bool give(std::string_view bytes);

    std::string delimiter_;
    std::string wanted_;
    Handlers handlers_;
    State state_ = State::preamble;
    bool hasPart_ = false;
    int parts_ = 0;
    std::string pending_;
    // Of the line break that ends a header: bytes at the beginning of `pending_`.
    std::size_t headerEnd_ = 0;
};

/// A name for a file that came with any name: its last component, without control characters, not hidden, not long.
std::string safeFilename(std::string_view name);

}
