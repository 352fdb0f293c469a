#pragma once

#include "Async.h"

#include <chrono>
#include <functional>
#include <memory>

namespace Korvi {

// Delayed work that is still wanted as long as this object lives: destroying or resetting it cancels the work.
class Timer {
public:
    // What a scheduler keeps for the timer; it sets `isDone` before it runs the work for the last time.
    struct State {
        virtual ~State() = default;
        bool isDone = false;
    };

    Timer() = default;
    explicit Timer(std::shared_ptr<const State> state)
        : m_state(std::move(state)) {}

    bool isActive() const { return m_state && !m_state->isDone; }
    void cancel() { m_state.reset(); }

private:
    std::shared_ptr<const State> m_state;
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
