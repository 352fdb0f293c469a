#include "Linux/ThreadWorkers.h"
#include "Running.h"
#include "WaitFor.h"

#include <QThread>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

std::unique_ptr<Running<QString>> compute(Workers& workers, std::function<QString()> work) {
    return std::make_unique<Running<QString>>([&workers, work]() -> Task<QString> {
        auto outcome = workers.compute(work);
        QString value = co_await outcome;
        co_return std::move(value);
    });
}

TEST(ThreadWorkers, WorkElsewhereAndTellHere) {
    ThreadWorkers workers;
    const QThread* here = QThread::currentThread();
    std::vector<std::unique_ptr<Running<QString>>> all;
    for (int i = 0; i < 50; ++i)
        all.push_back(compute(workers,
            [i, here] { return QThread::currentThread() == here ? QStringLiteral("here") : QString::number(i); }));
    ASSERT_TRUE(waitFor([&] { return all.back()->isDone() && all[48]->isDone(); }));
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(waitFor([&] { return all[static_cast<std::size_t>(i)]->isDone(); }));
        EXPECT_EQ(all[static_cast<std::size_t>(i)]->value(), QString::number(i));
    }
    const auto failing = compute(workers, []() -> QString { throw std::runtime_error("broken"); });
    ASSERT_TRUE(waitFor([&] { return failing->isDone(); }));
    EXPECT_STREQ(failing->error<std::runtime_error>()->what(), "broken");
}

TEST(ThreadWorkers, NothingIsToldOfWhatNobodyWaitsForAnyMore) {
    auto workers = std::make_unique<ThreadWorkers>();
    std::atomic<int> done = 0;
    bool isTold = false;
    for (int i = 0; i < 10; ++i)
        workers->run([&done] { ++done; }, [&isTold] { isTold = true; });
    auto waiting = compute(*workers, [] { return QString(); });
    waiting->cancel();
    workers.reset();
    const int atEnd = done;
    settle();
    EXPECT_EQ(done, atEnd);
    EXPECT_FALSE(isTold);
}

}
}
