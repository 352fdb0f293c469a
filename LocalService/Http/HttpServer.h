#pragma once

#include "Core/Asio.h"
#include "Http/Api.h"

#include <cstdint>
#include <memory>
#include <string>

namespace korvi::service {

/// REST and socket on one port. Everything runs on the thread of `io`.
class HttpServer {
public:
    /// Listens at once; throws std::runtime_error with a message for the user if that is not possible. `port` 0: a free one.
    HttpServer(asio::io_context& io, Api& api, AnswerEngine& engine, const std::string& host, std::uint16_t port);
    ~HttpServer();

    std::uint16_t port() const;
    void stop();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}
