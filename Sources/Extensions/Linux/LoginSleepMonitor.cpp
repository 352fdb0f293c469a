#include "LoginSleepMonitor.h"

namespace Korvi {

using namespace Qt::Literals;

LoginSleepMonitor::LoginSleepMonitor(QDBusConnection bus, QObject* parent)
    : SleepMonitor(parent) {
    if (bus.isConnected())
        bus.connect(u"org.freedesktop.login1"_s, u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s,
            u"PrepareForSleep"_s, this, SLOT(prepareForSleep(bool)));
}

void LoginSleepMonitor::prepareForSleep(bool begins) {
    if (begins)
        emit aboutToSleep();
    else
        emit awoke();
}

}
