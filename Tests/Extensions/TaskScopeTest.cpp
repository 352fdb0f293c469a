#include "LogCapture.h"
#include "Printing.h"
#include "Running.h"
#include "VirtualScheduler.h"

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;
using testing::ElementsAre;

// Writes a line when it ends: shows that a task's frame was unwound.
struct Mark {
    QStringList& lines;
    QString text;
    ~Mark() { lines.append(text); }
};

class TaskScopeTest : public testing::Test {
protected:
    Task<int> wait(std::chrono::milliseconds time, int result) {
        const Mark mark{lines, u"inner unwound"_s};
        co_await virtualTime.sleep(time);
        co_return int(result);
    }
    Task<int> nested(std::chrono::milliseconds time) {
        const Mark mark{lines, u"outer unwound"_s};
        auto task = wait(time, 7);
        const int result = co_await task;
        lines.append(u"got %1"_s.arg(result));
        co_return result + 1;
    }

    VirtualScheduler virtualTime;
    QStringList lines;
};

TEST_F(TaskScopeTest, ANestedTaskRunsToItsEndAndReturnsItsValue) {
    const Running<int> task([&] { return nested(5s); });
    EXPECT_TRUE(task.isWaiting());
    virtualTime.advance(5s);
    EXPECT_EQ(task.value(), 8);
    EXPECT_FALSE(task.isWaiting());
    EXPECT_THAT(lines, ElementsAre(u"inner unwound"_s, u"got 7"_s, u"outer unwound"_s));
}

TEST_F(TaskScopeTest, CancellingUnwindsFromInsideOutAtOnceAndStopsTheOperation) {
    Running<int> task([&] { return nested(5s); });
    task.cancel();
    EXPECT_THAT(lines, ElementsAre(u"inner unwound"_s, u"outer unwound"_s));
    EXPECT_FALSE(task.isWaiting());
    EXPECT_THAT(virtualTime.dueIn(), testing::IsEmpty());
    virtualTime.advance(10s);
    EXPECT_EQ(lines.size(), 2);
}

TEST_F(TaskScopeTest, TheEndOfTheOwnerUnwindsEveryTaskWhileTheOwnerStands) {
    struct Owner {
        explicit Owner(QStringList& into)
            : lines(into) {}
        QStringList& lines;
        QString name = u"owner stands"_s;
        TaskScope scope;
    };
    auto owner = std::make_unique<Owner>(lines);
    for (int i = 0; i < 3; ++i) {
        owner->scope.start([this, self = owner.get()]() -> Task<void> {
            try {
                co_await virtualTime.sleep(1s);
            } catch (const TaskCancelled&) {
                lines.append(self->name);
                throw;
            }
            lines.append(u"ran after the end"_s);
        });
    }
    owner.reset();
    virtualTime.advance(10s);
    EXPECT_THAT(lines, ElementsAre(u"owner stands"_s, u"owner stands"_s, u"owner stands"_s));
}

TEST_F(TaskScopeTest, ATaskThatSuspendsAgainWhileUnwindingIsUnwoundFurther) {
    TaskScope scope;
    scope.start([this]() -> Task<void> {
        for (int i = 0; i < 3; ++i) {
            try {
                co_await virtualTime.sleep(1s);
            } catch (const TaskCancelled&) {
                lines.append(u"clean-up %1"_s.arg(i));
            }
        }
        co_await virtualTime.sleep(1s);
        lines.append(u"ran on"_s);
    });
    scope.cancel();
    EXPECT_FALSE(scope.isWaiting());
    virtualTime.advance(10s);
    EXPECT_THAT(lines, ElementsAre(u"clean-up 0"_s, u"clean-up 1"_s, u"clean-up 2"_s));
}

TEST_F(TaskScopeTest, AScopeServesAgainAfterACancel) {
    TaskScope scope;
    scope.cancel();
    const auto work = [this]() -> Task<void> {
        co_await virtualTime.sleep(1s);
        lines.append(u"done"_s);
    };
    scope.start(work);
    scope.cancel();
    scope.start(work);
    virtualTime.advance(1s);
    EXPECT_THAT(lines, ElementsAre(u"done"_s));
}

