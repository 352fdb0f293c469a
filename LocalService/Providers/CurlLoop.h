#pragma once

#include "Core/Asio.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvi::service {

/// How a transfer has ended.
struct HttpOutcome {
    enum class Kind { answered, unreachable, timedOut, untrusted, cut };
    Kind kind = Kind::answered;
    /// libcurl's words, for the part of a message that a technician needs.
    std::string detail;
};

struct HttpPost {
    /// A GET after all: nothing is sent.
    bool isGet = false;
    std::string url;
    std::vector<std::string> headers;
    std::string body;
    std::chrono::seconds connectTimeout{10};
    /// Without a single byte for so long, the transfer ends.
    std::chrono::seconds idleTimeout{180};

    /// Called on the io thread, in order. `retryAfter` is the header's text, or empty.
    std::function<void(long status, const std::string& contentType, const std::string& retryAfter)> onStatus;
    std::function<void(std::string bytes)> onBytes;
    std::function<void(HttpOutcome)> onEnd;
};

/// HTTP requests whose answers stream in, all on one thread of libcurl's multi interface.
class CurlLoop {
public:
    explicit CurlLoop(asio::io_context& io);
    ~CurlLoop();
    CurlLoop(const CurlLoop&) = delete;
    CurlLoop& operator=(const CurlLoop&) = delete;

    /// The transfer ends when the handle is destroyed; none of its functions is called afterwards.
    std::shared_ptr<void> start(HttpPost post);

private:
    struct Impl;
    std::shared_ptr<Impl> impl_;
};

}
