#pragma once

#include "Async.h"

#include <QUrl>

#include <functional>
#include <stdexcept>

namespace Korvi {

// Why a visit has ended without a redirect.
class WebAuthenticationError : public std::runtime_error {
public:
    enum class Code { cancelled, startFailed };

    WebAuthenticationError(Code errorCode, const char* text)
        : std::runtime_error(text)
        , code(errorCode) {}

    Code code;
};

// Signing in on a page in the user's own browser, where they may be known already. The page ends with a redirect that
// comes back to the application. One visit at a time: a new one ends the one before it.
class WebAuthenticationSession {
public:
    struct Visit {
        QUrl page; // https; plain http towards this machine only
        // Where the page will redirect to: an address from listen(), or a URL of which only the scheme counts.
        QUrl redirect;
        // Anybody can open a URL of our scheme. One that this refuses is ignored, and the visit goes on.
        std::function<bool(const QUrl&)> isExpected;
    };

    virtual ~WebAuthenticationSession() = default;

    // A new address on this machine, http://127.0.0.1:PORT/PATH, that serves the next visit and is closed with it.
    // Empty when there is none to be had.
    virtual QUrl listen() = 0;

    // Shows the page and waits for the redirect, as long as it takes. Throws WebAuthenticationError: `cancelled` when a
    // newer visit has begun, `startFailed` when the page could not be shown. Cancelling the awaiting scope ends it.
    virtual Async<QUrl> visit(Visit visit) = 0;
};

}
