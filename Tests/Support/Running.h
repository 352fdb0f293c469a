#pragma once

#include "TaskScope.h"

#include <optional>
#include <stdexcept>
#include <variant>

namespace Korvi::Test {

// A task that a test has started and looks at: `Running<User> user([&] { return client.request<User>("/user"); })`.
// Ends with its destruction.
template <class T>
class Running {
public:
    explicit Running(std::function<Task<T>()> body) {
        m_scope.start([this, body = std::move(body)] { return watch(body); });
    }

    bool isDone() const { return m_value || m_error; }
    bool isWaiting() const { return m_scope.isWaiting(); }
    void cancel() { m_scope.cancel(); }

    // Throws what the task threw, or says that it still waits.
    const auto& value() const {
        if (m_error)
            std::rethrow_exception(m_error);
        if (!m_value)
            throw std::runtime_error("the task still waits");
        return *m_value;
    }
    // The error the task ended with, when it is of that type.
    template <class Error>
    std::optional<Error> error() const {
        try {
            if (m_error)
                std::rethrow_exception(m_error);
        } catch (const Error& error) {
            return error;
        } catch (...) {
        }
        return std::nullopt;
    }

private:
    Task<void> watch(std::function<Task<T>()> body) {
        try {
            auto task = body();
            if constexpr (std::is_void_v<T>) {
                co_await task;
                m_value.emplace();
            } else {
                m_value.emplace(co_await task);
            }
        } catch (const TaskCancelled&) {
            throw;
        } catch (...) {
            m_error = std::current_exception();
        }
    }

    std::optional<std::conditional_t<std::is_void_v<T>, std::monostate, T>> m_value;
    std::exception_ptr m_error;
    TaskScope m_scope;
};

}
