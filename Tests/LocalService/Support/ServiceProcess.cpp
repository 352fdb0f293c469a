#include "Support/ServiceProcess.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace korvi::service::test {

TemporaryFolder::TemporaryFolder() {
    // A blank in the path: a folder of a user may have one.
    std::string pattern = (std::filesystem::temp_directory_path() / "korvi service XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp");
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

ServiceProcess::ServiceProcess(
    const std::filesystem::path& data, std::vector<std::string> arguments, unsigned long fileSizeLimit) {
    arguments.insert(arguments.begin(), {KORVI_SERVICE_BINARY, "--data", data.string()});
    std::vector<char*> argv;
    for (auto& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    int out[2];
    int err[2];
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0)
        throw std::runtime_error("pipe");
    pid_ = ::fork();
    if (pid_ == 0) {
        ::dup2(out[1], 1);
        ::dup2(err[1], 2);
        if (fileSizeLimit != 0) {
            const rlimit limit{fileSizeLimit, fileSizeLimit};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        }
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    ::close(out[1]);
    ::close(err[1]);
    out_ = out[0];
    err_ = err[0];
    startLine_ = readLine();
    const auto host = startLine_.find("127.0.0.1:");
    if (host != std::string::npos)
        port_ = std::atoi(startLine_.c_str() + host + 10);
}

ServiceProcess::~ServiceProcess() {
    if (pid_ > 0) {
        signal(SIGKILL);
        wait();
    }
    ::close(out_);
    ::close(err_);
}

std::string ServiceProcess::readLine() {
    for (;;) {
        if (const auto end = buffer_.find('\n'); end != std::string::npos) {
            std::string line = buffer_.substr(0, end);
            buffer_.erase(0, end + 1);
            return line;
        }
        char bytes[4096];
        const auto count = ::read(out_, bytes, sizeof bytes);
        if (count <= 0)
            return {};
        buffer_.append(bytes, static_cast<std::size_t>(count));
    }
}

void ServiceProcess::signal(int number) const {
    ::kill(pid_, number);
}

int ServiceProcess::wait() {
    int status = 0;
    if (pid_ <= 0 || ::waitpid(pid_, &status, 0) != pid_)
        return -1;
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string ServiceProcess::errors() {
    std::string text;
    char bytes[4096];
    for (ssize_t count = 0; (count = ::read(err_, bytes, sizeof bytes)) > 0;)
        text.append(bytes, static_cast<std::size_t>(count));
    return text;
}

}
