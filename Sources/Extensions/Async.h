#pragma once

#include "TaskScope.h"

#include <optional>

namespace Korvi {

// One value that comes later, or an exception: what the platform's operations return. Awaited once, by one
// coroutine, on the main thread. When the awaiting scope is cancelled, the coroutine resumes with TaskCancelled
// and the operation behind it is told to stop.
template <class T>
class Resolver;

namespace Detail {

template <class T>
struct AsyncState : PendingOperation {
    using Stored = std::conditional_t<std::is_void_v<T>, std::monostate, T>;
    std::optional<Stored> value;
    std::exception_ptr error;

    bool isSettled() const { return value.has_value() || error || isCancelled; }
};

}

template <class T>
class Async {
public:
    explicit Async(std::shared_ptr<Detail::AsyncState<T>> state)
        : m_state(std::move(state)) {}

    bool await_ready() const { return m_state->isSettled(); }
    void await_suspend(std::coroutine_handle<> handle) { m_state->suspend(handle); }
    T await_resume() {
        if (m_state->error)
            std::rethrow_exception(m_state->error);
        if (!m_state->value)
            throw TaskCancelled();
        if constexpr (!std::is_void_v<T>)
            return std::move(*m_state->value);
    }

private:
    std::shared_ptr<Detail::AsyncState<T>> m_state;
};

// The other end of an Async. Only the first outcome counts.
template <class T>
class Resolver {
public:
    Resolver()
        : m_state(std::make_shared<Detail::AsyncState<T>>()) {}

    Async<T> async() const { return Async<T>(m_state); }

    // What stops the operation. Not called after an outcome.
    void onCancel(std::function<void()> stop) { m_state->stop = std::move(stop); }

    template <class... Value>
    void resolve(Value&&... value) {
        if (m_state->isSettled())
            return;
        m_state->value.emplace(std::forward<Value>(value)...);
        m_state->finish();
    }
    void reject(std::exception_ptr error) {
        if (m_state->isSettled())
            return;
        m_state->error = std::move(error);
        m_state->finish();
    }
    template <class Error>
    void fail(Error error) {
        reject(std::make_exception_ptr(std::move(error)));
    }

private:
    std::shared_ptr<Detail::AsyncState<T>> m_state;
};

}
