#include "TaskScope.h"

#include <QLoggingCategory>

#include <algorithm>

namespace Korvi {

Q_LOGGING_CATEGORY(lcTask, "korvi.task")

namespace Detail {

struct ScopeState {
    std::vector<std::shared_ptr<PendingOperation>> waiting;
};

namespace {

// The scope on whose behalf code runs just now. Main thread only, so a plain variable serves.
std::weak_ptr<ScopeState> current;

class Enter {
public:
    explicit Enter(std::weak_ptr<ScopeState> scope)
        : m_previous(std::exchange(current, std::move(scope))) {}
    ~Enter() { current = std::move(m_previous); }
    Enter(const Enter&) = delete;
    Enter& operator=(const Enter&) = delete;

private:
    std::weak_ptr<ScopeState> m_previous;
};

void resume(PendingOperation& operation) {
    const auto handle = std::exchange(operation.waiter, nullptr);
    if (!handle)
        return;
    const Enter enter(operation.scope);
    handle.resume();
}

}

void PendingOperation::suspend(std::coroutine_handle<> handle) {
    waiter = handle;
    scope = current;
    if (const auto owner = scope.lock())
        owner->waiting.push_back(shared_from_this());
}

void PendingOperation::finish() {
    stop = nullptr;
    const auto keep = shared_from_this();
    if (const auto owner = scope.lock())
        std::erase(owner->waiting, keep);
    resume(*this);
}

void PendingOperation::cancel() {
    isCancelled = true;
    const auto keep = shared_from_this();
    if (const auto stopNow = std::exchange(stop, nullptr))
        stopNow();
    resume(*this);
}

}

namespace {

Task<void> run(std::function<Task<void>()> body) {
    try {
        auto task = body();
        co_await task;
    } catch (const TaskCancelled&) {
        // The owner has gone or has changed its mind.
    } catch (const std::exception& error) {
        qCCritical(lcTask).noquote() << "❌ [TaskScope] A task ended with an unhandled error:" << error.what();
    } catch (...) {
        qCCritical(lcTask) << "❌ [TaskScope] A task ended with an unhandled error of an unknown type";
    }
}

}

TaskScope::TaskScope()
    : m_state(std::make_shared<Detail::ScopeState>()) {}

TaskScope::~TaskScope() {
    cancel();
}

void TaskScope::start(std::function<Task<void>()> body) {
    const Detail::Enter enter(m_state);
    run(std::move(body));
}

void TaskScope::cancel() {
    // A task that unwinds may suspend again (a handler that cleans up): go on until none is left.
    while (!m_state->waiting.empty()) {
        const auto operation = m_state->waiting.back();
        m_state->waiting.pop_back();
        operation->cancel();
    }
}

bool TaskScope::isWaiting() const {
    return !m_state->waiting.empty();
}

}
