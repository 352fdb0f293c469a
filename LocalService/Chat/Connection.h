#pragma once

#include <string>

namespace korvi::service {

enum class CloseReason { replaced, signedOut, shutdown, flooding };

/// The socket of a session as the answer engine sees it.
class Connection {
public:
    virtual ~Connection() = default;
    /// The outbox may have something to send.
    virtual void wake() = 0;
    virtual void close(CloseReason reason) = 0;
};

}
