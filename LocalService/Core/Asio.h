#pragma once

// g++ 12 needs <utility> before Boost 1.74's awaitable.hpp, which uses std::exchange without including it.
#include <utility>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>

namespace korvi::service {
namespace asio = boost::asio;
}
