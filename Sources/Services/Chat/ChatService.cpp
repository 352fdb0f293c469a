#include "ChatService.h"

#include "Backend/APIClient.h"
#include "Clock.h"
#include "Log.h"

#include <QPointer>

#include <cmath>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcChatService, "korvi.chat.service", QtInfoMsg)

namespace {

struct Ticket {
    QString ticket;

    static Ticket fromJson(const JsonReader& json) { return {json.string("ticket"_L1)}; }
};

}

ChatService::ChatService(Dependencies dependencies)
    : m_dependencies(dependencies) {}

ChatService::~ChatService() {
    dropSocket(1000);
    // Those who wait are tasks of other owners: they unwind now, while there is something to unwind from.
    for (Resolver<void>& waiter : std::exchange(m_openWaiters, {}))
        waiter.fail(TaskCancelled());
}

void ChatService::connect() {
    if (m_isConnected) {
        qCInfo(lcChatService) << "🔌 [ChatService] Already connected";
        return;
    }
    if (m_isConnecting) {
        qCInfo(lcChatService) << "🔌 [ChatService] Already connecting...";
        return;
    }
    m_isConnecting = true;
    m_reconnectTimer.cancel();
    dropSocket(1001);
    const quint64 attempt = ++m_connectionId;
    m_scope.start([this, attempt] { return openSocket(attempt); });
}

Task<void> ChatService::openSocket(quint64 attempt) {
    QString ticket;
    std::optional<QString> failure;
    try {
        const Ticket answer = co_await m_dependencies.client.request<Ticket>(u"/sockets/ticket"_s);
        ticket = answer.ticket;
    } catch (const std::exception& error) {
        failure = QString::fromUtf8(error.what());
    }
    // Before the failure too: an outdated attempt must not touch the state of the one that followed it.
    if (attempt != m_connectionId) {
        qCInfo(lcChatService) << "🔌 [ChatService] Stale connect (id" << attempt << "now" << m_connectionId << ")";
        co_return;
    }
    if (failure) {
        qCWarning(lcChatService).noquote() << "❌ [ChatService] Failed to get ticket:" << *failure;
        m_isConnecting = false;
        scheduleReconnect();
        emit attemptFailed(*failure);
        co_return;
    }

    const APIClient& client = m_dependencies.client;
    const QString host = client.apiHost();
    const bool secure = client.isSecure();
    const QString origin = (secure ? u"https://"_s : u"http://"_s) + host;
    const QUrl url((secure ? u"wss://"_s : u"ws://"_s) + host + u"/ws/v1/chats?ticket="_s +
        QString::fromLatin1(QUrl::toPercentEncoding(ticket)));
    if (!url.isValid()) {
        qCWarning(lcChatService) << "❌ [ChatService] Invalid URL string!";
        m_isConnecting = false;
        emit attemptFailed(u"invalid URL"_s);
        co_return;
    }
    WebSocketRequest request{.url = url, .headers = {{"Origin", origin.toLatin1()}}, .openTimeout = openTimeout};
    const Secret token = co_await m_dependencies.client.authToken();
    if (attempt != m_connectionId)
        co_return;
    if (!token.isEmpty())
        request.headers.emplace_back("Authorization", "Bearer " + token.reveal());
    if (const QByteArray cookies = client.cookieHeader(QUrl(origin)); !cookies.isEmpty())
        request.headers.emplace_back("Cookie", cookies);

    m_socket.reset(m_dependencies.sockets.open(std::move(request)).release());
    watch(*m_socket, attempt);
}

void ChatService::watch(WebSocketConnection& socket, quint64 attempt) {
    const auto current = [this, attempt](auto handle) {
        return [this, attempt, handle](const auto&... args) {
            if (attempt == m_connectionId)
                handle(args...);
            else
                qCInfo(lcChatService) << "🔌 [ChatService] Ignored a late signal of connection" << attempt;
        };
    };
    QObject::connect(&socket, &WebSocketConnection::opened, this, current([this] { socketOpened(); }));
    QObject::connect(
        &socket, &WebSocketConnection::messageReceived, this, current([this, attempt](const QString& text) {
            for (const SocketEvent& event : SocketFrame::parse(text.toUtf8())) {
                if (onEvent && attempt == m_connectionId)
                    onEvent(event);
            }
        }));
    // A frame that did not leave is queued again whoever lost it: it is the user's.
    QObject::connect(&socket, &WebSocketConnection::sendFailed, this,
        [this](const QString& frame, const QString& reason) { requeue(frame, reason); });
    QObject::connect(&socket, &WebSocketConnection::pingFailed, this,
        current([this](const QString& reason) { pingFailed(reason); }));
    QObject::connect(&socket, &WebSocketConnection::closed, this, current([this](int code, const QString& reason) {
        qCWarning(lcChatService).noquote()
            << "❌ WS Disconnected: Code" << code << (reason.isEmpty() ? u"Unknown"_s : reason);
        socketLost(std::nullopt);
    }));
    QObject::connect(&socket, &WebSocketConnection::failed, this, current([this](const URLError& error) {
        qCWarning(lcChatService).noquote() << "❌ [ChatService] WS Error:" << error.description;
        socketLost(error);
    }));
    QObject::connect(&socket, &WebSocketConnection::refused, this, current([this, attempt](int status) {
        qCWarning(lcChatService) << "❌ [ChatService] HTTP Error:" << status;
        m_isConnected = false;
        m_isConnecting = false;
        report(u"Reconnecting..."_s);
        if (attempt == m_connectionId)
            scheduleReconnect();
    }));
}

