#pragma once

#include "WebSocketTransport.h"

#include <QPointer>

namespace Korvi::Test {

class FakeSocket;

// What the far side saw of one connection; outlives it.
struct FakeConnection {
    WebSocketRequest request;
    QPointer<FakeSocket> socket;  // null once the client has let go of it
    QStringList frames;           // texts that have arrived
    QStringList unwritten;        // texts that have not left yet
    std::optional<int> closeCode; // how the client closed it
    int pings = 0;
    bool hasEnded = false;
};

// The client's end of a scripted connection.
class FakeSocket : public WebSocketConnection {
    Q_OBJECT

public:
    FakeSocket(std::shared_ptr<FakeConnection> connection, const bool& holdsWrites)
        : m_connection(std::move(connection))
        , m_holdsWrites(holdsWrites) {}

    void sendText(const QString& text) override {
        if (m_connection->hasEnded) {
            QMetaObject::invokeMethod(
                this, [this, text] { emit sendFailed(text, QStringLiteral("closed")); }, Qt::QueuedConnection);
        } else {
            (m_holdsWrites ? m_connection->unwritten : m_connection->frames).append(text);
        }
    }
    void ping(std::chrono::milliseconds) override { ++m_connection->pings; }
    QStringList close(int code) override {
        m_connection->closeCode = code;
        m_connection->hasEnded = true;
        return std::exchange(m_connection->unwritten, {});
    }

private:
    std::shared_ptr<FakeConnection> m_connection;
    const bool& m_holdsWrites;
};

// The far side of the socket. Everything acts on the newest connection: `service.accept()`,
// `service.push(R"({...})")`, `service.frames()`.
class FakeWebSocketTransport : public WebSocketTransport {
public:
    bool holdsWrites = false; // texts stay unwritten

    std::unique_ptr<WebSocketConnection> open(WebSocketRequest request) override {
        auto connection = std::make_shared<FakeConnection>();
        connection->request = std::move(request);
        auto socket = std::make_unique<FakeSocket>(connection, holdsWrites);
        connection->socket = socket.get();
        connections.push_back(std::move(connection));
        return socket;
    }

    std::vector<std::shared_ptr<FakeConnection>> connections; // every one so far

    std::size_t count() const { return connections.size(); }
    FakeConnection& connection() const {
        if (connections.empty())
            throw std::runtime_error("no socket was opened");
        return *connections.back();
    }
    QStringList frames() const { return connections.empty() ? QStringList() : connection().frames; }

    void accept() const { emit socket().opened(); }
    void push(const QString& frame) const { emit socket().messageReceived(frame); }
    void pong() const { emit socket().pong(); }
    void failPing() const { emit socket().pingFailed(QStringLiteral("no pong")); }
    void refuse(int status) const {
        end();
        emit socket().refused(status);
    }
    void close(int code = 1001, const QString& reason = {}) const {
        end();
        emit socket().closed(code, reason);
    }
    // The connection breaks; what had not left is reported first, oldest first.
    void breakOff(URLError::Code code = URLError::Code::networkConnectionLost) const {
        end();
        emit socket().failed(URLError(code, QStringLiteral("Соединение прервано.")));
    }
    void failSend(const QString& text) const { emit socket().sendFailed(text, QStringLiteral("broken pipe")); }

private:
    FakeSocket& socket() const {
        if (!connection().socket)
            throw std::runtime_error("the client has let go of the newest socket");
        return *connection().socket;
    }
    void end() const {
        connection().hasEnded = true;
        for (const QString& text : std::exchange(connection().unwritten, {}))
            failSend(text);
    }
};

}
