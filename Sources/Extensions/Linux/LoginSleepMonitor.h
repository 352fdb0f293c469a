#pragma once

#include "SleepMonitor.h"

#include <QDBusConnection>

namespace Korvi {

// Sleep as the login manager announces it (org.freedesktop.login1). Without one the machine never sleeps.
class LoginSleepMonitor : public SleepMonitor {
    Q_OBJECT

public:
    explicit LoginSleepMonitor(QDBusConnection bus = QDBusConnection::systemBus(), QObject* parent = nullptr);

private slots:
    void prepareForSleep(bool begins);
};

}
