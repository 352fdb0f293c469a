#include "Shell/ResendCountdown.h"

namespace Korvi {

ResendCountdown::ResendCountdown(Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_scheduler(scheduler) {}

void ResendCountdown::start() {
    m_secondsLeft = length;
    m_timer = m_scheduler.every(std::chrono::seconds(1), [this] {
        m_secondsLeft = m_secondsLeft - 1;
        if (m_secondsLeft <= 0)
            m_timer.cancel();
    });
}

void ResendCountdown::stop() {
    m_timer.cancel();
    m_secondsLeft = 0;
}

}
