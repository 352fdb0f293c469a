#pragma once

#include "ChatMessage.h"
#include "Scheduler.h"
#include "SocketEvent.h"
#include "SocketFrame.h"
#include "WebSocketTransport.h"

#include <functional>

namespace Korvi {

class APIClient;
class Random;

// The one WebSocket over which answers stream, and the chat calls over REST. The connection is disposable: each
// attempt has a ticket, a socket and a number of its own, and whatever an old one still reports is ignored.
// Operations on the socket report no failure: a frame that cannot go out now is queued, and the outcome is an
// event. Main thread only.
class ChatService : public QObject {
    Q_OBJECT

public:
    struct Dependencies {
        APIClient& client;
        WebSocketTransport& sockets;
        Scheduler& scheduler;
        Random& random;
    };

    static constexpr auto openTimeout = std::chrono::seconds(60);
    static constexpr auto heartbeatInterval = std::chrono::seconds(30);
    static constexpr auto pongTimeout = std::chrono::seconds(25);
    static constexpr auto longestDelay = std::chrono::seconds(30);
    static constexpr auto reconnectWait = std::chrono::seconds(5);

    explicit ChatService(Dependencies dependencies);
    ~ChatService() override;

    std::function<void(const SocketEvent&)> onEvent;
    // "Connected" or "Reconnecting..."
    std::function<void(const QString&)> onConnectionStatusChanged;

    // Starts an attempt unless one is running or the socket is open.
    void connect();
    // Queued frames stay; nothing reconnects by itself afterwards.
    void disconnect();
    // Drops the queued frames: they are of a user who leaves, and must not go out in another one's name.
    void discardPending() { m_pendingMessages.clear(); }
    // Returns when the socket has opened, or after 5 seconds: test isConnected() then.
    Task<void> reconnectAndWait();
    bool isConnected() const { return m_isConnected; }

    void createChat(const QString& model, const QString& text, const QStringList& imageUrls = {},
        const std::vector<SocketFrame::File>& files = {}, std::optional<qint64> projectId = std::nullopt);
    void sendMessage(qint64 chatId, const QString& text, const QStringList& imageUrls = {},
        const std::vector<SocketFrame::File>& files = {});
    void stopGeneration(qint64 chatId);

    // These fail with APIError or URLError.
    Task<std::vector<Chat>> getChats();
    Task<std::vector<ChatMessage>> getMessages(qint64 chatId);
    Task<Chat> renameChat(qint64 chatId, QString name);
    Task<Chat> setFavorite(qint64 chatId, bool isFavorite);
    Task<void> deleteChat(qint64 chatId);
    Task<QByteArray> downloadArtifactPDF(qint64 chatId, QString artifactId, qint64 version);

    const QStringList& pendingMessages() const { return m_pendingMessages; } // oldest first

signals:
    void attemptFailed(const QString& reason); // it was given up before there was a socket
    void disconnected();                       // by disconnect(): of that there is no event

private:
    // A socket may be dropped from inside its own signal, so it ends in a later turn.
    struct EndLater {
        void operator()(WebSocketConnection* socket) const { socket->deleteLater(); }
    };

    Task<void> openSocket(quint64 attempt);
    void watch(WebSocketConnection& socket, quint64 attempt);
    void socketOpened();
    void socketLost(const std::optional<URLError>& error);
    void pingFailed(const QString& reason);
    void dropSocket(int code);
    void scheduleReconnect();
    void startHeartbeat();
    void send(const QString& frame);
    void sendRaw(const QString& frame);
    void requeue(const QString& frame, const QString& reason);
    void emitEvent(SocketEvent::Value value);
    void report(const QString& status);

    Dependencies m_dependencies;
    std::unique_ptr<WebSocketConnection, EndLater> m_socket;
    bool m_isConnected = false;
    bool m_isConnecting = false;
    QStringList m_pendingMessages;
    Timer m_reconnectTimer; // active while a delayed reconnect is armed
    quint64 m_connectionId = 0;
    int m_reconnectAttempt = 0;
    Timer m_heartbeatTimer;
    std::vector<Resolver<void>> m_openWaiters;
    TaskScope m_scope; // last: its tasks end before anything they use
};

}
