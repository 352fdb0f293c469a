#include "Process/HeadlessTerminal.h"
#include "Process/PseudoTerminalHelpers.h"
#include "Process/RunLoop.h"
#include "TestHost.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace termcore::test {
namespace {

using namespace std::chrono_literals;
constexpr auto patience = 20s;

std::size_t openDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

template <typename Condition>
bool waitFor(RunLoop& loop, Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        loop.run(1ms);
    }
    return true;
}

struct Session {
    RunLoop loop;
    std::vector<std::optional<int>> exits;
    HeadlessTerminal headless;

    explicit Session(RunLoop::Kind kind = RunLoop::Kind::backPressure, TerminalOptions options = sized(60, 10))
        : loop(kind)
        , headless(loop, options, [this](std::optional<int> code) { exits.push_back(code); }) {}

    void start(const std::string& script) { headless.process.startProcess("/bin/sh", {"-c", script}); }
    bool waitForExit() {
        return waitFor(loop, [&] { return !exits.empty(); });
    }
    std::string screen() const { return tool::dumpScreen(headless.terminal); }
};

class OnEitherQueue : public testing::TestWithParam<RunLoop::Kind> {};

TEST_P(OnEitherQueue, OutputComesInOrderAndTheExitOnceAfterIt) {
    const std::size_t before = openDescriptors();
    {
        Session session(GetParam(), sized(40, 10, 200000));
        session.start("seq 1 100000; exit 3");
        ASSERT_TRUE(session.waitForExit());
        ASSERT_TRUE(WIFEXITED(*session.exits[0]));
        EXPECT_EQ(WEXITSTATUS(*session.exits[0]), 3);
        EXPECT_FALSE(session.headless.process.running());
        const auto& lines = session.headless.terminal.buffer().lines;
        std::vector<Cell> scratch;
        for (std::size_t i = 0; i < 100000; ++i) {
            std::string text;
            for (const Cell& cell : lines.read(i, scratch)) {
                if (cell.code() != 0)
                    text += static_cast<char>(cell.code());
            }
            ASSERT_EQ(text, std::to_string(i + 1));
        }
        session.loop.run(5ms);
        EXPECT_EQ(session.exits.size(), 1U);
    }
    RunLoop settle;
    EXPECT_TRUE(waitFor(settle, [&] { return openDescriptors() <= before; }));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a zombie was left";
}

