#pragma once

#include "PathMonitor.h"

#include <QObject>

#include <memory>

class QSocketNotifier;
class QUrl;

namespace Korvi {

// Asks the kernel's routing table, and listens to its announcements of changes. That is right under every network
// manager, and under none. A service on this machine is always reachable, whatever becomes of the network; one with
// a numeric address is when a route leads there; for any other, a route to the internet counts. Where the kernel
// does not announce changes (a sandbox), the path counts as satisfied: then the requests themselves find out.
class RoutePathMonitor : public QObject, public PathMonitor {
    Q_OBJECT

public:
    explicit RoutePathMonitor(const QUrl& service, QObject* parent = nullptr);
    ~RoutePathMonitor() override;

    void start(Handler handler) override;

private:
    void changed();
    void look();
    NetworkPath path() const;

    std::vector<QString> m_targets; // numeric addresses; a way to one of them is enough
    Handler m_handler;
    NetworkPath m_last;
    std::unique_ptr<QSocketNotifier> m_notifier;
    int m_socket = -1;
};

}
