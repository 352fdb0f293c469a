#include "ThreadWorkers.h"

namespace Korvi {

namespace {

constexpr int threads = 2;

}

ThreadWorkers::ThreadWorkers() {
    m_pool.setMaxThreadCount(threads);
}

ThreadWorkers::~ThreadWorkers() {
    m_pool.clear();
    m_pool.waitForDone();
}

void ThreadWorkers::run(Work work, Work done) {
    m_pool.start([this, work = std::move(work), done = std::move(done)]() mutable {
        work();
        work = nullptr;
        QMetaObject::invokeMethod(&m_mainThread, std::move(done), Qt::QueuedConnection);
    });
}

}
