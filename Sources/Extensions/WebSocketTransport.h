#pragma once

#include "HttpTransport.h"

#include <QObject>
#include <QStringList>

#include <memory>
#include <optional>

namespace Korvi {

struct WebSocketRequest {
    QUrl url;
    HttpHeaders headers;
    std::chrono::milliseconds openTimeout = std::chrono::seconds(60);
};

// One socket, from its opening to its end. Exactly one of `closed`, `failed` and `refused` comes at the end, and
// nothing after it. Signals come on the main thread and never inside a call of this class.
class WebSocketConnection : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Reports through `sent` or `sendFailed`, with the same text, in the order of the calls.
    virtual void sendText(const QString& text) = 0;
    // Answered by `pong`; an unanswered ping fails after `timeout`.
    virtual void ping(std::chrono::milliseconds timeout) = 0;
    // No signal follows. Gives back the texts that had not left yet, oldest first.
    virtual QStringList close(int code) = 0;

signals:
    void opened();
    void messageReceived(const QString& text); // binary messages come as UTF-8 text
    void sent(const QString& text);
    void sendFailed(const QString& text, const QString& reason);
    void pong();
    void pingFailed(const QString& reason);
    void closed(int code, const QString& reason);
    void failed(const Korvi::URLError& error);
    void refused(int httpStatus); // the upgrade was answered with a status of its own
};

class WebSocketTransport {
public:
    virtual ~WebSocketTransport() = default;

    virtual std::unique_ptr<WebSocketConnection> open(WebSocketRequest request) = 0;
};

}
