#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <sys/ioctl.h>

namespace termcore {

class LocalProcess;

/// Who hears of a child: called on the dispatch queue.
class LocalProcessDelegate {
public:
    virtual ~LocalProcessDelegate() = default;
    /// Once for each child. `exitCode` is the raw status word of waitpid.
    virtual void processTerminated(LocalProcess& source, std::optional<int> exitCode) = 0;
    virtual void dataReceived(std::span<const std::uint8_t> slice) = 0;
    virtual winsize getWindowSize() = 0;
};

}
