#pragma once

#include "Core/Asio.h"
#include "Http/Api.h"

#include <cstdint>
#include <memory>
#include <string>

namespace korvi::service {

/// REST, files and socket on one port. Everything runs on the thread of `io`.
///
/// A body is read as it comes: an upload goes to its file in small parts, anything else is bounded before it is read. A
/// request that is refused gets its answer although its body is still on the way.
class HttpServer {
public:
    /// Listens at once; throws std::runtime_error with a message for the user if that is not possible. `port` 0: a free one.
    HttpServer(asio::io_context& io, Api& api, AnswerEngine& engine, const std::string& host, std::uint16_t port);
    ~HttpServer();

    std::uint16_t port() const;
    void stop();

private:
    struct Impl;
    std::shared_ptr<Impl> impl_;
};

}
