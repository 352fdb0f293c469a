#pragma once

#include <atomic>
#include <cstddef>
#include <string_view>

namespace termcore {

/// What goes to and comes from a child, as lines on standard error while it is on: numbers and sizes, never the bytes
/// themselves. Safe from any thread.
class DebugIO {
public:
    void setOn(bool on) { isEnabled = on; }
    bool isOn() const { return isEnabled; }
    /// Bytes read while it was on.
    std::size_t totalRead() const { return total; }

    void read(std::size_t count);
    /// `number` counts the sends of one `LocalProcess`.
    void queued(int number, std::size_t count) const;
    /// `error` is 0 or an errno.
    void completed(int number, int error) const;
    /// Printed whether it is on or not.
    static void logFailed(std::string_view path);

private:
    std::atomic<bool> isEnabled = false;
    std::atomic<std::size_t> total = 0;
};

}