TEST_F(TaskScopeTest, ACancelFromInsideATaskEndsTheOthersAndLetsItGoOn) {
    TaskScope scope;
    scope.start([this]() -> Task<void> {
        const Mark mark{lines, u"other unwound"_s};
        co_await virtualTime.sleep(9s);
    });
    scope.start([&]() -> Task<void> {
        co_await virtualTime.sleep(1s);
        scope.cancel();
        lines.append(u"still here"_s);
        co_await virtualTime.sleep(1s);
        lines.append(u"finished"_s);
    });
    virtualTime.advance(9s);
    EXPECT_THAT(lines, ElementsAre(u"other unwound"_s, u"still here"_s, u"finished"_s));
}

TEST_F(TaskScopeTest, CancellingOneScopeLeavesATaskOfAnotherAloneEvenWhenItWasResumedFromThere) {
    TaskScope first;
    TaskScope second;
    Resolver<int> gate;
    second.start([&]() -> Task<void> {
        auto async = gate.async();
        lines.append(u"gate %1"_s.arg(co_await async));
        co_await virtualTime.sleep(2s);
        lines.append(u"second done"_s);
    });
    first.start([&]() -> Task<void> {
        co_await virtualTime.sleep(1s);
        gate.resolve(3); // resumes the other scope's task in the middle of this one
        co_await virtualTime.sleep(5s);
        lines.append(u"first done"_s);
    });
    virtualTime.advance(1s);
    first.cancel();
    EXPECT_TRUE(second.isWaiting());
    virtualTime.advance(10s);
    EXPECT_THAT(lines, ElementsAre(u"gate 3"_s, u"second done"_s));
}

TEST_F(TaskScopeTest, AnErrorReachesTheAwaiterAndOneThatNobodyCatchesIsLogged) {
    const auto failing = [this]() -> Task<int> {
        co_await virtualTime.sleep(1s);
        throw std::runtime_error("broken");
    };
    const Running<int> task(failing);
    const LogCapture log;
    TaskScope scope;
    scope.start([&]() -> Task<void> {
        auto inner = failing();
        co_await inner;
    });
    scope.start([this]() -> Task<void> {
        co_await virtualTime.sleep(1s);
        throw 42;
    });
    virtualTime.advance(1s);
    ASSERT_TRUE(task.error<std::runtime_error>());
    EXPECT_STREQ(task.error<std::runtime_error>()->what(), "broken");
    EXPECT_EQ(log.count(u"broken"_s), 1) << log.text().toStdString();
    EXPECT_EQ(log.count(u"[TaskScope]"_s), 2) << log.text().toStdString();
}

TEST_F(TaskScopeTest, OnlyTheFirstOutcomeCounts) {
    Resolver<int> resolver;
    bool stopped = false;
    resolver.onCancel([&] { stopped = true; });
    Running<int> task([&]() -> Task<int> {
        auto async = resolver.async();
        co_return co_await async;
    });
    resolver.resolve(1);
    resolver.resolve(2);
    resolver.fail(std::runtime_error("late"));
    task.cancel();
    EXPECT_EQ(task.value(), 1);
    EXPECT_FALSE(stopped);

    Resolver<int> other;
    int stops = 0;
    other.onCancel([&] { ++stops; });
    Running<int> cancelled([&]() -> Task<int> {
        auto async = other.async();
        co_return co_await async;
    });
    cancelled.cancel();
    other.resolve(3);
    cancelled.cancel();
    EXPECT_FALSE(cancelled.isDone());
    EXPECT_EQ(stops, 1);
}

TEST_F(TaskScopeTest, AnOperationThatResolvesWhileItIsStoppedResumesItsTaskOnce) {
    Resolver<int> resolver;
    resolver.onCancel([&] { resolver.resolve(5); });
    int resumed = 0;
    Running<int> task([&]() -> Task<int> {
        const Mark mark{lines, u"unwound"_s};
        auto async = resolver.async();
        const int value = co_await async;
        ++resumed;
        co_return int(value);
    });
    task.cancel();
    EXPECT_THAT(lines, ElementsAre(u"unwound"_s));
    EXPECT_EQ(resumed, 0);
}

}
}
