#include "Lines/CircularBufferLineList.h"
#include "Lines/CircularList.h"
#include "TestRandom.h"

#include <gtest/gtest.h>

#include <string>

namespace termcore::test {
namespace {

std::string textOf(const CircularBufferLineList& list) {
    std::string out;
    std::vector<Cell> scratch;
    for (std::size_t i = 0; i < list.count(); ++i) {
        const auto cells = list.read(i, scratch);
        out += cells.empty() || cells[0].code() == 0 ? '.' : static_cast<char>(cells[0].code());
    }
    return out;
}

CircularBufferLineList listOf(std::string_view text, std::size_t maxLength) {
    CircularBufferLineList list(4, maxLength);
    for (const char c : text) {
        list.pushBlank();
        list.edit(list.count() - 1).set(0, {static_cast<std::uint32_t>(c), 0});
    }
    return list;
}

TEST(LineList, AFullRingLosesItsFirstLine) {
    auto list = listOf("abcdef", 4);
    EXPECT_EQ(textOf(list), "cdef");
    list.recycle({}, true);
    EXPECT_EQ(textOf(list), "def.");
    EXPECT_TRUE(list.isWrapped(3));
    list.pop();
    EXPECT_EQ(textOf(list), "def");
}

TEST(LineList, SplicesAndShifts) {
    const auto spliced = [](std::string_view text, std::size_t limit, std::size_t at, std::size_t remove,
                             std::size_t add) {
        auto list = listOf(text, limit);
        list.splice(at, remove, add);
        return textOf(list);
    };
    EXPECT_EQ(spliced("abcde", 8, 1, 2, 0), "ade");
    EXPECT_EQ(spliced("abcde", 8, 1, 0, 2), "a..bcde");
    EXPECT_EQ(spliced("abcde", 8, 1, 2, 1), "a.de");
    EXPECT_EQ(spliced("abcde", 5, 3, 0, 1), "bc.de");
    EXPECT_EQ(spliced("abcde", 5, 9, 9, 1), "bcde.");

    const auto shifted = [](std::size_t start, std::size_t count, std::ptrdiff_t offset, std::size_t limit) {
        auto list = listOf("abcde", limit);
        list.shiftElements(start, count, offset);
        return textOf(list);
    };
    EXPECT_EQ(shifted(1, 2, -1, 8), "bc.de");
    EXPECT_EQ(shifted(1, 2, 1, 8), "a.bce");
    EXPECT_EQ(shifted(3, 2, 2, 8), "abc..de");
    EXPECT_EQ(shifted(9, 1, 1, 8), "abcde");
    EXPECT_EQ(shifted(0, 1, -1, 8), "abcde");
}

TEST(LineList, RotatesARegionAcrossTheSeam) {
    for (std::size_t turn = 0; turn < 6; ++turn) {
        // The same lines at every place of the ring.
        auto list = listOf(std::string(turn, 'x') + "abcdef", 6);
        list.rotateUp(1, 4, 1, {});
        EXPECT_EQ(textOf(list), "acde.f");
        list.rotateDown(0, 5, 2, {});
        EXPECT_EQ(textOf(list), "..acde");
        list.rotateUp(2, 3, 9, {});
        EXPECT_EQ(textOf(list), "....de");
    }
}

TEST(LineList, TrimAndLimits) {
    auto list = listOf("abcdef", 6);
    list.trimStart(2);
    EXPECT_EQ(textOf(list), "cdef");
    list.pushBlank();
    list.setMaxLength(9);
    list.setCount(7);
    EXPECT_EQ(textOf(list), "cdef...");
    list.setMaxLength(3);
    EXPECT_EQ(textOf(list), "cde");
    list.trimStart(99);
    EXPECT_EQ(list.count(), 0U);
}

/// Packing and unpacking at random must not be seen.
TEST(LineList, FrozenLinesReadTheSame) {
    Random random(3);
    CircularBufferLineList list(8, 50);
    std::vector<std::string> expected;
    for (int i = 0; i < 5000; ++i) {
        const char c = static_cast<char>('a' + random() % 26);
        list.pushBlank();
        list.edit(list.count() - 1).set(0, {static_cast<std::uint32_t>(c), random() % 2});
        expected.emplace_back(1, c);
        if (expected.size() > 50)
            expected.erase(expected.begin());
        list.freeze(random() % list.count());
        const std::size_t at = random() % list.count();
        list.edit(at).set(0, {static_cast<std::uint32_t>('A'), 0});
        expected[at] = "A";
    }
    std::string all;
    for (const std::string& each : expected)
        all += each;
    EXPECT_EQ(textOf(list), all);
    EXPECT_EQ(textOf(list.clone()), all);
}

TEST(CircularList, DropsTheFirst) {
    CircularList<int> list(3);
    for (int i = 0; i < 5; ++i)
        list.push(i);
    EXPECT_EQ(list[0], 2);
    EXPECT_EQ(list[2], 4);
    list.pop();
    EXPECT_EQ(list.count(), 2U);
}

}
}
