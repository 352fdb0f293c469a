#include "Chat/ConnectionState.h"

#include "Chat/ChatService.h"

#include <QLoggingCategory>
#include <QPointer>

#include <utility>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcConnection, "korvi.chat", QtInfoMsg)

ConnectionState::ConnectionState(ChatService& service)
    : m_service(service) {
    service.onConnectionStatusChanged = [self = QPointer(this)](const QString& status) {
        if (!self)
            return;
        self->m_isConnecting = false;
        self->m_status = status;
    };
    connect(&service, &ChatService::attemptFailed, this, &ConnectionState::attemptFailed);
    // Whoever disconnects connects again, or nobody is signed in.
    connect(&service, &ChatService::disconnected, this, [this] { m_status = u"Connecting..."_s; });
}

void ConnectionState::connectToService() {
    m_isConnecting = true;
    if (!isConnected())
        m_status = u"Connecting..."_s;
    m_service.connect();
}

void ConnectionState::reconnect() {
    m_service.disconnect();
    connectToService();
}

// It is tried again later, but whoever asked for a connection is told.
void ConnectionState::attemptFailed(const QString& reason) {
    if (!std::exchange(m_isConnecting, false))
        return;
    qCWarning(lcConnection).noquote() << "❌ [ChatViewModel] Failed to connect:" << reason;
    m_status = u"Failed"_s;
}

bool ConnectionState::isConnected() const {
    return m_status.value() == "Connected"_L1;
}

}
