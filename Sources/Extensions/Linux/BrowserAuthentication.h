#pragma once

#include "WebAuthenticationSession.h"

#include <QObject>

#include <optional>

namespace Korvi {

class LoopbackRedirect;
class Random;

// The page opens in the browser of the desktop. The redirect comes back to a port of this machine, or as a URL of our
// scheme that the desktop starts the program with and that ends up in take().
class BrowserAuthentication : public WebAuthenticationSession {
public:
    // Shows an address in the browser; false when there is none.
    using Open = std::function<bool(const QUrl&)>;

    BrowserAuthentication(Open open, Random& random);
    ~BrowserAuthentication() override;

    QUrl listen() override;
    Async<QUrl> visit(Visit visit) override;

    // Whether a visit has waited for that URL. Any other is ignored.
    bool take(const QUrl& url);

    std::function<void()> onReturned; // a visit has got its redirect; may be empty

private:
    struct Current {
        Visit visit;
        Resolver<QUrl> resolver;
    };

    bool isExpected(const QUrl& url) const;
    void finish(const QUrl& url);
    void end(const char* why);
    void closeLoopback();

    Open m_open;
    Random& m_random;
    std::optional<Current> m_current;
    QObject m_listeners;                    // owns the retired ones as well
    LoopbackRedirect* m_loopback = nullptr; // null unless one listens
};

}
