#pragma once

#include "PathMonitor.h"

#include <QObject>
#include <QProperty>

namespace Korvi {

class NotificationCenter;

// Whether there is a network, and of what kind. Tells everybody when it goes and when it comes back.
class NetworkMonitor : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isConnected READ isConnected NOTIFY isConnectedChanged BINDABLE bindableIsConnected)
    // "WiFi", "Cellular", "Ethernet" or "Unknown"
    Q_PROPERTY(QString connectionType READ connectionType NOTIFY connectionTypeChanged BINDABLE bindableConnectionType)

public:
    NetworkMonitor(PathMonitor& paths, NotificationCenter& notifications, QObject* parent = nullptr);

    void start();

    bool isConnected() const { return m_isConnected; }
    QString connectionType() const { return m_connectionType; }
    QBindable<bool> bindableIsConnected() { return &m_isConnected; }
    QBindable<QString> bindableConnectionType() { return &m_connectionType; }

signals:
    void isConnectedChanged();
    void connectionTypeChanged();

private:
    void take(const NetworkPath& path);

    PathMonitor& m_paths;
    NotificationCenter& m_notifications;
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(NetworkMonitor, bool, m_isConnected, true, &NetworkMonitor::isConnectedChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        NetworkMonitor, QString, m_connectionType, QStringLiteral("Unknown"), &NetworkMonitor::connectionTypeChanged)
};

}