void ChatService::socketOpened() {
    m_isConnected = true;
    m_isConnecting = false;
    m_reconnectTimer.cancel();
    m_reconnectAttempt = 0;
    startHeartbeat();
    // Before anyone hears of it: what a listener sends now comes after what was queued.
    for (const QString& frame : std::exchange(m_pendingMessages, {}))
        sendRaw(frame);
    const quint64 attempt = m_connectionId;
    for (Resolver<void>& waiter : std::exchange(m_openWaiters, {}))
        waiter.resolve();
    if (attempt == m_connectionId)
        report(u"Connected"_s);
    if (attempt == m_connectionId)
        emitEvent(SocketEvent::Connected{});
}

void ChatService::socketLost(const std::optional<URLError>& error) {
    m_isConnected = false;
    m_isConnecting = false;
    m_heartbeatTimer.cancel();
    const quint64 attempt = m_connectionId;
    report(u"Reconnecting..."_s);
    if (attempt == m_connectionId)
        emitEvent(SocketEvent::Disconnected{error});
    // A listener that disconnected or connected anew has decided already.
    if (attempt == m_connectionId)
        scheduleReconnect();
}

void ChatService::pingFailed(const QString& reason) {
    qCWarning(lcChatService).noquote() << "⚠️ [ChatService] Ping Failed:" << reason;
    m_isConnected = false;
    m_isConnecting = false;
    scheduleReconnect();
}

void ChatService::dropSocket(int code) {
    if (!m_socket)
        return;
    m_socket->QObject::disconnect(this);
    m_pendingMessages = m_socket->close(code) + m_pendingMessages;
    m_socket.reset();
}

void ChatService::scheduleReconnect() {
    if (m_reconnectTimer.isActive()) {
        qCInfo(lcChatService) << "🔌 [ChatService] Reconnect already scheduled, skipping duplicate";
        return;
    }
    m_heartbeatTimer.cancel();
    const double seconds = std::min(std::exp2(m_reconnectAttempt) + m_dependencies.random.uniform(),
        std::chrono::duration<double>(longestDelay).count());
    ++m_reconnectAttempt;
    qCInfo(lcChatService) << "🔌 [ChatService] Reconnecting in" << static_cast<int>(seconds) << "s, attempt"
                          << m_reconnectAttempt;
    const auto delay = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
    m_reconnectTimer = m_dependencies.scheduler.after(delay, [this] {
        m_reconnectTimer.cancel();
        connect();
    });
}

void ChatService::startHeartbeat() {
    m_heartbeatTimer = m_dependencies.scheduler.every(heartbeatInterval, [this] {
        if (m_isConnected && m_socket)
            m_socket->ping(pongTimeout);
    });
}

void ChatService::disconnect() {
    m_heartbeatTimer.cancel();
    m_reconnectTimer.cancel();
    m_isConnected = false;
    m_isConnecting = false;
    ++m_connectionId;
    dropSocket(1000);
    emit disconnected();
}

Task<void> ChatService::reconnectAndWait() {
    if (m_isConnected)
        co_return;
    qCInfo(lcChatService) << "🔌 [ChatService] reconnectAndWait: starting...";
    disconnect();
    Resolver<void> opened;
    m_openWaiters.push_back(opened);
    const Timer limit = m_dependencies.scheduler.after(reconnectWait, [opened]() mutable {
        qCInfo(lcChatService) << "🔌 [ChatService] reconnectAndWait: timed out after 5s";
        opened.resolve();
    });
    connect();
    co_await opened.async();
    qCInfo(lcChatService) << "🔌 [ChatService] reconnectAndWait: connected" << m_isConnected;
}

void ChatService::createChat(const QString& model, const QString& text, const QStringList& imageUrls,
    const std::vector<SocketFrame::File>& files, std::optional<qint64> projectId) {
    send(SocketFrame::create(model, text, imageUrls, files, projectId));
}

void ChatService::sendMessage(
    qint64 chatId, const QString& text, const QStringList& imageUrls, const std::vector<SocketFrame::File>& files) {
    send(SocketFrame::send(chatId, text, imageUrls, files));
}

void ChatService::stopGeneration(qint64 chatId) {
    send(SocketFrame::abort(chatId));
}

void ChatService::send(const QString& frame) {
    if (m_isConnected && m_socket) {
        sendRaw(frame);
        return;
    }
    qCInfo(lcChatService) << "⏳ [ChatService] Socket not connected, queueing message";
    m_pendingMessages.append(frame);
    connect();
}

void ChatService::sendRaw(const QString& frame) {
    // The frame holds what the user wrote: the log gets its size.
    qCInfo(lcChatService) << "📤 [ChatService] Sending:" << frame.size() << "characters";
    m_socket->sendText(frame);
}

void ChatService::requeue(const QString& frame, const QString& reason) {
    qCWarning(lcChatService).noquote() << "❌ [ChatService] WS Send Error:" << reason;
    qCInfo(lcChatService) << "🔄 [ChatService] Re-queueing failed message...";
    m_pendingMessages.prepend(frame);
    m_isConnected = false;
    // In a later turn: the socket that reports this is still at it.
    m_dependencies.scheduler.post([self = QPointer(this), attempt = m_connectionId] {
        if (self && attempt == self->m_connectionId)
            self->connect();
    });
}

void ChatService::emitEvent(SocketEvent::Value value) {
    if (onEvent)
        onEvent(SocketEvent{std::move(value)});
}

void ChatService::report(const QString& status) {
    if (onConnectionStatusChanged)
        onConnectionStatusChanged(status);
}

}
