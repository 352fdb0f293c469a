#pragma once

#include "Scheduler.h"

#include <QObject>

namespace Korvi {

// Timers on Qt's event loop.
class QtScheduler : public Scheduler {
public:
    Timer after(std::chrono::milliseconds delay, Work work) override;
    Timer every(std::chrono::milliseconds interval, Work work) override;
    void post(Work work) override;

private:
    QObject m_context; // posted work ends with the scheduler
};

}
