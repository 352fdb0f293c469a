#include "Linux/QtScheduler.h"
#include "Printing.h"
#include "Running.h"
#include "VirtualScheduler.h"
#include "WaitFor.h"

#include <QElapsedTimer>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;
using testing::ElementsAre;

// The real scheduler and the virtual one keep the same promises.
class SchedulerTest : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (GetParam())
            scheduler = std::make_unique<QtScheduler>();
        else
            scheduler = std::make_unique<VirtualScheduler>();
    }
    bool passUntil(const std::function<bool()>& condition) {
        if (GetParam())
            return waitFor(condition);
        for (int i = 0; i < 100 && !condition(); ++i)
            static_cast<VirtualScheduler&>(*scheduler).advance(1ms);
        return condition();
    }
    // Long enough for anything that is still armed here to run.
    void pass() {
        bool done = false;
        const Timer timer = scheduler->after(40ms, [&] { done = true; });
        ASSERT_TRUE(passUntil([&] { return done; }));
    }

    std::unique_ptr<Scheduler> scheduler;
    QStringList lines;
};

INSTANTIATE_TEST_SUITE_P(, SchedulerTest, testing::Bool(),
    [](const testing::TestParamInfo<bool>& param) { return param.param ? "Real" : "Virtual"; });

TEST_P(SchedulerTest, WorkNeverRunsInsideTheCallThatSchedulesIt) {
    scheduler->post([&] { lines.append(u"posted"_s); });
    const Timer timer = scheduler->after(0ms, [&] { lines.append(u"timer"_s); });
    EXPECT_TRUE(lines.isEmpty());
    EXPECT_TRUE(passUntil([&] { return lines.size() == 2; }));
}

TEST_P(SchedulerTest, PostedWorkRunsInOrderAlsoWhenItPostsMore) {
    scheduler->post([&] {
        lines.append(u"1"_s);
        scheduler->post([&] { lines.append(u"3"_s); });
    });
    scheduler->post([&] { lines.append(u"2"_s); });
    EXPECT_TRUE(passUntil([&] { return lines.size() == 3; }));
    EXPECT_THAT(lines, ElementsAre(u"1"_s, u"2"_s, u"3"_s));
}

TEST_P(SchedulerTest, ATimerIsActiveUntilItHasRunOrIsCancelled) {
    Timer none;
    EXPECT_FALSE(none.isActive());
    bool activeInside = true;
    Timer once;
    once = scheduler->after(2ms, [&] {
        activeInside = once.isActive();
        lines.append(u"ran"_s);
    });
    Timer cancelled = scheduler->after(2ms, [&] { lines.append(u"cancelled"_s); });
    EXPECT_TRUE(once.isActive());
    cancelled.cancel();
    EXPECT_FALSE(cancelled.isActive());
    pass();
    EXPECT_FALSE(activeInside);
    EXPECT_FALSE(once.isActive());
    EXPECT_THAT(lines, ElementsAre(u"ran"_s));
}

TEST_P(SchedulerTest, DestroyingOrReplacingATimerCancelsItsWork) {
    {
        const Timer gone = scheduler->after(1ms, [&] { lines.append(u"gone"_s); });
    }
    Timer timer = scheduler->after(1ms, [&] { lines.append(u"replaced"_s); });
    timer = scheduler->after(2ms, [&] { lines.append(u"new"_s); });
    pass();
    EXPECT_THAT(lines, ElementsAre(u"new"_s));
}

TEST_P(SchedulerTest, WorkMayCancelOrReplaceItsOwnTimerAndStillUseWhatItHolds) {
    Timer timer;
    timer = scheduler->every(1ms, [&, text = QString(u"held by the work"_s)] {
        timer.cancel();
        lines.append(text);
    });
    pass();
    EXPECT_THAT(lines, ElementsAre(u"held by the work"_s));
    timer = scheduler->after(1ms, [&, text = QString(u"first"_s)] {
        timer = scheduler->after(1ms, [&] { lines.append(u"second"_s); });
        lines.append(text);
    });
    pass();
    EXPECT_THAT(lines, ElementsAre(u"held by the work"_s, u"first"_s, u"second"_s));
}

TEST_P(SchedulerTest, ARepeatingTimerRunsUntilItIsCancelled) {
    Timer timer = scheduler->every(1ms, [&] { lines.append(u"tick"_s); });
    ASSERT_TRUE(passUntil([&] { return lines.size() >= 3; }));
    EXPECT_TRUE(timer.isActive());
    timer.cancel();
    const auto ticks = lines.size();
    pass();
    EXPECT_EQ(lines.size(), ticks);
}

TEST_P(SchedulerTest, ASleepThatIsCancelledDoesNotWake) {
    Running<void> sleeping([&]() -> Task<void> {
        auto sleep = scheduler->sleep(2ms);
        co_await sleep;
        lines.append(u"woke"_s);
    });
    sleeping.cancel();
    pass();
    EXPECT_TRUE(lines.isEmpty());
    const Running<void> other([&]() -> Task<void> {
        auto sleep = scheduler->sleep(2ms);
        co_await sleep;
        lines.append(u"woke"_s);
    });
    EXPECT_TRUE(passUntil([&] { return other.isDone(); }));
}

TEST(QtScheduler, PostedWorkEndsWithTheSchedulerAndTimersWithTheirOwner) {
    bool ran = false;
    {
        QtScheduler scheduler;
        scheduler.post([&] { ran = true; });
    }
    settle();
    EXPECT_FALSE(ran);
}

TEST(VirtualScheduler, TimersRunInTheOrderOfTheirTimesWithPostedWorkBetween) {
    VirtualScheduler virtualTime;
    QStringList lines;
    const auto note = [&](const QString& text) {
        lines.append(text + u'@' + QString::number(virtualTime.elapsed().count()));
    };
    const Timer late = virtualTime.after(30ms, [&] { note(u"late"_s); });
    const Timer early = virtualTime.after(10ms, [&] {
        note(u"early"_s);
        virtualTime.post([&] { note(u"posted"_s); });
    });
    const Timer tick = virtualTime.every(20ms, [&] { note(u"tick"_s); });
    virtualTime.advance(45ms);
    EXPECT_THAT(lines, ElementsAre(u"early@10"_s, u"posted@10"_s, u"tick@20"_s, u"late@30"_s, u"tick@40"_s));
    EXPECT_THAT(virtualTime.dueIn(), ElementsAre(15));
}

}
}
