#include "ProgramScreens.h"

#include "Tool/ScreenDump.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>
#include <unistd.h>

namespace termcore::test {
namespace {

using namespace std::chrono_literals;
constexpr auto patience = 30s;
constexpr auto pauseTime = 20ms;
constexpr int stillPauses = 4;

TerminalOptions programSize() {
    TerminalOptions options;
    options.cols = programCols;
    options.rows = programRows;
    return options;
}

int started = 0; // a server of its own for each screen

std::string trimmed(const std::string& text) {
    std::string out;
    std::string line;
    for (const char c : text + "\n") {
        if (c != '\n') {
            line += c;
            continue;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + "\n";
        line.clear();
    }
    out.erase(out.find_last_not_of('\n') + 1);
    return out;
}

std::string output(const std::string& command) {
    std::string text;
    FILE* pipe = popen(command.c_str(), "r"); // NOLINT
    if (pipe == nullptr)
        return text;
    std::array<char, 4096> buffer{};
    std::size_t count = 0;
    while ((count = fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
        text.append(buffer.data(), count);
    pclose(pipe);
    return text;
}

}

int runShell(const std::string& command) {
    return std::system(command.c_str()); // NOLINT
}

std::string ProgramScreen::settled(const std::function<bool(const std::string&)>& isReady) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    std::string before;
    int still = 0;
    while (std::chrono::steady_clock::now() < deadline) {
        pause();
        const std::string now = text();
        still = now == before ? still + 1 : 0;
        before = now;
        if (still >= stillPauses && isReady(now))
            break;
    }
    return before;
}

EngineScreen::EngineScreen(const std::string& command)
    : headless(loop, programSize(), [](std::optional<int>) {}) {
    headless.process.startProcess("/bin/bash", {"-c", command});
}

std::string EngineScreen::text() {
    return trimmed(tool::dumpScreen(headless.terminal));
}

void EngineScreen::pause() {
    loop.run(pauseTime);
}

TmuxScreen::TmuxScreen(const std::string& command, const std::filesystem::path& folder)
    : tmux("LC_ALL=C.UTF-8 tmux -S " + (folder / "tmux").string() + std::to_string(++started) + " -f /dev/null ") {
    const std::filesystem::path script = folder / "start.sh";
    std::ofstream(script) << command << "\n";
    const std::string size = std::to_string(programCols) + " -y " + std::to_string(programRows);
    runShell(tmux + "new-session -d -x " + size + " 'exec bash " + script.string() + "' \\; set -g status off");
    runShell(tmux + "resize-window -x " + size);
}

TmuxScreen::~TmuxScreen() {
    runShell(tmux + "kill-server 2>/dev/null");
}

std::string TmuxScreen::text() {
    // The plain capture writes line drawing as the letters that stand for it; with -e shifts tell where.
    Terminal terminal(nullptr, programSize());
    terminal.feed("\x1b)0");
    std::string captured = output(tmux + "capture-pane -p -e");
    if (!captured.empty())
        captured.pop_back(); // the last line end would scroll
    for (const char c : captured)
        terminal.feed(c == '\n' ? std::string_view("\r\n") : std::string_view(&c, 1));
    return trimmed(tool::dumpScreen(terminal));
}

void TmuxScreen::type(std::string_view keys) {
    std::string command = tmux + "send-keys -H";
    for (const char key : keys) {
        std::array<char, 8> digits{};
        std::snprintf(digits.data(), digits.size(), " %02x", static_cast<unsigned char>(key));
        command += digits.data();
    }
    runShell(command);
}

void TmuxScreen::pause() {
    std::this_thread::sleep_for(pauseTime);
}

bool TmuxScreen::isInstalled() {
    return hasProgram("tmux");
}

WorkFolder::WorkFolder()
    : path(std::filesystem::temp_directory_path() / ("termcore-programs-" + std::to_string(getpid()))) {
    std::filesystem::create_directories(path);
}

WorkFolder::~WorkFolder() {
    // Programs that are just ending may still write into it.
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

}
