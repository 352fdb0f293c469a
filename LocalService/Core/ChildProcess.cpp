#include "Core/ChildProcess.h"

#include "Core/Confinement.h"

#include <algorithm>
#include <array>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sched.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace korvi::service {

namespace {

struct Child : std::enable_shared_from_this<Child> {
    asio::posix::stream_descriptor ended;
    asio::steady_timer limit;
    std::function<void(ChildEnd)> onEnd;
    pid_t pid = -1;
    bool timedOut = false;

    Child(asio::io_context& io, std::function<void(ChildEnd)> told)
        : ended(io)
        , limit(io)
        , onEnd(std::move(told)) {}
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() { stop(); }

    void stop() {
        onEnd = nullptr;
        if (pid > 0)
            reap(true);
        boost::system::error_code ignored;
        ended.close(ignored);
        limit.cancel(ignored);
    }

    int reap(bool kill) {
        // The group too: what the program has started ends with it.
        if (kill)
            ::kill(-pid, SIGKILL);
        int status = 0;
        while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
        ::kill(-pid, SIGKILL);
        pid = -1;
        return status;
    }

    void watch(std::chrono::seconds time) {
        limit.expires_after(time);
        limit.async_wait([weak = weak_from_this()](const boost::system::error_code& error) {
            const auto self = weak.lock();
            if (error || !self || self->pid <= 0)
                return;
            self->timedOut = true;
            ::kill(-self->pid, SIGKILL);
        });
        ended.async_wait(asio::posix::stream_descriptor::wait_read,
            [weak = weak_from_this()](const boost::system::error_code& error) {
                const auto self = weak.lock();
                if (error || !self || self->pid <= 0)
                    return;
                const int status = self->reap(false);
                self->limit.cancel();
                const bool succeeded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
                if (const auto tell = std::exchange(self->onEnd, nullptr))
                    tell(self->timedOut ? ChildEnd::timedOut : succeeded ? ChildEnd::succeeded : ChildEnd::failed);
            });
    }
};

void bound(__rlimit_resource_t what, std::uint64_t value) {
    const rlimit limit{value, value};
    ::setrlimit(what, &limit);
}

/// Between fork and exec nothing but system calls: the other thread may have held any lock.
[[noreturn]] void becomeChild(const char* program, char* const* argv, char* const* envp, const char* folder,
    const char* output, const ChildCommand& command, const Confinement& confinement) {
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ::unshare(CLONE_NEWUSER | CLONE_NEWNET);
    const int in = ::open("/dev/null", O_RDWR);
    const int out = *output ? ::open(output, O_WRONLY | O_CREAT | O_TRUNC, 0600) : in;
    if (in < 0 || out < 0 || ::dup2(in, 0) < 0 || ::dup2(out, 1) < 0 || ::dup2(out, 2) < 0 || ::chdir(folder) != 0 ||
        !confinement.enter())
        ::_exit(127);
    ::syscall(SYS_close_range, 3U, ~0U, 0U);
    bound(RLIMIT_CPU, static_cast<std::uint64_t>(command.time.count()));
    bound(RLIMIT_AS, command.memoryBytes);
    bound(RLIMIT_FSIZE, command.fileBytes);
    bound(RLIMIT_CORE, 0);
    // Signals that the service ignores would be ignored in there, too.
    ::signal(SIGPIPE, SIG_DFL);
    ::signal(SIGXFSZ, SIG_DFL);
    ::execve(program, argv, envp);
    ::_exit(127);
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (auto& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

}

std::shared_ptr<void> runChild(asio::io_context& io, const ChildCommand& command, std::function<void(ChildEnd)> onEnd) {
    auto child = std::make_shared<Child>(io, std::move(onEnd));
    std::vector<std::string> arguments = command.arguments;
    arguments.insert(arguments.begin(), command.program.string());
    std::vector<std::string> environment = command.environment;
    const auto argv = pointers(arguments);
    const auto envp = pointers(environment);
    const std::string program = command.program.string();
    const std::string folder = command.folder.string();
    const std::string output = command.output.string();
    Confinement confinement;
    confinement.allowWriting(command.folder);
    confinement.allowReading(command.program);
    for (const auto& path : command.readable)
        confinement.allowReading(path);
    child->pid = ::fork();
    if (child->pid == 0)
        becomeChild(program.c_str(), argv.data(), envp.data(), folder.c_str(), output.c_str(), command, confinement);
    if (child->pid > 0)
        ::setpgid(child->pid, child->pid);
    const int descriptor =
        child->pid < 0 ? -1 : static_cast<int>(::syscall(SYS_pidfd_open, child->pid, 0U)); // NOLINT: no wrapper yet
    if (descriptor < 0) {
        asio::post(io, [child] {
            if (const auto tell = std::exchange(child->onEnd, nullptr))
                tell(ChildEnd::notStarted);
        });
    } else {
        child->ended.assign(descriptor);
        child->watch(command.time);
    }
    // Who drops the handle in the middle of onEnd() drops the child with it.
    return {child.get(), [child](void*) { child->stop(); }};
}

std::optional<std::filesystem::path> findProgram(const std::string& name) {
    // Read at start-up, before there is a second thread.
    const char* path = std::getenv("PATH"); // NOLINT(concurrency-mt-unsafe)
    std::string_view folders = path ? path : "/usr/local/bin:/usr/bin:/bin";
    while (!folders.empty()) {
        const auto folder = folders.substr(0, folders.find(':'));
        folders.remove_prefix(std::min(folders.size(), folder.size() + 1));
        const auto candidate = std::filesystem::path(folder) / name;
        if (candidate.is_absolute() && ::access(candidate.c_str(), X_OK) == 0)
            return candidate;
    }
    return std::nullopt;
}

ScratchFolder::ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "korvi-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("Не удаётся создать временную папку.");
    path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}
