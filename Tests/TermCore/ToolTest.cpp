#include "TestHost.h"
#include "Tool/Arguments.h"
#include "Tool/Recording.h"

#include <gtest/gtest.h>
#include <sstream>

namespace termcore::tool {
namespace {

TEST(Tool, ReadsItsCommandLine) {
    const auto run = Arguments::parse(
        {"run", "--size", "100x30", "--dump", "json", "--timeout", "5", "--debug-io", "--", "ls", "--dump", "-h"});
    EXPECT_EQ(run.command, Arguments::Command::run);
    EXPECT_EQ(run.options.cols, 100);
    EXPECT_EQ(run.options.rows, 30);
    EXPECT_EQ(run.dump, Arguments::Dump::json);
    EXPECT_EQ(run.timeout, std::chrono::seconds(5));
    EXPECT_TRUE(run.debugsIO);
    EXPECT_EQ(run.operands, (std::vector<std::string>{"ls", "--dump", "-h"}));
    const auto feed = Arguments::parse({"feed", "a", "b", "--repeat", "3", "--scrollback", "0"});
    EXPECT_EQ(feed.operands.size(), 2U);
    EXPECT_EQ(feed.repeat, 3);
    EXPECT_EQ(feed.options.scrollback, 0);
    EXPECT_EQ(Arguments::parse({"feed", "--help"}).command, Arguments::Command::help);
}

TEST(Tool, RefusesWhatItDoesNotKnow) {
    const std::vector<std::vector<std::string>> bad = {{}, {"fly"}, {"feed"}, {"run", "--"},
        {"feed", "a", "--size", "80"}, {"feed", "a", "--size", "0x5"}, {"feed", "a", "--dump", "x"},
        {"feed", "a", "--repeat"}, {"feed", "a", "--repeat", "0"}, {"feed", "a", "--what", "x"}};
    for (const auto& words : bad)
        EXPECT_THROW(Arguments::parse(words), UsageError) << testing::PrintToString(words);
}

TEST(Recording, ReadsChunksAndRefusesBrokenOnes) {
    std::istringstream good("termcore-recording 1 20x4\n0 3\na\nb\n15 2\n\x1b[\n");
    const Recording recording = Recording::read(good);
    EXPECT_EQ(recording.cols, 20);
    ASSERT_EQ(recording.chunks.size(), 2U);
    EXPECT_EQ(recording.chunks[0].bytes, (std::vector<std::uint8_t>{'a', '\n', 'b'}));
    EXPECT_EQ(recording.chunks[1].at, std::chrono::milliseconds(15));
    for (const char* bad : {"", "hello", "termcore-recording 2 20x4\n", "termcore-recording 1 20x4\n0 30\nab"}) {
        std::istringstream in(bad);
        EXPECT_THROW(Recording::read(in), std::runtime_error) << bad;
    }
}

TEST(ScreenDump, EscapesAndNamesEverything) {
    test::TestHost host;
    Terminal terminal(&host, test::sized(6, 1));
    terminal.feed("\x1b]2;a\"\\b\a\x1b[4:3;58;5;1m\"\\\x1b[m\x1b[?25l");
    EXPECT_EQ(dumpJson(terminal),
        "{\"cols\":6,\"rows\":1,\"cursor\":{\"col\":2,\"row\":0,\"visible\":false},\"alternate\":false,"
        "\"title\":\"a\\\"\\\\b\",\"iconTitle\":\"\",\"historyLines\":0,\"lines\":[\n"
        "{\"text\":\"\\\"\\\\\",\"runs\":[{\"col\":0,\"cols\":2,\"text\":\"\\\"\\\\\",\"fg\":\"default\",\"bg\":"
        "\"default\","
        "\"style\":[\"underline\"],\"underline\":\"curly\",\"underlineColor\":\"index 1\"}]}\n]}\n");
}

}
}
