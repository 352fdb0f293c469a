#include "TestHost.h"
#include "TestRandom.h"

#include <algorithm>
#include <cstdlib>
#include <gmock/gmock.h>
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
    terminal.resize(12, 4);
    EXPECT_EQ(terminal.getUpdateRange(), (UpdateRange::Rows{0, 4}));
    terminal.clearUpdateRange();
    terminal.resize(11, 4);
    EXPECT_EQ(terminal.getUpdateRange(), (UpdateRange::Rows{0, 3}));
}

TEST(Terminal, EachFunctionMarksItsRows) {
    static constexpr struct {
        const char* before;
        const char* input;
        int first;
        int last;
    } steps[] = {
        {"\x1b[2;1H", "\x1b[J", 1, 4},
        {"\x1b[4;1H", "\x1b[1J", 0, 3},
        {"", "\x1b[2J", 0, 4},
        {"\x1b[3;1H", "\x1b[K", 2, 2},
        {"\x1b[3;1H", "\x1b[X", 2, 2},
        {"\x1b[3;1H", "\x1b[@", 2, 2},
        {"\x1b[3;1H", "\x1b[P", 2, 2},
        {"\x1b[3;1H", "\x1b[b", 2, 2},
        {"\x1b[3;1H", "\x1b#6", 2, 2},
        {"\x1b[3;1H", "\x1b[5;1H", 2, 4},
        {"\x1b[2;1H123456789", "01", 1, 2},
        {"\x1b[2;1He\x1b[4;1H", "\xcc\x81", 1, 3},
        {"\x1b[2;4r\x1b[3;1H", "\x1b[L", 2, 3},
        {"\x1b[2;4r\x1b[3;1H", "\x1b[M", 2, 3},
        {"\x1b[2;4r", "\x1b[S", 1, 3},
        {"\x1b[2;4r", "\x1b[T", 1, 3},
        {"\x1b[2;4r\x1b[2;1H", "\x1bM", 1, 3},
        {"\x1b[2;4r\x1b[3;1H", "\x1b['}", 1, 3},
        {"", "\x1b#8", 0, 4},
        {"", "\x1b[42;2;1;4;1$x", 1, 3},
        {"", "\x1b[1;1;2;2;1;3;1;1$v", 2, 3},
        {"\x1b[?25l\x1b[3;1H", "\x1b[?25h", 2, 2},
        {"", "\x1b[?1049h", 0, 4},
        {"\x1b[?1049h\x1b[5;1H", "\n", 0, 4},
        {"", "\x1b[?3h", 0, 4},
        {"", "\x1b\x63", 0, 4},
    };
    for (const auto& step : steps) {
        TestHost host;
        Terminal terminal(&host, sized(10, 5));
        terminal.feed(step.before);
        terminal.clearUpdateRange();
        terminal.feed(step.input);
        EXPECT_EQ(terminal.getUpdateRange(), (UpdateRange::Rows{step.first, step.last})) << step.input + 1;
    }
}

TEST(Terminal, AScrollMarksOnlyWhatDoesNotMoveWithIt) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2, 5));
    terminal.feed("\n\n");
    terminal.clearUpdateRange();
    terminal.feed("\n");
    EXPECT_EQ(terminal.getUpdateRange(), std::nullopt);
    EXPECT_EQ(terminal.getScrollInvariantUpdateRange(), (UpdateRange::Rows{2, 3}));
}

TEST(Terminal, TellsTheHostOfScrollsAndLineFeeds) {
    struct : TestHost {
        int lineFeeds = 0;
        std::vector<int> scrolls;
        void linefeed(Terminal&) override { ++lineFeeds; }
        void scrolled(Terminal&, int yDisp) override { scrolls.push_back(yDisp); }
    } host;
    Terminal terminal(&host, sized(5, 2));
    terminal.feed("1\n2\n3\x1b"
                  "D1234567");
    EXPECT_EQ(host.lineFeeds, 2);
    EXPECT_EQ(host.scrolls, (std::vector<int>{1, 2, 3}));
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

    // In a full ring the view moves with its lines until they are gone.
    terminal.userScrolling = true;
    terminal.normalBuffer->yDisp = 1;
    EXPECT_EQ(terminal.getCharacter(0, 0), "2");
    terminal.feed("\r\n6");
    EXPECT_EQ(terminal.getCharacter(0, 0), "2");
    terminal.feed("\r\n7");
    EXPECT_EQ(terminal.getCharacter(0, 0), "3");
    EXPECT_EQ(terminal.buffer().linesTop, 2);
    std::vector<Cell> scratch;
    EXPECT_EQ(terminal.getScrollInvariantLine(6, scratch)[0].code(), '7');

    terminal.normalBuffer->yDisp = 2;
    terminal.feed("\x1b[3J");
    EXPECT_EQ(terminal.buffer().linesTop, 0);
    EXPECT_EQ(terminal.getTopVisibleRow(), 0);
    EXPECT_EQ(terminal.getCharacter(0, 0), "6");
}

