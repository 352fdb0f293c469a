#include "Process/RunLoop.h"

#include <utility>

namespace termcore {

void RunLoop::async(std::function<void()> work) {
    // Notified under the lock: the loop's owner may destroy it as soon as the work is done.
    const std::lock_guard guard(lock);
    queue.push_back(std::move(work));
    changed.notify_one();
}

void RunLoop::quit() {
    const std::lock_guard guard(lock);
    isQuitting = true;
    changed.notify_one();
}

bool RunLoop::run(std::optional<std::chrono::milliseconds> timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout.value_or(std::chrono::milliseconds(0));
    std::unique_lock guard(lock);
    for (bool hasWorked = false;; hasWorked = true) {
        const auto isReady = [&] { return isQuitting || !queue.empty(); };
        if (!timeout)
            changed.wait(guard, isReady);
        else
            changed.wait_until(guard, deadline, isReady);
        if (isQuitting) {
            isQuitting = false;
            return true;
        }
        // Work that keeps bringing more work must not outlast the time.
        if (queue.empty() || (timeout && hasWorked && std::chrono::steady_clock::now() >= deadline))
            return false;
        const auto work = std::move(queue.front());
        queue.pop_front();
        guard.unlock();
        work();
        guard.lock();
    }
}

}
