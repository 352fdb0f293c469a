#include "Process/HeadlessTerminal.h"
#include "Process/RunLoop.h"
#include "Terminal/Terminal.h"
#include "Tool/Arguments.h"
#include "Tool/Recording.h"
#include "Tool/ScreenDump.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace termcore::tool {
namespace {

constexpr int usageStatus = 2;
constexpr int timeoutStatus = 124;
constexpr std::size_t feedChunk = LocalProcess::readSize;

void dump(const Terminal& terminal, Arguments::Dump kind) {
    switch (kind) {
    case Arguments::Dump::none: break;
    case Arguments::Dump::screen: std::cout << dumpScreen(terminal); break;
    case Arguments::Dump::scrollback: std::cout << dumpScrollback(terminal); break;
    case Arguments::Dump::json: std::cout << dumpJson(terminal); break;
    }
    std::cout.flush();
}

std::vector<std::uint8_t> contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("can't read " + path);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

int feed(const Arguments& arguments) {
    std::vector<std::vector<std::uint8_t>> files;
    files.reserve(arguments.operands.size());
    for (const std::string& path : arguments.operands)
        files.push_back(contents(path));
    Terminal terminal(nullptr, arguments.options);
    std::size_t total = 0;
    const auto start = std::chrono::steady_clock::now();
    for (int n = 0; n < arguments.repeat; ++n) {
        for (const auto& file : files) {
            total += file.size();
            for (std::span<const std::uint8_t> rest = file; !rest.empty();) {
                const std::size_t length = std::min(rest.size(), feedChunk);
                terminal.feed(rest.first(length));
                rest = rest.subspan(length);
            }
        }
    }
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    dump(terminal, arguments.dump);
    std::printf("%.1f MB/s\n", static_cast<double>(total) / 1e6 / std::max(time.count(), 1e-9));
    return 0;
}

std::string findExecutable(const std::string& name) {
    if (name.find('/') != std::string::npos)
        return name;
    const char* path = std::getenv("PATH"); // NOLINT(concurrency-mt-unsafe): before any thread
    std::string rest = path != nullptr ? path : "/usr/bin:/bin";
    while (!rest.empty()) {
        const std::size_t colon = rest.find(':');
        std::string candidate = rest.substr(0, colon) + "/" + name;
        if (access(candidate.c_str(), X_OK) == 0)
            return candidate;
        rest = colon == std::string::npos ? std::string() : rest.substr(colon + 1);
    }
    throw std::runtime_error("no such command: " + name);
}

std::vector<std::string> childEnvironment() {
    std::vector<std::string> result;
    for (char** each = environ; *each != nullptr; ++each) {
        const std::string entry = *each;
        if (!entry.starts_with("TERM=") && !entry.starts_with("COLORTERM="))
            result.push_back(entry);
    }
    result.emplace_back("TERM=xterm-256color");
    result.emplace_back("COLORTERM=truecolor");
    return result;
}

int exitStatus(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// Types standard input in, on a thread that may stay in its read until the program ends.
void forwardInput(RunLoop& loop, HeadlessTerminal& headless) {
    if (isatty(STDIN_FILENO) != 0)
        return;
    std::thread([&loop, &headless] {
        std::array<std::uint8_t, 4096> buffer{};
        ssize_t count = 0;
        while ((count = read(STDIN_FILENO, buffer.data(), buffer.size())) > 0) {
            std::vector<std::uint8_t> bytes(buffer.begin(), buffer.begin() + count);
            loop.async([&headless, bytes = std::move(bytes)] { headless.send(std::span<const std::uint8_t>(bytes)); });
        }
    }).detach();
}

int run(const Arguments& arguments) {
    // Both live as long as the program: the input thread refers to them.
    static auto& loop = *new RunLoop;
    std::optional<int> status;
    static auto& headless = *new HeadlessTerminal(loop, arguments.options, [&](std::optional<int> code) {
        status = code;
        loop.quit();
    });
    std::optional<Recorder> recorder;
    if (arguments.recordTo) {
        recorder.emplace(*arguments.recordTo, headless.terminal.cols(), headless.terminal.rows());
        headless.onData = [&](std::span<const std::uint8_t> data) { recorder->add(data); };
    }
    headless.process.setDebugIO(arguments.debugsIO);
    const std::vector<std::string> rest(arguments.operands.begin() + 1, arguments.operands.end());
    headless.process.startProcess(
        findExecutable(arguments.operands[0]), rest, childEnvironment(), arguments.operands[0]);
    if (!headless.process.running())
        throw std::runtime_error("can't start " + arguments.operands[0]);
    forwardInput(loop, headless);
    if (!loop.run(arguments.timeout))
        headless.process.terminate();
    headless.terminal.endSynchronizedOutput();
    dump(headless.terminal, arguments.dump);
    return status ? exitStatus(*status) : timeoutStatus;
}

int replay(const Arguments& arguments) {
    std::ifstream in(arguments.operands[0], std::ios::binary);
    if (!in)
        throw std::runtime_error("can't read " + arguments.operands[0]);
    const Recording recording = Recording::read(in);
    TerminalOptions options = arguments.options;
    options.cols = recording.cols;
    options.rows = recording.rows;
    Terminal terminal(nullptr, options);
    for (const Recording::Chunk& chunk : recording.chunks)
        terminal.feed(chunk.bytes);
    dump(terminal, arguments.dump);
    return 0;
}

int execute(const Arguments& arguments) {
    switch (arguments.command) {
    case Arguments::Command::help: std::fputs(usage, stdout); return 0;
    case Arguments::Command::feed: return feed(arguments);
    case Arguments::Command::run: return run(arguments);
    case Arguments::Command::replay: return replay(arguments);
    }
    return usageStatus;
}

}
}

int main(int argc, char** argv) {
    using namespace termcore::tool;
    try {
        return execute(Arguments::parse({argv + 1, argv + argc}));
    } catch (const UsageError& error) {
        std::fprintf(stderr, "termcore: %s\n\n%s", error.message.c_str(), usage);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "termcore: %s\n", error.what());
        return 1;
    }
}
