#pragma once

#include <QCoroTask>

#include <coroutine>
#include <functional>
#include <list>
#include <memory>

namespace Korvi {

template <class T = void>
using Task = QCoro::Task<T>;

// Thrown out of a co_await whose scope has been cancelled. Let it pass: it unwinds the task.
class TaskCancelled {};

namespace Detail {

struct ScopeState;

// A suspended operation, known to the scope whose task waits for it.
struct PendingOperation : std::enable_shared_from_this<PendingOperation> {
    void suspend(std::coroutine_handle<> handle);
    // Resumes the waiting coroutine, as part of its scope.
    void finish();
    void cancel();

    std::function<void()> stop;
    std::coroutine_handle<> waiter;
    std::weak_ptr<ScopeState> scope;
    bool isCancelled = false;
};

}

// Owns running tasks. Everything that a task started here awaits, however deep, belongs to the scope: cancelling
// or destroying the scope unwinds its tasks at once, while the scope's owner still stands. So a scope is the last
// member of its owner. Main thread only. Do not destroy a scope from inside one of its own tasks.
class TaskScope {
public:
    TaskScope();
    ~TaskScope();
    TaskScope(const TaskScope&) = delete;
    TaskScope& operator=(const TaskScope&) = delete;

    // Runs the body up to its first suspension. An exception that leaves it is logged: a task that can fail
    // catches its own errors.
    void start(std::function<Task<void>()> body);

    // Afterwards no task of this scope is suspended. New ones can be started.
    void cancel();

    // Whether a task waits for something.
    bool isWaiting() const;

private:
    std::shared_ptr<Detail::ScopeState> m_state;
};

}