/// What the owner does while its thread reads, writes and reports; above all for ThreadSanitizer.
TEST_P(OnEitherQueue, OwnersMayDoAnythingAtAnyTime) {
    for (int i = 0; i < 20; ++i) {
        Session session(GetParam());
        session.start(i % 3 == 0 ? "yes" : i % 3 == 1 ? "cat" : "seq 1 5000; exit 1");
        for (int n = 0; n < i; ++n) {
            session.headless.send("some text\n");
            session.headless.process.setHostLogging(std::nullopt);
            session.headless.terminal.resize(20 + n, 5);
            session.headless.process.updateWindowSize();
            session.loop.run(n % 4 == 0 ? 1ms : 0ms);
        }
        if (i % 2 == 0)
            session.headless.process.terminate();
        if (i % 4 == 0) {
            session.start("echo again");
            // The child before may have ended by itself: its exit says nothing of this one.
            const auto seen = [&] { return session.screen().find("again") != std::string::npos; };
            EXPECT_TRUE(waitFor(session.loop, seen)) << session.screen();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(LocalProcess, OnEitherQueue,
    testing::Values(RunLoop::Kind::backPressure, RunLoop::Kind::mainQueue), [](const auto& each) {
        return std::string(each.param == RunLoop::Kind::mainQueue ? "MainQueue" : "BackPressure");
    });

TEST(LocalProcess, AnswersReportsAndTakesInput) {
    Session session;
    session.start(
        "stty raw -echo min 0 time 50; printf '\\033[6n'; head -c 6 | od -An -c; stty sane; read x; echo got $x");
    ASSERT_TRUE(waitFor(session.loop, [&] {
        return session.screen().find("033   [   1   ;   1   R") != std::string::npos;
    })) << session.screen();
    session.headless.send("hello\n");
    ASSERT_TRUE(session.waitForExit());
    EXPECT_NE(session.screen().find("got hello"), std::string::npos) << session.screen();
}

TEST(LocalProcess, EnvironmentSizeNameAndDirectory) {
    Session session;
    session.headless.process.startProcess(
        "/bin/sh", {"-c", "echo $0 $TERM $COLORTERM; pwd; stty size"}, std::nullopt, "name", "/tmp");
    ASSERT_TRUE(session.waitForExit());
    EXPECT_EQ(session.screen(), "name xterm-256color truecolor\n/tmp\n10 60\n");
}

TEST(LocalProcess, AHeadlessTerminalKeepsWhatItIsTold) {
    Session session;
    HeadlessTerminal& headless = session.headless;
    headless.terminal.feed("\x1b]7;file:///home\a");
    EXPECT_EQ(headless.dir, "file:///home");
    const winsize size = headless.getWindowSize();
    EXPECT_EQ((std::array{size.ws_row, size.ws_col, size.ws_xpixel, size.ws_ypixel}),
        (std::array<unsigned short, 4>{10, 60, 16, 16}));
    const std::vector<std::uint8_t> bitmap{1, 2, 3, 4};
    headless.createImageFromBitmap(headless.terminal, bitmap, 1, 1);
    ASSERT_EQ(headless.images.size(), 1U);
    EXPECT_EQ(headless.images[0].bitmap, bitmap);
    headless.changeScrollback(std::nullopt);
    EXPECT_EQ(headless.terminal.options.scrollback, 0);
}

TEST(LocalProcess, PseudoTerminalsTellOfWaitingBytes) {
    const auto child =
        PseudoTerminalHelpers::fork("/bin/sh", {"sh", "-c", "printf abc; read x"}, {}, std::nullopt, {24, 80, 0, 0});
    ASSERT_TRUE(child);
    RunLoop loop;
    EXPECT_TRUE(waitFor(
        loop, [&] { return PseudoTerminalHelpers::availableBytes(child->masterDescriptor) == std::pair(0, 3); }));
    close(child->masterDescriptor);
    EXPECT_EQ(PseudoTerminalHelpers::availableBytes(-1).first, -1);
    EXPECT_EQ(PseudoTerminalHelpers::setWinSize(-1, {}), -1);
    int status = 0;
    EXPECT_EQ(waitpid(child->pid, &status, 0), child->pid);
}

TEST(LocalProcess, TellsTheChildOfANewSize) {
    Session session;
    session.start("trap 'stty size; exit' WINCH; echo ready; while :; do sleep 0.05; done");
    ASSERT_TRUE(waitFor(session.loop, [&] { return session.screen().find("ready") != std::string::npos; }));
    session.headless.terminal.resize(33, 7);
    session.headless.process.updateWindowSize();
    ASSERT_TRUE(session.waitForExit());
    EXPECT_NE(session.screen().find("7 33"), std::string::npos);
}

TEST(LocalProcess, WhatCannotBeExecutedExitsWith127) {
    Session session;
    session.headless.process.startProcess("/no/such/program", {});
    ASSERT_TRUE(session.waitForExit());
    EXPECT_EQ(WEXITSTATUS(*session.exits[0]), 127);
}

TEST(LocalProcess, ASecondStartLeavesTheFirstAlone) {
    Session session;
    session.start("echo first; read x");
    const pid_t first = session.headless.process.shellPid();
    session.start("echo second");
    EXPECT_EQ(session.headless.process.shellPid(), first);
    session.headless.send("\n");
    ASSERT_TRUE(session.waitForExit());
    EXPECT_EQ(session.screen().find("second"), std::string::npos);
    session.start("echo third");
    EXPECT_TRUE(waitFor(session.loop, [&] { return session.exits.size() == 2; }));
}

TEST(LocalProcess, WritingToAChildThatDoesNotReadDoesNotBlock) {
    Session session;
    session.start("stty raw -echo; echo ready; sleep 100");
    ASSERT_TRUE(waitFor(session.loop, [&] { return session.screen().find("ready") != std::string::npos; }));
    const auto start = std::chrono::steady_clock::now();
    session.headless.send(std::string(4 << 20, 'x'));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    session.headless.process.terminate();
    session.headless.send("ignored");
    session.loop.run(20ms);
    EXPECT_TRUE(session.exits.empty());
}

/// A child that ignores what it is asked with, and its own child, end with their owner.
TEST(LocalProcess, TheGroupEndsWithItsOwner) {
    pid_t child = 0;
    {
        Session session;
        session.start("trap '' TERM HUP; sleep 1000 & echo $!; while :; do sleep 1; done");
        ASSERT_TRUE(waitFor(session.loop, [&] { return session.screen().size() > 1; }));
        child = session.headless.process.shellPid();
        ASSERT_EQ(kill(-child, 0), 0);
    }
    RunLoop settle;
    EXPECT_TRUE(waitFor(settle, [&] { return kill(-child, 0) != 0 && errno == ESRCH; }));
}

TEST(LocalProcess, AFloodIsHeldBackAndDeliveredInSlices) {
    struct Counter : LocalProcessDelegate {
        std::size_t bytes = 0;
        bool hasEnded = false;
        void processTerminated(LocalProcess&, std::optional<int>) override { hasEnded = true; }
        void dataReceived(std::span<const std::uint8_t> slice) override {
            bytes += slice.size();
            std::this_thread::sleep_for(2ms);
        }
        winsize getWindowSize() override { return {24, 80, 0, 0}; }
    };
    RunLoop loop(RunLoop::Kind::mainQueue);
    Counter counter;
    LocalProcess process(&counter, loop);
    process.startProcess("/bin/sh", {"-c", "yes | head -c 2000000"});
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!counter.hasEnded && std::chrono::steady_clock::now() < deadline) {
        // Other work of the main queue gets its turn while output waits.
        bool hadTurn = false;
        loop.async([&] {
            hadTurn = true;
            loop.quit();
        });
        ASSERT_TRUE(loop.run(patience));
        ASSERT_TRUE(hadTurn);
    }
    EXPECT_TRUE(counter.hasEnded);
    EXPECT_EQ(counter.bytes, 3000000U); // each newline became two bytes
}

TEST(RunLoop, EndsInTimeHoweverMuchThereIsToDo) {
    RunLoop loop;
    int worked = 0;
    std::function<void()> again = [&] {
        ++worked;
        loop.async(again);
    };
    loop.async(again);
    EXPECT_FALSE(loop.run(5ms));
    EXPECT_GT(worked, 0);
    loop.quit();
    EXPECT_TRUE(loop.run(0ms));
}

TEST(LocalProcess, TellsOfReadsAndWritesButNotTheirBytes) {
    testing::internal::CaptureStderr();
    Session session;
    session.headless.process.setDebugIO(true);
    session.start("stty -echo; printf ready; read x; read y; printf 'got %s' \"$x\"");
    EXPECT_TRUE(waitFor(session.loop, [&] { return session.screen().find("ready") != std::string::npos; }));
    session.headless.send("secret\n");
    session.headless.send("\n");
    EXPECT_TRUE(session.waitForExit());
    const std::string lines = testing::internal::GetCapturedStderr();
    EXPECT_EQ(session.headless.process.totalRead(), std::string_view("readygot secret").size());
    EXPECT_THAT(lines, testing::StartsWith("[READ] count="));
    EXPECT_THAT(lines, testing::HasSubstr(" total=15\n"));
    EXPECT_THAT(lines, testing::HasSubstr("[SEND-1] count=7\n"));
    EXPECT_THAT(lines, testing::HasSubstr("[SEND-1] written\n"));
    EXPECT_THAT(lines, testing::HasSubstr("[SEND-2] count=1\n"));
    EXPECT_THAT(lines, testing::Not(testing::HasSubstr("secret")));
}

TEST(LocalProcess, LogsWhatItReads) {
    const auto directory = std::filesystem::temp_directory_path() / ("termcore-log-" + std::to_string(getpid()));
    std::filesystem::create_directory(directory);
    Session session;
    session.headless.process.setHostLogging(directory.string());
    session.start("echo logged");
    ASSERT_TRUE(session.waitForExit());
    std::string all;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        std::ifstream in(entry.path());
        all.append(std::istreambuf_iterator<char>(in), {});
    }
    std::filesystem::remove_all(directory);
    EXPECT_EQ(all, "logged\r\n");

    testing::internal::CaptureStderr();
    session.start("echo nowhere");
    EXPECT_TRUE(waitFor(session.loop, [&] { return session.exits.size() == 2; }));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("Can't write the log file"));
    EXPECT_NE(session.screen().find("nowhere"), std::string::npos);
}

}
}
