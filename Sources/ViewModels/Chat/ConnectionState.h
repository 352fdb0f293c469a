#pragma once

#include <QObject>
#include <QProperty>

namespace Korvi {

class ChatService;

// The line to the service as the user is told of it: "Connecting...", "Connected", "Reconnecting..." or "Failed".
class ConnectionState : public QObject {
    Q_OBJECT

public:
    explicit ConnectionState(ChatService& service);

    void connectToService();
    void reconnect();

    QString status() const { return m_status; }
    QBindable<QString> bindableStatus() { return &m_status; }
    bool isConnected() const;

signals:
    void statusChanged();

private:
    void attemptFailed(const QString& reason);

    ChatService& m_service;
    bool m_isConnecting = false; // connectToService() has had no outcome yet
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        ConnectionState, QString, m_status, QStringLiteral("Connecting..."), &ConnectionState::statusChanged)
};

}
