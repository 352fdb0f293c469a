#pragma once

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace korvi::service::test {

/// A folder that is gone when the test ends.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    std::filesystem::path path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// The real program, started with `--data` and further arguments; killed at the end if it still runs.
class ServiceProcess {
public:
    explicit ServiceProcess(
        const std::filesystem::path& data, std::vector<std::string> arguments = {}, unsigned long fileSizeLimit = 0);
    ~ServiceProcess();
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    /// The next line of standard output, or empty if the program has ended.
    std::string readLine();
    /// Of the start-up line; 0 if the program has ended instead.
    int port() const { return port_; }
    const std::string& startLine() const { return startLine_; }

    void signal(int number) const;
    /// Waits for the end. The exit status, or 128 + the signal's number.
    int wait();
    /// Everything from standard error, up to the program's end.
    std::string errors();

private:
    pid_t pid_ = -1;
    int out_ = -1;
    int err_ = -1;
    std::string buffer_;
    std::string startLine_;
    int port_ = 0;
};

}
