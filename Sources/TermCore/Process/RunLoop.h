#pragma once

#include "Process/DispatchQueue.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>

namespace termcore {

/// A dispatch queue for programs without a main loop: the thread that calls `run` does the work.
class RunLoop final : public DispatchQueue {
public:
    enum class Kind { backPressure, mainQueue };

    explicit RunLoop(Kind loopKind = Kind::backPressure)
        : kind(loopKind) {}

    void async(std::function<void()> work) override;
    bool isMainQueue() const override { return kind == Kind::mainQueue; }

    /// Works until `quit`, or until `timeout` has passed. True when it was ended by `quit`.
    bool run(std::optional<std::chrono::milliseconds> timeout = std::nullopt);
    /// Ends the present or the next `run`; from any thread.
    void quit();

private:
    Kind kind;
    std::mutex lock;
    std::condition_variable changed;
    std::deque<std::function<void()>> queue;
    bool isQuitting = false;
};

}
