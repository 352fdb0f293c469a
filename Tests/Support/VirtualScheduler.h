#pragma once

#include "Clock.h"
#include "Scheduler.h"

#include <QCoreApplication>
#include <QEvent>

#include <deque>
#include <vector>

namespace Korvi::Test {

// Time that passes only when a test says so: `virtualTime.advance(80ms)`. Timer work runs in the order of its due
// times (ties: in the order of scheduling), and posted work between the timers, as on a main loop.
class VirtualScheduler : public Scheduler, public Clock {
public:
    Timer after(std::chrono::milliseconds delay, Work work) override { return arm(delay, {}, std::move(work)); }
    Timer every(std::chrono::milliseconds interval, Work work) override {
        return arm(interval, interval, std::move(work));
    }
    void post(Work work) override { m_posted.push_back(std::move(work)); }
    QDateTime now() const override { return m_start.addMSecs(m_elapsed.count()); }

    // Posted work, and what it posts, until there is none; queued signals and deferred deletions as well.
    void runPosted() {
        do {
            while (!m_posted.empty()) {
                const Work work = std::move(m_posted.front());
                m_posted.pop_front();
                work();
            }
            QCoreApplication::sendPostedEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        } while (!m_posted.empty());
    }

    void advance(std::chrono::milliseconds time) {
        const auto end = m_elapsed + time;
        runPosted();
        while (const auto next = earliest(end)) {
            m_elapsed = std::max(m_elapsed, next->due);
            if (next->interval)
                next->due += std::max(*next->interval, std::chrono::milliseconds(1));
            else
                next->isDone = true;
            next->work();
            runPosted();
        }
        m_elapsed = end;
    }

    std::chrono::milliseconds elapsed() const { return m_elapsed; }

    // Milliseconds from now at which armed timers are due, sorted: what a test of "nothing is armed" prints.
    std::vector<long> dueIn() const {
        std::vector<long> times;
        for (const auto& entry : m_entries) {
            const auto alive = entry.lock();
            if (alive && !alive->isDone)
                times.push_back((alive->due - m_elapsed).count());
        }
        std::sort(times.begin(), times.end());
        return times;
    }

private:
    struct Entry : Timer::State {
        std::chrono::milliseconds due{};
        std::optional<std::chrono::milliseconds> interval;
        Work work;
    };

    Timer arm(std::chrono::milliseconds delay, std::optional<std::chrono::milliseconds> interval, Work work) {
        auto entry = std::make_shared<Entry>();
        entry->due = m_elapsed + delay;
        entry->interval = interval;
        entry->work = std::move(work);
        m_entries.push_back(entry);
        return Timer(entry);
    }

    // Shared: the work may cancel its own timer.
    std::shared_ptr<Entry> earliest(std::chrono::milliseconds end) {
        std::shared_ptr<Entry> found;
        std::erase_if(m_entries, [](const auto& entry) { return entry.expired() || entry.lock()->isDone; });
        for (const auto& weak : m_entries) {
            const auto entry = weak.lock();
            if (entry->due <= end && (!found || entry->due < found->due))
                found = entry;
        }
        return found;
    }

    const QDateTime m_start = QDateTime(QDate(2030, 1, 1), QTime(12, 0), Qt::UTC);
    std::chrono::milliseconds m_elapsed{0};
    std::vector<std::weak_ptr<Entry>> m_entries;
    std::deque<Work> m_posted;
};

}
