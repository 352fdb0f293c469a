#include "QtScheduler.h"

#include <QTimer>

namespace Korvi {

namespace {

// The work may cancel its own timer: the QTimer then ends in a later turn, not inside its own signal.
struct Running : Timer::State {
    ~Running() override {
        timer->stop();
        timer->deleteLater();
    }

    QTimer* timer = new QTimer;
};

Timer makeTimer(std::chrono::milliseconds delay, bool once, Scheduler::Work work) {
    auto running = std::make_shared<Running>();
    QTimer* timer = running->timer;
    timer->setSingleShot(once);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, timer, [state = running.get(), once, call = std::move(work)] {
        state->isDone = once;
        call();
    });
    timer->start(delay);
    return Timer(std::move(running));
}

}

Timer QtScheduler::after(std::chrono::milliseconds delay, Work work) {
    return makeTimer(delay, true, std::move(work));
}

Timer QtScheduler::every(std::chrono::milliseconds interval, Work work) {
    return makeTimer(interval, false, std::move(work));
}

void QtScheduler::post(Work work) {
    QMetaObject::invokeMethod(&m_context, std::move(work), Qt::QueuedConnection);
}

}
