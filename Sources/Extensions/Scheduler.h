#pragma once

#include "Async.h"

#include <chrono>
#include <functional>
#include <memory>

namespace Korvi {

// Delayed work that is still wanted as long as this object lives: destroying or resetting it cancels the work.
class Timer {
public:
    Timer() = default;
    explicit Timer(std::shared_ptr<void> keep)
        : m_keep(std::move(keep)) {}

    bool isActive() const { return m_keep != nullptr; }
    void cancel() { m_keep.reset(); }

private:
    std::shared_ptr<void> m_keep;
};

// Timers of the main thread. Work never runs inside the call that schedules it.
class Scheduler {
public:
    using Work = std::function<void()>;

    virtual ~Scheduler() = default;

    // The work runs once, unless the timer was destroyed before. The timer stays active until then.
    [[nodiscard]] virtual Timer after(std::chrono::milliseconds delay, Work work) = 0;
    [[nodiscard]] virtual Timer every(std::chrono::milliseconds interval, Work work) = 0;
    // The next turn of the main loop, in the order of the calls. Cannot be cancelled: hold what it needs weakly.
    virtual void post(Work work) = 0;

    // Ends early, with TaskCancelled, when the scope that awaits it does.
    Async<void> sleep(std::chrono::milliseconds delay) {
        Resolver<void> resolver;
        auto timer = std::make_shared<Timer>();
        resolver.onCancel([timer] { timer->cancel(); });
        *timer = after(delay, [resolver]() mutable { resolver.resolve(); });
        return resolver.async();
    }
};

}
