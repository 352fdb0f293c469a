#include "Process/LocalProcess.h"

#include "Process/ProcessWorker.h"
#include "Terminal/Terminal.h"

#include <csignal>
#include <utility>

namespace termcore {

LocalProcess::LocalProcess(LocalProcessDelegate* initialDelegate, DispatchQueue& dispatchQueue)
    : delegate(initialDelegate)
    , queue(dispatchQueue) {}

LocalProcess::~LocalProcess() {
    if (worker)
        worker->abandon(false);
}

void LocalProcess::startProcess(const std::string& executable, const std::vector<std::string>& args,
    const std::optional<std::vector<std::string>>& environment, const std::optional<std::string>& execName,
    const std::optional<std::string>& currentDirectory) {
    if (running())
        return;
    std::vector<std::string> argv{execName.value_or(executable)};
    argv.insert(argv.end(), args.begin(), args.end());
    const winsize size = delegate != nullptr ? delegate->getWindowSize() : winsize{};
    const auto child = PseudoTerminalHelpers::fork(executable, argv,
        environment ? *environment : Terminal::getEnvironmentVariables("xterm-256color", true), currentDirectory, size);
    if (!child)
        return;
    pid = child->pid;
    worker = std::make_shared<ProcessWorker>(*this, *child, queue, loggingDir, debugIO);
    worker->start();
}

void LocalProcess::send(std::span<const std::uint8_t> data) {
    if (!running())
        return;
    ++writes;
    debugIO->queued(writes, data.size());
    worker->send(data, writes);
}

void LocalProcess::terminate() {
    if (const auto ended = std::exchange(worker, nullptr))
        ended->abandon(true);
}

void LocalProcess::updateWindowSize() {
    if (running() && delegate != nullptr)
        PseudoTerminalHelpers::setWinSize(worker->masterDescriptor(), delegate->getWindowSize());
}

void LocalProcess::setHostLogging(const std::optional<std::string>& directory) {
    loggingDir = directory;
    if (worker)
        worker->setLogging(directory);
}

int LocalProcess::childfd() const {
    return worker ? worker->masterDescriptor() : -1;
}

void LocalProcess::processTerminated(int status) {
    worker.reset();
    if (delegate != nullptr)
        delegate->processTerminated(*this, status);
}

}
