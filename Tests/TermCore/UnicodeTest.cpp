#include "Terminal/Color.h"
#include "Terminal/Palette.h"
#include "Unicode/GraphemeTable.h"
#include "Unicode/UnicodeUtil.h"
#include "Unicode/Utf8.h"

#include <gtest/gtest.h>

namespace termcore::test {
namespace {

TEST(Widths, FollowTheRules) {
    static constexpr struct {
        std::uint32_t scalar;
        int width;
    } expected[] = {{0, 0}, {0x1F, -1}, {0x20, 1}, {0x7E, 1}, {0x7F, -1}, {0x9F, -1}, {0xA0, 1}, {0xAD, 1}, {0x301, 0},
        {0x488, 0}, {0x903, 0}, {0x1F3FD, 0}, {0xFF3E, 2}, {0xFFE3, 2}, {0xFF40, 2}, {0x60, 1}, {0x2028, 0},
        {0x200D, 0}, {0xFEFF, 0}, {0x1160, 0}, {0xD7B0, 0}, {0x1100, 2}, {0x1F1E6, 2}, {0x4E2D, 2}, {0xAC00, 2},
        {0xFF21, 2}, {0x1F600, 2}, {0x2615, 2}, {0x2764, 1}, {0x20000, 2}, {0x3FFFD, 2}, {0x0416, 1}, {0x10FFFF, 1},
        {0x110000, -1}};
    for (const auto& [scalar, width] : expected)
        EXPECT_EQ(UnicodeUtil::columnWidth(scalar), width) << std::hex << scalar;
}

TEST(Widths, VariationBases) {
    EXPECT_TRUE(UnicodeUtil::acceptsVariationSelector('#'));
    EXPECT_TRUE(UnicodeUtil::acceptsVariationSelector(0x2764));
    EXPECT_FALSE(UnicodeUtil::acceptsVariationSelector('a'));
}

TEST(Utf8, RejectsWhatIsNotInShortestForm) {
    for (const std::string_view bad :
        {"\xC0\x80", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\x80", "\xC3", "\xC3("})
        EXPECT_FALSE(utf8::isValid(bad)) << testing::PrintToString(bad);
    for (std::uint32_t scalar : {0x7FU, 0x80U, 0x7FFU, 0x800U, 0xFFFFU, 0x10000U, 0x10FFFFU}) {
        std::string text;
        utf8::append(text, scalar);
        EXPECT_TRUE(utf8::isValid(text));
        EXPECT_EQ(utf8::scalars(text), std::u32string(1, static_cast<char32_t>(scalar)));
    }
}

TEST(Graphemes, CodesAreStable) {
    GraphemeTable table;
    EXPECT_EQ(table.code(U"\r\n"), 10);
    EXPECT_EQ(table.code(U"a"), 'a');
    EXPECT_EQ(table.code(U"\u4e2d"), 0x4E2D);
    const auto flag = table.code(U"\U0001F1E9\U0001F1EA");
    EXPECT_EQ(flag, GraphemeTable::firstCode);
    EXPECT_EQ(table.code(U"\U0001F600"), GraphemeTable::firstCode + 1);
    EXPECT_EQ(table.code(U"\U0001F1E9\U0001F1EA"), flag);
    EXPECT_EQ(table.utf8(*flag), "\U0001F1E9\U0001F1EA");
    EXPECT_EQ(table.utf8(0xD800), " ");
    EXPECT_EQ(table.utf8(GraphemeTable::firstCode + 99), " ");
}

TEST(Color, ParsesX11Forms) {
    EXPECT_EQ(Color::parseColor("#f08"), (Color{0xF0F0, 0, 0x8080}));
    EXPECT_EQ(Color::parseColor("#ff0080"), (Color{0xFFFF, 0, 0x8080}));
    EXPECT_EQ(Color::parseColor("#fff000888"), (Color{0xFFFF, 0, 0x8888}));
    EXPECT_EQ(Color::parseColor("#123456789abc"), (Color{0x1234, 0x5678, 0x9ABC}));
    EXPECT_EQ(Color::parseColor("rgb:f/0/8"), (Color{0xF0F0, 0, 0x8080}));
    EXPECT_EQ(Color::parseColor("rgb:1234/5678/9abc"), (Color{0x1234, 0x5678, 0x9ABC}));
    for (const char* bad :
        {"", "#", "#12", "#1234", "red", "rgb:1/2", "rgb:1/2/3/4", "rgb:12345/0/0", "rgb:x/0/0", "rgb://"})
        EXPECT_FALSE(Color::parseColor(bad)) << bad;
}

TEST(Palette, XtermCubeAndGreys) {
    const auto colors = Palette::generateXtermPalette(Color::terminalAppColors);
    EXPECT_EQ(colors[1], Color::fromBytes(194, 54, 33));
    EXPECT_EQ(colors[16], (Color{0, 0, 0}));
    EXPECT_EQ(colors[16 + 36 * 1 + 6 * 2 + 3], Color::fromBytes(95, 135, 175));
    EXPECT_EQ(colors[231], (Color{0xFFFF, 0xFFFF, 0xFFFF}));
    EXPECT_EQ(colors[232], (Color{2056, 2056, 2056}));
    EXPECT_EQ(colors[255], (Color{61166, 61166, 61166}));
}

TEST(Palette, LabCubeMeetsItsCorners) {
    const Color white{0xFFFF, 0xFFFF, 0xFFFF};
    const auto colors = Palette::generateBase16LabPalette(Color::terminalAppColors, white, {});
    const auto isNear = [](Color a, Color b) {
        return std::abs(a.red - b.red) < 64 && std::abs(a.green - b.green) < 64 && std::abs(a.blue - b.blue) < 64;
    };
    EXPECT_TRUE(isNear(colors[16], Color{}));
    EXPECT_TRUE(isNear(colors[16 + 36 * 5], Color::terminalAppColors[1]));
    EXPECT_TRUE(isNear(colors[16 + 6 * 5], Color::terminalAppColors[2]));
    EXPECT_TRUE(isNear(colors[16 + 5], Color::terminalAppColors[4]));
    EXPECT_TRUE(isNear(colors[231], white));
    EXPECT_LT(colors[232].red, colors[255].red);
}

}
}
