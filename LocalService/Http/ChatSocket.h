#pragma once

#include "Chat/AnswerEngine.h"
#include "Core/Asio.h"

#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/message.hpp>
#include <memory>

namespace korvi::service {

using UpgradeRequest = boost::beast::http::request<boost::beast::http::empty_body>;

/// Completes the WebSocket handshake on `socket` and serves the session until either side closes. The connection owns
/// itself.
void startChatSocket(asio::ip::tcp::socket socket, UpgradeRequest request, SessionRow session, AnswerEngine& engine);

}
