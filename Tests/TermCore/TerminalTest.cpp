#include "TestHost.h"
#include "TestRandom.h"

#include <gtest/gtest.h>

namespace termcore::test {
namespace {

using namespace std::chrono_literals;

TEST(Terminal, SynchronizedOutputEndsAfterASecond) {
    TestHost host;
    Terminal terminal(&host, sized(10, 3));
    Terminal::Clock::time_point time{};
    terminal.now = [&] { return time; };
    terminal.feed("a\x1b[?2026hb");
    host.events.clear();
    time += 600ms;
    terminal.feed("\x1b[?2026h");
    EXPECT_EQ(*terminal.synchronizedOutputDeadline(), time + 1s);
    terminal.expireSynchronizedOutput(time + 999ms);
    EXPECT_EQ(tool::dumpScreen(terminal), "a\n");
    terminal.expireSynchronizedOutput(time + 1s);
    EXPECT_EQ(tool::dumpScreen(terminal), "ab\n");
    EXPECT_EQ(host.events, std::vector<std::string>{"sync off"});
    EXPECT_EQ(terminal.getUpdateRange(), (UpdateRange::Rows{0, 2}));

    terminal.feed("\x1b[?2026hc");
    time += 2s;
    terminal.feed("d");
    EXPECT_FALSE(terminal.synchronizedOutputActive());
    terminal.feed("\x1b[?2026he");
    terminal.resize(12, 3);
    EXPECT_EQ(tool::dumpScreen(terminal), "abcde\n");
}

TEST(Terminal, MarksTheRowsThatChanged) {
    TestHost host;
    Terminal terminal(&host, sized(10, 5, 0));
    terminal.clearUpdateRange();
    EXPECT_EQ(terminal.getUpdateRange(), std::nullopt);
    terminal.feed("\x1b[2;1Hx");
    EXPECT_EQ(terminal.getUpdateRange(), (UpdateRange::Rows{0, 1}));
    terminal.clearUpdateRange();
    terminal.feed("\x1b[4;1Hy\x1b[5;1Hz");
    EXPECT_EQ(terminal.getUpdateRange(), (UpdateRange::Rows{1, 4}));
    terminal.feed("\n");
    terminal.clearUpdateRange();
    terminal.feed("w");
    EXPECT_EQ(terminal.getScrollInvariantUpdateRange(), (UpdateRange::Rows{5, 5}));
    std::vector<Cell> scratch;
    EXPECT_EQ(terminal.getScrollInvariantLine(5, scratch)[1].code(), 'w');
}

TEST(Terminal, UserScrollingHoldsTheView) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2, 3));
    terminal.feed("1\r\n2\r\n3");
    terminal.userScrolling = true;
    terminal.normalBuffer->yDisp = 0;
    terminal.feed("\r\n4");
    EXPECT_EQ(terminal.getTopVisibleRow(), 0);
    EXPECT_EQ(terminal.getCharacter(0, 0), "1");
    terminal.userScrolling = false;
    terminal.feed("\r\n5");
    EXPECT_EQ(terminal.getTopVisibleRow(), terminal.buffer().yBase);
}

TEST(Terminal, ACombiningMarkAfterAResizeIsDropped) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2));
    terminal.feed("e");
    terminal.resize(11, 2);
    terminal.feed("\xcc\x81");
    EXPECT_EQ(tool::dumpScreen(terminal), "e\n");
}

TEST(Terminal, HistorySizeChanges) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2, 10));
    for (int i = 0; i < 20; ++i)
        terminal.feed(std::to_string(i) + "\r\n");
    terminal.changeScrollback(3);
    EXPECT_EQ(tool::dumpScrollback(terminal), "16\n17\n18\n19\n");
    EXPECT_EQ(terminal.buffer().yBase, 3);
    terminal.changeScrollback(std::nullopt);
    EXPECT_EQ(terminal.buffer().yBase, 0);
    terminal.feed("x\r\n");
    EXPECT_EQ(tool::dumpScrollback(terminal), "x\n");
}

TEST(Terminal, UntrustedProcessesGetNoChecksumAndNoDirectory) {
    TestHost host;
    host.isTrusted = false;
    Terminal terminal(&host, sized(10, 2));
    host.events.clear();
    terminal.feed("A\x1b[7;1;1;1;1;1*y\x1b]7;file:///x\a");
    EXPECT_EQ(host.replies, "\x1bP7!~0000\x1b\\");
    EXPECT_TRUE(host.events.empty());
}

TEST(Terminal, WindowReportsComeFromTheHostOrItself) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2));
    terminal.feed("\x1b[14t\x1b[14;2t\x1b[15t\x1b[16t\x1b[18t\x1b[19t\x1b]1;i\a\x1b]2;t\a\x1b[20t\x1b[21t\x1b[99t");
    EXPECT_EQ(host.replies,
        "\x1b[4;32;100t\x1b[4;32;100t\x1b[5;32;100t\x1b[6;16;10t\x1b[8;2;10t\x1b[9;2;10t\x1b]Li\x1b\\\x1b]lt\x1b\\");
    host.replies.clear();
    host.windowReply = "mine";
    terminal.feed("\x1b[18t");
    EXPECT_EQ(host.replies, "mine");
}

