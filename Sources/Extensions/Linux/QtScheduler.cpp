#include "QtScheduler.h"

#include <QTimer>

namespace Korvi {

namespace {

Timer makeTimer(std::chrono::milliseconds delay, bool once, Scheduler::Work work) {
    // The work may cancel its own timer: the QTimer then ends in a later turn, not inside its own signal.
    auto timer = std::shared_ptr<QTimer>(new QTimer, [](QTimer* ended) {
        ended->stop();
        ended->deleteLater();
    });
    timer->setSingleShot(once);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer.get(), &QTimer::timeout, timer.get(), [call = std::move(work)] { call(); });
    timer->start(delay);
    return Timer(std::move(timer));
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
