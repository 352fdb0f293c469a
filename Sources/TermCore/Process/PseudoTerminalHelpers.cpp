#include "Process/PseudoTerminalHelpers.h"

#include <csignal>
#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

namespace termcore {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}

std::optional<PseudoTerminalHelpers::Child> PseudoTerminalHelpers::fork(const std::string& andExec,
    const std::vector<std::string>& args, const std::vector<std::string>& env,
    const std::optional<std::string>& currentDirectory, const winsize& desiredWindowSize) {
    // All memory is made before the fork: the child of a program with threads may only make system calls.
    std::vector<std::string> argTexts = args;
    std::vector<std::string> envTexts = env;
    const std::vector<char*> argv = pointersTo(argTexts);
    const std::vector<char*> envp = pointersTo(envTexts);
    winsize size = desiredWindowSize;
    int master = -1;
    const pid_t pid = forkpty(&master, nullptr, nullptr, &size);
    if (pid < 0)
        return std::nullopt;
    if (pid == 0) {
        // Ignored signals survive exec: a child must be able to end by the ordinary ones.
        std::signal(SIGPIPE, SIG_DFL);
        if (currentDirectory && chdir(currentDirectory->c_str()) != 0) {
            // It runs where its parent does.
        }
        execve(andExec.c_str(), argv.data(), envp.data());
        _exit(127);
    }
    fcntl(master, F_SETFD, FD_CLOEXEC);
    fcntl(master, F_SETFL, fcntl(master, F_GETFL) | O_NONBLOCK);
    return Child{pid, master};
}

int PseudoTerminalHelpers::setWinSize(int masterPtyDescriptor, const winsize& windowSize) {
    return ioctl(masterPtyDescriptor, TIOCSWINSZ, &windowSize);
}

std::pair<int, int> PseudoTerminalHelpers::availableBytes(int fd) {
    int count = 0;
    const int status = ioctl(fd, FIONREAD, &count);
    return {status, count};
}

}
