#include "TestHost.h"
#include "TestRandom.h"

#include <gtest/gtest.h>

namespace termcore::test {
namespace {

/// Text, resized, and what then stands in history and screen.
struct Example {
    const char* name;
    TerminalOptions options;
    const char* input;
    std::vector<std::pair<int, int>> sizes;
    const char* expected; ///< rows, the history's first, each ended by |
    int cursorCol;
    int cursorRow;
};

std::string rows(const Terminal& terminal) {
    std::string out;
    for (std::size_t i = 0; i < terminal.buffer().lines.count(); ++i)
        out += tool::rowText(terminal, static_cast<int>(i)) + "|";
    return out;
}

const Example examples[] = {
    {"narrower breaks a line", sized(10, 4), "abcdefgh\r\nx", {{4, 4}}, "abcd|efgh|x||", 1, 2},
    {"and wider joins it", sized(10, 4), "abcdefgh\r\nx", {{4, 4}, {10, 4}}, "abcdefgh|x|||", 1, 1},
    {"a wide glyph moves whole", sized(10, 4), "abc中d\r\nx", {{4, 4}}, "abc|中d|x||", 1, 2},
    {"and comes back without a gap", sized(10, 4), "abc中d\r\nx", {{4, 4}, {5, 4}}, "abc中|d|x||", 1, 2},
    {"a wrapped wide glyph joins without a blank", sized(4, 4), "abc中d\r\nx", {{6, 4}}, "abc中d|x|||", 1, 1},
    {"the cursor's group is only cut", sized(10, 4), "abcdefgh", {{4, 4}}, "abcd||||", 3, 0},
    {"what does not fit goes to the history", sized(8, 2), "abcdefgh\r\nx", {{4, 2}}, "abcd|efgh|x|", 1, 1},
    {"fewer rows push into the history", sized(10, 4), "1\r\n2\r\n3\r\n4", {{10, 2}}, "1|2|3|4|", 1, 1},
    {"fewer rows drop blank ones below", sized(10, 4), "1\r\n2", {{10, 2}}, "1|2|", 1, 1},
    {"more rows pull the history back", sized(10, 2), "1\r\n2\r\n3\r\n4", {{10, 4}}, "1|2|3|4|", 1, 3},
    {"more rows without history are blank", sized(10, 2), "1", {{10, 4}}, "1||||", 1, 0},
    {"a full ring loses its first lines", sized(8, 2, 1), "abcdefgh\r\nijklmnop\r\nx", {{4, 2}}, "ijkl|mnop|x|", 1, 1},
    {"fewer rows of a full ring lose its first lines", sized(10, 4, 1), "1\r\n2\r\n3\r\n4\r\n5\r\n6", {{10, 2}},
        "4|5|6|", 1, 1},
    {"blanks within a wrapped group stay", sized(4, 4), "abcdef\x1b[1;3H\x1b[K\x1b[3;1Hx", {{8, 4}}, "ab  ef|x|||", 1,
        1},
};

TEST(Reflow, Examples) {
    for (const Example& each : examples) {
        TestHost host;
        Terminal terminal(&host, each.options);
        terminal.feed(each.input);
        for (const auto& [cols, height] : each.sizes)
            terminal.resize(cols, height);
        EXPECT_EQ(rows(terminal), each.expected) << each.name;
        EXPECT_EQ(terminal.getCursorLocation(), (Position{each.cursorCol, each.cursorRow})) << each.name;
        EXPECT_EQ(terminal.getTopVisibleRow(), terminal.buffer().yBase) << each.name;
    }
}

TEST(Reflow, TheAlternateScreenIsCutOrPadded) {
    TestHost host;
    Terminal terminal(&host, sized(10, 3));
    terminal.feed("\x1b[?1049habcdefghij");
    terminal.resize(4, 3);
    terminal.resize(8, 3);
    EXPECT_EQ(tool::dumpScreen(terminal), "abcd\n");
}

/// Narrowing and widening back keeps the text of every logical line but the cursor's group, as long as the ring does not
/// overflow.
TEST(Reflow, ThereAndBackKeepsTheText) {
    Random random(11);
    static constexpr const char* pieces[] = {
        "a", "bc ", "слово", "中", "文字", "e\xcc\x81", "😀", "  ", "\x1b[1m", "\x1b[m", "-"};
    for (int round = 0; round < 400; ++round) {
        const int cols = 4 + static_cast<int>(random() % 30);
        TestHost host;
        Terminal terminal(&host, sized(cols, 2 + static_cast<int>(random() % 8), 5000));
        for (unsigned lines = random() % 40; lines > 0; --lines) {
            for (unsigned n = random() % 30; n > 0; --n)
                terminal.feed(pieces[random() % std::size(pieces)]);
            terminal.feed("\r\n");
        }
        terminal.feed("$");
        const std::string before = tool::dumpScrollback(terminal);
        const int height = terminal.rows();
        for (unsigned steps = 1 + random() % 4; steps > 0; --steps)
            terminal.resize(2 + static_cast<int>(random() % 50), height);
        terminal.resize(cols, height);
        ASSERT_EQ(tool::dumpScrollback(terminal), before) << "round " << round << ", " << cols << " columns";
    }
}

void resizeAtRandom(int history) {
    Random random(5);
    TestHost host;
    Terminal terminal(&host, sized(20, 5, history));
    for (int round = 0; round < 1000; ++round) {
        for (unsigned n = random() % 6; n > 0; --n)
            terminal.feed("слово 中文 wrapped text \x1b[4");
        terminal.feed(random() % 3 == 0 ? "m\x1b[H" : "m\r\n");
        if (random() % 9 == 0)
            terminal.feed(random() % 2 == 0 ? "\x1b[?1049h" : "\x1b[?1049l");
        terminal.resize(2 + static_cast<int>(random() % 40), 1 + static_cast<int>(random() % 12));
        for (const Buffer* buffer : {terminal.normalBuffer.get(), terminal.altBuffer.get()}) {
            ASSERT_LE(buffer->lines.count(), buffer->lines.maxLength());
            ASSERT_GE(buffer->yBase, 0);
            ASSERT_LT(buffer->y(), terminal.rows());
            ASSERT_LE(buffer->x(), terminal.cols());
            if (buffer->lines.count() > 0) {
                ASSERT_EQ(buffer->lines.count(), static_cast<std::size_t>(buffer->yBase + terminal.rows()));
            }
            ASSERT_EQ(buffer->tabStops.size(), static_cast<std::size_t>(terminal.cols()));
        }
    }
}

/// Whatever sizes come, the buffers keep their invariants.
TEST(Reflow, InvariantsHoldForAnySizes) {
    for (const int history : {0, 1, 30})
        resizeAtRandom(history);
}

}
}
