// Real programs on the engine. Where tmux is there, its screen of the same program is what ours is compared with.
#include "Process/HeadlessTerminal.h"
#include "Process/RunLoop.h"
#include "Tool/ScreenDump.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <ostream>
#include <sys/wait.h>
#include <unistd.h>

namespace termcore::test {
namespace {

using namespace std::chrono_literals;
constexpr auto patience = 30s;
constexpr int cols = 80;
constexpr int rows = 24;

/// What is typed once the screen shows a text.
struct Step {
    const char* waitFor;
    const char* keys;
};

struct Program {
    const char* name;
    const char* needs;
    const char* command; ///< for a shell, in the work directory
    std::vector<Step> steps;
    const char* finally; ///< what the last screen shows
    bool hasTmux = true; ///< its screen is the same under tmux
};

void PrintTo(const Program& program, std::ostream* out) {
    *out << program.name;
}

const Program programs[] = {
    {"bash", "bash", "PS1='$ ' bash --norc --noprofile -i",
        {{"$", "echo one two\x1b\x62new \x01\x0b\x19; echo $COLUMNS\r"},
            {"80", "for i in 1 2 3; do printf '%s\\t|' $i; done\r"}},
        "1       |2      |3      |$"},
    {"vim", "vim", "vim -u NONE -N +'set nomodeline number' text.txt",
        {{"line 1 ", "10Gdd5jyyp:s/line/строка/\r"}, {"строка", "Go中文 wide\x1b"}, {"中文 wide", "gg/line 7\r"}},
        "line 7"},
    {"less", "less", "less -N text.txt", {{"line 1 ", "  "}, {"line 50", "/line 9\r"}}, "line 90"},
    {"git", "git",
        "git -c color.ui=always -c core.pager=cat -C repository log --graph --stat --pretty=format:'%h %s'; sleep 100",
        {}, "first change"},
    {"mc", "mc", "mc -u -x -b . 2>/dev/null", {{"text.txt", "\x1b[B\x1b[B"}}, "10Quit", false},
    {"top", "top", "top -d 100", {}, "Tasks:", false},
    {"htop", "htop", "htop -d 100", {}, "F10", false},
    {"tmux", "tmux", "tmux -L inner -f /dev/null new-session \"PS1='> ' bash --norc --noprofile -i\"",
        {{">", "tmux -L inner split-window -h \"PS1='second> ' bash --norc --noprofile -i\"\r"},
            {"second>", "echo in the second\r"}},
        "│", false},
    {"vttest", "vttest", "vttest 24x80.80", {{"choice number", "1\r"}}, "Push <RETURN>", false},
};

class Programs : public testing::TestWithParam<Program> {
protected:
    void SetUp() override {
        if (runShell(std::string("command -v ") + GetParam().needs + " >/dev/null") != 0)
            GTEST_SKIP() << GetParam().needs << " is not installed";
        directory = std::filesystem::temp_directory_path() / ("termcore-programs-" + std::to_string(getpid()));
        std::filesystem::create_directories(directory);
        std::ofstream text(directory / "text.txt");
        for (int i = 1; i <= 200; ++i)
            text << "line " << i << " of a file, with some words\n";
        text.close();
        runShell("cd " + directory.string() +
            " && mkdir -p repository && cd repository && git init -q . 2>/dev/null && "
            "for i in first second third; do echo $i >> file; git add file; GIT_AUTHOR_DATE='2024-01-01 00:00:00' "
            "GIT_COMMITTER_DATE='2024-01-01 00:00:00' git -c user.name=n -c user.email=e commit -qm \"$i change\"; "
            "done");
    }
    void TearDown() override {
        runShell("tmux -L " + socket() + " kill-server 2>/dev/null; tmux -L inner kill-server 2>/dev/null");
        if (!directory.empty())
            removeDirectory();
    }

    /// Programs that are just ending may still write into it.
    void removeDirectory() const {
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }
    static int runShell(const std::string& command) { return std::system(command.c_str()); } // NOLINT
    static std::string output(const std::string& command) {
        std::string text;
        FILE* pipe = popen(command.c_str(), "r"); // NOLINT
        char buffer[4096];
        std::size_t count = 0;
        while ((count = fread(buffer, 1, sizeof buffer, pipe)) > 0)
            text.append(buffer, count);
        pclose(pipe);
        return text;
    }
    std::string socket() const { return "termcore-test-" + std::to_string(getpid()); }
    std::string command() const {
        return "unset TMUX; cd " + directory.string() +
            " && export LANG=C.UTF-8 LC_ALL=C.UTF-8 HOME=" + directory.string() + "; " + GetParam().command;
    }

    std::filesystem::path directory;
};

/// The screen once it has held still for a while and shows `wanted`.
template <typename Screen, typename Pause>
std::string settled(Screen screen, Pause pause, const char* wanted) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    std::string before;
    int still = 0;
    while (std::chrono::steady_clock::now() < deadline) {
        pause();
        const std::string now = screen();
        still = now == before ? still + 1 : 0;
        before = now;
        if (still >= 5 && now.find(wanted) != std::string::npos)
            break;
    }
    return before;
}

std::string withoutBlanks(const std::string& text) {
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

TEST_P(Programs, LookAsTheyShould) {
    const Program& program = GetParam();
    RunLoop loop;
    TerminalOptions options;
    options.cols = cols;
    options.rows = rows;
    HeadlessTerminal headless(loop, options, [](std::optional<int>) {});
    headless.process.startProcess("/bin/bash", {"-c", command()});
    const auto screen = [&] { return withoutBlanks(tool::dumpScreen(headless.terminal)); };
    const auto pause = [&] { loop.run(60ms); };
    for (const Step& step : program.steps) {
        const std::string shown = settled(screen, pause, step.waitFor);
        ASSERT_NE(shown.find(step.waitFor), std::string::npos) << shown;
        headless.send(std::string_view(step.keys));
    }
    const std::string ours = settled(screen, pause, program.finally);
    EXPECT_NE(ours.find(program.finally), std::string::npos) << ours;
    headless.process.terminate();

    if (!program.hasTmux || runShell("command -v tmux >/dev/null") != 0)
        return;
    std::filesystem::remove(directory / ".text.txt.swp");
    const std::string tmux = "tmux -L " + socket() + " -f /dev/null ";
    std::ofstream(directory / "start.sh") << command() << "\n";
    ASSERT_EQ(runShell("LC_ALL=C.UTF-8 " + tmux + "new-session -d -x 80 -y 24 'exec bash " +
                  (directory / "start.sh").string() + "' \\; set -g status off"),
        0);
    runShell(tmux + "resize-window -x 80 -y 24");
    const auto peerScreen = [&] { return withoutBlanks(output(tmux + "capture-pane -p")); };
    const auto peerPause = [] { usleep(60000); };
    for (const Step& step : program.steps) {
        settled(peerScreen, peerPause, step.waitFor);
        std::string hex = tmux + "send-keys -H";
        for (const char* c = step.keys; *c != 0; ++c) {
            char digits[8];
            std::snprintf(digits, sizeof digits, " %02x", static_cast<unsigned char>(*c));
            hex += digits;
        }
        runShell(hex);
    }
    EXPECT_EQ(ours, settled(peerScreen, peerPause, program.finally));
}

INSTANTIATE_TEST_SUITE_P(
    Real, Programs, testing::ValuesIn(programs), [](const auto& each) { return std::string(each.param.name); });

}
}