TEST(Terminal, RowsOfTheHistoryReadWhole) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2, 5));
    terminal.feed("ab\r\n\r\n");
    terminal.normalBuffer->yDisp = 0;
    std::vector<Cell> scratch(3, Cell{'x', 0});
    const auto cells = terminal.getLine(0, scratch);
    ASSERT_EQ(cells.size(), 10U);
    EXPECT_EQ(cells[1].code(), 'b');
    EXPECT_EQ(cells[2], Cell{});
    EXPECT_TRUE(terminal.getLine(2, scratch).size() == 10 && terminal.getLine(3, scratch).empty());
}

TEST(Terminal, ResizeLimitsMarginsAndGoesOnWithTabStops) {
    TestHost host;
    Terminal terminal(&host, sized(12, 4));
    terminal.feed("\x1b[3g\x1b[5G\x1bH\x1b[2;3r\x1b[?69h\x1b[5;9s");
    terminal.resize(6, 5);
    terminal.feed("\x1bP$qr\x1b\\\x1bP$qs\x1b\\");
    terminal.resize(3, 5);
    terminal.feed("\x1bP$qs\x1b\\\x1b[?69l");
    EXPECT_EQ(host.replies, "\x1bP1$r1;5r\x1b\\\x1bP1$r5;6s\x1b\\\x1bP1$r3;3s\x1b\\");

    Terminal wide(&host, sized(12, 2));
    wide.feed("\x1b[3g\x1b[5G\x1bH");
    wide.resize(30, 2);
    wide.feed("\r\tA\tB\tC");
    EXPECT_EQ(tool::dumpScreen(wide), "    A       B       C\n");
    wide.feed("\x1b[?1049h\r\t\t\tX");
    EXPECT_EQ(tool::dumpScreen(wide), "                        X\n");
}

TEST(Terminal, TheSavedCursorStaysWithItsText) {
    TestHost host;
    Terminal terminal(&host, sized(10, 4));
    terminal.feed("a\r\nb\r\nc\r\nd\x1b[3;9H\x1b"
                  "7\x1b[4;1H");
    terminal.resize(10, 2);
    EXPECT_EQ(terminal.getTopVisibleRow(), 2);
    terminal.resize(6, 2);
    terminal.feed("\x1b"
                  "8X");
    EXPECT_EQ(tool::dumpScreen(terminal), "c    X\nd\n");
}

TEST(Terminal, AFrozenDisplayKeepsItsBuffer) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2));
    terminal.feed("a\x1b[?1049h\x1b[?2026hb\x1b[?1049l");
    EXPECT_TRUE(terminal.isDisplayBufferAlternate());
    EXPECT_FALSE(terminal.isCurrentBufferAlternate());
    EXPECT_EQ(tool::dumpScreen(terminal), "");
    terminal.feed("\x1b[?2026l");
    EXPECT_FALSE(terminal.isDisplayBufferAlternate());
    EXPECT_EQ(tool::dumpScreen(terminal), "a\n");

    terminal.feed("\r\n2\r\n3\r\nxy\x1b[?69h\x1b[3;5s\x1b[?2026h\x1b[s\x1b[3g\x1b[1;1Hz\n\n\n");
    const Buffer& frozen = terminal.displayBuffer();
    EXPECT_EQ(std::pair(frozen.x(), frozen.y()), std::pair(2, 1));
    EXPECT_EQ(std::pair(frozen.yBase, frozen.yDisp), std::pair(2, 2));
    EXPECT_EQ(std::pair(frozen.marginLeft, frozen.marginRight), std::pair(2, 4));
    EXPECT_EQ(frozen.scrollBottom(), 1);
    EXPECT_TRUE(frozen.tabStops[8]);
    EXPECT_EQ(tool::dumpScreen(terminal), "3\nxy\n");
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
    terminal.clearUpdateRange();
    terminal.changeScrollback(3);
    EXPECT_EQ(terminal.getUpdateRange(), (UpdateRange::Rows{0, 1}));
    EXPECT_EQ(tool::dumpScrollback(terminal), "16\n17\n18\n19\n");
    EXPECT_EQ(terminal.buffer().yBase, 3);
    EXPECT_EQ(terminal.getTopVisibleRow(), 3);
    terminal.feed("\x1b"
                  "c\n\n\n\n\n\n\n\n");
    EXPECT_EQ(terminal.buffer().yBase, 3);
    terminal.changeScrollback(std::nullopt);
    EXPECT_EQ(terminal.buffer().yBase, 0);
    terminal.feed("x\r\n");
    EXPECT_EQ(tool::dumpScrollback(terminal), "x\n");
    // Without lines of history it is still the buffer that rewraps.
    terminal.feed("\x1b[Habcdefgh\r\n");
    terminal.resize(4, 2);
    EXPECT_EQ(tool::dumpScreen(terminal), "efgh\n");
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

