#pragma once

#include <QObject>

namespace Korvi {

// The machine's sleep, as the operating system tells of it.
class SleepMonitor : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

signals:
    void aboutToSleep();
    void awoke();
};

}
