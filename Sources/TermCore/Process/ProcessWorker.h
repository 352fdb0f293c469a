#pragma once

#include "Process/LocalProcess.h"
#include "Process/PseudoTerminalHelpers.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace termcore {

/// The thread behind a `LocalProcess`, and what the two share. It keeps itself alive until its child is gone, whatever
/// becomes of the owner.
class ProcessWorker : public std::enable_shared_from_this<ProcessWorker> {
public:
    ProcessWorker(LocalProcess& process, PseudoTerminalHelpers::Child child, DispatchQueue& dispatchQueue,
        std::optional<std::string> logDirectory, std::shared_ptr<DebugIO> diagnostics);
    ~ProcessWorker();
    ProcessWorker(const ProcessWorker&) = delete;
    ProcessWorker& operator=(const ProcessWorker&) = delete;

    void start();
    /// `number` names the bytes in diagnostics.
    void send(std::span<const std::uint8_t> data, int number);
    /// Nothing is delivered from here on; the child is hung up, and with `askFirst` sent SIGTERM before.
    void abandon(bool askFirst);
    void setLogging(std::optional<std::string> directory);
    int masterDescriptor() const { return child.masterDescriptor; }

private:
    using Chunk = std::vector<std::uint8_t>;
    struct Sent {
        int number = 0;
        std::size_t unwritten = 0;
    };

    void run();
    bool readOnce();
    void writePending();
    void deliver(Chunk chunk);
    void drain();
    void deliverSlice(const Chunk& chunk);
    void reportExit(int status);
    void completeSends(std::size_t written, int error);
    void hangUp();
    int reap();
    bool wantsToRead();
    void wake();
    void logChunk(std::span<const std::uint8_t> chunk);

    LocalProcess* owner; // touched on the dispatch queue only
    PseudoTerminalHelpers::Child child;
    DispatchQueue& queue;
    const bool usesMainQueue;
    const std::shared_ptr<DebugIO> debugIO;
    int pidDescriptor = -1;
    int wakeDescriptor = -1;
    bool endOfFile = false;         // the thread's own
    std::size_t logFileCounter = 0; // the thread's own
    Chunk buffer;                   // the thread's own
    std::atomic<bool> isAbandoned = false;

    std::mutex lock; // guards what follows
    std::condition_variable taken;
    std::vector<std::uint8_t> outgoing;
    std::deque<Sent> sends; // what `outgoing` is made of
    std::vector<Chunk> pendingChunks;
    std::size_t pendingChunkIndex = 0;
    bool pendingScheduled = false;
    std::optional<std::string> loggingDir;
};

}
