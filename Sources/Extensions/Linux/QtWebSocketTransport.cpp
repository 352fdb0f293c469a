#include "QtWebSocketTransport.h"

#include "Loopback.h"
#include "QtHttpTransport.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRegularExpression>
#include <QTimer>
#include <QWebSocket>
#include <QWebSocketHandshakeOptions>

namespace Korvi {

using namespace Qt::Literals;

namespace {

URLError socketError(QAbstractSocket::SocketError error, const QString& text) {
    switch (error) {
    case QAbstractSocket::ConnectionRefusedError: return urlError(QNetworkReply::ConnectionRefusedError, text);
    case QAbstractSocket::RemoteHostClosedError: return urlError(QNetworkReply::RemoteHostClosedError, text);
    case QAbstractSocket::HostNotFoundError: return urlError(QNetworkReply::HostNotFoundError, text);
    case QAbstractSocket::SocketTimeoutError: return urlError(QNetworkReply::TimeoutError, text);
    case QAbstractSocket::NetworkError: return urlError(QNetworkReply::TemporaryNetworkFailureError, text);
    case QAbstractSocket::SslHandshakeFailedError: return urlError(QNetworkReply::SslHandshakeFailedError, text);
    default: return URLError(URLError::Code::other, text);
    }
}

class QtWebSocketConnection : public WebSocketConnection {
public:
    explicit QtWebSocketConnection(const WebSocketRequest& request) {
        m_openTimer.setSingleShot(true);
        m_pingTimer.setSingleShot(true);
        connect(&m_openTimer, &QTimer::timeout, this, [this] {
            end([this] { emit failed(urlError(QNetworkReply::TimeoutError, {})); });
            m_socket.abort();
        });
        connect(&m_pingTimer, &QTimer::timeout, this, [this] { emit pingFailed(u"Время ожидания истекло."_s); });
        connect(&m_socket, &QWebSocket::connected, this, [this] {
            if (m_ended)
                return;
            m_openTimer.stop();
            m_isOpen = true;
            emit opened();
        });
        connect(&m_socket, &QWebSocket::textMessageReceived, this, &WebSocketConnection::messageReceived);
        connect(&m_socket, &QWebSocket::binaryMessageReceived, this,
            [this](const QByteArray& bytes) { emit messageReceived(QString::fromUtf8(bytes)); });
        connect(&m_socket, &QWebSocket::pong, this, [this] {
            m_pingTimer.stop();
            emit pong();
        });
        connect(&m_socket, &QWebSocket::bytesWritten, this, [this] { confirmWritten(); });
        connect(&m_socket, &QWebSocket::disconnected, this, [this] {
            if (m_isOpen)
                return end([this] { emit closed(m_socket.closeCode(), m_socket.closeReason()); });
            // The error that says why no connection came about follows within this turn.
            QMetaObject::invokeMethod(
                this, [this] { end([this] { emit failed(urlError(QNetworkReply::RemoteHostClosedError, {})); }); },
                Qt::QueuedConnection);
        });
        connect(&m_socket, QOverload<QAbstractSocket::SocketError>::of(&QWebSocket::error), this,
            [this](QAbstractSocket::SocketError error) {
                const URLError reason = socketError(error, m_socket.errorString());
                const int status = m_isOpen ? 0 : refusedStatus();
                end([this, reason, status] {
                    if (status != 0)
                        emit refused(status);
                    else
                        emit failed(reason);
                });
            });

        if (request.url.scheme() != "wss"_L1 && !(request.url.scheme() == "ws"_L1 && isLoopback(request.url))) {
            QMetaObject::invokeMethod(
                this,
                [this] {
                    end([this] {
                        emit failed(URLError(URLError::Code::secureConnectionFailed,
                            u"Без шифрования можно обращаться только к этому компьютеру."_s));
                    });
                },
                Qt::QueuedConnection);
            return;
        }
        QNetworkRequest outgoing(request.url);
        for (const auto& [name, value] : request.headers)
            outgoing.setRawHeader(name, value);
        m_openTimer.start(request.openTimeout);
        m_socket.open(outgoing);
    }

    ~QtWebSocketConnection() override {
        m_socket.disconnect(this);
        m_socket.abort();
    }

    void sendText(const QString& text) override {
        if (!m_isOpen || m_ended) {
            QMetaObject::invokeMethod(
                this, [this, text] { emit sendFailed(text, u"Сокет закрыт."_s); }, Qt::QueuedConnection);
            return;
        }
        m_unwritten.push_back(text);
        m_socket.sendTextMessage(text);
        QMetaObject::invokeMethod(
            this, [this] { confirmWritten(); }, Qt::QueuedConnection);
    }

    void ping(std::chrono::milliseconds timeout) override {
        m_pingTimer.start(timeout);
        m_socket.ping();
    }

    QStringList close(int code) override {
        m_ended = true;
        m_openTimer.stop();
        m_pingTimer.stop();
        m_socket.disconnect(this);
        m_socket.flush();
        // What has left must not be given back, and what is given back must not leave: either would double it.
        if (m_socket.bytesToWrite() > 0) {
            m_socket.abort();
            return std::exchange(m_unwritten, {});
        }
        m_socket.close(static_cast<QWebSocketProtocol::CloseCode>(code));
        m_socket.flush();
        m_unwritten.clear();
        return {};
    }

private:
    // Frames have left only when nothing is buffered any more: what was still here when the socket broke is
    // reported as failed, so that its sender can send it again.
    void confirmWritten() {
        m_socket.flush();
        if (m_ended || m_socket.bytesToWrite() > 0)
            return;
        for (const QString& text : std::exchange(m_unwritten, {}))
            emit sent(text);
    }

    int refusedStatus() const {
        // Qt tells a refused upgrade only in words, "... code: 403 (Forbidden)". Other failures quote keys of the
        // handshake, which hold digits as well. A 400 comes without its number and counts as a failure.
        static const QRegularExpression status(uR"(\b([1-5]\d\d) \()"_s);
        return status.match(m_socket.errorString()).captured(1).toInt();
    }

    template <class Report>
    void end(Report report) {
        if (std::exchange(m_ended, true))
            return;
        m_openTimer.stop();
        m_pingTimer.stop();
        for (const QString& text : std::exchange(m_unwritten, {}))
            emit sendFailed(text, u"Соединение прервано."_s);
        report();
    }

    QWebSocket m_socket;
    QTimer m_openTimer;
    QTimer m_pingTimer;
    QStringList m_unwritten;
    bool m_isOpen = false;
    bool m_ended = false;
};

}

std::unique_ptr<WebSocketConnection> QtWebSocketTransport::open(WebSocketRequest request) {
    return std::make_unique<QtWebSocketConnection>(request);
}

}
