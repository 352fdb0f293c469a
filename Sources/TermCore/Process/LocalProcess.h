#pragma once

#include "Process/DebugIO.h"
#include "Process/DispatchQueue.h"
#include "Process/LocalProcessDelegate.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <sys/types.h>
#include <vector>

namespace termcore {

class ProcessWorker;

/// A child on a pseudo-terminal. A thread of its own reads, writes and waits for the exit; the delegate is only called on
/// the dispatch queue, in the order things came: all output before the exit. All calls belong on that queue too.
///
/// On the main queue output waits in a list and is delivered for at most `pendingTimeSlice` at a time; when the list is
/// long, reading pauses. On another queue the next chunk is read when the last one has been taken.
///
/// When this object goes while the child runs, the terminal is hung up; what of the child's process group is still there
/// after `graceTime` is killed. No descriptor and no zombie stays behind.
class LocalProcess {
public:
    static constexpr std::size_t readSize = 131072;
    static constexpr std::size_t pendingChunkFlushThreshold = 32;
    static constexpr std::chrono::milliseconds pendingTimeSlice{4};
    /// Reading pauses while so many chunks wait: a flood is held back in the child, not in memory.
    static constexpr std::size_t largestBacklog = 64;
    static constexpr std::chrono::milliseconds graceTime{2000};

    /// Neither is owned; the delegate may be null, the queue must outlive this object.
    LocalProcess(LocalProcessDelegate* delegate, DispatchQueue& dispatchQueue);
    ~LocalProcess();
    LocalProcess(const LocalProcess&) = delete;
    LocalProcess& operator=(const LocalProcess&) = delete;

    /// Does nothing while a child runs, or when none can be made. Without an environment the child gets the terminal's
    /// default one, without a name it is called as `executable`.
    void startProcess(const std::string& executable, const std::vector<std::string>& args,
        const std::optional<std::vector<std::string>>& environment = std::nullopt,
        const std::optional<std::string>& execName = std::nullopt,
        const std::optional<std::string>& currentDirectory = std::nullopt);
    /// Queues the bytes and returns at once; without a child they are dropped.
    void send(std::span<const std::uint8_t> data);
    /// Ends the child; its exit is not reported.
    void terminate();
    /// Tells the child its new size, as the delegate gives it.
    void updateWindowSize();
    /// Writes each chunk that is read to a numbered file in this directory.
    void setHostLogging(const std::optional<std::string>& directory);
    /// Prints a line on standard error for each read and write, with sizes alone.
    void setDebugIO(bool on) { debugIO->setOn(on); }
    void setDelegate(LocalProcessDelegate* newDelegate) { delegate = newDelegate; }

    bool running() const { return worker != nullptr; }
    pid_t shellPid() const { return pid; }
    int childfd() const;
    int sendCount() const { return writes; }
    /// Bytes read while `setDebugIO` was on.
    std::size_t totalRead() const { return debugIO->totalRead(); }

private:
    friend class ProcessWorker;
    void processTerminated(int status);

    LocalProcessDelegate* delegate;
    DispatchQueue& queue;
    std::shared_ptr<ProcessWorker> worker;
    pid_t pid = 0;
    int writes = 0;
    std::optional<std::string> loggingDir;
    std::shared_ptr<DebugIO> debugIO = std::make_shared<DebugIO>(); // the worker's too
};

}
