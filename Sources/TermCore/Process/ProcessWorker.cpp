#include "Process/ProcessWorker.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace termcore {

ProcessWorker::ProcessWorker(LocalProcess& process, PseudoTerminalHelpers::Child newChild, DispatchQueue& dispatchQueue,
    std::optional<std::string> logDirectory, std::shared_ptr<DebugIO> diagnostics)
    : owner(&process)
    , child(newChild)
    , queue(dispatchQueue)
    , usesMainQueue(dispatchQueue.isMainQueue())
    , debugIO(std::move(diagnostics))
    , pidDescriptor(static_cast<int>(syscall(SYS_pidfd_open, newChild.pid, 0)))
    , wakeDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , buffer(LocalProcess::readSize)
    , loggingDir(std::move(logDirectory)) {}

ProcessWorker::~ProcessWorker() {
    for (const int descriptor : {child.masterDescriptor, pidDescriptor, wakeDescriptor}) {
        if (descriptor >= 0)
            close(descriptor);
    }
}

void ProcessWorker::start() {
    std::thread([self = shared_from_this()] { self->run(); }).detach();
}

void ProcessWorker::send(std::span<const std::uint8_t> data, int number) {
    {
        const std::lock_guard guard(lock);
        outgoing.insert(outgoing.end(), data.begin(), data.end());
        if (!data.empty())
            sends.push_back({number, data.size()});
    }
    wake();
}

void ProcessWorker::abandon(bool askFirst) {
    owner = nullptr;
    if (askFirst)
        syscall(SYS_pidfd_send_signal, pidDescriptor, SIGTERM, nullptr, 0); // never a stranger with the same number
    {
        // Under the lock, as posting is: when this is over the queue is not touched again and may go.
        const std::lock_guard guard(lock);
        isAbandoned = true;
        pendingChunks.clear();
        pendingChunkIndex = 0;
    }
    taken.notify_all();
    wake();
}

void ProcessWorker::setLogging(std::optional<std::string> directory) {
    const std::lock_guard guard(lock);
    loggingDir = std::move(directory);
}

void ProcessWorker::wake() {
    const std::uint64_t one = 1;
    // A full counter wakes just as well.
    [[maybe_unused]] const auto written = write(wakeDescriptor, &one, sizeof one);
}

bool ProcessWorker::wantsToRead() {
    const std::lock_guard guard(lock);
    return !endOfFile && pendingChunks.size() - pendingChunkIndex < LocalProcess::largestBacklog;
}

void ProcessWorker::run() {
    bool hasExited = false;
    while (!isAbandoned) {
        const bool reads = wantsToRead();
        bool writes = false;
        {
            const std::lock_guard guard(lock);
            writes = !outgoing.empty();
        }
        std::array<pollfd, 3> waits{{
            {wakeDescriptor, POLLIN, 0},
            {hasExited ? -1 : pidDescriptor, POLLIN, 0},
            {endOfFile || (!reads && !writes) ? -1 : child.masterDescriptor,
                static_cast<short>((reads ? POLLIN : 0) | (writes ? POLLOUT : 0)), 0},
        }};
        if (hasExited && endOfFile)
            break;
        // After the exit only what is in the terminal already counts: others may keep it open for ever.
        const int timeout = hasExited && reads ? 0 : -1;
        const int ready = poll(waits.data(), waits.size(), timeout);
        if (ready < 0 && errno != EINTR)
            break;
        if (waits[0].revents != 0) {
            std::uint64_t count = 0;
            [[maybe_unused]] const auto got = read(wakeDescriptor, &count, sizeof count);
        }
        if ((waits[2].revents & POLLOUT) != 0)
            writePending();
        const bool hasData = reads && (waits[2].revents & (POLLIN | POLLHUP | POLLERR)) != 0 && readOnce();
        if (waits[1].revents != 0)
            hasExited = true;
        else if (hasExited && reads && !hasData)
            break;
    }
    if (!isAbandoned) {
        const int status = reap();
        const std::lock_guard guard(lock);
        if (!isAbandoned)
            queue.async([self = shared_from_this(), status] { self->reportExit(status); });
        return;
    }
    hangUp();
    reap();
}

