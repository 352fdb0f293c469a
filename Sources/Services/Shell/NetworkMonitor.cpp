#include "Shell/NetworkMonitor.h"

#include "Log.h"
#include "NotificationCenter.h"

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

namespace {

// In the order in which a path of several interfaces takes its name.
constexpr std::pair<NetworkPath::Interface, QLatin1StringView> names[] = {
    {NetworkPath::Interface::wifi, "WiFi"_L1},
    {NetworkPath::Interface::cellular, "Cellular"_L1},
    {NetworkPath::Interface::wiredEthernet, "Ethernet"_L1},
};

QString nameOf(const NetworkPath& path) {
    for (const auto& [interface, name] : names) {
        if (std::find(path.interfaces.begin(), path.interfaces.end(), interface) != path.interfaces.end())
            return name;
    }
    return u"Unknown"_s;
}

}

NetworkMonitor::NetworkMonitor(PathMonitor& paths, NotificationCenter& notifications, QObject* parent)
    : QObject(parent)
    , m_paths(paths)
    , m_notifications(notifications) {}

void NetworkMonitor::start() {
    m_paths.start([this](const NetworkPath& path) { take(path); });
}

void NetworkMonitor::take(const NetworkPath& path) {
    const bool before = m_isConnected;
    m_isConnected = path.isSatisfied;
    m_connectionType = nameOf(path);
    if (!before && m_isConnected) {
        qCInfo(lcPlatform).noquote().nospace() << "📡 [NetworkMonitor] 🟢 Online (" << connectionType() << ")";
        emit m_notifications.networkDidBecomeAvailable();
    } else if (before && !m_isConnected) {
        qCInfo(lcPlatform) << "📡 [NetworkMonitor] 🔴 Offline";
        emit m_notifications.networkDidBecomeUnavailable();
    }
}

}
