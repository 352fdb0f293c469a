#pragma once

#include "Scheduler.h"

#include <QObject>
#include <QProperty>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// Counts down, one step a second, until a sign-in code may be asked for again.
class ResendCountdown : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by AuthViewModel")
    Q_PROPERTY(int secondsLeft READ secondsLeft NOTIFY secondsLeftChanged BINDABLE bindableSecondsLeft)

public:
    static constexpr int length = 60; // seconds

    explicit ResendCountdown(Scheduler& scheduler, QObject* parent = nullptr);

    void start();
    void stop();

    int secondsLeft() const { return m_secondsLeft; }
    QBindable<int> bindableSecondsLeft() { return &m_secondsLeft; }

signals:
    void secondsLeftChanged();

private:
    Scheduler& m_scheduler;
    Timer m_timer;
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(ResendCountdown, int, m_secondsLeft, 0, &ResendCountdown::secondsLeftChanged)
};

}
