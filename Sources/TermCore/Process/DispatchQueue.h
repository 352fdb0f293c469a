#pragma once

#include <functional>

namespace termcore {

/// Where a `LocalProcess` calls its delegate: usually the main loop of an application, which posts to its event queue.
class DispatchQueue {
public:
    virtual ~DispatchQueue() = default;

    /// Runs `work` soon, on the queue's thread, after what was posted before. Called from any thread.
    virtual void async(std::function<void()> work) = 0;
    /// True for an application's main loop: delivery is then cut into slices. Other queues take each chunk as it comes,
    /// and the next one is read when it is done.
    virtual bool isMainQueue() const = 0;
};

}
