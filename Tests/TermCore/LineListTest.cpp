#include "Lines/CircularBufferLineList.h"
#include "Lines/CircularList.h"
#include "TestRandom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

/// Regions that turn in place, the ring and the history together must look like a plain list of lines.
TEST(LineList, AgreesWithAPlainListWhateverIsMoved) {
    constexpr std::size_t limit = 12;
    Random random(11);
    CircularBufferLineList list(4, limit);
    std::string plain;
    const auto push = [&](std::size_t at, char c) {
        plain.insert(at, 1, c);
        if (plain.size() > limit)
            plain.erase(0, 1);
    };
    struct Region {
        std::size_t top = 0;
        std::size_t bottom = 0;
    };
    std::array<Region, 2> regions;
    for (int i = 0; i < 20000; ++i) {
        if (plain.size() < 4 || random() % 50 == 0) {
            // Few regions at a time, so that the same one is moved often.
            for (Region& each : regions) {
                while (plain.size() < 4) {
                    list.pushBlank();
                    push(plain.size(), '.');
                }
                each.top = random() % (plain.size() - 1);
                each.bottom = each.top + 1 + random() % (plain.size() - 1 - each.top);
            }
        }
        const std::size_t at = random() % plain.size();
        const auto [top, bottom] = regions[random() % 10 == 0];
        const std::size_t by = random() % 8 == 0 ? random() % limit : 1;
        const std::size_t moved = bottom < plain.size() ? std::min(by, bottom - top + 1) : 0;
        switch (random() % 16) {
        case 0:
            list.pushBlank();
            push(plain.size(), '.');
            break;
        case 1:
            list.scrollScreen(at, {}, false);
            push(plain.size(), '.');
            break;
        case 2:
            list.splice(at, 0, 1);
            push(at, '.');
            break;
        case 3:
            list.splice(at, 1, 0);
            plain.erase(at, 1);
            break;
        case 4: list.freeze(at); break;
        case 5:
            if (random() % 10 == 0) {
                list = list.clone();
            } else if (random() % 10 == 0) {
                list.trimStart(1);
                plain.erase(0, 1);
            }
            break;
        case 6:
        case 7:
        case 8: {
            const char c = static_cast<char>('a' + random() % 26);
            list.edit(at).set(0, {static_cast<std::uint32_t>(c), 0});
            plain[at] = c;
            break;
        }
        case 9:
        case 10:
            if (moved > 0) {
                list.rotateDown(top, bottom, by, {});
                plain.erase(bottom + 1 - moved, moved);
                plain.insert(top, moved, '.');
            }
            break;
        default:
            if (moved > 0) {
                if (by != 1 || !list.rotateUpOnce(top, bottom, {}, false))
                    list.rotateUp(top, bottom, by, {});
                plain.erase(top, moved);
                plain.insert(bottom + 1 - moved, moved, '.');
            }
        }
        ASSERT_EQ(textOf(list), plain) << "after " << i << " steps";
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
