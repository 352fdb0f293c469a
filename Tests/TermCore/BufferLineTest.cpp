#include "Lines/BufferLine.h"
#include "Lines/PackedLine.h"
#include "TestRandom.h"
#include "Unicode/Utf8.h"

#include <gtest/gtest.h>

namespace termcore::test {
namespace {

BufferLine lineOf(std::string_view text, int cols) {
    BufferLine line(cols);
    for (std::size_t i = 0; i < text.size(); ++i)
        line.set(static_cast<int>(i), {static_cast<std::uint32_t>(text[i]), 0});
    return line;
}

std::string textOf(const BufferLine& line, bool trim = true) {
    std::string out;
    line.translateToString(
        out, trim, 0, -1, true, [](std::string& to, std::uint32_t code) { utf8::append(to, code == 0 ? U' ' : code); });
    return out;
}

TEST(BufferLine, InsertAndDeleteKeepToTheMargin) {
    static constexpr struct {
        bool insert;
        int pos;
        int n;
        int margin;
        const char* expected;
    } steps[] = {
        {true, 1, 2, 5, "a..bcd"},
        {true, 1, 2, 3, "a..bef"},
        {true, 1, 9, 3, "a...ef"},
        {true, 4, 1, 3, ".abcef"}, // the place is taken modulo the margin
        {false, 1, 2, 5, "adef.."},
        {false, 1, 2, 3, "ad..ef"},
        {false, 1, 9, 3, "a...ef"},
    };
    for (const auto& step : steps) {
        BufferLine line = lineOf("abcdef", 6);
        if (step.insert)
            line.insertCells(step.pos, step.n, step.margin, {'.', 0});
        else
            line.deleteCells(step.pos, step.n, step.margin, {'.', 0});
        EXPECT_EQ(textOf(line), step.expected);
    }
}

TEST(BufferLine, AnIndexOutOfRangeMeansTheLastCell) {
    BufferLine line = lineOf("abc", 3);
    EXPECT_EQ(line[99].code(), 'c');
    line.set(99, {'x', 0});
    EXPECT_EQ(textOf(line), "abx");
}

TEST(BufferLine, ColourAloneIsContentButNotLength) {
    BufferLine line(5);
    line.set(3, {0, 7});
    EXPECT_EQ(line.getTrimmedLength(), 0);
    EXPECT_TRUE(line.hasContent(3));
    EXPECT_TRUE(line.hasAnyContent());
    line.set(1, {Cell::textOf(0x4E2D, 2), 0});
    EXPECT_EQ(line.getTrimmedLength(), 3);
    line.clear();
    EXPECT_FALSE(line.hasAnyContent());
}

TEST(BufferLine, ResizeKeepsTheFrontAndForgetsTheRest) {
    BufferLine line = lineOf("abcdef", 6);
    line.resize(3);
    line.resize(6, {'.', 0});
    EXPECT_EQ(textOf(line), "abc...");
    line.resize(0);
    EXPECT_EQ(line.count(), 0);
}

TEST(BufferLine, CopiesWithinItselfInEitherDirection) {
    BufferLine line = lineOf("abcdef", 6);
    line.copyFrom(line, 0, 2, 4);
    EXPECT_EQ(textOf(line), "ababcd");
    line.copyFrom(line, 2, 0, 4);
    EXPECT_EQ(textOf(line), "abcdcd");
    BufferLine other(2);
    other.copyFrom(line);
    EXPECT_EQ(textOf(other), "abcdcd");
}

/// What is packed comes out as it went in, whatever stands in the cells.
TEST(PackedLine, RoundTrip) {
    Random random(7);
    std::vector<PackedLine::Run> runs;
    for (int round = 0; round < 3000; ++round) {
        const int cols = 1 + static_cast<int>(random() % 70);
        BufferLine line(cols);
        const unsigned kind = random() % 4;
        for (int col = 0; col < cols; ++col) {
            if (random() % 8 == 0)
                continue;
            const std::uint32_t style = random() % 5 == 0 ? random() : 3;
            switch (kind) {
            case 0: line.set(col, {random() % 0x100, style}); break;
            case 1: line.set(col, {0x400 + random() % 0x100, style}); break;
            case 2:
                line.set(col, {Cell::textOf(0x4E00 + random() % 0x100, 2), style});
                if (col + 1 < cols && random() % 9 != 0)
                    line.set(++col, {Cell::continuation, style});
                break;
            default: line.set(col, {static_cast<std::uint32_t>(random() & 0x3FFFFFF), style}); break;
            }
        }
        const auto used = static_cast<std::size_t>(line.usedCells());
        std::vector<std::byte> room(PackedLine::largestSize(used));
        PackedLine packed;
        const std::size_t size =
            PackedLine::pack(line.cells().first(used), line.holdsBytesOnly(), room.data(), runs, packed);
        ASSERT_LE(size, room.size());
        std::vector<Cell> cells(static_cast<std::size_t>(cols));
        packed.unpack(cells.data());
        ASSERT_EQ(cells, line.getData());
        ASSERT_EQ(packed.trimmedLength(), line.getTrimmedLength());

        // A packed line that is cut must read as a cut line would.
        const int cut = static_cast<int>(random() % static_cast<unsigned>(cols)) + 1;
        if (cut < packed.cellCount) {
            packed.cellCount = static_cast<std::uint16_t>(cut);
            std::vector<Cell> part(static_cast<std::size_t>(cut));
            packed.unpack(part.data());
            line.resize(cut);
            ASSERT_EQ(part, line.getData());
            ASSERT_EQ(packed.trimmedLength(), line.getTrimmedLength());
        }
    }
}

}
}