TEST(Terminal, ConformanceAndTitleFlags) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2));
    for (int level = 0; level < 5; ++level) {
        terminal.feed("\x1b[6" + std::to_string(1 + level) + "\"p");
        EXPECT_EQ(static_cast<int>(terminal.modes.conformance), level);
    }
    terminal.feed("\x1b[62\"p\x1b[!p");
    EXPECT_EQ(terminal.modes.conformance, TerminalConformance::vt500);

    const auto flags = [&] {
        const TerminalModes& m = terminal.modes;
        return std::vector<bool>{m.xtermTitleSetHex, m.xtermTitleQueryHex, m.xtermTitleSetUtf, m.xtermTitleQueryUtf};
    };
    terminal.feed("\x1b[>0;2;9t");
    EXPECT_EQ(flags(), (std::vector<bool>{true, false, true, false}));
    terminal.feed("\x1b[>1;3t\x1b[>0;1;2T");
    EXPECT_EQ(flags(), (std::vector<bool>{false, false, false, true}));
    terminal.feed("\x1b]7;x\a\x1b"
                  "c");
    EXPECT_EQ(flags(), std::vector<bool>(4, false));
    EXPECT_FALSE(terminal.hostCurrentDirectory);
}

TEST(Terminal, ThePaletteFollowsItsStrategy) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2));
    std::array<Color, 16> base = Color::terminalAppColors;
    base[1] = {1, 2, 3};
    host.events.clear();
    terminal.installPalette(std::span(base).first(15));
    EXPECT_TRUE(host.events.empty());
    terminal.installPalette(base);
    EXPECT_EQ(host.events, std::vector<std::string>{"color all"});
    terminal.feed("\x1b]4;1;?;16;?\a\x1b]11;#800\a\x1b]4;16;?\a");
    EXPECT_EQ(host.replies,
        "\x1b]4;1;rgb:0001/0002/0003\x1b\\\x1b]4;16;rgb:0000/0000/0000\x1b\\\x1b]4;16;rgb:8080/0000/0000\x1b\\");

    TerminalOptions options = sized(10, 2);
    options.ansi256PaletteStrategy = Ansi256PaletteStrategy::xterm;
    Terminal fixed(&host, options);
    host.events.clear();
    host.replies.clear();
    fixed.feed("\x1b]10;#fff\a\x1b]11;#fff\a\x1b]4;21;?\a");
    EXPECT_EQ(
        host.events, (std::vector<std::string>{"foreground rgb:f0f0/f0f0/f0f0", "background rgb:f0f0/f0f0/f0f0"}));
    EXPECT_EQ(host.replies, "\x1b]4;21;rgb:0000/0000/ffff\x1b\\");
}

/// A host that sets a colour again when it is told of it hears of it once.
TEST(Terminal, ColourSettersDoNotComeBack) {
    struct : TestHost {
        void setForegroundColor(Terminal& t, const Color& color) override {
            TestHost::setForegroundColor(t, color);
            t.setForegroundColor(color);
        }
        void setBackgroundColor(Terminal& t, const Color& color) override {
            TestHost::setBackgroundColor(t, color);
            t.setBackgroundColor(color);
        }
        void setCursorColor(Terminal& t, const std::optional<Color>& color) override {
            TestHost::setCursorColor(t, color);
            t.setCursorColor(color);
        }
    } host;
    TerminalOptions options = sized(10, 2);
    options.ansi256PaletteStrategy = Ansi256PaletteStrategy::xterm;
    Terminal terminal(&host, options);
    host.events.clear();
    for (int i = 0; i < 2; ++i) {
        terminal.setForegroundColor({});
        terminal.setBackgroundColor({});
        terminal.setCursorColor(std::nullopt);
    }
    EXPECT_EQ(host.events.size(), 6U);
}

TEST(Terminal, NamesWhatItDoesNotKnow) {
    TestHost host;
    Terminal terminal(&host, sized(10, 2));
    const std::string input = "\x1b[?5N\x1b&A\x01\x1b]99;x\a\x1b_xy\x1b\\\x1b[:m";
    testing::internal::CaptureStderr();
    terminal.feed(input);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    terminal.silentLog = false;
    testing::internal::CaptureStderr();
    terminal.feed(input);
    const std::string log = testing::internal::GetCapturedStderr();
    for (const char* line : {"Unknown CSI Code (collect=?", "Unknown ESC Code: ESC + &A", "Unknown EXECUTE code",
             "Unknown OSC code: 99", "Unknown APC code: x", "Parsing error, state: 3"})
        EXPECT_THAT(log, testing::HasSubstr(std::string("Info: TermCore: ") + line));
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
    terminal.feed("\x1b#6a\r\n\x1b#3b\r\n\x1b#4c\r\n\x1b#6\x1b#5d");
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
    setenv("USER", "somebody", 1);
    const auto environment = Terminal::getEnvironmentVariables("screen", false);
    EXPECT_EQ(std::count(environment.begin(), environment.end(), "USER=somebody"), 2);
    EXPECT_EQ(environment[0], "TERM=screen");
    EXPECT_EQ(environment[1], "LANG=en_US.UTF-8");
    EXPECT_EQ(Terminal::getEnvironmentVariables()[1], "COLORTERM=truecolor");
}

}
}