/// False at the end of the file, or when there is nothing now.
bool ProcessWorker::readOnce() {
    const ssize_t count = read(child.masterDescriptor, buffer.data(), buffer.size());
    if (count > 0) {
        const std::span chunk(buffer.data(), static_cast<std::size_t>(count));
        debugIO->read(chunk.size());
        logChunk(chunk);
        deliver({chunk.begin(), chunk.end()});
        return true;
    }
    // A pseudo-terminal without a process at its other end says EIO.
    if (count == 0 || (errno != EAGAIN && errno != EINTR))
        endOfFile = true;
    return false;
}

void ProcessWorker::writePending() {
    const std::lock_guard guard(lock);
    const ssize_t count = write(child.masterDescriptor, outgoing.data(), outgoing.size());
    if (count > 0) {
        outgoing.erase(outgoing.begin(), outgoing.begin() + count);
        completeSends(static_cast<std::size_t>(count), 0);
    } else if (count < 0 && errno != EAGAIN && errno != EINTR) {
        completeSends(outgoing.size(), errno);
        outgoing.clear();
    }
}

void ProcessWorker::completeSends(std::size_t written, int error) {
    while (written > 0 && !sends.empty()) {
        Sent& first = sends.front();
        const std::size_t part = std::min(written, first.unwritten);
        written -= part;
        first.unwritten -= part;
        if (first.unwritten > 0)
            return;
        debugIO->completed(first.number, error);
        sends.pop_front();
    }
}

void ProcessWorker::logChunk(std::span<const std::uint8_t> chunk) {
    std::optional<std::string> directory;
    {
        const std::lock_guard guard(lock);
        directory = loggingDir;
    }
    if (!directory)
        return;
    const std::string path = *directory + "/" + std::to_string(logFileCounter++) + "-terminal.log";
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(chunk.data()), static_cast<std::streamsize>(chunk.size()));
    if (!file.flush())
        DebugIO::logFailed(path);
}

void ProcessWorker::deliver(Chunk chunk) {
    std::unique_lock guard(lock);
    if (isAbandoned)
        return;
    pendingChunks.push_back(std::move(chunk));
    if (!pendingScheduled) {
        pendingScheduled = true;
        queue.async([self = shared_from_this()] { self->drain(); });
    }
    if (!usesMainQueue)
        taken.wait(guard, [&] { return isAbandoned || !pendingScheduled; });
}

void ProcessWorker::drain() {
    const auto start = std::chrono::steady_clock::now();
    while (true) {
        Chunk chunk;
        {
            const std::lock_guard guard(lock);
            if (pendingChunkIndex == pendingChunks.size()) {
                pendingChunks.clear();
                pendingChunkIndex = 0;
                pendingScheduled = false;
                break;
            }
            chunk = std::move(pendingChunks[pendingChunkIndex++]);
            if (pendingChunkIndex >= LocalProcess::pendingChunkFlushThreshold) {
                pendingChunks.erase(
                    pendingChunks.begin(), pendingChunks.begin() + static_cast<std::ptrdiff_t>(pendingChunkIndex));
                pendingChunkIndex = 0;
            }
        }
        deliverSlice(chunk);
        const std::lock_guard guard(lock);
        if (usesMainQueue && pendingChunkIndex < pendingChunks.size() &&
            std::chrono::steady_clock::now() - start >= LocalProcess::pendingTimeSlice) {
            queue.async([self = shared_from_this()] { self->drain(); });
            break;
        }
    }
    taken.notify_all();
    wake();
}

void ProcessWorker::deliverSlice(const Chunk& chunk) {
    if (owner != nullptr && owner->delegate != nullptr)
        owner->delegate->dataReceived(chunk);
}

void ProcessWorker::reportExit(int status) {
    {
        // The main queue may still be taking the last output in slices.
        const std::lock_guard guard(lock);
        if (pendingScheduled) {
            queue.async([self = shared_from_this(), status] { self->reportExit(status); });
            return;
        }
    }
    if (LocalProcess* process = std::exchange(owner, nullptr))
        process->processTerminated(status);
}

/// Closes the terminal, which hangs up its session, and kills what is still there when the grace time is over.
void ProcessWorker::hangUp() {
    close(std::exchange(child.masterDescriptor, -1));
    pollfd exit{pidDescriptor, POLLIN, 0};
    poll(&exit, 1, static_cast<int>(LocalProcess::graceTime.count()));
    kill(-child.pid, SIGKILL);
}

int ProcessWorker::reap() {
    int status = 0;
    while (waitpid(child.pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

}