TEST(Terminal, EightBitReplies) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2));
    terminal.feed("\x1b G\x1b[5n\x1b]4;0;?\a\x1b F\x1b[5n\x1b[62;0\"p\x1b[5n\x1b[62;1\"p\x1b[5n");
    EXPECT_EQ(host.replies,
        "\x9b"
        "0n\x9d"
        "4;0;rgb:0000/0000/0000\x9c\x1b[0n\x9b"
        "0n\x1b[0n");
}

TEST(Terminal, RegisteredOscHandlersGoFirst) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2));
    std::string got;
    terminal.registerOscHandler(2, [&](std::span<const std::uint8_t> data) { got.assign(data.begin(), data.end()); });
    terminal.feed("\x1b]2;x\a");
    EXPECT_EQ(got, "x");
    EXPECT_EQ(terminal.terminalTitle, "");
}

TEST(Terminal, LineRenderModesStayWithTheLine) {
    using Mode = BufferLine::RenderLineMode;
    TestHost host;
    Terminal terminal(&host, sized(5, 2));
    terminal.feed("\x1b#6a\r\n\x1b#3b\r\n\x1b#4c\r\n\x1b#5d");
    const auto& lines = terminal.buffer().lines;
    EXPECT_EQ(lines.renderMode(0), Mode::doubleWidth);
    EXPECT_EQ(lines.renderMode(1), Mode::doubledTop);
    EXPECT_EQ(lines.renderMode(2), Mode::doubledDown);
    EXPECT_EQ(lines.renderMode(3), Mode::single);
}

TEST(Terminal, UnusedLinksAreReleased) {
    TestHost host;
    Terminal terminal(&host, sized(20, 2));
    terminal.feed("\x1b]8;;kept\aabc\x1b]8;;\a\r\n\x1b]8;;gone\adef\x1b]8;;\a\r\x1b[K");
    const auto last = TinyAtom::lastUsed;
    terminal.garbageCollectPayload();
    EXPECT_EQ(TinyAtom{last}.target(), nullptr);
    ASSERT_NE(terminal.getCharData(0, 0)->getPayload(), nullptr);
    EXPECT_EQ(*terminal.getCharData(0, 0)->getPayload(), ";kept");
}

/// More looks than the table keeps: those on the screen and in the history stay as they are.
TEST(Terminal, OldLooksAreCollected) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2, 5));
    terminal.feed("\x1b[38;2;1;2;3;48;2;4;5;6mkept\r\n");
    const Attribute kept = terminal.getCharData(0, 0)->attribute;
    std::string colors;
    for (int i = 0; i < 70000; ++i)
        colors += "\x1b[48;2;0;" + std::to_string(i / 256 % 256) + ";" + std::to_string(i % 256) + ";38;2;" +
            std::to_string(i / 65536) + ";0;0mx\r";
    terminal.feed(colors);
    EXPECT_LT(terminal.styles.size(), 100U);
    EXPECT_EQ(terminal.getCharData(0, 0)->attribute, kept);
    EXPECT_EQ(terminal.getCharData(0, 1)->attribute.bg, Attribute::Color::trueColor(0, 17, 111));
}

TEST(Terminal, SurvivesAnyBytesAndSizes) {
    Random random(99);
    static constexpr const char* pieces[] = {"\x1b[", ";", "5", "65535", "?", "$", "\x1b", "]", "P", "m", "H", "r", "s",
        "h", "l", "69", "中", "e\xcc\x81", "\xf0\x9f", "\x9b", "\r", "\n", "\x1b[?69h", "\x1b[4h", "\x1b[2;4r",
        "\x1b[2;5s", "J", "L", "M", "@", "b", "'}", "\x1b]8;;x\a", "\x1b]8;;\a", "\x1b[?1049h", "\x1b[?2026h", "\x1b#8",
        "\0336", "\0339", "*y", "$v", "\xef\xb8\x8f"};
    TestHost host;
    host.isTrusted = true;
    Terminal terminal(&host, sized(20, 6, 10));
    for (int round = 0; round < 30000; ++round) {
        terminal.feed(pieces[random() % std::size(pieces)]);
        if (random() % 200 == 0)
            terminal.resize(static_cast<int>(random() % 40), static_cast<int>(random() % 12));
        if (random() % 500 == 0)
            host.events.clear();
    }
    EXPECT_FALSE(tool::dumpJson(terminal).empty());
}

TEST(Terminal, EnvironmentOfAChild) {
    const auto environment = Terminal::getEnvironmentVariables("screen", false);
    EXPECT_EQ(environment[0], "TERM=screen");
    EXPECT_EQ(environment[1], "LANG=en_US.UTF-8");
    EXPECT_EQ(Terminal::getEnvironmentVariables()[1], "COLORTERM=truecolor");
}

}
}
