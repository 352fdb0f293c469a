#pragma once

#include "WebSocketTransport.h"

namespace Korvi {

// WebSocket on Qt WebSockets.
class QtWebSocketTransport : public WebSocketTransport {
public:
    std::unique_ptr<WebSocketConnection> open(WebSocketRequest request) override;
};

}
